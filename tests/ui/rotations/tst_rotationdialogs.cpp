#include "ActionQueue.h"
#include "Controls.h"
#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "Letters.h"
#include "RecordedAlerts.h"
#include "RotationPane.h"
#include "RotationStore.h"
#include "Wait.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/// Rotations of letters, which writes down what it is asked.
class LetterStore final : public RotationStore
{
public:
    QStringList names() const override { return stored; }
    bool contains(const QString &name) const override { return stored.contains(name); }
    QString currentRotation() const override { return current; }
    QAbstractItemModel *tableModel() override { return letters.arranged(); }
    QItemSelectionModel *tableSelection() override { return letters.selection(); }
    ReorderableRows &rows() override { return letters; }
    bool unsavedChanges() const override { return false; }
    bool hasUnsavedWork() const override { return false; }
    void openRotationNamed(const QString &name) override
    {
        asked.append(QStringLiteral("open ") + name);
        current = name;
        emit currentRotationChanged(name);
        emit rotationOpened();
    }
    QCoro::Task<> newRotationNamed(QString name) override { return note(QStringLiteral("new ") + name); }
    QCoro::Task<> deleteRotationNamed(QString name) override
    {
        stored.removeOne(name);
        return note(QStringLiteral("delete ") + name);
    }
    QCoro::Task<bool> saveUIChanges(QString name) override
    {
        co_await note(QStringLiteral("save ") + name);
        co_return true;
    }
    QCoro::Task<bool> saveUnsavedChanges() override
    {
        co_await note(QStringLiteral("ask"));
        co_return isGoingOn;
    }
    void deleteSelectedItems() override { letters.removeSelected(); }
    void deleteAllItems() override { letters.removeAll(); }
    QCoro::Task<QString> panel() { return m_saveAsPanel(); }

    Letters<Letter> letters{QStringLiteral("VWX")};
    QStringList stored{QStringLiteral("Alpha"), QStringLiteral("Beta"), QStringLiteral("Gamma")};
    QString current;
    QStringList asked;
    bool isGoingOn = true;

private:
    QCoro::Task<> note(QString what)
    {
        asked.append(what);
        co_return;
    }
};

using DocumentAction = void (PageDocument::*)();

