#include "CatalogueReader.h"

#include "Alerts.h"

#include <QCoroFuture>
#include <QtConcurrentRun>

#include <utility>

CatalogueReader::CatalogueReader(CatalogueFolders folders, Alerts &alerts, std::function<void()> terminate)
    : m_folders(std::move(folders)), m_alerts(&alerts), m_terminate(std::move(terminate))
{
}

QCoro::Task<WorkingCopy::Result> CatalogueReader::open(WorkingCopy::Kind kind)
{
    // Aside from the main thread: a slow disk would hold up the window.
    const CatalogueFolders folders = m_folders;
    const QFuture<WorkingCopy::Result> pending =
        QtConcurrent::run([folders, kind] { return WorkingCopy(folders, kind).refreshAndRead(); });
    const WorkingCopy::Result result = co_await pending;
    if (result.state == CatalogueState::Damaged)
        co_await m_alerts->run(tr("Catalogue Not Loaded"), result.error);
    if (result.state == CatalogueState::Missing) {
        co_await m_alerts->run(tr("Required File is Missing"), result.error);
        m_terminate();
    }
    co_return result;
}
