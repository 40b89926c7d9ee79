#include "MapsView.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "Alerts.h"
#include "CurrentMapPane.h"
#include "DvarSettingList.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelServer.h"
#include "LoadMapPane.h"
#include "MapGametypePairWindowController.h"
#include "RefreshTimer.h"
#include "RotationPane.h"
#include "ServerAction.h"
#include "ServerRotationPane.h"

#include <QHBoxLayout>
#include <QHash>
#include <QMenu>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <optional>

// The Tab key goes through the panes in the order in which they are made: top to bottom, left to right.
MapsView::MapsView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                   const Catalogues &catalogues, KelMapRotation &rotations, QWidget *parent)
    : TabPage(parent), currentMapPane(new CurrentMapPane(server, actions, preferences, catalogues, this)),
      loadMapPane(new LoadMapPane(server, actions, alerts, catalogues, this)),
      serverRotationPane(new ServerRotationPane(server, catalogues, this)),
      rotationPane(new RotationPane(rotations, actions, alerts, this)),
      m_addMapAction(makeAction(this, tr("&Add Map…"), &MapsView::addMapToRotationMenuItemClicked)),
      m_setRotationAction(makeAction(this, tr("Set Rotation &on Server"), &MapsView::setBuiltRotationButtonPressed)),
      m_server(server), m_actions(actions), m_alerts(alerts), m_gametypes(catalogues.gametypes),
      m_maps(catalogues.maps), m_rotations(rotations)
{
    setFocusProxy(loadMapPane->focusTarget());
    layOut();
    connect(loadMapPane, &LoadMapPane::gametypeSet, currentMapPane, &CurrentMapPane::showGametype);
    connect(loadMapPane, &LoadMapPane::mapLoaded, currentMapPane, &CurrentMapPane::showMap);
    connect(serverRotationPane, &ServerRotationPane::copyToBuilderRequested, this,
            &MapsView::copyCurrentMapRotationToBuilderButtonPressed);
    connect(&m_server, &KelServer::isConnectedChanged, m_setRotationAction, &QAction::setEnabled);
    m_setRotationAction->setEnabled(m_server.isConnected());
}

void MapsView::layOut()
{
    m_setRotationAction->setIconText(tr("Set on Server"));
    m_setRotationAction->setToolTip(tr("Make this the server's rotation and start its first map"));
    rotationPane->addButtonAtFront(new ActionButton(m_addMapAction, "addMapButton", this));
    rotationPane->addButtonAtEnd(new ActionButton(m_setRotationAction, "setBuiltRotationButton", this));
    auto *rotation = new QVBoxLayout;
    rotation->addWidget(serverRotationPane, 2);
    rotation->addSpacing(4);
    rotation->addWidget(rotationPane, 3);
    auto *below = new QHBoxLayout;
    below->addWidget(loadMapPane, 2);
    below->addSpacing(8);
    below->addLayout(rotation, 3);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(currentMapPane);
    layout->addSpacing(8);
    layout->addLayout(below, 1);
}

void MapsView::fillMenu(QMenu &menu)
{
    menu.addActions(currentMapPane->menuActions());
    menu.addAction(loadMapPane->loadAction());
    menu.addSeparator();
    menu.addActions({serverRotationPane->copyAction(), m_addMapAction, m_setRotationAction});
}

PageDocument *MapsView::document()
{
    return rotationPane;
}

void MapsView::setInFront(bool isInFront)
{
    currentMapPane->setInFront(isInFront);
}

QCoro::Task<> MapsView::didConnect()
{
    m_actions.start(fetchInTurns(m_server.connection()));
    co_return;
}

QCoro::Task<> MapsView::fetchInTurns(quint64 connection)
{
    std::optional<QString> gametype;
    {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        if (turn && connection == m_server.connection())
            gametype = co_await currentMapPane->updateGametype();
    }
    std::optional<QString> map;
    if (gametype) {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        if (turn && connection == m_server.connection())
            map = co_await currentMapPane->updateMap();
    }
    if (map) {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        if (turn && connection == m_server.connection())
            co_await serverRotationPane->updateRotation(*gametype);
    }
    if (m_server.isConnected() && connection == m_server.connection())
        currentMapPane->refreshTimer().restart();
}

void MapsView::willDisconnect()
{
    currentMapPane->refreshTimer().stop();
}

