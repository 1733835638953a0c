#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <QString>
#include <QVariant>
#include <vector>

namespace orbinex {

/// The visible item with that object name below another; "a/b" is b within a. Null when there is none.
[[nodiscard]] QQuickItem* findItem(QQuickItem* root, const QString& path);
/// Everything visible below an item, parents before their children.
[[nodiscard]] std::vector<QQuickItem*> visibleItems(QQuickItem* root);

/// What a person does in one window and reads there. The events go to the window alone: the pointer and the
/// keyboard of the desktop take no part in it.
class Hand {
  public:
    /// The window must outlive the hand.
    explicit Hand(QQuickWindow& window) : window_(window) { settle(); }

    /// Lets layouts and bindings come to rest.
    void settle();
    [[nodiscard]] bool sees(const QString& path);
    /// The text of the item with that path; empty when it is not there.
    [[nodiscard]] QString text(const QString& path);
    [[nodiscard]] QVariant property(const QString& path, const char* name);
    /// Where the middle of the item is in the window, brought into view.
    [[nodiscard]] QPoint place(const QString& path);

    // These are false when there is nothing of that name.
    bool click(const QString& path);
    /// Presses in the middle of the item, moves by so many pixels in a few steps, and lets go.
    bool drag(const QString& path, const QPoint& by);
    /// Turns the wheel over the item, in eighths of a degree: 120 is a click, away from the person.
    bool turnWheel(const QString& path, const QPoint& angle);

    void press(const QString& path);
    /// Where the window is as it is: nothing is brought into view.
    void press(const QPoint& where);
    void moveTo(const QPoint& where);
    void letGo(const QPoint& where);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Holds a key down until it has been repeated that often.
    void hold(Qt::Key key, int repeats);
    /// Types into what has the focus; ASCII.
    void type(const QString& text);

  private:
    QQuickWindow& window_;
};

}  // namespace orbinex
