#include "ActionQueue.h"
#include "Controls.h"
#include "DoubleClick.h"
#include "FileSizeLimit.h"
#include "PlaceholderTable.h"
#include "RecordedAlerts.h"
#include "SavedServers.h"
#include "ServersView.h"
#include "TestPreferences.h"

#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// The file of the saved servers, as it is before the view is made.
struct ServersFile {
    QString path() const { return folder.filePath(QStringLiteral("SavedServers.plist")); }
    void store(const QList<SavedServer> &servers)
    {
        SavedServers saved(path(), QStringLiteral("tester"));
        for (const SavedServer &server : servers)
            QVERIFY(saved.save(server).error.isEmpty());
    }
    QList<SavedServer> stored() const
    {
        SavedServers again(path(), QStringLiteral("tester"));
        if (!again.load().error.isEmpty())
            return {};
        QList<SavedServer> list = again.servers();
        for (SavedServer &saved : list)
            saved.password = again.password(saved.label);
        return list;
    }

    QTemporaryDir folder;
};

struct Servers {
    explicit Servers(const ServersFile &file) : savedServers(file.path(), QStringLiteral("tester")) {}

    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); }, 60000);
    }

    QLineEdit &field(const char *name) const { return *control<QLineEdit>(view, name); }
    QPushButton &button(const char *name) const { return *control<QPushButton>(view, name); }
    void save(const QString &label, const QString &host, const QString &password)
    {
        field("labelField").setText(label);
        view.fillForm(host, QStringLiteral("50960"));
        view.setFormPassword(password);
        button("saveToServerListButton").click();
    }
    QStringList labels() const
    {
        QStringList list;
        const QAbstractItemModel &rows = *table->model();
        for (int row = 0; row < rows.rowCount(); ++row)
            list.append(rows.index(row, 0).data().toString() + "@" + rows.index(row, 1).data().toString());
        return list;
    }

    RecordedAlerts alerts;
    ActionQueue actions;
    SavedServers savedServers;
    ServersView view{savedServers, actions, alerts};
    PlaceholderTable *table = control<PlaceholderTable>(view, "savedServerTableView");
};

class ServersViewTest : public QObject
{
    Q_OBJECT
private slots:
    void savingNeedsALabelToo()
    {
        const ServersFile file;
        Servers servers(file);
        const QPushButton &save = servers.button("saveToServerListButton");
        servers.view.fillForm(QStringLiteral("192.0.2.1"), QStringLiteral("50960"));
        servers.view.setFormPassword(QStringLiteral("pw"));
        QVERIFY(!save.isEnabled());
        servers.field("labelField").setText(QStringLiteral("Home"));
        QVERIFY(save.isEnabled());
        servers.field("portField").clear();
        QVERIFY(!save.isEnabled());
    }

    void connectsByACompleteFormOnly()
    {
        const ServersFile file;
        Servers servers(file);
        const QSignalSpy presses(&servers.view, &ServersView::connectButtonPressed);
        servers.view.fillForm(QStringLiteral("192.0.2.1"), QStringLiteral("50960"));
        servers.view.pressConnect();
        QVERIFY(!servers.view.canConnect() && presses.isEmpty());
        servers.view.setFormPassword(QStringLiteral("pw"));
        QVERIFY(servers.view.canConnect());
        servers.view.setConnecting(true);
        servers.view.pressConnect();
        QVERIFY(!servers.view.canConnect() && presses.isEmpty());
        servers.view.setConnecting(false);
        servers.view.pressConnect();
        QCOMPARE(presses.size(), 1);
    }

    void returnInTheFormConnects()
    {
        const ServersFile file;
        Servers servers(file);
        const QSignalSpy presses(&servers.view, &ServersView::connectButtonPressed);
        servers.view.fillForm(QStringLiteral("192.0.2.1"), QStringLiteral("50100"));
        QTest::keyClick(&servers.field("hostField"), Qt::Key_Return); // the password is missing
        servers.view.setFormPassword(QStringLiteral("pw"));
        for (const char *name : {"labelField", "hostField", "portField", "passwordField"})
            QTest::keyClick(&servers.field(name), Qt::Key_Return);
        QCOMPARE(presses.size(), 4);
    }

