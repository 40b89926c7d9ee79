#include "ConfigBuilderView.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "Alerts.h"
#include "CompareWindow.h"
#include "ConfigurationComparison.h"
#include "ConfigurationLoading.h"
#include "KelGametype.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "Named.h"
#include "PendingDvars.h"
#include "ProgressWindowController.h"
#include "ReplaceQuestion.h"
#include "SectionTable.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>
#include <optional>
#include <utility>

ConfigBuilderView::ConfigBuilderView(KelServer &server, ActionQueue &actions, Alerts &alerts, DvarFetcher &fetcher,
                                     Preferences &preferences, KelSettings &settings, KelGametype &gametypes,
                                     QWidget *parent)
    : TabPage(parent), m_saveAction(makeAction(this, tr("&Save Config…"), &ConfigBuilderView::saveConfigButtonPressed)),
      m_loadAction(makeAction(this, tr("&Load Config…"), &ConfigBuilderView::loadConfigButtonPressed)),
      m_compareAction(makeAction(this, tr("&Compare With File…"), &ConfigBuilderView::compareConfigButtonPressed)),
      configBuilderGeneralSettingsTable(named("configBuilderGeneralSettingsTable",
                                              new SectionTable(tr("Settings groups"), this), tr("Settings groups"))),
      configBuilderGametypeSettingsTable(
          named("configBuilderGametypeSettingsTable", new SectionTable(tr("Gametypes"), this), tr("Gametypes"))),
      m_server(server), m_actions(actions), m_alerts(alerts), m_fetcher(fetcher), m_preferences(preferences),
      m_settings(settings), m_gametypes(gametypes),
      m_progressWindowController(std::make_unique<ProgressWindowController>(this)),
      m_loading(std::make_unique<ConfigurationLoading>(server, actions, alerts, *m_progressWindowController,
                                                       gametypes.formerNames())),
      m_pendingProgress(std::make_unique<ProgressWindowController>(this)),
      m_pending(std::make_unique<PendingDvars>(server, actions, fetcher, *m_pendingProgress))
{
    m_loadAction->setToolTip(tr("Writes every variable of a file to the server"));
    m_compareAction->setToolTip(tr("Shows what a file would change before anything is written"));
    layOut();
    connectParts();
    showCatalogues();
}

ConfigBuilderView::~ConfigBuilderView() = default;

// The Tab key goes through the controls in the order in which they are made.
void ConfigBuilderView::layOut()
{
    auto *guide = new QLabel(tr("Select what goes into the file. The sections of each table stand there in the order "
                                "in which they were selected."),
                             this);
    guide->setWordWrap(true);
    auto *tables = new QHBoxLayout;
    tables->addWidget(configBuilderGeneralSettingsTable);
    tables->addWidget(configBuilderGametypeSettingsTable);
    auto *selectAllButton = named("selectAllButton", new QPushButton(tr("Select All"), this));
    connect(selectAllButton, &QPushButton::clicked, this, &ConfigBuilderView::selectAllRows);
    auto *selectNoneButton = named("selectNoneButton", new QPushButton(tr("Select None"), this));
    connect(selectNoneButton, &QPushButton::clicked, this, &ConfigBuilderView::selectNoRows);
    configSummaryLabel = named("configSummaryLabel", new QLabel(this));
    configSummaryLabel->setTextFormat(Qt::PlainText);
    configSummaryLabel->setWordWrap(true);
    auto *choosing = new QHBoxLayout;
    choosing->addWidget(selectAllButton);
    choosing->addWidget(selectNoneButton);
    choosing->addSpacing(12);
    choosing->addWidget(configSummaryLabel, 1);
    auto *files = new QHBoxLayout;
    files->addWidget(new ActionButton(m_saveAction, "saveConfigButton", this));
    files->addSpacing(12);
    files->addWidget(new ActionButton(m_loadAction, "loadConfigButton", this));
    files->addWidget(new ActionButton(m_compareAction, "compareConfigButton", this));
    files->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(guide);
    layout->addLayout(tables, 1);
    layout->addLayout(choosing);
    layout->addLayout(files);
    setFocusProxy(configBuilderGeneralSettingsTable);
}

void ConfigBuilderView::connectParts()
{
    for (SectionTable *table : {configBuilderGeneralSettingsTable, configBuilderGametypeSettingsTable})
        connect(table, &SectionTable::choiceChanged, this, &ConfigBuilderView::updateSummary);
    connect(&m_settings, &KelSettings::sortedSettingsValuesChanged, this, &ConfigBuilderView::showCatalogues);
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &ConfigBuilderView::showCatalogues);
    connect(&m_server, &KelServer::dvarListChanged, this, &ConfigBuilderView::showCatalogues);
    connect(&m_server, &KelServer::dvarChanged, this, &ConfigBuilderView::showSoon);
    m_refreshing.setSingleShot(true);
    m_refreshing.setInterval(std::chrono::milliseconds(200));
    connect(&m_refreshing, &QTimer::timeout, this, &ConfigBuilderView::showCatalogues);
    connect(&m_server, &KelServer::isConnectedChanged, this, &ConfigBuilderView::updateControls);
    connect(m_loading.get(), &ConfigurationLoading::isUnderWayChanged, this, &ConfigBuilderView::followTask);
    connect(m_pending.get(), &PendingDvars::isUnderWayChanged, this, &ConfigBuilderView::followTask);
}

