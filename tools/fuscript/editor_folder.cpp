#include "editor_folder.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <sstream>
#include <utility>

namespace orbinex {

namespace {

std::int64_t nanosecondsNow() {
    // CLOCK_MONOTONIC, which the host reads too.
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::string literal(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\' || byte < 0x20) {
            // Three digits: the next character may be one.
            result += '\\' + std::string(3 - std::to_string(byte).size(), '0') + std::to_string(byte);
        } else {
            result += c;
        }
    }
    return result + '"';
}

const char* literal(bool value) {
    return value ? "true" : "false";
}

std::string literal(const std::set<std::string>& names) {
    std::string result = "{";
    for (const auto& name : names) result += "[" + literal(name) + "] = true, ";
    return result + "}";
}

std::string literal(const EditorClip& clip) {
    std::ostringstream text;
    text << "{name = " << literal(clip.name) << ", start = " << clip.start << ", finish = " << clip.finish
         << ", sourceStart = " << clip.sourceStart << ", kind = " << literal(clip.kind);
    if (clip.path) text << ", path = " << literal(*clip.path);
    if (clip.volumeDB) text << ", properties = {AudioVolume = " << *clip.volumeDB << "}";
    text << "}";
    return text.str();
}

std::string literal(const EditorTrack& track) {
    std::string text = "{name = " + literal(track.name) + ", subtype = " + literal(track.subtype) +
                       ", isEnabled = " + literal(track.isEnabled) +
                       ", isLocked = " + literal(track.isLocked) + ", clips = {\n";
    for (const auto& clip : track.clips) text += "    " + literal(clip) + ",\n";
    return text + "  }}";
}

std::string literal(const EditorSession& session) {
    std::ostringstream text;
    text << "{\n  version = " << literal(session.version) << ",\n  rate = " << literal(session.rate)
         << ",\n  page = " << literal(session.page) << ",\n  hasProject = " << literal(session.hasProject)
         << ",\n  project = " << literal(session.project) << ",\n  nodes = " << session.nodes
         << ",\n  callSeconds = " << session.callSeconds
         << ",\n  tellsCalls = " << literal(session.tellsCalls) << ",\n";
    if (session.timeline) text << "  timeline = " << literal(*session.timeline) << ",\n";
    if (session.videoClip) text << "  videoClip = " << literal(*session.videoClip) << ",\n";
    text << "  missing = " << literal(session.missing) << ",\n  failing = " << literal(session.failing)
         << ",\n  tracks = {\n";
    for (const auto& track : session.tracks) text << "  " << literal(track) << ",\n";
    text << "  },\n}\n";
    return text.str();
}

}  // namespace

EditorFolder::EditorFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
}

/// Put in place at once, as the host may read at any moment.
void EditorFolder::write(const char* name, const std::string& content) const {
    const auto temporary = folder_ / (std::string(name) + ".new");
    std::ofstream(temporary) << content;
    std::filesystem::rename(temporary, folder_ / name);
}

void EditorFolder::open(const EditorSession& session) {
    forgetCalls();
    // A comment of its own, so that a host sees that it is new even if nothing in it is.
    write("session.lua", literal(session) + "-- " + std::to_string(nanosecondsNow()) + "\n");
}

void EditorFolder::quit() {
    std::filesystem::remove(folder_ / "session.lua");
}

void EditorFolder::seek(std::int64_t frame) {
    play(frame, 0);
}

void EditorFolder::play(std::int64_t frame, double speed) {
    std::ostringstream text;
    text << frame << ' ' << speed << ' ' << nanosecondsNow() << '\n';
    write("transport", text.str());
}

EditorFolder::Transport EditorFolder::transport() const {
    std::ifstream file(folder_ / "transport");
    Transport transport;
    const bool isRead = static_cast<bool>(file >> transport.frame >> transport.speed >> transport.anchor);
    return isRead ? transport : Transport();
}

double EditorFolder::speed() const {
    return transport().speed;
}

std::int64_t EditorFolder::frame(double fps) const {
    const auto [frame, speed, anchor] = transport();
    const double elapsed = static_cast<double>(nanosecondsNow() - anchor) / 1e9;
    return std::max<std::int64_t>(0, frame + static_cast<std::int64_t>(std::floor(elapsed * fps * speed)));
}

std::vector<std::string> EditorFolder::calls() const {
    std::ifstream file(folder_ / "calls");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

void EditorFolder::forgetCalls() {
    std::filesystem::remove(folder_ / "calls");
}

}  // namespace orbinex
