#pragma once

#include "RSRTVArrayController.h"

/// Rows of one letter each, for tables that are put into order.
struct Letter {
    QString text;
    bool operator==(const Letter &) const = default;
};

template <typename Entry>
class Letters : public RSRTVArrayController<Entry>
{
public:
    using Row = typename RSRTVArrayController<Entry>::Row;

    explicit Letters(const QString &letters)
        : RSRTVArrayController<Entry>(
              {{QStringLiteral("Place"), [](const Row &) { return QString(); }, nullptr},
               {QStringLiteral("Letter"), [](const Row &row) { return row->text; }, nullptr, Qt::AlignLeft, edit}})
    {
        QList<Row> rows;
        for (const QChar letter : letters)
            rows.append(std::make_shared<Entry>(Entry{QString(letter)}));
        this->addObjects(rows);
    }

    QString shown() const { return textOf(this->arrangedObjects()); }
    QString selected() const { return textOf(this->selectedObjects()); }
    void choose(const QList<int> &rows)
    {
        this->selection()->clear();
        for (const int row : rows)
            this->selection()->select(this->arranged()->index(row, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }

private:
    static bool edit(Row &row, const QString &text) { return std::exchange(row->text, text) != text; }
    static QString textOf(const QList<Row> &rows)
    {
        QString text;
        for (const Row &row : rows)
            text += row->text;
        return text;
    }
};
