#include "DataColumns.h"
#include "QuotedStrings.h"
#include "ReplyEnd.h"

#include <QTest>

class ReplyEndTest : public QObject
{
    Q_OBJECT
private slots:
    void replies_data()
    {
        const auto row = dataColumns<QString, QString, bool>("command", "reply", "isWhole");
        const QString told = "\"tw_x\" is: \"1\" in force: \"1\"\n";
        row("variable", "tw_x", told, true);
        row("in other letters", "TW_X", told, true);
        row("and its domain", "tw_x", told + "  Takes 0 or 1\n", true);
        row("empty value", "tw_x", "\"tw_x\" is: \"\" in force: \"\"\n", true);
        row("quotes in the value", "tw_x", "\"tw_x\" is: \"a \\\"b\\\" c\" in force: \"a \\\"b\\\" c\"\n", true);
        row("line feed in the value", "tw_x", "\"tw_x\" is: \"a\nb\" in force: \"a\nb\"\n", true);
        row("no line feed", "tw_x", told.chopped(1), false);
        row("line feed before the third quote", "tw_x", "\"tw_x\" is: \"1\"\n in force: \"1\"", false);
        row("another name", "tw_y", told, false);
        row("two fields", "tw_x", "\"tw_x\" is: \"1\"\n", false);
        row("four fields", "tw_x", "\"tw_x\" is: \"1\" in force: \"1\" was: \"2\"\n", false);
        row("a quote behind the third field", "tw_x", told + "\"", false);
        row("a quote and a line feed in the value, cut behind it", "tw_x", "\"tw_x\" is: \"a\n\"b\" in force: \"a\n",
            false);
        row("something behind the third field", "tw_x", "\"tw_x\" is: \"1\" in force: \"1\" now\n", false);
        row("two words", "tw_x 1", told, false);
        row("two commands", "tw_x;tw_y", told, false);
        row("a value of 64 Ki", "tw_x", "\"tw_x\" is: \"" + QString(64 * 1024, u'a') + "\" in force: \"1\"\n", false);
        row("unknown", "tw_x", "Unknown command \"tw_x\"\n", true);
        row("unknown, cut", "tw_x", "Unknown command \"tw_", false);
        row("unknown, but more was asked", "tw_x 1", "Unknown command \"tw_x\"\n", false);
        row("players", "teamstatus", "Unknown command \"teamstatus\"\n", false);
        row("chat", "say \"tw_x\"", told, false);
        row("dump", "dvardump", "a \"1\"\nb \"\"\n\n2 total dvars\n", true);
        row("dump without its last line", "dvardump", "a \"1\"\nb \"\"\n", false);
        row("dump, cut in its last line", "dvardump", "a \"1\"\nb \"\"\n\n2 total dvars", false);
        row("dump of too few", "dvardump", "a \"1\"\n2 total dvars\n", false);
        row("dump of too many", "dvardump", "a \"1\"\nb \"\"\nc \"\"\n2 total dvars\n", false);
        row("dump with a value that looks like its end", "dvardump", "a \"2 total dvars\"\nb \"\"\n", false);
        row("write", "setadmindvar a \"1\"", "", true);
        row("write that is answered", "setadmindvar a \"1\"", "a is not a valid value\n", false);
    }
    void replies()
    {
        QFETCH(QString, command);
        QFETCH(QString, reply);
        QTEST(ReplyEnd(command).isWhole(reply), "isWhole");
    }

    /// Whatever a value holds and wherever its reply is cut: no part is taken for whole that tells something else.
    void noPartTellsSomethingElse_data()
    {
        const auto row = dataColumns<QString>("form");
        row("with colours taken out", "\"%1\" is: \"%2\" in force: \"%3\"\n");
        row("with a domain", "\"%1\" is: \"%2\" default: \"%3\"\n  Takes any text\n");
        row("terse", "\"%1\" \"%2\" \"%3\"\n");
    }
    void noPartTellsSomethingElse()
    {
        QFETCH(QString, form);
        const QStringList values{"",      "1",    "a b",   "\\\"",    "a\\\"b", "\\\"a\\\"", "\n", "a\nb",
                                 "a\\\\", " a",   "a ",    "a\\\"\n", ";",      "'",         "//", "2 total dvars\n",
                                 "\"",    "a\"b", "\"a\"", "a\n\"b",  "\n\"",   "\n\"x"};
        int wholeParts = 0;
        for (const QString &value : values) {
            for (const QString &inForce : values) {
                const QString reply = form.arg("tw_x", value, inForce);
                const QStringList fields = quotedStrings(reply);
                for (qsizetype cut = 0; cut <= reply.size(); ++cut) {
                    const QString part = reply.left(cut);
                    if (!ReplyEnd("tw_x").isWhole(part))
                        continue;
                    ++wholeParts;
                    QCOMPARE(quotedStrings(part), fields);
                }
            }
        }
        QVERIFY(wholeParts >= values.size()); // else it never saves anything
    }

    void dumpsArriveInParts()
    {
        QString dump;
        for (int i = 0; i < 300; ++i)
            dump += QStringLiteral("S  tw_%1 \"%2\"\n").arg(i).arg(i % 7 == 0 ? QString() : QString(i % 90, u'x'));
        dump += "\n300 total dvars\n";
        for (const qsizetype step : {1, 7, 1389}) {
            ReplyEnd end("dvardump");
            for (qsizetype size = step; size < dump.size(); size += step)
                QVERIFY(!end.isWhole(dump.left(size)));
            QVERIFY(end.isWhole(dump));
        }
        QVERIFY(!ReplyEnd::isDumpShort(dump));
        QVERIFY(ReplyEnd::isDumpShort(dump.section('\n', 5)));
        QVERIFY(ReplyEnd::isDumpShort(dump.section('\n', 5, 30) + '\n' + dump.section('\n', 5))); // doubled, not whole
        QVERIFY(!ReplyEnd::isDumpShort(dump.section('\n', 0, 200))); // nobody said how many there are
    }
};

QTEST_GUILESS_MAIN(ReplyEndTest)
#include "tst_replyend.moc"
