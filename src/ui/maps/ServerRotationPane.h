#pragma once

#include "ArrayController.h"
#include "Catalogues.h"
#include "RotationText.h"

#include <QCoroTask>

#include <QWidget>

class KelServer;
class PlaceholderTable;
class QAction;

/// The rotation that the server plays, as it told it at the connect or when it got a new one; empty without a
/// connection.
class ServerRotationPane : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the pane.
    ServerRotationPane(KelServer &server, const Catalogues &catalogues, QWidget *parent = nullptr);

    /// Asks the server for its rotation and shows it; what is shown stays when the server does not tell. Takes no turn:
    /// the action that calls it has one.
    /// @param gametype  what is played until the rotation names another gametype, as users know it.
    QCoro::Task<> updateRotation(QString gametype);
    void clear();

    /// In the server's order, however the table is sorted.
    QList<RotationRow> rows() const { return mapServerRotationController->content(); }

    /// For the menu.
    QAction *copyAction() const { return m_copyAction; }

signals:
    /// rows() are wanted in the builder.
    void copyToBuilderRequested();

private:
    void layOut();
    void showRotation(const QString &rotation, const QString &gametype);
    void connectionDidChange();
    void updateControls();

    QAction *m_copyAction;
    PlaceholderTable *mapServerRotationTableView = nullptr;
    ArrayController<RotationRow> *mapServerRotationController;

    KelServer &m_server;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
};
