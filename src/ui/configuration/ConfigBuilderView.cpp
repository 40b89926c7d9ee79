#include "ConfigBuilderView.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "CompareWindow.h"
#include "ConfigurationComparison.h"
#include "ConfigurationLoading.h"
#include "KelGametype.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "ReplaceQuestion.h"
#include "SectionTable.h"

#include <QFileInfo>

#include <optional>
#include <utility>

ConfigBuilderView::~ConfigBuilderView() = default;

ProgressWindowController *ConfigBuilderView::progressWindowController() const
{
    return m_loading->progressWindowController();
}

ConfigurationContent ConfigBuilderView::selectedContent() const
{
    return {configBuilderGeneralSettingsTable->selectedLists(), configBuilderGametypeSettingsTable->selectedLists(),
            m_server.dvarList()};
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
    // The dialog would ask in an event loop of its own; saveConfigTo asks instead.
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
    openPanel(
        QStringLiteral("saveConfigPanel"), tr("Save Configuration"), QFileDialog::AcceptSave,
        [this, content = selectedContent()](const QString &path) { m_actions.start(saveConfigTo(path, content)); });
}

void ConfigBuilderView::loadConfigButtonPressed()
{
    openPanel(QStringLiteral("loadConfigPanel"), tr("Load Configuration"), QFileDialog::AcceptOpen,
              [this](const QString &path) { m_actions.start(m_loading->loadFile(path)); });
}

void ConfigBuilderView::compareConfigButtonPressed()
{
    openPanel(QStringLiteral("compareConfigPanel"), tr("Compare With Configuration"), QFileDialog::AcceptOpen,
              [this](const QString &path) {
                  m_actions.start(compare(
                      path, {m_settings.sortedSettingsValues(), m_gametypes.listedGametypes(), m_server.dvarList()}));
              });
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
    if (saveConfiguration(content, path, &error))
        co_return;
    const QString text =
        tr("The configuration could not be saved to \"%1\". Nothing was written.\n\n%2").arg(path, error);
    co_await m_alerts.run(tr("Save Failed"), text);
}

QCoro::Task<> ConfigBuilderView::compare(QString path, ConfigurationContent everything)
{
    const QList<ConfigurationEntry> written = writtenEntries(everything);
    const std::optional<ConfigurationComparison> comparison =
        co_await m_loading->compareFile(path, everything.dvars, written);
    if (comparison)
        showComparison(*comparison, QFileInfo(path).fileName());
}

void ConfigBuilderView::showComparison(const ConfigurationComparison &comparison, const QString &fileName)
{
    auto *compareWindow = new CompareWindow(comparison, fileName, window());
    connect(compareWindow, &CompareWindow::loadRequested, this,
            [this](const QList<ConfigurationEntry> &entries) { m_actions.start(m_loading->loadEntries(entries)); });
    // What it shows is no longer what the server has.
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
