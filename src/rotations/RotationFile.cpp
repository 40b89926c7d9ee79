#include "RotationFile.h"

#include "RotationXml.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <utility>

RotationFile::RotationFile(const QString &path, QByteArray rootElement)
    : GuardedFile(path, rotationReading.maximumSize), m_rootElement(std::move(rootElement))
{
}

std::optional<XmlDocument> RotationFile::readDocument(QString *error)
{
    const std::optional<QByteArray> bytes = read(error);
    if (!bytes)
        return std::nullopt;
    std::optional<XmlDocument> document = XmlDocument::parse(*bytes, error, rotationReading);
    if (!document)
        markDamaged();
    return document;
}

void RotationFile::removeStaleTemporaries() const
{
    const QFileInfo file(path());
    const QDir folder = file.absoluteDir();
    const QStringList names =
        folder.entryList({file.fileName() + QStringLiteral(".??????")}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    const QDateTime newest = QDateTime::currentDateTime().addSecs(-60);
    for (const QString &name : names) {
        const QString path = folder.filePath(name);
        if (QFileInfo(path).lastModified() < newest && isOwnTemporary(path))
            QFile::remove(path);
    }
}

/// Passing names end in six letters by chance. One that could be a word, such as "backup", may be a copy that the user
/// has made, and is left alone.
bool RotationFile::isOwnTemporary(const QString &path) const
{
    static const QRegularExpression word(QStringLiteral("^(?:[a-z]+|[A-Z]+|[A-Z][a-z]+)$"));
    static const QRegularExpression letters(QStringLiteral("^[A-Za-z]{6}$"));
    const QString ending = QFileInfo(path).suffix();
    if (!letters.match(ending).hasMatch() || word.match(ending).hasMatch())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray start = '<' + m_rootElement;
    const QByteArray found = file.read(start.size());
    return start.startsWith(found);
}
