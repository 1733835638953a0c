#pragma once

#include <QAbstractListModel>
#include <vector>

#include "ui/phone_row.h"

namespace orbinex {

/// Rows of iPhones for a list view. A row that stays is changed in place, so that the keyboard's focus and
/// what is drawn stay with it.
class PhoneListModel final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    enum Role {
        phoneIdRole = Qt::UserRole,
        nameRole,
        panelStatusRole,
        windowStatusRole,
        canConnectRole,
        canDisconnectRole,
        barsRole,
        signalLabelRole,
        moreLabelRole,
    };

    /// Rows with the same id must not occur twice.
    void setRows(const std::vector<PhoneRow>& rows);

    [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  Q_SIGNALS:
    void countChanged();

  private:
    void place(int position, const PhoneRow& row);

    std::vector<PhoneRow> rows_;
};

}  // namespace orbinex
