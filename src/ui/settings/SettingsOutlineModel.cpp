#include "SettingsOutlineModel.h"

#include "CutText.h"
#include "DvarFetcher.h"
#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "KelServer.h"
#include "Secrets.h"

#include <QFont>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

// A cell shows no more than this, and laying out longer texts would slow down every painting.
static constexpr qsizetype longestCellText = 300;

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

/// Zero for a category; for a setting, one more than the place of its category among the visible ones.
static quintptr idBelow(int categoryRow)
{
    return static_cast<quintptr>(categoryRow) + 1;
}

static bool holdsAll(const DvarSetting &setting, const QStringList &words)
{
    return std::all_of(words.begin(), words.end(), [&setting](const QString &word) {
        return setting.name().contains(word, Qt::CaseInsensitive) ||
               setting.dvar().contains(word, Qt::CaseInsensitive) ||
               setting.settingDescription().contains(word, Qt::CaseInsensitive);
    });
}

SettingsOutlineModel::SettingsOutlineModel(KelServer &server, const DvarFetcher &fetcher, QObject *parent)
    : QAbstractItemModel(parent), m_server(server), m_fetcher(fetcher)
{
    connect(&server, &KelServer::dvarListChanged, this, &SettingsOutlineModel::followSession);
    connect(&server, &KelServer::didConnect, this, &SettingsOutlineModel::takeValuesAtConnect);
    connect(&server, &KelServer::dvarChanged, this, &SettingsOutlineModel::followVariable);
    connect(&server, &KelServer::dvarWritten, this, [this](const QString &dvar) { m_written.insert(dvar); });
    connect(&fetcher, &DvarFetcher::settled, this, &SettingsOutlineModel::announceChanges);
    connect(&fetcher, &DvarFetcher::began, this, [this] { announceChanges(); });
}

SettingsOutlineModel::~SettingsOutlineModel() = default;

void SettingsOutlineModel::setCategories(const QList<std::shared_ptr<DvarSettingCategory>> &categories)
{
    beginResetModel();
    m_all = categories;
    arrange();
    endResetModel();
}

void SettingsOutlineModel::setFilterText(const QString &text)
{
    if (text == m_filterText)
        return;
    beginResetModel();
    m_filterText = text;
    arrange();
    endResetModel();
}

void SettingsOutlineModel::arrange()
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    const QStringList words = m_filterText.split(blanks, Qt::SkipEmptyParts);
    m_categories.clear();
    for (const std::shared_ptr<DvarSettingCategory> &category : std::as_const(m_all)) {
        Category arranged{category->name(), {}};
        for (const std::shared_ptr<DvarSetting> &setting : category->children()) {
            if (holdsAll(*setting, words))
                arranged.rows.append(Row{setting, shownFor(*setting)});
        }
        if (!arranged.rows.isEmpty())
            m_categories.append(arranged);
    }
}

void SettingsOutlineModel::followSession()
{
    // A connect empties the session, so the values of the last connection no longer serve as the start.
    if (m_server.dvarList().isEmpty()) {
        m_valuesAtConnect.clear();
        m_written.clear();
        m_isConnectComplete = false;
    }
    if (!m_server.dvarList().contains(QStringLiteral("rcon_password"))) // forgotten when disconnecting
        m_valuesAtConnect.remove(QStringLiteral("rcon_password"));
    announceChanges();
}

void SettingsOutlineModel::takeValuesAtConnect()
{
    m_valuesAtConnect = m_server.dvarList();
    m_written.clear();
    m_isConnectComplete = true;
    announceChanges();
}

void SettingsOutlineModel::followVariable(const QString &dvar)
{
    // What comes later without having been written is what the server had all the time.
    if (m_isConnectComplete && !m_valuesAtConnect.contains(dvar) && !m_written.contains(dvar))
        m_valuesAtConnect.insert(dvar, m_server.dvarList().value(dvar));
    announceChanges(dvar);
}

void SettingsOutlineModel::beginWrite(const QString &dvar)
{
    ++m_writes[dvar];
    announceChanges(dvar);
}

void SettingsOutlineModel::endWrite(const QString &dvar)
{
    if (--m_writes[dvar] <= 0)
        m_writes.remove(dvar);
    announceChanges(dvar);
}

