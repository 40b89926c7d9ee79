#include "DvarSettingOutlineView.h"

#include "DvarSetting.h"
#include "DvarValueDelegate.h"
#include "SettingsOutlineModel.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>

DvarSettingOutlineView::DvarSettingOutlineView(SettingsOutlineModel &outline, QWidget *parent)
    : QTreeView(parent), m_outline(outline)
{
    setModel(&outline);
    setItemDelegateForColumn(SettingsOutlineModel::ValueColumn, new DvarValueDelegate(this));
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTextElideMode(Qt::ElideRight);
    setTabKeyNavigation(false);
    header()->setStretchLastSection(true);
    setIndentation(14);
    setColumnWidth(SettingsOutlineModel::NameColumn, 180);
    setColumnWidth(SettingsOutlineModel::ValueColumn, 155);
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.column() != SettingsOutlineModel::ValueColumn)
            editValueOf(index);
    });
}

void DvarSettingOutlineView::setFilterText(const QString &text)
{
    if (text == m_outline.filterText())
        return;
    if (const std::shared_ptr<DvarSetting> current = m_outline.settingAt(currentIndex()))
        m_chosen = current;
    if (m_outline.filterText().isEmpty())
        m_collapsed = collapsedCategories();
    m_outline.setFilterText(text);
    expandAll();
    if (text.isEmpty())
        collapseCategories(m_collapsed);
    const QModelIndex chosen = m_outline.indexOf(m_chosen.lock());
    if (chosen.isValid())
        setCurrentIndex(chosen);
}

void DvarSettingOutlineView::expandEveryRow()
{
    m_collapsed.clear();
    expandAll();
}

QStringList DvarSettingOutlineView::collapsedCategories() const
{
    QStringList names;
    for (int row = 0; row < m_outline.rowCount(); ++row) {
        const QModelIndex category = m_outline.index(row, SettingsOutlineModel::NameColumn);
        if (!isExpanded(category))
            names.append(category.data().toString());
    }
    return names;
}

void DvarSettingOutlineView::collapseCategories(const QStringList &names)
{
    for (int row = 0; row < m_outline.rowCount(); ++row) {
        const QModelIndex category = m_outline.index(row, SettingsOutlineModel::NameColumn);
        if (names.contains(category.data().toString()))
            collapse(category);
    }
}

void DvarSettingOutlineView::checkboxValueChanged(const QModelIndex &index)
{
    if (index.flags().testFlag(Qt::ItemIsUserCheckable))
        m_outline.setData(index, QVariant(), Qt::CheckStateRole);
}

void DvarSettingOutlineView::editValueOf(const QModelIndex &index)
{
    const QModelIndex value = index.siblingAtColumn(SettingsOutlineModel::ValueColumn);
    if (!value.flags().testFlag(Qt::ItemIsEditable))
        return;
    setCurrentIndex(value);
    edit(value);
}

void DvarSettingOutlineView::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool isOnSetting = m_outline.settingAt(currentIndex()) != nullptr;
    if (!isPlain || !isOnSetting || state() == EditingState)
        return QTreeView::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        return editValueOf(currentIndex());
    case Qt::Key_Space:
        return checkboxValueChanged(currentIndex().siblingAtColumn(SettingsOutlineModel::ValueColumn));
    default:
        QTreeView::keyPressEvent(event);
    }
}

void DvarSettingOutlineView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isByKey ? currentIndex() : indexAt(event->pos());
    const std::shared_ptr<DvarSetting> setting = m_outline.settingAt(index);
    if (!setting)
        return;
    const QPoint position = isByKey ? visualRect(index).bottomLeft() : event->pos();
    showMenuFor(setting, viewport()->mapToGlobal(position));
}

void DvarSettingOutlineView::showMenuFor(const std::shared_ptr<DvarSetting> &setting, const QPoint &position)
{
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("settingMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QString value = setting->dvarValue();
    menu->addAction(tr("Copy Variable Name"), this,
                    [name = setting->dvar()] { QGuiApplication::clipboard()->setText(name); });
    QAction *copyValue =
        menu->addAction(tr("Copy Value"), this, [value] { QGuiApplication::clipboard()->setText(value); });
    copyValue->setEnabled(!value.isNull());
    menu->addSeparator();
    const QModelIndex index = m_outline.indexOf(setting, SettingsOutlineModel::ValueColumn);
    const QString old = m_outline.valueAtConnect(setting->dvar());
    QAction *revert =
        menu->addAction(tr("Revert"), this, [this, setting, old] { emit m_outline.writeRequested(setting, old); });
    revert->setEnabled(!old.isNull() && index.data(SettingsOutlineModel::IsChangedRole).toBool());
    const bool isLacking = index.data(SettingsOutlineModel::IsUnknownRole).toBool() &&
                           !index.data(SettingsOutlineModel::IsAwaitedRole).toBool();
    if (isLacking && !setting->dvar().isEmpty())
        menu->addAction(tr("Ask Again"), this, [this, dvar = setting->dvar()] { emit askAgainRequested(dvar); });
    menu->popup(position);
}
