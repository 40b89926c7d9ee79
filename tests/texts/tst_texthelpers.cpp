#include "LineWriter.h"
#include "Number.h"
#include "QuotedStrings.h"
#include "SortKeys.h"
#include "SortedKeys.h"

#include <QBuffer>
#include <QHash>
#include <QLocale>
#include <QMap>
#include <QTest>

#include <limits>

class TextHelpersTest : public QObject
{
    Q_OBJECT

private slots:
    void quotedStrings_data();
    void quotedStrings();
    void outerMarks();
    void colorCodes();
    void prefix();
    void keysInOrder();
    void writers();
    void readsNumbers_data();
    void readsNumbers();
    void addressesSortAsAddresses();
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

void TextHelpersTest::outerMarks()
{
    QCOMPARE(withoutOuter(u"??a?b??", u'?'), "a?b");
    QCOMPARE(withoutOuterQuotes(u"\"\"\""), "");
    QCOMPARE(withoutOuterQuotes(u" \"a\" "), " \"a\" ");
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

void TextHelpersTest::readsNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isNumber");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("sign") << "-3" << true << qint64(-3);
    QTest::newRow("blanks around") << " 12 " << true << qint64(12);
    QTest::newRow("fraction") << "12.9" << true << qint64(12);
    QTest::newRow("user's fraction") << "12,9" << true << qint64(12);
    QTest::newRow("negative fraction") << "-0.5" << true << qint64(0);
    QTest::newRow("largest") << "9223372036854775807" << true << std::numeric_limits<qint64>::max();
    QTest::newRow("too large") << "99999999999999999999" << false << qint64(0);
    QTest::newRow("empty") << "" << false << qint64(0);
    QTest::newRow("trailing letter") << "12a" << false << qint64(0);
    QTest::newRow("hexadecimal") << "0x10" << false << qint64(0);
    QTest::newRow("exponent") << "1e3" << false << qint64(0);
}

void TextHelpersTest::readsNumbers()
{
    QFETCH(QString, text);
    QLocale::setDefault(QLocale(QLocale::German));
    const std::optional<qint64> number = parseNumber(text);
    QLocale::setDefault(QLocale::c());
    QTEST(number.has_value(), "isNumber");
    QTEST(number.value_or(0), "expected");
}

void TextHelpersTest::addressesSortAsAddresses()
{
    const QStringList inOrder{"192.0.2.9:9", "192.0.2.10:80", "192.0.2.10:50074", "192.0.2.20:1", "198.51.100.1"};
    for (int i = 1; i < inOrder.size(); ++i)
        QVERIFY(addressSortKey(inOrder.at(i - 1)).toLongLong() < addressSortKey(inOrder.at(i)).toLongLong());
    for (const QString &text : {QStringLiteral("bot"), QStringLiteral("1.2.3"), QStringLiteral("1.2.3.256:1")})
        QCOMPARE(addressSortKey(text), QVariant(text));
}

QTEST_GUILESS_MAIN(TextHelpersTest)
#include "tst_texthelpers.moc"