    void passwordsCannotBeReadOnTheScreen()
    {
        ServersFile file;
        file.store({{"a", "192.0.2.1", "50100", QStringLiteral("secret")}});
        Servers servers(file);
        servers.table->selectRow(0);
        servers.view.setFormPassword(QStringLiteral("secret"));
        for (const char *name : {"savedPasswordField", "passwordField"}) {
            QCOMPARE(servers.field(name).text(), QString("secret"));
            QVERIFY2(!servers.field(name).displayText().contains('s'), name);
        }
    }

    void aPasswordThatCannotBeDecryptedIsToldFromNone()
    {
        const ServersFile file;
        SavedServers ofAnother(file.path(), QStringLiteral("another"));
        QVERIFY(ofAnother.save({"a", "192.0.2.1", "50100", QStringLiteral("one")}).error.isEmpty());
        Servers servers(file);
        QLineEdit &password = servers.field("savedPasswordField");
        QVERIFY(password.placeholderText().isEmpty());
        servers.table->selectRow(0);
        QVERIFY(password.text().isEmpty() && !password.placeholderText().isEmpty());
        QTest::keyClick(&password, Qt::Key_Return); // as it is, the other account's stays
        QVERIFY(ofAnother.load().error.isEmpty());
        QCOMPARE(ofAnother.password(QStringLiteral("a")).value_or(QString()), QString("one"));
        servers.view.storePassword(QStringLiteral("a"), QString());
        QVERIFY(password.placeholderText().isEmpty());
    }

    void theFormBeginsWithTheHost()
    {
        const ServersFile file;
        Servers servers(file);
        servers.view.focusForm();
        QCOMPARE(servers.view.focusWidget(), &servers.field("hostField"));
    }

    void disconnectsFromWhatIsOrIsBeingConnected()
    {
        const ServersFile file;
        Servers servers(file);
        const QSignalSpy presses(&servers.view, &ServersView::disconnectButtonPressed);
        QPushButton &disconnectButton = servers.button("disconnectButton");
        disconnectButton.click();
        QVERIFY(presses.isEmpty());
        servers.view.setConnecting(true);
        disconnectButton.click();
        servers.view.setConnected(true);
        servers.view.setConnecting(false);
        disconnectButton.click();
        QCOMPARE(presses.size(), 2);
        servers.view.setConnected(false);
        QVERIFY(!disconnectButton.isEnabled());
    }

    void choosesTheSelectedServerWithItsPassword()
    {
        ServersFile file;
        file.store({{"a", "192.0.2.1", "50960", QStringLiteral("one")}, {"b", "192.0.2.2", "50961", "two"}});
        Servers servers(file);
        QList<SavedServer> chosen;
        connect(&servers.view, &ServersView::savedServerChosen, this,
                [&chosen](const SavedServer &server) { chosen.append(server); });
        QPushButton &connectButton = servers.button("connectToSavedServerButton");
        QVERIFY(!connectButton.isEnabled());
        servers.table->selectRow(1);
        connectButton.click();
        QTest::keyClick(servers.table, Qt::Key_Return);
        const SavedServer second{"b", "192.0.2.2", "50961", QStringLiteral("two")};
        QCOMPARE(chosen, QList<SavedServer>({second, second}));
        servers.table->selectAll(); // the last of them counts, and its password is shown
        QCOMPARE(servers.field("savedPasswordField").text(), QString("two"));
        connectButton.click();
        QCOMPARE(chosen.last(), second);
        servers.view.setConnecting(true);
        QVERIFY(!connectButton.isEnabled());
    }

