#pragma once

#include <QString>
#include <QTemporaryDir>

#include "support/child_process.h"

namespace orbinex::test {

/// A message bus of the test program's own. It ends with this object, or with the process.
class PrivateBus {
  public:
    /// Returns when the bus accepts connections; throws std::runtime_error when it cannot be started.
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const QString& address() const { return address_; }

  private:
    QTemporaryDir directory_;
    ChildProcess process_;
    QString address_;
};

}  // namespace orbinex::test
