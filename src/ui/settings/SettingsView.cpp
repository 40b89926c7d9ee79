#include "SettingsView.h"

#include "DvarSetting.h"
#include "DvarSettingList.h"
#include "DvarSettingOutlineView.h"
#include "EmptyHint.h"
#include "KelGametype.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "SettingsOutlineModel.h"

#include <QSignalBlocker>

#include <utility>

namespace
{

/// Marks a variable as being written for as long as the action lives, however it ends.
class PendingWrite
{
public:
    PendingWrite(SettingsOutlineModel &outline, QString dvar) : m_outline(outline), m_dvar(std::move(dvar))
    {
        m_outline.beginWrite(m_dvar);
    }
    ~PendingWrite() { m_outline.endWrite(m_dvar); }
    PendingWrite(const PendingWrite &) = delete;
    PendingWrite &operator=(const PendingWrite &) = delete;

private:
    SettingsOutlineModel &m_outline;
    QString m_dvar;
};

} // namespace

SettingsView::~SettingsView() = default;

void SettingsView::connectOutline(SettingsOutlineModel *outline)
{
    connect(outline, &SettingsOutlineModel::writeRequested, this,
            [this, outline](const std::shared_ptr<DvarSetting> &setting, const QString &value) {
                m_actions.start(writeSetting(outline, setting, value));
            });
    connect(outline, &SettingsOutlineModel::toggleRequested, this,
            [this, outline](const std::shared_ptr<DvarSetting> &setting) {
                m_actions.start(toggleSetting(outline, setting));
            });
}

void SettingsView::connectSettings()
{
    connectOutline(m_settingsOutline);
    connect(&m_server, &KelServer::isConnectedChanged, this, &SettingsView::updateHints);
    connect(&m_settings, &KelSettings::sortedSettingsValuesChanged, this, &SettingsView::listGroups);
    connect(&m_settings, &KelSettings::selectedSettingsChanged, this, &SettingsView::showGroup);
    connect(settingsGroupList, &QListWidget::currentTextChanged, this,
            [this](const QString &name) { m_settings.setSelectedSettingList(name); });
    connect(settingsFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        for (DvarSettingOutlineView *view : outlineViews())
            view->setFilterText(text);
        updateHints();
    });
}

void SettingsView::connectGametypes()
{
    connectOutline(m_gametypeOutline);
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &SettingsView::listGametypes);
    connect(&m_gametypes, &KelGametype::selectedSettingsChanged, this, &SettingsView::showGametype);
    connect(&m_gametypes, &KelGametype::selectedSettingListChanged, gametypeOutlineView,
            &DvarSettingOutlineView::expandEveryRow);
    connect(gametypeList, &QListWidget::currentRowChanged, this,
            [this](int row) { m_gametypes.setSelectedSettingList(m_gametypes.arrangedGametypes().value(row)); });
}

void SettingsView::listGroups()
{
    // What is selected is the catalogue's business, and it tells when it has decided.
    const QSignalBlocker quiet(settingsGroupList);
    settingsGroupList->clear();
    settingsGroupList->addItems(m_settings.arrangedGroups());
}

void SettingsView::listGametypes()
{
    const QSignalBlocker quiet(gametypeList);
    gametypeList->clear();
    for (const std::shared_ptr<DvarSettingList> &gametype : m_gametypes.arrangedGametypes())
        gametypeList->addItem(gametype->name());
}

void SettingsView::showGroup()
{
    const QSignalBlocker quiet(settingsGroupList);
    settingsGroupList->setCurrentRow(
        static_cast<int>(m_settings.arrangedGroups().indexOf(m_settings.selectedSettingList())));
    m_settingsOutline->setCategories(m_settings.selectedSettings());
    settingsOutlineView->expandEveryRow();
    updateHints();
}

void SettingsView::showGametype()
{
    const QSignalBlocker quiet(gametypeList);
    gametypeList->setCurrentRow(
        static_cast<int>(m_gametypes.arrangedGametypes().indexOf(m_gametypes.selectedSettingList())));
    m_gametypeOutline->setCategories(m_gametypes.selectedSettings());
    updateHints();
}

QCoro::Task<> SettingsView::writeSetting(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting,
                                         QString value)
{
    const PendingWrite mark(*outline, setting->dvar());
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    // Also when the session holds the same: somebody else may have changed it at the server meanwhile.
    co_await setting->setDvarValue(value);
}

QCoro::Task<> SettingsView::toggleSetting(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting)
{
    const PendingWrite mark(*outline, setting->dvar());
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const bool opposite = !setting->dvarBoolValue();
    co_await setting->setDvarBoolValue(opposite);
}
