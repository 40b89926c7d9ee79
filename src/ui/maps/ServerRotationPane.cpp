#include "ServerRotationPane.h"

#include "ActionButton.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "Named.h"
#include "PlaceholderTable.h"
#include "TitleLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

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
    : QWidget(parent), m_copyAction(makeAction(this, tr("&Copy Server's Rotation to Builder"),
                                               &ServerRotationPane::copyToBuilderRequested)),
      mapServerRotationController(new ArrayController<RotationRow>(rotationColumns(), rotationKey, this)),
      m_server(server), m_gametypes(catalogues.gametypes), m_maps(catalogues.maps)
{
    setObjectName(QStringLiteral("serverRotationPane"));
    m_copyAction->setIconText(tr("Copy to Builder"));
    m_copyAction->setToolTip(tr("Put the server's rotation into the builder below"));
    layOut();
    updateControls();
    connect(mapServerRotationController, &QAbstractItemModel::rowsInserted, this, &ServerRotationPane::updateControls);
    connect(mapServerRotationController, &QAbstractItemModel::rowsRemoved, this, &ServerRotationPane::updateControls);
    connect(&m_server, &KelServer::connectionBegan, this, &ServerRotationPane::clear);
    connect(&m_server, &KelServer::isConnectedChanged, this, &ServerRotationPane::connectionDidChange);
}

// The Tab key goes through the controls in the order in which they are made: top to bottom.
void ServerRotationPane::layOut()
{
    auto *copyToBuilderButton = new ActionButton(m_copyAction, "copyToBuilderButton", this);
    mapServerRotationTableView = named("mapServerRotationTableView", new PlaceholderTable(this), tr("Server rotation"));
    mapServerRotationTableView->setModel(mapServerRotationController->arranged());
    mapServerRotationTableView->setSelectionModel(mapServerRotationController->selection());
    mapServerRotationTableView->sortOnDemand(true);    // the server's order is the one that counts
    mapServerRotationTableView->setStretchedColumn(0); // maps have the longer names
    mapServerRotationTableView->setColumnWidth(1, 150);
    auto *title = new QHBoxLayout;
    title->addWidget(titleOf(tr("Server rotation"), mapServerRotationTableView), 1);
    title->addWidget(copyToBuilderButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(title);
    layout->addWidget(mapServerRotationTableView, 1);
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
    // A rotation may hold the same pair several times, so rows of the old and the new one cannot be matched.
    clear();
    mapServerRotationController->mergeContent(parseRotation(rotation, gametype, findMap, findGametype));
}

void ServerRotationPane::connectionDidChange()
{
    if (!m_server.isConnected())
        clear();
    updateControls();
}

void ServerRotationPane::updateControls()
{
    m_copyAction->setEnabled(mapServerRotationController->rowCount() > 0);
    mapServerRotationTableView->setPlaceholder(
        m_server.isConnected() ? tr("No map rotation is known. The server is asked for it with each connect.")
                               : tr("Not connected. Connect to a server to see its rotation."));
}
