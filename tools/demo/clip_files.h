#pragma once

#include <QStringList>
#include <functional>
#include <string>
#include <vector>

namespace orbinex::demo {

/// A clip whose sound is known.
struct DemoClip {
    /// Of its file; the extension tells the kind.
    std::string path;
    /// Highest sample; nothing is said of a voice.
    int peakDBFS = 0;
    /// Of the sound, where it has one.
    double frequency = 0;

    [[nodiscard]] std::string name() const { return path.substr(path.rfind('/') + 1); }
};

/// The media of the demo's timeline, of several kinds, each twenty seconds long.
struct ClipFiles {
    DemoClip speech;
    DemoClip sweep;
    DemoClip noise;
    DemoClip tone;
    DemoClip camera;
};

/// Runs a program; false when it fails.
using RunProgram = std::function<bool(const char* program, const QStringList& arguments)>;

/// Makes the files in that folder. Throws Ended when they cannot be made.
ClipFiles makeClipFiles(const std::string& folder, const RunProgram& run);

}  // namespace orbinex::demo
