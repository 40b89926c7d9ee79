#include "DataColumns.h"
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

    void knowsWhatNoFileHolds_data()
    {
        const auto row = dataColumns<bool>("isUnsaved");
        for (const char *act :
             {"opened", "edited to the same", "added too many", "undone to what was saved", "moved there and back"})
            row(act, false);
        for (const char *act : {"added", "edited", "undone", "undone after a save in vain"})
            row(act, true);
    }
    void knowsWhatNoFileHolds()
    {
        const QString act = QTest::currentDataTag();
        const bool isInVain = act.endsWith("in vain");
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
        else if (act.startsWith("edited"))
            store.tableModel()->setData(store.tableModel()->index(0, 1), act == "edited" ? "8" : "1");
        else
            store.deleteAllItems();
        if (isInVain) {
            const FileSizeLimit disk(0);
            QVERIFY(!awaited(store.saveUIChanges("n")));
        }
        if (act == "undone")
            QVERIFY(awaited(store.saveUIChanges("n")));
        if (act.startsWith("undone") || act == "moved there and back")
            store.rows().restore(*before);
        QTEST(store.hasUnsavedWork(), "isUnsaved");
        QCOMPARE(f.alerts.titles(), act.endsWith("many") ? QStringList("Too Many Entries")
                                    : isInVain           ? QStringList("Message Rotations Not Saved")
                                                         : QStringList());
    }

    void whatWasNotSavedStaysOutOfTheFile_data()
    {
        const auto row = dataColumns<QString, QString>("steps", "outcome");
        // steps: after "a" was edited from 1 to 2; what stands in brackets fails
        row("saved under another name", "save b", "a:1 b:2 x:");
        row("refused, and another is saved", "refuse, open x, save x", "a:1 x:");
        row("refused, and another is deleted", "refuse, delete x", "a:1");
        row("refused, and a new one is saved", "refuse, new c, save c", "a:1 c: x:");
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
};

QTEST_GUILESS_MAIN(RotationStoresTest)
#include "tst_rotationstores.moc"
