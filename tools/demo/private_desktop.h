#pragma once

#include <QProcessEnvironment>
#include <memory>
#include <string>

#include "child_process.h"
#include "desktop_settings.h"
#include "event_loop.h"
#include "private_display.h"

namespace orbinex::demo {

/// A desktop of the demo's own on its private display: a window manager, a tray and a text editor. Nothing of
/// the user's is read, written or shown on. All of it ends with this object.
class PrivateDesktop {
  public:
    /// The display must outlive the desktop. Throws Ended when its folder cannot be written.
    PrivateDesktop(EventLoop& loop, const PrivateDisplay& display);

    /// Such as ":7".
    [[nodiscard]] const std::string& display() const { return display_.name(); }
    [[nodiscard]] const WindowPlaces& places() const { return places_; }
    /// Of the display, and of what runs on it.
    [[nodiscard]] const QProcessEnvironment& environment() const { return environment_; }

    /// These return at once; what they start is seen on the screen later.
    void startWindowManager();
    /// For icons of programs, in a corner.
    void startTray();
    void startEditor();
    void quitEditor() { editor_.reset(); }
    /// A sound server with one output, that plays to nobody.
    void startSoundServer();
    /// The window of a stand-in for an editing application, whose state lies in that folder.
    void startEditingApplication(const std::string& folder, double fps);
    void quitEditingApplication() { editingApplication_.reset(); }

    /// Sets the keyboard's layout and variant, in words of the X keyboard extension; false when that fails.
    bool setKeyboardLayout(const char* layout, const char* variant);
    bool setBackground(const char* colour);
    /// Runs a program on this desktop to its end; false when it fails.
    bool run(const char* program, const QStringList& arguments);
    /// Writes what the screen shows to a PNG file.
    bool takePicture(const std::string& file);

    /// The address of the sound server.
    [[nodiscard]] std::string soundServer() const;
    /// The volume of its output in percent, as its own tool tells it; empty when it does not.
    [[nodiscard]] std::string outputVolume();
    /// A place in the folder of this desktop.
    [[nodiscard]] std::string place(const char* name) const { return path(name).toStdString(); }

    /// What the editor has saved, empty before.
    [[nodiscard]] std::string savedText() const;

  private:
    [[nodiscard]] QString path(const char* name) const;

    EventLoop& loop_;
    const PrivateDisplay& display_;
    const WindowPlaces& places_;
    QProcessEnvironment environment_;
    // In the order in which they come; they go the other way round.
    std::unique_ptr<ChildProcess> windowManager_;
    std::unique_ptr<ChildProcess> tray_;
    std::unique_ptr<ChildProcess> editor_;
    std::unique_ptr<ChildProcess> soundServer_;
    std::unique_ptr<ChildProcess> editingApplication_;
};

}  // namespace orbinex::demo
