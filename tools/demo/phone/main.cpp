// The simulated phone as a person sees and uses it: a window, and a pipe to the demo in place of the air.
// With --by-orders it never takes the keyboard from other windows.

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <algorithm>
#include <cstdlib>
#include <utility>
#include <variant>

#include "computer_pipe.h"
#include "hand_orders.h"
#include "phone_model.h"
#include "test_phone/words.h"
#include "ui/symbol_provider.h"
#include "ui/typeface.h"
#include "ui/window_loader.h"

namespace {

using namespace orbinex;
using namespace orbinex::demo;

PhoneSession::Link linkNamed(std::string_view name) {
    if (name == "connected") return PhoneSession::Link::connected;
    return name == "waiting" ? PhoneSession::Link::waiting : PhoneSession::Link::off;
}

bool isOfKeyboard(const DecodedPacket& packet) {
    return std::holds_alternative<DecodedPacket::KeyStroke>(packet.value) ||
           std::holds_alternative<DecodedPacket::Text>(packet.value);
}

/// As large as was designed, or as the screen has room for.
void fitToScreen(QQuickWindow& window) {
    constexpr double frame = 48;
    const double room = window.screen()->availableSize().height() - frame;
    const double scale = std::min(1.0, room / window.height());
    window.resize((QSizeF(window.size()) * scale).toSize());
}

}  // namespace

int main(int argc, char** argv) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const QGuiApplication application(argc, argv);

    ComputerPipe* pipe = nullptr;
    PhoneModel model(
        {[&](const DecodedPacket& packet) {
             pipe->tell(isOfKeyboard(packet) ? "keyboard" : "mouse", packet.encode());
         },
         [&](const DAWCommand& command) { pipe->tell("control", ControlMessage{command}.encode()); }});
    QQmlEngine engine;
    engine.addImportPath("qrc:/");
    engine.addImageProvider("symbol", new SymbolProvider);
    engine.rootContext()->setContextProperties(
        {{"phone", QVariant::fromValue(&model)}, {"typeface", installedTypeface()}});
    const auto window = loadWindow(engine, QUrl("qrc:/OrbinexPhone/PhoneWindow.qml"));
    if (!window) return EXIT_FAILURE;
    // Acts of the hand reach items also while another window is active.
    window->contentItem()->setFocus(true);
    if (QCoreApplication::arguments().contains(QStringLiteral("--by-orders")))
        window->setFlag(Qt::WindowDoesNotAcceptFocus);
    fitToScreen(*window);

    ComputerPipe computer(
        [&](std::string_view word, std::string_view rest) {
            if (word == "link") return model.setLink(linkNamed(rest));
            if (word == "do") return pipe->tell(carryOut(rest, *window));
            const auto bytes = test_phone::Words(rest).hexBytes();
            if (!bytes) return;
            if (word == "control") {
                if (const auto message = ControlMessage::decode(*bytes)) model.receive(*message);
            } else if (word == "sent") {
                if (const auto packet = DecodedPacket::decode(*bytes)) model.showSent(*packet);
            }
        },
        [] { QCoreApplication::quit(); });
    pipe = &computer;
    bool isReady = false;
    QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(), [&] {
        if (!std::exchange(isReady, true)) computer.tell("ready");
    });
    window->show();
    return QGuiApplication::exec();
}
