#pragma once

#include <QTableView>

class Hint;

/// A table of whole rows. It says what to do while it has none, and tells a text that does not fit in a tooltip.
class PlaceholderTable : public QTableView
{
    Q_OBJECT
public:
    explicit PlaceholderTable(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;

    void setPlaceholder(const QString &text);
    QString placeholder() const;

    /// The column that gets the room which the others leave; all keep the widths they are given.
    void setStretchedColumn(int column);
    /// The rows stand in the order of the model until another is asked for.
    /// @param isClearable  a third click on a column's title returns to it.
    void sortOnDemand(bool isClearable);

private:
    Hint *m_hint;
};
