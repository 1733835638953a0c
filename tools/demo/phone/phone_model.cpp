#include "phone_model.h"

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <utility>
#include <variant>

#include "editor_bridge/fader_law.h"
#include "keyboard.h"
#include "test_phone/gestures.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

/// Codes of the phone's keyboard (macOS virtual key codes).
constexpr std::uint16_t keyJ = 38;
constexpr std::uint16_t keyK = 40;
constexpr std::uint16_t keyL = 37;
constexpr std::uint16_t keyLeft = 123;
constexpr std::uint16_t keyRight = 124;

constexpr auto fingerTime = 500ms;
/// As much of what was typed as there is room for.
constexpr qsizetype shownCharacters = 36;
/// How far a finger moves on the trackpad for so many points of the pointer.
constexpr double pointsAcross = 900;

Trackpad::Time now() {
    return std::chrono::duration_cast<Trackpad::Time>(std::chrono::steady_clock::now().time_since_epoch());
}

QVariantList heights(const std::vector<std::uint8_t>& bytes) {
    QVariantList list;
    for (const auto byte : bytes) list.push_back(byte / 255.0);
    return list;
}

}  // namespace

PhoneModel::PhoneModel(Air air) : air_(std::move(air)) {
    fingerTimer_.setSingleShot(true);
    fingerTimer_.setInterval(fingerTime);
    connect(&fingerTimer_, &QTimer::timeout, this, [this] { leaveFinger(); });
    showTracks();
}

void PhoneModel::setLink(PhoneSession::Link link) {
    if (std::exchange(session_.link, link) == link) return;
    // What the computer told of is as good as forgotten once it is gone.
    if (link != PhoneSession::Link::connected) {
        session_ = PhoneSession();
        session_.link = link;
        showTracks();
        Q_EMIT telemetryChanged();
        Q_EMIT metersChanged();
    }
    Q_EMIT linkChanged();
}

void PhoneModel::receive(const ControlMessage& message) {
    switch (session_.apply(message)) {
        case PhoneSession::Change::nothing: break;
        case PhoneSession::Change::computer: Q_EMIT linkChanged(); break;
        case PhoneSession::Change::telemetry: Q_EMIT telemetryChanged(); break;
        case PhoneSession::Change::tracks: showTracks(); break;
        case PhoneSession::Change::meters:
            showTracks();
            Q_EMIT metersChanged();
            break;
    }
}

void PhoneModel::showTracks() {
    std::vector<Strip> strips;
    strips.reserve(session_.tracks.size());
    for (const auto& track : session_.tracks) strips.push_back(stripOf(session_, track));
    tracks_.show(std::move(strips));
    master_.show({stripOf(session_, session_.master)});
    Q_EMIT tracksChanged();
}

void PhoneModel::showSent(const DecodedPacket& packet) {
    if (const auto* move = std::get_if<DecodedPacket::MouseMove>(&packet.value)) {
        const auto within = [](double place) { return std::clamp(place, 0.08, 0.92); };
        moveFinger({within(finger_.x() + move->deltaX / pointsAcross),
                    within(finger_.y() + 2 * move->deltaY / pointsAcross)});
    } else if (const auto* text = std::get_if<DecodedPacket::Text>(&packet.value)) {
        if (!text->modifiers.isEmpty()) return;
        typed_ = (typed_ + QString::fromStdString(text->text)).simplified().right(shownCharacters);
        if (text->text.ends_with(' ')) typed_ += ' ';
        Q_EMIT typedChanged();
    } else if (!std::holds_alternative<DecodedPacket::KeyStroke>(packet.value)) {
        moveFinger(finger_);
    }
}

void PhoneModel::moveFinger(const QPointF& to) {
    finger_ = to;
    isTouched_ = true;
    fingerTimer_.start();
    Q_EMIT fingerChanged();
}

void PhoneModel::leaveFinger() {
    fingerTimer_.stop();
    isTouched_ = false;
    Q_EMIT fingerChanged();
}

// What is done on the phone

void PhoneModel::send(std::span<const DecodedPacket> packets) {
    for (const auto& packet : packets) air_.input(packet);
}

void PhoneModel::strike(std::uint16_t keycode) {
    send(test_phone::strike(keycode, {}));
}

void PhoneModel::touch(const QPointF& at, const QSizeF& area, bool isRight) {
    trackpad_.touch({at.x(), at.y()}, now(), isRight ? MouseButton::right : MouseButton::left);
    moveTouch(at, area);
}

void PhoneModel::moveTouch(const QPointF& to, const QSizeF& area) {
    send(trackpad_.move({to.x(), to.y()}));
    moveFinger({std::clamp(to.x() / area.width(), 0.0, 1.0), std::clamp(to.y() / area.height(), 0.0, 1.0)});
    fingerTimer_.stop();
}

void PhoneModel::holdTouch() {
    send(trackpad_.hold());
}

void PhoneModel::liftTouch() {
    send(trackpad_.lift(now()));
    leaveFinger();
}

void PhoneModel::cancelTouch() {
    send(trackpad_.cancel());
    leaveFinger();
}

void PhoneModel::scroll(const QPoint& angle) {
    send(Trackpad::scroll(angle.x(), angle.y()));
}

void PhoneModel::typedInto(const QString& before, const QString& after) {
    send(packetsOfTyping(before, after));
}

bool PhoneModel::pressKey(int key, int modifiers) {
    const auto packets = packetsOfKey(key, Qt::KeyboardModifiers(modifiers));
    send(packets);
    return !packets.empty();
}

void PhoneModel::moveFader(int track, double place) {
    auto* const state = session_.track(track);
    if (!state) return;
    const double dB = faderScalarToDB(place);
    if (state->volumeDB == dB) return;
    // The phone shows at once what it asks for; the answer may correct it.
    state->volumeDB = dB;
    showTracks();
    air_.command({DAWCommand::SetTrackVolume{track, dB}});
}

void PhoneModel::setMuted(int track, bool isMuted) {
    air_.command({DAWCommand::SetTrackMute{track, isMuted}});
}

void PhoneModel::setSolo(int track, bool isSolo) {
    air_.command({DAWCommand::SetTrackSolo{track, isSolo}});
}

void PhoneModel::select(int track) {
    air_.command({DAWCommand::SelectTrack{track}});
}

void PhoneModel::playOrPause() {
    strike(isPlaying() ? keyK : keyL);
}

void PhoneModel::playFaster() {
    strike(keyL);
}

void PhoneModel::playBackward() {
    strike(keyJ);
}

void PhoneModel::step(bool isForward) {
    strike(isForward ? keyRight : keyLeft);
}

// What it shows

QString PhoneModel::linkWord() const {
    switch (session_.link) {
        case PhoneSession::Link::off: return QStringLiteral("Bluetooth off");
        case PhoneSession::Link::waiting: return QStringLiteral("Ready to connect");
        case PhoneSession::Link::connected: return QStringLiteral("Connected");
    }
    return {};
}

QString PhoneModel::selectedName() {
    const auto* track = session_.track(session_.selectedTrack);
    return track ? QString::fromStdString(track->name) : QString();
}

QVariantList PhoneModel::spectrum() const {
    return heights(session_.meters.spectrumBands);
}

QVariantList PhoneModel::history() const {
    return heights(session_.meters.amplitudeHistory);
}

}  // namespace orbinex::demo
