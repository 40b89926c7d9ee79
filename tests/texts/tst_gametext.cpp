#include "DataColumns.h"
#include "GameText.h"

#include <QTest>

class GameTextTest : public QObject
{
    Q_OBJECT
private slots:
    void replaces_data()
    {
        const auto row = dataColumns<QString, QString, QString>("text", "argument", "typed");
        const auto same = [&row](const char *name, const QString &text, const QString &plain) {
            row(name, text, plain, plain);
        };
        const QString latin1 = "caf\u00e9 \u00ab\u00bb \u00b4 \u00a0 \u00ad \u0080 \u0093 \t\n\r\\ \"'";
        same("what Latin-1 has stays", latin1, latin1);
        same("single quotes", u"\u2018a\u2019 \u201ab\u201b \u2039c\u203a 5\u2032"_qs, "'a' 'b' 'c' 5'");
        same("a double prime opens no value", u"6\u2033 gun"_qs, "6'' gun");
        same("dashes and minus", u"\u2010\u2011\u2012\u2013\u2014\u2015\u22125"_qs,
             "------"
             "-5");
        same("spaces", u"a\u2009b\u202fc\u3000d\u2028e"_qs, "a b c d e");
        same("what nobody sees", u"\ufeffa\u200bb\u200ec\u00a9\ufe0f"_qs, u"abc\u00a9"_qs);
        same("accents behind their letter", u"Zoe\u0308, A\u030angstro\u0308m"_qs, u"Zo\u00eb, \u00c5ngstr\u00f6m"_qs);
        row("quotes around a value", u"say \u201chi\u201d"_qs, "say 'hi'", "say \"hi\"");
        row("quotes within a value", u"say \"a \u201cb\u201d c\""_qs, "say \"a 'b' c\"", "say \"a 'b' c\"");
        row("within a value, after a quote that belongs to it", u"say \"a \\\" \u201cb\u201d\""_qs,
            "say \"a \\\" 'b'\"", "say \"a \\\" 'b'\"");
        row("opened by one kind, closed by the other", u"say \u201chi\" \u201cb\u201d"_qs, "say 'hi\" 'b'",
            "say \"hi\" \"b\"");
    }
    void replaces()
    {
        QFETCH(QString, text);
        QTEST(GameText::of(text).text(), "argument");
        QTEST(GameText::ofTypedLine(text).text(), "typed");
        QVERIFY(GameText::of(text).isSendable() && GameText::ofTypedLine(text).isSendable());
        QVERIFY(GameText::of(text).complaint().isEmpty());
    }

    void namesWhatCannotBeSent_data()
    {
        const auto row = dataColumns<QString, QStringList>("text", "unsendable");
        row("each once, in order", u"\u0436a\u0142\u0436\u20ac"_qs,
            QStringList({u"\u0436"_qs, u"\u0142"_qs, u"\u20ac"_qs}));
        row("two surrogates are one", u"a\U0001f600\U0001f601"_qs, QStringList({u"\U0001f600"_qs, u"\U0001f601"_qs}));
        row("joined signs are one", u"\U0001f468\u200d\U0001f469\u200d\U0001f467"_qs,
            QStringList(u"\U0001f468\u200d\U0001f469\u200d\U0001f467"_qs));
        row("a letter with an accent that is not in Latin-1", u"x\u0301"_qs, QStringList(u"x\u0301"_qs));
        row("a zero character", QString(QChar(0)), QStringList("U+0000"));
        row("a sign without a shape", QString::fromUcs4(U"\U000e0041"), QStringList("U+E0041"));
        row("half a sign", QString(QChar(0xd83d)), QStringList("U+D83D"));
        row("piled up accents", 'a' + QString(1000, QChar(0x301)), QStringList("U+0301"));
    }
    void namesWhatCannotBeSent()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, unsendable);
        for (const GameText &judged : {GameText::of(text), GameText::ofTypedLine(text), GameText::asItStands(text)}) {
            QCOMPARE(judged.unsendable(), unsendable);
            QCOMPARE(judged.text(), text);
            QCOMPARE(judged.complaint(), "The game cannot show these characters: " + unsendable.join(' ') + '.');
        }
    }

    void replacesNothingInAPassword()
    {
        const GameText password = GameText::asItStands(u"a\u2019e\u0301"_qs);
        QCOMPARE(password.text(), u"a\u2019e\u0301"_qs);
        QCOMPARE(password.unsendable(), QStringList({u"\u2019"_qs, u"e\u0301"_qs}));
        QVERIFY(GameText::asItStands(u"caf\u00e9 \u0093"_qs).isSendable());
    }
};

QTEST_GUILESS_MAIN(GameTextTest)
#include "tst_gametext.moc"
