#include "ActionQueue.h"
#include "Controls.h"
#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "RotationPane.h"
#include "RotationStoreOf.h"
#include "Wait.h"

#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

struct Note {
    QString tone;
    QString text;

    static constexpr const char *RootElement = "notes";
    static constexpr const char *RotationElement = "tune";
    static constexpr const char *EntryElement = "note";
    static constexpr bool IsEditable = true;
    static constexpr RotationField<Note> fields[] = {{"tone", "Tone", &Note::tone}, {"text", "Text", &Note::text}};

    bool isWhole() const { return !text.isEmpty(); }
    bool operator==(const Note &) const = default;
};

static RotationKind noteKind()
{
    RotationKind kind;
    kind.name = "MapRotation";
    kind.fileName = "notes";
    kind.currentRotationKey = "current";
    kind.saveQuestion = "Save?";
    kind.nameRefused = "Refused";
    kind.nameTaken = "'%1' is taken";
    kind.tableObjectName = "table";
    return kind;
}

/// The saved rotations Alpha, Beta and Gamma, and none that is open.
class NoteStore final : public RotationStoreOf<Note>
{
public:
    NoteStore(Preferences &preferences, Alerts &alerts, const QString &folder)
        : RotationStoreOf(noteKind(), preferences, alerts, folder, Dictionary(), nullptr)
    {
        for (const char *name : {"Alpha", "Beta", "Gamma"})
            awaited(saveUIChanges(name));
        openRotationNamed({});
    }
    /// Puts rows into the table, one for each letter.
    void write(const QString &letters)
    {
        for (const QChar letter : letters)
            awaited(addEntries({{QString(), letter}}));
    }
    QString shown() const
    {
        QString letters;
        for (const auto &note : entries())
            letters += note->text;
        return letters;
    }
    void choose(const QList<int> &rows)
    {
        tableSelection()->clear();
        for (const int row : rows)
            tableSelection()->select(tableModel()->index(row, 0),
                                     QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
};

struct Pane {
    Pane() { pane.show(); }
    /// Presses a button of the pane and waits for the sheet that it opens.
    QDialog *sheet(const char *button, const QString &name)
    {
        press(pane, button);
        QDialog *found = nullptr;
        (void)QTest::qWaitFor([&] { return (found = pane.findChild<QDialog *>(name)) != nullptr; });
        return found;
    }
    static void press(const QWidget &root, const char *button) { control<QPushButton>(root, button)->click(); }
    QPushButton &button(const char *name) { return *control<QPushButton>(pane, name); }
    QTableView &table() { return *control<KeyHandlingTableView>(pane, "table"); }
    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); });
    }

    QTemporaryDir folder;
    Preferences preferences{folder.filePath("preferences.ini")};
    RecordedAlerts alerts;
    NoteStore store{preferences, alerts, folder.path()};
    ActionQueue actions;
    RotationPane pane{store, actions, alerts};
};

class RotationDialogsTest : public QObject
{
    Q_OBJECT
private slots:
    void names_data()
    {
        QTest::addColumn<bool>("isNew");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("added"); // empty: the name is refused
        QTest::newRow("new, trimmed") << true << QString(" Delta \n") << QString("Delta");
        QTest::newRow("new, taken") << true << QString(" Beta") << QString();
        QTest::newRow("save as, with its blanks") << false << QString(" Delta ") << QString(" Delta ");
        QTest::newRow("save as, taken without blanks") << false << QString(" Beta ") << QString();
    }
    void names()
    {
        QFETCH(bool, isNew);
        QFETCH(QString, typed);
        QFETCH(QString, added);
        Pane p;
        QDialog *sheet = isNew ? p.sheet("newButton", "NewMapRotationWindowController")
                               : p.sheet("saveButton", "SaveMapRotationAsWindowController");
        QVERIFY(sheet != nullptr && sheet->isModal());
        p.pane.openDocument(); // nothing while a sheet is open
        auto *field = control<QLineEdit>(*sheet, "nameField");
        field->setText(typed);
        p.press(*sheet, isNew ? "addButton" : "saveButton");
        if (added.isEmpty()) {
            QTRY_COMPARE(p.alerts.texts(), QStringList{"'Beta' is taken"});
            QVERIFY(sheet->isVisible());
            QCOMPARE(field->text(), typed);
            QTest::keyClick(sheet, Qt::Key_Escape);
        }
        QVERIFY(p.settle());
        QCOMPARE(p.store.names().size(), added.isEmpty() ? 3 : 4);
        QCOMPARE(p.store.contains(added), !added.isEmpty());
        QCOMPARE(p.store.currentRotation(), added);
    }

