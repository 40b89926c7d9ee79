#pragma once

#include "CutTextDelegate.h"

/// Marks the row of a table that is on air with a sign and bold letters.
class OnAirDelegate : public CutTextDelegate
{
    Q_OBJECT
public:
    using CutTextDelegate::CutTextDelegate;

    /// @param row  -1 marks none.
    void setRowOnAir(int row) { m_rowOnAir = row; }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        CutTextDelegate::initStyleOption(option, index);
        if (index.row() != m_rowOnAir)
            return;
        option->font.setBold(true);
        if (index.column() == 0)
            option->text.prepend(QStringLiteral("▶ "));
    }

private:
    int m_rowOnAir = -1;
};
