#include "BoundedFile.h"

#include <QFile>
#include <QFileInfo>

std::optional<QByteArray> BoundedFile::read(const QString &path, qint64 largestSize, QString *error)
{
    const QFileInfo info(path);
    QString reason;
    if (info.exists() && !info.isFile()) { // opening a pipe would wait for its writer
        reason = tr("It is not a file.");
    } else {
        QFile file(path);
        QByteArray bytes;
        if (file.open(QIODevice::ReadOnly))
            bytes = file.read(largestSize + 1);
        if (file.error() == QFileDevice::NoError && bytes.size() <= largestSize)
            return bytes;
        reason = file.error() != QFileDevice::NoError ? file.errorString()
                                                      : tr("It is larger than %1 MB.").arg(largestSize / (1024 * 1024));
    }
    if (error)
        *error = reason;
    return std::nullopt;
}
