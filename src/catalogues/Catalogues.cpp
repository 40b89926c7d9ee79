#include "Catalogues.h"

#include "DvarSetting.h"
#include "DvarSettingList.h"
#include "KelGametype.h"
#include "KelPlaylists.h"
#include "KelSettings.h"

static QStringList dvarsOf(const QList<std::shared_ptr<DvarSettingList>> &lists)
{
    QStringList dvars;
    for (const std::shared_ptr<DvarSettingList> &list : lists) {
        for (const std::shared_ptr<DvarSetting> &setting : list->settings()) {
            // An entry that names no variable has nothing to ask the server for.
            if (!setting->dvar().isEmpty())
                dvars.append(setting->dvar());
        }
    }
    return dvars;
}

QCoro::Task<> Catalogues::loadCatalogues()
{
    const CatalogueState state = co_await gametypes.loadGametypeList();
    if (state == CatalogueState::Missing)
        co_return;                                                                   // the program is about to end
    [[maybe_unused]] const CatalogueState loaded = co_await settings.loadSettings(); // the user has been told
}

QStringList Catalogues::settingDvars() const
{
    return dvarsOf(settings.sortedSettingsValues());
}

QStringList Catalogues::gametypeDvars() const
{
    return dvarsOf(gametypes.listedGametypes());
}

QCoro::Task<> Catalogues::updateControls()
{
    playlists.updateControls();
    co_return;
}
