#include "DataColumns.h"
#include "Number.h"
#include "QuotedStrings.h"
#include "SortKeys.h"

#include <QLocale>
#include <QTest>

#include <limits>

class TextHelpersTest : public QObject
{
    Q_OBJECT
private slots:
    void quotedStrings_data()
    {
        const auto row = dataColumns<QString, QString>("text", "fields");
        // fields: with bars between them
        row("reply to a name", "\"h_name\" is: \"abc^7\" default: \"x\"\n", "\"h_name\"|\"abc^7\"|\"x\"");
        row("last field unclosed", "\"a\" \"b", "\"a\"");
        row("leading white space lost, trailing kept", "\" \r\n abc \"", "\"abc \"");
        row("escaped quotes", "is \"say \\\"hi\\\" now\" end", "\"say \"hi\"now\"");
        row("white space after an escaped quote lost", "\"a\\\"  b\"", "\"a\"b\"");
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
    }

    void readsNumbers_data()
    {
        const auto row = dataColumns<QString, std::optional<qint64>>("text", "number");
        row("sign", "-3", -3);
        row("blanks around", " 12 ", 12);
        row("fraction", "12.9", 12);
        row("user's fraction", "12,9", 12);
        row("largest", "9223372036854775807", std::numeric_limits<qint64>::max());
        row("too large", "99999999999999999999", std::nullopt);
        row("empty", "", std::nullopt);
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
};

QTEST_GUILESS_MAIN(TextHelpersTest)
#include "tst_texthelpers.moc"
