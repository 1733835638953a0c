#pragma once

namespace orbinex {

enum class ActivationPolicy {
    regular,    ///< the program's windows stand in the task bar and the window switcher
    accessory,  ///< they do not; the tray icon leads to them
};

/// The program as the desktop shows it. Whatever shows its windows implements this. Main thread only.
class ApplicationPresence {
  public:
    ApplicationPresence() = default;
    ApplicationPresence(const ApplicationPresence&) = delete;
    ApplicationPresence& operator=(const ApplicationPresence&) = delete;
    virtual ~ApplicationPresence() = default;

    [[nodiscard]] virtual ActivationPolicy activationPolicy() const = 0;
    /// Holds for the windows that are there and for those to come.
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Makes the program the active one, whichever is it now. Without a window that is seen nothing happens.
    virtual void activate() = 0;
    /// Raises the first visible main window and gives it the keyboard; nothing when there is none.
    virtual void bringVisibleWindowToFront() = 0;
};

}  // namespace orbinex
