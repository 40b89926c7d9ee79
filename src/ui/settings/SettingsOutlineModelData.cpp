#include "SettingsOutlineModel.h"

#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "Secrets.h"

#include <QFont>

// What is longer tells nothing more in a cell, but would have to be laid out at every painting.
static constexpr qsizetype longestCellText = 300;
static constexpr qsizetype longestToolTip = 2000;

static QString shortened(const QString &text, qsizetype length)
{
    return text.size() <= length ? text : text.left(length) + QChar(0x2026);
}

/// A value as it may be seen over a shoulder. The stars do not tell how many characters they stand for.
static QString shownValue(const DvarSetting &setting, const QString &value)
{
    return holdsPassword(setting.dvar()) && !value.isEmpty() ? QStringLiteral("********") : value;
}

static bool isBool(const DvarSetting &setting)
{
    return setting.type().compare(QLatin1String("bool"), Qt::CaseInsensitive) == 0;
}

Qt::ItemFlags SettingsOutlineModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags readable = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const std::shared_ptr<DvarSetting> setting = settingAt(index);
    if (!setting)
        return readable;
    const Qt::ItemFlags leaf = readable | Qt::ItemNeverHasChildren;
    // A catalogue entry without a variable has nothing to write to.
    if (index.column() != ValueColumn || setting->dvar().isEmpty())
        return leaf;
    return leaf | (isBool(*setting) ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

QVariant SettingsOutlineModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (const std::shared_ptr<DvarSetting> setting = settingAt(index))
        return settingData(*setting, index.column(), role);
    const DvarSettingCategory &category = *m_categories.at(m_visible.at(index.row())).category;
    if (role == Qt::FontRole) {
        QFont font;
        font.setBold(true);
        return font;
    }
    if (role == Qt::DisplayRole && index.column() == NameColumn)
        return shortened(category.name(), longestCellText);
    return {};
}

QVariant SettingsOutlineModel::settingData(const DvarSetting &setting, int column, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return displayText(setting, column);
    case Qt::ToolTipRole:
        return toolTip(setting, column);
    case Qt::AccessibleDescriptionRole:
        return column == ValueColumn ? changeText(setting) : QString();
    case IsUnknownRole:
        return setting.dvarValue().isNull();
    case IsChangedRole:
        return isChanged(setting.dvar(), setting.dvarValue());
    case IsPendingRole:
        return m_writes.contains(setting.dvar());
    default:
        return column == ValueColumn ? valueData(setting, role) : QVariant();
    }
}

QVariant SettingsOutlineModel::valueData(const DvarSetting &setting, int role) const
{
    if (role == Qt::EditRole)
        return setting.dvarValue();
    if (!isBool(setting))
        return {};
    if (role == Qt::CheckStateRole)
        return setting.dvarBoolValue() ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::AccessibleTextRole && !setting.dvarValue().isNull())
        return setting.dvarBoolValue() ? tr("On") : tr("Off");
    return {};
}

QString SettingsOutlineModel::displayText(const DvarSetting &setting, int column) const
{
    if (column == NameColumn)
        return shortened(setting.name(), longestCellText);
    if (column == DescriptionColumn)
        return shortened(setting.settingDescription(), longestCellText);
    const QString value = setting.dvarValue();
    if (value.isNull())
        return tr("Not known to the server");
    return isBool(setting) ? QString() : shortened(shownValue(setting, value), longestCellText);
}

QString SettingsOutlineModel::changeText(const DvarSetting &setting) const
{
    if (!isChanged(setting.dvar(), setting.dvarValue()))
        return {};
    const QString old = valueAtConnect(setting.dvar());
    if (old.isNull())
        return tr("Was: not known to the server");
    return old.isEmpty() ? tr("Was: empty") : tr("Was: %1").arg(shownValue(setting, old));
}

QString SettingsOutlineModel::toolTip(const DvarSetting &setting, int column) const
{
    QStringList lines;
    if (column == DescriptionColumn)
        lines.append(setting.settingDescription());
    lines.append(tr("Variable: %1").arg(setting.dvar()));
    if (column == ValueColumn && !setting.dvarValue().isEmpty())
        lines.append(tr("Value: %1").arg(shownValue(setting, setting.dvarValue())));
    lines.append(changeText(setting));
    lines.removeAll(QString());
    for (QString &line : lines)
        line = shortened(line, longestToolTip).toHtmlEscaped();
    // As rich text it wraps, and what the server or a catalogue says stays plain text within it.
    return QStringLiteral("<qt>%1</qt>").arg(lines.join(QLatin1String("<br>")));
}

bool SettingsOutlineModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const std::shared_ptr<DvarSetting> setting = settingAt(index);
    if (!setting || index.column() != ValueColumn || setting->dvar().isEmpty())
        return false;
    if (role == Qt::CheckStateRole && isBool(*setting)) {
        emit toggleRequested(setting);
        return true;
    }
    if (role != Qt::EditRole || !setting->validateValue(value.toString()))
        return false;
    emit writeRequested(setting, value.toString());
    return true;
}
