#include "Controls.h"
#include "StatusLine.h"

#include <QAccessible>
#include <QProgressBar>
#include <QTest>

class StatusLineTest : public QObject
{
    Q_OBJECT
private slots:
    void aScreenReaderHearsWhatTheStatusSays()
    {
        StatusLine line;
        for (const char *text : {"Not connected", "Connected to Home (Unranked)"}) {
            line.setStatus(QLatin1String(text));
            auto *label = control<QLabel>(line, "toolStripStatusLabelMain");
            QCOMPARE(label->text(), QLatin1String(text));
            QCOMPARE(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name), QLatin1String(text));
        }
    }

    void aShortPauseKeepsTheIndicatorAndItsProgress()
    {
        StatusLine line;
        line.show();
        auto *indicator = control<QProgressBar>(line, "busyIndicator");
        line.setBusy(true);
        QVERIFY(!indicator->isVisible()); // not before it has lasted a while
        QTRY_VERIFY(indicator->isVisible());
        line.setProgress(2, 3);
        line.setBusy(false);
        line.setBusy(true);
        QVERIFY(indicator->isVisible() && indicator->value() == 2);
        line.setBusy(false);
        QTRY_VERIFY(!indicator->isVisible());
        QCOMPARE(indicator->maximum(), 0);
    }
};

QTEST_MAIN(StatusLineTest)
#include "tst_statusline.moc"
