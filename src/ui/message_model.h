#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "app/app_relocation_manager.h"
#include "app/reporting_url_opener.h"
#include "link/central_ble_manager.h"
#include "trust/trusted_device_store.h"
#include "ui/pairing_question.h"

namespace orbinex {

/// The message box that the main window shows, one at a time: a pairing before the offer to move the
/// program, that before the confirmation to forget an iPhone, that before what could not be opened, and that
/// before the link's alerts.
class MessageModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    /// New for every message.
    Q_PROPERTY(int serial READ serial NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// The first does what the message is about, the last does nothing but close it.
    Q_PROPERTY(QStringList buttons READ buttons NOTIFY changed)
    /// The first button takes something away.
    Q_PROPERTY(bool isDestructive READ isDestructive NOTIFY changed)
    /// A stray Return is not to answer it.
    Q_PROPERTY(bool needsCare READ needsCare NOTIFY changed)
    /// The title of a check box; empty for none.
    Q_PROPERTY(QString suppression READ suppression NOTIFY changed)

  public:
    struct Sources {
        CentralBLEManager& central;
        TrustedDeviceStore& trustStore;
        AppRelocationManager& relocation;
        PairingQuestion& pairing;
        ReportingUrlOpener& urls;
    };
    /// All must outlive the model.
    explicit MessageModel(const Sources& sources);

    [[nodiscard]] bool isShown() const { return message_.kind != Kind::none; }
    [[nodiscard]] int serial() const { return serial_; }
    [[nodiscard]] QString title() const { return message_.title; }
    [[nodiscard]] QString text() const { return message_.text; }
    [[nodiscard]] QStringList buttons() const { return message_.buttons; }
    [[nodiscard]] bool isDestructive() const { return message_.kind == Kind::forget; }
    [[nodiscard]] bool needsCare() const { return isDestructive() || message_.kind == Kind::pairing; }
    [[nodiscard]] QString suppression() const { return message_.suppression; }

    /// Asks whether the trusted iPhone with this id is to be forgotten; ignored when there is none.
    Q_INVOKABLE void askToForget(const QString& id);
    /// The answer to the message with that number; ignored when another one is shown by now.
    Q_INVOKABLE void answer(int serial, int button, bool isTicked);

  Q_SIGNALS:
    void changed();

  private:
    enum class Kind { none, pairing, relocation, forget, unopened, alert };
    struct Message {
        Kind kind = Kind::none;
        QString title;
        QString text;
        QStringList buttons;
        QString suppression;
        /// Tells alerts and questions of the same words apart.
        QString id;

        friend bool operator==(const Message&, const Message&) = default;
    };
    [[nodiscard]] Message wanted() const;
    void update();

    Sources sources_;
    std::optional<TrustedDevice> deviceToForget_;
    Message message_;
    int serial_ = 0;
    std::vector<Subscription> observers_;
};

}  // namespace orbinex
