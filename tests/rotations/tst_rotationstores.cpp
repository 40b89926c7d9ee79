#include "FileSizeLimit.h"
#include "RotationFixture.h"

#include <QTest>

#include <functional>

class RotationStoresTest : public QObject
{
    Q_OBJECT
private slots:
    void opensSavesAndDeletes()
    {
        RotationFixture f;
        awaited(f.maps.newRotationNamed("a"));
        QVERIFY(!QFile::exists(f.path)); // not before its first save
        awaited(f.maps.addToRotation("m", "g"));
        QVERIFY(awaited(f.maps.saveUIChanges(f.maps.currentRotation())));
        awaited(f.maps.newRotationNamed("B"));
        QCOMPARE(f.maps.rowCount(), 0);
        awaited(f.maps.newRotationNamed("a"));
        awaited(f.maps.deleteRotationNamed("x"));
        QCOMPARE(f.alerts.titles(), QStringList({"Unable to Create Map Rotation", "Unable to Delete Map Rotation"}));
        QCOMPARE(f.alerts.texts(), QStringList({"The map rotation named 'a' already exists!",
                                                "The map rotation named 'x' does not exist!"}));
        f.maps.openRotationNamed("a");
        awaited(f.maps.deleteRotationNamed("a"));
        QCOMPARE(f.maps.currentRotation() + QString::number(f.maps.rowCount()), "0");
        awaited(f.maps.deleteRotationNamed("B"));
        QVERIFY(!QFile::exists(f.path)); // no rotation, no file
    }

    void aNewMessageRotationNeedsADictionary()
    {
        RotationFixture f;
        awaited(f.messages.newRotationNamed("a"));
        QVERIFY(!f.messages.messageRotationList() && f.messages.currentRotation().isEmpty());
        QVERIFY(awaited(f.messages.saveUIChanges("b")));
        awaited(f.messages.newRotationNamed("a"));
        QCOMPARE(f.messages.currentRotation(), "a");
    }

    void knowsWhatNoFileHolds_data()
    {
        QTest::addColumn<QString>("outcome"); // is it a change, and work that would be lost
        for (const char *row : {"opened 00", "added 11", "moved 01", "removed 11", "removed nothing 00", "edited 11",
                                "edited to the same 00", "added too many 00", "replaced by too many 00", "undone 11",
                                "undone to what was saved 00", "moved there and back 00", "undone and done again 11",
                                "saved in vain 01", "undone after that 11"})
            QTest::newRow(row) << QString(row).right(2);
    }
    void knowsWhatNoFileHolds()
    {
        RotationFixture f;
        KelMessageRotation &store = f.messages;
        awaited(store.addEntries({{"a", "1"}, {"b", "2"}}));
        const auto before = store.rows().state();
        QVERIFY(awaited(store.saveUIChanges("n")));
        const QString act = QString(QTest::currentDataTag()).chopped(3);
        if (act == "opened")
            store.openRotationNamed("n");
        else if (act.startsWith("moved"))
            store.rows().moveObjectsInArrangedObjects({0}, 2);
        else if (act.startsWith("added"))
            awaited(store.addEntries(QList<MessageRotationInst>(act == "added" ? 1 : 9999)));
        else if (act.startsWith("replaced"))
            awaited(store.replaceEntries(QList<MessageRotationInst>(10001)));
        else if (act == "removed nothing")
            store.rows().deleteSelectionFromTableView();
        else if (act == "removed" || act.startsWith("undone") || act == "saved in vain")
            store.deleteAllItems();
        else
            store.tableModel()->setData(store.tableModel()->index(0, 1), act == "edited" ? "8" : "1");
        const auto after = store.rows().state();
        if (act == "saved in vain" || act == "undone after that") {
            const FileSizeLimit disk(0);
            QVERIFY(!awaited(store.saveUIChanges("n")));
        }
        if (act == "undone")
            QVERIFY(awaited(store.saveUIChanges("n")));
        if (act.startsWith("undone") || act == "moved there and back")
            store.rows().restore(*before);
        if (act == "undone and done again")
            store.rows().restore(*after);
        QTEST(QStringLiteral("%1%2").arg(store.unsavedChanges()).arg(store.hasUnsavedWork()), "outcome");
        const bool hasFailed = act == "saved in vain" || act == "undone after that";
        QCOMPARE(f.alerts.titles(), act.endsWith("many") ? QStringList("Too Many Entries")
                                    : hasFailed          ? QStringList("Message Rotations Not Saved")
                                                         : QStringList());
    }

