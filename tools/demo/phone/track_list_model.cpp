#include "track_list_model.h"

#include <utility>

#include "base/numbers.h"
#include "editor_bridge/fader_law.h"
#include "protocol/meter_scale.h"

namespace orbinex::demo {

namespace {

QString volumeText(double dB) {
    return dB <= faderFloorDB ? QStringLiteral("–∞") : QString::fromStdString(formatFixed(dB, 1));
}

}  // namespace

Strip stripOf(const PhoneSession& session, const DAWTrackState& track) {
    Strip strip{.index = track.index,
                .name = QString::fromStdString(track.name),
                .isMuted = track.isMuted,
                .isSolo = track.isSolo,
                .isSelected = track.index == session.selectedTrack,
                .fader = faderDBToScalar(track.volumeDB),
                .volume = volumeText(track.volumeDB)};
    if (const auto* meter = session.meter(track.index)) {
        strip.level = meterPosition(meter->peakDBFS);
        strip.hold = meterPosition(meter->peakHoldDBFS);
        strip.isClipping = meter->isClipping;
    }
    return strip;
}

void TrackListModel::show(std::vector<Strip> strips) {
    if (strips.size() != strips_.size()) {
        beginResetModel();
        strips_ = std::move(strips);
        endResetModel();
        Q_EMIT countChanged();
        return;
    }
    for (std::size_t i = 0; i < strips.size(); ++i) {
        if (strips[i] == strips_[i]) continue;
        strips_[i] = std::move(strips[i]);
        const auto row = index(static_cast<int>(i));
        Q_EMIT dataChanged(row, row);
    }
}

int TrackListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant TrackListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Strip& strip = strips_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case trackIndexRole: return static_cast<int>(strip.index);
        case nameRole: return strip.name;
        case isMutedRole: return strip.isMuted;
        case isSoloRole: return strip.isSolo;
        case isSelectedRole: return strip.isSelected;
        case faderRole: return strip.fader;
        case volumeRole: return strip.volume;
        case levelRole: return strip.level;
        case holdRole: return strip.hold;
        case isClippingRole: return strip.isClipping;
        default: return {};
    }
}

QHash<int, QByteArray> TrackListModel::roleNames() const {
    return {{trackIndexRole, "trackIndex"},
            {nameRole, "name"},
            {isMutedRole, "isMuted"},
            {isSoloRole, "isSolo"},
            {isSelectedRole, "isSelected"},
            {faderRole, "fader"},
            {volumeRole, "volume"},
            {levelRole, "level"},
            {holdRole, "hold"},
            {isClippingRole, "isClipping"}};
}

}  // namespace orbinex::demo
