#include "MapsView.h"

#include "Alerts.h"
#include "DvarSettingList.h"
#include "ElidingField.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "Preferences.h"

#include <QHash>
#include <QSet>
#include <QSignalBlocker>

#include <algorithm>
#include <chrono>
#include <utility>

MapsView::~MapsView() = default;

void MapsView::refreshCurrentMapButtonPressed()
{
    // One that waits for its turn will fetch what this one would.
    if (m_isRefreshWaiting || !m_server.isConnected())
        return;
    m_isRefreshWaiting = true;
    m_actions.start(refresh());
}

void MapsView::updateMapsTimer()
{
    refreshCurrentMapButtonPressed();
}

QCoro::Task<> MapsView::refresh()
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    m_isRefreshWaiting = false;
    if (!turn)
        co_return;
    co_await updateMapList(GametypeFlag | MapFlag);
}

void MapsView::forgetServer()
{
    currentGameTypeField->showText({});
    currentMapField->showText({});
    mapServerRotationController->mergeContent({});
}

QCoro::Task<> MapsView::updateMapList(int flags)
{
    if (!m_server.isConnected())
        co_return;
    QString gametype;
    if ((flags & (GametypeFlag | RotationFlag)) != 0) {
        const QString query = QStringLiteral("g_gametype");
        const Reply reply = co_await m_server.sendCommand(query);
        if (reply.isCancelled || !m_server.isConnected())
            co_return;
        if (reply.isSuccess())
            gametype = m_gametypes.findGametypeByDvar(parseMapResponse(reply.text));
        currentGameTypeField->showText(gametype);
    }
    if ((flags & MapFlag) != 0) {
        const QString query = QStringLiteral("mapname");
        const Reply reply = co_await m_server.sendCommand(query);
        if (reply.isCancelled || !m_server.isConnected())
            co_return;
        QString map;
        if (reply.isSuccess())
            map = m_maps.findMapByDvar(parseMapResponse(reply.text));
        currentMapField->showText(map);
    }
    if ((flags & RotationFlag) != 0) {
        const QString query = QStringLiteral("sv_mapRotation");
        const Reply reply = co_await m_server.sendCommand(query);
        if (!reply.isSuccess() || reply.isCancelled || !m_server.isConnected())
            co_return;
        showRotation(parseMapResponse(reply.text), gametype);
    }
}

/// Asks `find` once for each of the names that it knows: a rotation from outside may be long, and finding is slow.
static NameLookup remembering(QSet<QString> known, NameLookup find)
{
    return [known = std::move(known), find = std::move(find),
            found = QHash<QString, QString>()](const QString &dvarName) mutable {
        if (!known.contains(dvarName))
            return dvarName;
        auto name = found.constFind(dvarName);
        if (name == found.constEnd())
            name = found.insert(dvarName, find(dvarName));
        return *name;
    };
}

void MapsView::showRotation(const QString &rotation, const QString &gametype)
{
    QSet<QString> maps;
    for (const MapInst &map : m_maps.arrangedMaps())
        maps.insert(map.dvarName);
    QSet<QString> gametypes;
    for (const auto &each : m_gametypes.arrangedGametypes())
        gametypes.insert(each->dvarName());
    const NameLookup findMap =
        remembering(maps, [this](const QString &dvarName) { return m_maps.findMapByDvar(dvarName); });
    const NameLookup findGametype =
        remembering(gametypes, [this](const QString &dvarName) { return m_gametypes.findGametypeByDvar(dvarName); });
    // A rotation names the same pair again and again, so that no row of the new one is a certain row of the old.
    mapServerRotationController->mergeContent({});
    mapServerRotationController->mergeContent(parseRotation(rotation, gametype, findMap, findGametype));
}

