#pragma once

#include "ActionQueue.h"
#include "Exchange.h"
#include "TabPage.h"

#include <QCoroTask>

#include <QList>
#include <QString>

#include <memory>
#include <optional>

class DvarFetcher;
class DvarSetting;
class DvarSettingCategory;
class DvarSettingOutlineView;
class FilterField;
class Hint;
class KelGametype;
class KelServer;
class KelSettings;
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

    void setInFront(bool isInFront) override;

private:
    using Categories = QList<std::shared_ptr<DvarSettingCategory>>;

    /// A list, and beside it the settings of what is chosen there.
    struct Pane {
        QSplitter *pair;
        QListWidget *list;
        Hint *listHint;
        SettingsOutlineModel *outline;
        DvarSettingOutlineView *outlineView;
        Hint *outlineHint;
    };
    struct PaneNames {
        QString listTitle;
        const char *list;
        QString outlineTitle; ///< for a screen reader
        const char *outline;
        const char *pair;
    };

    Pane makeSettingsPane(Mode mode);
    Pane makePane(const PaneNames &names);
    void connectOutline(SettingsOutlineModel *outline);
    void connectSettings();
    void connectGametypes();
    void followConnection();
    void listGroups();
    void listGametypes();
    void showGroup();
    void showGametype();
    void fill(const Pane &pane, int row, const Categories &settings);
    /// Lets what is looked at come first, of that which is still to be asked for.
    void preferShown(const Categories &categories);
    void preferEverythingShown();
    void askAgain(const QString &dvar);
    void updateHints();
    QString outlineHint(const SettingsOutlineModel &outline, const QString &emptyText) const;

    /// @param value  nothing: the opposite of what the checkbox shows in the turn.
    QCoro::Task<> write(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting,
                        std::optional<QString> value);
    /// Writes a variable and tells the user what went wrong; the session announces what changed. A value that the
    /// server turns down is read anew. Takes no turn.
    /// @return what the server answered to the write.
    QCoro::Task<Reply> setDvarValue(QString dvar, QString value);

    KelServer &m_server;
    ActionQueue &m_actions;
    DvarFetcher &m_fetcher;
    KelSettings &m_settings;
    KelGametype &m_gametypes;
    Pane m_settingsPane;
    FilterField *settingsFilterField;
    std::optional<Pane> m_gametypePane; ///< not in the ranked mode
    bool m_isInFront = false;
};
