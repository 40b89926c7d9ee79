#include "CataloguesFixture.h"
#include "CompareWindow.h"
#include "ConfigBuilderView.h"
#include "Controls.h"
#include "DvarSetting.h"
#include "DvarSettingList.h"
#include "FetchingSession.h"
#include "FileSizeLimit.h"
#include "SectionTable.h"
#include "TestPreferences.h"

#include <QCheckBox>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>

/// A view with the shipped catalogues on a session that has just connected.
struct Builder : CataloguesFixture {
    Builder()
    {
        awaited(gametypes.loadGametypeList());
        awaited(settings.loadSettings());
        connectToServer();
        exchange.answerEverything(ScriptedExchange::ok());
        window.show();
    }

    QByteArray saved() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Presses a button that opens a file dialog, and chooses a file with `content` there.
    void choose(const char *buttonName, const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        button(buttonName)->click();
        auto *panel = view.findChild<QFileDialog *>();
        panel->selectFile(path);
        static_cast<QDialog *>(panel)->accept();
        QTRY_VERIFY(view.findChild<QFileDialog *>() == nullptr);
    }
    void load(const QByteArray &content) { choose("loadConfigButton", content); }
    CompareWindow *compare(const QByteArray &content)
    {
        choose("compareConfigButton", content);
        return settle() ? window.findChild<CompareWindow *>() : nullptr;
    }
    QPushButton *button(const char *name) const { return control<QPushButton>(view, name); }
    SectionTable *groups() const { return control<SectionTable>(view, "configBuilderGeneralSettingsTable"); }
    SectionTable *gametypesTable() const { return control<SectionTable>(view, "configBuilderGametypeSettingsTable"); }

    QString path = folder.filePath("a.cfg");
    TestPreferences preferences{folder};
    QWidget window;
    ConfigBuilderView view{server, actions, alerts, fetcher, preferences, settings, gametypes, &window};
};

/// A builder whose first group is being fetched, as far as the dump lacks it: every value is "7".
struct FetchingBuilder : Builder {
    FetchingBuilder()
    {
        catalogue.settings.clear();
        catalogue.gametypes.clear();
        for (const auto &setting : settings.sortedSettingsValues().first()->settings()) {
            const QString dvar = setting->dvar();
            exchange.answer(dvar, ScriptedExchange::ok(QString("\"%1\" is: \"7\" in force: \"7\"\n").arg(dvar)));
            if (!server.dvarList().contains(dvar))
                catalogue.settings.append(dvar);
        }
        server.setCatalogueLoader(&catalogue);
        exchange.hold();
        QCoro::Task<> connecting = server.connectToHost("192.0.2.1", "50960", "typed");
        exchange.release();
        awaited(std::move(connecting));
        exchange.forgetSent();
        groups()->selectRow(0);
    }
    ~FetchingBuilder()
    {
        server.disconnect();
        while (!actions.isIdle()) {
            server.cancelExchange();
            QCoreApplication::processEvents();
        }
    }
    QDialog *sheet() const { return window.findChild<QDialog *>("ProgressWindowController"); }
    /// Gives every reply until an alert is open.
    void releaseUntilAsked()
    {
        while (alerts.openCount() == 0) {
            QTRY_VERIFY(exchange.keptCount() > 0 || alerts.openCount() > 0);
            if (exchange.keptCount() > 0)
                exchange.release();
        }
    }
    /// Gives every reply until all of the actions have ended.
    void releaseEverything()
    {
        while (fetcher.isAsking() || !actions.isIdle()) {
            QTRY_VERIFY(exchange.keptCount() > 0 || (!fetcher.isAsking() && actions.isIdle()));
            if (exchange.keptCount() > 0)
                exchange.release();
        }
    }
    FewCatalogues catalogue;
};

class ConfigBuilderTest : public QObject
{
    Q_OBJECT

