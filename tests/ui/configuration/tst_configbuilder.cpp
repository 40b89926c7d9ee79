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
        auto *table = control<SectionTable>(builder.view, "configBuilderGametypeSettingsTable");
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
        for (const char *name : {"saveConfigButton", "loadConfigButton", "compareConfigButton"})
            QVERIFY(!builder.button(name)->isEnabled());
        builder.view.selectNoRows(); // what was selected at the press counts
        QCOMPARE(builder.saved(), QByteArray("old"));
        builder.releaseEverything();
        for (const QString &dvar : needed)
            QVERIFY2(builder.saved().contains(QString(dvar + " \"7\"\n").toUtf8()), qPrintable(dvar));
        QCOMPARE(builder.alerts.titles(), QStringList{"Replace File"});
        QTRY_VERIFY(builder.sheet() == nullptr);
        QVERIFY(builder.button("saveConfigButton")->isEnabled());
    }

    void writesNothingWhenTheWaitingIsCancelled()
    {
        FetchingBuilder builder;
        builder.choose("saveConfigButton", "old");
        QVERIFY(builder.sheet() != nullptr);
        QTest::keyClick(builder.sheet(), Qt::Key_Escape);
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
        builder.alerts.hold();
        builder.choose("saveConfigButton", "old");
        builder.releaseUntilAsked();
        QCOMPARE(builder.alerts.texts(),
                 QStringList{QString("The server did not answer for %1; it is not in the file.").arg(silent)});
        QCOMPARE(builder.alerts.manners().first().defaultButton, 1);
        builder.alerts.dismiss(isSaved ? 0 : 1);
        if (isSaved) {
            QTRY_COMPARE(builder.alerts.titles().last(), QString("Replace File"));
            builder.alerts.dismiss();
        }
        builder.releaseEverything();
        QCOMPARE(builder.saved() == "old", !isSaved);
        QVERIFY(!builder.saved().contains(silent.toUtf8()));
    }

    void showsALoadingWhichEscapeCancels()
    {
        Builder builder;
        builder.exchange.hold();
        builder.load("a \"1\"\nb \"2\"\nc \"3\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        const QPointer<QDialog> sheet = control<QDialog>(builder.window, "ProgressWindowController");
        QCOMPARE(control<QProgressBar>(*sheet, "progressIndicator")->maximum(), 3);
        for (const char *name : {"loadConfigButton", "compareConfigButton"})
            QVERIFY(!builder.button(name)->isEnabled());
        builder.exchange.release();
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY(sheet->isVisible());
        builder.exchange.release();
        QVERIFY(builder.settle());
        QTRY_VERIFY(sheet.isNull());
        QCOMPARE(builder.exchange.sent().size(), 2);
        QCOMPARE(builder.alerts.texts(),
                 QStringList{"2 of 3 variables were written to the server. The others were left as they are."});
        for (const char *name : {"loadConfigButton", "compareConfigButton"})
            QVERIFY(builder.button(name)->isEnabled());
    }

    void comparesBeforeItWrites()
    {
        Builder builder;
        CompareWindow *window = builder.compare("playlist_enabled \"0\"\nsv_hostname \"<b>\"\nrcon_password \"new\"\n"
                                                "h_new \"a\tb\"\n");
        QVERIFY(window != nullptr && builder.exchange.sent().isEmpty());
        QCOMPARE(control<QLabel>(*window, "countsLabel")->text(),
                 QString("2 differ, 1 only in file, 3 only on server, 1 same"));
        const auto *table = control<PlaceholderTable>(*window, "comparisonTableView");
        QCOMPARE(shownRow(*table, 0).last(), QString("Differs")); // what loading would change comes first
        QCOMPARE(table->model()->rowCount(), 6);
        control<QCheckBox>(*window, "showEqualOnes")->click();
        QCOMPARE(table->model()->rowCount(), 7);
        auto *filter = control<QLineEdit>(*window, "comparisonFilterField");
        auto *copy = control<QPushButton>(*window, "copyButton");
        filter->setText("differs");
        copy->click();
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QString("Variable\tValue Now\tValue in File\tState\nsv_hostname\th\t<b>\tDiffers\n"
                         "rcon_password\t(hidden)\t(hidden)\tDiffers\n"));
        filter->setText("h_new");
        copy->click();
        QCOMPARE(QGuiApplication::clipboard()->text().section('\n', 1, 1), QString("h_new\t\ta b\tOnly in file"));
        filter->setText("nowhere");
        QVERIFY(!copy->isEnabled());
        control<QPushButton>(*window, "loadOnlyDifferencesButton")->click();
        QVERIFY(builder.settle());
        QCOMPARE(builder.exchange.sent(),
                 QStringList({"setadmindvar sv_hostname \"<b>\"", "setadmindvar rcon_password \"new\"",
                              "setadmindvar h_new \"a\tb\""}));
        QTRY_VERIFY(builder.window.findChild<CompareWindow *>() == nullptr);
        window = builder.compare("sv_hostname \"<b>\"\n");
        QVERIFY(window != nullptr);
        QVERIFY(control<QLabel>(*window, "countsLabel")->text().startsWith("The file would change nothing: 0 differ"));
        QVERIFY(!control<QPushButton>(*window, "loadOnlyDifferencesButton")->isEnabled());
        builder.server.disconnect();
        QVERIFY(!window->isVisible() && !builder.button("compareConfigButton")->isEnabled());
        QVERIFY(builder.button("saveConfigButton")->isEnabled()); // the last values are still there
    }

    void theComparisonIsOfOneConnection()
    {
        Builder builder;
        const CompareWindow *window = builder.compare("h_new \"1\"\n");
        QVERIFY(window != nullptr && window->isVisible());
        emit builder.server.connectionBegan();
        QVERIFY(!window->isVisible());
    }

    void savesWithTheEndingOfAConfiguration()
    {
        Builder builder;
        for (const char *chosen : {"A.CFG", "b", "c.txt"})
            awaited(builder.view.saveConfigTo(builder.folder.filePath(chosen), {}));
        QCOMPARE(QDir(builder.folder.path()).entryList({"*.cfg"}, QDir::Files, QDir::Name),
                 QStringList({"A.CFG", "b.cfg", "c.txt.cfg"}));
    }
};

QTEST_MAIN(ConfigBuilderTest)
#include "tst_configbuilder.moc"
