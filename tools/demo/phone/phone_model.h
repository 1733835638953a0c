#pragma once

#include <QObject>
#include <QPointF>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <functional>
#include <span>

#include "phone_session.h"
#include "track_list_model.h"
#include "trackpad.h"

namespace orbinex::demo {

/// The phone, for its QML files, as `phone`: what it was told, and the packets for what is done on it.
class PhoneModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY linkChanged)
    Q_PROPERTY(bool isOn READ isOn NOTIFY linkChanged)
    Q_PROPERTY(QString linkWord READ linkWord NOTIFY linkChanged)
    Q_PROPERTY(QString computer READ computer NOTIFY linkChanged)
    Q_PROPERTY(QString timecode READ timecode NOTIFY telemetryChanged)
    Q_PROPERTY(QString speed READ speed NOTIFY telemetryChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY telemetryChanged)
    Q_PROPERTY(QString timeline READ timeline NOTIFY telemetryChanged)
    Q_PROPERTY(QString page READ page NOTIFY telemetryChanged)
    Q_PROPERTY(orbinex::demo::TrackListModel* tracks READ tracks CONSTANT)
    /// The one strip of the master.
    Q_PROPERTY(orbinex::demo::TrackListModel* master READ master CONSTANT)
    Q_PROPERTY(QString selectedName READ selectedName NOTIFY tracksChanged)
    /// Heights from 0 to 1, low frequencies first; empty while nothing is heard.
    Q_PROPERTY(QVariantList spectrum READ spectrum NOTIFY metersChanged)
    /// Heights from 0 to 1, oldest first.
    Q_PROPERTY(QVariantList history READ history NOTIFY metersChanged)
    /// Where the finger is on the trackpad, 0 to 1 each way.
    Q_PROPERTY(QPointF finger READ finger NOTIFY fingerChanged)
    Q_PROPERTY(bool isTouched READ isTouched NOTIFY fingerChanged)
    /// The end of what was typed without the field.
    Q_PROPERTY(QString typed READ typed NOTIFY typedChanged)

  public:
    struct Air {
        std::function<void(const DecodedPacket&)> input;
        std::function<void(const DAWCommand&)> command;
    };
    explicit PhoneModel(Air air);

    // From the computer
    void setLink(PhoneSession::Link link);
    void receive(const ControlMessage& message);
    /// Shows what the phone has sent otherwise.
    void showSent(const DecodedPacket& packet);

    // The trackpad: places in points within an area of that size
    Q_INVOKABLE void touch(const QPointF& at, const QSizeF& area, bool isRight);
    Q_INVOKABLE void moveTouch(const QPointF& to, const QSizeF& area);
    Q_INVOKABLE void holdTouch();
    Q_INVOKABLE void liftTouch();
    Q_INVOKABLE void cancelTouch();
    Q_INVOKABLE void scroll(const QPoint& angle);

    // The keyboard
    Q_INVOKABLE void typedInto(const QString& before, const QString& after);
    /// False for a key that types.
    Q_INVOKABLE bool pressKey(int key, int modifiers);

    // The mixer and the transport
    Q_INVOKABLE void moveFader(int track, double place);
    Q_INVOKABLE void setMuted(int track, bool isMuted);
    Q_INVOKABLE void setSolo(int track, bool isSolo);
    Q_INVOKABLE void select(int track);
    Q_INVOKABLE void playOrPause();
    Q_INVOKABLE void playFaster();
    Q_INVOKABLE void playBackward();
    Q_INVOKABLE void step(bool isForward);

    [[nodiscard]] bool isConnected() const { return session_.link == PhoneSession::Link::connected; }
    [[nodiscard]] bool isOn() const { return session_.link != PhoneSession::Link::off; }
    [[nodiscard]] QString linkWord() const;
    [[nodiscard]] QString computer() const { return QString::fromStdString(session_.computer); }
    [[nodiscard]] QString timecode() const { return QString::fromStdString(session_.telemetry.timecode); }
    [[nodiscard]] QString speed() const { return QString::fromStdString(session_.telemetry.playbackSpeed); }
    [[nodiscard]] bool isPlaying() const { return session_.telemetry.isPlaying; }
    [[nodiscard]] QString timeline() const { return QString::fromStdString(session_.telemetry.timelineName); }
    [[nodiscard]] QString page() const { return QString::fromStdString(session_.telemetry.pageName); }
    [[nodiscard]] TrackListModel* tracks() { return &tracks_; }
    [[nodiscard]] TrackListModel* master() { return &master_; }
    [[nodiscard]] QString selectedName();
    [[nodiscard]] QVariantList spectrum() const;
    [[nodiscard]] QVariantList history() const;
    [[nodiscard]] QPointF finger() const { return finger_; }
    [[nodiscard]] bool isTouched() const { return isTouched_; }
    [[nodiscard]] QString typed() const { return typed_; }

  Q_SIGNALS:
    void linkChanged();
    void telemetryChanged();
    void tracksChanged();
    void metersChanged();
    void fingerChanged();
    void typedChanged();

  private:
    void send(std::span<const DecodedPacket> packets);
    void strike(std::uint16_t keycode);
    void showTracks();
    void moveFinger(const QPointF& to);
    /// The finger goes away by itself, as it is not known when it is lifted.
    void leaveFinger();

    Air air_;
    PhoneSession session_;
    Trackpad trackpad_;
    TrackListModel tracks_;
    TrackListModel master_;
    QPointF finger_{0.5, 0.5};
    bool isTouched_ = false;
    QString typed_;
    QTimer fingerTimer_;
};

}  // namespace orbinex::demo
