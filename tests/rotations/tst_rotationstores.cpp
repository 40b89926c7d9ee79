#include "FileSizeLimit.h"
#include "RotationFixture.h"

#include <QTest>

#include <optional>

/// Takes a step: a verb, and the name or the text that it is about.
static void take(KelMessageRotation &store, const QString &step)
{
    const bool fails = step.startsWith('(');
    const QStringList words = QString(step).remove('(').remove(')').split(' ');
    const QString about = words.value(1);
    std::optional<FileSizeLimit> disk;
    if (fails)
        disk.emplace(0);
    if (words.first() == "save")
        QCOMPARE(awaited(store.saveUIChanges(about)), !fails);
    else if (words.first() == "edit")
        QVERIFY(store.tableModel()->setData(store.tableModel()->index(0, 0), about));
    else if (words.first() == "refuse")
        QVERIFY(awaited(store.saveUnsavedChanges()));
    else if (words.first() == "open")
        store.openRotationNamed(about);
    else if (words.first() == "new")
        awaited(store.newRotationNamed(about));
    else
        awaited(store.deleteRotationNamed(about));
}

/// What the Save As panel does; without a name it is cancelled.
static QCoro::Task<> saveAs(KelMessageRotation *store, QString name)
{
    if (!name.isEmpty()) {
        [[maybe_unused]] const bool isWritten = co_await store->saveUIChanges(name);
    }
}

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
        QTest::addColumn<bool>("isUnsaved");
        for (const char *row : {"opened", "removed nothing", "edited to the same", "added too many",
                                "replaced by too many", "undone to what was saved", "moved there and back"})
            QTest::newRow(row) << false;
        for (const char *row : {"added", "moved", "removed", "edited", "undone", "undone and done again",
                                "saved in vain", "undone after that"})
            QTest::newRow(row) << true;
    }
    void knowsWhatNoFileHolds()
    {
        const QString act = QTest::currentDataTag();
        const bool isInVain = act == "saved in vain" || act == "undone after that";
        RotationFixture f;
        KelMessageRotation &store = f.messages;
        awaited(store.addEntries({{"a", "1"}, {"b", "2"}}));
        const auto before = store.rows().state();
        QVERIFY(awaited(store.saveUIChanges("n")));
        if (act == "opened")
            store.openRotationNamed("n");
        else if (act.startsWith("moved"))
            QVERIFY(store.rows().moveObjectsInArrangedObjects({0}, 2));
        else if (act.startsWith("added"))
            awaited(store.addEntries(QList<MessageRotationInst>(act == "added" ? 1 : 9999)));
        else if (act.startsWith("replaced"))
            awaited(store.replaceEntries(QList<MessageRotationInst>(10001)));
        else if (act == "removed nothing")
            store.deleteSelectedItems();
        else if (act.startsWith("edited"))
            store.tableModel()->setData(store.tableModel()->index(0, 1), act == "edited" ? "8" : "1");
        else
            store.deleteAllItems();
        const auto after = store.rows().state();
        if (isInVain) {
            const FileSizeLimit disk(0);
            QVERIFY(!awaited(store.saveUIChanges("n")));
        }
        if (act == "undone")
            QVERIFY(awaited(store.saveUIChanges("n")));
        if (act.startsWith("undone") || act == "moved there and back")
            store.rows().restore(*before);
        if (act == "undone and done again")
            store.rows().restore(*after);
        QTEST(store.hasUnsavedWork(), "isUnsaved");
        QCOMPARE(f.alerts.titles(), act.endsWith("many") ? QStringList("Too Many Entries")
                                    : isInVain           ? QStringList("Message Rotations Not Saved")
                                                         : QStringList());
    }

    void whatWasNotSavedStaysOutOfTheFile_data()
    {
        QTest::addColumn<QString>("steps"); // after "a" was edited from 1 to 2; what stands in brackets fails
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char *name, const char *steps, const char *outcome) {
            QTest::newRow(name) << QString(steps) << QString(outcome);
        };
        row("saved under another name", "save b", "a:1 b:2 x:");
        row("and edited then", "save b, edit 3, save b", "a:1 b:3 x:");
        row("refused, and another is saved", "refuse, open x, save x", "a:1 x:");
        row("refused, and another is deleted", "refuse, delete x", "a:1");
        row("refused, and opened again", "refuse, open a, save a", "a:1 x:");
        row("refused, and a new one is saved", "refuse, new c, save c", "a:1 c: x:");
        row("refused after a save that failed", "(save a), refuse, open x, save x", "a:1 x:");
        row("refused, with a new one beside it", "refuse, new c, open a, edit 2, (save a), refuse, open x, save x",
            "a:1 c: x:");
        row("refused after a deletion that failed", "save b, (delete b), refuse, save c", "a:1 b:2 c: x:");
    }
    void whatWasNotSavedStaysOutOfTheFile()
    {
        QFETCH(QString, steps);
        RotationFixture f;
        QVERIFY(awaited(f.messages.saveUIChanges("x")));
        awaited(f.messages.addMessageToCurrentRotation("1", "5"));
        QVERIFY(awaited(f.messages.saveUIChanges("a")));
        f.alerts.answerWith(1);
        for (const QString &step : QString("edit 2, " + steps).split(", "))
            take(f.messages, step);
        KelMessageRotation again({f.preferences, f.alerts, f.server, f.actions}, f.folder.path());
        awaited(again.loadMessageRotation());
        QStringList read;
        for (const MessageRotation &rotation : again.messageRotationList().value_or(KelMessageRotation::Dictionary())) {
            QString text = rotation.name + ':';
            for (const MessageRotationInst &entry : rotation.rotationList)
                text += entry.message;
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
        QCOMPARE(again.mapRotationList().value("n").rotationList, QList<MapRotationInst>({{"saved", "g"}}));
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
        const auto row = [](const char *name, int answer, const char *openName, const char *panelName,
                            const char *outcome) {
            QTest::newRow(name) << answer << QString(openName) << QString(panelName) << QString(outcome);
        };
        row("yes, open", 0, "n", "", "10n");
        row("yes, panel", 0, "", "p", "10p");
        row("yes, panel cancelled", 0, "", "", "01");
        row("no", 1, "", "p", "11");
        row("no, open", 1, "n", "p", "11n");
        row("cancel", 2, "", "p", "01");
    }
    void asksForUnsavedChanges()
    {
        QFETCH(int, answer);
        QFETCH(QString, openName);
        QFETCH(QString, panelName);
        for (const bool isOrder : {false, true}) {
            RotationFixture f;
            f.messages.setSaveAsPanel([&] { return saveAs(&f.messages, panelName); });
            if (isOrder) // a new order is asked for as well
                awaited(f.messages.addEntries({{"a", "1"}, {"b", "1"}}));
            if (!openName.isEmpty())
                QVERIFY(awaited(f.messages.saveUIChanges(openName)));
            if (isOrder)
                QVERIFY(f.messages.rows().moveObjectsInArrangedObjects({0}, 2));
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
