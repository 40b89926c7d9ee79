#include "DataColumns.h"
#include "Preferences.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class PreferencesTest : public QObject
{
    Q_OBJECT
private slots:
    void whatIsSetGoesBeforeTheDefault()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath("made/settings.ini");
        for (const int written : {5, 6}) {
            Preferences preferences(file);
            preferences.registerDefaults({{"time", 30}});
            QCOMPARE(preferences.intValue("time", 1, 1000), written == 5 ? 30 : 5);
            preferences.setValue("time", written);
            QCOMPARE(QFile::permissions(file) & QFile::Permissions(0x0077), QFile::Permissions());
            QVERIFY(QFile::setPermissions(file, QFile::Permissions(0x6666)));
        }
    }

    void aHandEditedValueIsBroughtIntoRange_data()
    {
        const auto row = dataColumns<QVariant, int>("stored", "expected");
        row("words", QVariant("often"), 30);
        row("zero", QVariant(0), 1);
        row("larger than an int", QVariant("99999999999999"), 1000);
    }
    void aHandEditedValueIsBroughtIntoRange()
    {
        QFETCH(QVariant, stored);
        const QTemporaryDir folder;
        Preferences preferences(folder.filePath("settings.ini"));
        preferences.registerDefaults({{"time", 30}});
        preferences.setValue("time", stored);
        QTEST(preferences.intValue("time", 1, 1000), "expected");
    }
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "tst_preferences.moc"
