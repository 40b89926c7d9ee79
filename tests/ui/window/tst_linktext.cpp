#include "Link.h"
#include "LinkStatus.h"
#include "LinkText.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace std::chrono_literals;
using std::chrono::steady_clock;

class LinkTextTest : public QObject
{
    Q_OBJECT
private slots:
    void answeringServers_data()
    {
        QTest::addColumn<LinkState>("line");
        QTest::addColumn<QString>("text");
        const steady_clock::time_point now = steady_clock::now();
        LinkState line;
        QTest::newRow("nothing is known") << line << "";
        line.stats.answered(62ms, now);
        QTest::newRow("round trip") << line << "62 ms";
        line.waitingSince = now - 1800ms;
        QTest::newRow("waits") << line << "Waiting 2 s…";
        line.waitingSince = std::nullopt;
        line.stats.remainedUnanswered();
        for (int i = 0; i < 29; ++i)
            line.stats.answered(62ms, now);
        line.stats.remainedUnanswered();
        QTest::newRow("two of 32") << line << "62 ms, 6 % lost";
        line.isPaced = true;
        line.gap = 525ms;
        QTest::newRow("ignores haste") << line << "Answers once in 0.53 s";
    }
    void answeringServers()
    {
        QFETCH(LinkState, line);
        ScriptedExchange exchange;
        exchange.setLink(line);
        Link link(exchange);
        QCOMPARE(LinkText(link, steady_clock::now()).shortText(), "");
        link.open();
        QTEST(LinkText(link, steady_clock::now()).shortText(), "text");
    }

    void whatCanBeDone()
    {
        ScriptedExchange exchange;
        Link link(exchange);
        LinkStatus status(link);
        status.show();
        const auto *tryNow = status.findChild<QPushButton *>("tryNowButton");
        const auto *password = status.findChild<QPushButton *>("linkPasswordButton");
        link.open();
        QVERIFY(!tryNow->isVisible() && !password->isVisible());
        awaited(link.send({}));
        QVERIFY(tryNow->isVisible() && !password->isVisible());
        const QString text = status.findChild<QLabel *>("linkLabel")->text();
        QVERIFY2(text.startsWith("No answer since ") && text.endsWith(" (0 s)"), qPrintable(text));
        exchange.answerEverything(ScriptedExchange::failure("", RConResultInvalidPassword));
        awaited(link.send({}));
        QVERIFY(!tryNow->isVisible() && password->isVisible());
    }
};

QTEST_MAIN(LinkTextTest)
#include "tst_linktext.moc"
