#include "ServerRotationPane.h"

#include "ButtonAction.h"
#include "ColumnLayout.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "PlaceholderTable.h"
#include "TitleLabel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static QString columnsKey()
{
    return QStringLiteral("window/serverRotation");
}

static QList<ArrayController<RotationRow>::Column> rotationColumns()
{
    return {{ServerRotationPane::tr("Map"), [](const RotationRow &row) { return row.map; }, nullptr},
            {ServerRotationPane::tr("Gametype"), [](const RotationRow &row) { return row.gametype; }, nullptr}};
}

static QString rotationKey(const RotationRow &row)
{
    return row.map + QLatin1Char('\n') + row.gametype;
}

ServerRotationPane::ServerRotationPane(KelServer &server, const Catalogues &catalogues, QWidget *parent)
    : QWidget(parent), mapServerRotationTableView(new PlaceholderTable(this)),
      mapServerRotationController(new ArrayController<RotationRow>(rotationColumns(), rotationKey, this)),
      copyToBuilderButton(new QPushButton(tr("Copy to Builder"), this)), m_server(server),
      m_gametypes(catalogues.gametypes), m_maps(catalogues.maps)
{
    setObjectName(QStringLiteral("serverRotationPane"));
    nameControls();
    layOut();
    updatePlaceholder();
    updateCopyButton();
    connect(copyToBuilderButton, &QPushButton::clicked, this, &ServerRotationPane::copyToBuilderRequested);
    connect(mapServerRotationController, &QAbstractItemModel::rowsInserted, this,
            &ServerRotationPane::updateCopyButton);
    connect(mapServerRotationController, &QAbstractItemModel::rowsRemoved, this, &ServerRotationPane::updateCopyButton);
    connect(&m_server, &KelServer::connectionBegan, this, &ServerRotationPane::clear);
    connect(&m_server, &KelServer::isConnectedChanged, this, &ServerRotationPane::connectionDidChange);
}

void ServerRotationPane::nameControls()
{
    QHeaderView *header = mapServerRotationTableView->horizontalHeader();
    mapServerRotationTableView->setObjectName(QStringLiteral("mapServerRotationTableView"));
    mapServerRotationTableView->setAccessibleName(tr("Server rotation"));
    mapServerRotationTableView->setModel(mapServerRotationController->arranged());
    mapServerRotationTableView->setSelectionModel(mapServerRotationController->selection());
    // The server's order is the one that counts; a third click on a column title returns to it.
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->setSortIndicatorClearable(true);
    mapServerRotationTableView->setSortingEnabled(true);
    // Maps have the longer names.
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    mapServerRotationTableView->setColumnWidth(1, 150);
    copyToBuilderButton->setObjectName(QStringLiteral("copyToBuilderButton"));
    copyToBuilderButton->setToolTip(tr("Put the server's rotation into the builder below"));
}

void ServerRotationPane::layOut()
{
    auto *title = new QHBoxLayout;
    title->addWidget(titleOf(tr("Server rotation"), mapServerRotationTableView), 1);
    title->addWidget(copyToBuilderButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(title);
    layout->addWidget(mapServerRotationTableView, 1);
    setTabOrder(copyToBuilderButton, mapServerRotationTableView); // top to bottom
}

void ServerRotationPane::fillMenu(QMenu &menu)
{
    addButtonAction(menu, tr("&Copy Server's Rotation to Builder"), QKeySequence(), copyToBuilderButton);
}

void ServerRotationPane::restoreLayout(const Preferences &preferences)
{
    restoreColumns(preferences, columnsKey(), *mapServerRotationTableView->horizontalHeader());
}

void ServerRotationPane::saveLayout(Preferences &preferences) const
{
    saveColumns(preferences, columnsKey(), *mapServerRotationTableView->horizontalHeader());
}

void ServerRotationPane::clear()
{
    mapServerRotationController->mergeContent({});
}

QCoro::Task<> ServerRotationPane::updateRotation(QString gametype)
{
    const QString query = QStringLiteral("sv_mapRotation");
    const Reply reply = co_await m_server.sendCommand(query);
    if (reply.isSuccess() && !reply.isCancelled && m_server.isConnected())
        showRotation(parseMapResponse(reply.text), gametype);
}

void ServerRotationPane::showRotation(const QString &rotation, const QString &gametype)
{
    const NameLookup findMap = [this](const QString &dvarName) {
        return m_maps.findMapByDvar(dvarName);
    };
    const NameLookup findGametype = [this](const QString &dvarName) {
        return m_gametypes.findGametypeByDvar(dvarName);
    };
    // A rotation names the same pair again and again, so that no row of the new one is a certain row of the old.
    clear();
    mapServerRotationController->mergeContent(parseRotation(rotation, gametype, findMap, findGametype));
}

void ServerRotationPane::connectionDidChange()
{
    if (!m_server.isConnected())
        clear();
    updatePlaceholder();
}

void ServerRotationPane::updateCopyButton()
{
    copyToBuilderButton->setEnabled(mapServerRotationController->rowCount() > 0);
}

void ServerRotationPane::updatePlaceholder()
{
    if (m_server.isConnected())
        mapServerRotationTableView->setPlaceholder(
            tr("No map rotation is known. The server is asked for it with each connect."));
    else
        mapServerRotationTableView->setPlaceholder(tr("Not connected. Connect to a server to see its rotation."));
}
