#include "MapsView.h"

#include "ElidingField.h"
#include "EmptyHint.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "PlaceholderTable.h"
#include "Preferences.h"
#include "RotationPane.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

static ArrayController<MapInst>::Column mapColumn()
{
    return {MapsView::tr("Map"), [](const MapInst &map) { return map.name; }, nullptr};
}

static QList<ArrayController<RotationRow>::Column> rotationColumns()
{
    return {{MapsView::tr("Map"), [](const RotationRow &row) { return row.map; }, nullptr},
            {MapsView::tr("Gametype"), [](const RotationRow &row) { return row.gametype; }, nullptr}};
}

static QString rotationKey(const RotationRow &row)
{
    return row.map + QLatin1Char('\n') + row.gametype;
}

MapsView::MapsView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                   const GameCatalogues &catalogues, KelMapRotation &rotations, QWidget *parent)
    : QWidget(parent), currentGameTypeField(new ElidingField(this)), currentMapField(new ElidingField(this)),
      refreshCurrentMapButton(new QPushButton(tr("Refresh"), this)),
      restartMapButton(new QPushButton(tr("Restart Map"), this)),
      fastRestartMapButton(new QPushButton(tr("Fast Restart"), this)),
      startNextMapButton(new QPushButton(tr("Next Map"), this)),
      autoupdateMaps(new QCheckBox(tr("Refresh every"), this)), autoupdateMapsInterval(new QSpinBox(this)),
      gametypePopUpButton(new QComboBox(this)), mapListView(new QListView(this)),
      mapListController(new ArrayController<MapInst>(
          {mapColumn()}, [](const MapInst &map) { return map.name; }, this)),
      loadMapButton(new QPushButton(tr("Load Map"), this)), mapServerRotationTableView(new PlaceholderTable(this)),
      mapServerRotationController(new ArrayController<RotationRow>(rotationColumns(), rotationKey, this)),
      copyToBuilderButton(new QPushButton(tr("Copy to Builder"), this)),
      rotationPane(new RotationPane(rotations, mapRotationLabels(), actions, alerts, this)),
      addMapButton(new QPushButton(tr("Add Map…"), this)),
      setBuiltRotationButton(new QPushButton(tr("Set on Server"), this)), m_server(server), m_actions(actions),
      m_alerts(alerts), m_preferences(preferences), m_gametypes(catalogues.gametypes), m_maps(catalogues.maps),
      m_rotations(rotations)
{
    nameControls();
    nameRotationControls();
    layOut();
    gametypeListDidChange();
    mapListDidChange();
    updatePlaceholder();
    updateCopyButton();
    connectControls();
}

