#include "DvarValueDelegate.h"

#include "DvarSetting.h"
#include "DvarValueEditor.h"
#include "SettingsOutlineModel.h"

#include <QKeyEvent>

QWidget *DvarValueDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &index) const
{
    const auto *outline = qobject_cast<const SettingsOutlineModel *>(index.model());
    const std::shared_ptr<DvarSetting> setting = outline != nullptr ? outline->settingAt(index) : nullptr;
    return setting ? new DvarValueEditor(setting, parent) : nullptr;
}

void DvarValueDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *field = qobject_cast<QLineEdit *>(editor);
    // A value that changes on the server must not overwrite what is being typed.
    if (field != nullptr && !field->isModified())
        field->setText(index.data(Qt::EditRole).toString());
}

void DvarValueDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    const auto *field = qobject_cast<DvarValueEditor *>(editor);
    // A field that was only looked at must not write back a value that has changed on the server meanwhile.
    if (field != nullptr && field->isModified())
        model->setData(index, field->value(), Qt::EditRole);
}

void DvarValueDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                             const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}

QSize DvarValueDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(qMax(size.height(), option.fontMetrics.height() + 10)); // room for a field
    return size;
}

bool DvarValueDelegate::eventFilter(QObject *object, QEvent *event)
{
    auto *field = qobject_cast<DvarValueEditor *>(object);
    // The focus went to another window, perhaps to an alert: a value that is half typed must not be sent yet.
    if (field != nullptr && event->type() == QEvent::FocusOut && !field->isActiveWindow())
        return false;
    if (field == nullptr || event->type() != QEvent::KeyPress)
        return QStyledItemDelegate::eventFilter(object, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    const bool isEntered = isReturn || key == Qt::Key_Tab || key == Qt::Key_Backtab;
    if (isReturn && !field->isModified()) {
        emit closeEditor(field, QAbstractItemDelegate::RevertModelCache);
        return true;
    }
    if (isEntered && !field->hasAcceptableInput())
        field->showHint();
    return QStyledItemDelegate::eventFilter(object, event);
}

void DvarValueDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QColor dimmed = option->palette.color(QPalette::PlaceholderText);
    // Styles derive the edge of a checkbox from the window's colour, which cannot be seen on a dark base.
    option->palette.setColor(QPalette::Window, dimmed.lighter(140));
    if (index.data(SettingsOutlineModel::IsUnknownRole).toBool())
        option->palette.setColor(QPalette::Text, dimmed);
    if (index.data(SettingsOutlineModel::IsChangedRole).toBool()) {
        option->font.setBold(true);
        option->fontMetrics = QFontMetrics(option->font);
        option->text.prepend(tr("• "));
    }
    if (index.data(SettingsOutlineModel::IsPendingRole).toBool())
        option->text.append(tr(" …"));
    if (!option->text.isEmpty())
        option->features |= QStyleOptionViewItem::HasDisplay;
}
