#include "WorkingCopy.h"

#include "AtomicFile.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

static bool isWritableFile(const QFileInfo &file)
{
    // A privileged user may write everything, but a file without any right to write is meant to stay as it is.
    const QFileDevice::Permissions anybody =
        QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return file.isWritable() && (file.permissions() & anybody) != 0;
}

WorkingCopy::Kind WorkingCopy::gametypes()
{
    return {QStringLiteral("gametypes"),
            tr("Unable to find a valid 'gametypes' file to load.\n\n- You need to re-download this application."),
            QString()};
}

WorkingCopy::Kind WorkingCopy::settings(bool isRanked)
{
    return {isRanked ? QStringLiteral("gameSettingsRanked") : QStringLiteral("gameSettingsUnranked"),
            tr("Unable to find a valid 'gamesettings' file to load.\n\n- You need to re-download this application."),
            QString()};
}

WorkingCopy::Kind WorkingCopy::maps()
{
    // Users and their guides know this text, so the maps go on naming the settings file.
    return {QStringLiteral("maps"),
            tr("Unable to find a valid 'gamesettings' file to load.\n\n- You need to re-download this application."),
            QStringLiteral("4.0")};
}

WorkingCopy::WorkingCopy(const CatalogueFolders &folders, const Kind &kind)
    : m_kind(kind),
      m_path(QDir(folders.applicationSupport).filePath(QStringLiteral("FerrowRcon.exe.") + kind.extension)),
      m_defaultPath(QDir(folders.resources).filePath(QStringLiteral("FerrowRcon.default.") + kind.extension))
{
}

bool WorkingCopy::isOutdated() const
{
    const QFileInfo copy(m_path);
    if (!copy.exists())
        return true;
    if (!isWritableFile(copy))
        return false;
    if (QFileInfo(m_defaultPath).lastModified() > copy.lastModified())
        return true;
    if (m_kind.acceptedVersion.isNull())
        return false;
    // A copy that cannot be read has no version to judge it by. It is somebody's work with a slip in it, so it is
    // reported rather than replaced.
    const std::optional<XmlDocument> document = XmlDocument::read(m_path);
    return document && document->lastText("//version") != m_kind.acceptedVersion;
}

WorkingCopy::Result WorkingCopy::refreshAndRead() const
{
    const bool isShipped = QFileInfo::exists(m_defaultPath);
    if (!isShipped && !QFileInfo::exists(m_path))
        return {CatalogueState::Missing, m_kind.missingText, nullptr};

    QString reason;
    if (isShipped && isOutdated()) {
        const bool isFolderThere = AtomicFile::makePrivateFolder(QFileInfo(m_path).path());
        const bool isCopied = isFolderThere && AtomicFile::copy(m_defaultPath, m_path, &reason);
        if (!isFolderThere)
            reason = tr("The folder cannot be made.");
        if (isCopied)
            reason.clear();
    }
    QString readError;
    std::optional<XmlDocument> document = XmlDocument::read(m_path, &readError);
    if (document)
        return {CatalogueState::Ready, QString(), std::make_shared<const XmlDocument>(std::move(*document))};
    if (reason.isEmpty() || QFileInfo::exists(m_path))
        reason = readError;
    const QString text = tr("The catalogue \"%1\" could not be read, so what was loaded before stays in use.\n\n%2");
    return {CatalogueState::Damaged, text.arg(QDir::toNativeSeparators(m_path), reason), nullptr};
}