/// Gathered, as many variables may come at once, and not before somebody sees it.
void ConfigBuilderView::showSoon()
{
    m_isOutdated = true;
    if (isVisible() && !m_refreshing.isActive())
        m_refreshing.start();
}

void ConfigBuilderView::showEvent(QShowEvent *event)
{
    TabPage::showEvent(event);
    if (m_isOutdated)
        showCatalogues();
}

void ConfigBuilderView::showCatalogues()
{
    m_isOutdated = false;
    const QHash<QString, QString> dvars = m_server.dvarList();
    configBuilderGeneralSettingsTable->showLists(m_settings.sortedSettingsValues(), dvars);
    configBuilderGametypeSettingsTable->showLists(m_gametypes.listedGametypes(), dvars);
    updateSummary();
    updateControls();
}

void ConfigBuilderView::updateSummary()
{
    const ConfigurationContent content = selectedContent();
    const auto groupCount = static_cast<int>(content.groups.size());
    const auto gametypeCount = static_cast<int>(content.gametypes.size());
    const auto variableCount = static_cast<int>(writtenEntries(content).size());
    const QString groups = groupCount == 1 ? tr("1 group") : tr("%n groups", nullptr, groupCount);
    const QString gametypes = gametypeCount == 1 ? tr("1 gametype") : tr("%n gametypes", nullptr, gametypeCount);
    const QString variables = variableCount == 1 ? tr("1 variable") : tr("%n variables", nullptr, variableCount);
    configSummaryLabel->setText(tr("Saving writes %1, %2, %3.").arg(groups, gametypes, variables));
}

void ConfigBuilderView::followTask(bool isUnderWay)
{
    QWidget *focused = window()->focusWidget();
    if (isUnderWay)
        m_focusedBefore = qobject_cast<ActionButton *>(focused) != nullptr && isAncestorOf(focused) ? focused : nullptr;
    updateControls();
    if (!isUnderWay && m_focusedBefore != nullptr)
        m_focusedBefore->setFocus();
}

void ConfigBuilderView::updateControls()
{
    const bool isConnected = m_server.isConnected();
    const bool isWaiting = m_pending->isUnderWay();
    m_saveAction->setEnabled(!m_server.dvarList().isEmpty() && !isWaiting); // also when the server has gone
    for (QAction *action : {m_loadAction, m_compareAction})
        action->setEnabled(isConnected && !isWaiting && !m_loading->isUnderWay());
    configBuilderGeneralSettingsTable->setPlaceholder(
        isConnected ? tr("The catalogue has no groups.") : tr("Not connected. Connect to a server to see its groups."));
    configBuilderGametypeSettingsTable->setPlaceholder(
        isConnected ? tr("The catalogue has no gametypes.")
                    : tr("Not connected. Connect to a server to see its gametypes."));
}

ConfigurationContent ConfigBuilderView::selectedContent() const
{
    return {configBuilderGeneralSettingsTable->selectedLists(), configBuilderGametypeSettingsTable->selectedLists(),
            m_server.dvarList()};
}

ConfigurationContent ConfigBuilderView::everything() const
{
    return {m_settings.sortedSettingsValues(), m_gametypes.listedGametypes(), m_server.dvarList()};
}

void ConfigBuilderView::openPanel(const QString &name, const QString &title, QFileDialog::AcceptMode mode,
                                  std::function<void(const QString &)> chosen)
{
    auto *panel = new QFileDialog(this, title, m_folder, tr("Server configuration (*.cfg)"));
    panel->setObjectName(name);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowFlag(Qt::Sheet);
    panel->setAcceptMode(mode);
    panel->setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    panel->setDefaultSuffix(QStringLiteral("cfg"));
    // The dialog would ask in a nested event loop; saveConfigTo asks instead.
    panel->setOption(QFileDialog::DontConfirmOverwrite);
    connect(panel, &QDialog::finished, this, [this, panel, chosen = std::move(chosen)](int result) {
        const QString path = panel->selectedFiles().value(0);
        if (result != QDialog::Accepted || path.isEmpty())
            return;
        m_folder = QFileInfo(path).path();
        chosen(path);
    });
    panel->open();
}

