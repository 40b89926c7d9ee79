#include "Controls.h"
#include "WindowFixture.h"

#include <QPushButton>
#include <QSemaphore>
#include <QThreadPool>

#include <memory>

struct UnsavedWindow : WindowFixture {
    UnsavedWindow() { alerts.hold(); }

    /// A message that no file holds.
    void edit() { awaited(messageRotations.addMessageToCurrentRotation("typed", "5")); }
};

/// Keeps every worker busy while it lives.
class OccupiedWorkers
{
public:
    OccupiedWorkers()
    {
        QThreadPool &pool = *QThreadPool::globalInstance();
        for (int i = 0; i < m_count; ++i) {
            pool.start([end = m_end] { end->acquire(); });
        }
    }
    ~OccupiedWorkers() { m_end->release(m_count); }
    Q_DISABLE_COPY_MOVE(OccupiedWorkers)

private:
    const int m_count = QThreadPool::globalInstance()->maxThreadCount();
    const std::shared_ptr<QSemaphore> m_end = std::make_shared<QSemaphore>(); // a worker may be the last to use it
};

class UnsavedWorkTest : public QObject
{
    Q_OBJECT
private slots:
    void asksBeforeUnsavedWorkIsLost_data()
    {
        QTest::addColumn<bool>("isClosing");
        QTest::addColumn<int>("pressed");
        QTest::addColumn<bool>("goesOn");
        QTest::newRow("connect, no") << false << 1 << true;
        QTest::newRow("connect, cancel") << false << 2 << false;
        QTest::newRow("close, no") << true << 1 << true;
        QTest::newRow("close, cancel") << true << 2 << false;
    }
    void asksBeforeUnsavedWorkIsLost()
    {
        QFETCH(bool, isClosing);
        QFETCH(int, pressed);
        QFETCH(bool, goesOn);
        UnsavedWindow window;
        window.view.show();
        if (isClosing) {
            window.edit();
            window.view.close();
        } else {
            const OccupiedWorkers workers; // the catalogue cannot be read meanwhile
            window.view.connectTo(ConnectTarget{"L", "192.0.2.1", "50960", "p", nullptr});
            window.edit();
        }
        QTRY_COMPARE(window.alerts.openCount(), 1);
        QCOMPARE(window.alerts.shown().last().buttons, QStringList({"Yes", "No", "Cancel"}));
        QVERIFY(window.view.isVisible() && window.exchange.sent().isEmpty());
        window.alerts.dismiss(pressed);
        if (isClosing) {
            QTRY_COMPARE(window.view.isVisible(), !goesOn);
        } else {
            QTRY_COMPARE(window.exchange.sent().contains("dvardump"), goesOn);
            control<QPushButton>(window.view, "disconnectButton")->click();
        }
        if (!goesOn)
            QCOMPARE(window.messageRotations.entries().size(), 1);
        while (window.alerts.openCount() > 0)
            window.alerts.dismiss(1);
        QVERIFY(window.settle());
    }

    void aWindowThatStaysGoesOnSending()
    {
        UnsavedWindow window;
        window.view.show();
        window.connectToServer();
        window.exchange.answerEverything(ScriptedExchange::ok());
        window.exchange.hold();
        control<QPushButton>(window.view, "refreshCurrentMapButton")->click();
        window.view.close(); // comes back when the exchange has ended
        window.edit();
        QTRY_COMPARE(window.alerts.openCount(), 1);
        window.alerts.dismiss(2);
        QVERIFY(window.settle());
        QVERIFY(window.view.isVisible());
        window.exchange.forgetSent();
        control<QPushButton>(window.view, "fastRestartMapButton")->click();
        QTRY_COMPARE(window.exchange.keptCount(), 1);
        window.exchange.release();
        QCOMPARE(window.sent(), QStringList{"fast_restart"});
        QCOMPARE(window.alerts.shown().size(), 1);
    }