    void aCancelledPanelSavesNothingAndEndsTheQuestion()
    {
        Pane p;
        p.store.write("V");
        for (const char *button : {"saveAsButton", "newButton"}) { // the second asks, and "Yes" is pressed
            QDialog *sheet = p.sheet(button, "SaveMapRotationAsWindowController");
            control<QLineEdit>(*sheet, "nameField")->setText("typed");
            p.press(*sheet, "cancelButton");
            QVERIFY(p.settle());
            QTRY_VERIFY(p.pane.findChild<QDialog *>() == nullptr);
        }
        QCOMPARE(p.alerts.texts(), QStringList{"Save?"});
        QVERIFY(!p.store.contains("typed") && p.store.hasUnsavedWork());
    }

    void opensAndDeletesWhatIsSelected()
    {
        Pane p;
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        table->clearSelection();
        QTest::keyClick(table, Qt::Key_Return); // no more than a beep
        QVERIFY(sheet->isVisible());
        table->selectRow(1);
        QTest::keyClick(table, Qt::Key_Return);
        QVERIFY(p.settle());
        QCOMPARE(p.store.currentRotation(), QString("Beta"));
        QCOMPARE(control<ElidingLabel>(p.pane, "labelCurrentRotation")->text(), QString("Rotation: Beta"));
        sheet = p.sheet("deleteButton", "DeleteMapRotationWindowController");
        QVERIFY(!control<QPushButton>(*sheet, "deleteButton")->isEnabled());
        control<KeyHandlingTableView>(*sheet, "tableView")->selectAll();
        p.press(*sheet, "deleteButton");
        QVERIFY(p.settle());
        QCOMPARE(p.store.names(), QStringList());
        QVERIFY(!p.button("openButton").isEnabled());
        QVERIFY(p.alerts.shown().isEmpty());
    }

    void asksBeforeTheTableIsReplaced()
    {
        Pane p;
        p.store.write("V");
        for (const char *button : {"newButton", "openButton", "deleteButton"}) {
            p.alerts.answerWith(2); // "Cancel"
            p.press(p.pane, button);
            QVERIFY(p.settle());
            QVERIFY(p.pane.findChild<QDialog *>() == nullptr);
            p.alerts.answerWith(1); // "No"
            p.press(p.pane, button);
            QTRY_VERIFY(p.pane.findChild<QDialog *>() != nullptr);
            p.pane.findChild<QDialog *>()->reject();
            QVERIFY(p.settle());
            QTRY_VERIFY(p.pane.findChild<QDialog *>() == nullptr);
        }
        QCOMPARE(p.alerts.texts(), QStringList(6, "Save?"));
        QCOMPARE(p.store.shown(), QString("V"));
    }

