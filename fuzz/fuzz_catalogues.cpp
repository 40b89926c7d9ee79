#include "Fuzzing.h"
#include "ReadyCatalogues.h"

#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "DvarSettingList.h"

static void checkList(const DvarSettingList &list)
{
    const QList<std::shared_ptr<DvarSetting>> settings = list.settings();
    for (qsizetype i = 0; i < settings.size(); ++i) {
        const DvarSetting &setting = *settings.at(i);
        require(list.settingsList().value(setting.name()) == settings.at(i), "a setting is found by its name");
        require(!setting.type().isNull(), "a setting has a type");
        require(i == 0 || settings.at(i - 1)->name().compare(setting.name(), Qt::CaseInsensitive) <= 0,
                "settings are sorted");
        require(setting.type() == "string" || !setting.validateValue("a b"), "a number is no text");
    }
    qsizetype categorized = 0;
    for (const std::shared_ptr<DvarSettingCategory> &category : list.children())
        categorized += category->children().size();
    require(categorized == settings.size(), "a setting is in one category");
}

static void checkGametypes(const KelGametype &gametypes)
{
    for (const std::shared_ptr<DvarSettingList> &gametype : gametypes.listedGametypes()) {
        checkList(*gametype);
        require(gametypes.findGametypeByName(gametype->name()) == gametype, "a listed gametype is found by its name");
        const std::shared_ptr<DvarSettingList> found =
            gametypes.findGametypeByName(gametypes.findGametypeByDvar(gametype->dvarName()));
        require(gametype->dvarName().isNull() || (found && found->dvarName() == gametype->dvarName()),
                "a gametype is found by its short name");
    }
    require(gametypes.listedGametypes().size() == gametypes.gametypeList().size(), "a name is listed once");
}

static void checkSettings(const KelSettings &settings)
{
    require(settings.arrangedGroups().size() == settings.settingsList().size(), "a group is listed once");
    for (const std::shared_ptr<DvarSettingList> &group : settings.sortedSettingsValues()) {
        require(group->name().compare(QLatin1String("voip"), Qt::CaseInsensitive) != 0, "voice chat is not offered");
        checkList(*group);
    }
}

static void checkMaps(const KelMapList &maps)
{
    const QHash<QString, MapInst> list = maps.list();
    require(maps.listedMaps().size() == list.size(), "without a ranked server every name is listed once");
    for (const MapInst &map : list) {
        const MapInst found = list.value(maps.findMapByDvar(map.dvarName));
        require(map.dvarName.isNull() || found.dvarName == map.dvarName, "a map is found by its name at the server");
    }
}

static void fuzz(const QByteArray &bytes)
{
    static ReadyCatalogues catalogues;
    QString error;
    const std::optional<XmlDocument> document = XmlDocument::parse(bytes, &error);
    require(document.has_value() == error.isEmpty(), "a file that is refused has a reason");
    if (!document)
        return;
    catalogues.gametypes.takeDocument(*document);
    catalogues.settings.takeDocument(*document);
    catalogues.maps.takeDocument(*document);
    checkGametypes(catalogues.gametypes);
    checkSettings(catalogues.settings);
    checkMaps(catalogues.maps);
}
