#pragma once

#include "net/WireRecords.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

/// The six counters of a month, in a fixed order. Before the first response their counts are empty. Main
/// thread only.
class SummaryTiles : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of SummaryViewModel")

public:
    enum Role {
        LabelRole = Qt::UserRole,
        SymbolRole,
        TintRole,
        CountRole,
        SpokenRole,
    };

    using QAbstractListModel::QAbstractListModel;

    void setSummary(const std::optional<MonthlySummary> &summary);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    std::optional<MonthlySummary> m_summary;
};

} // namespace clockwell
