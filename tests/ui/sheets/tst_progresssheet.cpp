#include "Controls.h"
#include "ProgressWindowController.h"
#include "SheetAlerts.h"

#include <QLabel>
#include <QProgressBar>
#include <QTest>

class ProgressSheetTest : public QObject
{
    Q_OBJECT
private slots:
    void showsWhatWasSetBefore()
    {
        QWidget window;
        window.show();
        ProgressWindowController progress;
        progress.setTitle("Loading configuration...");
        progress.setProgressMax(7);
        progress.setCurrentProgress(3);
        progress.beginSheet(&window);
        const QPointer<QDialog> sheet = progress.window();
        const auto *bar = control<QProgressBar>(*sheet, "progressIndicator");
        QCOMPARE(control<QLabel>(*sheet, "titleLabel")->text(), "Loading configuration...");
        QCOMPARE(bar->maximum(), 7);
        QCOMPARE(bar->value(), 3);
        progress.setCurrentProgress(6);
        QCOMPARE(bar->value(), 6);
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY(sheet->isVisible());
        progress.endSheet();
        QTRY_VERIFY(sheet.isNull());
    }

    void showsOneTaskAfterTheOther()
    {
        QWidget window;
        window.show();
        QWidget view(&window);
        ProgressWindowController progress(&view);
        for (const char *title : {"first", "second"}) {
            int cancelled = 0;
            progress.begin(title, [&cancelled] { ++cancelled; });
            const QPointer<QDialog> sheet = progress.window();
            QCOMPARE(sheet->parentWidget(), &window);
            const auto *bar = control<QProgressBar>(*sheet, "progressIndicator");
            QCOMPARE(control<QLabel>(*sheet, "titleLabel")->text(), title);
            QCOMPARE(bar->value(), 0);
            progress.setDone(2, 9);
            QCOMPARE(bar->maximum(), 9);
            QCOMPARE(bar->value(), 2);
            for (int press = 0; press < 2; ++press) // the second finds the button grey
                QTest::keyClick(sheet, Qt::Key_Escape);
            QVERIFY(sheet->isVisible());
            QCOMPARE(cancelled, 1);
            progress.end();
            QVERIFY(progress.window() == nullptr);
            progress.setDone(3, 9);
            QTRY_VERIFY(sheet.isNull());
        }
    }

    void theKeysComeBackWhenAnAlertHasGone()
    {
        QWidget window;
        window.show();
        ProgressWindowController progress(&window);
        progress.begin("title", [] {});
        QVERIFY(QTest::qWaitForWindowActive(progress.window()));
        SheetAlerts alerts;
        alerts.setWindow(&window);
        const QCoro::Task<int> answer = alerts.run("title", "text");
        auto *alert = control<QDialog>(window, "alert");
        QVERIFY(QTest::qWaitForWindowActive(alert));
        alert->reject();
        QTRY_VERIFY(answer.isReady());
        QTRY_VERIFY(progress.window()->isActiveWindow());
    }
};

QTEST_MAIN(ProgressSheetTest)
#include "tst_progresssheet.moc"
