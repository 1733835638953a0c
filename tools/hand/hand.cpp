#include "hand/hand.h"

#include <QCoreApplication>
#include <QWheelEvent>
#include <QtTest/QTest>

namespace orbinex {

QQuickItem* findItem(QQuickItem* root, const QString& path) {
    const QString first = path.section('/', 0, 0);
    const QString rest = path.section('/', 1);
    for (QQuickItem* child : root->childItems()) {
        if (!child->isVisible()) continue;
        if (child->objectName() == first) {
            if (rest.isEmpty()) return child;
            if (QQuickItem* const found = findItem(child, rest)) return found;
        }
        if (QQuickItem* const found = findItem(child, path)) return found;
    }
    return nullptr;
}

std::vector<QQuickItem*> visibleItems(QQuickItem* root) {
    std::vector<QQuickItem*> all;
    for (QQuickItem* child : root->childItems()) {
        if (!child->isVisible()) continue;
        all.push_back(child);
        const auto below = visibleItems(child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

void Hand::settle() {
    // A grab polishes every item, which layouts wait for; what one of them does may set off another.
    for (int turn = 0; turn < 6; ++turn) {
        QCoreApplication::processEvents();
        static_cast<void>(window_.grabWindow());
    }
}

bool Hand::sees(const QString& path) {
    return findItem(window_.contentItem(), path) != nullptr;
}

QVariant Hand::property(const QString& path, const char* name) {
    QQuickItem* const item = findItem(window_.contentItem(), path);
    return item ? item->property(name) : QVariant();
}

QString Hand::text(const QString& path) {
    return property(path, "text").toString();
}

QPoint Hand::place(const QString& path) {
    QQuickItem* const item = findItem(window_.contentItem(), path);
    if (!item) return {};
    item->forceActiveFocus(Qt::TabFocusReason);
    settle();
    // The keyboard has brought it into view; what is done there is done by the pointer.
    if (item->metaObject()->indexOfProperty("focusReason") >= 0)
        item->setProperty("focusReason", QVariant::fromValue(Qt::MouseFocusReason));
    return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
}

bool Hand::click(const QString& path) {
    settle();
    if (!sees(path)) return false;
    QTest::mouseClick(&window_, Qt::LeftButton, {}, place(path));
    settle();
    return true;
}

bool Hand::drag(const QString& path, const QPoint& by) {
    settle();
    if (!sees(path)) return false;
    constexpr int steps = 8;
    const QPoint from = place(path);
    QTest::mousePress(&window_, Qt::LeftButton, {}, from);
    for (int step = 1; step <= steps; ++step) QTest::mouseMove(&window_, from + by * step / steps);
    QTest::mouseRelease(&window_, Qt::LeftButton, {}, from + by);
    settle();
    return true;
}

bool Hand::turnWheel(const QString& path, const QPoint& angle) {
    settle();
    if (!sees(path)) return false;
    const QPoint where = place(path);
    QWheelEvent event(where, window_.mapToGlobal(where), {}, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window_, &event);
    settle();
    return true;
}

void Hand::press(const QString& path) {
    press(place(path));
}

void Hand::press(const QPoint& where) {
    QTest::mousePress(&window_, Qt::LeftButton, {}, where);
}

void Hand::moveTo(const QPoint& where) {
    QTest::mouseMove(&window_, where);
}

void Hand::letGo(const QPoint& where) {
    QTest::mouseRelease(&window_, Qt::LeftButton, {}, where);
    settle();
}

void Hand::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&window_, key, modifiers);
    settle();
}

void Hand::hold(Qt::Key key, int repeats) {
    const auto send = [&](QEvent::Type type, bool isRepeat) {
        QKeyEvent event(type, key, Qt::NoModifier, {}, isRepeat);
        QCoreApplication::sendEvent(&window_, &event);
        settle();
    };
    send(QEvent::KeyPress, false);
    for (int repeat = 0; repeat < repeats; ++repeat) {
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
}

void Hand::type(const QString& text) {
    for (const QChar character : text) QTest::keyClick(&window_, character.toLatin1());
    settle();
}

}  // namespace orbinex
