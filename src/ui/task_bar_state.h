#pragma once

#include <QWindow>

namespace orbinex {

/// Takes a window out of the task bar, the pager and the window switcher, or puts it back. Does nothing where
/// the platform is not X11.
void setSkipsTaskBar(QWindow& window, bool isSkipped);

}  // namespace orbinex
