#include "protocol/daw_command.h"

#include <algorithm>

#include "protocol/text_record.h"

namespace orbinex {

namespace {

using Command = DAWCommand;
using Reader = TextRecordReader;
using Writer = TextRecordWriter;

/// A keyword, the fields that it needs (itself included) and how they are read.
struct Grammar {
    std::string_view keyword;
    std::size_t minimumFields;
    Command::Value (*read)(const Reader& fields);
};

Command::Value readColorCDL(const Reader& f) {
    return Command::SetColorCDL{f.integer(1, 1), f.decimal(2, 0), f.decimal(3, 0),
                                f.decimal(4, 0), f.decimal(5, 1), f.decimal(6, 1),
                                f.decimal(7, 1), f.decimal(8, 1), f.decimal(9, 1)};
}

// clang-format off
constexpr Grammar grammars[] = {
    {"SYNC", 1, [](const Reader&) -> Command::Value { return Command::RequestSnapshot{}; }},
    {"VOL", 3, [](const Reader& f) -> Command::Value { return Command::SetTrackVolume{f.integer(1, 1), f.decimal(2, 0)}; }},
    {"PAN", 3, [](const Reader& f) -> Command::Value { return Command::SetTrackPan{f.integer(1, 1), f.decimal(2, 0)}; }},
    {"MUTE", 3, [](const Reader& f) -> Command::Value { return Command::SetTrackMute{f.integer(1, 1), f.flag(2)}; }},
    {"SOLO", 3, [](const Reader& f) -> Command::Value { return Command::SetTrackSolo{f.integer(1, 1), f.flag(2)}; }},
    {"ARM", 3, [](const Reader& f) -> Command::Value { return Command::SetTrackArmOrLock{f.integer(1, 1), f.flag(2)}; }},
    {"VISO", 4, [](const Reader& f) -> Command::Value { return Command::SetVoiceIsolation{f.integer(1, 1), f.flag(2), f.integer(3, 50)}; }},
    {"DLEV", 4, [](const Reader& f) -> Command::Value { return Command::SetDialogueLeveler{f.integer(1, 1), f.flag(2), f.decimal(3, 0)}; }},
    {"LINK", 2, [](const Reader& f) -> Command::Value { return Command::SetClipsLinked{f.flag(1)}; }},
    {"PAGE", 2, [](const Reader& f) -> Command::Value { return Command::OpenPage{std::string(f.text(1))}; }},
    {"TC", 2, [](const Reader& f) -> Command::Value { return Command::SetTimecode{std::string(f.text(1))}; }},
    {"CDL", 10, readColorCDL},
    {"NEN", 3, [](const Reader& f) -> Command::Value { return Command::SetColorNodeEnabled{f.integer(1, 1), f.flag(2)}; }},
    {"SEL", 2, [](const Reader& f) -> Command::Value { return Command::SelectTrack{std::max<std::int64_t>(1, f.integer(1, 1))}; }},
};
// clang-format on

/// Writes what follows a command's keyword.
struct FieldWriter {
    Writer& out;

    void operator()(const Command::RequestSnapshot&) const { out.text("SYNC"); }
    void operator()(const Command::SetTrackVolume& c) const {
        out.text("VOL").integer(c.trackIndex).decimal(c.volumeDB);
    }
    void operator()(const Command::SetTrackPan& c) const {
        out.text("PAN").integer(c.trackIndex).decimal(c.pan);
    }
    void operator()(const Command::SetTrackMute& c) const {
        out.text("MUTE").integer(c.trackIndex).flag(c.isMuted);
    }
    void operator()(const Command::SetTrackSolo& c) const {
        out.text("SOLO").integer(c.trackIndex).flag(c.isSolo);
    }
    void operator()(const Command::SetTrackArmOrLock& c) const {
        out.text("ARM").integer(c.trackIndex).flag(c.isArmed);
    }
    void operator()(const Command::SetVoiceIsolation& c) const {
        out.text("VISO").integer(c.trackIndex).flag(c.enabled).integer(c.amount);
    }
    void operator()(const Command::SetDialogueLeveler& c) const {
        out.text("DLEV").integer(c.trackIndex).flag(c.enabled).decimal(c.gainDB);
    }
    void operator()(const Command::SetClipsLinked& c) const { out.text("LINK").flag(c.linked); }
    void operator()(const Command::OpenPage& c) const { out.text("PAGE").text(c.pageName); }
    void operator()(const Command::SetTimecode& c) const { out.text("TC").text(c.timecode); }
    void operator()(const Command::SetColorCDL& c) const {
        out.text("CDL").integer(c.nodeIndex);
        out.decimal(c.liftR).decimal(c.liftG).decimal(c.liftB);
        out.decimal(c.gainR).decimal(c.gainG).decimal(c.gainB);
        out.decimal(c.contrast).decimal(c.saturation);
    }
    void operator()(const Command::SetColorNodeEnabled& c) const {
        out.text("NEN").integer(c.nodeIndex).flag(c.enabled);
    }
    void operator()(const Command::SelectTrack& c) const { out.text("SEL").integer(c.trackIndex); }
};

}  // namespace

std::optional<DAWCommand> DAWCommand::decode(std::string_view text) {
    const Reader fields(text);
    const auto* const grammar =
        std::ranges::find(grammars, fields.text(0), [](const Grammar& each) { return each.keyword; });
    if (grammar == std::end(grammars) || fields.count() < grammar->minimumFields) return std::nullopt;
    return DAWCommand{grammar->read(fields)};
}

std::string DAWCommand::encode() const {
    Writer writer;
    std::visit(FieldWriter{writer}, value);
    return writer.record();
}

}  // namespace orbinex
