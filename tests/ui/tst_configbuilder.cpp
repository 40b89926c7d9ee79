#include "CompareWindow.h"
#include "ConfigBuilderView.h"
#include "DvarSettingList.h"
#include "FileSizeLimit.h"
#include "Fixture.h"
#include "FormMainView.h"
#include "PlaceholderTable.h"
#include "ProgressWindowController.h"
#include "SectionTable.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

/// A view with the shipped catalogues on a session that has just connected.
struct Builder : Fixture {
    Builder()
    {
        awaited(gametypes.loadGametypeList());
        awaited(settings.loadSettings());
        connectToServer();
        exchange.answerEverything(ScriptedExchange::ok());
        window.resize(700, 500);
        view.resize(window.size());
        window.show();
    }

    QString write(const QByteArray &content) const
    {
        QFile file(folder.filePath("a.cfg"));
        const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
        return isWritten ? file.fileName() : QString();
    }
    QByteArray read(const QString &name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Presses a button that opens a file dialog and chooses `path` there.
    void choose(QPushButton *button, const QString &path)
    {
        button->click();
        auto *panel = view.findChild<QFileDialog *>();
        QVERIFY(panel != nullptr);
        panel->selectFile(path);
        static_cast<QDialog *>(panel)->accept();
        QTRY_VERIFY(view.findChild<QFileDialog *>() == nullptr);
    }
    void load(const QByteArray &content) { choose(view.loadConfigButton, write(content)); }
    CompareWindow *compare(const QByteArray &content)
    {
        choose(view.compareConfigButton, write(content));
        return QTest::qWaitFor([this] { return actions.isIdle(); }) ? window.findChild<CompareWindow *>() : nullptr;
    }
    QProgressBar *bar() const { return window.findChild<QProgressBar *>("progressIndicator"); }

    QWidget window;
    ConfigBuilderView view{server, actions, alerts, settings, gametypes, &window};
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
    static QString rowName(const SectionTable *table, int row)
    {
        return table->model()->index(row, 0).data().toString();
    }

private slots:
    void keepsTheOrderOfTheSelection()
    {
        Builder builder;
        SectionTable *table = builder.view.configBuilderGametypeSettingsTable;
        const auto select = [table](int first, int last) {
            const QItemSelection range(table->model()->index(first, 0), table->model()->index(last, 0));
            table->selectionModel()->select(range, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        };
        select(4, 4);
        select(1, 2);
        const QStringList chosen{rowName(table, 4), rowName(table, 1), rowName(table, 2)};
        QCOMPARE(names(table), chosen);
        awaited(builder.gametypes.loadGametypeList()); // a reload makes the lists anew
        QCOMPARE(names(table), chosen);
        QCOMPARE(table->selectedLists().first(), builder.gametypes.findGametypeByName(chosen.first()));
        builder.view.selectAllRows();
        QCOMPARE(names(table).size(), table->model()->rowCount());
        QCOMPARE(names(table).mid(0, 3), QStringList({rowName(table, 0), chosen.at(1), chosen.at(2)}));
        builder.view.selectNoRows();
        QVERIFY(names(table).isEmpty());
        QCOMPARE(builder.view.configSummaryLabel->text(), QString("Saving writes 0 groups, 0 gametypes, 4 variables."));
    }

    void theSecondVisitSelectsAllRows()
    {
        Builder builder;
        FormMainView main(builder.server, builder.actions, builder.alerts, builder.preferences,
                          GameCatalogues{builder.gametypes, builder.settings, builder.maps}, builder.savedServers);
        main.makeViews();
        const SectionTable *table = main.configBuilderView->configBuilderGeneralSettingsTable;
        emit main.configBuilderVisitedAgain();
        QVERIFY(!names(table).isEmpty());
        QCOMPARE(names(table).size(), table->model()->rowCount());
    }

    void savesWhatIsSelectedAtThePress()
    {
        Builder builder;
        builder.view.configBuilderGeneralSettingsTable->selectRow(0);
        const QString group = rowName(builder.view.configBuilderGeneralSettingsTable, 0);
        builder.view.saveConfigButton->click();
        auto *panel = builder.view.findChild<QFileDialog *>("saveConfigPanel");
        builder.view.selectNoRows();
        panel->selectFile(builder.folder.filePath("new.txt"));
        static_cast<QDialog *>(panel)->accept();
        QVERIFY(builder.settle());
        const QByteArray saved = builder.read("new.txt.cfg");
        QVERIFY(saved.contains(QString("// '%1' Settings\n").arg(group).toUtf8()));
        QVERIFY(saved.contains("\nplaylist_excludeMap \"a\"\n"));
        QVERIFY(!saved.contains("secret"));
    }

    void aFailedSaveTellsAndLeavesTheOldFile()
    {
        Builder builder;
        const QString path = builder.write("old");
        builder.alerts.answerWith(1);
        awaited(builder.view.saveConfigTo(path, {}));
        QCOMPARE(builder.alerts.titles(), QStringList{"Replace File"});
        builder.alerts.answerWith(0);
        {
            const FileSizeLimit full(16);
            awaited(builder.view.saveConfigTo(path, {}));
        }
        QCOMPARE(builder.alerts.titles().last(), QString("Save Failed"));
        QVERIFY(builder.alerts.texts().last().contains(path));
        QCOMPARE(builder.read("a.cfg"), QByteArray("old"));
        awaited(builder.view.saveConfigTo(path, {}));
        QVERIFY(builder.read("a.cfg").startsWith("// Kelvard - Ferrow\n"));
    }

    void loadsInTheOrderOfTheFileAndPausesForAlerts()
    {
        Builder builder;
        builder.exchange.answer("setadmindvar b \"2\"", ScriptedExchange::failure("no answer"));
        builder.alerts.hold();
        builder.exchange.hold();
        builder.load("sv_hostname \"new\"\nb \"2\"\na \"3\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QCOMPARE(builder.bar()->maximum(), 3);
        QVERIFY(!builder.view.loadConfigButton->isEnabled());
        builder.exchange.release();
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QCOMPARE(builder.bar()->value(), 0);
        builder.exchange.release();
        QTRY_COMPARE(builder.alerts.openCount(), 1);
        QCOMPARE(builder.alerts.shown().last().title, QString("Remote Command Failure"));
        QCOMPARE(builder.alerts.texts(), QStringList{"'b' returned an error: no answer"});
        QCOMPARE(builder.exchange.sent().size(), 2);
        builder.alerts.dismiss();
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QCOMPARE(builder.bar()->value(), 1);
        builder.exchange.release();
        QVERIFY(builder.settle());
        QCOMPARE(builder.exchange.sent(),
                 QStringList({"setadmindvar sv_hostname \"new\"", "setadmindvar b \"2\"", "setadmindvar a \"3\""}));
        QCOMPARE(builder.server.dvarList().value("sv_hostname"), QString("new"));
        QVERIFY(builder.view.progressWindowController() == nullptr);
        QVERIFY(builder.view.loadConfigButton->isEnabled());
    }

    void othersTakeTheirTurnBetweenTheWrites()
    {
        Builder builder;
        const auto say = [](Builder *with) -> QCoro::Task<> {
            const ActionQueue::Turn turn = co_await with->actions.turn();
            const Reply reply = co_await with->server.sendCommand("say hello");
            Q_ASSERT(turn && reply.isSuccess());
        };
        builder.exchange.hold();
        builder.load("a \"1\"\nb \"2\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        builder.actions.start(say(&builder));
        while (!builder.actions.isIdle()) {
            if (builder.exchange.keptCount() > 0)
                builder.exchange.release();
            QTest::qWait(1);
        }
        QCOMPARE(builder.exchange.sent().value(1), QString("say hello"));
        QCOMPARE(builder.exchange.sent().size(), 3);
    }

    void endsEarly_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QStringList>("told");
        const QString told = "1 of 3 variables were written to the server. The others were left as they are.";
        QTest::newRow("Cancel, after the write in flight") << "cancel" << QStringList{told};
        QTest::newRow("Disconnect, silently") << "disconnect" << QStringList{};
        QTest::newRow("closing, silently") << "close" << QStringList{};
        QTest::newRow("another connection, silently") << "connect" << QStringList{};
    }
    void endsEarly()
    {
        QFETCH(QString, how);
        Builder builder;
        builder.exchange.hold();
        builder.load("a \"1\"\nb \"2\"\nc \"3\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        if (how == "cancel") {
            QTest::keyClick(builder.view.progressWindowController()->window(), Qt::Key_Escape);
        } else if (how == "connect") {
            emit builder.server.connectionBegan();
        } else {
            how == "close" ? builder.actions.close() : builder.actions.dropWaiting();
            builder.server.cancelExchange();
            builder.server.disconnect();
        }
        if (builder.exchange.keptCount() > 0)
            builder.exchange.release();
        QVERIFY(builder.settle());
        QCOMPARE(builder.exchange.sent(), QStringList{"setadmindvar a \"1\""});
        QTEST(builder.alerts.texts(), "told");
        QVERIFY(builder.view.progressWindowController() == nullptr);
        QTRY_VERIFY(builder.bar() == nullptr);
    }

    void tellsWhatCannotBeLoaded_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("title");
        QTest::newRow("no entries") << QByteArray("// nothing\n") << "Nothing to Load";
        QTest::newRow("no text") << QByteArray("\0\1\0\0\2\3", 6) << "Load Failed";
    }
    void tellsWhatCannotBeLoaded()
    {
        QFETCH(QByteArray, content);
        Builder builder;
        builder.load(content);
        QVERIFY(builder.settle());
        QVERIFY(builder.compare(content) == nullptr);
        QFETCH(QString, title);
        QCOMPARE(builder.alerts.titles(), QStringList({title, title}));
        QVERIFY(builder.exchange.sent().isEmpty());
    }

    void comparesBeforeItWrites()
    {
        Builder builder;
        CompareWindow *window = builder.compare("playlist_enabled \"0\"\nsv_hostname \"<b>\"\nrcon_password \"new\"\n"
                                                "g_new \"a\tb\"\n");
        QVERIFY(window != nullptr);
        QVERIFY(builder.exchange.sent().isEmpty());
        QCOMPARE(window->countsLabel->text(), QString("2 differ, 1 only in file, 3 only on server, 1 same"));
        const QAbstractItemModel &rows = *window->comparisonTableView->model();
        QCOMPARE(rows.rowCount(), 6);
        window->showEqualOnes->click();
        QCOMPARE(rows.rowCount(), 7);
        window->comparisonFilterField->setText("differs");
        window->copyButton->click();
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QString("Variable\tValue Now\tValue in File\tState\nsv_hostname\th\t<b>\tDiffers\n"
                         "rcon_password\t(hidden)\t(hidden)\tDiffers\n"));
        QCOMPARE(rows.index(0, 2).data(Qt::ToolTipRole).toString(), QString("<span>&lt;b&gt;</span>"));
        window->loadOnlyDifferencesButton->click();
        QVERIFY(builder.settle());
        QCOMPARE(builder.exchange.sent(),
                 QStringList({"setadmindvar sv_hostname \"<b>\"", "setadmindvar rcon_password \"new\"",
                              "setadmindvar g_new \"a\tb\""}));
        QTRY_VERIFY(builder.window.findChild<CompareWindow *>() == nullptr);
        window = builder.compare("sv_hostname \"<b>\"\n");
        QVERIFY(window != nullptr && !window->loadOnlyDifferencesButton->isEnabled());
        QVERIFY(window->countsLabel->text().startsWith("The file would change nothing: 0 differ"));
        builder.server.disconnect();
        QVERIFY(!window->isVisible() && !builder.view.compareConfigButton->isEnabled());
    }
};

QTEST_MAIN(ConfigBuilderTest)
#include "tst_configbuilder.moc"
