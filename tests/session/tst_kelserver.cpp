#include "KelServer.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

/// A session that is connected to a scripted server.
struct Session {
    explicit Session(const QString &extraDump = {})
    {
        exchange.answer("dvardump", ScriptedExchange::dump("sv_ranked \"0\"\nplaylist_enabled \"0\"\n" + extraDump));
        awaited(server.connectToHost("192.0.2.1", "50960", "typed"));
        exchange.forgetSent();
        QObject::connect(&server, &KelServer::consoleMessageAppended, &server,
                         [this](const QString &text) { transcript += text; });
    }

    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    QString transcript;
};

class KelServerTest : public QObject
{
    Q_OBJECT
private slots:
    void refusesEverythingWhileNotConnected()
    {
        ScriptedExchange exchange;
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        QSignalSpy shown(&server, &KelServer::consoleMessageAppended);
        const QList<Reply> replies{awaited(server.sendCommand("status")), awaited(server.setDvar("a", "b")),
                                   awaited(server.quickSetDvar("a", "b"))};
        for (const Reply &reply : replies) {
            QCOMPARE(reply.result, RConResultError);
            QCOMPARE(reply.text, "Not connected to a game server.");
        }
        QVERIFY(exchange.sent().isEmpty());
        QVERIFY(shown.isEmpty());
        QVERIFY(server.commandHistory().isEmpty());
    }

    void echoesCommandsWithTheReplyAsItStands()
    {
        Session session;
        session.exchange.answer("status", ScriptedExchange::ok("map: x\n"));
        const Reply good = awaited(session.server.sendCommand("status"));
        QCOMPARE(good.text, "map: x\n");
        const Reply bad = awaited(session.server.sendCommand("lost"));
        QCOMPARE(bad.result, RConResultTimeout);
        QCOMPARE(session.transcript, "] status\nmap: x\n] lost\nno answer\n");
        QCOMPARE(session.server.commandHistory(), QStringList({"status", "lost"}));
        QCOMPARE(session.server.commandHistoryCursor(), 2);
        for (const Request &request : session.exchange.requests())
            QCOMPARE(request.password, "secret"); // the server's, not the typed one
    }

    void anEchoBeginsALine()
    {
        Session session;
        session.exchange.answerEverything(ScriptedExchange::ok("no line feed"));
        awaited(session.server.sendCommand("a"));
        awaited(session.server.sendCommand("b"));
        session.exchange.answerEverything(ScriptedExchange::ok());
        awaited(session.server.sendCommand("c"));
        session.exchange.answerEverything(ScriptedExchange::failure("no answer\n"));
        awaited(session.server.sendCommand("d"));
        QCOMPARE(session.transcript, "] a\nno line feed\n] b\nno line feed\n] c\n] d\nno answer\n");
        session.server.appendConsoleMessage("open");
        awaited(session.server.connectToHost("192.0.2.1", "50960", "typed")); // empties the transcript
        session.transcript.clear();
        awaited(session.server.sendCommand("e"));
        QVERIFY(session.transcript.startsWith("] e\n"));
    }

