#include "ActionQueue.h"
#include "Controls.h"
#include "DoubleClick.h"
#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "RotationPane.h"
#include "RotationStoreOf.h"
#include "Wait.h"

#include <QApplication>
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

using DocumentAction = void (PageDocument::*)();

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
        QTest::addColumn<QString>("refused");
        QTest::addColumn<QString>("added");
        const auto row = [](const char *name, bool isNew, const QString &typed, const QString &refused,
                            const QString &added) {
            QTest::newRow(name) << isNew << typed << refused << added;
        };
        row("new, trimmed", true, " Delta \n", "", "Delta");
        row("new, blanks only", true, "  ", "", "");
        row("new, taken", true, " Beta", "Beta", QString());
        row("save as, with its blanks", false, " Delta ", "", " Delta ");
        row("save as, taken without blanks", false, " Beta ", "Beta", QString());
        row("save as, markers", false, "%1 %2", "", "%1 %2");
        row("save as, nothing", false, "", "", QString());
    }
    void names()
    {
        QFETCH(bool, isNew);
        QFETCH(QString, typed);
        QFETCH(QString, refused);
        QFETCH(QString, added);
        Pane p;
        QDialog *sheet = isNew ? p.sheet("newButton", "NewMapRotationWindowController")
                               : p.sheet("saveButton", "SaveMapRotationAsWindowController");
        QVERIFY(sheet != nullptr && sheet->isModal());
        p.pane.openDocument(); // nothing while a sheet is open
        auto *field = control<QLineEdit>(*sheet, "nameField");
        field->setText(typed);
        auto *button = control<QPushButton>(*sheet, isNew ? "addButton" : "saveButton");
        QCOMPARE(button->isEnabled(), !typed.isEmpty());
        button->click();
        QTRY_COMPARE(p.alerts.shown().size(), refused.isEmpty() ? 0 : 1);
        if (!refused.isEmpty()) {
            QCOMPARE(p.alerts.titles(), QStringList{"Refused"});
            QCOMPARE(p.alerts.texts(), QStringList{"'" + refused + "' is taken"});
        }
        if (added.isNull()) {
            QVERIFY(sheet->isVisible());
            QCOMPARE(field->text(), typed);
            QTest::keyClick(sheet, Qt::Key_Escape);
        }
        QVERIFY(p.settle());
        QStringList expected{"Alpha", "Beta", "Gamma"};
        if (!added.isNull())
            expected.append(added);
        expected.sort();
        QCOMPARE(p.store.names(), expected);
        QCOMPARE(p.store.currentRotation(), added.isNull() ? QString() : added);
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

    void returnOpensTheCurrentRotationOrTheFirst_data()
    {
        QTest::addColumn<QString>("opened");
        QTest::newRow("Gamma") << "Gamma";
        QTest::newRow("") << "Alpha";
        QTest::newRow("one that is gone") << "Alpha";
    }
    void returnOpensTheCurrentRotationOrTheFirst()
    {
        Pane p;
        p.preferences.setValue("current", QString(QTest::currentDataTag()));
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        QTest::keyClick(sheet->focusWidget(), Qt::Key_Return);
        QVERIFY(p.settle());
        QTEST(p.store.currentRotation(), "opened");
    }

    void aDoubleClickOpensTheRowUnderThePointer()
    {
        Pane p;
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        const QPoint place = table->visualRect(table->model()->index(1, 0)).center();
        doubleClick(*table, place, Qt::LeftButton, Qt::ControlModifier); // which takes it out of the selection
        QVERIFY(p.settle());
        QCOMPARE(p.store.currentRotation(), QString("Beta"));
    }

    void theDeleteKeyAsks_data()
    {
        QTest::addColumn<int>("pressed");
        QTest::addColumn<int>("last"); // of the selected rows
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("left");
        const QString one = "The rotation \"Beta\" will be deleted. This cannot be undone.";
        QTest::newRow("yes") << 0 << 1 << one << QStringList{"Alpha", "Gamma"};
        QTest::newRow("cancel") << 1 << 1 << one << QStringList{"Alpha", "Beta", "Gamma"};
        QTest::newRow("several") << 0 << 2 << "2 rotations will be deleted. This cannot be undone."
                                 << QStringList{"Alpha"};
    }
    void theDeleteKeyAsks()
    {
        QFETCH(int, pressed);
        QFETCH(int, last);
        Pane p;
        QDialog *sheet = p.sheet("deleteButton", "DeleteMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        for (int row = 1; row <= last; ++row)
            table->selectionModel()->select(table->model()->index(row, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        p.alerts.hold();
        QTest::keyClick(table, Qt::Key_Delete);
        QTest::keyClick(table, Qt::Key_Delete);
        p.press(*sheet, "deleteButton"); // nothing but the question
        QCOMPARE(p.alerts.openCount(), 1);
        QTEST(p.alerts.texts().last(), "text");
        QCOMPARE(p.alerts.shown().last().buttons, QStringList({"Delete", "Cancel"}));
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

    void theMenusActOnThePaneAsADocument_data()
    {
        QTest::addColumn<DocumentAction>("action");
        QTest::addColumn<QString>("sheet");
        QTest::newRow("new") << &PageDocument::newDocument << "NewMapRotationWindowController";
        QTest::newRow("open") << &PageDocument::openDocument << "OpenMapRotationWindowController";
        QTest::newRow("save") << &PageDocument::saveDocument << "SaveMapRotationAsWindowController";
    }
    void theMenusActOnThePaneAsADocument()
    {
        QFETCH(DocumentAction, action);
        QFETCH(QString, sheet);
        Pane p;
        p.store.write("VWX");
        p.alerts.answerWith(1);
        QVERIFY(QTest::qWaitForWindowActive(&p.pane));
        PageDocument &document = p.pane;
        QTRY_COMPARE(document.undoStack()->count(), 1);
        p.table().edit(p.table().model()->index(0, 1));
        QTest::keyClicks(QApplication::focusWidget(), "typed");
        QCOMPARE(p.store.shown(), QString("VWX"));
        document.finishEditing();
        QCOMPARE(p.store.shown(), QString("typedWX"));
        QTRY_COMPARE(document.undoStack()->undoText(), QString("Edit"));
        (document.*action)();
        QTRY_VERIFY(p.pane.findChild<QDialog *>(sheet) != nullptr);
        QTest::keyClick(control<QDialog>(p.pane, sheet.toLatin1()), Qt::Key_Escape);
        QVERIFY(p.settle());
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

    void longNamesMakeNothingWide()
    {
        Pane p;
        const QString name = QStringLiteral("<b>x</b>\n") + QString(100000, 'W');
        QVERIFY(awaited(p.store.saveUIChanges(name)));
        p.pane.grab();
        QVERIFY2(p.pane.minimumSizeHint().width() <= 440,
                 qPrintable(QString::number(p.pane.minimumSizeHint().width())));
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        sheet->grab();
        QVERIFY(sheet->width() <= 1024 && sheet->minimumSizeHint().width() <= 1024);
        p.press(*sheet, "closeButton");
        QVERIFY(p.settle());
    }
};

QTEST_MAIN(RotationDialogsTest)
#include "tst_rotationdialogs.moc"
