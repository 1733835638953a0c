#include "editor_bridge/linux/linux_script_host.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <list>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include "editor_bridge/linux/child_process.h"
#include "editor_bridge/linux/readable_watch.h"

namespace orbinex {

namespace {

/// Output taken in one turn of the event loop, in bytes, so that a flood lets timers and other events
/// through.
constexpr std::size_t mostInATurn = 256UL * 1024;

bool isExecutableFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

}  // namespace

/// Hosts that nobody wants any more, until they have ended.
class LinuxScriptHost::EndingChildren {
  public:
    explicit EndingChildren(MainQueue& queue) : queue_(queue) {}
    EndingChildren(const EndingChildren&) = delete;
    EndingChildren& operator=(const EndingChildren&) = delete;
    ~EndingChildren() {
        for (auto& ending : children_) {
            const auto left = ending.deadline - queue_.uptime();
            // Otherwise its destructor kills it.
            if (ending.child.waitForEnd(std::chrono::duration_cast<std::chrono::milliseconds>(left)))
                finish(ending);
        }
    }

    void end(ChildProcess process) {
        process.signal(SIGTERM);
        auto& ending = children_.emplace_back(std::move(process), queue_.uptime() + grace);
        const auto place = std::prev(children_.end());
        ending.watch.emplace(ending.child.exitDescriptor(), [this, place] {
            finish(*place);
            children_.erase(place);
        });
        ending.killTimer = queue_.after(grace, [place] { place->child.signal(SIGKILL); });
    }

  private:
    struct Ending {
        Ending(ChildProcess process, std::chrono::nanoseconds killAt)
            : child(std::move(process)), deadline(killAt) {}

        ChildProcess child;
        std::chrono::nanoseconds deadline;
        std::optional<ReadableWatch> watch;
        Timer killTimer;
    };

    static void finish(Ending& ending) {
        ending.watch.reset();
        // What it has left behind; its group bears its number as long as it is not reaped.
        ending.child.signal(SIGKILL);
        ending.child.reap();
    }

    MainQueue& queue_;
    std::list<Ending> children_;
};

class LinuxScriptHost::Instance final : public Process {
  public:
    Instance(ChildProcess::Launched launched, EndingChildren& ending, Handlers handlers)
        : ending_(ending),
          handlers_(std::make_shared<const Handlers>(std::move(handlers))),
          child_(std::move(launched.process)),
          output_(std::move(launched.output)) {
        outputWatch_.emplace(output_.get(), [this] { takeOutput(mostInATurn); });
        exitWatch_.emplace(child_->exitDescriptor(), [this] { takeEnd(); });
    }
    ~Instance() override {
        closeOutput();
        exitWatch_.reset();
        if (child_) ending_.end(std::move(*child_));
    }

    [[nodiscard]] bool isRunning() const override { return child_.has_value(); }

  private:
    /// False if this was destroyed by what it called.
    bool takeOutput(std::size_t atMost) {
        const auto handlers = handlers_;
        const std::weak_ptr<const char> self = token_;
        std::array<std::uint8_t, 64UL * 1024> bytes;
        while (output_ && atMost > 0) {
            const auto size = ::read(output_.get(), bytes.data(), std::min(bytes.size(), atMost));
            if (size < 0 && errno == EINTR) continue;
            if (size < 0 && errno == EAGAIN) break;
            if (size <= 0) {
                closeOutput();
                break;
            }
            atMost -= static_cast<std::size_t>(size);
            handlers->onOutput(ByteView(bytes.data(), static_cast<std::size_t>(size)));
            if (self.expired()) return false;
        }
        return true;
    }

    void takeEnd() {
        // All that the host itself has printed stands in the pipe, before anything that its children add.
        int waiting = 0;
        if (output_ && ::ioctl(output_.get(), FIONREAD, &waiting) == 0 &&
            !takeOutput(static_cast<std::size_t>(waiting))) {
            return;
        }
        closeOutput();
        exitWatch_.reset();
        child_->reap();
        child_.reset();
        const auto handlers = handlers_;
        handlers->onExit();
    }

    void closeOutput() {
        outputWatch_.reset();
        output_.close();
    }

    EndingChildren& ending_;
    /// Shared with the calls under way, which may destroy this.
    std::shared_ptr<const Handlers> handlers_;
    /// Nothing once it is reaped.
    std::optional<ChildProcess> child_;
    Descriptor output_;
    std::optional<ReadableWatch> outputWatch_;
    std::optional<ReadableWatch> exitWatch_;
    /// Ends with this.
    std::shared_ptr<const char> token_ = std::make_shared<const char>();
};

LinuxScriptHost::LinuxScriptHost(std::string path, MainQueue& queue)
    : path_(std::move(path)), ending_(std::make_unique<EndingChildren>(queue)) {}

LinuxScriptHost::~LinuxScriptHost() = default;

std::unique_ptr<ScriptHost::Process> LinuxScriptHost::launch(const std::string& script, Handlers handlers) {
    if (!isExecutableFile(path_)) return nullptr;
    auto launched = ChildProcess::launch(path_, {"-l", "lua", "-x", script});
    if (!launched) return nullptr;
    return std::make_unique<Instance>(std::move(*launched), *ending_, std::move(handlers));
}

}  // namespace orbinex