    static QStringList names(const SectionTable *table)
    {
        QStringList names;
        for (const auto &list : table->selectedLists())
            names.append(list->name());
        return names;
    }

private slots:
    void keepsTheOrderOfTheSelection()
    {
        Builder builder;
        SectionTable *table = builder.gametypesTable();
        const auto select = [table](int first, int last) {
            const QItemSelection range(table->model()->index(first, 0), table->model()->index(last, 0));
            table->selectionModel()->select(range, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        };
        const auto nameIn = [table](int row) {
            return table->model()->index(row, 0).data().toString();
        };
        select(4, 4);
        select(1, 2);
        const QStringList chosen{nameIn(4), nameIn(1), nameIn(2)};
        QCOMPARE(names(table), chosen);
        awaited(builder.gametypes.loadGametypeList()); // a reload makes the lists anew
        QCOMPARE(names(table), chosen);
        QCOMPARE(table->selectedLists().first(), builder.gametypes.findGametypeByName(chosen.first()));
        builder.view.selectAllRows();
        QCOMPARE(names(table).size(), table->model()->rowCount());
        QCOMPARE(names(table).mid(0, 3), QStringList({nameIn(0), chosen.at(1), chosen.at(2)}));
        builder.view.selectNoRows();
        QCOMPARE(control<QLabel>(builder.view, "configSummaryLabel")->text(),
                 QString("Saving writes 0 groups, 0 gametypes, 4 variables."));
        QStringList fromTheEnd;
        for (int row = table->model()->rowCount() - 1; row >= 0; --row) {
            select(row, row); // one by one, until all are
            fromTheEnd.append(nameIn(row));
        }
        QCOMPARE(names(table), fromTheEnd);
    }

    void savesWhatIsSelectedOrTellsWhyNot()
    {
        Builder builder;
        builder.groups()->selectRow(0);
        builder.choose("saveConfigButton", "old");
        QVERIFY(builder.settle());
        const QByteArray first = builder.saved();
        const QString group = names(builder.groups()).value(0);
        QVERIFY(first.contains(QString("// '%1' Settings\n").arg(group).toUtf8()) && !first.contains("secret"));
        {
            const FileSizeLimit full(16);
            awaited(builder.view.saveConfigTo(builder.folder.filePath("a"), {}));
        }
        builder.alerts.answerWith(1);
        awaited(builder.view.saveConfigTo(builder.path, {}));
        QCOMPARE(builder.alerts.titles(), QStringList({"Replace File", "Replace File", "Save Failed", "Replace File"}));
        QVERIFY(builder.alerts.texts().at(2).contains(builder.path));
        QCOMPARE(builder.saved(), first);
    }

    void savesWhenTheValuesHaveCome()
    {
        FetchingBuilder builder;
        const QStringList needed = builder.catalogue.settings;
        QVERIFY(needed.size() > 1);
        builder.choose("saveConfigButton", "old");
        QVERIFY(builder.sheet() != nullptr);
        QCOMPARE(control<QLabel>(*builder.sheet(), "titleLabel")->text(), u"Asking for settings…"_qs);
        const auto *bar = control<QProgressBar>(*builder.sheet(), "progressIndicator");
        QVERIFY(bar->maximum() == needed.size() && bar->value() == 0);
        for (const char *name : {"saveConfigButton", "loadConfigButton", "compareConfigButton"})
            QVERIFY(!builder.button(name)->isEnabled());
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        builder.exchange.release();
        QTRY_COMPARE(bar->value(), 1);
        builder.view.selectNoRows(); // what was selected at the press counts
        QCOMPARE(builder.saved(), QByteArray("old"));
        builder.releaseEverything();
        for (const QString &dvar : needed)
            QVERIFY2(builder.saved().contains(QString(dvar + " \"7\"\n").toUtf8()), qPrintable(dvar));
        QCOMPARE(builder.alerts.titles(), QStringList{"Replace File"});
        QTRY_VERIFY(builder.sheet() == nullptr);
        for (const char *name : {"saveConfigButton", "loadConfigButton", "compareConfigButton"})
            QVERIFY(builder.button(name)->isEnabled());
    }

    void writesNothingWhenTheWaitingEnds_data()
    {
        QTest::addColumn<bool>("isCancelled");
        QTest::newRow("cancelled") << true;
        QTest::newRow("disconnected") << false;
    }
    void writesNothingWhenTheWaitingEnds()
    {
        QFETCH(bool, isCancelled);
        FetchingBuilder builder;
        builder.choose("saveConfigButton", "old");
        QVERIFY(builder.sheet() != nullptr);
        if (isCancelled)
            QTest::keyClick(builder.sheet(), Qt::Key_Escape);
        else
            builder.server.disconnect();
        QTRY_VERIFY(builder.sheet() == nullptr && builder.button("saveConfigButton")->isEnabled());
        QCOMPARE(builder.saved(), QByteArray("old"));
        QVERIFY(builder.alerts.shown().isEmpty());
    }

    void namesWhatTheServerDidNotAnswer_data()
    {
        QTest::addColumn<bool>("isSaved");
        QTest::newRow("saved anyway") << true;
        QTest::newRow("cancelled") << false;
    }
    void namesWhatTheServerDidNotAnswer()
    {
        QFETCH(bool, isSaved);
        FetchingBuilder builder;
        const QString silent = builder.catalogue.settings.at(1);
        builder.exchange.answer(silent, ScriptedExchange::failure());
        builder.exchange.answer(builder.catalogue.settings.at(0), ScriptedExchange::ok("Unknown command \"x\"\n"));
        builder.alerts.hold();
        builder.choose("saveConfigButton", "old");
        builder.releaseUntilAsked();
        const RecordedAlerts::Shown asked{
            "Settings Missing",
            QString("The server did not answer for %1; it is not in the file.").arg(silent),
            {"Save Anyway", "Cancel"}};
        QCOMPARE(builder.alerts.shown(), QList<RecordedAlerts::Shown>{asked});
        QCOMPARE(builder.alerts.manners().first().defaultButton, 1);
        QVERIFY(builder.sheet() == nullptr || !builder.sheet()->isVisible());
        builder.alerts.dismiss(isSaved ? 0 : 1);
        if (isSaved) {
            QTRY_COMPARE(builder.alerts.titles().last(), QString("Replace File"));
            builder.alerts.dismiss();
        }
        builder.releaseEverything();
        QCOMPARE(builder.saved() == "old", !isSaved);
        QVERIFY(!builder.saved().contains(silent.toUtf8()));
        QCOMPARE(builder.saved().contains(QString(builder.catalogue.settings.at(2) + " \"7\"\n").toUtf8()), isSaved);
    }

    void comparesWhenTheValuesHaveCome()
    {
        FetchingBuilder builder;
        const QString last = builder.catalogue.settings.last();
        builder.choose("compareConfigButton", QString(last + " \"7\"\n").toUtf8());
        QVERIFY(builder.sheet() != nullptr);
        builder.releaseEverything();
        const auto *window = builder.window.findChild<CompareWindow *>();
        QVERIFY(window != nullptr);
        QVERIFY(control<QLabel>(*window, "countsLabel")->text().contains(" 1 same"));
    }

    void theCountsFollowWhatComes()
    {
        FetchingBuilder builder;
        const auto *summary = control<QLabel>(builder.view, "configSummaryLabel");
        const QModelIndex count = builder.groups()->model()->index(0, 1);
        QCOMPARE(count.data().toString(), QString("1")); // the server's name
        const QString before = summary->text();
        int changes = 0;
        const QObject listening; // goes before what it counts
        connect(builder.groups()->model(), &QAbstractItemModel::dataChanged, &listening, [&changes] { ++changes; });
        builder.releaseEverything();
        const auto all = builder.settings.sortedSettingsValues().first()->settings().size();
        QTRY_COMPARE(count.data().toString(), QString::number(all));
        QVERIFY(changes < builder.catalogue.settings.size());
        QVERIFY(summary->text() != before);
    }

    void showsALoadingWhichEscapeCancels()
    {
        Builder builder;
        builder.exchange.hold();
        builder.load("a \"1\"\nb \"2\"\nc \"3\"\nd \"4\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        const QPointer<QDialog> sheet = control<QDialog>(builder.window, "ProgressWindowController");
        const auto *bar = control<QProgressBar>(*sheet, "progressIndicator");
        QVERIFY(bar->maximum() == 4 && bar->value() == 0);
        for (const char *name : {"loadConfigButton", "compareConfigButton"})
            QVERIFY(!builder.button(name)->isEnabled());
        builder.exchange.release();
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        builder.exchange.release();
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QCOMPARE(bar->value(), 1);
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY(sheet->isVisible());
        builder.exchange.release();
        QVERIFY(builder.settle());
        QTRY_VERIFY(sheet.isNull());
        QCOMPARE(builder.exchange.sent().size(), 3);
        QCOMPARE(builder.alerts.texts(),
                 QStringList{"3 of 4 variables were written to the server. The others were left as they are."});
        for (const char *name : {"loadConfigButton", "compareConfigButton"})
            QVERIFY(builder.button(name)->isEnabled());
    }

    void showsNoComparisonOfWhatCannotBeLoaded()
    {
        Builder builder;
        builder.load("// nothing\n");
        QVERIFY(builder.settle() && builder.compare("// nothing\n") == nullptr);
        QCOMPARE(builder.alerts.titles(), QStringList({"Nothing to Load", "Nothing to Load"}));
        QVERIFY(builder.window.findChild<QDialog *>("ProgressWindowController") == nullptr);
    }

    void comparesBeforeItWrites()
    {
        Builder builder;
        CompareWindow *window = builder.compare("playlist_enabled \"0\"\nsv_hostname \"<b>\"\nrcon_password \"new\"\n"
                                                "h_new \"a\tb\"\n");
        QVERIFY(window != nullptr && builder.exchange.sent().isEmpty());
        QCOMPARE(control<QLabel>(*window, "countsLabel")->text(),
                 QString("2 differ, 1 only in file, 3 only on server, 1 same"));
        const QAbstractItemModel &rows = *control<QTableView>(*window, "comparisonTableView")->model();
        QCOMPARE(rows.rowCount(), 6);
        QStringList states;
        for (const QStringList &texts : shownRows(*control<QTableView>(*window, "comparisonTableView")))
            states.append(texts.at(3));
        const QStringList expected =
            QStringList(2, "Differs") + QStringList("Only in file") + QStringList(3, "Only on server");
        QCOMPARE(states, expected); // what loading would change comes first
        control<QCheckBox>(*window, "showEqualOnes")->click();
        QCOMPARE(rows.rowCount(), 7);
        control<QLineEdit>(*window, "comparisonFilterField")->setText("differs");
        control<QPushButton>(*window, "copyButton")->click();
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QString("Variable\tValue Now\tValue in File\tState\nsv_hostname\th\t<b>\tDiffers\n"
                         "rcon_password\t(hidden)\t(hidden)\tDiffers\n"));
        control<QLineEdit>(*window, "comparisonFilterField")->setText("h_new");
        control<QPushButton>(*window, "copyButton")->click();
        QCOMPARE(QGuiApplication::clipboard()->text().section('\n', 1, 1), QString("h_new\t\ta b\tOnly in file"));
        const auto *table = control<PlaceholderTable>(*window, "comparisonTableView");
        QVERIFY(control<QPushButton>(*window, "copyButton")->isEnabled());
        control<QLineEdit>(*window, "comparisonFilterField")->setText("nowhere");
        QVERIFY(!control<QPushButton>(*window, "copyButton")->isEnabled());
        QCOMPARE(table->placeholder(), QString("No variable matches the filter."));
        control<QTableView>(*window, "comparisonTableView")->setColumnWidth(1, 177);
        control<QPushButton>(*window, "loadOnlyDifferencesButton")->click();
        QVERIFY(builder.settle());
        QCOMPARE(builder.exchange.sent(),
                 QStringList({"setadmindvar sv_hostname \"<b>\"", "setadmindvar rcon_password \"new\"",
                              "setadmindvar h_new \"a\tb\""}));
        QTRY_VERIFY(builder.window.findChild<CompareWindow *>() == nullptr);
        window = builder.compare("sv_hostname \"<b>\"\n");
        QVERIFY(window != nullptr);
        QCOMPARE(control<QTableView>(*window, "comparisonTableView")->columnWidth(1), 177);
        QVERIFY(control<QLabel>(*window, "countsLabel")->text().startsWith("The file would change nothing: 0 differ"));
        QVERIFY(!control<QPushButton>(*window, "loadOnlyDifferencesButton")->isEnabled());
        builder.server.disconnect();
        QVERIFY(!window->isVisible() && !builder.button("compareConfigButton")->isEnabled());
    }

    void theComparisonIsOfOneConnection_data()
    {
        QTest::addColumn<bool>("isAnother");
        QTest::newRow("the connection ends") << false;
        QTest::newRow("another one begins") << true;
    }
    void theComparisonIsOfOneConnection()
    {
        QFETCH(bool, isAnother);
        Builder builder;
        const CompareWindow *window = builder.compare("h_new \"1\"\n");
        QVERIFY(window != nullptr && window->isVisible());
        if (isAnother)
            emit builder.server.connectionBegan();
        else
            builder.server.disconnect();
        QVERIFY(!window->isVisible());
    }

    void tellsThatTheFileHoldsWhatTheServerHas()
    {
        Builder builder;
        QByteArray everything;
        for (const ConfigurationEntry &entry :
             writtenEntries({builder.settings.sortedSettingsValues(), builder.gametypes.listedGametypes(),
                             builder.server.dvarList()}))
            everything += (entry.dvar + " \"" + entry.value + "\"\n").toUtf8();
        const CompareWindow *window = builder.compare(everything);
        QVERIFY(window != nullptr);
        QCOMPARE(control<PlaceholderTable>(*window, "comparisonTableView")->placeholder(),
                 QString("The file holds what the server has."));
    }

    void savesWithTheEndingOfAConfiguration_data()
    {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("written");
        const auto row = [](const char *name, const char *chosen, const char *written) {
            QTest::newRow(name) << QString(chosen) << QString(written);
        };
        row("capitals", "A.CFG", "A.CFG");
        row("none", "b", "b.cfg");
        row("another", "c.txt", "c.txt.cfg");
    }
    void savesWithTheEndingOfAConfiguration()
    {
        QFETCH(QString, chosen);
        Builder builder;
        awaited(builder.view.saveConfigTo(builder.folder.filePath(chosen), {}));
        QTEST(QDir(builder.folder.path()).entryList(QDir::Files).filter("cfg", Qt::CaseInsensitive).join(' '),
              "written");
    }

    void theNextFileIsLookedForWhereTheLastOneWas()
    {
        Builder builder;
        builder.choose("saveConfigButton", "old");
        QVERIFY(builder.settle());
        builder.button("loadConfigButton")->click();
        const auto *panel = control<QFileDialog>(builder.view, "loadConfigPanel");
        QCOMPARE(panel->directory().canonicalPath(), QFileInfo(builder.folder.path()).canonicalFilePath());
    }

    void aButtonThatWasGreyGetsTheFocusBack()
    {
        Builder builder;
        QVERIFY(QTest::qWaitForWindowActive(&builder.window));
        builder.exchange.hold();
        builder.button("loadConfigButton")->setFocus();
        builder.load("a \"1\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QVERIFY(!builder.button("loadConfigButton")->hasFocus());
        builder.exchange.release();
        QVERIFY(builder.settle());
        QCOMPARE(builder.window.focusWidget(), builder.button("loadConfigButton"));
    }

    void theLastValuesCanBeSavedWhenTheServerHasGone()
    {
        Builder builder;
        QCOMPARE(builder.groups()->placeholder(), QString("The catalogue has no groups."));
        builder.server.disconnect();
        QVERIFY(builder.button("saveConfigButton")->isEnabled());
        QCOMPARE(builder.groups()->placeholder(), QString("Not connected. Connect to a server to see its groups."));
    }

    void theMenuPressesTheButtons()
    {
        Builder builder;
        QMenu menu;
        builder.view.fillMenu(menu);
        QCOMPARE(entriesOf(menu), QStringList({"&Save Config…", "&Load Config…", "&Compare With File…"}));
        const QStringList panels{"saveConfigPanel", "loadConfigPanel", "compareConfigPanel"};
        for (qsizetype each = 0; each < panels.size(); ++each) {
            menu.actions().at(each)->trigger();
            control<QFileDialog>(builder.view, panels.at(each).toLatin1())->reject();
            QTRY_VERIFY(builder.view.findChild<QFileDialog *>() == nullptr);
        }
    }
};

QTEST_MAIN(ConfigBuilderTest)
#include "tst_configbuilder.moc"
