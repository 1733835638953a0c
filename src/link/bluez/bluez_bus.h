#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <list>
#include <memory>
#include <optional>

#include "base/main_queue.h"
#include "link/bluez/bluez_errors.h"
#include "link/bluez/bluez_objects.h"

namespace orbinex {

/// The conversation with bluetoothd: calls that never wait and never stay unanswered, and its signals, from
/// whichever process owns its name at present. Signals and answers of a process that is gone are not heard.
class BluezBus final : public QObject {
    Q_OBJECT
  public:
    using Delay = MainQueue::Delay;
    /// The answer's arguments, or what went wrong.
    struct Reply {
        QVariantList arguments;
        QString signature;
        std::optional<BluezError> error;
    };
    using Completion = std::function<void(const Reply&)>;

    /// For calls that bluetoothd answers out of its head.
    static constexpr std::chrono::seconds ordinaryLimit{10};

    BluezBus(MainQueue& queue, const QDBusConnection& connection);
    ~BluezBus() override;

    /// Calls one of bluetoothd's methods. `done` is called once, later, with an error of the bus when there
    /// is no answer within `limit`; never when bluetoothd goes away first, which `onOwnerChanged` tells.
    void call(const QString& path, const char* interface, const char* method, const QVariantList& arguments,
              Delay limit, Completion done);
    /// Nobody waits for the answers to earlier calls any more.
    void forgetCalls() { pending_.clear(); }
    /// Whether bluetoothd is running, as far as the bus has told.
    [[nodiscard]] bool isOwned() const { return !owner_.isEmpty(); }
    /// True when the message was sent by the bluetoothd that is running.
    [[nodiscard]] bool isFromOwner(const QDBusMessage& message) const;
    [[nodiscard]] QDBusConnection connection() const { return connection_; }

    /// Begins to listen. The handlers below must be set before.
    void start();
    void stop();

    /// Its process has come, changed or gone; called at least once, and only then.
    std::function<void()> onOwnerChanged;
    /// A call was not answered within its limit; called after the call's own completion.
    std::function<void()> onSilence;
    std::function<void(const QString& path, const BluezInterfaces&)> onInterfacesAdded;
    std::function<void(const QString& path, const QStringList&)> onInterfacesRemoved;
    std::function<void(const QString& path, const QString& interface, const QVariantMap& changed,
                       const QStringList& invalidated)>
        onPropertiesChanged;

  private Q_SLOTS:
    void interfacesAdded(const QDBusMessage& message);
    void interfacesRemoved(const QDBusMessage& message);
    void propertiesChanged(const QDBusMessage& message);
    void busGone();

  private:
    struct Pending {
        std::unique_ptr<QDBusPendingCallWatcher> watcher;
        Timer limit;
        Completion done;
    };
    using PendingList = std::list<Pending>;

    void askForOwner();
    void setOwner(const QString& owner);
    void listen(bool isOn);
    void finish(PendingList::iterator pending, const Reply& reply);

    MainQueue& queue_;
    QDBusConnection connection_;
    QDBusServiceWatcher watcher_;
    std::unique_ptr<QDBusPendingCallWatcher> ownerQuestion_;
    QString owner_;
    bool isStarted_ = false;
    bool isOwnerKnown_ = false;
    PendingList pending_;
};

}  // namespace orbinex
