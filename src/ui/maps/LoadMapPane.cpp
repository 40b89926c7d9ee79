#include "LoadMapPane.h"

#include "ActionQueue.h"
#include "ButtonAction.h"
#include "CommandFailure.h"
#include "DvarSettingList.h"
#include "EmptyHint.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "TitleLabel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

static QString nameOf(const MapInst &map)
{
    return map.name;
}

LoadMapPane::LoadMapPane(KelServer &server, ActionQueue &actions, Alerts &alerts, const Catalogues &catalogues,
                         QWidget *parent)
    : QWidget(parent), gametypePopUpButton(new QComboBox(this)), mapListView(new QListView(this)),
      mapListController(new ArrayController<MapInst>({{tr("Map"), nameOf, nullptr}}, nameOf, this)),
      loadMapButton(new QPushButton(tr("Load Map"), this)), m_server(server), m_actions(actions), m_alerts(alerts),
      m_gametypes(catalogues.gametypes), m_maps(catalogues.maps)
{
    setObjectName(QStringLiteral("loadMapPane"));
    nameControls();
    layOut();
    gametypeListDidChange();
    mapListDidChange();
    connectControls();
}

void LoadMapPane::nameControls()
{
    gametypePopUpButton->setObjectName(QStringLiteral("gametypePopUpButton"));
    gametypePopUpButton->setAccessibleName(tr("Gametype"));
    gametypePopUpButton->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    gametypePopUpButton->setMinimumContentsLength(14);
    gametypePopUpButton->setMaxVisibleItems(20);
    gametypePopUpButton->setPlaceholderText(tr("None yet"));
    mapListView->setObjectName(QStringLiteral("mapListView"));
    mapListView->setAccessibleName(tr("Maps"));
    mapListView->setModel(mapListController->arranged());
    mapListView->setSelectionModel(mapListController->selection());
    mapListView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    mapListView->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    mapListView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // long names end in an ellipsis
    mapListView->setUniformItemSizes(true);
    mapListView->setSpacing(2);
    auto *hint = new EmptyHint(mapListView);
    hint->setText(tr("The maps are listed here once you have connected to a server."));
    loadMapButton->setObjectName(QStringLiteral("loadMapButton"));
    loadMapButton->setToolTip(tr("Start the selected map with the gametype above"));
}

void LoadMapPane::layOut()
{
    auto *gametype = new QHBoxLayout;
    gametype->addWidget(titleOf(tr("Gametype"), gametypePopUpButton));
    gametype->addWidget(gametypePopUpButton, 1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(gametype);
    layout->addWidget(titleOf(tr("Maps"), mapListView));
    layout->addWidget(mapListView, 1);
    layout->addWidget(loadMapButton);
}

void LoadMapPane::connectControls()
{
    connect(loadMapButton, &QPushButton::clicked, this, &LoadMapPane::loadMapButtonPressed);
    connect(gametypePopUpButton, &QComboBox::currentIndexChanged, this, &LoadMapPane::choiceDidChange);
    connect(mapListController->selection(), &QItemSelectionModel::selectionChanged, this,
            &LoadMapPane::choiceDidChange);
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &LoadMapPane::gametypeListDidChange);
    connect(&m_maps, &KelMapList::mapListChanged, this, &LoadMapPane::mapListDidChange);
    // The catalogue is loaded before the server's mode, by which maps are left out, is known.
    connect(&m_server, &KelServer::didConnect, this, &LoadMapPane::mapListDidChange);
    connect(&m_server, &KelServer::isConnectedChanged, this, &LoadMapPane::choiceDidChange);
}

QWidget *LoadMapPane::focusTarget() const
{
    return mapListView;
}

void LoadMapPane::fillMenu(QMenu &menu)
{
    addButtonAction(menu, tr("&Load Map"), QKeySequence(), loadMapButton);
}

void LoadMapPane::gametypeListDidChange()
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

void LoadMapPane::mapListDidChange()
{
    mapListController->mergeContent(m_maps.listedMaps());
    choiceDidChange();
}

MapInst LoadMapPane::selectedMap() const
{
    const QList<MapInst> selected = mapListController->selectedObjects();
    return selected.isEmpty() ? MapInst() : selected.last();
}

LoadMapPane::Choice LoadMapPane::choice() const
{
    Choice chosen{gametypePopUpButton->currentText(), {}, selectedMap()};
    if (const auto gametype = m_gametypes.findGametypeByName(chosen.gametypeTitle))
        chosen.gametypeDvarName = gametype->dvarName();
    return chosen;
}

void LoadMapPane::choiceDidChange()
{
    loadMapButton->setEnabled(m_server.isConnected() && choice().isComplete());
}

void LoadMapPane::loadMapButtonPressed()
{
    Choice chosen = choice();
    m_actions.start(chosen.isComplete() ? loadMap(std::move(chosen)) : tellOfMissingChoice());
}

QCoro::Task<> LoadMapPane::tellOfMissingChoice()
{
    co_await m_alerts.run(tr("Load Map"), tr("Select a gametype and a map first."));
}

QCoro::Task<> LoadMapPane::loadMap(Choice chosen)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const QString variable = QStringLiteral("g_gametype");
    const Reply written = co_await m_server.setDvar(variable, chosen.gametypeDvarName);
    if (!turn || written.isCancelled)
        co_return;
    if (!written.isSuccess()) {
        co_await tellOfFailure(m_alerts, variable, written.text);
        co_return;
    }
    emit gametypeSet(chosen.gametypeTitle);
    const QString line = QStringLiteral("map %1").arg(chosen.map.dvarName);
    const Reply loaded = co_await m_server.sendCommand(line);
    if (!turn || loaded.isCancelled)
        co_return;
    if (loaded.isSuccess()) {
        emit mapLoaded(chosen.map.name);
        co_return;
    }
    const QString word = QStringLiteral("map");
    co_await tellOfFailure(m_alerts, word, loaded.text);
}
