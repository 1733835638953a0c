#pragma once

#include <QProcess>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/line_reader.h"
#include "child_process.h"
#include "event_loop.h"
#include "sim/simulated_phone.h"

namespace orbinex::demo {

/// The window of the simulated phone, a program of its own. What the computer writes to the phone is shown in
/// it, and what is done in it the phone sends. phone/computer_pipe.h tells what goes to and fro.
class PhoneWindow {
  public:
    enum class Use {
        byOrders,  ///< only the hand below uses it, and it never becomes the active window
        byPerson,
    };
    /// Starts it with that environment; it is seen on the screen later. What it prints goes to the log.
    PhoneWindow(EventLoop& loop, SimulatedPhone& phone, Use use, const QProcessEnvironment& environment,
                const QString& logFile);
    PhoneWindow(const PhoneWindow&) = delete;
    PhoneWindow& operator=(const PhoneWindow&) = delete;
    ~PhoneWindow();

    [[nodiscard]] bool isShown() const { return isReady_ && isOpen(); }
    /// False once somebody has closed it.
    [[nodiscard]] bool isOpen() const { return process_->isRunning(); }
    /// Shows what the phone sends otherwise.
    void show(const DecodedPacket& packet);

    // A hand in the window: items are named by paths of object names. False when there is no such item, or
    // the window does not answer.
    bool click(std::string_view item) { return act("click", item) == "done"; }
    bool drag(std::string_view item, int deltaX, int deltaY);
    /// In clicks of the wheel, away from the person.
    bool turnWheel(std::string_view item, int clicks);
    bool type(std::string_view item, std::string_view text) { return act("type", item, text) == "done"; }
    /// What stands there; "missing" when there is no such item.
    [[nodiscard]] std::string text(std::string_view item);

  private:
    std::string act(std::string_view verb, std::string_view item, std::string_view rest = {});
    void tell(std::string_view word, std::string_view rest);
    void tellLink();
    void read();
    void hear(std::string_view word, std::string_view rest);

    EventLoop& loop_;
    SimulatedPhone& phone_;
    LineReader lines_;
    bool isReady_ = false;
    std::optional<std::string> answer_;
    std::string toldLink_;
    QTimer linkTimer_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace orbinex::demo
