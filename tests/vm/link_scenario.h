#pragma once

#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "vm/scenario.h"

namespace orbinex::test {

/// A scenario of the program and phones. What a person has been shown is checked as it stands on the
/// terminal: the status lines, and the alerts as "title: message".
class LinkScenario : public Scenario {
  protected:
    static constexpr Milliseconds limit{90'000};
    static inline const std::string phoneName = "Studio iPhone";
    static inline const std::string otherName = "Other iPhone";

    /// Starts a phone; it advertises then.
    Process& startFirstPhone(const std::vector<std::string>& options = {});
    Process& startSecondPhone();
    [[nodiscard]] Process& phone() const { return *phone_; }

    /// Starts a phone and the program, which searches then.
    void searchForPhone();
    /// The user waits until the iPhone is listed, and connects it.
    void connect(const std::string& name = phoneName);
    /// The same, and the user answers the question of pairing.
    void pair(const std::string& answer, const std::string& name = phoneName);
    /// From nothing to the connected state.
    void meet();
    /// The program prints that it is connected. It has no more descriptors open then than when it first was.
    testing::AssertionResult becomesConnected(const std::string& name = phoneName);
    /// It prints this line.
    testing::AssertionResult shows(const std::string& line);
    /// The phone tells that its link to the computer has ended. bluetoothd takes two seconds for what the
    /// program or the user has asked it to end, and whoever connects meanwhile is cut off too.
    static testing::AssertionResult isLeft(Process& phone);
    /// A move on the phone is seen by the client on the desktop.
    testing::AssertionResult pointerFollows(Process& phone);

    /// What the person was shown since the last call, without repetitions in a row; an asterisk in an
    /// expected line stands for anything.
    void expectShown(const std::vector<std::string>& expected);

  private:
    Process* phone_ = nullptr;
    std::size_t seen_ = 0;
    /// Of which run of the program, and how many.
    std::pair<pid_t, int> descriptors_;
};

}  // namespace orbinex::test
