#pragma once

#include <QList>
#include <QSortFilterProxyModel>

/// The rows of a table as they are shown: sorted by what the column means and narrowed by a text filter.
class ArrangedRows : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    /// Role under which a model gives what a cell sorts by: a number or a text. Numbers come before texts.
    static constexpr int SortRole = Qt::UserRole + 1;

    explicit ArrangedRows(QObject *parent = nullptr);

    QString filterText() const { return m_filterText; }
    /// Shows only the rows that hold every word of `text` in one of their cells, in any case; all rows when empty.
    void setFilterText(const QString &text);

    /// @return all rows of the source, hidden ones too, in the order in which they are or would be shown.
    QList<int> sourceRowsInOrder() const;

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    QString m_filterText;
    QStringList m_words;
};
