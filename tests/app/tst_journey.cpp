#include "AppDelegate.h"
#include "Journey.h"

#include <QTemporaryDir>
#include <QTest>

class JourneyTest : public QObject
{
    Q_OBJECT
private slots:
    void leadsThroughTheWholeWindow()
    {
        const QTemporaryDir folder;
        AppDelegate application({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
        Journey journey(application, {});
        QVERIFY2(journey.perform(), qPrintable(journey.failure()));
    }
};

QTEST_MAIN(JourneyTest)
#include "tst_journey.moc"
