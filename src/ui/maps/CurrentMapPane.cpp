#include "CurrentMapPane.h"

#include "ActionQueue.h"
#include "ButtonAction.h"
#include "CommandFailure.h"
#include "ElidingField.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "Preferences.h"
#include "RotationText.h"
#include "TitleLabel.h"

#include <QAction>
#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <chrono>

CurrentMapPane::CurrentMapPane(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                               const Catalogues &catalogues, QWidget *parent)
    : QWidget(parent), currentGameTypeField(new ElidingField(this)), currentMapField(new ElidingField(this)),
      refreshCurrentMapButton(new QPushButton(tr("Refresh"), this)),
      restartMapButton(new QPushButton(tr("Restart Map"), this)),
      fastRestartMapButton(new QPushButton(tr("Fast Restart"), this)),
      startNextMapButton(new QPushButton(tr("Next Map"), this)),
      autoupdateMaps(new QCheckBox(tr("Refresh every"), this)), autoupdateMapsInterval(new QSpinBox(this)),
      autoupdateMapsTimer(new QTimer(this)), m_server(server), m_actions(actions), m_alerts(alerts),
      m_preferences(preferences), m_gametypes(catalogues.gametypes), m_maps(catalogues.maps)
{
    setObjectName(QStringLiteral("currentMapPane"));
    nameControls();
    layOut();
    connectControls();
    connectionDidChange(m_server.isConnected());
}

void CurrentMapPane::nameControls()
{
    currentGameTypeField->setObjectName(QStringLiteral("currentGameTypeField"));
    currentGameTypeField->setAccessibleName(tr("Current gametype"));
    currentMapField->setObjectName(QStringLiteral("currentMapField"));
    currentMapField->setAccessibleName(tr("Current map"));
    for (ElidingField *field : {currentGameTypeField, currentMapField})
        field->setPlaceholderText(tr("Unknown"));
    refreshCurrentMapButton->setObjectName(QStringLiteral("refreshCurrentMapButton"));
    restartMapButton->setObjectName(QStringLiteral("restartMapButton"));
    fastRestartMapButton->setObjectName(QStringLiteral("fastRestartMapButton"));
    startNextMapButton->setObjectName(QStringLiteral("startNextMapButton"));
    autoupdateMaps->setObjectName(QStringLiteral("autoupdateMaps"));
    autoupdateMaps->setChecked(m_preferences.boolValue(QStringLiteral("autoupdateMaps")));
    autoupdateMapsInterval->setObjectName(QStringLiteral("autoupdateMapsInterval"));
    autoupdateMapsInterval->setAccessibleName(tr("Map refresh interval"));
    autoupdateMapsInterval->setRange(1, 86400);
    autoupdateMapsInterval->setSuffix(tr(" s"));
    autoupdateMapsInterval->setValue(m_preferences.intValue(QStringLiteral("autoupdateMapsInterval"), 1, 86400));
    autoupdateMapsTimer->setObjectName(QStringLiteral("autoupdateMapsTimer"));
}

void CurrentMapPane::layOut()
{
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {refreshCurrentMapButton, restartMapButton, fastRestartMapButton, startNextMapButton})
        buttons->addWidget(button);
    buttons->insertSpacing(1, 12);
    buttons->addStretch();
    buttons->addWidget(autoupdateMaps);
    buttons->addWidget(autoupdateMapsInterval);

    auto *current = new QGridLayout;
    current->addWidget(titleOf(tr("Current gametype"), currentGameTypeField), 0, 0);
    current->addWidget(currentGameTypeField, 0, 1);
    current->addWidget(titleOf(tr("Current map"), currentMapField), 1, 0);
    current->addWidget(currentMapField, 1, 1);
    current->setColumnStretch(1, 1);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(buttons);
    layout->addSpacing(4);
    layout->addLayout(current);
}

void CurrentMapPane::connectControls()
{
    connect(&m_server, &KelServer::connectionBegan, this, &CurrentMapPane::forgetServer);
    connect(&m_server, &KelServer::isConnectedChanged, this, &CurrentMapPane::connectionDidChange);
    connect(refreshCurrentMapButton, &QPushButton::clicked, this, &CurrentMapPane::refreshCurrentMapButtonPressed);
    connect(restartMapButton, &QPushButton::clicked, this, &CurrentMapPane::restartMapButtonPressed);
    connect(fastRestartMapButton, &QPushButton::clicked, this, &CurrentMapPane::fastRestartMapButtonPressed);
    connect(startNextMapButton, &QPushButton::clicked, this, &CurrentMapPane::startNextMapButtonPressed);
    connect(autoupdateMaps, &QCheckBox::toggled, this, [this](bool isOn) {
        m_preferences.setValue(QStringLiteral("autoupdateMaps"), isOn);
        autoupdateMapsChanged();
    });
    connect(autoupdateMapsInterval, &QSpinBox::valueChanged, this, [this](int seconds) {
        m_preferences.setValue(QStringLiteral("autoupdateMapsInterval"), seconds);
        autoupdateMapsChanged();
    });
    connect(autoupdateMapsTimer, &QTimer::timeout, this, &CurrentMapPane::updateMapsTimer);
}

void CurrentMapPane::fillMenu(QMenu &menu)
{
    m_refreshAction = addRefreshAction(menu, refreshCurrentMapButton);
    addButtonAction(menu, tr("Restart &Map"), QKeySequence(), restartMapButton);
    addButtonAction(menu, tr("&Fast Restart"), QKeySequence(), fastRestartMapButton);
    addButtonAction(menu, tr("Ne&xt Map"), QKeySequence(), startNextMapButton);
}

void CurrentMapPane::setInFront(bool isInFront)
{
    setActsInWindow(m_refreshAction, isInFront);
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
    for (QPushButton *button : {refreshCurrentMapButton, restartMapButton, fastRestartMapButton, startNextMapButton})
        button->setEnabled(isConnected);
    if (!isConnected)
        forgetServer();
}

void CurrentMapPane::refreshCurrentMapButtonPressed()
{
    // One that waits for its turn will fetch what this one would.
    if (m_isRefreshWaiting || !m_server.isConnected())
        return;
    m_isRefreshWaiting = true;
    m_actions.start(refresh());
}

void CurrentMapPane::updateMapsTimer()
{
    if (m_server.link().mayAskByItself())
        refreshCurrentMapButtonPressed();
}

QCoro::Task<> CurrentMapPane::refresh()
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    m_isRefreshWaiting = false;
    if (!turn || !m_server.isConnected())
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
    co_return std::optional<QString>(map);
}

void CurrentMapPane::restartMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("map_restart")));
}

void CurrentMapPane::fastRestartMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("fast_restart")));
}

void CurrentMapPane::startNextMapButtonPressed()
{
    m_actions.start(command(QStringLiteral("map_rotate")));
}

QCoro::Task<> CurrentMapPane::command(QString line)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const Reply reply = co_await m_server.sendCommand(line);
    if (turn && !reply.isCancelled && !reply.isSuccess())
        co_await tellOfFailure(m_alerts, line, reply.text);
}

void CurrentMapPane::autoupdateMapsChanged()
{
    stopAutoupdateMapsTimer();
    if (!m_preferences.boolValue(QStringLiteral("autoupdateMaps")))
        return;
    const int seconds = m_preferences.intValue(QStringLiteral("autoupdateMapsInterval"),
                                               autoupdateMapsInterval->minimum(), autoupdateMapsInterval->maximum());
    autoupdateMapsTimer->start(std::chrono::seconds(seconds));
}

void CurrentMapPane::stopAutoupdateMapsTimer()
{
    autoupdateMapsTimer->stop();
}
