// What the script asks of the editor, and what it prints, on every kind of Lua.

#include <map>

#include <gmock/gmock.h>

#include "script_run.h"

namespace orbinex::test {
namespace {

using Lines = std::vector<std::string>;
using testing::ElementsAre;
using testing::MatchesRegex;
using testing::StartsWith;

class BridgeScript : public testing::TestWithParam<std::string> {
  protected:
    ScriptRun script{GetParam()};

    /// What it prints about this session, the playhead being at a frame.
    Lines linesOf(const EditorSession& session, std::int64_t frame = 86'450, int rounds = 1) {
        script.editor.open(session);
        script.editor.seek(frame);
        return script.run(rounds);
    }
};

TEST_P(BridgeScript, carriesOutEveryCommand) {
    const std::string clip = "clip(1, 1):SetProperty";
    const struct {
        const char* line;
        Lines calls;
    } rows[] = {
        {"PAGE|color", {R"(resolve:OpenPage("color"))"}},
        {"PAGE", {}},
        {"PAGE|", {}},
        {"TC|01:00:02:00", {R"(timeline:SetCurrentTimecode("01:00:02:00"))"}},
        {"LINK|0", {"timeline:SetClipsLinked(false)"}},
        {"LINK|x", {"timeline:SetClipsLinked(true)"}},
        {"LINK", {}},
        {"MUTE|2|0", {R"(timeline:SetTrackEnable("audio", 2, false))"}},
        {"MUTE|x|y", {R"(timeline:SetTrackEnable("audio", 1, true))"}},
        {"MUTE|2", {}},
        {"MUTE||2|0", {R"(timeline:SetTrackEnable("audio", 2, false))"}},
        {"LOCK|2|1", {R"(timeline:SetTrackLock("audio", 2, true))"}},
        {"LOCK|2|x", {R"(timeline:SetTrackLock("audio", 2, false))"}},
        {"VOL|1|-6.50", {clip + R"(("AudioVolume", -6.5))"}},
        {"VOL|1|loud", {clip + R"(("AudioVolume", 0))"}},
        {"VOL|2|-6", {}},
        {"VOL|77|-6", {}},
        {"VOL|-1|-6", {}},
        {"VOL|1|1e999", {clip + R"(("AudioVolume", 0))"}},
        {"PAN|1|-33.3|and more", {clip + R"(("AudioPan", -33.3))"}},
        {"VISO|1|1|80",
         {"timeline:SetVoiceIsolationState(1, {amount = 80, isEnabled = true})",
          clip + R"(("AudioVoiceIsolationEnabled", true))", clip + R"(("AudioVoiceIsolationAmount", 80))"}},
        {"VISO|2|0|x", {"timeline:SetVoiceIsolationState(2, {amount = 65, isEnabled = false})"}},
        {"DLEV|1|1|2.5",
         {clip + R"(("AudioDialogueLevelerEnabled", true))",
          clip + R"(("AudioDialogueLevelerOutputGain", 2.5))"}},
        {"CDL|2|1.1|1.2|1.3|0.1|0.2|0.3|0.9|1.5",
         {R"(video:SetCDL({NodeIndex = "2", Offset = "0.1000 0.2000 0.3000", Power = "0.9000 0.9000 0.9000", )"
          R"(Saturation = "1.500", Slope = "1.1000 1.2000 1.3000"}))"}},
        {"CDL",
         {R"(video:SetCDL({NodeIndex = "1", Offset = "0.0000 0.0000 0.0000", Power = "1.0000 1.0000 1.0000", )"
          R"(Saturation = "1.000", Slope = "1.0000 1.0000 1.0000"}))"}},
        {"CDL|1|inf|nan|-nan|-inf|1e999",
         {R"(video:SetCDL({NodeIndex = "1", Offset = "0.0000 0.0000 0.0000", Power = "1.0000 1.0000 1.0000", )"
          R"(Saturation = "1.000", Slope = "1.0000 1.0000 1.0000"}))"}},
        {"NEN|2|0", {"graph:SetNodeEnabled(2, false)"}},
        {"NEN|x|1", {"graph:SetNodeEnabled(1, true)"}},
        {"REFRESH", {}},
        {"mute|2|0", {}},
        {"os.exit(7)", {}},
        {"PAGE|\"); os.exit(7) --", {R"(resolve:OpenPage("\"); os.exit(7) --"))"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        script.editor.open(ScriptRun::session());
        script.editor.seek(86'450);
        script.command(std::string(row.line) + "\n");
        EXPECT_THAT(script.run(1), testing::SizeIs(testing::Ge(4U))) << "it goes on";
        EXPECT_EQ(script.editor.calls(), row.calls);
        EXPECT_FALSE(std::filesystem::exists(script.commandFile));
    }
}

TEST_P(BridgeScript, needsATimelineForMostCommands) {
    auto session = ScriptRun::session();
    session.timeline.reset();
    for (const bool hasProject : {true, false}) {
        session.hasProject = hasProject;
        script.editor.open(session);
        script.command(
            "TC|01:00:00:00\nLINK|0\nMUTE|1|0\nVOL|1|0\nVISO|1|1|1\nCDL\nNEN|1|1\nREFRESH\nPAGE|color\n");
        EXPECT_EQ(script.run(3), Lines{});
        EXPECT_EQ(script.editor.calls(), Lines{R"(resolve:OpenPage("color"))"});
    }
}

TEST_P(BridgeScript, aimsAtTheNearestClipBetweenTwo) {
    for (const auto& [frame, clip] : {std::pair{86'450, 1},
                                      {86'499, 1},
                                      {86'500, 1},
                                      {86'549, 1},
                                      {86'550, 1},
                                      {86'551, 2},
                                      {86'600, 2},
                                      {90'000, 2},
                                      {0, 1}}) {
        script.editor.open(ScriptRun::session());
        script.editor.seek(frame);
        script.command("VOL|1|-1\n");
        script.run(1);
        EXPECT_EQ(script.editor.calls(),
                  Lines{"clip(1, " + std::to_string(clip) + R"():SetProperty("AudioVolume", -1))"})
            << frame;
    }
}

TEST_P(BridgeScript, tellsOfTheTimelineAndItsTracks) {
    EXPECT_THAT(
        script.run(1),
        ElementsAre(
            "OXTC|01:00:02:02|24|RESOLVE 19.1|Reel 1|edit|1|86450", "OXHDR|2|1|Shot 12|3",
            "OXTRK|1|2|Dialogue|Take 1|STEREO|1|0|0.00|0.0|0|65|0|0.0|1|1_86400|86400|12|/media/take 1.wav",
            "OXTRK|2|2|Music|Empty|STEREO|1|0|0.00|0.0|0|65|0|0.0|0||0|0|"));
    EXPECT_EQ(linesOf(ScriptRun::session(), 86'550)[2],
              "OXTRK|1|2|Dialogue|[Take 1]|STEREO|1|0|0.00|0.0|0|65|0|0.0|0||0|0|");

    auto odd = ScriptRun::session();
    odd.version = "beta";
    odd.timeline = "A|B\nC";
    odd.rate = "29.97 DF";
    odd.page = "color";
    odd.videoClip.reset();
    // Not UTF-8, and such as UTF-8 allows none.
    odd.tracks = {{.name = "Caf\xE9 \xC3\xA9 \xED\xA0\x80",
                   .clips = {{.name = "Fade", .start = 0, .finish = 1'000'000, .kind = "Transition"},
                             {.name = "Title",
                              .start = 0,
                              .finish = 1'000'000,
                              .path = std::nullopt,
                              .volumeDB = std::nullopt},
                             {.name = "A|B",
                              .start = 0,
                              .finish = 1'000'000,
                              .path = "/a|b \xF0\x9F\x8E\xAC\xFF.wav",
                              .volumeDB = -3.25}},
                   .subtype = "5.1|film",
                   .isEnabled = false,
                   .isLocked = true},
                  {.name = ""}};
    EXPECT_THAT(
        linesOf(odd, 107'894),
        ElementsAre("OXTC|01:00:00;02|29.97 DF|RESOLVE 20|A/B C|color|1|108002", "OXHDR|2|1|Timeline Clip|1",
                    "OXTRK|1|2|Caf? \xC3\xA9 ???|A/B|5.1FILM|0|1|-3.25|0.0|0|65|0|0.0|1|1_0|0|0|/ab "
                    "\xF0\x9F\x8E\xAC?.wav",
                    "OXTRK|2|2|Audio 2|Empty|STEREO|1|0|0.00|0.0|0|65|0|0.0|0||0|0|"));

    auto large = ScriptRun::session();
    large.tracks.resize(64, large.tracks[0]);
    const auto lines = linesOf(large, 86'450, 8);
    ASSERT_EQ(lines.size(), 67U) << "the timecode, and with the tracks again";
    EXPECT_THAT(lines[66], StartsWith("OXTRK|64|64|Dialogue|Take 1|"));
}

/// Drop-frame timecodes are counted as if no number were left out.
TEST_P(BridgeScript, countsFramesAtEveryRate) {
    const struct {
        const char* rate;
        std::int64_t frame;
        const char* timecode;
        const char* counted;
    } rows[] = {
        {"23.976", 86'400, "01:00:00:00", "86400"}, {"60", 86'400, "00:24:00:00", "86400"},
        {"29.97", 86'400, "00:48:00:00", "86400"},  {"29.97 DF", 1'799, "00:00:59;29", "1799"},
        {"29.97 DF", 1'800, "00:01:00;02", "1802"}, {"29.97 DF", 17'982, "00:10:00;00", "18000"},
        {"59.94 DF", 3'600, "00:01:00;04", "3604"},
    };
    for (const auto& row : rows) {
        auto session = ScriptRun::session();
        session.rate = row.rate;
        EXPECT_EQ(linesOf(session, row.frame)[0], std::string("OXTC|") + row.timecode + "|" + row.rate +
                                                      "|RESOLVE 19.1|Reel 1|edit|1|" + row.counted);
    }
}

TEST_P(BridgeScript, tellsWhereItPlays) {
    script.editor.play(86'400, 1);
    const auto forward = script.run(40);
    EXPECT_THAT(forward.back(), StartsWith("OXTC|01:00:01:06|"));
    EXPECT_EQ(forward.size(), 34U) << "31 timecodes, and the tracks once";
    script.editor.play(86'400, -2);
    EXPECT_THAT(script.run(40).back(), StartsWith("OXTC|00:59:57:"));
}

TEST_P(BridgeScript, sparesTheEditor) {
    const auto callsIn = [](const std::string& line) {
        return line.starts_with("CALLS ") ? std::stoi(line.substr(6)) : 0;
    };
    auto session = ScriptRun::session();
    session.tellsCalls = true;
    int round = 0;
    for (const auto& line : linesOf(session, 86'450, 90)) {
        if (callsIn(line) == 0) continue;
        const bool isOrdinary = round % 15 != 0 && round % 18 != 0;
        EXPECT_EQ(callsIn(line) == 1, isOrdinary) << callsIn(line) << " calls in round " << round;
        ++round;
    }

    // So many clips that a look at all takes 6,500 calls, in an editor in which they would take 0.65 s.
    for (int i = 0; i < 50; ++i)
        session.tracks[1].clips.push_back(
            {.name = "Cut", .start = 86'400 + 40 * i, .finish = 86'440 + 40 * i});
    session.tracks.resize(32, session.tracks[1]);
    session.tracks[0] = session.tracks[1];
    session.callSeconds = 1e-4;
    script.editor.open(session);
    script.editor.play(86'400, 1);
    std::int64_t last = 86'400;
    int tracks = 0;
    for (const auto& line : script.run(300)) {
        EXPECT_LE(callsIn(line), 820) << line;
        if (line.starts_with("OXTRK|32|32|Music|Cut|")) ++tracks;
        if (!line.starts_with("OXTC|")) continue;
        const std::int64_t frame = std::stoll(line.substr(line.rfind('|') + 1));
        EXPECT_LE(frame - last, 4) << "the playhead seems to stand when nothing is told for 180 ms: " << line;
        last = frame;
    }
    EXPECT_GT(last, 86'700);
    EXPECT_GE(tracks, 7) << "each new clip is told";
}

/// What has been printed is flushed, so that it arrives also from a host that never ends.
TEST_P(BridgeScript, leavesNothingBehindInItsHost) {
    script.editor.play(86'400, 1);
    const auto lines =
        script.run(9,
                   "local wait, rounds = bmd.wait, 0\n"
                   "bmd.wait = function(seconds)\n  rounds = rounds + 1\n"
                   "  if rounds == 3 then os.execute('kill -KILL $PPID') end\n  wait(seconds)\nend\n");
    EXPECT_THAT(lines, ElementsAre(StartsWith("OXTC|"), StartsWith("OXHDR|"), StartsWith("OXTRK|1"),
                                   StartsWith("OXTRK|2"), StartsWith("OXTC|01:00:00:01")));
}

TEST_P(BridgeScript, printsOnlyWhatHasChanged) {
    EXPECT_EQ(script.run(100).size(), 4U);
    script.command("MUTE|2|0\n");
    EXPECT_THAT(script.run(40), ElementsAre(StartsWith("OXTC|"), StartsWith("OXHDR|"), StartsWith("OXTRK|1"),
                                            StartsWith("OXTRK|2|2|Music|Empty|STEREO|0|")));
}

TEST_P(BridgeScript, goesOnWithoutWhatAnOlderEditorLacksOrFailsAt) {
    const char* const functions[] = {"GetVersionString",
                                     "GetVoiceIsolationState",
                                     "SetVoiceIsolationState",
                                     "GetTrackSubType",
                                     "GetSourceStartFrame",
                                     "GetNodeGraph",
                                     "GetNumNodes",
                                     "GetProperty",
                                     "GetMediaPoolItem",
                                     "GetClipProperty",
                                     "SetProperty",
                                     "GetCurrentPage",
                                     "GetSetting",
                                     "GetType",
                                     "GetIsTrackLocked",
                                     "GetTrackName",
                                     "GetItemListInTrack",
                                     "GetCurrentVideoItem",
                                     "SetNodeEnabled",
                                     "OpenPage",
                                     "SetClipsLinked",
                                     "GetStart",
                                     "GetEnd",
                                     "GetName"};
    for (const std::string function : functions) {
        for (const bool fails : {false, true}) {
            SCOPED_TRACE(function + (fails ? " fails" : " is missing"));
            auto session = ScriptRun::session();
            (fails ? session.failing : session.missing).insert(function);
            script.command("VOL|1|-6\nVISO|1|1|80\nLINK|0\nNEN|1|1\nPAGE|color\nMUTE|2|0\n");
            const auto lines = linesOf(session);
            ASSERT_EQ(lines.size(), 4U);
            EXPECT_THAT(lines[1], StartsWith("OXHDR|2|0|"));
            EXPECT_THAT(script.editor.calls(),
                        testing::Contains(R"(timeline:SetTrackEnable("audio", 2, false))"));
        }
    }
    auto session = ScriptRun::session();
    session.missing = {"GetIsTrackEnabled"};
    EXPECT_THAT(linesOf(session)[3], StartsWith("OXTRK|2|2|Music|Empty|STEREO|1|")) << "not shown as muted";
    session.missing.clear();
    session.failing = {"GetCurrentTimecode"};
    EXPECT_THAT(linesOf(session), ElementsAre(StartsWith("OXHDR|"), StartsWith("OXTRK|1|2|Dialogue|[Take 1]"),
                                              StartsWith("OXTRK|2")));
}

/// Gives something strange for one call in twenty rounds, for each call in its turn, with commands waiting
/// all the time.
constexpr const char* oneStrangeCall = R"lua(
local calls, strangeOne, rounds = 0, 1, 0
local guarded
local function guard(object)
  return setmetatable({}, {__index = function(_, name)
    local run = object[name]
    return run and function(_, ...)
      calls = calls + 1
      if calls == strangeOne then return strange() end
      return guarded(run(object, ...))
    end
  end})
end
function guarded(value)
  if type(value) ~= "table" then return value end
  if getmetatable(value) then return guard(value) end
  local copy = {}
  for key, item in pairs(value) do copy[key] = guarded(item) end
  return copy
end
local function giveCommands()
  local file = io.open(commandPath, "w")
  file:write("VOL|1|-3\nPAN|1|5\nVISO|1|1|80\nDLEV|1|1|2\nCDL\nNEN|1|1\nMUTE|2|0\nPAGE|edit\nTC|01:00:02:02\nREFRESH\n")
  file:close()
end
local scriptapp, wait = bmd.scriptapp, bmd.wait
bmd.scriptapp = function(name) return guard(scriptapp(name)) end
bmd.wait = function(seconds)
  rounds = rounds + 1
  if rounds % 20 == 0 then
    if calls < strangeOne then print("EVERY CALL") os.exit(0) end
    calls, strangeOne = 0, strangeOne + 1
    giveCommands()
  end
  wait(seconds)
end
giveCommands()
)lua";

TEST_P(BridgeScript, goesOnWhateverOneCallGives) {
    for (const std::string value :
         {"error({})", "nil", "false", "true", "{}", "{1, 2}", "0.5", "-7", "1/0", "0/0", "1e15",
          R"("a|b\n\0\255c")", R"(string.rep("9", 400) .. ":00:00:00")"}) {
        SCOPED_TRACE(value);
        script.editor.open(ScriptRun::session());
        script.editor.seek(86'450);
        auto lines = script.run(100'000, "local function strange() return " + value + " end\n" +
                                             "local commandPath = \"" + script.commandFile.string() + "\"\n" +
                                             oneStrangeCall);
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.back(), "EVERY CALL");
        lines.pop_back();
        EXPECT_THAT(lines, testing::Each(testing::AnyOf(MatchesRegex(R"(OXTC(\|[^|]*){6}\|[0-9]+)"),
                                                        MatchesRegex(R"(OXHDR(\|[^|]*){4})"),
                                                        MatchesRegex(R"(OXTRK(\|[^|]*){18})"))));
        const auto usual = script.run(1);
        ASSERT_EQ(usual.size(), 4U);
        const std::map<char, std::string> tracks{{'1', usual[2]}, {'2', usual[3]}};
        std::map<char, std::string> last;
        for (const auto& line : lines)
            if (line.starts_with("OXTRK|1|2|") || line.starts_with("OXTRK|2|2|")) last[line[6]] = line;
        EXPECT_EQ(last, tracks) << "it has recovered";
    }
}

TEST_P(BridgeScript, endsWithoutAnEditor) {
    script.editor.quit();
    EXPECT_EQ(script.run(50), Lines{});
}

TEST_P(BridgeScript, endsWhenTheEditorHasGoneAndItsHostHasNot) {
    auto session = ScriptRun::session();
    session.failing = {"GetProjectManager"};
    script.editor.open(session);
    const std::string quitAtOnce =
        "local connect, wait = bmd.scriptapp, bmd.wait\n"
        "bmd.wait = function() print('WAITED') wait(0) end\n";
    EXPECT_THAT(script.run(3, quitAtOnce), testing::Contains("WAITED")) << "it is only failing";
    EXPECT_EQ(script.run(3, quitAtOnce + "local asked = false\nbmd.scriptapp = function(name)\n"
                                         "  if asked then return nil end\n"
                                         "  asked = true\n  return connect(name)\nend\n"),
              Lines{});
}

TEST_P(BridgeScript, findsTheCommandsThatWaitedForIt) {
    script.command("MUTE|2|0\n");
    script.command("LOCK|2|1\n");
    script.run(1);
    script.command("MUTE|2|1\n");
    const auto lines = script.run(1);
    EXPECT_EQ(script.editor.calls(), (Lines{R"(timeline:SetTrackEnable("audio", 2, false))",
                                            R"(timeline:SetTrackLock("audio", 2, true))",
                                            R"(timeline:SetTrackEnable("audio", 2, true))"}));
    EXPECT_THAT(lines.back(), StartsWith("OXTRK|2|2|Music|Empty|STEREO|1|1|"))
        << "what was done before still holds";
}

TEST_P(BridgeScript, leavesNoGlobalBehind) {
    script.command("VOL|1|-6\nVISO|1|1|80\nCDL\nNEN|1|1\nPAGE|color\nREFRESH\n");
    const auto lines =
        script.run(40,
                   "setmetatable(_G, {__newindex = function(_, name) print('GLOBAL ' .. name) end, "
                   "__index = function(_, name) print('UNKNOWN ' .. name) end})\n");
    EXPECT_THAT(lines,
                testing::Each(testing::Not(testing::AnyOf(StartsWith("GLOBAL"), StartsWith("UNKNOWN")))));
    EXPECT_FALSE(lines.empty());
}

INSTANTIATE_TEST_SUITE_P(OnBothKindsOfLua, BridgeScript, testing::ValuesIn(scriptHosts()),
                         [](const auto& host) {
                             return std::filesystem::path(host.param).filename().string();
                         });

}  // namespace
}  // namespace orbinex::test