void MapsView::autoupdateMapsChanged()
{
    stopAutoupdateMapsTimer();
    if (!m_preferences.boolValue(QStringLiteral("autoupdateMaps")))
        return;
    const int seconds = m_preferences.intValue(QStringLiteral("autoupdateMapsInterval"),
                                               autoupdateMapsInterval->minimum(), autoupdateMapsInterval->maximum());
    autoupdateMapsTimer.start(std::chrono::seconds(seconds));
}

void MapsView::stopAutoupdateMapsTimer()
{
    autoupdateMapsTimer.stop();
}

void MapsView::restartMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("map_restart")));
}

void MapsView::fastRestartMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("fast_restart")));
}

void MapsView::startNextMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("map_rotate")));
}

QCoro::Task<> MapsView::command(QString line)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const Reply reply = co_await m_server.sendCommand(line);
    if (turn && !reply.isCancelled && !reply.isSuccess())
        co_await tellOfFailure(line, reply.text);
}

QCoro::Task<> MapsView::tellOfFailure(QString command, QString error)
{
    const QString text = tr("'%1' returned an error: %2").arg(command, error);
    co_await m_alerts.run(tr("Remote Command Failure"), text);
}

MapInst MapsView::selectedMap() const
{
    const QList<MapInst> selected = mapListController->selectedObjects();
    return selected.isEmpty() ? MapInst() : selected.last();
}

MapsView::Choice MapsView::choice() const
{
    Choice chosen{gametypePopUpButton->currentText(), {}, selectedMap()};
    if (const auto gametype = m_gametypes.findGametypeByName(chosen.gametypeTitle))
        chosen.gametypeDvarName = gametype->dvarName();
    return chosen;
}

void MapsView::loadMapButtonPressed()
{
    Choice chosen = choice();
    m_actions.start(chosen.isComplete() ? loadMap(std::move(chosen)) : tellOfMissingChoice());
}

QCoro::Task<> MapsView::tellOfMissingChoice()
{
    co_await m_alerts.run(tr("Load Map"), tr("Select a gametype and a map first."));
}

QCoro::Task<> MapsView::loadMap(Choice chosen)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const QString variable = QStringLiteral("g_gametype");
    const Reply written = co_await m_server.setDvar(variable, chosen.gametypeDvarName);
    if (!turn || written.isCancelled)
        co_return;
    if (!written.isSuccess()) {
        co_await tellOfFailure(variable, written.text);
        co_return;
    }
    currentGameTypeField->showText(chosen.gametypeTitle);
    const QString line = QStringLiteral("map %1").arg(chosen.map.dvarName);
    const Reply loaded = co_await m_server.sendCommand(line);
    if (!turn || loaded.isCancelled)
        co_return;
    if (loaded.isSuccess()) {
        currentMapField->showText(chosen.map.name);
        co_return;
    }
    const QString word = QStringLiteral("map");
    co_await tellOfFailure(word, loaded.text);
}

void MapsView::gametypeListDidChange()
{
    const QString chosen = gametypePopUpButton->currentText();
    const QSignalBlocker blocker(gametypePopUpButton); // the choices in between are nobody's
    gametypePopUpButton->clear();
    for (const auto &gametype : m_gametypes.listedGametypes())
        gametypePopUpButton->addItem(gametype->name());
    const int index = gametypePopUpButton->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (gametypePopUpButton->count() > 0)
        gametypePopUpButton->setCurrentIndex(std::max(index, 0));
    choiceDidChange();
}

void MapsView::mapListDidChange()
{
    const QHash<QString, MapInst> listed = m_maps.filteredList();
    QSet<QString> shown;
    QList<MapInst> maps;
    for (const MapInst &map : m_maps.arrangedMaps()) {
        if (listed.value(map.name) != map || !listed.contains(map.name) || shown.contains(map.name))
            continue;
        shown.insert(map.name);
        maps.append(map);
    }
    mapListController->mergeContent(maps);
    choiceDidChange();
}

void MapsView::choiceDidChange()
{
    loadMapButton->setEnabled(choice().isComplete());
}
