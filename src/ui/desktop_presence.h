#pragma once

#include <QObject>
#include <QWindow>
#include <string>
#include <utility>

#include "app/activation_notifier.h"
#include "app/application_presence.h"

namespace orbinex {

/// The program's windows as the desktop shows them: in the task bar or not, in front or not. Main windows are
/// those whose object name begins with "main". On X11 it is the window manager that carries this out; on
/// other systems windows are always in the task bar.
class DesktopPresence final : public ApplicationPresence {
  public:
    /// Needs a QGuiApplication.
    DesktopPresence();

    /// Tells when one of the program's windows becomes the active one.
    [[nodiscard]] ActivationNotifier& activation() { return activation_; }
    /// To be called before a main window is shown: the policy holds for it too.
    void prepare(QWindow& window) const;
    /// The person has launched the program once more, and the launcher gave this token: the main window that
    /// is brought to the front next comes there because of that. Empty for none.
    void setStartupToken(std::string token) { startupToken_ = std::move(token); }

    /// For a program that takes this one's place: its window comes to the front by this token. Empty where
    /// the person has done nothing in a window of this one.
    [[nodiscard]] std::string launchToken() const;

    [[nodiscard]] ActivationPolicy activationPolicy() const override { return policy_; }
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void bringVisibleWindowToFront() override;

  private:
    ActivationPolicy policy_ = ActivationPolicy::regular;
    std::string startupToken_;
    ActivationNotifier activation_;
    /// The connection to the application ends with it.
    QObject context_;
};

}  // namespace orbinex
