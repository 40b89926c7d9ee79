#pragma once

#include <QStyledItemDelegate>

/// Shows a text in one line, whatever it holds, tells it in full in a tooltip where it does not fit, and edits all of
/// it.
class CutTextDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant &value, const QLocale &locale) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

private:
    bool isCut(const QStyleOptionViewItem &option, const QModelIndex &index) const;
};
