#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orbinex {

// What two instances of the program say to each other through a socket file: one line each way.

/// What a later instance asks: to show the main window, without the line's end. The token loses its line
/// ends.
[[nodiscard]] std::string openRequest(std::string_view startupToken);
/// The startup token of a request; nothing when the line is not one.
[[nodiscard]] std::optional<std::string> startupTokenOf(std::string_view line);
// Requests that are one word: what is asked where no window is to be shown, whether the other is there; and
// that the other ends.
inline constexpr std::string_view presenceWord = "present";
inline constexpr std::string_view quitWord = "quit";

/// A listening socket at the path, in place of whatever file is there; -1 when there can be none, as where
/// the path is longer than such addresses are.
[[nodiscard]] int listenAt(const std::string& path);
/// The next connection of a process of this user, non-blocking; -1 when there is none. Others are hung up on.
[[nodiscard]] int acceptOwn(int listener);
/// Tells the other end that its request is taken.
void answerRequest(int connection);

enum class CallResult {
    answered,  ///< the instance has taken the request
    absent,    ///< nobody listens at the path now
    silent,    ///< somebody does, and did not answer in time
    foreign,   ///< it is another user's
};
/// Sends a request, which is one line, to the instance at the path and waits for its answer, no longer than
/// the limit.
[[nodiscard]] CallResult callInstance(const std::string& path, const std::string& request,
                                      std::chrono::milliseconds limit);

}  // namespace orbinex
