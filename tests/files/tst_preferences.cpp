#include "Preferences.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

class PreferencesTest : public QObject
{
    Q_OBJECT
private slots:
    void defaultsApplyOnlyWhereNothingIsSet()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("settings.ini"));
        const QString time = QStringLiteral("autoUpdatePlayersTime");
        {
            Preferences preferences(file);
            preferences.registerDefaults({{time, 30}, {QStringLiteral("autoUpdatePlayers"), false}});
            QCOMPARE(preferences.intValue(time, 1, 1000), 30);
            QCOMPARE(preferences.boolValue(QStringLiteral("autoUpdatePlayers")), false);
            preferences.setValue(time, 5);
        }
        QVERIFY(QFile::setPermissions(file, QFile::Permissions(0x6666)));
        Preferences preferences(file);
        preferences.registerDefaults({{time, 30}});
        QCOMPARE(preferences.intValue(time, 1, 1000), 5);
        preferences.setValue(time, 6);
        QCOMPARE(QFile::permissions(file) & QFile::Permissions(0x0077), QFile::Permissions());
    }

    void aPipeInItsPlaceStopsNothing()
    {
        const QTemporaryDir folder;
        const QString pipe = folder.filePath(QStringLiteral("settings.ini"));
        QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
        Preferences preferences(pipe);
        preferences.setValue(QStringLiteral("key"), 5);
        QCOMPARE(preferences.intValue(QStringLiteral("key"), 1, 9), 5);
    }

    void aHandEditedValueIsBroughtIntoRange_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("expected");
        QTest::newRow("words") << QVariant(QStringLiteral("often")) << 30;
        QTest::newRow("zero") << QVariant(0) << 1;
        QTest::newRow("larger than an int") << QVariant(QStringLiteral("99999999999999")) << 1000;
    }
    void aHandEditedValueIsBroughtIntoRange()
    {
        QFETCH(QVariant, stored);
        const QTemporaryDir folder;
        Preferences preferences(folder.filePath(QStringLiteral("settings.ini")));
        preferences.registerDefaults({{QStringLiteral("time"), 30}});
        preferences.setValue(QStringLiteral("time"), stored);
        QTEST(preferences.intValue(QStringLiteral("time"), 1, 1000), "expected");
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "tst_preferences.moc"
