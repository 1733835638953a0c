// What the bridge script prints: cut into two reads, made text, split into lines, and read.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "editor_bridge/bridge_lines.h"
#include "editor_bridge/script_line_reader.h"
#include "editor_bridge/session_edits.h"
#include "editor_bridge/timecode.h"
#include "require.h"

using namespace orbinex;

namespace {

void readTimecode(std::string_view line) {
    const auto parsed = parseTimecodeLine(line);
    if (!parsed) return;
    REQUIRE(!parsed->timecode.empty() && std::isfinite(parsed->fps));
    REQUIRE(!parsed->playheadFrame || *parsed->playheadFrame >= 1);
    REQUIRE(nominalFrameRate(parsed->fps) >= 1);
    if (const auto at = timecodeToFrames(parsed->timecode, parsed->fps)) {
        REQUIRE(at->frames >= 0);
        REQUIRE(framesToTimecode(at->frames, at->isDropFrame, parsed->fps).size() >= 11);
    }
}

void readTrack(std::string_view line, DAWSessionSnapshot& session) {
    const auto parsed = parseTrackLine(line);
    if (!parsed) return;
    REQUIRE(parsed->index >= 1 && parsed->totalTracks >= parsed->index);
    REQUIRE(parsed->volumeDB >= -96 && parsed->volumeDB <= 12);
    REQUIRE(parsed->voiceIsolationAmount >= 0 && parsed->voiceIsolationAmount <= 100);
    REQUIRE(std::isfinite(parsed->pan) && std::isfinite(parsed->dialogueLevelerGainDB));
    DAWTrackState track;
    readTrack(*parsed, findTrack(session, parsed->index), track);
    putTrack(track, session);
    REQUIRE(findAudioTrack(session, parsed->index) && *findAudioTrack(session, parsed->index) == track);
}

void readHeader(std::string_view line, DAWSessionSnapshot& session) {
    const auto parsed = parseHeaderLine(line);
    if (!parsed) return;
    REQUIRE(parsed->trackCount >= 1 && parsed->nodeCount >= 1);
    applyHeader(*parsed, session);
    REQUIRE(std::ranges::all_of(session.tracks, [&](const DAWTrackState& track) {
        return track.isMaster || track.index <= parsed->trackCount;
    }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView bytes(data, size);
    const std::size_t cut = size == 0 ? 0 : data[0] % (size + 1);
    ScriptLineReader reader;
    DAWSessionSnapshot session = DAWSessionSnapshot::placeholder();
    for (const ByteView piece : {bytes.first(cut), bytes.subspan(cut)}) {
        reader.take(piece, [&](std::string_view line) {
            REQUIRE(line.find('\n') == std::string_view::npos);
            readTimecode(line);
            readHeader(line, session);
            readTrack(line, session);
        });
    }
    REQUIRE(std::ranges::is_sorted(session.tracks, [](const DAWTrackState& a, const DAWTrackState& b) {
        return a.isMaster != b.isMaster ? b.isMaster : !a.isMaster && a.index < b.index;
    }));
    return 0;
}
