#include "Soak.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "DvarSetting.h"
#include "GameServers.h"
#include "Hands.h"
#include "PlayerList.h"
#include "RConExchange.h"
#include "SettingsOutlineModel.h"
#include "Wait.h"

#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

/// What the server changes of itself while nobody looks.
static const QStringList &restlessVariables()
{
    static const QStringList names{QStringLiteral("mapname"), QStringLiteral("g_gametype"),
                                   QStringLiteral("sv_mapRotationCurrent")};
    return names;
}

void Soak::lookAtRows()
{
    // Players come and go, and matches end, between the refresh and the look at the server: what stays wrong is stale.
    const auto look = [this](QString (Soak::*fault)(), const char *refresh, const char *page) {
        QString found;
        for (int tries = 0; tries < 8; ++tries) {
            if (!m_hand.goTo(page)) // not in this server's mode
                return;
            m_hand.pressOn(page, refresh);
            const bool isIdle = waitUntil([this] { return m_application.actions().isIdle(); });
            found = isIdle ? (this->*fault)() : QStringLiteral("a refresh does not come to its end");
            if (found.isEmpty())
                return;
        }
        report(found);
    };
    look(&Soak::playersFault, "refreshPlayersButton", "playersView");
    look(&Soak::mapsFault, "refreshCurrentMapButton", "mapsView");
    const QString fault = settingsFault();
    if (!fault.isEmpty())
        report(fault);
    m_hand.goTo("playersView");
}

static QString joined(const PlayerRow &player)
{
    return QStringList{player.identifier, player.name, player.guid, player.ipaddress}.join(QLatin1Char('|'));
}

QString Soak::playersFault()
{
    RConExchange exchange;
    Request request;
    request.host = QStringLiteral("127.0.0.1");
    request.port = m_servers.port(serverInUse());
    request.password = GameServers::password();
    request.command = QStringLiteral("teamstatus");
    const Reply reply = awaited(exchange.send(request));
    if (!reply.isSuccess())
        return QStringLiteral("the server does not tell its players: %1").arg(reply.text);
    QStringList expected;
    for (const PlayerRow &player : parsePlayerList(reply.text).players)
        expected.append(joined(player));
    const QWidget &view = m_hand.page("playersView");
    Hands::type(view, "playerFilterField", {});
    QStringList shown;
    for (const QStringList &row : shownRows(*control<QAbstractItemView>(view, "playersTableView")))
        shown.append(row.first(4).join(QLatin1Char('|')));
    m_rowsCompared += shown.size();
    std::sort(expected.begin(), expected.end());
    std::sort(shown.begin(), shown.end());
    return shown == expected ? QString()
                             : QStringLiteral("the players are \"%1\", the table shows \"%2\"")
                                   .arg(expected.join(QLatin1Char(' ')), shown.join(QLatin1Char(' ')));
}

QStringList Soak::serverValues(const QStringList &names) const
{
    static const QRegularExpression colour(QStringLiteral("\\^[0-9]"));
    QStringList values = m_servers.values(serverInUse(), names);
    return values.replaceInStrings(colour, QString()); // as every reply loses them
}

QString Soak::mapsFault()
{
    const QWidget &view = m_hand.page("mapsView");
    const QStringList values = serverValues({QStringLiteral("mapname"), QStringLiteral("sv_mapRotation")});
    const QString map = KelMapList::sharedKelMapList()->findMapByDvar(values.at(0));
    const QString shownMap = control<QLineEdit>(view, "currentMapField")->text();
    if (shownMap != map)
        return QStringLiteral("the map is \"%1\", the field shows \"%2\"").arg(map, shownMap);
    const QStringList words = values.at(1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QStringList expected;
    for (qsizetype i = 0; i + 1 < words.size(); i += 2) {
        if (words.at(i) == QLatin1String("map"))
            expected.append(KelMapList::sharedKelMapList()->findMapByDvar(words.at(i + 1)));
    }
    const QStringList shown = shownTexts(*control<QAbstractItemView>(view, "mapServerRotationTableView"));
    m_rowsCompared += shown.size();
    return shown == expected ? QString()
                             : QStringLiteral("the rotation is \"%1\", the table shows \"%2\"")
                                   .arg(expected.join(QLatin1Char(' ')), shown.join(QLatin1Char(' ')));
}

QString Soak::settingsFault()
{
    const bool isRanked = m_application.server().isRanked();
    const char *pageName = isRanked ? "rankedSettingsView" : "unrankedSettingsView";
    if (!m_hand.goTo(pageName))
        return QStringLiteral("the settings cannot be brought to the front");
    const QWidget &view = m_hand.page(pageName);
    Hands::type(view, "settingsFilterField", {});
    QString fault;
    const auto look = [&](const char *listName, const char *outlineName) {
        auto *list = control<QListWidget>(view, listName);
        const auto &outline = *control<QAbstractItemView>(view, outlineName);
        for (int row = 0; row < list->count() && fault.isEmpty(); ++row) {
            list->setCurrentRow(row);
            fault = outlineFault(outline);
        }
    };
    look("settingsGroupList", isRanked ? "rankedOutlineView" : "unrankedOutlineView");
    if (!isRanked)
        look("gametypeList", "gametypeOutlineView");
    return fault;
}

QString Soak::outlineFault(const QAbstractItemView &outline)
{
    const auto &model = *qobject_cast<SettingsOutlineModel *>(outline.model());
    QStringList names;
    QStringList shown;
    for (int category = 0; category < model.rowCount(); ++category) {
        const QModelIndex parent = model.index(category, 0);
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex value = model.index(row, SettingsOutlineModel::ValueColumn, parent);
            const QString name = model.settingAt(value)->dvar();
            if (restlessVariables().contains(name))
                continue;
            names.append(name);
            shown.append(value.data(Qt::EditRole).toString());
        }
    }
    const QStringList expected = serverValues(names);
    m_rowsCompared += names.size();
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (shown.at(i) != expected.at(i))
            return QStringLiteral("%1 is \"%2\", its row shows \"%3\"").arg(names.at(i), expected.at(i), shown.at(i));
    }
    return {};
}

/// The variables whose latest write since the latest connect was answered.
static QStringList writtenVariables(const QList<RecordedExchange> &exchanges, quint16 port)
{
    QHash<QString, bool> isWritten;
    for (const RecordedExchange &exchange : exchanges) {
        const QStringList words = exchange.command.split(QLatin1Char(' '));
        if (exchange.port == port && words.first() == QLatin1String("dvardump"))
            isWritten.clear();
        else if (exchange.port == port && words.first() == QLatin1String("setadmindvar"))
            isWritten.insert(words.value(1), exchange.isSuccess());
    }
    QStringList names = isWritten.keys(true);
    names.removeIf([](const QString &name) { return restlessVariables().contains(name); });
    return names;
}

void Soak::lookAtWrites(const QList<RecordedExchange> &exchanges)
{
    if (serverInUse() < 0 || !m_application.server().isConnected())
        return;
    const QHash<QString, QString> session = m_application.server().dvarList();
    const QStringList names = writtenVariables(exchanges, m_servers.port(serverInUse()));
    const QStringList values = serverValues(names);
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QString known = session.value(names.at(i), values.at(i));
        if (known.trimmed() != values.at(i).trimmed())
            report(QStringLiteral("%1 was written and is \"%2\", the console takes it for \"%3\"")
                       .arg(names.at(i), values.at(i), known));
    }
    m_rowsCompared += names.size();
}
