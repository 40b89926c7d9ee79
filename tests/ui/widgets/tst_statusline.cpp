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

    void aShortPauseKeepsTheIndicator()
    {
        StatusLine line;
        line.show();
        auto *indicator = control<QProgressBar>(line, "busyIndicator");
        line.setBusy(true);
        QVERIFY(!indicator->isVisible()); // not before it has lasted a while
        QTRY_VERIFY(indicator->isVisible());
        line.setBusy(false);
        line.setBusy(true);
        QVERIFY(indicator->isVisible());
        line.setBusy(false);
        QTRY_VERIFY(!indicator->isVisible());
    }

    void settingsAreCountedUntilAllAreKnown()
    {
        StatusLine line;
        line.show();
        auto *progress = control<QLabel>(line, "progressLabel");
        line.setProgress(2, 3);
        QVERIFY(progress->isVisible());
        QCOMPARE(progress->text(), "2 of 3 settings");
        line.setProgress(3, 3);
        QVERIFY(!progress->isVisible());
    }
};

QTEST_MAIN(StatusLineTest)
#include "tst_statusline.moc"
