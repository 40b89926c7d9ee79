#pragma once

#include <QStyledItemDelegate>

/// Shows a text in one line, whatever it holds, and edits all of it.
class OneLineDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    /// Characters of a text that are shown: no screen has room for more, and laying out a long text takes a while.
    static constexpr int LongestShown = 1000;

    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant &value, const QLocale &locale) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