struct Pane {
    Pane() { pane.show(); }
    /// Presses a button of the pane and waits for the sheet that it opens.
    QDialog *sheet(const char *button, const QString &name)
    {
        control<QPushButton>(pane, button)->click();
        QDialog *found = nullptr;
        (void)QTest::qWaitFor([&] { return (found = pane.findChild<QDialog *>(name)) != nullptr; });
        store.asked.clear();
        return found;
    }
    static void press(QDialog *sheet, const char *button) { control<QPushButton>(*sheet, button)->click(); }
    QPushButton &button(const char *name) { return *control<QPushButton>(pane, name); }
    QTableView &table() { return *control<KeyHandlingTableView>(pane, "mapRotationPreviewTableView"); }
    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); });
    }

    LetterStore store;
    RecordedAlerts alerts;
    ActionQueue actions;
    RotationPane pane{store, mapRotationLabels(), actions, alerts};
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
        QTest::addColumn<QStringList>("asked");
        const auto row = [](const char *name, bool isNew, const char *typed, const char *refused,
                            const QStringList &asked) {
            QTest::newRow(name) << isNew << QString(typed) << QString(refused) << asked;
        };
        row("new, trimmed", true, " Delta \n", "", {"new Delta"});
        row("new, blanks only", true, "  ", "", {"new "});
        row("new, taken", true, " Beta", "Beta", {});
        row("save as, with its blanks", false, " Delta ", "", {"save  Delta "});
        row("save as, taken without blanks", false, " Beta ", "Beta", {});
        row("save as, markers", false, "%1 %2", "", {"save %1 %2"});
        row("save as, nothing", false, "", "", {});
    }
    void names()
    {
        QFETCH(bool, isNew);
        QFETCH(QString, typed);
        QFETCH(QString, refused);
        Pane p;
        QDialog *sheet = isNew ? p.sheet("newButton", "NewMapRotationWindowController")
                               : p.sheet("saveButton", "SaveMapRotationAsWindowController");
        QVERIFY(sheet != nullptr && sheet->isModal());
        p.pane.openRotationMenuItemClicked(); // nothing while a sheet is open
        auto *field = control<QLineEdit>(*sheet, "nameField");
        field->setText(typed);
        auto *button = control<QPushButton>(*sheet, isNew ? "addButton" : "saveButton");
        QCOMPARE(button->isEnabled(), !typed.isEmpty());
        button->click();
        QTRY_COMPARE(p.alerts.shown().size(), refused.isEmpty() ? 0 : 1);
        if (!refused.isEmpty()) {
            QCOMPARE(p.alerts.titles(), QStringList{"Unable to Add New Map Rotation"});
            QCOMPARE(p.alerts.texts(), QStringList{"Map Rotation '" + refused + "' already exists!"});
        }
        if (!refused.isEmpty() || typed.isEmpty()) {
            QVERIFY(sheet->isVisible());
            QCOMPARE(field->text(), typed);
            QTest::keyClick(sheet, Qt::Key_Escape);
        }
        QVERIFY(p.settle());
        QTEST(p.store.asked, "asked");
    }

    void aCancelledPanelGivesNoName()
    {
        Pane p;
        QCoro::Task<QString> name = p.store.panel();
        auto *sheet = p.pane.findChild<QDialog *>("SaveMapRotationAsWindowController");
        control<QLineEdit>(*sheet, "nameField")->setText("typed");
        p.press(sheet, "cancelButton");
        QCOMPARE(awaited(std::move(name)), QString());
    }

    void aCancelledPanelSavesNothingAgain()
    {
        LetterStore store;
        RecordedAlerts alerts;
        ActionQueue actions;
        RotationPane pane(store, messageRotationLabels(), actions, alerts);
        pane.show();
        control<QPushButton>(pane, "saveAsButton")->click();
        control<QPushButton>(*pane.findChild<QDialog *>("SaveMessageRotationAsWindowController"), "cancelButton")
            ->click();
        QTRY_VERIFY(actions.isIdle());
        QCOMPARE(store.asked, QStringList());
    }

    void opensAndDeletesWhatIsSelected()
    {
        Pane p;
        p.store.isGoingOn = false;
        p.button("openButton").click();
        QVERIFY(p.settle()); // the question was called off: no sheet
        p.store.isGoingOn = true;
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        table->clearSelection();
        QTest::keyClick(table, Qt::Key_Return); // no more than a beep
        QVERIFY(sheet->isVisible());
        table->selectRow(1);
        QTest::keyClick(table, Qt::Key_Return);
        QVERIFY(p.settle());
        QCOMPARE(p.store.asked, QStringList{"open Beta"});
        QCOMPARE(control<ElidingLabel>(p.pane, "labelCurrentRotation")->text(), QString("Rotation: Beta"));
        sheet = p.sheet("deleteButton", "DeleteMapRotationWindowController");
        QVERIFY(!control<QPushButton>(*sheet, "deleteButton")->isEnabled());
        control<KeyHandlingTableView>(*sheet, "tableView")->selectAll();
        p.press(sheet, "deleteButton");
        QVERIFY(p.settle());
        QCOMPARE(p.store.asked, QStringList({"delete Alpha", "delete Beta", "delete Gamma"}));
        QVERIFY(!p.button("openButton").isEnabled());
        QVERIFY(p.alerts.shown().isEmpty());
    }

    void asksBeforeTheTableIsReplaced_data()
    {
        QTest::addColumn<QString>("button");
        for (const char *button : {"newButton", "openButton", "deleteButton"})
            QTest::newRow(button) << QString(button);
    }
    void asksBeforeTheTableIsReplaced()
    {
        QFETCH(QString, button);
        Pane p;
        p.store.isGoingOn = false; // "Cancel"
        p.button(button.toLatin1()).click();
        QVERIFY(p.settle());
        QCOMPARE(p.store.asked, QStringList{"ask"});
        QVERIFY(p.pane.findChild<QDialog *>() == nullptr);
        p.store.isGoingOn = true; // the next time
        p.button(button.toLatin1()).click();
        QTRY_VERIFY(p.pane.findChild<QDialog *>() != nullptr);
        p.pane.findChild<QDialog *>()->reject();
        QVERIFY(p.settle());
    }

    void returnOpensTheCurrentRotationOrTheFirst_data()
    {
        QTest::addColumn<QString>("opened");
        QTest::newRow("Gamma") << "open Gamma";
        QTest::newRow("") << "open Alpha";
        QTest::newRow("one that is gone") << "open Alpha";
    }
    void returnOpensTheCurrentRotationOrTheFirst()
    {
        Pane p;
        p.store.current = QTest::currentDataTag();
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        QTest::keyClick(sheet->focusWidget(), Qt::Key_Return);
        QVERIFY(p.settle());
        QTEST(p.store.asked.join('|'), "opened");
    }

    void aDoubleClickOpensTheRowUnderThePointer_data()
    {
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QString>("opened");
        const Qt::KeyboardModifiers none;
        QTest::newRow("left") << Qt::LeftButton << none << "open Beta";
        QTest::newRow("left, with Ctrl, which takes it out of the selection")
            << Qt::LeftButton << Qt::KeyboardModifiers(Qt::ControlModifier) << "open Beta";
        QTest::newRow("right") << Qt::RightButton << none << "";
        QTest::newRow("middle") << Qt::MiddleButton << none << "";
    }
    void aDoubleClickOpensTheRowUnderThePointer()
    {
        QFETCH(Qt::MouseButton, button);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        Pane p;
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        const QPoint place = table->visualRect(table->model()->index(1, 0)).center();
        QTest::mouseClick(table->viewport(), button, modifiers, place);
        QTest::mouseDClick(table->viewport(), button, modifiers, place);
        const bool isClosed = !sheet->isVisible();
        if (!isClosed)
            p.press(sheet, "closeButton");
        QVERIFY(p.settle());
        QTEST(p.store.asked.join('|'), "opened");
    }

    void theDeleteKeyAsks_data()
    {
        QTest::addColumn<int>("pressed");
        QTest::addColumn<int>("last"); // of the selected rows
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("asked");
        QTest::newRow("yes") << 0 << 1 << "The rotation \"Beta\" will be deleted. This cannot be undone."
                             << QStringList{"delete Beta"};
        QTest::newRow("cancel") << 1 << 1 << "The rotation \"Beta\" will be deleted. This cannot be undone."
                                << QStringList();
        QTest::newRow("several") << 0 << 2 << "2 rotations will be deleted. This cannot be undone."
                                 << QStringList{"delete Beta", "delete Gamma"};
    }
    void theDeleteKeyAsks()
    {
        QFETCH(int, pressed);
        QFETCH(int, last);
        Pane p;
        QDialog *sheet = p.sheet("deleteButton", "DeleteMapRotationWindowController");
        auto *table = control<KeyHandlingTableView>(*sheet, "tableView");
        table->selectRow(1);
        if (last == 2) {
            table->selectionModel()->select(table->model()->index(2, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
        p.alerts.hold();
        QTest::keyClick(table, Qt::Key_Delete);
        QTest::keyClick(table, Qt::Key_Delete);
        p.press(sheet, "deleteButton"); // nothing but the question
        QCOMPARE(p.alerts.openCount(), 1);
        QTEST(p.alerts.texts().last(), "text");
        QCOMPARE(p.alerts.shown().last().buttons, QStringList({"Delete", "Cancel"}));
        QCOMPARE(p.alerts.manners().last().defaultButton, 1);
        QCOMPARE(p.store.asked, QStringList());
        p.alerts.dismiss(pressed);
        if (pressed == 1) {
            QTRY_VERIFY((QTest::keyClick(table, Qt::Key_Delete), p.alerts.openCount() == 1)); // once more
            p.alerts.dismiss(pressed);
            p.press(sheet, "closeButton");
        }
        QVERIFY(p.settle());
        QTEST(p.store.asked, "asked");
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
        QVERIFY(QTest::qWaitForWindowActive(&p.pane));
        PageDocument &document = p.pane;
        p.table().edit(p.table().model()->index(0, 1));
        QTest::keyClicks(QApplication::focusWidget(), "typed");
        QCOMPARE(p.store.letters.shown(), QString("VWX"));
        document.finishEditing();
        QCOMPARE(p.store.letters.shown(), QString("typedWX"));
        QTRY_COMPARE(document.undoStack()->undoText(), QString("Edit"));
        (document.*action)();
        QTRY_VERIFY(p.pane.findChild<QDialog *>(sheet) != nullptr);
        QTest::keyClick(control<QDialog>(p.pane, sheet.toLatin1()), Qt::Key_Escape);
        QVERIFY(p.settle());
    }

    void whatHappensInATurnIsTakenBackAtOnce()
    {
        Pane p;
        const auto first = p.store.letters.content().first();
        QUndoStack &stack = *p.pane.undoStack();
        p.store.letters.choose({0, 1});
        p.button("removeButton").setEnabled(true);
        p.button("removeButton").click();
        QTRY_COMPARE(stack.undoText(), QString("Remove"));
        p.store.letters.addObjects({std::make_shared<Letter>(Letter{"a"}), std::make_shared<Letter>(Letter{"b"})});
        QTRY_COMPARE(stack.undoText(), QString("Add"));
        p.store.letters.acceptDrop({0}, 2, true, false);
        QTRY_COMPARE(stack.undoText(), QString("Move"));
        QVERIFY(p.store.letters.setData(p.store.letters.index(0, 1), "A"));
        QTest::keyClick(&p.table(), Qt::Key_Z, Qt::ControlModifier); // in the turn of the edit
        QCOMPARE(p.store.letters.shown(), QString("aXb"));
        QCOMPARE(stack.redoText(), QString("Edit"));
        stack.undo();
        stack.undo();
        stack.undo();
        QCOMPARE(p.store.letters.shown(), QString("VWX"));
        QCOMPARE(p.store.letters.content().first(), first); // the same entry, which may be on air
        stack.setIndex(stack.count());
        QCOMPARE(p.store.letters.shown(), QString("AXb"));
        p.store.openRotationNamed("Alpha");
        p.store.letters.removeAll(); // as part of it
        QTRY_VERIFY(!p.button("removeAllButton").isEnabled());
        QCOMPARE(stack.count(), 0);
    }

    void copiesRowsAndTellsOnceOfLinesThatDoNotFit()
    {
        Pane p;
        p.pane.setTakeRows([&](const QList<QStringList> &rows) {
            QList<qsizetype> misfits;
            QList<Letters<Letter>::Row> fitting;
            for (qsizetype i = 0; i < rows.size(); ++i) {
                if (rows.at(i).size() == 2)
                    fitting.append(std::make_shared<Letter>(Letter{rows.at(i).last()}));
                else
                    misfits.append(i);
            }
            p.store.letters.addObjects(fitting);
            return misfits;
        });
        p.store.letters.choose({2, 0});
        QTest::keyClick(&p.table(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("\tV\n\tX"));
        QGuiApplication::clipboard()->setText(QString("\tY\r\n").repeated(2000) + QString("bad %1\n").repeated(3));
        QTest::keyClick(&p.table(), Qt::Key_V, Qt::ControlModifier);
        QVERIFY(p.settle());
        QCOMPARE(p.store.letters.content().size(), 2003);
        QCOMPARE(p.alerts.shown().size(), 1);
        QVERIFY(p.alerts.texts().first().startsWith("3 of 2003 lines"));
        QTRY_COMPARE(p.pane.undoStack()->count(), 1);
    }

    void longNamesMakeNothingWide()
    {
        Pane p;
        const QString name = QStringLiteral("<b>x</b>\n") + QString(100000, 'W');
        p.store.stored.append(name);
        p.store.openRotationNamed(name);
        p.pane.grab();
        QVERIFY2(p.pane.minimumSizeHint().width() <= 440,
                 qPrintable(QString::number(p.pane.minimumSizeHint().width())));
        QDialog *sheet = p.sheet("openButton", "OpenMapRotationWindowController");
        sheet->grab();
        QVERIFY(sheet->width() <= 1024 && sheet->minimumSizeHint().width() <= 1024);
        p.press(sheet, "closeButton");
        QVERIFY(p.settle());
    }
};

QTEST_MAIN(RotationDialogsTest)
#include "tst_rotationdialogs.moc"
