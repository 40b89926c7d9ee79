#include "ActionQueue.h"
#include "PlaceholderTable.h"
#include "RecordedAlerts.h"
#include "SavedServers.h"
#include "ServersView.h"
#include "Wait.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

struct Servers {
    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); }, 60000);
    }

    void save(const QString &label, const QString &host, const QString &password)
    {
        view.labelField->setText(label);
        view.fillForm(host, QStringLiteral("28960"));
        view.passwordField->setText(password);
        view.saveToServerListButton->click();
    }
    QStringList labels() const
    {
        QStringList list;
        for (const SavedServer &saved : view.savedServersController->arrangedObjects())
            list.append(saved.label + "@" + saved.host);
        return list;
    }
    QList<SavedServer> stored() const
    {
        SavedServers again(folder.filePath(QStringLiteral("SavedServers.plist")), QStringLiteral("tester"));
        if (!again.load().error.isEmpty())
            return {};
        QList<SavedServer> list = again.servers();
        for (SavedServer &saved : list)
            saved.password = again.password(saved.label);
        return list;
    }

    QTemporaryDir folder;
    RecordedAlerts alerts;
    ActionQueue actions;
    SavedServers savedServers{folder.filePath(QStringLiteral("SavedServers.plist")), QStringLiteral("tester")};
    ServersView view{savedServers, actions, alerts};
};

class ServersViewTest : public QObject
{
    Q_OBJECT
private slots:
    void savingNeedsALabelToo()
    {
        Servers servers;
        servers.view.fillForm(QStringLiteral("10.0.0.1"), QStringLiteral("28960"));
        servers.view.passwordField->setText(QStringLiteral("pw"));
        QVERIFY(!servers.view.saveToServerListButton->isEnabled());
        servers.view.labelField->setText(QStringLiteral("Home"));
        QVERIFY(servers.view.saveToServerListButton->isEnabled());
        servers.view.portField->clear();
        QVERIFY(!servers.view.saveToServerListButton->isEnabled());
    }

    void savesReplacesAndDeletes()
    {
        Servers servers; // the list has not been read yet
        SavedServers earlier(servers.folder.filePath(QStringLiteral("SavedServers.plist")), QStringLiteral("tester"));
        QVERIFY(earlier.load().error.isEmpty());
        QVERIFY(earlier.save({"c", "10.0.0.4", "28960", QStringLiteral("four")}).error.isEmpty());
        servers.save(QStringLiteral("b"), QStringLiteral("10.0.0.1"), QStringLiteral("one"));
        servers.save(QStringLiteral("A"), QStringLiteral("10.0.0.2"), QStringLiteral("two"));
        servers.save(QStringLiteral("b"), QStringLiteral("10.0.0.3"), QStringLiteral("three"));
        QCOMPARE(servers.labels(), QStringList({"A@10.0.0.2", "b@10.0.0.3", "c@10.0.0.4"}));
        QCOMPARE(servers.stored().size(), 3);
        servers.save(QStringLiteral("c"), QStringLiteral("10.0.0.10"), QStringLiteral("four"));
        servers.view.savedServerTableView->sortByColumn(1, Qt::AscendingOrder); // as addresses
        QCOMPARE(servers.labels(), QStringList({"A@10.0.0.2", "b@10.0.0.3", "c@10.0.0.10"}));
        servers.view.savedServerTableView->selectRow(0);
        QTest::keyClick(servers.view.savedServerTableView, Qt::Key_Delete);
        QCOMPARE(servers.labels(), QStringList({"b@10.0.0.3", "c@10.0.0.10"}));
        QCOMPARE(servers.stored().size(), 2);
        QVERIFY(servers.alerts.shown().isEmpty());
    }

    void showsAndStoresTheSelectedPassword()
    {
        Servers servers;
        servers.save(QStringLiteral("Home"), QStringLiteral("10.0.0.1"), QStringLiteral("one"));
        QVERIFY(!servers.view.savedPasswordField->isEnabled());
        servers.view.savedServerTableView->selectRow(0);
        QCOMPARE(servers.view.savedPasswordField->text(), QStringLiteral("one"));
        servers.view.savedPasswordField->setText(QStringLiteral("two"));
        QTest::keyClick(servers.view.savedPasswordField, Qt::Key_Return);
        QCOMPARE(servers.stored().first().password.value_or(QString()), QStringLiteral("two"));
        servers.view.storePassword(QStringLiteral("Home"), QStringLiteral("three"));
        QCOMPARE(servers.view.savedPasswordField->text(), QStringLiteral("three"));
    }

    void whatIsStoredOutlivesWhatComesBeforeItIsRead()
    {
        Servers servers;
        SavedServers earlier(servers.folder.filePath(QStringLiteral("SavedServers.plist")), QStringLiteral("tester"));
        QVERIFY(earlier.load().error.isEmpty());
        QVERIFY(earlier.save({"a", "10.0.0.1", "28960", QStringLiteral("one")}).error.isEmpty());
        QVERIFY(earlier.save({"b", "10.0.0.2", "28960", QStringLiteral("two")}).error.isEmpty());
        {
            ServersView view(servers.savedServers, servers.actions, servers.alerts);
            view.storePassword(QStringLiteral("a"), QStringLiteral("new"));
            QCOMPARE(servers.stored().first().password.value_or(QString()), QStringLiteral("new"));
        }
        servers.view.deleteSelectionFromTableView();
        servers.save(QStringLiteral("c"), QStringLiteral("10.0.0.3"), QStringLiteral("three"));
        QCOMPARE(servers.stored().size(), 3);
    }

    void aDamagedListIsNamedUntilSomethingIsWritten()
    {
        Servers servers;
        QFile file(servers.folder.filePath(QStringLiteral("SavedServers.plist")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("damaged") > 0);
        file.close();
        servers.view.loadSavedServersList();
        const QString reason = servers.view.savedServerTableView->placeholder();
        QVERIFY2(reason.contains(file.fileName()), qPrintable(reason));
        QTest::keyClick(servers.view.savedServerTableView, Qt::Key_Delete);
        QCOMPARE(servers.view.savedServerTableView->placeholder(), reason);
        servers.save(QStringLiteral("Home"), QStringLiteral("10.0.0.1"), QStringLiteral("one"));
        QVERIFY(servers.view.savedServerTableView->placeholder() != reason);
    }

    void aFailedSaveIsReported()
    {
        Servers servers;
        QVERIFY(QDir(servers.folder.path()).mkdir(QStringLiteral("SavedServers.plist")));
        servers.save(QStringLiteral("Home"), QStringLiteral("10.0.0.1"), QStringLiteral("one"));
        QVERIFY(servers.settle());
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"});
        QCOMPARE(servers.view.hostField->text(), QStringLiteral("10.0.0.1"));
    }
};

QTEST_MAIN(ServersViewTest)
#include "tst_serversview.moc"