void ConfigBuilderView::saveConfigButtonPressed()
{
    ConfigurationContent content = selectedContent();
    content.dvars.clear(); // the values are taken when the file is written
    openPanel(QStringLiteral("saveConfigPanel"), tr("Save Configuration"), QFileDialog::AcceptSave,
              [this, content](const QString &path) { m_actions.start(saveSelected(path, content)); });
}

void ConfigBuilderView::loadConfigButtonPressed()
{
    openPanel(QStringLiteral("loadConfigPanel"), tr("Load Configuration"), QFileDialog::AcceptOpen,
              [this](const QString &path) { m_actions.start(m_loading->loadFile(path)); });
}

void ConfigBuilderView::compareConfigButtonPressed()
{
    openPanel(QStringLiteral("compareConfigPanel"), tr("Compare With Configuration"), QFileDialog::AcceptOpen,
              [this](const QString &path) { m_actions.start(compare(path)); });
}

QCoro::Task<> ConfigBuilderView::saveSelected(QString path, ConfigurationContent content)
{
    const QStringList names = neededDvars(content);
    const PendingDvars::End end = co_await m_pending->finish(names);
    if (end != PendingDvars::End::Settled)
        co_return;
    content.dvars = m_server.dvarList(); // before the question, during which the server may change
    const QStringList unanswered = m_pending->unanswered(names);
    const bool goesOn = co_await mayLack(unanswered);
    if (goesOn)
        co_await saveConfigTo(path, content);
}

QCoro::Task<bool> ConfigBuilderView::mayLack(QStringList names)
{
    if (names.isEmpty())
        co_return true;
    const qsizetype mostNamed = 10;
    QString named = names.mid(0, mostNamed).join(tr(", "));
    if (names.size() > mostNamed)
        named = tr("%1 and %n more", nullptr, static_cast<int>(names.size() - mostNamed)).arg(named);
    const QString one = tr("The server did not answer for %1; it is not in the file.");
    const QString several = tr("The server did not answer for %1; they are not in the file.");
    const QString text = names.size() == 1 ? one.arg(named) : several.arg(named);
    const QStringList buttons{tr("Save Anyway"), tr("Cancel")};
    const AlertManner manner{.defaultButton = 1};
    const int pressed = co_await m_alerts.run(tr("Settings Missing"), text, buttons, manner);
    co_return pressed == 0;
}

QCoro::Task<> ConfigBuilderView::saveConfigTo(QString path, ConfigurationContent content)
{
    if (QFileInfo(path).suffix().compare(QLatin1String("cfg"), Qt::CaseInsensitive) != 0)
        path += QStringLiteral(".cfg");
    ReplaceQuestion question(m_alerts);
    const bool mayWrite = co_await question.mayWrite(path);
    if (!mayWrite)
        co_return;
    QString error;
    if (saveConfiguration(content, path, &error)) {
        m_server.tellOutcome(Outcome::saved(tr("Save Config"), path));
        co_return;
    }
    const QString text =
        tr("The configuration could not be saved to \"%1\". Nothing was written.\n\n%2").arg(path, error);
    co_await m_alerts.run(tr("Save Failed"), text);
}

QCoro::Task<> ConfigBuilderView::compare(QString path)
{
    const QStringList names = neededDvars(everything());
    const PendingDvars::End end = co_await m_pending->finish(names);
    if (end != PendingDvars::End::Settled)
        co_return;
    const ConfigurationContent content = everything();
    const QList<ConfigurationEntry> written = writtenEntries(content);
    const std::optional<ConfigurationComparison> comparison =
        co_await m_loading->compareFile(path, content.dvars, written);
    if (comparison)
        showComparison(*comparison, QFileInfo(path).fileName());
}

void ConfigBuilderView::showComparison(const ConfigurationComparison &comparison, const QString &fileName)
{
    auto *compareWindow = new CompareWindow(comparison, fileName, m_preferences, window());
    connect(compareWindow, &CompareWindow::loadRequested, this,
            [this](const QList<ConfigurationEntry> &entries) { m_actions.start(m_loading->loadEntries(entries)); });
    // The comparison shows values that the server has no longer.
    connect(&m_server, &KelServer::connectionBegan, compareWindow, &QDialog::reject);
    connect(&m_server, &KelServer::isConnectedChanged, compareWindow, &QDialog::reject);
    compareWindow->open();
}

void ConfigBuilderView::selectAllRows()
{
    configBuilderGeneralSettingsTable->selectEveryRow();
    configBuilderGametypeSettingsTable->selectEveryRow();
}

void ConfigBuilderView::selectNoRows()
{
    configBuilderGeneralSettingsTable->clearSelection();
    configBuilderGametypeSettingsTable->clearSelection();
}

void ConfigBuilderView::fillMenu(QMenu &menu)
{
    menu.addActions({m_saveAction, m_loadAction, m_compareAction});
}

void ConfigBuilderView::setInFront(bool isInFront)
{
    if (isInFront && ++m_visits == 2)
        selectAllRows();
}