QCoro::Task<> MapsView::updateMapList(int flags)
{
    if (!m_server.isConnected())
        co_return;
    QString gametype;
    if ((flags & (GametypeFlag | RotationFlag)) != 0) {
        const std::optional<QString> told = co_await currentMapPane->updateGametype();
        if (!told)
            co_return;
        gametype = *told;
    }
    if ((flags & MapFlag) != 0) {
        const std::optional<QString> told = co_await currentMapPane->updateMap();
        if (!told)
            co_return;
    }
    if ((flags & RotationFlag) != 0)
        co_await serverRotationPane->updateRotation(gametype);
}

void MapsView::addMapToRotationMenuItemClicked()
{
    if (mapGametypePairWindowController == nullptr) {
        mapGametypePairWindowController = new MapGametypePairWindowController(m_maps, m_gametypes, window());
        connect(mapGametypePairWindowController, &MapGametypePairWindowController::didPickMap, this,
                [this](const QString &map, const QString &gametype) {
                    m_actions.start(m_rotations.addToRotation(map, gametype));
                    rotationPane->scrollToEnd();
                });
    }
    mapGametypePairWindowController->setMode(MapGametypePairWindowController::Mode::MapRotationEntry);
    mapGametypePairWindowController->open();
}

void MapsView::setBuiltRotationButtonPressed()
{
    QList<RotationRow> rows;
    for (const auto &entry : m_rotations.entries())
        rows.append(RotationRow{entry->map, entry->gametype});
    const QHash<QString, MapInst> maps = m_maps.list();
    const auto findMapDvar = [&maps](const QString &name) -> QString {
        return maps.value(name).dvarName;
    };
    const auto findGametypeDvar = [this](const QString &name) -> QString {
        const auto gametype = m_gametypes.findGametypeByName(name);
        return gametype == nullptr ? QString() : gametype->dvarName();
    };
    const BuiltRotation built = buildRotation(rows, findMapDvar, findGametypeDvar);
    m_actions.start(built.isComplete() ? setBuiltRotation(built.text) : tellOfUnknownNames(built));
}

QCoro::Task<> MapsView::tellOfUnknownNames(BuiltRotation built)
{
    constexpr qsizetype mostNames = 10;
    QStringList names = built.unknownMaps + built.unknownGametypes;
    names.replaceInStrings(QRegularExpression(QStringLiteral("^\\s*$")), tr("(no name)"));
    if (names.size() > mostNames)
        names = names.mid(0, mostNames) + QStringList(QStringLiteral("…"));
    const QString text = tr("The catalogues do not know these maps or gametypes:\n\n%1\n\nNothing was sent to the "
                            "server. Remove them from the rotation, or add them to the catalogues.")
                             .arg(names.join(QLatin1Char('\n')));
    co_await m_alerts.run(tr("Rotation Not Set"), text);
}

QCoro::Task<bool> MapsView::confirmEmptyRotation()
{
    const QString text = tr("The server's rotation will be empty: the match ends at once, and the server has no map to "
                            "go on to. What it holds now can then no longer be copied to the builder.");
    const QStringList buttons{tr("Set Empty Rotation"), tr("Cancel")};
    const AlertManner manner{1};
    const int pressed = co_await m_alerts.run(tr("Set Empty Rotation"), text, buttons, manner);
    co_return pressed == 0;
}

QCoro::Task<> MapsView::setBuiltRotation(QString rotation)
{
    ServerAction action(m_server, m_actions, {.action = tr("Set Rotation on Server")});
    bool goesOn = co_await action.begin();
    if (goesOn && rotation.isEmpty())
        goesOn = co_await confirmEmptyRotation();
    if (!goesOn || !action)
        co_return;
    serverRotationPane->clear(); // the server's rotation is unknown until it is read again
    const QStringList variables{QStringLiteral("sv_mapRotation"), QStringLiteral("sv_mapRotationCurrent")};
    for (const QString &variable : variables) {
        const bool isSet = co_await action.write(variable, rotation);
        if (!isSet)
            co_return;
    }
    const QString line = QStringLiteral("map_rotate");
    const bool isStarted = co_await action.send(line);
    if (isStarted)
        co_await updateMapList(AllFlags);
}

void MapsView::copyCurrentMapRotationToBuilderButtonPressed()
{
    m_actions.start(copyToBuilder(serverRotationPane->rows()));
}

QCoro::Task<> MapsView::copyToBuilder(QList<RotationRow> rows)
{
    const bool goesOn = co_await m_rotations.saveUnsavedChanges();
    if (!goesOn)
        co_return;
    QList<MapRotationInst> entries;
    for (const RotationRow &row : std::as_const(rows))
        entries.append(MapRotationInst{row.map, row.gametype});
    co_await m_rotations.replaceEntries(entries);
}