    void theDeleteKeyAsks_data()
    {
        QTest::addColumn<int>("pressed");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("yes") << 0 << QStringList{"Alpha", "Gamma"};
        QTest::newRow("cancel") << 1 << QStringList{"Alpha", "Beta", "Gamma"};
    }
    void theDeleteKeyAsks()
    {
        QFETCH(int, pressed);
        Pane p;
        QDialog *sheet = p.sheet("deleteButton", "DeleteMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        table->selectRow(1);
        p.alerts.hold();
        QTest::keyClick(table, Qt::Key_Delete);
        QTest::keyClick(table, Qt::Key_Delete);
        p.press(*sheet, "deleteButton"); // nothing but the question
        QCOMPARE(p.alerts.texts(), QStringList{"The rotation \"Beta\" will be deleted. This cannot be undone."});
        QCOMPARE(p.alerts.manners().last().defaultButton, 1);
        QCOMPARE(p.store.names().size(), 3);
        p.alerts.dismiss(pressed);
        if (pressed == 1) {
            QTRY_VERIFY((QTest::keyClick(table, Qt::Key_Delete), p.alerts.openCount() == 1)); // once more
            p.alerts.dismiss(pressed);
            p.press(*sheet, "closeButton");
        }
        QVERIFY(p.settle());
        QTEST(p.store.names(), "left");
    }

    void theMenusActOnThePaneAsADocument()
    {
        Pane p;
        PageDocument &document = p.pane;
        for (const auto &[action, sheet] : {std::pair(&PageDocument::newDocument, "NewMapRotationWindowController"),
                                            {&PageDocument::openDocument, "OpenMapRotationWindowController"},
                                            {&PageDocument::saveDocument, "SaveMapRotationAsWindowController"}}) {
            (document.*action)();
            QTRY_VERIFY(p.pane.findChild<QDialog *>(sheet) != nullptr);
            QTest::keyClick(control<QDialog>(p.pane, sheet), Qt::Key_Escape);
            QVERIFY(p.settle());
        }
    }

    void whatHappensInATurnIsTakenBackAtOnce()
    {
        Pane p;
        QUndoStack &stack = *p.pane.undoStack();
        p.store.write("VWX");
        QTRY_COMPARE(stack.undoText(), QString("Add"));
        const auto first = p.store.entries().first();
        p.store.choose({0, 1});
        QTRY_VERIFY(p.button("removeButton").isEnabled());
        p.press(p.pane, "removeButton");
        QTRY_COMPARE(stack.undoText(), QString("Remove"));
        p.store.write("ab");
        QTRY_COMPARE(stack.undoText(), QString("Add"));
        QVERIFY(p.store.rows().moveObjectsInArrangedObjects({0}, 2));
        QTRY_COMPARE(stack.undoText(), QString("Move"));
        QAbstractItemModel &model = *p.store.tableModel();
        QVERIFY(model.setData(model.index(0, 1), "A"));
        QTest::keyClick(&p.table(), Qt::Key_Z, Qt::ControlModifier); // in the turn of the edit
        QCOMPARE(p.store.shown(), QString("aXb"));
        QCOMPARE(stack.redoText(), QString("Edit"));
        stack.setIndex(1);
        QCOMPARE(p.store.shown(), QString("VWX"));
        QCOMPARE(p.store.entries().first(), first); // the same entry, which may be on air
        stack.setIndex(stack.count());
        QCOMPARE(p.store.shown(), QString("AXb"));
        p.store.openRotationNamed("Alpha");
        QTRY_VERIFY(!p.button("removeAllButton").isEnabled());
        QCOMPARE(stack.count(), 0);
    }

    void copiesRowsAndTellsOnceOfLinesThatDoNotFit()
    {
        Pane p;
        p.store.write("VWX");
        QTRY_COMPARE(p.pane.undoStack()->count(), 1);
        p.store.choose({2, 0});
        QTest::keyClick(&p.table(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("\tV\n\tX"));
        QGuiApplication::clipboard()->setText(QString("\tY\r\n").repeated(2000) + "bad %1\na\t\na\tb\tc\n");
        QTest::keyClick(&p.table(), Qt::Key_V, Qt::ControlModifier);
        QVERIFY(p.settle());
        QCOMPARE(p.store.rowCount(), 2003);
        QCOMPARE(p.alerts.shown().size(), 1);
        QVERIFY(p.alerts.texts().first().startsWith("3 of 2003 lines"));
        QTRY_COMPARE(p.pane.undoStack()->count(), 2);
    }
};

QTEST_MAIN(RotationDialogsTest)
#include "tst_rotationdialogs.moc"
