#include "link/bluez/logind_wake.h"

namespace orbinex {

LogindWake::LogindWake(QDBusConnection connection) {
    // From any sender: to learn who logind is would mean to wait, and only logind may send this on the system
    // bus.
    connection.connect({}, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                       "b", this, SLOT(prepareForSleep(bool)));
}

void LogindWake::prepareForSleep(bool isGoingToSleep) {
    if (!isGoingToSleep) didWake.emit();
}

}  // namespace orbinex
