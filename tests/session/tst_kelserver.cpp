#include "DataColumns.h"
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
        exchange.answerEverything(ScriptedExchange::ok());
        QObject::connect(&server.console(), &Console::messageAppended, &server,
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
    void theTranscriptHasCommandsAndRepliesOnLinesOfTheirOwn()
    {
        Session session;
        session.exchange.answer("a", ScriptedExchange::ok("no line feed"));
        session.exchange.answer("lost", ScriptedExchange::failure());
        for (const char *command : {"a", "a", "empty", "lost", "a"})
            awaited(session.server.sendCommand(command));
        QCOMPARE(session.transcript, "] a\nno line feed\n] a\nno line feed\n] empty\n] lost\nno answer\n"
                                     "] a\nno line feed");
        QCOMPARE(session.server.console().commandHistory(), QStringList({"a", "a", "empty", "lost", "a"}));
        QCOMPARE(session.server.console().commandHistoryCursor(), 5);
        for (const Request &request : session.exchange.requests())
            QCOMPARE(request.password, "secret");                             // the server's, not the typed one
        awaited(session.server.connectToHost("192.0.2.1", "50960", "typed")); // empties the transcript
        session.transcript.clear();
        awaited(session.server.sendCommand("e"));
        QCOMPARE(session.transcript, "] e\n");
    }

    void sendsWhatTheGameCanHold_data()
    {
        const auto row = dataColumns<QString, QString, QString>("command", "sent", "told");
        const QString named = u"The game cannot show these characters: \u0436. Nothing was sent."_qs;
        const QString unnamed = "The game cannot hold a character of this password. Nothing was sent.";
        row("replaced", u"say \"\u201cDon\u2019t\u201d \u2013 you\u2026\""_qs, "say \"'Don't' - you...\"", {});
        row("refused", u"say \"\u0436\""_qs, {}, named);
        row("chat about a password", u"say the password \u0436"_qs, {}, named);
        row("a password by its name", u"rcon_password a\u2019"_qs, {}, unnamed);
        row("a password by a word that sets it", u"set h_Password \u201cb\u201d"_qs, {}, unnamed);
        row("a password behind something else", u"say hi; set door_password \u2019"_qs, {}, unnamed);
    }
    void sendsWhatTheGameCanHold()
    {
        QFETCH(QString, command);
        QFETCH(QString, sent);
        QFETCH(QString, told);
        Session session;
        const Reply reply = awaited(session.server.sendCommand(command));
        QCOMPARE(session.exchange.sent(), sent.isEmpty() ? QStringList() : QStringList(sent));
        QCOMPARE(reply.isSuccess(), told.isEmpty());
        QCOMPARE(reply.isRefused, !told.isEmpty());
        QCOMPARE(reply.text, told);
        const QString echoed = sent.isEmpty() ? command : sent;
        QCOMPARE(session.transcript, "] " + echoed + '\n' + (told.isEmpty() ? QString() : told + '\n'));
        QCOMPARE(session.server.console().commandHistory(), QStringList(echoed)); // a refused one may be mended
    }

    void writesVariables_data()
    {
        const auto row = dataColumns<QString, QString, QString>("name", "value", "written");
        // written: null: refused
        row("quotes at the ends go, blanks stay", "house_greeting", "\"\" a \"", " a ");
        row("markers in the text", "house_greeting", "%1 %2", "%1 %2");
        row("replaced within the quotes", "house_greeting", u"\u201cDon\u2019t\u201d"_qs, "'Don't'");
        row("refused", "house_greeting", u"\u0436"_qs, {});
        row("a password is never changed", "rcon_password", u"a\u2019"_qs, {});
        row("nor is another one", "h_Password", u"a\u2019"_qs, {});
        row("unknown name", "other", "1", "1");
    }
    void writesVariables()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(QString, written);
        for (const bool isQuick : {false, true}) {
            Session session("house_greeting \"old\"\nh_Password \"old\"\n");
            const QString before = session.server.dvarList().value(name);
            const QString command = QString("setadmindvar %1 \"%2\"").arg(name, written);
            session.exchange.answer(command, ScriptedExchange::ok("an error text"));
            QSignalSpy changes(&session.server, &KelServer::dvarChanged);
            const Reply reply = isQuick ? awaited(session.server.quickSetDvar(name, value))
                                        : awaited(session.server.setDvar(name, value));
            const bool isWritten = !written.isNull();
            QCOMPARE(reply.isSuccess(), isWritten); // the text is not examined
            QCOMPARE(reply.isRefused, !isWritten);
            QCOMPARE(session.exchange.sent(), isWritten ? QStringList(command) : QStringList());
            if (isWritten) {
                QCOMPARE(reply.text, isQuick ? QString() : "an error text");
                QCOMPARE(session.exchange.requests().first().isSingle, isQuick);
                QCOMPARE(session.transcript, "] " + command + "\nan error text\n");
            }
            const bool isKnown = name != "other";
            const QString stored = isWritten && isKnown ? written : before;
            QCOMPARE(session.server.dvarList().value(name), stored);
            QCOMPARE(session.server.dvarList().contains(name), isKnown);
            QCOMPARE(changes, isWritten && isKnown ? QList<QVariantList>{{name}} : QList<QVariantList>());
        }
    }

    void aTypedLineKeepsTheQuotesAroundItsValues()
    {
        Session session;
        awaited(session.server.consoleInputDidChange(u"set a \u201cb \u2018c\u2019\u201d"_qs));
        awaited(session.server.consoleInputDidChange(u"say \"b \u201cc\u201d\""_qs));
        awaited(session.server.consoleInputDidChange(u"set door_password \u201cb\u201d"_qs));
        QCOMPARE(session.exchange.sent(), QStringList({"set a \"b 'c'\"", "say \"b 'c'\""}));
    }

    void aNewPasswordReachesTheFieldAndTheNextCommand()
    {
        Session session;
        QString field = "untouched";
        session.server.setPasswordTextBox([&](const QString &text) { field = text; });
        session.exchange.answer("setadmindvar rcon_password \"lost\"", ScriptedExchange::failure());
        QCOMPARE(awaited(session.server.setDvar("rcon_password", "lost")).result, RConResultTimeout);
        QCOMPARE(session.server.dvarList().value("rcon_password"), "secret");
        QCOMPARE(field, "untouched");
        awaited(session.server.setDvar("rcon_password", "\"new\""));
        QCOMPARE(field, "new");
        awaited(session.server.sendCommand("status"));
        QCOMPARE(session.exchange.requests().last().password, "new");
    }

    void rereadsAVariable()
    {
        Session session("world_gravity \"800\"\n");
        QSignalSpy changes(&session.server, &KelServer::dvarChanged);
        session.exchange.answer("world_gravity", ScriptedExchange::ok("\"world_gravity\" is: \"1\" now: \"600\""));
        awaited(session.server.updateDvarFromServer("world_gravity"));
        QCOMPARE(session.server.dvarList().value("world_gravity"), "600");
        QCOMPARE(session.exchange.requests().last().password, "secret");
        QCOMPARE(changes, QList<QVariantList>{{"world_gravity"}});
        awaited(session.server.updateDvarFromServer("rcon_password"));
        QCOMPARE(session.exchange.requests().last().password, QString());
        QVERIFY(session.server.console().commandHistory().isEmpty()); // a query is no command
    }

    void followsAPlaylistSwitchTypedByHand_data()
    {
        const auto row = dataColumns<QString, bool, bool>("line", "isSwitched", "playlistsActive");
        row("on", "playlist_enabled 1", true, true);
        row("not exactly one", "playlist_enabled  1", true, false);
        row("not at the start", " playlist_enabled 1", false, false);
        row("refused", u"playlist_enabled 1 \u0436"_qs, false, false);
    }
    void followsAPlaylistSwitchTypedByHand()
    {
        QFETCH(QString, line);
        QFETCH(bool, playlistsActive);
        Session session;
        session.exchange.answerEverything(ScriptedExchange::failure()); // what was typed counts all the same
        QSignalSpy toLast(&session.server, &KelServer::lastTabRequested);
        awaited(session.server.consoleInputDidChange(line));
        QTEST(!toLast.isEmpty(), "isSwitched");
        QCOMPARE(session.server.playlistsActive(), playlistsActive);
        QCOMPARE(session.server.tabSet(), playlistsActive ? TabSet::UnrankedPlaylists : TabSet::UnrankedMaps);
        QCOMPARE(session.server.dvarList().value("playlist_enabled") == "1", playlistsActive);
    }
};

QTEST_GUILESS_MAIN(KelServerTest)
#include "tst_kelserver.moc"
