#include "editor_bridge/linux/editor_processes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

#include "editor_bridge/known_editors.h"
#include "editor_bridge/linux/program_name.h"

namespace orbinex {

namespace {

constexpr std::size_t maxPath = 4096;

/// Zero for what is no process.
pid_t processNumber(const char* name) {
    pid_t pid = 0;
    const char* end = name + std::strlen(name);
    const auto [rest, error] = std::from_chars(name, end, pid);
    return error == std::errc() && rest == end ? pid : 0;
}

}  // namespace

EditorProcesses::EditorProcesses(MainQueue& queue, std::function<void()> changed, const std::string& folder)
    : changed_(std::move(changed)), folder_(::opendir(folder.c_str())) {
    scan();
    timer_ = queue.every(interval, [this] {
        if (scan()) changed_();
    });
}

EditorProcesses::~EditorProcesses() {
    if (folder_) ::closedir(folder_);
}

bool EditorProcesses::scan() {
    if (!folder_) return false;
    findAll();
    bool hasChanged = false;
    for (auto& process : found_) {
        const auto old = std::ranges::find(known_, process.pid, &Process::pid);
        if (old != known_.end() && old->editor == process.editor) {
            std::swap(*old, process);
        } else if (begin(process)) {
            hasChanged = true;
        }
    }
    std::erase_if(found_, [](const Process& process) { return !process.editor; });
    hasChanged |= found_.size() != known_.size();
    std::swap(known_, found_);
    found_.clear();
    return hasChanged;
}

void EditorProcesses::findAll() {
    std::array<char, maxPath> path{};
    ::rewinddir(folder_);
    while (const dirent* entry = ::readdir(folder_)) {
        const pid_t pid = processNumber(entry->d_name);
        if (pid <= 0) continue;
        if (const auto* editor = editorNamed(programName(::dirfd(folder_), pid, path)))
            found_.push_back({.pid = pid, .editor = editor});
    }
}

/// Begins to watch a new process; without an editor it has ended already.
bool EditorProcesses::begin(Process& process) {
    const auto descriptor = static_cast<int>(::syscall(SYS_pidfd_open, process.pid, 0));
    if (descriptor < 0) {
        if (errno == ESRCH) process.editor = nullptr;
        return process.editor;
    }
    process.end.reset(new End{Descriptor(descriptor),
                              ReadableWatch(descriptor, [this, pid = process.pid] { noteEnd(pid); })});
    return true;
}

void EditorProcesses::noteEnd(pid_t pid) {
    std::erase_if(known_, [&](const Process& process) { return process.pid == pid; });
    changed_();
}

std::string EditorProcesses::programOf(pid_t pid) const {
    std::array<char, maxPath> path{};
    return folder_ && pid > 0 ? std::string(programName(::dirfd(folder_), pid, path)) : std::string();
}

}  // namespace orbinex
