#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>
#include <string>

#include <sys/types.h>

namespace orbinex::demo {

/// An X server of the demo's own, with a home folder for everything that runs on it. It comes before the
/// application object, which lives on it, and goes after it. Both end with this object.
class PrivateDisplay {
  public:
    enum class Screen {
        unseen,  ///< in memory only
        nested,  ///< in a window on the user's display
    };

    /// Blocks until the server accepts connections; throws Ended when it does not.
    explicit PrivateDisplay(Screen screen);
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;
    ~PrivateDisplay();

    /// Such as ":7".
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] Screen screen() const { return screen_; }
    [[nodiscard]] QString home() const { return home_.path(); }

    /// For programs on this display: nothing of the user's session but the way to the programs.
    [[nodiscard]] const QProcessEnvironment& inside() const { return inside_; }
    /// The user's own, as it was when this object was made.
    [[nodiscard]] const QProcessEnvironment& outside() const { return outside_; }
    /// Gives this process the environment of the display, and so none of the user's buses, themes and
    /// settings. Before the application object is made.
    void moveIn() const;

  private:
    void startServer();
    void endServer();

    Screen screen_;
    QTemporaryDir home_;
    QProcessEnvironment outside_;
    QProcessEnvironment inside_;
    pid_t server_ = -1;
    std::string name_;
};

}  // namespace orbinex::demo
