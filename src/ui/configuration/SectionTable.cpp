#include "SectionTable.h"

#include "DvarSetting.h"
#include "DvarSettingList.h"

#include <QHeaderView>

#include <algorithm>

QList<ArrayController<SectionTable::Row>::Column> SectionTable::columns(const QString &title)
{
    return {
        {title, [](const Row &row) { return row.name; }, nullptr, Qt::AlignLeft | Qt::AlignVCenter},
        {tr("Variables"), [](const Row &row) { return QString::number(row.reported); },
         [](const Row &row) { return QVariant(row.reported); }, Qt::AlignRight | Qt::AlignVCenter},
    };
}

SectionTable::SectionTable(const QString &title, QWidget *parent)
    : PlaceholderTable(parent), controller(new ArrayController<Row>(
                                    columns(title), [](const Row &row) { return row.name; }, this))
{
    setModel(controller->arranged());
    setSelectionModel(controller->selection());
    sortOnDemand(false); // the order is the catalogue's
    setStretchedColumn(0);
    horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    connect(controller->selection(), &QItemSelectionModel::selectionChanged, this, &SectionTable::selectionDidChange);
}

void SectionTable::showLists(const Lists &lists, const QHash<QString, QString> &dvars)
{
    QList<Row> rows;
    for (const std::shared_ptr<DvarSettingList> &list : lists) {
        const DvarSettingList::SettingsByName settings = list->settingsList();
        const auto reported = std::count_if(settings.cbegin(), settings.cend(),
                                            [&dvars](const auto &setting) { return dvars.contains(setting->dvar()); });
        rows.append(Row{list->name(), static_cast<int>(reported), list});
    }
    controller->mergeContent(rows);
}

SectionTable::Lists SectionTable::selectedLists() const
{
    QHash<QString, std::shared_ptr<DvarSettingList>> byName;
    for (const Row &row : controller->content())
        byName.insert(row.name, row.list);
    Lists lists;
    for (const QString &name : m_order) {
        if (const auto list = byName.value(name))
            lists.append(list);
    }
    return lists;
}

void SectionTable::selectEveryRow()
{
    clearSelection();
    selectAll();
}

void SectionTable::selectionDidChange()
{
    QStringList selected;
    for (const Row &row : controller->selectedObjects())
        selected.append(row.name);
    QStringList kept = m_order;
    kept.removeIf([&selected](const QString &name) { return !selected.contains(name); });
    const qsizetype added = selected.size() - kept.size();
    if (added > 1 && selected.size() == controller->content().size())
        kept.clear(); // "select all" is one step, whatever was selected before
    for (const QString &name : std::as_const(selected)) {
        if (!kept.contains(name))
            kept.append(name);
    }
    m_order = kept;
    emit choiceChanged();
}