void MapsView::nameControls()
{
    currentGameTypeField->setObjectName(QStringLiteral("currentGameTypeField"));
    currentGameTypeField->setAccessibleName(tr("Current gametype"));
    currentMapField->setObjectName(QStringLiteral("currentMapField"));
    currentMapField->setAccessibleName(tr("Current map"));
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

void MapsView::nameRotationControls()
{
    mapServerRotationTableView->setObjectName(QStringLiteral("mapServerRotationTableView"));
    mapServerRotationTableView->setAccessibleName(tr("Server rotation"));
    mapServerRotationTableView->setModel(mapServerRotationController->arranged());
    mapServerRotationTableView->setSelectionModel(mapServerRotationController->selection());
    // The server's order is the one that counts; a third click on a column title returns to it.
    mapServerRotationTableView->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    mapServerRotationTableView->horizontalHeader()->setSortIndicatorClearable(true);
    mapServerRotationTableView->setSortingEnabled(true);
    // Maps have the longer names.
    mapServerRotationTableView->horizontalHeader()->setStretchLastSection(false);
    mapServerRotationTableView->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    mapServerRotationTableView->setColumnWidth(1, 150);
    copyToBuilderButton->setObjectName(QStringLiteral("copyToBuilderButton"));
    copyToBuilderButton->setToolTip(tr("Put the server's rotation into the builder below"));
    addMapButton->setObjectName(QStringLiteral("addMapButton"));
    setBuiltRotationButton->setObjectName(QStringLiteral("setBuiltRotationButton"));
    setBuiltRotationButton->setToolTip(tr("Make this the server's rotation and start its first map"));
    rotationPane->addButtonAtFront(addMapButton);
    rotationPane->addButtonAtEnd(setBuiltRotationButton);
    rotationPane->setTakeRows([this](const QList<QStringList> &rows) { return takeRows(rows); });
}

static QLabel *titleOf(const QString &text, QWidget *control)
{
    auto *label = new QLabel(text, control->parentWidget());
    label->setBuddy(control);
    return label;
}

QLayout *MapsView::serverRotationLayout()
{
    auto *title = new QHBoxLayout;
    title->addWidget(titleOf(tr("Server rotation"), mapServerRotationTableView), 1);
    title->addWidget(copyToBuilderButton);
    auto *layout = new QVBoxLayout;
    layout->addLayout(title);
    layout->addWidget(mapServerRotationTableView, 1);
    return layout;
}

void MapsView::layOut()
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

    auto *gametype = new QHBoxLayout;
    gametype->addWidget(titleOf(tr("Gametype"), gametypePopUpButton));
    gametype->addWidget(gametypePopUpButton, 1);
    auto *load = new QVBoxLayout;
    load->addLayout(gametype);
    load->addWidget(titleOf(tr("Maps"), mapListView));
    load->addWidget(mapListView, 1);
    load->addWidget(loadMapButton);
    auto *rotation = new QVBoxLayout;
    rotation->addLayout(serverRotationLayout(), 2);
    rotation->addSpacing(4);
    rotation->addWidget(rotationPane, 3);
    auto *below = new QHBoxLayout;
    below->addLayout(load, 2);
    below->addSpacing(8);
    below->addLayout(rotation, 3);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addSpacing(4);
    layout->addLayout(current);
    layout->addSpacing(8);
    layout->addLayout(below, 1);
    // Top to bottom, left to right.
    const QList<QWidget *> order{
        refreshCurrentMapButton, restartMapButton,       fastRestartMapButton,       startNextMapButton,
        autoupdateMaps,          autoupdateMapsInterval, gametypePopUpButton,        mapListView,
        loadMapButton,           copyToBuilderButton,    mapServerRotationTableView, rotationPane->tableView};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void MapsView::connectControls()
{
    connect(&m_server, &KelServer::connectionBegan, this, &MapsView::forgetServer);
    connect(refreshCurrentMapButton, &QPushButton::clicked, this, &MapsView::refreshCurrentMapButtonPressed);
    connect(restartMapButton, &QPushButton::clicked, this, &MapsView::restartMapButtonPressed);
    connect(fastRestartMapButton, &QPushButton::clicked, this, &MapsView::fastRestartMapButtonPressed);
    connect(startNextMapButton, &QPushButton::clicked, this, &MapsView::startNextMapButtonPressed);
    connect(loadMapButton, &QPushButton::clicked, this, &MapsView::loadMapButtonPressed);
    connect(addMapButton, &QPushButton::clicked, this, &MapsView::addMapToRotationMenuItemClicked);
    connect(setBuiltRotationButton, &QPushButton::clicked, this, &MapsView::setBuiltRotationButtonPressed);
    connect(copyToBuilderButton, &QPushButton::clicked, this, &MapsView::copyCurrentMapRotationToBuilderButtonPressed);
    connect(mapServerRotationController, &QAbstractItemModel::rowsInserted, this, &MapsView::updateCopyButton);
    connect(mapServerRotationController, &QAbstractItemModel::rowsRemoved, this, &MapsView::updateCopyButton);
    connect(autoupdateMaps, &QCheckBox::toggled, this, [this](bool isOn) {
        m_preferences.setValue(QStringLiteral("autoupdateMaps"), isOn);
        autoupdateMapsChanged();
    });
    connect(autoupdateMapsInterval, &QSpinBox::valueChanged, this, [this](int seconds) {
        m_preferences.setValue(QStringLiteral("autoupdateMapsInterval"), seconds);
        autoupdateMapsChanged();
    });
    connect(&autoupdateMapsTimer, &QTimer::timeout, this, &MapsView::updateMapsTimer);
    connect(gametypePopUpButton, &QComboBox::currentIndexChanged, this, &MapsView::choiceDidChange);
    connect(mapListController->selection(), &QItemSelectionModel::selectionChanged, this, &MapsView::choiceDidChange);
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &MapsView::gametypeListDidChange);
    connect(&m_maps, &KelMapList::mapListChanged, this, &MapsView::mapListDidChange);
    // The catalogue is loaded before the server's mode, by which maps are left out, is known.
    connect(&m_server, &KelServer::didConnect, this, &MapsView::mapListDidChange);
    connect(&m_server, &KelServer::isConnectedChanged, this, &MapsView::updatePlaceholder);
}

void MapsView::updateCopyButton()
{
    copyToBuilderButton->setEnabled(mapServerRotationController->rowCount() > 0);
}

void MapsView::updatePlaceholder()
{
    if (m_server.isConnected())
        mapServerRotationTableView->setPlaceholder(
            tr("No map rotation is known. The server is asked for it with each connect."));
    else
        mapServerRotationTableView->setPlaceholder(tr("Not connected. Connect to a server to see its rotation."));
}