    void sendsWhatTheGameCanHold_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("sent"); // empty: nothing is
        QTest::addColumn<QString>("told");
        const QString named = u"The game cannot show these characters: \u0436. Nothing was sent."_qs;
        const QString unnamed = "The game cannot hold a character of this password. Nothing was sent.";
        const auto row = [](const char *name, const QString &command, const QString &sent, const QString &told = {}) {
            QTest::newRow(name) << command << sent << told;
        };
        row("replaced", u"say \"\u201cDon\u2019t\u201d \u2013 you\u2026\""_qs, "say \"'Don't' - you...\"");
        row("what Latin-1 has", u"say \u00e9\u00a0\u00ab"_qs, u"say \u00e9\u00a0\u00ab"_qs);
        row("refused", u"say \"\u0436\""_qs, {}, named);
        row("chat about a password", u"say the password \u0436"_qs, {}, named);
        row("message about a password", u"tell 3 password\u2026"_qs, "tell 3 password...");
        row("a password by its name", u"rcon_password a\u2019"_qs, {}, unnamed);
        row("a password by a word that sets it", u"set g_Password \u201cb\u201d"_qs, {}, unnamed);
        row("a password behind something else", u"say hi; set g_password \u2019"_qs, {}, unnamed);
        row("a variable whose value speaks of a password", u"set g_motd \"password: \u2026\""_qs,
            "set g_motd \"password: ...\"");
    }
    void sendsWhatTheGameCanHold()
    {
        QFETCH(QString, command);
        QFETCH(QString, sent);
        QFETCH(QString, told);
        Session session;
        session.exchange.answerEverything(ScriptedExchange::ok());
        const Reply reply = awaited(session.server.sendCommand(command));
        QCOMPARE(session.exchange.sent(), sent.isEmpty() ? QStringList() : QStringList(sent));
        QCOMPARE(reply.isSuccess(), told.isEmpty());
        QCOMPARE(reply.isRefused, !told.isEmpty());
        QCOMPARE(reply.text, told);
        const QString echoed = sent.isEmpty() ? command : sent;
        QCOMPARE(session.transcript, "] " + echoed + '\n' + (told.isEmpty() ? QString() : told + '\n'));
        QCOMPARE(session.server.commandHistory(), QStringList(echoed)); // a refused one may be mended
    }

    void writesWhatTheGameCanHold_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("written"); // null: refused
        QTest::newRow("replaced within the quotes") << "g_motd" << u"\u201cDon\u2019t\u201d"_qs << "'Don't'";
        QTest::newRow("refused") << "g_motd" << u"\u0436"_qs << QString();
        QTest::newRow("a password is never changed") << "rcon_password" << u"a\u2019"_qs << QString();
        QTest::newRow("nor is another one") << "g_Password" << u"a\u2019"_qs << QString();
        QTest::newRow("a password of Latin-1") << "rcon_password" << u"\u00e9"_qs << u"\u00e9"_qs;
    }
    void writesWhatTheGameCanHold()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(QString, written);
        for (const bool isQuick : {false, true}) {
            Session session("g_motd \"old\"\ng_Password \"old\"\n");
            const QString before = session.server.dvarList().value(name);
            session.exchange.answerEverything(ScriptedExchange::ok());
            const Reply reply = isQuick ? awaited(session.server.quickSetDvar(name, value))
                                        : awaited(session.server.setDvar(name, value));
            QCOMPARE(reply.isRefused, written.isNull());
            QCOMPARE(reply.isSuccess(), !written.isNull());
            const QStringList sent(QString("setadmindvar %1 \"%2\"").arg(name, written));
            QCOMPARE(session.exchange.sent(), written.isNull() ? QStringList() : sent);
            QCOMPARE(session.server.dvarList().value(name), written.isNull() ? before : written);
            QCOMPARE(session.transcript.contains("Nothing was sent.\n"), written.isNull());
        }
    }

    void aTypedLineKeepsTheQuotesAroundItsValues()
    {
        Session session;
        session.exchange.answerEverything(ScriptedExchange::ok());
        awaited(session.server.consoleInputDidChange(u"set a \u201cb \u2018c\u2019\u201d"_qs));
        awaited(session.server.consoleInputDidChange(u"say \"b \u201cc\u201d\""_qs));
        awaited(session.server.consoleInputDidChange(u"set g_password \u201cb\u201d"_qs));
        QCOMPARE(session.exchange.sent(), QStringList({"set a \"b 'c'\"", "say \"b 'c'\""}));
    }

    void writesVariables_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("stored"); // null: the catalogue does not get the name
        const auto row = [](const char *title, const QString &name, const QString &value, const QString &command,
                            const QString &stored) {
            QTest::newRow(title) << name << value << command << stored;
        };
        const auto known = [&row](const char *title, const QString &value, const QString &stored) {
            row(title, "g_gametype", value, "setadmindvar g_gametype \"" + stored + '"', stored);
        };
        known("quotes at the ends go, blanks stay", "\"\" a \"", " a ");
        known("quotes inside stay", "a\"b", "a\"b");
        known("only quotes", "\"\"\"", "");
        known("markers in the text", "%1 %2", "%1 %2");
        row("unknown name", "other", "1", "setadmindvar other \"1\"", {});
    }
    void writesVariables()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(QString, command);
        QFETCH(QString, stored);
        for (const bool isQuick : {false, true}) {
            Session session("g_gametype \"dm\"\n");
            session.exchange.answer(command, ScriptedExchange::ok("an error text"));
            const Reply reply = isQuick ? awaited(session.server.quickSetDvar(name, value))
                                        : awaited(session.server.setDvar(name, value));
            QCOMPARE(reply.result, RConResultSuccess); // the text is not examined
            QCOMPARE(reply.text, isQuick ? QString() : "an error text");
            QCOMPARE(session.exchange.requests().size(), 1);
            QCOMPARE(session.exchange.requests().first().command, command);
            QCOMPARE(session.exchange.requests().first().isSingle, isQuick);
            QCOMPARE(session.transcript, "] " + command + "\nan error text\n");
            QCOMPARE(session.server.dvarList().value(name), stored);
            QCOMPARE(session.server.dvarList().contains(name), !stored.isNull());
        }
    }

    void aNewPasswordReachesTheFieldAndTheNextCommand()
    {
        Session session;
        QString field = "untouched";
        session.server.setPasswordTextBox([&](const QString &text) { field = text; });
        const Reply reply = awaited(session.server.setDvar("rcon_password", "lost"));
        QCOMPARE(reply.result, RConResultTimeout);
        QCOMPARE(session.server.dvarList().value("rcon_password"), "secret");
        QCOMPARE(field, "untouched");
        session.exchange.answerEverything(ScriptedExchange::ok());
        awaited(session.server.setDvar("rcon_password", "\"new\""));
        QCOMPARE(field, "new");
        awaited(session.server.sendCommand("status"));
        QCOMPARE(session.exchange.requests().last().password, "new");
    }

    void rereadsAVariable()
    {
        Session session("g_gravity \"800\"\n");
        session.exchange.answer("g_gravity", ScriptedExchange::ok("\"g_gravity\" is: \"1\" now: \"600\""));
        awaited(session.server.updateDvarFromServer("g_gravity"));
        QCOMPARE(session.server.dvarList().value("g_gravity"), "600");
        QCOMPARE(session.exchange.requests().last().password, "secret");
        awaited(session.server.updateDvarFromServer("rcon_password"));
        QCOMPARE(session.exchange.requests().last().password, QString());
        QVERIFY(session.server.commandHistory().isEmpty()); // a query is no command
    }

    void followsAPlaylistSwitchTypedByHand_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("isSwitched");
        QTest::addColumn<bool>("playlistsActive");
        QTest::newRow("on") << "playlist_enabled 1" << true << true;
        QTest::newRow("off") << "playlist_enabled 0" << true << false;
        QTest::newRow("not exactly one") << "playlist_enabled  1" << true << false;
        QTest::newRow("no blank") << "playlist_enabled" << false << false;
        QTest::newRow("not at the start") << " playlist_enabled 1" << false << false;
    }
    void followsAPlaylistSwitchTypedByHand()
    {
        QFETCH(QString, line);
        QFETCH(bool, isSwitched);
        QFETCH(bool, playlistsActive);
        Session session; // the server answers nothing: what was typed counts all the same
        QSignalSpy toLast(&session.server, &KelServer::lastTabRequested);
        awaited(session.server.consoleInputDidChange(line));
        QCOMPARE(session.exchange.sent(), QStringList{line});
        QCOMPARE(toLast.size(), isSwitched ? 1 : 0);
        QCOMPARE(session.server.playlistsActive(), playlistsActive);
        QCOMPARE(session.server.tabSet() == TabSet::UnrankedPlaylists, playlistsActive);
        QCOMPARE(session.server.tabSet() == TabSet::UnrankedMaps, !playlistsActive);
    }

    void aRefusedPlaylistSwitchIsNone()
    {
        Session session;
        const Reply reply = awaited(session.server.consoleInputDidChange(u"playlist_enabled 1 \u0436"_qs));
        QVERIFY(reply.isRefused && session.server.dvarList().value("playlist_enabled") == "0");
    }

    void aCancelledCommandLeavesNoTrace()
    {
        Session session;
        session.exchange.hold();
        QCoro::Task<Reply> sending = session.server.consoleInputDidChange("playlist_enabled 1");
        session.server.cancelExchange();
        awaited(std::move(sending));
        QVERIFY(!session.server.playlistsActive());
        QCOMPARE(session.transcript, "] playlist_enabled 1\n");
    }

    void theLatestSessionIsTheSharedOne()
    {
        QCOMPARE(KelServer::sharedKelServer(), nullptr);
        {
            const Session first;
            const Session second;
            QCOMPARE(KelServer::sharedKelServer(), &second.server);
        }
        QCOMPARE(KelServer::sharedKelServer(), nullptr);
    }
};

QTEST_GUILESS_MAIN(KelServerTest)
#include "tst_kelserver.moc"
