#include "midi_studio.h"

#include <QCoreApplication>

namespace orbinex::demo {

namespace {

QString ownProgram(const char* name) {
    return QCoreApplication::applicationDirPath() + '/' + QString::fromUtf8(name);
}

}  // namespace

MidiStudio::MidiStudio(const PrivateDesktop& desktop)
    : desktop_(desktop),
      environment_(desktop.environment()),
      // JACK keeps the names of servers that were killed, and has room for eight: the displays' numbers come
      // back.
      name_(QStringLiteral("orbinex-demo-") + QString::fromStdString(desktop.display()).remove(':')) {
    for (const auto& [key, value] :
         {std::pair("JACK_DEFAULT_SERVER", name_), {"JACK_NO_START_SERVER", "1"}}) {
        qputenv(key, value.toUtf8());
        environment_.insert(key, value);
    }
}

void MidiStudio::startServer() {
    // A period waits for all clients (-S), for as long as a busy computer needs (-t): no message is lost.
    const auto arguments =
        QStringLiteral("-r -S -t 5000 -n %1 -d dummy -r 48000 -p 256").arg(name_).split(' ');
    server_ = std::make_unique<ChildProcess>(QStringLiteral("jackd"), arguments, environment_, log());
}

void MidiStudio::startWorkstation() {
    heard_.clear();
    window_ = std::make_unique<ChildProcess>(ownProgram("workstation_window"), QStringList(), environment_,
                                             log(), ChildProcess::Streams::piped);
    workstation_ = std::make_unique<ChildProcess>(ownProgram("orbinex_midi_workstation"),
                                                  QStringList{QStringLiteral("--echo")}, environment_, log(),
                                                  ChildProcess::Streams::piped);
    // It may still print something while it is being ended, when nobody owns it any more.
    QObject::connect(&workstation_->pipe(), &QProcess::readyReadStandardOutput, &context_,
                     [this, &pipe = workstation_->pipe()] { read(pipe); });
}

void MidiStudio::quitWorkstation() {
    workstation_.reset();
    window_.reset();
}

void MidiStudio::play(std::string_view bytes) {
    if (!workstation_) return;
    workstation_->pipe().write(std::string(bytes).append("\n").c_str());
}

void MidiStudio::read(QProcess& pipe) {
    while (pipe.canReadLine()) {
        const QByteArray line = pipe.readLine();
        heard_.push_back(line.trimmed().toStdString());
        window_->pipe().write(line);
    }
}

QString MidiStudio::log() const {
    return QString::fromStdString(desktop_.place("midi.log"));
}

}  // namespace orbinex::demo
