#include "ui/phone_list_model.h"

#include <algorithm>

#include "ui/interface_texts.h"

namespace orbinex {

void PhoneListModel::setRows(const std::vector<PhoneRow>& rows) {
    const int before = count();
    for (int i = count() - 1; i >= 0; --i) {
        const UUID id = rows_[static_cast<std::size_t>(i)].id;
        if (std::ranges::any_of(rows, [&](const PhoneRow& row) { return row.id == id; })) continue;
        beginRemoveRows({}, i, i);
        rows_.erase(rows_.begin() + i);
        endRemoveRows();
    }
    for (std::size_t i = 0; i < rows.size(); ++i) place(static_cast<int>(i), rows[i]);
    if (count() != before) Q_EMIT countChanged();
}

void PhoneListModel::place(int position, const PhoneRow& row) {
    const auto found = std::find_if(rows_.begin() + position, rows_.end(),
                                    [&](const PhoneRow& other) { return other.id == row.id; });
    const auto target = rows_.begin() + position;
    if (found == rows_.end()) {
        beginInsertRows({}, position, position);
        rows_.insert(target, row);
        endInsertRows();
        return;
    }
    if (found != target) {
        const int from = static_cast<int>(found - rows_.begin());
        beginMoveRows({}, from, from, {}, position);
        std::rotate(target, found, found + 1);
        endMoveRows();
    }
    if (*target == row) return;
    *target = row;
    Q_EMIT dataChanged(index(position), index(position));
}

int PhoneListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant PhoneListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const PhoneRow& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case phoneIdRole: return QString::fromStdString(row.id.text());
        case nameRole: return QString::fromStdString(row.name);
        case panelStatusRole: return QString::fromStdString(row.panelStatus);
        case windowStatusRole: return QString::fromStdString(row.windowStatus);
        case canConnectRole: return row.canConnect;
        case canDisconnectRole: return row.canDisconnect;
        case barsRole: return row.bars;
        case signalLabelRole: return QString::fromStdString(InterfaceText::signal(row.bars));
        case moreLabelRole: return QString::fromStdString(InterfaceText::moreOptions(row.name));
        default: return {};
    }
}

QHash<int, QByteArray> PhoneListModel::roleNames() const {
    return {{phoneIdRole, "phoneId"},
            {nameRole, "name"},
            {panelStatusRole, "panelStatus"},
            {windowStatusRole, "windowStatus"},
            {canConnectRole, "canConnect"},
            {canDisconnectRole, "canDisconnect"},
            {barsRole, "bars"},
            {signalLabelRole, "signalLabel"},
            {moreLabelRole, "moreLabel"}};
}

}  // namespace orbinex
