#pragma once

#include <QDBusConnection>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/main_queue.h"
#include "link/bluez/bluez_bus.h"
#include "test_phone/advertisement.h"
#include "test_phone/command.h"
#include "test_phone/gatt_application.h"
#include "test_phone/options.h"
#include "test_phone/phone_agent.h"
#include "test_phone/phone_radio.h"
#include "test_phone/steady_run.h"

namespace orbinex::test_phone {

/// The phone and whoever holds it: does what each line says and tells what happens, a line each.
class Phone {
  public:
    using Print = std::function<void(const std::string&)>;

    /// Input packets a second: what a finger on a screen gives.
    static constexpr int pace = 125;

    /// `print` gets every line for the person. `begun` is called once, when the phone is on the air for the
    /// first time. `end` is called once, when nothing is left to do; with why when the phone could not begin.
    Phone(MainQueue& queue, const QDBusConnection& bus, Options options, Print print,
          std::function<void()> begun, std::function<void(const std::optional<Mistake>&)> end);
    Phone(const Phone&) = delete;
    Phone& operator=(const Phone&) = delete;
    ~Phone();

    void start() { radio_.start(); }
    /// Carries a line out. Its answer, "ok" or "error" with the line's first word, comes when it is done.
    void execute(const std::string& line);
    /// Puts everything back and ends; again, or when that takes too long, it ends at once.
    void quit();

  private:
    struct PendingInput {
        std::string name;
        Packets packets;
    };

    void listen();
    void found();
    void away(const std::string& why);

    void carryOut(const std::string& name, const Command::Input& input);
    void carryOut(const std::string& name, const Command::Notification& notification);
    void carryOut(const std::string& name, const Command::Rate& rate);
    void carryOut(const std::string& name, const Command::Info& info);
    void carryOut(const std::string& name, const Command::Switch& change);
    void carryOut(const std::string& name, const Command::Drop&);
    void carryOut(const std::string& name, const Command::Forget&);
    void carryOut(const std::string& name, const Command::SetPairing& pairing);
    void carryOut(const std::string& name, const Command::AnswerPairing& answer);
    void carryOut(const std::string& name, const Command::Status&);
    void carryOut(const std::string& name, const Command::Help&);
    void carryOut(const std::string& name, const Command::Quit&);

    /// False when nobody wants it.
    bool notify(Characteristic characteristic, ByteView value);
    bool send(const DecodedPacket& packet);
    void playNext();
    void rateDone(const std::string& name, const SteadyRun::Result& result);

    void answer(const std::string& name, const std::optional<Mistake>& mistake);
    PhoneRadio::Done answering(const std::string& name);
    void end(const std::optional<Mistake>& mistake);

    MainQueue& queue_;
    Options options_;
    Print print_;
    std::function<void()> begun_;
    std::function<void(const std::optional<Mistake>&)> end_;
    BluezBus bus_;
    GattApplication application_;
    Advertisement advertisement_;
    PhoneAgent agent_;
    PhoneRadio radio_;

    bool isEnding_ = false;
    Timer patience_;
    std::deque<PendingInput> inputs_;
    std::unique_ptr<SteadyRun> playing_;
    std::unique_ptr<SteadyRun> rate_;
};

}  // namespace orbinex::test_phone
