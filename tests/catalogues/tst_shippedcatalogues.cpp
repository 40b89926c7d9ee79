#include "DataColumns.h"
#include "DvarSetting.h"
#include "DvarSettingList.h"
#include "LoadedCatalogues.h"

#include <QRegularExpression>
#include <QSet>

class ShippedCataloguesTest : public QObject
{
    Q_OBJECT
private slots:
    void maps()
    {
        LoadedCatalogues loaded(FERROW_RESOURCES);
        awaited(loaded.maps.loadMapList());
        QCOMPARE(XmlDocument::read(loaded.reader.path(CatalogueReader::Kind::Maps))->lastText("//version"), "4.0");
        QVERIFY(loaded.maps.arrangedMaps().size() >= 16);
        QSet<QString> dvarNames;
        for (const MapInst &each : loaded.maps.arrangedMaps()) {
            QVERIFY2(!each.name.isEmpty() && !each.excludeDvar.isEmpty(), qPrintable(each.description()));
            dvarNames.insert(each.dvarName);
        }
        QCOMPARE(dvarNames.size(), loaded.maps.arrangedMaps().size());
    }

    /// Lists and pop-ups show them in the order of the file.
    void gametypesAreFoundByTheirNames()
    {
        LoadedCatalogues loaded(FERROW_RESOURCES);
        awaited(loaded.gametypes.loadGametypeList());
        QStringList names;
        for (const auto &gametype : loaded.gametypes.listedGametypes())
            names.append(gametype->name());
        QStringList sorted = names;
        sorted.sort();
        QCOMPARE(names, sorted);
    }

    void formerNamesLeadToPresentOnes()
    {
        LoadedCatalogues loaded(FERROW_RESOURCES);
        awaited(loaded.maps.loadMapList());
        awaited(loaded.gametypes.loadGametypeList());
        QSet<QString> present;
        for (const MapInst &map : loaded.maps.arrangedMaps())
            present += {map.dvarName, map.excludeDvar};
        for (const auto &gametype : loaded.gametypes.listedGametypes())
            present += {gametype->name(), gametype->dvarName()};
        for (const QString &dvar : loaded.catalogues.gametypeDvars())
            present.insert(dvar);
        awaited(loaded.session.connectTo({}, "1"));
        awaited(loaded.catalogues.loadCatalogues());
        for (const QString &dvar : loaded.catalogues.settingDvars())
            present.insert(dvar);
        const QHash<QString, QString> &names = loaded.gametypes.formerNames().names();
        QVERIFY(names.size() > 200);
        for (auto each = names.cbegin(); each != names.cend(); ++each) {
            QVERIFY2(present.contains(each.value()), qPrintable(each.value()));
            QVERIFY2(!present.contains(each.key()), qPrintable(each.key()));
        }
    }

    void settings_data()
    {
        const auto row = dataColumns<QString, int>("which", "fewestSettings");
        // fewestSettings: in each list
        row("gametypes", "gametypes", 6);
        row("ranked", "2", 1);
        row("unranked", "1", 1);
    }
    void settings()
    {
        QFETCH(QString, which);
        QFETCH(int, fewestSettings);
        LoadedCatalogues loaded(FERROW_RESOURCES);
        awaited(loaded.session.connectTo({}, which));
        awaited(loaded.catalogues.loadCatalogues());
        QCOMPARE(loaded.session.alerts.texts(), QStringList());
        const auto lists =
            which == "gametypes" ? loaded.gametypes.listedGametypes() : loaded.settings.sortedSettingsValues();
        QVERIFY(lists.size() >= 8);
        // Every value that a description allows must pass the validation, and a range is told wherever there is one.
        static const QRegularExpression range("(-?[0-9]+(?:\\.[0-9]+)?) to ([0-9]+(?:\\.[0-9]+)?)|^.*\\. 0 .*, 1 ");
        QSet<QString> dvars;
        for (const auto &list : lists) {
            QVERIFY2(list->settings().size() >= fewestSettings, qPrintable(list->name()));
            for (const auto &each : list->settings()) {
                QVERIFY2(!each->dvar().isEmpty() && !each->category().isEmpty(), qPrintable(each->description()));
                QVERIFY2(!dvars.contains(each->dvar()), qPrintable(each->description()));
                dvars.insert(each->dvar());
                if (each->type() != "int" && each->type() != "float")
                    continue;
                const QRegularExpressionMatch told = range.match(each->settingDescription());
                QVERIFY2(told.hasMatch(), qPrintable(each->description()));
                for (const QString &limit : {told.captured(1), told.captured(2)})
                    QVERIFY2(limit.isEmpty() || each->validateValue(limit), qPrintable(each->description()));
            }
        }
    }
};

QTEST_GUILESS_MAIN(ShippedCataloguesTest)
#include "tst_shippedcatalogues.moc"
