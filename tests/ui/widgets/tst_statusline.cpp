#include "Controls.h"
#include "StatusLine.h"

#include <QLabel>
#include <QProgressBar>
#include <QTest>

class StatusLineTest : public QObject
{
    Q_OBJECT
private slots:
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
};

QTEST_MAIN(StatusLineTest)
#include "tst_statusline.moc"
