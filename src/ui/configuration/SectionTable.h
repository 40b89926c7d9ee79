#pragma once

#include "ArrayController.h"
#include "PlaceholderTable.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <memory>

class DvarSettingList;

/// Lists of settings that can become sections of a configuration file; knows the order in which they were selected.
class SectionTable : public PlaceholderTable
{
    Q_OBJECT
public:
    using Lists = QList<std::shared_ptr<DvarSettingList>>;

    /// @param title  what a row is, as the head of the first column.
    explicit SectionTable(const QString &title, QWidget *parent = nullptr);

    /// Shows `lists`; those that were there stay selected.
    void showLists(const Lists &lists, const QHash<QString, QString> &dvars);

    /// In the order in which they were selected; what one step selects counts from top to bottom.
    Lists selectedLists() const;
    /// Selects all rows, in the order of the table.
    void selectEveryRow();

signals:
    void choiceChanged();

private:
    struct Row {
        QString name;
        int reported = 0; ///< how many of its variables the server has
        std::shared_ptr<DvarSettingList> list;

        bool operator==(const Row &) const = default;
    };

    static QList<ArrayController<Row>::Column> columns(const QString &title);
    void selectionDidChange();

    ArrayController<Row> *const controller;
    QStringList m_order; ///< names
};