    void aDoubleClickChoosesTheRowUnderThePointer_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("isDeselected"); // by the first press
        QTest::addColumn<bool>("isConnecting");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("left button") << int(Qt::LeftButton) << false << false << "b";
        QTest::newRow("Control takes it out of the selection") << int(Qt::LeftButton) << true << false << "b";
        QTest::newRow("right button") << int(Qt::RightButton) << false << false << "";
        QTest::newRow("middle button") << int(Qt::MiddleButton) << false << false << "";
        QTest::newRow("while connecting") << int(Qt::LeftButton) << false << true << "";
    }
    void aDoubleClickChoosesTheRowUnderThePointer()
    {
        QFETCH(int, button);
        QFETCH(bool, isDeselected);
        QFETCH(bool, isConnecting);
        ServersFile file;
        file.store({{"a", "192.0.2.1", "50100", QStringLiteral("one")}, {"b", "192.0.2.2", "50101", "two"}});
        Servers servers(file);
        QString chosen;
        connect(&servers.view, &ServersView::savedServerChosen, this,
                [&chosen](const SavedServer &server) { chosen += server.label; });
        servers.view.setConnecting(isConnecting);
        servers.view.resize(300, 600);
        servers.view.grab(); // lays out
        servers.table->selectRow(isDeselected ? 1 : 0);
        doubleClick(*servers.table, servers.table->visualRect(servers.table->model()->index(1, 0)).center(),
                    Qt::MouseButton(button), isDeselected ? Qt::ControlModifier : Qt::NoModifier);
        QTEST(chosen, "chosen");
    }

    void aDeletionCanBeTakenBack()
    {
        ServersFile file;
        file.store({{"a", "192.0.2.1", "50100", QStringLiteral("one")},
                    {"b", "192.0.2.2", "50101", "two"},
                    {"c", "192.0.2.3", "50102", "three"}});
        const QList<SavedServer> all = file.stored();
        Servers servers(file);
        QUndoStack &undo = *servers.view.undoStack();
        servers.table->selectRow(0);
        servers.table->selectionModel()->select(servers.table->model()->index(1, 0),
                                                QItemSelectionModel::Select | QItemSelectionModel::Rows);
        QTest::keyClick(servers.table, Qt::Key_Backspace);
        QCOMPARE(servers.labels(), QStringList{"c@192.0.2.3"});
        undo.undo();
        QCOMPARE(servers.labels(), QStringList({"a@192.0.2.1", "b@192.0.2.2", "c@192.0.2.3"}));
        QCOMPARE(file.stored(), all);
        servers.view.storePassword(QStringLiteral("b"), QStringLiteral("new"));
        undo.redo();
        QCOMPARE(file.stored(), all.mid(2));
        undo.undo();
        QCOMPARE(file.stored().at(1).password.value_or(QString()), QStringLiteral("new"));
        undo.redo();
        servers.save(QStringLiteral("a"), QStringLiteral("192.0.2.9"), QStringLiteral("nine"));
        undo.undo(); // "a" is another one by now
        QCOMPARE(servers.labels(), QStringList({"a@192.0.2.9", "b@192.0.2.2", "c@192.0.2.3"}));
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"});
        QVERIFY(!undo.canUndo());
    }

    void theTableKeepsItsColumnsAndSorting()
    {
        ServersFile file;
        file.store({{"a", "192.0.2.2", "9999", std::nullopt}, {"b", "192.0.2.1", "50101", std::nullopt}});
        TestPreferences preferences(file.folder);
        {
            Servers servers(file);
            servers.view.restoreLayout(preferences); // nothing kept yet
            QCOMPARE(servers.labels(), QStringList({"a@192.0.2.2", "b@192.0.2.1"}));
            servers.table->sortByColumn(2, Qt::AscendingOrder); // as numbers
            QCOMPARE(servers.labels(), QStringList({"a@192.0.2.2", "b@192.0.2.1"}));
            servers.table->sortByColumn(1, Qt::AscendingOrder);
            servers.table->setColumnWidth(1, 143);
            servers.view.saveLayout(preferences);
        }
        Servers servers(file);
        servers.view.restoreLayout(preferences);
        QCOMPARE(servers.labels(), QStringList({"b@192.0.2.1", "a@192.0.2.2"}));
        QCOMPARE(servers.table->columnWidth(1), 143);
    }

    void savesReplacesAndDeletes()
    {
        ServersFile file;
        file.store({{"c", "192.0.2.4", "50960", QStringLiteral("four")}});
        Servers servers(file);
        QCOMPARE(servers.labels(), QStringList{"c@192.0.2.4"});
        servers.save(QStringLiteral("b"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        servers.save(QStringLiteral("A"), QStringLiteral("192.0.2.2"), QStringLiteral("two"));
        servers.save(QStringLiteral("b"), QStringLiteral("192.0.2.3"), QStringLiteral("three"));
        QCOMPARE(servers.labels(), QStringList({"A@192.0.2.2", "b@192.0.2.3", "c@192.0.2.4"}));
        QCOMPARE(file.stored().size(), 3);
        servers.save(QStringLiteral("c"), QStringLiteral("192.0.2.10"), QStringLiteral("four"));
        servers.table->sortByColumn(1, Qt::AscendingOrder); // as addresses
        QCOMPARE(servers.labels(), QStringList({"A@192.0.2.2", "b@192.0.2.3", "c@192.0.2.10"}));
        servers.table->selectRow(0);
        QTest::keyClick(servers.table, Qt::Key_Delete);
        QCOMPARE(servers.labels(), QStringList({"b@192.0.2.3", "c@192.0.2.10"}));
        QCOMPARE(file.stored().size(), 2);
        QVERIFY(servers.alerts.shown().isEmpty());
    }

    void showsAndStoresTheSelectedPassword()
    {
        const ServersFile file;
        Servers servers(file);
        QLineEdit &password = servers.field("savedPasswordField");
        servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        QVERIFY(!password.isEnabled());
        servers.table->selectRow(0);
        QCOMPARE(password.text(), QStringLiteral("one"));
        password.setText(QStringLiteral("two"));
        QTest::keyClick(&password, Qt::Key_Return);
        QCOMPARE(file.stored().first().password.value_or(QString()), QStringLiteral("two"));
        servers.view.storePassword(QStringLiteral("Home"), QStringLiteral("three"));
        QCOMPARE(password.text(), QStringLiteral("three"));
        servers.save(QStringLiteral("Work"), QStringLiteral("192.0.2.2"), QStringLiteral("four"));
        servers.table->selectAll(); // the last one is what the field shows
        QCOMPARE(password.text(), QStringLiteral("four"));
        password.setText(QStringLiteral("five"));
        QTest::keyClick(&password, Qt::Key_Return);
        QCOMPARE(file.stored().first().password.value_or(QString()), QStringLiteral("three"));
        QCOMPARE(file.stored().last().password.value_or(QString()), QStringLiteral("five"));
    }

    void whatIsStoredOutlivesTheFirstChange()
    {
        ServersFile file;
        file.store({{"a", "192.0.2.1", "50960", QStringLiteral("one")}, {"b", "192.0.2.2", "50960", "two"}});
        {
            Servers servers(file);
            servers.view.storePassword(QStringLiteral("a"), QStringLiteral("new"));
            QCOMPARE(file.stored().size(), 2);
            QCOMPARE(file.stored().first().password.value_or(QString()), QStringLiteral("new"));
        }
        Servers servers(file);
        servers.view.deleteSelectionFromTableView();
        QCOMPARE(file.stored().size(), 2);
        servers.save(QStringLiteral("c"), QStringLiteral("192.0.2.3"), QStringLiteral("three"));
        QCOMPARE(file.stored().size(), 3);
    }

    void aDamagedListIsNamedUntilSomethingIsWritten()
    {
        const ServersFile saved;
        QFile file(saved.path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("damaged") > 0);
        file.close();
        Servers servers(saved);
        const QString reason = servers.table->placeholder();
        QVERIFY2(reason.contains(file.fileName()), qPrintable(reason));
        QTest::keyClick(servers.table, Qt::Key_Delete);
        QCOMPARE(servers.table->placeholder(), reason);
        QVERIFY(servers.actions.isIdle() && servers.alerts.shown().isEmpty()); // the window may not be there yet
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("damaged"));
        servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        QVERIFY(servers.table->placeholder() != reason);
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"}); // tells of the copy
        QCOMPARE(QDir(saved.folder.path()).entryList(QDir::Files).size(), 2);
    }

    void aDamagedListStaysNamedWhileNothingCanBeWritten()
    {
        const ServersFile saved;
        QFile file(saved.path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("damaged") > 0);
        file.close();
        Servers servers(saved);
        const QString reason = servers.table->placeholder();
        {
            const FileSizeLimit disk(0);
            servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        }
        QCOMPARE(servers.table->placeholder(), reason);
        QVERIFY(servers.settle());
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"});
    }

    void aFailedSaveIsReported()
    {
        const ServersFile file;
        Servers servers(file);
        QVERIFY(QDir(file.folder.path()).mkdir(QStringLiteral("SavedServers.plist")));
        servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        QVERIFY(servers.settle());
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"});
        QCOMPARE(servers.field("hostField").text(), QStringLiteral("192.0.2.1"));
    }
};

QTEST_MAIN(ServersViewTest)
#include "tst_serversview.moc"
