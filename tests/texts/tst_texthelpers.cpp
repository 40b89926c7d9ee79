#include "HostAndPort.h"
#include "LineWriter.h"
#include "Number.h"
#include "QuotedStrings.h"
#include "SortKeys.h"
#include "SortedKeys.h"

#include <QBuffer>
#include <QHash>
#include <QLocale>
#include <QTest>

#include <limits>

class TextHelpersTest : public QObject
{
    Q_OBJECT
private slots:
    void quotedStrings_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("fields"); // with bars between them
        const auto row = [](const char *name, const char *text, const char *fields) {
            QTest::newRow(name) << QString(text) << QString(fields);
        };
        row("one quote only", "name is: \"abc", "");
        row("reply to a name", "\"h_name\" is: \"abc^7\" default: \"x\"\n", "\"h_name\"|\"abc^7\"|\"x\"");
        row("last field unclosed", "\"a\" \"b", "\"a\"");
        row("blanks alone are an empty field", "\" \n\t\"", "\"\"");
        row("leading white space lost, trailing kept", "\" \r\n abc \"", "\"abc \"");
        row("escaped quotes", "is \"say \\\"hi\\\" now\" end", "\"say \"hi\"now\"");
        row("white space after an escaped quote lost", "\"a\\\"  b\"", "\"a\"b\"");
        row("backslash elsewhere stays", "\"c:\\games\"", "\"c:\\games\"");
    }
    void quotedStrings()
    {
        QFETCH(QString, text);
        QTEST(::quotedStrings(text).join('|'), "fields");
    }

    void marksColoursAndPrefixes()
    {
        QCOMPARE(withoutOuter(u"??a?b??", u'?'), "a?b");
        QCOMPARE(withoutOuterQuotes(u"\"\"\""), "");
        QCOMPARE(withoutOuterQuotes(u" \"a\" "), " \"a\" ");
        QCOMPARE(stringByStrippingColorCodes("^1^a^^x^9^"), "^a^^x^");
        QCOMPARE(stringByStrippingColorCodes("^^12 ^^10"), " ^0"); // digit by digit
        // A removal that moves the rest of the text each time would take minutes here.
        QCOMPARE(stringByStrippingColorCodes(QString("^1a").repeated(1'000'000)), QString(1'000'000, u'a'));
        QVERIFY(startsWithString("say hello", "say "));
        QVERIFY(!startsWithString("do say it", "say"));
        QVERIFY(!startsWithString("say", ""));
    }

    void keysInOrder()
    {
        const QHash<QString, QString> hash{{"map", "4"}, {"Map", "3"}, {"MAP", "2"}, {"lap", "1"}};
        QCOMPARE(sortedKeys(hash), QStringList({"lap", "MAP", "Map", "map"}));
        QCOMPARE(valuesSortedByKey(hash), QStringList({"1", "2", "3", "4"}));
    }

    void writers()
    {
        QBuffer buffer;
        QVERIFY(buffer.open(QIODevice::WriteOnly));
        for (QIODevice *file : {static_cast<QIODevice *>(&buffer), static_cast<QIODevice *>(nullptr)}) {
            writeFormat(file, "%2-%1;", QString("%2"), QString("7"));
            writeLineFormat(file, "<%1>", QString::fromUtf8("Zoë €"));
            writeLine(file, "%1 stays");
            writeLine(file);
        }
        QCOMPARE(buffer.data(), QByteArray("7-%2;<Zoë €>\n%1 stays\n\n"));
    }

    void readsNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<qint64>>("number");
        const auto row = [](const char *name, const char *text, std::optional<qint64> number) {
            QTest::newRow(name) << QString(text) << number;
        };
        row("sign", "-3", -3);
        row("blanks around", " 12 ", 12);
        row("fraction", "12.9", 12);
        row("user's fraction", "12,9", 12);
        row("negative fraction", "-0.5", 0);
        row("largest", "9223372036854775807", std::numeric_limits<qint64>::max());
        row("too large", "99999999999999999999", std::nullopt);
        row("empty", "", std::nullopt);
        row("trailing letter", "12a", std::nullopt);
        row("hexadecimal", "0x10", std::nullopt);
        row("exponent", "1e3", std::nullopt);
    }
    void readsNumbers()
    {
        QFETCH(QString, text);
        QLocale::setDefault(QLocale(QLocale::German));
        const std::optional<qint64> number = parseNumber(text);
        QLocale::setDefault(QLocale::c());
        QTEST(number, "number");
    }

    void addressesSortAsAddresses()
    {
        const QStringList inOrder{"192.0.2.9:9", "192.0.2.10:80", "192.0.2.10:50074", "192.0.2.20:1", "198.51.100.1"};
        for (int i = 1; i < inOrder.size(); ++i)
            QVERIFY(addressSortKey(inOrder.at(i - 1)).toLongLong() < addressSortKey(inOrder.at(i)).toLongLong());
        for (const QString text : {"bot", "1.2.3", "1.2.3.256:1"})
            QCOMPARE(addressSortKey(text), QVariant(text));
    }

    void takesAddressesApart_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("port");
        const auto row = [](const char *title, const char *text, const char *host, const char *port) {
            QTest::newRow(title) << QString(text) << QString(host) << QString(port);
        };
        row("an address", " 192.0.2.10\t", "192.0.2.10", "");
        row("blanks around both", " 192.0.2.10 : 50960 ", "192.0.2.10", "50960");
        row("a port that is no number is judged later", "game.example:x", "game.example", "x");
        row("nothing behind the colon", "192.0.2.10:", "192.0.2.10:", "");
        row("nothing before the colon", ":50960", ":50960", "");
        row("two colons", "2001:db8:1", "2001:db8:1", "");
        row("brackets", "[192.0.2.10]:50960", "[192.0.2.10]:50960", "");
        row("nothing", " ", "", "");
    }
    void takesAddressesApart()
    {
        QFETCH(QString, text);
        const HostAndPort parts = splitHostAndPort(text);
        QTEST(parts.host, "host");
        QTEST(parts.port, "port");
    }
};

QTEST_GUILESS_MAIN(TextHelpersTest)
#include "tst_texthelpers.moc"
