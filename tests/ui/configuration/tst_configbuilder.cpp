#include "CataloguesFixture.h"
#include "CompareWindow.h"
#include "ConfigBuilderView.h"
#include "DvarSettingList.h"
#include "FileSizeLimit.h"
#include "ProgressWindowController.h"
#include "SectionTable.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

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
    void choose(QPushButton *button, const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        button->click();
        auto *panel = view.findChild<QFileDialog *>();
        panel->selectFile(path);
        static_cast<QDialog *>(panel)->accept();
        QTRY_VERIFY(view.findChild<QFileDialog *>() == nullptr);
    }
    void load(const QByteArray &content) { choose(view.loadConfigButton, content); }
    CompareWindow *compare(const QByteArray &content)
    {
        choose(view.compareConfigButton, content);
        return settle() ? window.findChild<CompareWindow *>() : nullptr;
    }
    QProgressBar *bar() const { return window.findChild<QProgressBar *>("progressIndicator"); }

    QString path = folder.filePath("a.cfg");
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

private slots:
    void keepsTheOrderOfTheSelection()
    {
        Builder builder;
        SectionTable *table = builder.view.configBuilderGametypeSettingsTable;
        const auto select = [table](int first, int last) {
            const QItemSelection range(table->model()->index(first, 0), table->model()->index(last, 0));
            table->selectionModel()->select(range, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        };
        const auto rows = table->controller->content();
        select(4, 4);
        select(1, 2);
        const QStringList chosen{rows.at(4).name, rows.at(1).name, rows.at(2).name};
        QCOMPARE(names(table), chosen);
        awaited(builder.gametypes.loadGametypeList()); // a reload makes the lists anew
        QCOMPARE(names(table), chosen);
        QCOMPARE(table->selectedLists().first(), builder.gametypes.findGametypeByName(chosen.first()));
        builder.view.selectAllRows();
        QCOMPARE(names(table).size(), table->model()->rowCount());
        QCOMPARE(names(table).mid(0, 3), QStringList({rows.at(0).name, chosen.at(1), chosen.at(2)}));
        builder.view.selectNoRows();
        QCOMPARE(builder.view.configSummaryLabel->text(), QString("Saving writes 0 groups, 0 gametypes, 4 variables."));
    }

    void savesWhatIsSelectedOrTellsWhyNot()
    {
        Builder builder;
        builder.view.configBuilderGeneralSettingsTable->selectRow(0);
        builder.choose(builder.view.saveConfigButton, "old");
        QVERIFY(builder.settle());
        const QByteArray first = builder.saved();
        const QString group = names(builder.view.configBuilderGeneralSettingsTable).value(0);
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

    void loadsInTheOrderOfTheFileAndPausesForAlerts()
    {
        Builder builder;
        const auto say = [](Builder *with) -> QCoro::Task<> {
            const ActionQueue::Turn turn = co_await with->actions.turn();
            co_await with->server.sendCommand("say hello");
        };
        builder.exchange.answer("setadmindvar b \"2\"", ScriptedExchange::failure("no answer"));
        builder.alerts.hold();
        builder.exchange.hold();
        builder.load("sv_hostname \"new\"\nb \"2\"\na \"3\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QVERIFY(builder.bar()->maximum() == 3 && !builder.view.loadConfigButton->isEnabled());
        builder.actions.start(say(&builder));
        for (int each = 0; each < 2; ++each) {
            builder.exchange.release();
            QTRY_COMPARE(builder.exchange.keptCount(), 1); // the message goes in between
        }
        QCOMPARE(builder.bar()->value(), 0);
        builder.exchange.release();
        QTRY_COMPARE(builder.alerts.openCount(), 1);
        const RecordedAlerts::Shown told{"Remote Command Failure", "'b' returned an error: no answer", {}};
        QCOMPARE(builder.alerts.shown(), QList<RecordedAlerts::Shown>{told});
        QCOMPARE(builder.exchange.keptCount(), 0);
        builder.alerts.dismiss();
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        QCOMPARE(builder.bar()->value(), 1);
        builder.exchange.release();
        QVERIFY(builder.settle() && builder.view.progressWindowController() == nullptr);
        QCOMPARE(builder.exchange.sent(), QStringList({"setadmindvar sv_hostname \"new\"", "say hello",
                                                       "setadmindvar b \"2\"", "setadmindvar a \"3\""}));
        QCOMPARE(builder.server.dvarList().value("sv_hostname"), QString("new"));
        QVERIFY(builder.view.loadConfigButton->isEnabled());
    }

    void endsEarly_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QStringList>("told");
        QTest::newRow("Cancel, after the write in flight")
            << "cancel"
            << QStringList{"1 of 3 variables were written to the server. The others were left as they are."};
        QTest::newRow("Disconnect, silently") << "disconnect" << QStringList{};
        QTest::newRow("another connection, silently") << "connect" << QStringList{};
        QTest::newRow("closing, silently") << "close" << QStringList{};
    }
    void endsEarly()
    {
        QFETCH(QString, how);
        Builder builder;
        builder.exchange.hold();
        builder.load("a \"1\"\nb \"2\"\nc \"3\"\n");
        QTRY_COMPARE(builder.exchange.keptCount(), 1);
        if (how == "cancel")
            QTest::keyClick(builder.view.progressWindowController()->window(), Qt::Key_Escape);
        else if (how == "disconnect")
            builder.server.disconnect();
        else if (how == "connect")
            emit builder.server.connectionBegan();
        else
            builder.actions.close();
        if (how == "close")
            builder.server.cancelExchange();
        else
            builder.exchange.release();
        QVERIFY(builder.settle() && builder.view.progressWindowController() == nullptr);
        QCOMPARE(builder.exchange.sent(), QStringList{"setadmindvar a \"1\""});
        QTEST(builder.alerts.texts(), "told");
    }

    void tellsWhatCannotBeLoaded()
    {
        Builder builder;
        QByteArray many;
        for (int variable = 0; variable <= ConfigurationFile::mostEntries; ++variable)
            many += QByteArray::number(variable) + " \"\"\n";
        for (const QByteArray &content : {QByteArray("// nothing\n"), QByteArray("\0\1\0\0\2\3", 6), many}) {
            builder.load(content);
            QVERIFY(builder.settle() && builder.compare(content) == nullptr);
        }
        QCOMPARE(builder.alerts.titles(),
                 QStringList({"Nothing to Load", "Nothing to Load"}) + QStringList(4, "Load Failed"));
        QVERIFY(builder.exchange.sent().isEmpty());
    }

    void comparesBeforeItWrites()
    {
        Builder builder;
        CompareWindow *window = builder.compare("playlist_enabled \"0\"\nsv_hostname \"<b>\"\nrcon_password \"new\"\n"
                                                "g_new \"a\tb\"\n");
        QVERIFY(window != nullptr && builder.exchange.sent().isEmpty());
        QCOMPARE(window->countsLabel->text(), QString("2 differ, 1 only in file, 3 only on server, 1 same"));
        const QAbstractItemModel &rows = *window->comparisonController->arranged();
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
        QVERIFY(window != nullptr && window->countsLabel->text().startsWith("The file would change nothing: 0 differ"));
        builder.server.disconnect();
        QVERIFY(!window->isVisible() && !builder.view.compareConfigButton->isEnabled());
    }
};

QTEST_MAIN(ConfigBuilderTest)
#include "tst_configbuilder.moc"
