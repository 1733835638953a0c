#pragma once

#include <QObject>
#include <QProcessEnvironment>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "child_process.h"
#include "private_desktop.h"

namespace orbinex::demo {

/// A JACK server of the demo's own, without sound cards, and a stand-in for a workstation on it: a process
/// that connects to the MIDI surface and moves its motor faders, and a window that shows what it hears. All
/// of it ends with this object.
class MidiStudio {
  public:
    /// Starts nothing. From now on this process and its children know no other JACK server.
    explicit MidiStudio(const PrivateDesktop& desktop);
    MidiStudio(const MidiStudio&) = delete;
    MidiStudio& operator=(const MidiStudio&) = delete;

    /// These return at once.
    void startServer();
    void startWorkstation();
    void quitWorkstation();

    /// What the workstation has printed: "connected", then a line for each message, such as "E0 6A 63".
    [[nodiscard]] const std::vector<std::string>& heard() const { return heard_; }
    /// It moves a fader of its own: the bytes of one message, in the same form.
    void play(std::string_view bytes);

  private:
    void read(QProcess& pipe);
    [[nodiscard]] QString log() const;

    const PrivateDesktop& desktop_;
    QProcessEnvironment environment_;
    QString name_;
    QObject context_;
    std::vector<std::string> heard_;
    // In the order in which they come; they go the other way round.
    std::unique_ptr<ChildProcess> server_;
    std::unique_ptr<ChildProcess> window_;
    std::unique_ptr<ChildProcess> workstation_;
};

}  // namespace orbinex::demo
