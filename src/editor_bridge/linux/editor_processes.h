#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <dirent.h>
#include <sys/types.h>

#include "base/main_queue.h"
#include "editor_bridge/linux/descriptor.h"
#include "editor_bridge/linux/readable_watch.h"
#include "editor_bridge/workspace.h"

namespace orbinex {

/// The processes of the known editors, with windows or without. A new one is found by looking now and then,
/// as nobody tells; the end of one is noticed at once, where the kernel can tell it (5.3 and later). Needs
/// the Qt event loop.
class EditorProcesses {
  public:
    static constexpr std::chrono::milliseconds interval{2500};

    /// `changed` is called on the main thread after each change but those that a call of scan() has found.
    /// `folder` is where the kernel shows the processes.
    EditorProcesses(MainQueue& queue, std::function<void()> changed, const std::string& folder = "/proc");
    EditorProcesses(const EditorProcesses&) = delete;
    EditorProcesses& operator=(const EditorProcesses&) = delete;
    ~EditorProcesses();

    /// Looks now; true when something has changed. Well below a millisecond for some hundred processes.
    bool scan();
    /// The file name of any process' program; empty when it cannot be told.
    [[nodiscard]] std::string programOf(pid_t pid) const;
    /// One entry a process.
    template <class Visit>
    void forEachEditor(Visit visit) const {
        for (const auto& process : known_) visit(*process.editor);
    }

  private:
    /// Tells the end of a process.
    struct End {
        Descriptor descriptor;
        ReadableWatch watch;
    };
    struct Process {
        pid_t pid = 0;
        const RunningApplication* editor = nullptr;
        std::unique_ptr<End> end = nullptr;
    };
    void findAll();
    [[nodiscard]] bool begin(Process& process);
    void noteEnd(pid_t pid);

    std::function<void()> changed_;
    DIR* folder_;
    std::vector<Process> known_;
    /// Kept for its memory.
    std::vector<Process> found_;
    Timer timer_;
};

}  // namespace orbinex
