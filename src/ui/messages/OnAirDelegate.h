#pragma once

#include "OneLineDelegate.h"

/// Marks the row of a table that is on air with a sign and bold letters.
class OnAirDelegate : public OneLineDelegate
{
    Q_OBJECT
public:
    using OneLineDelegate::OneLineDelegate;

    /// @param row  -1 marks none.
    void setRowOnAir(int row) { m_rowOnAir = row; }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        OneLineDelegate::initStyleOption(option, index);
        if (index.row() != m_rowOnAir)
            return;
        option->font.setBold(true);
        if (index.column() == 0)
            option->text.prepend(QStringLiteral("▶ "));
    }

private:
    int m_rowOnAir = -1;
};