    void closingTwiceAsksOnce_data()
    {
        QTest::addColumn<bool>("isDuringAnExchange");
        QTest::newRow("while the question is open") << false;
        QTest::newRow("during an exchange, and the work is edited then") << true;
    }
    void closingTwiceAsksOnce()
    {
        QFETCH(bool, isDuringAnExchange);
        UnsavedWindow window;
        window.view.show();
        window.connectToServer();
        window.exchange.hold();
        if (isDuringAnExchange)
            control<QPushButton>(window.view, "refreshCurrentMapButton")->click();
        else
            window.edit();
        window.view.close();
        if (isDuringAnExchange)
            window.edit();
        window.view.close();
        QTRY_COMPARE(window.alerts.openCount(), 1);
        QTest::qWait(1);
        QCOMPARE(window.alerts.openCount(), 1);
        window.alerts.dismiss(2);
        QVERIFY(window.settle());
        QCoreApplication::processEvents();
        QVERIFY(window.settle());
        QCOMPARE(window.alerts.shown().size(), 1);
        QVERIFY(window.view.isVisible());
    }

    void whatIsEditedAfterNoIsAskedAboutAgain_data()
    {
        QTest::addColumn<bool>("areMaps");
        QTest::newRow("messages") << false;
        QTest::newRow("maps") << true;
    }
    void whatIsEditedAfterNoIsAskedAboutAgain()
    {
        QFETCH(bool, areMaps);
        UnsavedWindow window;
        window.view.show();
        window.connectToServer();
        window.exchange.hold();
        control<QPushButton>(window.view, "fastRestartMapButton")->click();
        window.edit();
        window.view.close();
        QTRY_COMPARE(window.alerts.openCount(), 1);
        const auto editOnceMore = [&window, areMaps] { // when nothing runs any more, but the window is still there
            if (areMaps)
                const QCoro::Task<> added = window.mapRotations.addEntries({{"map", "gametype"}});
            else
                const QCoro::Task<> added = window.messageRotations.addEntries({{"b", "1"}});
        };
        QObject::connect(&window.actions, &ActionQueue::idle, &window.view, editOnceMore, Qt::SingleShotConnection);
        window.alerts.dismiss(1);
        QTRY_COMPARE(window.alerts.openCount(), 1);
        window.alerts.dismiss(2);
        QVERIFY(window.settle() && window.view.isVisible());
    }

    void whatWasNotReplacedStaysUnsaved_data()
    {
        QTest::addColumn<bool>("isClosing");
        QTest::newRow("close: no to the maps, cancel at the messages") << true;
        QTest::newRow("connect: no, without any file yet") << false;
    }
    void whatWasNotReplacedStaysUnsaved()
    {
        QFETCH(bool, isClosing);
        UnsavedWindow window;
        window.view.show();
        awaited(window.mapRotations.addToRotation("Ropeway", "Dock Watch"));
        if (isClosing) {
            window.edit();
            window.view.close();
            window.alerts.dismiss(1);
            QTRY_COMPARE(window.alerts.openCount(), 1);
            window.alerts.dismiss(2);
        } else {
            window.view.connectTo(ConnectTarget{"L", "192.0.2.1", "50960", "p", nullptr});
            QTRY_COMPARE(window.alerts.openCount(), 1);
            window.alerts.dismiss(1);
            QTRY_VERIFY(window.alerts.openCount() == 1 || window.actions.isIdle()); // what the server lacks
            while (window.alerts.openCount() > 0)
                window.alerts.dismiss(0);
        }
        QVERIFY(window.settle());
        QVERIFY(window.mapRotations.hasUnsavedWork());
        const qsizetype asked = window.alerts.titles().count("Unsaved Changes to Map Rotation");
        window.view.close();
        QTRY_COMPARE(window.alerts.titles().count("Unsaved Changes to Map Rotation"), asked + 1);
        QVERIFY(window.view.isVisible());
        window.alerts.dismiss(1);
        if (isClosing) {
            QTRY_COMPARE(window.alerts.openCount(), 1);
            window.alerts.dismiss(1);
        }
        QTRY_VERIFY(!window.view.isVisible());
    }
};

QTEST_MAIN(UnsavedWorkTest)
#include "tst_unsavedwork.moc"
