#include "OneLineDelegate.h"

#include <QLineEdit>

#include <limits>

QString OneLineDelegate::displayText(const QVariant &value, const QLocale & /*locale*/) const
{
    QString text = value.toString().left(LongestShown);
    for (QChar &character : text) {
        if (character.isSpace())
            character = QLatin1Char(' ');
    }
    return text;
}

QWidget *OneLineDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                       const QModelIndex &index) const
{
    QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (auto *field = qobject_cast<QLineEdit *>(editor)) // whose own limit would cut what it is given
        field->setMaxLength(std::numeric_limits<int>::max());
    return editor;
}
