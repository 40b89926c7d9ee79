#include "Controls.h"
#include "WindowFixture.h"

#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QScreen>
#include <QTableView>
#include <QTemporaryDir>

/// The first screen is as small as the window is made for, the second has room for everything.
static const char *const twoScreens = R"({"synchronousWindowSystemEvents": true, "screens": [
    {"name": "small", "x": 0, "y": 0, "width": 1024, "height": 640, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1},
    {"name": "large", "x": 1024, "y": 0, "width": 1920, "height": 1080, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}
]})";

class WindowPlaceTest : public QObject
{
    Q_OBJECT
private slots:
    void opensInsideTheScreen_data()
    {
        QTest::addColumn<QRect>("left"); // where it was left; empty: never
        QTest::addColumn<QString>("screen");
        QTest::newRow("fresh start") << QRect() << "small";
        QTest::newRow("larger than the screen") << QRect(0, 0, 1180, 720) << "small";
        QTest::newRow("half outside") << QRect(500, 300, 900, 500) << "small";
        QTest::newRow("where there is no screen any more") << QRect(5000, 3000, 900, 500) << "";
    }
    void opensInsideTheScreen()
    {
        QFETCH(QRect, left);
        QFETCH(QString, screen);
        WindowFixture fixture;
        if (!left.isNull()) {
            fixture.view.setGeometry(left);
            fixture.view.show();
            fixture.view.close();
        }
        FormMainView again(fixture.workplace(), fixture.savedServers);
        again.show();
        QVERIFY(QTest::qWaitForWindowActive(&again));
        QCOMPARE(again.screen()->availableGeometry().united(again.frameGeometry()),
                 again.screen()->availableGeometry());
        if (!screen.isEmpty())
            QCOMPARE(again.screen()->name(), screen);
        again.close();
    }

    void fitsASmallScreenThatIsMagnified()
    {
        WindowFixture window;
        window.connectToServer(); // now every tab has its say
        QVERIFY(window.settle());
        window.view.show();
        const QSize room(1280 * 2 / 3, 800 * 2 / 3); // scaled by 1.5
        const QSize least = window.view.minimumSizeHint();
        QVERIFY2(least.width() <= room.width() - 4 && least.height() <= room.height() - 40,
                 qPrintable(QStringLiteral("%1x%2").arg(least.width()).arg(least.height())));
    }

    void theLayoutSurvivesARestart()
    {
        WindowFixture window;
        window.view.setGeometry(1200, 100, 1100, 777);
        window.view.show();
        control<QTableView>(window.view, "playersTableView")->sortByColumn(6, Qt::DescendingOrder);
        control<QTableView>(window.view, "savedServerTableView")->sortByColumn(2, Qt::DescendingOrder);
        window.view.close();
        const FormMainView again(window.workplace(), window.savedServers);
        QCOMPARE(again.geometry(), QRect(1200, 100, 1100, 777));
        QCOMPARE(control<QTableView>(again, "playersTableView")->horizontalHeader()->sortIndicatorSection(), 6);
        QCOMPARE(control<QTableView>(again, "savedServerTableView")->horizontalHeader()->sortIndicatorSection(), 2);
    }
};

int main(int argc, char **argv)
{
    const QTemporaryDir folder;
    const QString screens = folder.filePath("screens.json");
    QFile file(screens);
    if (!file.open(QIODevice::WriteOnly) || file.write(twoScreens) < 0)
        return 1;
    file.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.toLocal8Bit());
    const QApplication application(argc, argv);
    WindowPlaceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_windowplace.moc"
