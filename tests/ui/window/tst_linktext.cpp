#include "Link.h"
#include "LinkStatus.h"
#include "LinkText.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QDateTime>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <atomic>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

using namespace std::chrono_literals;
using std::chrono::steady_clock;

static std::atomic<time_t> jumped = 0;
static std::atomic<time_t> slept = 0;

// The clocks as this program sees them. These stand before those of the C library, for Qt as well.
extern "C" {
int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    const long result = ::syscall(SYS_clock_gettime, clock, now);
    now->tv_sec += clock == CLOCK_REALTIME ? jumped + slept : clock == CLOCK_BOOTTIME ? slept.load() : 0;
    return static_cast<int>(result);
}
int gettimeofday(timeval *now, void *) noexcept
{
    timespec precise{};
    const int result = clock_gettime(CLOCK_REALTIME, &precise);
    *now = {precise.tv_sec, precise.tv_nsec / 1000};
    return result;
}
}

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
        line.waitingSince = now - 1700ms;
        QTest::newRow("waits not for long") << line << "62 ms";
        line.waitingSince = now - 1800ms;
        QTest::newRow("waits") << line << "Waiting 2 s…";
        line.waitingSince = std::nullopt;
        line.stats.remainedUnanswered();
        QTest::newRow("one lost") << line << "62 ms";
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

    /// The session tells of a request just before the exchange takes it.
    void aRequestThatWaitsIsTold()
    {
        ScriptedExchange exchange;
        Link link(exchange);
        LinkStatus status(link);
        link.open();
        exchange.hold();
        const QCoro::Task<Reply> sending = link.send({});
        LinkState line;
        line.waitingSince = steady_clock::now() - 1800ms;
        exchange.setLink(line);
        QTRY_COMPARE(status.findChild<QLabel *>("linkLabel")->text(), "Waiting 2 s…");
        link.cancel();
        QTRY_VERIFY(sending.isReady());
    }

    void silenceWhileClocksJump_data()
    {
        QTest::addColumn<int>("jump"); // of the clock on the wall, in seconds
        QTest::addColumn<int>("sleep");
        QTest::addColumn<int>("silence");
        QTest::newRow("an hour on") << 3600 << 0 << 12;
        QTest::newRow("an hour back") << -3600 << 0 << 12;
        QTest::newRow("the machine sleeps for an hour") << 0 << 3600 << 3612;
    }
    void silenceWhileClocksJump()
    {
        QFETCH(int, jump);
        QFETCH(int, sleep);
        QFETCH(int, silence);
        ScriptedExchange exchange;
        Link link(exchange);
        link.open();
        awaited(link.send({}));
        jumped += jump;
        slept += 12 + sleep;
        const QString before = QDateTime::currentDateTime().addSecs(-silence).toString("HH:mm");
        const QString text = LinkText(link, steady_clock::now()).shortText();
        const QString after = QDateTime::currentDateTime().addSecs(-silence).toString("HH:mm");
        const QString told = QStringLiteral("No answer since %1 (%2 s)");
        QVERIFY2(text == told.arg(before).arg(silence) || text == told.arg(after).arg(silence), qPrintable(text));
    }

    void theToolTipIsOfTheMoment()
    {
        ScriptedExchange exchange;
        Link link(exchange);
        LinkStatus status(link);
        LinkState line;
        line.stats.answered(62ms, steady_clock::now());
        exchange.setLink(line);
        link.open();
        line.stats.answered(62ms, steady_clock::now() - 90s); // as if the time had passed
        exchange.setLink(line);
        auto *label = status.findChild<QLabel *>("linkLabel");
        QHelpEvent help(QEvent::ToolTip, {}, {});
        QCoreApplication::sendEvent(label, &help);
        QVERIFY2(label->toolTip().contains("Last heard: 90 s ago"), qPrintable(label->toolTip()));
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
