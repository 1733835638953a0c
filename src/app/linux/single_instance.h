#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/lifetime.h"
#include "base/main_queue.h"

namespace orbinex {

class FdWatch;

/// The argument that asks the running instance to end.
inline constexpr const char* quitArgument = "--quit";

/// One running instance a user. Whoever holds the lock in the folder is it, until its process ends, however
/// that ends; the socket beside the lock takes what later ones ask for. Only processes of the same user are
/// listened to and believed.
class SingleInstance {
  public:
    enum class Claim {
        first,        ///< this process is the instance now
        told,         ///< another is, and has answered
        unanswered,   ///< another is, and does not answer
        unavailable,  ///< the folder cannot be used: nobody can tell
    };
    /// How long the other one may take to answer.
    static constexpr std::chrono::milliseconds usualLimit{3000};
    /// Connections that may be open at once; a further one closes the oldest.
    static constexpr std::size_t maximumVisitors = 8;

    /// A folder of this user's alone; without one, nobody can tell.
    explicit SingleInstance(const std::optional<std::string>& folder);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    /// Gives the place up.
    ~SingleInstance();

    /// Blocks for about the limit at most. `startupToken` is what the desktop has given the new process so
    /// that a window may come to the front; any text, empty for none. Nothing asks another instance for
    /// nothing but its answer.
    [[nodiscard]] Claim claim(std::optional<std::string_view> startupToken,
                              std::chrono::milliseconds limit = usualLimit);
    /// Asks the running instance to end; true when it has answered, or there is none.
    [[nodiscard]] bool askToQuit(std::chrono::milliseconds limit = usualLimit) const;

    /// What later starts ask for.
    struct Requests {
        /// The window, with the startup token.
        std::function<void(const std::string& startupToken)> open;
        std::function<void()> quit;
    };
    /// From now on requests are answered, also those that came before. To be called by the first, once there
    /// is an event loop. The queue must outlive this object.
    void serve(MainQueue& queue, Requests requests);

    /// Lets another process take the place.
    void release();
    /// Another process has it.
    [[nodiscard]] bool isTaken() const;
    /// Takes the place again, and serves as before, if nobody else has it.
    void reclaim();

  private:
    struct Visitor;

    enum class Place { taken, held, unusable };

    Place takePlace();
    void startServing();
    void admit();
    void hear(Visitor& visitor);
    void answer(int connection, std::string_view line);

    std::string socketPath_;
    std::string lockPath_;
    int lock_ = -1;
    int listener_ = -1;
    MainQueue* queue_ = nullptr;
    Requests requests_;
    std::unique_ptr<FdWatch> watch_;
    std::list<std::unique_ptr<Visitor>> visitors_;
    Lifetime lifetime_;
};

}  // namespace orbinex
