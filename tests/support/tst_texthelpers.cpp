#include "LineWriter.h"
#include "QuotedStrings.h"
#include "SortedKeys.h"

#include <QBuffer>
#include <QHash>
#include <QMap>
#include <QTest>

class TextHelpersTest : public QObject
{
    Q_OBJECT

private slots:
    void quotedStrings_data();
    void quotedStrings();
    void colorCodes();
    void prefix();
    void keysInOrder();
    void writers();
};

void TextHelpersTest::quotedStrings_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("one quote only") << "name is: \"abc" << QStringList();
    QTest::newRow("reply to a name") << "\"g_name\" is: \"abc^7\" default: \"x\"\n"
                                     << QStringList({"\"g_name\"", "\"abc^7\"", "\"x\""});
    QTest::newRow("last field unclosed") << "\"a\" \"b" << QStringList({"\"a\""});
    QTest::newRow("blanks alone are an empty field") << "\" \n\t\"" << QStringList({"\"\""});
    QTest::newRow("leading white space lost, trailing kept") << "\" \r\n abc \"" << QStringList({"\"abc \""});
    QTest::newRow("escaped quotes") << R"(is "say \"hi\" now" end)" << QStringList({"\"say \"hi\"now\""});
    QTest::newRow("white space after an escaped quote lost") << R"("a\"  b")" << QStringList({"\"a\"b\""});
    QTest::newRow("backslash elsewhere stays") << R"("c:\games")" << QStringList({R"("c:\games")"});
}

void TextHelpersTest::quotedStrings()
{
    QFETCH(QString, text);
    QTEST(::quotedStrings(text), "fields");
}

void TextHelpersTest::colorCodes()
{
    QCOMPARE(stringByStrippingColorCodes("^1^a^^x^9^"), "^a^^x^");
    QCOMPARE(stringByStrippingColorCodes("^^12 ^^10"), " ^0"); // digit by digit
    // A removal that moves the rest of the text each time would take minutes here.
    const QString text = QStringLiteral("^1a").repeated(1'000'000);
    QCOMPARE(stringByStrippingColorCodes(text), QString(1'000'000, u'a'));
}

void TextHelpersTest::prefix()
{
    QVERIFY(startsWithString("say hello", "say "));
    QVERIFY(!startsWithString("do say it", "say"));
    QVERIFY(!startsWithString("Say", "say"));
    QVERIFY(!startsWithString("say", ""));
}

void TextHelpersTest::keysInOrder()
{
    const QMap<QString, int> map{{"b", 2}, {"A", 1}, {"c", 3}};
    QCOMPARE(sortedKeys(map), QStringList({"A", "b", "c"}));
    QCOMPARE(valuesSortedByKey(map), QList<int>({1, 2, 3}));
    const QHash<QString, QString> hash{{"map", "4"}, {"Map", "3"}, {"MAP", "2"}, {"lap", "1"}};
    QCOMPARE(sortedKeys(hash), QStringList({"lap", "MAP", "Map", "map"}));
    QCOMPARE(valuesSortedByKey(hash), QStringList({"1", "2", "3", "4"}));
}

void TextHelpersTest::writers()
{
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    writeFormat(&buffer, "%2-%1;", QStringLiteral("%2"), 7u);
    writeFormat(&buffer, "100%;");
    writeLineFormat(&buffer, "<%1>", QString::fromUtf8("Zoë €"));
    writeLine(&buffer, "%1 stays");
    writeLine(&buffer);
    QCOMPARE(buffer.data(), QByteArray("7-%2;100%;<Zoë €>\n%1 stays\n\n"));

    QIODevice *const noFile = nullptr;
    writeFormat(noFile, "%1", 1);
    writeLineFormat(noFile, "%1", 1);
    writeLine(noFile, "text");
    writeLine(noFile);
}

QTEST_GUILESS_MAIN(TextHelpersTest)
#include "tst_texthelpers.moc"
