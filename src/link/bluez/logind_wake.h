#pragma once

#include <QDBusConnection>
#include <QObject>

#include "link/wake_notifier.h"

namespace orbinex {

/// Wakes as logind tells of them (PrepareForSleep, org.freedesktop.login1(5)). Without logind there are none.
class LogindWake final : public QObject, public WakeNotifier {
    Q_OBJECT
  public:
    explicit LogindWake(QDBusConnection connection);

  private Q_SLOTS:
    void prepareForSleep(bool isGoingToSleep);
};

}  // namespace orbinex
