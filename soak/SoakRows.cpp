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

bool Soak::showPage(const char *name)
{
    auto *tabs = control<QTabWidget>(window(), "tabControlMain");
    auto *page = control<QWidget>(window(), name);
    if (tabs->indexOf(page) >= 0) // not every mode of a server has every one
        Hands::showTab(*tabs, page);
    return tabs->currentWidget() == page;
}

/// The tabs are those of the server's mode, also after it has come back in another one.
void Soak::lookAtTabs()
{
    const KelServer &server = m_application->server();
    if (!isAtServer() || !m_isModeKnown)
        return;
    TabSet expected = TabSet::Ranked;
    if (valueNow("sv_ranked") == "0")
        expected = valueNow("playlist_enabled") == "1" ? TabSet::UnrankedPlaylists : TabSet::UnrankedMaps;
    if (server.tabSet() != expected)
        report(QStringLiteral("the tabs are %1, not %2")
                   .arg(static_cast<int>(server.tabSet()))
                   .arg(static_cast<int>(expected)));
}

/// Variables whose latest write since the latest connect was answered are held as the server has them.
void Soak::lookAtWrites(const QList<RecordedExchange> &exchanges)
{
    if (!isAtServer() || !m_isSameGame)
        return;
    QHash<QString, bool> isWritten;
    for (const RecordedExchange &exchange : exchanges) {
        const QStringList words = exchange.command.split(u' ');
        const bool isHere = exchange.port == m_options.port;
        if (isHere && words.first() == "dvardump")
            isWritten.clear();
        else if (isHere && words.first() == "setadmindvar")
            isWritten.insert(words.value(1), exchange.isSuccess() && !isRestless(words.value(1)));
    }
    const QHash<QString, QString> session = m_application->server().dvarList();
    for (const QString &name : isWritten.keys(true)) {
        if (session.contains(name) && session.value(name).trimmed() != valueNow(name).trimmed())
            report(QStringLiteral("%1 was written and is \"%2\", the console takes it for \"%3\"")
                       .arg(name, valueNow(name), session.value(name)));
        ++m_rowsCompared;
    }
}

void Soak::lookAtRows()
{
    // Players come and go, and matches end, between the refresh and the look at the server: what stays wrong is stale.
    const auto look = [this](QString (Soak::*fault)(), const char *page, const char *refresh) {
        QString found;
        for (int tries = 0; tries < 8 && showPage(page); ++tries) {
            if (refresh != nullptr)
                Hands::click(window(), refresh);
            const bool isIdle = waitUntil([this] { return m_application->actions().isIdle(); });
            found = isIdle ? (this->*fault)() : "a refresh does not come to its end";
            if (found.isEmpty())
                return;
        }
        if (!found.isEmpty())
            report(found);
    };
    look(&Soak::mapsFault, "mapsView", "refreshCurrentMapButton");
    look(&Soak::settingsFault, "unrankedSettingsView", nullptr);
    look(&Soak::settingsFault, "rankedSettingsView", nullptr);
    look(&Soak::playersFault, "playersView", "refreshPlayersButton");
}

QString Soak::difference(const char *what, QStringList shown, QStringList expected)
{
    m_rowsCompared += shown.size();
    if (shown == expected)
        return {};
    return QStringLiteral("%1: the server has \"%2\", the window shows \"%3\"")
        .arg(QLatin1String(what), expected.join(u'|'), shown.join(u'|'));
}

QString Soak::playersFault()
{
    RConExchange exchange;
    Request request;
    request.host = "127.0.0.1";
    request.port = m_options.port;
    request.password = m_server->password();
    request.command = "teamstatus";
    const Reply reply = awaited(exchange.send(request));
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

/// The rows of an outline that do not show what the server has.
static QStringList staleRows(const SettingsOutlineModel &model, const std::function<QString(const QString &)> &valueOf)
{
    QStringList stale;
    for (int category = 0; category < model.rowCount(); ++category) {
        const QModelIndex parent = model.index(category, 0);
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex value = model.index(row, SettingsOutlineModel::ValueColumn, parent);
            const QString name = model.settingAt(value)->dvar();
            const QString shown = value.data(Qt::EditRole).toString();
            if (!isRestless(name) && shown != valueOf(name))
                stale.append(QStringLiteral("%1 is \"%2\", its row shows \"%3\"").arg(name, valueOf(name), shown));
        }
    }
    return stale;
}

QString Soak::settingsFault()
{
    const QWidget &view = *control<QTabWidget>(window(), "tabControlMain")->currentWidget();
    Hands::type(view, "settingsFilterField", {});
    const auto valueOf = [this](const QString &variable) {
        ++m_rowsCompared;
        return valueNow(variable);
    };
    QStringList stale;
    for (QListWidget *list : view.findChildren<QListWidget *>()) { // of groups, and of gametypes
        for (int group = 0; group < list->count(); ++group) {
            list->setCurrentRow(group);
            for (const QAbstractItemView *outline : view.findChildren<QAbstractItemView *>()) {
                if (const auto *model = qobject_cast<SettingsOutlineModel *>(outline->model()))
                    stale += staleRows(*model, valueOf);
            }
        }
    }
    return stale.join(u'\n');
}
