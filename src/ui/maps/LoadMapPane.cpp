#include "LoadMapPane.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "Alerts.h"
#include "DvarSettingList.h"
#include "Hint.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "Named.h"
#include "ServerAction.h"
#include "TitleLabel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
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
    : QWidget(parent), gametypePopUpButton(named("gametypePopUpButton", new QComboBox(this), tr("Gametype"))),
      mapListView(named("mapListView", new QListView(this), tr("Maps"))),
      mapListController(new ArrayController<MapInst>({{tr("Map"), nameOf, nullptr}}, nameOf, this)),
      m_loadAction(makeAction(this, tr("&Load Map"), &LoadMapPane::loadMapButtonPressed)), m_server(server),
      m_actions(actions), m_alerts(alerts), m_gametypes(catalogues.gametypes), m_maps(catalogues.maps)
{
    setObjectName(QStringLiteral("loadMapPane"));
    m_loadAction->setToolTip(tr("Start the selected map with the gametype above"));
    layOut();
    gametypeListDidChange();
    mapListDidChange();
    connect(gametypePopUpButton, &QComboBox::currentIndexChanged, this, &LoadMapPane::choiceDidChange);
    connect(mapListController->selection(), &QItemSelectionModel::selectionChanged, this,
            &LoadMapPane::choiceDidChange);
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &LoadMapPane::gametypeListDidChange);
    connect(&m_maps, &KelMapList::mapListChanged, this, &LoadMapPane::mapListDidChange);
    // The catalogue is loaded before the server's mode, by which maps are left out, is known.
    connect(&m_server, &KelServer::didConnect, this, &LoadMapPane::mapListDidChange);
    connect(&m_server, &KelServer::isConnectedChanged, this, &LoadMapPane::choiceDidChange);
}

void LoadMapPane::layOut()
{
    gametypePopUpButton->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    gametypePopUpButton->setMinimumContentsLength(14);
    gametypePopUpButton->setMaxVisibleItems(20);
    gametypePopUpButton->setPlaceholderText(tr("None yet"));
    mapListView->setModel(mapListController->arranged());
    mapListView->setSelectionModel(mapListController->selection());
    mapListView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    mapListView->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    mapListView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // long names end in an ellipsis
    mapListView->setUniformItemSizes(true);
    mapListView->setSpacing(2);
    auto *hint = new Hint(mapListView);
    hint->showText(tr("The maps are listed here once you have connected to a server."));
    auto *gametype = new QHBoxLayout;
    gametype->addWidget(titleOf(tr("Gametype"), gametypePopUpButton));
    gametype->addWidget(gametypePopUpButton, 1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(gametype);
    layout->addWidget(titleOf(tr("Maps"), mapListView));
    layout->addWidget(mapListView, 1);
    layout->addWidget(new ActionButton(m_loadAction, "loadMapButton", this));
}

QWidget *LoadMapPane::focusTarget() const
{
    return mapListView;
}

void LoadMapPane::gametypeListDidChange()
{
    const QString chosen = gametypePopUpButton->currentText();
    const QSignalBlocker blocker(gametypePopUpButton); // refilling is no choice of the user
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
    m_loadAction->setEnabled(m_server.isConnected() && choice().isComplete());
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
    ServerAction action(m_server, m_actions, {.action = tr("Load Map"), .targets = {chosen.map.name}});
    co_await action.begin();
    const QString variable = QStringLiteral("g_gametype");
    const bool isSet = co_await action.write(variable, chosen.gametypeDvarName);
    if (!isSet)
        co_return;
    emit gametypeSet(chosen.gametypeTitle);
    const QString line = QStringLiteral("map %1").arg(chosen.map.dvarName);
    const bool isLoaded = co_await action.send(line);
    if (isLoaded)
        emit mapLoaded(chosen.map.name);
}
