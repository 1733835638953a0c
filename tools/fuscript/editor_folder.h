#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orbinex {

/// A clip on an audio track of the modelled editor.
struct EditorClip {
    std::string name;
    /// Timeline frames; the last is the first that does not belong to it.
    std::int64_t start = 0;
    std::int64_t finish = 0;
    /// Of its media; without one it has no media pool item.
    std::optional<std::string> path = "/media/clip.wav";
    std::int64_t sourceStart = 0;
    /// Such as "Transition".
    std::string kind = "Audio";
    /// Volume, as the property that a clip has from the beginning; nothing for what is not audible.
    std::optional<double> volumeDB = 0.0;
};

struct EditorTrack {
    std::string name;
    std::vector<EditorClip> clips = {};
    std::string subtype = "stereo";
    bool isEnabled = true;
    bool isLocked = false;
};

/// What the modelled editor has open.
struct EditorSession {
    std::string version = "19.1.2";
    /// Without one, no timeline is open.
    std::optional<std::string> timeline = "Reel 1";
    /// As the editor tells it: "24", "23.976", "29.97 DF" ...
    std::string rate = "24";
    std::string page = "edit";
    bool hasProject = true;
    std::string project = "Film";
    /// The clip that is graded.
    std::optional<std::string> videoClip = "Shot 12";
    int nodes = 3;
    std::vector<EditorTrack> tracks = {};
    /// Functions of the interface that this version lacks, and such as fail.
    std::set<std::string> missing = {};
    std::set<std::string> failing = {};
    /// What each call of it takes, in virtual time.
    double callSeconds = 0;
    /// Prints "CALLS n" among what the script prints: so often did it call the editor in the round that ends.
    bool tellsCalls = false;
};

/// The folder through which a model of an editor is driven. The model is there, for its scripting host, while
/// the folder has a session.
class EditorFolder {
  public:
    /// Made if it is not there. Throws std::filesystem::filesystem_error.
    explicit EditorFolder(std::filesystem::path folder);

    [[nodiscard]] const std::filesystem::path& path() const { return folder_; }

    /// Begins anew with this session; what was done to an earlier one is forgotten.
    void open(const EditorSession& session);
    /// The editor quits.
    void quit();

    /// The playhead stands at a timeline frame, or plays from there at so many times the normal speed.
    void seek(std::int64_t frame);
    void play(std::int64_t frame, double speed);
    /// Where it is now, at this rate in frames a second.
    [[nodiscard]] std::int64_t frame(double fps) const;
    /// 0 while it stands.
    [[nodiscard]] double speed() const;

    /// What has been done to the editor, a line for each call that changes something, such as
    /// timeline:SetTrackEnable("audio", 2, false).
    [[nodiscard]] std::vector<std::string> calls() const;
    /// Forgets the calls, but not what they did while the host runs on.
    void forgetCalls();

  private:
    struct Transport {
        std::int64_t frame = 0;
        double speed = 0;
        /// When it was at that frame, in ns of the monotonic clock.
        std::int64_t anchor = 0;
    };
    [[nodiscard]] Transport transport() const;
    void write(const char* name, const std::string& content) const;

    std::filesystem::path folder_;
};

}  // namespace orbinex
