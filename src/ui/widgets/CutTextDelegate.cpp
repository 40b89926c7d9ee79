#include "CutTextDelegate.h"

#include "CutText.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QToolTip>

#include <limits>

QString CutTextDelegate::displayText(const QVariant &value, const QLocale & /*locale*/) const
{
    QString text = value.toString().left(CutText::LongestShown);
    for (QChar &character : text) {
        if (character.isSpace())
            character = QLatin1Char(' ');
    }
    return text;
}

QWidget *CutTextDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                       const QModelIndex &index) const
{
    QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (auto *field = qobject_cast<QLineEdit *>(editor)) // whose own limit would cut what it is given
        field->setMaxLength(std::numeric_limits<int>::max());
    return editor;
}

bool CutTextDelegate::isCut(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QString text = index.data().toString();
    return text.size() > CutText::LongestShown || text.contains(QLatin1Char('\n')) ||
           sizeHint(option, index).width() > option.rect.width();
}

bool CutTextDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid() || !isCut(option, index))
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::showText(event->globalPos(), CutText::toolTip(index.data().toString()), view);
    return true;
}
