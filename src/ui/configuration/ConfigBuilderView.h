#pragma once

#include "ConfigurationText.h"
#include "TabPage.h"

#include <QCoroTask>

#include <QDir>
#include <QFileDialog>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class ActionQueue;
class Alerts;
class ConfigurationComparison;
class ConfigurationLoading;
class DvarFetcher;
class KelGametype;
class KelServer;
class KelSettings;
class PendingDvars;
class Preferences;
class ProgressWindowController;
class QAction;
class QLabel;
class SectionTable;

/// Writes the server's settings into a configuration file, and loads such a file into the server or compares it.
class ConfigBuilderView : public TabPage
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view, and the view outlives the actions that it starts.
    ConfigBuilderView(KelServer &server, ActionQueue &actions, Alerts &alerts, DvarFetcher &fetcher,
                      Preferences &preferences, KelSettings &settings, KelGametype &gametypes,
                      QWidget *parent = nullptr);
    ~ConfigBuilderView() override;

    /// Writes `content` to `path`, with the extension "cfg" if it has another or none; asks first if the file exists.
    QCoro::Task<> saveConfigTo(QString path, ConfigurationContent content);

    void fillMenu(QMenu &menu) override;
    /// The second visit selects all rows.
    void setInFront(bool isInFront) override;

public slots:
    void saveConfigButtonPressed();
    void loadConfigButtonPressed();
    void compareConfigButtonPressed();
    void selectAllRows();
    void selectNoRows();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void layOut();
    void connectParts();
    void showCatalogues();
    void showSoon();
    void updateSummary();
    /// A button that is grey for the time of a loading, or of a waiting for values, gets the focus back.
    void followTask(bool isUnderWay);
    void updateControls();
    /// What is selected, with the values as the session holds them now.
    ConfigurationContent selectedContent() const;
    ConfigurationContent everything() const;
    /// A file dialog on the window; `chosen` gets the file when the dialog has gone, if there is one.
    void openPanel(const QString &name, const QString &title, QFileDialog::AcceptMode mode,
                   std::function<void(const QString &)> chosen);
    /// Saves with the values as they are when none of them is to come any more.
    QCoro::Task<> saveSelected(QString path, ConfigurationContent content);
    /// Asks whether the file may lack `names`, which the server did not answer for; without any it may.
    QCoro::Task<bool> mayLack(QStringList names);
    QCoro::Task<> compare(QString path);
    void showComparison(const ConfigurationComparison &comparison, const QString &fileName);

    QAction *m_saveAction;
    QAction *m_loadAction;
    QAction *m_compareAction;
    SectionTable *configBuilderGeneralSettingsTable;
    SectionTable *configBuilderGametypeSettingsTable;
    QLabel *configSummaryLabel = nullptr; ///< what saving would write

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    DvarFetcher &m_fetcher;
    Preferences &m_preferences;
    KelSettings &m_settings;
    KelGametype &m_gametypes;
    std::unique_ptr<ProgressWindowController> m_progressWindowController; ///< of the loading
    std::unique_ptr<ConfigurationLoading> m_loading;
    std::unique_ptr<ProgressWindowController> m_pendingProgress; ///< of the values that are still to come
    std::unique_ptr<PendingDvars> m_pending;
    QTimer m_refreshing;       ///< until the tables show the variables that have changed
    bool m_isOutdated = false; ///< the tables do not show all of them
    int m_visits = 0;
    QWidget *m_focusedBefore = nullptr;  ///< the loading or the waiting
    QString m_folder = QDir::homePath(); ///< of the file that was chosen last
};
