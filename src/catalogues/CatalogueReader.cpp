#include "CatalogueReader.h"

#include "Alerts.h"
#include "AtomicFile.h"

#include <QCoroFuture>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QtConcurrentRun>

#include <utility>

static QString extensionOf(CatalogueReader::Kind kind)
{
    switch (kind) {
    case CatalogueReader::Kind::Gametypes:
        return QStringLiteral("gametypes");
    case CatalogueReader::Kind::RankedSettings:
        return QStringLiteral("gameSettingsRanked");
    case CatalogueReader::Kind::UnrankedSettings:
        return QStringLiteral("gameSettingsUnranked");
    case CatalogueReader::Kind::Maps:
        break;
    }
    return QStringLiteral("maps");
}

static bool isWritableFile(const QFileInfo &file)
{
    // A privileged user may write everything, but a file without any right to write is meant to stay as it is.
    const QFileDevice::Permissions anybody =
        QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return file.isWritable() && (file.permissions() & anybody) != 0;
}

CatalogueReader::CatalogueReader(CatalogueFolders folders, Alerts &alerts, std::function<void()> terminate)
    : m_folders(std::move(folders)), m_alerts(&alerts), m_terminate(std::move(terminate))
{
}

QString CatalogueReader::path(Kind kind) const
{
    return QDir(m_folders.applicationSupport).filePath(QStringLiteral("FerrowRcon.exe.") + extensionOf(kind));
}

QString CatalogueReader::shippedPath(Kind kind) const
{
    return QDir(m_folders.resources).filePath(QStringLiteral("FerrowRcon.default.") + extensionOf(kind));
}

QCoro::Task<CatalogueState> CatalogueReader::load(Kind kind, std::function<void(const XmlDocument &)> take)
{
    // Aside from the main thread: a slow disk would hold up the window.
    const CatalogueReader reader = *this;
    const QFuture<Result> pending = QtConcurrent::run([reader, kind] { return reader.refreshAndRead(kind); });
    const Result result = co_await pending;
    if (result.state == CatalogueState::Ready)
        take(*result.document);
    if (result.state == CatalogueState::Damaged)
        co_await m_alerts->run(tr("Catalogue Not Loaded"), result.error);
    if (result.state == CatalogueState::Missing) {
        co_await m_alerts->run(tr("Required File is Missing"), result.error);
        m_terminate();
    }
    co_return result.state;
}

bool CatalogueReader::isOutdated(Kind kind) const
{
    const QFileInfo copy(path(kind));
    if (!copy.exists())
        return true;
    if (!isWritableFile(copy))
        return false;
    if (QFileInfo(shippedPath(kind)).lastModified() > copy.lastModified())
        return true;
    if (kind != Kind::Maps)
        return false;
    // Maps of any other version are replaced whatever their age. A copy that cannot be read has no version to judge it
    // by. It is somebody's work with a slip in it, so it is reported rather than replaced.
    const std::optional<XmlDocument> document = XmlDocument::read(copy.filePath());
    return document && document->lastText("//version") != QLatin1String("4.0");
}

CatalogueReader::Result CatalogueReader::refreshAndRead(Kind kind) const
{
    const QString shipped = shippedPath(kind);
    const QString copy = path(kind);
    const bool isShipped = QFileInfo::exists(shipped);
    if (!isShipped && !QFileInfo::exists(copy)) {
        // Users and their guides know this text, so the maps go on naming the settings file.
        const QString name = kind == Kind::Gametypes ? QStringLiteral("gametypes") : QStringLiteral("gamesettings");
        const QString text =
            tr("Unable to find a valid '%1' file to load.\n\n- You need to re-download this application.");
        return {CatalogueState::Missing, text.arg(name), nullptr};
    }
    QString reason;
    if (isShipped && isOutdated(kind)) {
        if (!AtomicFile::makePrivateFolder(QFileInfo(copy).path()))
            reason = tr("The folder cannot be made.");
        else if (AtomicFile::copy(shipped, copy, &reason))
            reason.clear();
    }
    QString readError;
    std::optional<XmlDocument> document = XmlDocument::read(copy, &readError);
    if (document)
        return {CatalogueState::Ready, QString(), std::make_shared<const XmlDocument>(std::move(*document))};
    if (reason.isEmpty() || QFileInfo::exists(copy))
        reason = readError;
    const QString text = tr("The catalogue \"%1\" could not be read, so what was loaded before stays in use.\n\n%2");
    return {CatalogueState::Damaged, text.arg(QDir::toNativeSeparators(copy), reason), nullptr};
}
