#include "AppDelegate.h"
#include "Journey.h"
#include "RealPointer.h"

#include <QTemporaryDir>
#include <QTest>

class JourneyDraggingTest : public QObject
{
    Q_OBJECT
private slots:
    void dragsARow()
    {
        QVERIFY(RealPointer::isThere());
        const QTemporaryDir folder;
        AppDelegate application({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
        Journey journey(application, {});
        QVERIFY2(journey.performDragging(), qPrintable(journey.failure()));
    }
};

QTEST_MAIN(JourneyDraggingTest)
#include "tst_journeydragging.moc"
