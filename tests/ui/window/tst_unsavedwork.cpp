#include "Controls.h"
#include "WindowFixture.h"

#include <QPushButton>

struct UnsavedWindow : WindowFixture {
    UnsavedWindow() { alerts.hold(); }

    /// A message that no file holds.
    void edit() { awaited(messageRotations.addMessageToCurrentRotation("typed", "5")); }
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
        window.edit();
        if (isClosing)
            window.view.close();
        else
            window.view.connectTo(ConnectTarget{"L", "192.0.2.1", "50960", "p", nullptr});
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

    void closingTwiceAsksOnce()
    {
        UnsavedWindow window;
        window.view.show();
        window.connectToServer();
        window.exchange.hold();
        control<QPushButton>(window.view, "refreshCurrentMapButton")->click();
        window.view.close();
        window.edit(); // while the exchange ends
        window.view.close();
        QTRY_COMPARE(window.alerts.openCount(), 1);
        window.view.close();
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

    void whatWasNotReplacedStaysUnsaved()
    {
        UnsavedWindow window;
        window.view.show();
        awaited(window.mapRotations.addToRotation("Ropeway", "Dock Watch"));
        window.edit();
        for (const int answerToTheMessages : {2, 1}) {
            window.view.close();
            window.alerts.dismiss(1); // the maps need not be saved
            QTRY_COMPARE(window.alerts.openCount(), 1);
            window.alerts.dismiss(answerToTheMessages);
            QVERIFY(window.settle());
            QVERIFY(window.mapRotations.hasUnsavedWork());
            QTRY_COMPARE(window.view.isVisible(), answerToTheMessages == 2);
        }
        QCOMPARE(window.alerts.titles().count("Unsaved Changes to Map Rotation"), 4); // each closing asks for both
    }

    void afterCancelNothingMoreIsAsked()
    {
        UnsavedWindow window;
        window.view.show();
        awaited(window.mapRotations.addToRotation("Ropeway", "Dock Watch"));
        window.edit();
        window.view.close();
        window.alerts.dismiss(2);
        QVERIFY(window.settle() && window.view.isVisible());
        QCOMPARE(window.alerts.shown().size(), 1);
    }
};

QTEST_MAIN(UnsavedWorkTest)
#include "tst_unsavedwork.moc"
