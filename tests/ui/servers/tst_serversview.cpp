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
        QTest::newRow("blanks") << QString(" 192.0.2.10 ") << QString("\t50960 ");
        QTest::newRow("what was typed in one field is meant") << QString("192.0.2.10:50960") << QString("50961");
    }
    void understandsWhatIsTyped()
    {
        QFETCH(QString, host);
        QFETCH(QString, port);
        Servers servers;
        servers.view->fillForm(host, port);
        servers.view->setFormPassword("pw");
        servers.field("labelField").setText("Home");
        servers.button("saveToServerListButton").click();
        const SavedServer saved = servers.savedServers->servers().first();
        QCOMPARE(saved.host + u'|' + saved.port, "192.0.2.10|50960");
        servers.view->fillForm(host, port);
        servers.button("connectButton").click();
        const ServerForm typed = servers.view->form();
        QCOMPARE(typed.host + u'|' + typed.port, "192.0.2.10|50960");
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

    void choosesTheSelectedServerWithItsPassword()
    {
        const SavedServer second{"b", "192.0.2.2", "50961", QStringLiteral("two")};
        Servers servers({{"a", "192.0.2.1", "50960", QStringLiteral("one")}, second});
        QList<SavedServer> chosen;
        connect(servers.view.get(), &ServersView::savedServerChosen, this,
                [&chosen](const SavedServer &server) { chosen.append(server); });
        servers.view->resize(300, 600);
        servers.view->grab(); // lays out
        QPushButton &connectButton = servers.button("connectToSavedServerButton");
        QVERIFY(!connectButton.isEnabled());
        servers.table->selectRow(1);
        QTest::keyClick(servers.table, Qt::Key_Return);
        servers.table->selectAll(); // the last of them counts, and its password is shown
        QCOMPARE(servers.field("savedPasswordField").text(), QString("two"));
        connectButton.click();
        const QPoint place = servers.table->visualRect(servers.table->model()->index(1, 0)).center();
        doubleClick(*servers.table, place, Qt::LeftButton, Qt::ControlModifier); // takes it out of the selection
        QCOMPARE(chosen, QList<SavedServer>({second, second, second}));
        servers.view->setConnecting(true);
        doubleClick(*servers.table, place);
        servers.view->setConnecting(false);
        doubleClick(*servers.table, place, Qt::RightButton);
        QCOMPARE(chosen.size(), 3);
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
};

QTEST_MAIN(ServersViewTest)
#include "tst_serversview.moc"
