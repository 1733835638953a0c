// Leaves a picture of every phase of the panel, of the main window in every state that looks different and of
// each of its sections, and of messages: pictures FOLDER. QT_SCALE_FACTOR is the scale.

#include <QDir>
#include <cstdio>

#include "pictures/faced_program.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

class Pictures {
  public:
    explicit Pictures(QString folder) : folder_(std::move(folder)) { QDir().mkpath(folder_); }

    void take(QQuickWindow& window, const QString& name) {
        Hand(window).settle();
        save(window.grabWindow(), name);
    }
    /// The whole page, however tall.
    void takePage(FacedProgram& program, const QString& name, int width = 860) {
        QQuickWindow& window = program.window();
        window.resize(width, 720);
        Hand hand(window);
        const auto height = hand.property("scroller", "contentHeight").toInt();
        take(window, name + "-window");
        window.resize(width, height);
        take(window, name);
    }

    /// A part of the page with a little of what is around it.
    void takePart(FacedProgram& program, const QString& item) {
        QQuickWindow& window = program.window();
        window.resize(860, 720);
        Hand hand(window);
        window.resize(860, hand.property("scroller", "contentHeight").toInt());
        hand.settle();
        const QQuickItem* const part = findItem(window.contentItem(), item);
        if (!part) return qWarning("there is no %s", qUtf8Printable(item));
        constexpr double around = 12;
        const double scale = window.effectiveDevicePixelRatio();
        const QRectF place =
            part->mapRectToScene(part->boundingRect()).adjusted(-around, -around, around, around);
        save(window.grabWindow().copy(QRectF(place.topLeft() * scale, place.size() * scale).toRect()),
             "section-" + item);
    }
    [[nodiscard]] int count() const { return count_; }

  private:
    void save(const QImage& image, const QString& name) {
        if (image.save(folder_ + "/" + name + ".png")) ++count_;
    }

    int count_ = 0;
    QString folder_;
};

void phases(Pictures& pictures) {
    const struct {
        const char* name;
        LinkPhase phase;
    } rows[] = {{"unavailable", LinkPhase::bluetoothUnavailable},
                {"searching", LinkPhase::searching},
                {"connecting", LinkPhase::connecting},
                {"securing", LinkPhase::securing},
                {"connected", LinkPhase::connected}};
    for (const auto& row : rows) {
        FacedProgram program;
        auto& phone = program.addPhone("Ada's iPhone");
        program.trust("Studio iPhone", 2 * 86'400s);
        if (row.phase == LinkPhase::bluetoothUnavailable) {
            program.radio.setState(BluetoothState::poweredOff);
            program.advance(1s);
        } else if (row.phase == LinkPhase::searching) {
            program.advance(2s);
        } else {
            program.bringTo(row.phase, phone);
        }
        pictures.take(program.panel(), QString("panel-") + row.name);
        pictures.takePage(program, QString("main-") + row.name);
    }
}

void firstStart(Pictures& pictures) {
    FacedProgram program({}, false);
    program.advance(2s);
    pictures.take(program.panel(), "panel-first");
    pictures.takePage(program, "main-first");
    pictures.takePage(program, "main-first-narrow", 480);
}

void crowded(Pictures& pictures) {
    const std::string longName = "The Extraordinarily Long iPhone of Ada L.";
    FacedProgram program({}, false);
    program.trust(longName, 3'600s * 5);
    program.trust("Kitchen iPhone");
    program.addPhone(longName, -58);
    program.addPhone("Second", -70);
    program.addPhone("Third", -88);
    program.addPhone("WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW", -99);
    program.shell.loginItem.present = LoginItemStatus::requiresApproval;
    program.app.loginItemManager.setEnabled(true);
    program.advance(2s);
    pictures.take(program.panel(), "panel-crowded");
    pictures.takePage(program, "main-crowded");
    pictures.takePage(program, "main-crowded-narrow", 480);
    Hand hand(program.window());
    program.window().resize(860, 720);
    hand.click("myPhone0/more");
    pictures.take(program.window(), "main-menu");
    hand.click("forget");
    pictures.take(program.window(), "main-forget");
}

void messages(Pictures& pictures) {
    FacedProgram program;
    program.app.centralManager.connectTrustedDevice(program.trust("Studio iPhone"));
    pictures.takePage(program, "main-alert");
    program.relocation.offerMoveIfNeeded();
    program.advance(1s);
    pictures.takePage(program, "main-move");
    program.pairing.ask("Ada's iPhone", "482 913", [](bool) {});
    pictures.takePage(program, "main-pairing");
    Hand hand(program.window());
    hand.key(Qt::Key_Tab);
    pictures.take(program.window(), "main-focus");
    program.pairing.withdraw();
    program.relocation.answer(1);
    std::string text;
    for (int i = 0; i < 40; ++i) text += "The adapter has answered something that nobody has foreseen. ";
    program.app.centralManager.dismissAlert();
    auto& phone = program.addPhone("يسرى <b>x</b> 📱");
    phone.connectStep.error = BluetoothError{.description = text};
    program.advance(2s);
    program.app.centralManager.connectNearbyDevice(phone.identifier());
    program.advance(1s);
    program.window().resize(480, 480);
    pictures.take(program.window(), "main-long-message");
}

/// Each of the window's sections by itself.
void sections(Pictures& pictures) {
    FacedProgram program({}, false);
    program.trust("Studio iPhone", 2 * 86'400s);
    program.addPhone("Ada's iPhone");
    program.advance(2s);
    for (const char* const section : {"header", "connectionCard", "setUpGuide", "inputControlCard",
                                      "myPhones", "nearbyPhones", "permissions", "general", "footer"})
        pictures.takePart(program, section);
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "pictures FOLDER\n");
        return 2;
    }
    orbinex::Pictures pictures(QString::fromLocal8Bit(argv[1]));
    orbinex::phases(pictures);
    orbinex::firstStart(pictures);
    orbinex::crowded(pictures);
    orbinex::messages(pictures);
    orbinex::sections(pictures);
    std::printf("pictures: %d in %s\n", pictures.count(), argv[1]);
}
