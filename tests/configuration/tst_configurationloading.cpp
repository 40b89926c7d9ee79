#include "ActionQueue.h"
#include "ConfigurationLoading.h"
#include "DataColumns.h"
#include "KelServer.h"
#include "RecordedAlerts.h"
#include "RecordedProgress.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// A session that has just connected, and a file that can be loaded into it.
struct Loading {
    Loading()
    {
        exchange.answer("dvardump", ScriptedExchange::dump());
        awaited(server.connectToHost("192.0.2.1", "50960", "typed"));
        exchange.forgetSent();
        exchange.answerEverything(ScriptedExchange::ok());
    }

    void write(const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    void load(const QByteArray &content)
    {
        write(content);
        actions.start(loading.loadFile(path));
    }
    /// @return whether all actions have ended.
    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); }, 60000);
    }

    QTemporaryDir folder;
    QString path = folder.filePath("a.cfg");
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    RecordedProgress progress;
    ConfigurationLoading loading{server, actions, alerts, progress};
};

class ConfigurationLoadingTest : public QObject
{
    Q_OBJECT
    using Steps = QList<std::pair<qsizetype, qsizetype>>;

private slots:
    void loadsInTheOrderOfTheFileAndPausesForAlerts()
    {
        Loading with;
        const auto say = [](Loading *in) -> QCoro::Task<> {
            const ActionQueue::Turn turn = co_await in->actions.turn();
            co_await in->server.sendCommand("say hello");
        };
        with.exchange.answer("setadmindvar b \"2\"", ScriptedExchange::failure("no answer"));
        with.alerts.hold();
        with.exchange.hold();
        with.load("sv_hostname \"new\"\nb \"2\"\na \"3\"\n");
        QTRY_COMPARE(with.exchange.keptCount(), 1);
        QVERIFY(with.loading.isUnderWay() && with.progress.isShown());
        QCOMPARE(with.progress.title(), QString("Loading configuration..."));
        awaited(with.loading.loadEntries({{"second", "loading"}})); // does not begin
        with.actions.start(say(&with));
        for (int each = 0; each < 2; ++each) {
            with.exchange.release();
            QTRY_COMPARE(with.exchange.keptCount(), 1); // the message goes in between
        }
        QCOMPARE(with.progress.steps(), Steps({{0, 3}, {0, 3}}));
        with.exchange.release();
        QTRY_COMPARE(with.alerts.openCount(), 1);
        const RecordedAlerts::Shown told{"Remote Command Failure", "'b' returned an error: no answer", {}};
        QCOMPARE(with.alerts.shown(), QList<RecordedAlerts::Shown>{told});
        QCOMPARE(with.exchange.keptCount(), 0);
        with.alerts.dismiss();
        QTRY_COMPARE(with.exchange.keptCount(), 1);
        QCOMPARE(with.progress.steps().last(), Steps::value_type(1, 3));
        with.exchange.release();
        QVERIFY(with.settle() && !with.progress.isShown() && !with.loading.isUnderWay());
        QCOMPARE(with.progress.steps().last(), Steps::value_type(2, 3));
        QCOMPARE(with.exchange.sent(), QStringList({"setadmindvar sv_hostname \"new\"", "say hello",
                                                    "setadmindvar b \"2\"", "setadmindvar a \"3\""}));
        QCOMPARE(with.server.dvarList().value("sv_hostname"), QString("new"));
    }

