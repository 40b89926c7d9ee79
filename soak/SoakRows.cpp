#include "Soak.h"

#include "Controls.h"
#include "DvarSetting.h"
#include "FormMainView.h"
#include "Hands.h"
#include "PlayerList.h"
#include "SettingsOutlineModel.h"
#include "Wait.h"

#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTableView>

#include <algorithm>

/// What the server changes of itself while nobody looks.
static bool isRestless(const QString &variable)
{
    static const QStringList names{"mapname", "g_gametype", "sv_mapRotationCurrent"};
    return names.contains(variable);
}

/// As every reply tells it, without colours.
QString Soak::valueNow(const QString &variable) const
{
    static const QRegularExpression colour("\\^[0-9]");
    return m_server->variable(variable).remove(colour);
}

/// The tabs are those of the server's mode, also after it has come back in another one.
void Soak::lookAtTabs()
{
    if (!isAtServer())
        return;
    TabSet expected = TabSet::Ranked;
    if (valueNow("sv_ranked") == "0")
        expected = valueNow("playlist_enabled") == "1" ? TabSet::UnrankedPlaylists : TabSet::UnrankedMaps;
    if (m_application->server().tabSet() != expected)
        reportIf("the tabs are not those of the server's mode");
}

void Soak::lookAtTraffic()
{
    QList<RecordedExchange> exchanges = takeExchanges(m_plan.folder + "/log.txt");
    exchanges.removeIf([this](const RecordedExchange &exchange) { return exchange.port != m_options.port; });
    m_exchanges += exchanges.size();
    reportIf(trafficFault(exchanges, m_server->takeCommands()));
    if (!isAtServer())
        return;
    // Variables whose latest write since the latest connect was answered are held as the server has them.
    QHash<QString, bool> isWritten;
    for (const RecordedExchange &exchange : exchanges) {
        const QStringList words = exchange.command.split(u' ');
        if (words.first() == "dvardump")
            isWritten.clear();
        else if (words.first() == "setadmindvar")
            isWritten.insert(words.value(1), exchange.isSuccess() && !isRestless(words.value(1)));
    }
    QStringList held;
    QStringList expected;
    const QHash<QString, QString> session = m_application->server().dvarList();
    for (const QString &name : isWritten.keys(true)) {
        held.append(name + u' ' + session.value(name, valueNow(name)).trimmed());
        expected.append(name + u' ' + valueNow(name).trimmed());
    }
    reportIf(difference("what was written", held, expected));
}

void Soak::lookAtRows()
{
    // Players come and go, and matches end, between the refresh and the look at the server: what stays wrong is stale.
    const auto look = [this](QString (Soak::*fault)(), const char *name, const char *refresh) {
        auto *tabs = control<QTabWidget>(window(), "tabControlMain");
        auto *page = control<QWidget>(window(), name);
        if (tabs->indexOf(page) < 0) // not every mode of a server has every one
            return;
        Hands::showTab(*tabs, page);
        QString found;
        for (int tries = 0; tries < 8; ++tries) {
            if (refresh != nullptr)
                Hands::click(window(), refresh);
            if (!waitUntilIdle())
                return;
            found = (this->*fault)();
            if (found.isEmpty())
                return;
        }
        reportIf(found);
    };
    look(&Soak::mapsFault, "mapsView", "refreshCurrentMapButton");
    look(&Soak::settingsFault, "unrankedSettingsView", nullptr);
    look(&Soak::settingsFault, "rankedSettingsView", nullptr);
    look(&Soak::playersFault, "playersView", "refreshPlayersButton");
}

QString Soak::difference(const char *what, const QStringList &shown, const QStringList &expected)
{
    m_rowsCompared += shown.size();
    for (qsizetype i = 0; i < std::max(shown.size(), expected.size()); ++i) {
        if (shown.value(i) != expected.value(i))
            return QStringLiteral("%1: the server has \"%2\", the window shows \"%3\"")
                .arg(QLatin1String(what), expected.value(i), shown.value(i));
    }
    return {};
}

QString Soak::playersFault()
{
    const Reply reply = awaited(m_application->server().sendCommand("teamstatus"));
    QStringList expected;
    for (const PlayerRow &player : parsePlayerList(reply.text).players)
        expected.append(player.identifier + u' ' + player.name + u' ' + player.guid + u' ' + player.ipaddress);
    Hands::type(window(), "playerFilterField", {});
    QStringList shown;
    for (const QStringList &row : shownRows(*control<QAbstractItemView>(window(), "playersTableView")))
        shown.append(row.first(4).join(u' '));
    expected.sort();
    shown.sort();
    return difference("players", shown, expected);
}

QString Soak::mapsFault()
{
    const KelMapList &maps = *KelMapList::sharedKelMapList();
    const QStringList words = valueNow("sv_mapRotation").split(u' ', Qt::SkipEmptyParts);
    QStringList expected{maps.findMapByDvar(valueNow("mapname"))};
    for (qsizetype i = 0; i + 1 < words.size(); i += 2) {
        if (words.at(i) == "map")
            expected.append(maps.findMapByDvar(words.at(i + 1)));
    }
    const QString map = control<QLineEdit>(window(), "currentMapField")->text();
    auto *rotation = control<QTableView>(window(), "mapServerRotationTableView");
    rotation->sortByColumn(-1, Qt::AscendingOrder); // as the server plays it
    return difference("map and rotation", QStringList(map) + shownTexts(*rotation), expected);
}

QString Soak::settingsFault()
{
    const QWidget &view = *control<QTabWidget>(window(), "tabControlMain")->currentWidget();
    Hands::type(view, "settingsFilterField", {});
    QStringList shown;
    QStringList expected;
    const auto compareRows = [&](const SettingsOutlineModel &model) {
        const auto flags = Qt::MatchContains | Qt::MatchRecursive;
        for (const QModelIndex &row : model.match(model.index(0, 0), Qt::DisplayRole, QString(), -1, flags)) {
            const auto setting = model.settingAt(row);
            if (setting == nullptr || isRestless(setting->dvar()))
                continue;
            const QModelIndex value = row.siblingAtColumn(SettingsOutlineModel::ValueColumn);
            shown.append(setting->dvar() + u' ' + value.data(Qt::EditRole).toString());
            expected.append(setting->dvar() + u' ' + valueNow(setting->dvar()));
        }
    };
    for (QListWidget *list : view.findChildren<QListWidget *>()) { // of groups, and of gametypes
        for (int group = 0; group < list->count(); ++group) {
            list->setCurrentRow(group);
            for (const QAbstractItemView *outline : view.findChildren<QAbstractItemView *>()) {
                if (const auto *model = qobject_cast<SettingsOutlineModel *>(outline->model()))
                    compareRows(*model);
            }
        }
    }
    return difference("settings", shown, expected);
}
