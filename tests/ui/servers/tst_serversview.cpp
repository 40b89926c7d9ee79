#include "ActionQueue.h"
#include "Controls.h"
#include "DoubleClick.h"
#include "FileSizeLimit.h"
#include "PlaceholderTable.h"
#include "RecordedAlerts.h"
#include "SavedServers.h"
#include "ServersView.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// A pane over a file of saved servers.
struct Servers {
    explicit Servers(const QList<SavedServer> &stored = {})
        : Servers("tester", [&stored](const QString &file) {
              SavedServers saved(file, QStringLiteral("tester"));
              for (const SavedServer &server : stored)
                  QVERIFY(saved.save(server).error.isEmpty());
          })
    {
    }
    /// @param prepare  puts something in the place of the file first.
    Servers(const QString &account, const std::function<void(const QString &file)> &prepare)
    {
        prepare(path);
        savedServers = std::make_unique<SavedServers>(path, account);
        view = std::make_unique<ServersView>(*savedServers, actions, alerts);
        table = control<PlaceholderTable>(*view, "savedServerTableView");
    }

    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); }, 60000);
    }
    QLineEdit &field(const char *name) const { return *control<QLineEdit>(*view, name); }
    QPushButton &button(const char *name) const { return *control<QPushButton>(*view, name); }
    QString address() const { return field("hostField").text() + '|' + field("portField").text(); }
    void save(const QString &label, const QString &host, const QString &password)
    {
        field("labelField").setText(label);
        view->fillForm(host, QStringLiteral("50960"));
        view->setFormPassword(password);
        button("saveToServerListButton").click();
    }
    QStringList labels() const
    {
        QStringList list;
        for (const QStringList &texts : shownRows(*table))
            list.append(texts.at(0) + "@" + texts.at(1));
        return list;
    }
    /// What the file holds now.
    QList<SavedServer> stored() const
    {
        SavedServers again(path, QStringLiteral("tester"));
        if (!again.load().error.isEmpty())
            return {};
        QList<SavedServer> list = again.servers();
        for (SavedServer &saved : list)
            saved.password = again.password(saved.label);
        return list;
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("SavedServers.plist"));
    RecordedAlerts alerts;
    ActionQueue actions;
    std::unique_ptr<SavedServers> savedServers;
    std::unique_ptr<ServersView> view;
    PlaceholderTable *table = nullptr;
};

static void damage(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("damaged") > 0);
}

class ServersViewTest : public QObject
{
    Q_OBJECT
private slots:
    void savesAndConnectsByACompleteFormOnly()
    {
        Servers servers;
        const QPushButton &save = servers.button("saveToServerListButton");
        QPushButton &connectButton = servers.button("connectButton");
        const QSignalSpy presses(servers.view.get(), &ServersView::connectButtonPressed);
        servers.view->fillForm(QStringLiteral("192.0.2.1"), QStringLiteral("50960"));
        QTest::keyClick(&servers.field("hostField"), Qt::Key_Return); // the password is missing
        QVERIFY(!connectButton.isEnabled() && presses.isEmpty());
        servers.view->setFormPassword(QStringLiteral("pw"));
        QVERIFY(connectButton.isEnabled() && !save.isEnabled());
        servers.field("labelField").setText(QStringLiteral("Home"));
        QVERIFY(save.isEnabled());
        servers.view->setConnecting(true);
        connectButton.click();
        QVERIFY(!connectButton.isEnabled() && presses.isEmpty());
        servers.view->setConnecting(false);
        connectButton.click();
        for (const char *name : {"labelField", "hostField", "portField", "passwordField"})
            QTest::keyClick(&servers.field(name), Qt::Key_Return);
        QCOMPARE(presses.size(), 5);
        servers.field("portField").clear();
        QVERIFY(!save.isEnabled() && !connectButton.isEnabled());
    }

    void tellsThatTheHostMayBeAName()
    {
        const Servers servers;
        const QString told = servers.field("hostField").toolTip();
        QVERIFY2(told.contains("name") && told.contains("IPv4 address"), qPrintable(told));
    }

