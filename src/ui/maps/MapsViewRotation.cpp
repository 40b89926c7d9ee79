#include "MapsView.h"

#include "Alerts.h"
#include "DvarSettingList.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "MapGametypePairWindowController.h"
#include "RotationPane.h"

#include <QHash>
#include <QRegularExpression>

void MapsView::addMapToRotationMenuItemClicked()
{
    if (mapGametypePairWindowController == nullptr) {
        mapGametypePairWindowController = new MapGametypePairWindowController(m_maps, m_gametypes, window());
        connect(mapGametypePairWindowController, &MapGametypePairWindowController::didPickMap, this,
                [this](const QString &map, const QString &gametype) {
                    m_actions.start(m_rotations.addToRotation(map, gametype));
                    rotationPane->tableView->scrollToBottom();
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

QCoro::Task<> MapsView::setBuiltRotation(QString rotation)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    mapServerRotationController->mergeContent({}); // what stood there is no longer certain
    const QStringList variables{QStringLiteral("sv_mapRotation"), QStringLiteral("sv_mapRotationCurrent")};
    for (const QString &variable : variables) {
        const Reply reply = co_await m_server.setDvar(variable, rotation);
        if (!turn || reply.isCancelled)
            co_return;
        if (!reply.isSuccess()) {
            co_await tellOfFailure(variable, reply.text);
            co_return;
        }
    }
    const QString line = QStringLiteral("map_rotate");
    const Reply reply = co_await m_server.sendCommand(line);
    if (!turn || reply.isCancelled)
        co_return;
    if (!reply.isSuccess()) {
        co_await tellOfFailure(line, reply.text);
        co_return;
    }
    constexpr int everything = 255;
    co_await updateMapList(everything);
}

void MapsView::copyCurrentMapRotationToBuilderButtonPressed()
{
    m_actions.start(copyToBuilder(mapServerRotationController->content()));
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

QList<qsizetype> MapsView::takeRows(const QList<QStringList> &rows)
{
    QList<qsizetype> misfits;
    QList<MapRotationInst> added;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QStringList &texts = rows.at(i);
        if (texts.size() == 2 && !texts.first().isEmpty() && !texts.last().isEmpty())
            added.append(MapRotationInst{texts.first(), texts.last()});
        else
            misfits.append(i);
    }
    m_actions.start(m_rotations.addEntries(added));
    return misfits;
}
