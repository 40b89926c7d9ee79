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
    const CatalogueState gametypes = co_await m_gametypes.loadGametypeList();
    if (gametypes == CatalogueState::Missing)
        co_return; // the program is about to end
    const CatalogueState settings = co_await m_settings.loadSettings();
    Q_UNUSED(settings)
}

QStringList Catalogues::settingDvars() const
{
    return dvarsOf(m_settings.sortedSettingsValues());
}

QStringList Catalogues::gametypeDvars() const
{
    return dvarsOf(m_gametypes.listedGametypes());
}

QCoro::Task<> Catalogues::updateControls()
{
    m_playlists.updateControls();
    co_return;
}