    void understandsWhatIsTyped_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("meant");
        const auto row = [](const char *name, const char *host, const char *port, const char *meant) {
            QTest::newRow(name) << QString(host) << QString(port) << QString(meant);
        };
        row("as it should be", "192.0.2.10", "50960", "192.0.2.10|50960");
        row("blanks", " 192.0.2.10 ", "\t50960 ", "192.0.2.10|50960");
        row("both in one field", " 192.0.2.10:50960", "", "192.0.2.10|50960");
        row("what was typed in one field is meant", "192.0.2.10:50960", "50961", "192.0.2.10|50960");
    }
    void understandsWhatIsTyped()
    {
        QFETCH(QString, host);
        QFETCH(QString, port);
        QFETCH(QString, meant);
        Servers servers;
        servers.view->fillForm(host, port);
        servers.view->setFormPassword("pw");
        servers.field("labelField").setText("Home");
        QVERIFY(servers.button("connectButton").isEnabled());
        QString connectedTo;
        connect(servers.view.get(), &ServersView::connectButtonPressed, servers.view.get(), [&] {
            const ServerForm typed = servers.view->form();
            connectedTo = typed.host + QLatin1Char('|') + typed.port;
        });
        servers.button("saveToServerListButton").click();
        const SavedServer saved = servers.savedServers->servers().first();
        QCOMPARE(saved.host + QLatin1Char('|') + saved.port, meant);
        servers.view->fillForm(host, port);
        servers.button("connectButton").click();
        QCOMPARE(connectedTo, meant);
    }

    void leavingTheHostFieldFillsThePort()
    {
        Servers servers;
        servers.view->show();
        servers.view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(servers.view.get()));
        servers.field("hostField").setFocus();
        QTest::keyClicks(&servers.field("hostField"), "192.0.2.10:50960");
        QCOMPARE(servers.address(), "192.0.2.10:50960|"); // the port may be not yet complete
        QTest::keyClick(&servers.field("hostField"), Qt::Key_Tab);
        QCOMPARE(servers.address(), "192.0.2.10|50960");
    }

    void passwordsCannotBeReadOnTheScreen()
    {
        Servers servers({{"a", "192.0.2.1", "50100", QStringLiteral("secret")}});
        servers.table->selectRow(0);
        servers.view->setFormPassword(QStringLiteral("secret"));
        for (const char *name : {"savedPasswordField", "passwordField"}) {
            QCOMPARE(servers.field(name).text(), QString("secret"));
            QVERIFY2(!servers.field(name).displayText().contains('s'), name);
        }
    }

    void aPasswordThatCannotBeDecryptedIsToldFromNone()
    {
        Servers servers("tester", [](const QString &path) {
            SavedServers ofAnother(path, QStringLiteral("another"));
            QVERIFY(ofAnother.save({"a", "192.0.2.1", "50100", QStringLiteral("one")}).error.isEmpty());
        });
        QLineEdit &password = servers.field("savedPasswordField");
        QVERIFY(password.placeholderText().isEmpty());
        servers.table->selectRow(0);
        QVERIFY(password.text().isEmpty() && !password.placeholderText().isEmpty());
        QTest::keyClick(&password, Qt::Key_Return); // as it is, the other account's stays
        SavedServers ofAnother(servers.path, QStringLiteral("another"));
        QVERIFY(ofAnother.load().error.isEmpty());
        QCOMPARE(ofAnother.password(QStringLiteral("a")).value_or(QString()), QString("one"));
        servers.view->storePassword(QStringLiteral("a"), QString());
        QVERIFY(password.placeholderText().isEmpty());
    }

    void theFormBeginsWithTheHost()
    {
        Servers servers;
        servers.view->focusForm();
        QCOMPARE(servers.view->focusWidget(), &servers.field("hostField"));
    }

    void disconnectsFromWhatIsOrIsBeingConnected()
    {
        Servers servers;
        const QSignalSpy presses(servers.view.get(), &ServersView::disconnectButtonPressed);
        QPushButton &disconnectButton = servers.button("disconnectButton");
        disconnectButton.click();
        QVERIFY(presses.isEmpty());
        servers.view->setConnecting(true);
        disconnectButton.click();
        servers.view->setConnected(true);
        servers.view->setConnecting(false);
        disconnectButton.click();
        QCOMPARE(presses.size(), 2);
        servers.view->setConnected(false);
        QVERIFY(!disconnectButton.isEnabled());
    }

    void choosesTheSelectedServerWithItsPassword()
    {
        Servers servers({{"a", "192.0.2.1", "50960", QStringLiteral("one")}, {"b", "192.0.2.2", "50961", "two"}});
        QList<SavedServer> chosen;
        connect(servers.view.get(), &ServersView::savedServerChosen, this,
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
        servers.view->setConnecting(true);
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
        Servers servers({{"a", "192.0.2.1", "50100", QStringLiteral("one")}, {"b", "192.0.2.2", "50101", "two"}});
        QString chosen;
        connect(servers.view.get(), &ServersView::savedServerChosen, this,
                [&chosen](const SavedServer &server) { chosen += server.label; });
        servers.view->setConnecting(isConnecting);
        servers.view->resize(300, 600);
        servers.view->grab(); // lays out
        servers.table->selectRow(isDeselected ? 1 : 0);
        doubleClick(*servers.table, servers.table->visualRect(servers.table->model()->index(1, 0)).center(),
                    Qt::MouseButton(button), isDeselected ? Qt::ControlModifier : Qt::NoModifier);
        QTEST(chosen, "chosen");
    }

    void aDeletionCanBeTakenBack()
    {
        Servers servers({{"a", "192.0.2.1", "50100", QStringLiteral("one")},
                         {"b", "192.0.2.2", "50101", "two"},
                         {"c", "192.0.2.3", "50102", "three"}});
        const QList<SavedServer> all = servers.stored();
        QUndoStack &undo = *servers.view->undoStack();
        servers.table->selectRow(0);
        servers.table->selectionModel()->select(servers.table->model()->index(1, 0),
                                                QItemSelectionModel::Select | QItemSelectionModel::Rows);
        QTest::keyClick(servers.table, Qt::Key_Backspace);
        QCOMPARE(servers.labels(), QStringList{"c@192.0.2.3"});
        undo.undo();
        QCOMPARE(servers.labels(), QStringList({"a@192.0.2.1", "b@192.0.2.2", "c@192.0.2.3"}));
        QCOMPARE(servers.stored(), all);
        servers.view->storePassword(QStringLiteral("b"), QStringLiteral("new"));
        undo.redo();
        QCOMPARE(servers.stored(), all.mid(2));
        undo.undo();
        QCOMPARE(servers.stored().at(1).password.value_or(QString()), QStringLiteral("new"));
        undo.redo();
        servers.save(QStringLiteral("a"), QStringLiteral("192.0.2.9"), QStringLiteral("nine"));
        undo.undo(); // "a" is another one by now
        QCOMPARE(servers.labels(), QStringList({"a@192.0.2.9", "b@192.0.2.2", "c@192.0.2.3"}));
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"});
        QVERIFY(!undo.canUndo());
    }

    void portsSortAsNumbers()
    {
        Servers servers({{"a", "192.0.2.2", "9999", std::nullopt}, {"b", "192.0.2.1", "50101", std::nullopt}});
        servers.table->sortByColumn(2, Qt::AscendingOrder); // as numbers
        QCOMPARE(servers.labels(), QStringList({"a@192.0.2.2", "b@192.0.2.1"}));
        servers.table->sortByColumn(1, Qt::AscendingOrder);
        QCOMPARE(servers.labels(), QStringList({"b@192.0.2.1", "a@192.0.2.2"}));
    }

    void savesReplacesAndDeletes()
    {
        Servers servers({{"c", "192.0.2.4", "50960", QStringLiteral("four")}});
        QCOMPARE(servers.labels(), QStringList{"c@192.0.2.4"});
        servers.save(QStringLiteral("b"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        servers.save(QStringLiteral("A"), QStringLiteral("192.0.2.2"), QStringLiteral("two"));
        servers.save(QStringLiteral("b"), QStringLiteral("192.0.2.3"), QStringLiteral("three"));
        QCOMPARE(servers.labels(), QStringList({"A@192.0.2.2", "b@192.0.2.3", "c@192.0.2.4"}));
        QCOMPARE(servers.stored().size(), 3);
        servers.save(QStringLiteral("c"), QStringLiteral("192.0.2.10"), QStringLiteral("four"));
        servers.table->sortByColumn(1, Qt::AscendingOrder); // as addresses
        QCOMPARE(servers.labels(), QStringList({"A@192.0.2.2", "b@192.0.2.3", "c@192.0.2.10"}));
        servers.table->selectRow(0);
        QTest::keyClick(servers.table, Qt::Key_Delete);
        QCOMPARE(servers.labels(), QStringList({"b@192.0.2.3", "c@192.0.2.10"}));
        QCOMPARE(servers.stored().size(), 2);
        QVERIFY(servers.alerts.shown().isEmpty());
    }

    void showsAndStoresTheSelectedPassword()
    {
        Servers servers;
        QLineEdit &password = servers.field("savedPasswordField");
        servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        QVERIFY(!password.isEnabled());
        servers.table->selectRow(0);
        QCOMPARE(password.text(), QStringLiteral("one"));
        password.setText(QStringLiteral("two"));
        QTest::keyClick(&password, Qt::Key_Return);
        QCOMPARE(servers.stored().first().password.value_or(QString()), QStringLiteral("two"));
        servers.view->storePassword(QStringLiteral("Home"), QStringLiteral("three"));
        QCOMPARE(password.text(), QStringLiteral("three"));
        servers.save(QStringLiteral("Work"), QStringLiteral("192.0.2.2"), QStringLiteral("four"));
        servers.table->selectAll(); // the last one is what the field shows
        QCOMPARE(password.text(), QStringLiteral("four"));
        password.setText(QStringLiteral("five"));
        QTest::keyClick(&password, Qt::Key_Return);
        QCOMPARE(servers.stored().first().password.value_or(QString()), QStringLiteral("three"));
        QCOMPARE(servers.stored().last().password.value_or(QString()), QStringLiteral("five"));
    }

    void whatIsStoredOutlivesTheFirstChange_data()
    {
        using Change = std::function<void(Servers &)>;
        QTest::addColumn<Change>("change");
        QTest::addColumn<qsizetype>("left");
        QTest::newRow("a password") << Change([](Servers &servers) { servers.view->storePassword("a", "new"); })
                                    << qsizetype(2);
        QTest::newRow("nothing to delete")
            << Change([](Servers &servers) { servers.view->deleteSelectionFromTableView(); }) << qsizetype(2);
        QTest::newRow("one more") << Change([](Servers &servers) { servers.save("c", "192.0.2.3", "three"); })
                                  << qsizetype(3);
    }
    void whatIsStoredOutlivesTheFirstChange()
    {
        QFETCH(std::function<void(Servers &)>, change);
        Servers servers({{"a", "192.0.2.1", "50960", QStringLiteral("one")}, {"b", "192.0.2.2", "50960", "two"}});
        change(servers);
        QTEST(servers.stored().size(), "left");
    }

    void aDamagedListIsNamedUntilSomethingIsWritten()
    {
        Servers servers("tester", &damage);
        const QString reason = servers.table->placeholder();
        QVERIFY2(reason.contains(servers.path), qPrintable(reason));
        QTest::keyClick(servers.table, Qt::Key_Delete);
        QVERIFY(servers.actions.isIdle() && servers.alerts.shown().isEmpty()); // the window may not be there yet
        {
            const FileSizeLimit disk(0);
            servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        }
        QCOMPARE(servers.table->placeholder(), reason);
        QVERIFY(servers.settle());
        QFile file(servers.path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("damaged"));
        servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        QVERIFY(servers.table->placeholder() != reason);
        QVERIFY(servers.settle());
        QCOMPARE(servers.alerts.titles(), QStringList(2, "Saved Servers")); // of the failure, then of the copy
        QCOMPARE(QDir(servers.folder.path()).entryList(QDir::Files).size(), 2);
    }

    void aFailedSaveIsReported()
    {
        Servers servers;
        QVERIFY(QDir(servers.folder.path()).mkdir(QStringLiteral("SavedServers.plist")));
        servers.save(QStringLiteral("Home"), QStringLiteral("192.0.2.1"), QStringLiteral("one"));
        QVERIFY(servers.settle());
        QCOMPARE(servers.alerts.titles(), QStringList{"Saved Servers"});
        QCOMPARE(servers.field("hostField").text(), QStringLiteral("192.0.2.1"));
    }
};

QTEST_MAIN(ServersViewTest)
#include "tst_serversview.moc"