    void whatWasNotSavedStaysOutOfTheFile_data()
    {
        using Act = std::function<void(KelMessageRotation &)>;
        QTest::addColumn<Act>("act"); // after "a" was edited from 1 to 2
        QTest::addColumn<QString>("outcome");
        QTest::newRow("saved under another name")
            << Act([](KelMessageRotation &store) { QVERIFY(awaited(store.saveUIChanges("b"))); }) << "a:1 b:2 x:";
        QTest::newRow("and edited then") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUIChanges("b")));
            QVERIFY(store.tableModel()->setData(store.tableModel()->index(0, 0), "3"));
            QVERIFY(awaited(store.saveUIChanges("b")));
        }) << "a:1 b:3 x:";
        QTest::newRow("refused, and another is saved") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUnsavedChanges()));
            store.openRotationNamed("x");
            QVERIFY(awaited(store.saveUIChanges("x")));
        }) << "a:1 x:";
        QTest::newRow("refused, and another is deleted") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUnsavedChanges()));
            awaited(store.deleteRotationNamed("x"));
            QCOMPARE(store.tableModel()->index(0, 0).data().toString(), "1");
        }) << "a:1";
        QTest::newRow("refused, and opened again") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUnsavedChanges()));
            store.openRotationNamed("a");
            QVERIFY(awaited(store.saveUIChanges("a")));
        }) << "a:1 x:";
        QTest::newRow("refused, and a new one is saved") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUnsavedChanges()));
            awaited(store.newRotationNamed("c"));
            QVERIFY(awaited(store.saveUIChanges("c")));
        }) << "a:1 c: x:";
        QTest::newRow("refused after a save that failed") << Act([](KelMessageRotation &store) {
            {
                const FileSizeLimit disk(0);
                QVERIFY(!awaited(store.saveUIChanges("a")));
            }
            QVERIFY(awaited(store.saveUnsavedChanges()));
            QVERIFY(store.hasUnsavedWork());
            store.openRotationNamed("x");
            QVERIFY(awaited(store.saveUIChanges("x")));
        }) << "a:1 x:";
        QTest::newRow("refused, with a new one beside it") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUnsavedChanges()));
            awaited(store.newRotationNamed("c"));
            store.openRotationNamed("a");
            QVERIFY(store.tableModel()->setData(store.tableModel()->index(0, 0), "2"));
            {
                const FileSizeLimit disk(0);
                QVERIFY(!awaited(store.saveUIChanges("a")));
            }
            QVERIFY(awaited(store.saveUnsavedChanges()));
            store.openRotationNamed("x");
            QVERIFY(awaited(store.saveUIChanges("x")));
        }) << "a:1 c: x:";
        QTest::newRow("refused after a deletion that failed") << Act([](KelMessageRotation &store) {
            QVERIFY(awaited(store.saveUIChanges("b")));
            {
                const FileSizeLimit disk(0);
                awaited(store.deleteRotationNamed("b"));
            }
            QVERIFY(awaited(store.saveUnsavedChanges()));
            QVERIFY(awaited(store.saveUIChanges("c")));
        }) << "a:1 b:2 c: x:";
    }
    void whatWasNotSavedStaysOutOfTheFile()
    {
        QFETCH(std::function<void(KelMessageRotation &)>, act);
        RotationFixture f;
        QVERIFY(awaited(f.messages.saveUIChanges("x")));
        awaited(f.messages.addMessageToCurrentRotation("1", "5"));
        QVERIFY(awaited(f.messages.saveUIChanges("a")));
        QVERIFY(f.messages.tableModel()->setData(f.messages.tableModel()->index(0, 0), "2"));
        f.alerts.answerWith(1);
        act(f.messages);
        KelMessageRotation again({f.preferences, f.alerts, f.server, f.actions}, f.folder.path());
        awaited(again.loadMessageRotation());
        QStringList read;
        const auto rotations = again.messageRotationList().value_or(KelMessageRotation::Dictionary());
        for (const MessageRotation &rotation : rotations) {
            QString text = rotation.name + ':';
            for (const auto &entry : rotation.rotationList)
                text += entry->message;
            read.append(text);
        }
        QTEST(read.join(' '), "outcome");
    }

    void whatWasReadComesBackAfterASaveThatFailed()
    {
        RotationFixture f;
        awaited(f.maps.addToRotation("saved", "g"));
        QVERIFY(awaited(f.maps.saveUIChanges("n")));
        KelMapRotation again(f.preferences, f.alerts, f.folder.path());
        awaited(again.loadMapRotation());
        awaited(again.addToRotation("refused", "g"));
        {
            const FileSizeLimit disk(0);
            QVERIFY(!awaited(again.saveUIChanges("n")));
        }
        f.alerts.answerWith(1);
        QVERIFY(awaited(again.saveUnsavedChanges()));
        QCOMPARE(again.rowCount(), 2); // nothing has taken its place
        again.openRotationNamed("n");
        QCOMPARE(again.mapRotationList().value("n").description(), "name=n rotation=(map=saved gametype=g)");
        QCOMPARE(again.rowCount(), 1);
    }

    void whatIsOnAirStaysSoWhenItsRotationIsOpenedAnew()
    {
        RotationFixture f;
        awaited(f.messages.addEntries({{"a", "1"}, {"b", "2"}}));
        QVERIFY(awaited(f.messages.saveUIChanges("n")));
        f.messages.startRotation();
        const auto onAir = f.messages.entryOnAir();
        f.messages.openRotationNamed("n");
        QVERIFY(onAir != nullptr && f.messages.rowOnAir() == 0);
        f.messages.stopRotation();
        QTRY_VERIFY(f.actions.isIdle());
    }

    void asksForUnsavedChanges_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("openName");
        QTest::addColumn<QString>("panelName");
        QTest::addColumn<QString>("outcome"); // whether to go on, whether there are changes left, what was saved
        QTest::newRow("yes, open") << 0 << "n"
                                   << ""
                                   << "10n";
        QTest::newRow("yes, panel") << 0 << ""
                                    << "p"
                                    << "10p";
        QTest::newRow("yes, panel cancelled") << 0 << ""
                                              << ""
                                              << "01";
        QTest::newRow("no") << 1 << ""
                            << "p"
                            << "11";
        QTest::newRow("no, open") << 1 << "n"
                                  << "p"
                                  << "11n";
        QTest::newRow("cancel") << 2 << ""
                                << "p"
                                << "01";
    }
    void asksForUnsavedChanges()
    {
        QFETCH(int, answer);
        QFETCH(QString, openName);
        QFETCH(QString, panelName);
        static QString chosen;
        chosen = panelName;
        for (const bool isOrder : {false, true}) {
            RotationFixture f;
            f.messages.setSaveAsPanel([]() -> QCoro::Task<QString> { co_return QString(chosen); });
            if (isOrder) // a new order is asked for as well
                awaited(f.messages.addEntries({{"a", "1"}, {"b", "1"}}));
            if (!openName.isEmpty())
                QVERIFY(awaited(f.messages.saveUIChanges(openName)));
            if (isOrder)
                f.messages.rows().moveObjectsInArrangedObjects({0}, 2);
            else
                awaited(f.messages.addMessageToCurrentRotation("a", "1"));
            f.alerts.answerWith(answer);
            const bool goesOn = awaited(f.messages.saveUnsavedChanges());
            const QString saved = f.messages.names().join(' ');
            QTEST(QStringLiteral("%1%2%3").arg(goesOn).arg(f.messages.hasUnsavedWork()).arg(saved), "outcome");
            const RecordedAlerts::Shown question{"Unsaved Changes to Map Rotation",
                                                 "You have made changes in the Message Rotation which have not been "
                                                 "saved.\n\nDo you want to save them?",
                                                 {"Yes", "No", "Cancel"}};
            QCOMPARE(f.alerts.shown(), QList({question}));
        }
    }
};

QTEST_GUILESS_MAIN(RotationStoresTest)
#include "tst_rotationstores.moc"