    void endsEarly_data()
    {
        const auto row = dataColumns<QString, QStringList>("how", "told");
        row("Cancel, after the write in flight", "cancel",
            QStringList{"1 of 3 variables were written to the server. The others were left as they are."});
        row("Disconnect, silently", "disconnect", QStringList{});
        row("closing, silently", "close", QStringList{});
    }
    void endsEarly()
    {
        QFETCH(QString, how);
        Loading with;
        with.exchange.hold();
        with.load("a \"1\"\nb \"2\"\nc \"3\"\n");
        QTRY_COMPARE(with.exchange.keptCount(), 1);
        if (how == "cancel")
            with.progress.cancel();
        else if (how == "disconnect")
            with.server.disconnect();
        else
            with.actions.close();
        QCOMPARE(with.progress.isShown(), how == "cancel" || how == "close"); // until the write in flight has ended
        if (how == "close")
            with.server.cancelExchange();
        else
            with.exchange.release();
        QVERIFY(with.settle() && !with.progress.isShown() && !with.loading.isUnderWay());
        QCOMPARE(with.exchange.sent(), QStringList{"setadmindvar a \"1\""});
        QTEST(with.alerts.texts(), "told");
    }

    void countsOnlyWhatWasWritten()
    {
        Loading with;
        with.exchange.answer("setadmindvar b \"2\"", ScriptedExchange::failure("lost"));
        with.alerts.hold();
        with.load("a \"1\"\nb \"2\"\nc \"3\"\nd \"4\"\n");
        QTRY_COMPARE(with.alerts.openCount(), 1);
        with.progress.cancel();
        with.alerts.dismiss();
        QTRY_COMPARE(with.alerts.openCount(), 1);
        QCOMPARE(with.alerts.texts().last(),
                 QString("1 of 4 variables were written to the server. The others were left as they are."));
        with.alerts.dismiss();
        QVERIFY(with.settle());
        with.exchange.forgetSent();
        with.load("e \"5\"\nf \"6\"\n"); // what ended one loading does not end the next
        QVERIFY(with.settle());
        QCOMPARE(with.exchange.sent().size(), 2);
    }

    void formerNamesAreSentAsTheServerKnowsThem_data()
    {
        const auto row = dataColumns<QString, QStringList>("server", "sent");
        // server: what it lists
        const QString mine = "setadmindvar mine \"old\"";
        const QStringList asInTheFile{"setadmindvar old \"1\"", "setadmindvar playlist_excludeMap \"m_old x\"", mine};
        row("present names", "new \"0\"\n",
            QStringList{"setadmindvar new \"1\"", "setadmindvar playlist_excludeMap \"m_new x\"", mine});
        row("former names", "new \"0\"\nold \"0\"\n", asInTheFile);
        row("names of its own", "", asInTheFile);
    }
    void formerNamesAreSentAsTheServerKnowsThem()
    {
        QFETCH(QString, server);
        Loading with;
        QFile table(with.folder.filePath("former.names"));
        QVERIFY(table.open(QIODevice::WriteOnly) && table.write("// the former first\nold\tnew\nm_old\tm_new\n") > 0);
        table.close();
        for (const QString &line : server.split(u'\n'))
            with.server.addDvarLine(line);
        ConfigurationLoading loading(with.server, with.actions, with.alerts, with.progress,
                                     FormerNames(with.folder.path()));
        with.write("old \"1\"\nplaylist_excludeMap \"m_old x\"\nmine \"old\"\n");
        with.actions.start(loading.loadFile(with.path));
        QVERIFY(with.settle());
        QTEST(with.exchange.sent(), "sent");
    }

    void tellsWhatCannotBeLoaded()
    {
        Loading with;
        QByteArray many;
        for (int variable = 0; variable <= ConfigurationFile::mostEntries; ++variable)
            many += QByteArray::number(variable) + " \"\"\n";
        for (const QByteArray &content : {QByteArray("// nothing\n"), QByteArray("\0\1\0\0\2\3", 6), many}) {
            with.load(content);
            QVERIFY(with.settle() && !with.progress.isShown());
            QVERIFY(!awaited(with.loading.compareFile(with.path, {}, {})).has_value());
        }
        QCOMPARE(with.alerts.titles(),
                 QStringList({"Nothing to Load", "Nothing to Load"}) + QStringList(4, "Load Failed"));
        QVERIFY(with.exchange.sent().isEmpty());
    }
};

QTEST_GUILESS_MAIN(ConfigurationLoadingTest)
#include "tst_configurationloading.moc"
