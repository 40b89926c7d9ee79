#include "CurrentMapPane.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "ElidingField.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "Named.h"
#include "RefreshTimer.h"
#include "RotationText.h"
#include "ServerAction.h"
#include "TitleLabel.h"

#include <QAction>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

CurrentMapPane::CurrentMapPane(KelServer &server, ActionQueue &actions, Preferences &preferences,
                               const Catalogues &catalogues, QWidget *parent)
    : QWidget(parent),
      currentGameTypeField(named("currentGameTypeField", new ElidingField(this), tr("Current gametype"))),
      currentMapField(named("currentMapField", new ElidingField(this), tr("Current map"))),
      m_refreshAction(
          makeAction(this, tr("&Refresh"), &CurrentMapPane::refreshCurrentMapButtonPressed, QKeySequence::Refresh)),
      m_restartAction(makeAction(this, tr("Restart &Map"), &CurrentMapPane::restartMapButtonPressed)),
      m_fastRestartAction(makeAction(this, tr("&Fast Restart"), &CurrentMapPane::fastRestartMapButtonPressed)),
      m_nextMapAction(makeAction(this, tr("Ne&xt Map"), &CurrentMapPane::startNextMapButtonPressed)), m_server(server),
      m_actions(actions), m_gametypes(catalogues.gametypes), m_maps(catalogues.maps)
{
    setObjectName(QStringLiteral("currentMapPane"));
    setInFront(false);
    layOut(preferences);
    connect(m_refreshTimer, &RefreshTimer::due, this, &CurrentMapPane::updateMapsTimer);
    connect(&m_server, &KelServer::connectionBegan, this, &CurrentMapPane::forgetServer);
    connect(&m_server, &KelServer::isConnectedChanged, this, &CurrentMapPane::connectionDidChange);
    connectionDidChange(m_server.isConnected());
}

// The Tab key goes through the controls in the order in which they are made.
void CurrentMapPane::layOut(Preferences &preferences)
{
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(new ActionButton(m_refreshAction, "refreshCurrentMapButton", this));
    buttons->addSpacing(12);
    buttons->addWidget(new ActionButton(m_restartAction, "restartMapButton", this));
    buttons->addWidget(new ActionButton(m_fastRestartAction, "fastRestartMapButton", this));
    buttons->addWidget(new ActionButton(m_nextMapAction, "startNextMapButton", this));
    buttons->addStretch();
    m_refreshTimer = new RefreshTimer(preferences,
                                      {QStringLiteral("autoupdateMaps"), QStringLiteral("autoupdateMapsInterval"),
                                       QStringLiteral("autoupdateMapsTimer"), tr("Map refresh interval")},
                                      this);
    buttons->addWidget(m_refreshTimer);

    auto *current = new QGridLayout;
    current->addWidget(titleOf(tr("Current gametype"), currentGameTypeField), 0, 0);
    current->addWidget(currentGameTypeField, 0, 1);
    current->addWidget(titleOf(tr("Current map"), currentMapField), 1, 0);
    current->addWidget(currentMapField, 1, 1);
    current->setColumnStretch(1, 1);
    for (ElidingField *field : {currentGameTypeField, currentMapField})
        field->setPlaceholderText(tr("Unknown"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(buttons);
    layout->addSpacing(4);
    layout->addLayout(current);
}

QList<QAction *> CurrentMapPane::menuActions() const
{
    return {m_refreshAction, m_restartAction, m_fastRestartAction, m_nextMapAction};
}

void CurrentMapPane::setInFront(bool isInFront)
{
    // Other pages have the same key.
    m_refreshAction->setShortcutContext(isInFront ? Qt::WindowShortcut : Qt::WidgetShortcut);
}

void CurrentMapPane::showGametype(const QString &name)
{
    currentGameTypeField->showText(name);
}

void CurrentMapPane::showMap(const QString &name)
{
    currentMapField->showText(name);
}

void CurrentMapPane::forgetServer()
{
    showGametype({});
    showMap({});
}

void CurrentMapPane::connectionDidChange(bool isConnected)
{
    for (QAction *action : menuActions())
        action->setEnabled(isConnected);
    if (!isConnected)
        forgetServer();
}

void CurrentMapPane::refreshCurrentMapButtonPressed()
{
    // A refresh that still waits for its turn makes this one superfluous.
    if (m_isRefreshWaiting || !m_server.isConnected())
        return;
    m_isRefreshWaiting = true;
    m_actions.start(refresh(m_server.link().mayAskByItself()));
}

void CurrentMapPane::updateMapsTimer()
{
    if (m_server.link().mayAskByItself())
        refreshCurrentMapButtonPressed();
}

QCoro::Task<> CurrentMapPane::refresh(bool wasAnswering)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    m_isRefreshWaiting = false;
    const bool hasFailed = wasAnswering && !m_server.link().mayAskByItself(); // while this one waited
    if (!turn || !m_server.isConnected() || hasFailed)
        co_return;
    const std::optional<QString> gametype = co_await updateGametype();
    if (gametype)
        co_await updateMap();
}

QCoro::Task<std::optional<QString>> CurrentMapPane::updateGametype()
{
    const QString query = QStringLiteral("g_gametype");
    const Reply reply = co_await m_server.sendCommand(query);
    if (reply.isCancelled || !m_server.isConnected())
        co_return std::optional<QString>();
    QString gametype;
    if (reply.isSuccess())
        gametype = m_gametypes.findGametypeByDvar(parseMapResponse(reply.text));
    showGametype(gametype);
    if (!m_server.link().mayAskByItself()) {
        showMap({});
        co_return std::optional<QString>();
    }
    co_return std::optional<QString>(gametype);
}

QCoro::Task<std::optional<QString>> CurrentMapPane::updateMap()
{
    const QString query = QStringLiteral("mapname");
    const Reply reply = co_await m_server.sendCommand(query);
    if (reply.isCancelled || !m_server.isConnected())
        co_return std::optional<QString>();
    QString map;
    if (reply.isSuccess())
        map = m_maps.findMapByDvar(parseMapResponse(reply.text));
    showMap(map);
    if (!m_server.link().mayAskByItself())
        co_return std::optional<QString>();
    co_return std::optional<QString>(map);
}

void CurrentMapPane::restartMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("map_restart"), m_restartAction->iconText()));
}

void CurrentMapPane::fastRestartMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("fast_restart"), m_fastRestartAction->iconText()));
}

void CurrentMapPane::startNextMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("map_rotate"), m_nextMapAction->iconText()));
}

QCoro::Task<> CurrentMapPane::command(QString line, QString name)
{
    ServerAction action(m_server, m_actions, {.action = name});
    co_await action.begin();
    co_await action.send(line);
}