void SettingsOutlineModel::announceChanges(const QString &dvar)
{
    for (int categoryRow = 0; categoryRow < m_categories.size(); ++categoryRow) {
        QList<Row> &rows = m_categories[categoryRow].rows;
        const QModelIndex parentIndex = index(categoryRow, NameColumn);
        const int count = static_cast<int>(rows.size());
        // Neighbours are announced together: a view looks every announced row up from the top of the outline.
        int first = -1;
        for (int row = 0; row <= count; ++row) {
            bool isDifferent = false;
            if (row < count) {
                Row &each = rows[row];
                if (dvar.isNull() || each.setting->dvar() == dvar) {
                    const Shown now = shownFor(*each.setting);
                    isDifferent = !(now == each.shown);
                    each.shown = now;
                }
            }
            if (isDifferent && first < 0)
                first = row;
            if (isDifferent || first < 0)
                continue;
            emit dataChanged(index(first, ValueColumn, parentIndex), index(row - 1, ValueColumn, parentIndex));
            first = -1;
        }
    }
}

bool SettingsOutlineModel::isChanged(const QString &dvar, const QString &value) const
{
    if (!m_isConnectComplete)
        return false;
    const QString old = valueAtConnect(dvar);
    return old != value || old.isNull() != value.isNull();
}

bool SettingsOutlineModel::isAwaited(const DvarSetting &setting) const
{
    return setting.dvarValue().isNull() && m_fetcher.isAwaited(setting.dvar());
}

QString SettingsOutlineModel::reasonOfLack(const DvarSetting &setting) const
{
    if (!setting.dvarValue().isNull())
        return {};
    if (isAwaited(setting))
        return tr("asking…");
    return m_fetcher.isUnanswered(setting.dvar()) ? tr("no answer") : tr("not on this server");
}

SettingsOutlineModel::Shown SettingsOutlineModel::shownFor(const DvarSetting &setting) const
{
    const QString value = setting.dvarValue();
    Shown shown{value, reasonOfLack(setting), isChanged(setting.dvar(), value), m_writes.contains(setting.dvar())};
    if (holdsPassword(setting.dvar()) && !value.isNull()) // a hash is enough to notice a change
        shown.value = QString::number(qHash(value));
    return shown;
}

std::shared_ptr<DvarSetting> SettingsOutlineModel::settingAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.internalId() == 0)
        return nullptr;
    return m_categories.at(static_cast<int>(index.internalId() - 1)).rows.at(index.row()).setting;
}

QModelIndex SettingsOutlineModel::indexOf(const std::shared_ptr<DvarSetting> &setting, int column) const
{
    for (int categoryRow = 0; categoryRow < m_categories.size(); ++categoryRow) {
        const QList<Row> &rows = m_categories.at(categoryRow).rows;
        for (int row = 0; row < rows.size(); ++row) {
            if (rows.at(row).setting == setting)
                return createIndex(row, column, idBelow(categoryRow));
        }
    }
    return {};
}

QModelIndex SettingsOutlineModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? idBelow(parent.row()) : 0);
}

QModelIndex SettingsOutlineModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return {};
    return createIndex(static_cast<int>(child.internalId() - 1), NameColumn, quintptr(0));
}

int SettingsOutlineModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_categories.size());
    if (parent.internalId() != 0 || parent.column() != NameColumn)
        return 0;
    return static_cast<int>(m_categories.at(parent.row()).rows.size());
}

int SettingsOutlineModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

QVariant SettingsOutlineModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList{tr("Name"), tr("Value"), tr("Description")}.value(section);
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
    if (role == Qt::FontRole) {
        QFont font;
        font.setBold(true);
        return font;
    }
    if (role == Qt::DisplayRole && index.column() == NameColumn)
        return shortened(m_categories.at(index.row()).name, longestCellText);
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
    case IsAwaitedRole:
        return isAwaited(setting);
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
    if (role != Qt::AccessibleTextRole)
        return {};
    if (setting.dvarValue().isNull())
        return reasonOfLack(setting);
    return setting.dvarBoolValue() ? tr("On") : tr("Off");
}

QString SettingsOutlineModel::displayText(const DvarSetting &setting, int column) const
{
    if (column == NameColumn)
        return shortened(setting.name(), longestCellText);
    if (column == DescriptionColumn)
        return shortened(setting.settingDescription(), longestCellText);
    const QString value = setting.dvarValue();
    if (value.isNull())
        return reasonOfLack(setting);
    return isBool(setting) ? QString() : shortened(shownValue(setting, value), longestCellText);
}

QString SettingsOutlineModel::changeText(const DvarSetting &setting) const
{
    if (!isChanged(setting.dvar(), setting.dvarValue()))
        return {};
    const QString old = valueAtConnect(setting.dvar());
    if (old.isNull())
        return tr("Was: not known");
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
        line = shortened(line, CutText::LongestToolTip).toHtmlEscaped();
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
