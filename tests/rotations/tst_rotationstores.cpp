#include "RotationFixture.h"

#include <QTest>

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
        QCOMPARE(f.maps.entries(), f.maps.mapRotationList().value("a").rotationList); // the same objects
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
                                "edited to the same 00", "added too many 00", "undone 11"})
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
        else if (act == "moved")
            store.rows().moveObjectsInArrangedObjects({0}, 2);
        else if (act.startsWith("added"))
            awaited(store.addEntries(QList<MessageRotationInst>(act == "added" ? 1 : 9999)));
        else if (act == "removed nothing")
            store.rows().deleteSelectionFromTableView();
        else if (act == "removed" || act == "undone")
            store.deleteAllItems();
        else
            store.tableModel()->setData(store.tableModel()->index(0, 1), act == "edited" ? "8" : "1");
        if (act == "undone") {
            QVERIFY(awaited(store.saveUIChanges("n")));
            store.rows().restore(*before);
        }
        QTEST(QStringLiteral("%1%2").arg(store.unsavedChanges()).arg(store.hasUnsavedWork()), "outcome");
        QCOMPARE(f.alerts.titles(), act.endsWith("many") ? QStringList("Too Many Entries") : QStringList());
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
                            << "10";
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
        for (const bool isClosing : {true, false}) {
            if (answer == 2 && !isClosing)
                continue;
            RotationFixture f;
            f.messages.setSaveAsPanel([]() -> QCoro::Task<QString> { co_return QString(chosen); });
            QVERIFY(openName.isEmpty() || awaited(f.messages.saveUIChanges(openName)));
            awaited(f.messages.addMessageToCurrentRotation("a", "1"));
            f.alerts.answerWith(answer);
            const bool goesOn = awaited(isClosing ? f.messages.saveUnsavedWork() : f.messages.saveUnsavedChanges());
            const QString saved = f.messages.names().join(' ');
            QTEST(QStringLiteral("%1%2%3").arg(goesOn).arg(f.messages.hasUnsavedWork()).arg(saved), "outcome");
            const QStringList buttons = QStringList{"Yes", "No", "Cancel"}.first(isClosing ? 3 : 2);
            const RecordedAlerts::Shown question{"Unsaved Changes to Map Rotation",
                                                 "You have made changes in the Message Rotation which have not been "
                                                 "saved.\n\nDo you want to save them?",
                                                 buttons};
            QCOMPARE(f.alerts.shown(), QList({question}));
        }
    }
};

QTEST_GUILESS_MAIN(RotationStoresTest)
#include "tst_rotationstores.moc"
