#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/app_coordinator.h"
#include "app/terminal_prompt.h"
#include "base/uuid.h"

namespace orbinex {

/// Carries out what a person types at the terminal, a command a line, and prints what they ask for. `help`
/// lists the commands.
class TerminalConsole {
  public:
    using Print = std::function<void(const std::string&)>;

    /// `quit` is called by the command of that name. All of it must outlive the console.
    TerminalConsole(AppCoordinator& app, TerminalPrompt& prompt, Print print, std::function<void()> quit);
    TerminalConsole(const TerminalConsole&) = delete;
    TerminalConsole& operator=(const TerminalConsole&) = delete;

    /// One line as it was typed, any bytes. What cannot be carried out prints why.
    void execute(std::string_view line);

  private:
    /// An iPhone that can be meant: a trusted one, or one nearby that is not.
    struct Entry {
        std::optional<UUID> trusted;
        UUID nearby;
        std::string name;
        std::string state;
    };
    struct Command;
    static const std::vector<Command>& commands();

    [[nodiscard]] std::vector<Entry> entries() const;
    [[nodiscard]] Entry trustedEntry(const TrustedDevice& device) const;
    [[nodiscard]] const Entry* find(const std::string& wanted);
    [[nodiscard]] std::optional<TrustedDevice> trustedDevice(const Entry& entry) const;

    void help();
    void list();
    void connect(const std::string& wanted);
    void disconnect();
    void cancel();
    void forget(const std::string& wanted);
    void setAuto(const std::string& wanted);
    void status();
    void answer(bool isAccepted);

    AppCoordinator& app_;
    TerminalPrompt& prompt_;
    Print print_;
    std::function<void()> quit_;
    /// As they were printed last: numbers mean these.
    std::vector<Entry> listed_;
};

}  // namespace orbinex
