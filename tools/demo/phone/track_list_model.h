#pragma once

#include <QAbstractListModel>
#include <vector>

#include "phone_session.h"

namespace orbinex::demo {

/// One strip of the mixer, as it is shown.
struct Strip {
    std::int64_t index = 0;
    QString name;
    bool isMuted = false;
    bool isSolo = false;
    bool isSelected = false;
    /// 0 to 1 from bottom to top.
    double fader = 0;
    /// Such as "-6.0".
    QString volume;
    /// On the scale of meters, 0 to 1.
    double level = 0;
    double hold = 0;
    bool isClipping = false;

    friend bool operator==(const Strip&, const Strip&) = default;
};

/// The strip of a track of the session.
[[nodiscard]] Strip stripOf(const PhoneSession& session, const DAWTrackState& track);

/// The strips in their order.
class TrackListModel final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    [[nodiscard]] int count() const { return static_cast<int>(strips_.size()); }
    /// Tells of what differs.
    void show(std::vector<Strip> strips);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  Q_SIGNALS:
    void countChanged();

  private:
    enum Role {
        trackIndexRole = Qt::UserRole,
        nameRole,
        isMutedRole,
        isSoloRole,
        isSelectedRole,
        faderRole,
        volumeRole,
        levelRole,
        holdRole,
        isClippingRole,
    };

    std::vector<Strip> strips_;
};

}  // namespace orbinex::demo
