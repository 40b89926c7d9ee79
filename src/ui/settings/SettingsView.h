#pragma once

#include "ActionQueue.h"
#include "TabPage.h"

#include <QCoroTask>

#include <QList>
#include <QString>

#include <memory>

class DvarFetcher;
class DvarSetting;
class DvarSettingCategory;
class DvarSettingOutlineView;
class EmptyHint;
class KelGametype;
class KelServer;
class KelSettings;
class QLineEdit;
class QListWidget;
class QSplitter;
class SettingsOutlineModel;

/// The settings of the game with their live values; on an unranked server those of a gametype too. An edit is written
/// to the server at once.
class SettingsView : public TabPage
{
    Q_OBJECT
public:
    enum class Mode { Unranked, Ranked };

    /// Everything handed in outlives the view, and the view outlives the actions that it starts.
    SettingsView(Mode mode, KelServer &server, ActionQueue &actions, DvarFetcher &fetcher, KelSettings &settings,
                 KelGametype &gametypes, QWidget *parent = nullptr);
    ~SettingsView() override;

    /// Splitters and columns; each mode keeps its own. Anything but what saveLayout() kept leaves the layout as it is.
    void restoreLayout(const Preferences &preferences) override;
    void saveLayout(Preferences &preferences) const override;
    void setInFront(bool isInFront) override;

private:
    void layOut();
    void layOutGametypes();
    QSplitter *pairOf(const QString &title, QListWidget *list, DvarSettingOutlineView *outline);
    void connectOutline(SettingsOutlineModel *outline, DvarSettingOutlineView *view);
    void connectSettings();
    void connectGametypes();
    void listGroups();
    void listGametypes();
    void showGroup();
    void showGametype();
    /// Lets what is looked at come first, of that which is still to be asked for.
    void preferShown(const QList<std::shared_ptr<DvarSettingCategory>> &categories);
    void preferEverythingShown();
    void askAgain(const QString &dvar);
    void updateHints();
    QString outlineHint(const SettingsOutlineModel &outline, const QString &emptyText) const;
    QList<QSplitter *> splitters() const;
    QList<DvarSettingOutlineView *> outlineViews() const;
    QString layoutKey() const;

    QCoro::Task<> writeSetting(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting, QString value);
    QCoro::Task<> toggleSetting(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting);
    /// Writes a variable and tells the user what went wrong; the session announces what changed. A value that the
    /// server turns down is read anew. Takes no turn.
    QCoro::Task<> setDvarValue(QString dvar, QString value);

    const Mode m_mode;
    QListWidget *settingsGroupList;
    QLineEdit *settingsFilterField;
    /// The outline of the game's settings; its object name tells the mode.
    DvarSettingOutlineView *settingsOutlineView;
    QListWidget *gametypeList = nullptr;                   ///< null in the ranked mode
    DvarSettingOutlineView *gametypeOutlineView = nullptr; ///< null in the ranked mode

    KelServer &m_server;
    ActionQueue &m_actions;
    DvarFetcher &m_fetcher;
    KelSettings &m_settings;
    KelGametype &m_gametypes;
    SettingsOutlineModel *m_settingsOutline;
    SettingsOutlineModel *m_gametypeOutline = nullptr;
    EmptyHint *m_groupsHint = nullptr;
    EmptyHint *m_settingsHint = nullptr;
    EmptyHint *m_gametypesHint = nullptr;
    EmptyHint *m_gametypeSettingsHint = nullptr;
    bool m_isInFront = false;
};
