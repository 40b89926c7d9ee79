#include "AppDelegate.h"
#include "FormMainView.h"
#include "Hands.h"
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

    void closesInTheMiddleOfAConnect()
    {
        const QTemporaryDir folder;
        AppDelegate application({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
        application.window().show();
        Hands::click(application.window(), "tryDemoServerButton");
        QVERIFY(!application.actions().isIdle());
        application.window().close();
        QTRY_VERIFY_WITH_TIMEOUT(!application.window().isVisible(), 10000);
        QVERIFY(application.actions().isIdle());
    }
};

QTEST_MAIN(JourneyTest)
#include "tst_journey.moc"
