#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <optional>

/// Files from outside, of which no more is taken into memory than is useful. Any thread.
class BoundedFile
{
    Q_DECLARE_TR_FUNCTIONS(BoundedFile)
public:
    BoundedFile() = delete;

    /// What the file at `path` holds; nothing when that is more than `largestSize` bytes, or cannot be read. May block
    /// for as long as the disk does.
    /// @param error  the reason in the user's language; may be null.
    static std::optional<QByteArray> read(const QString &path, qint64 largestSize, QString *error = nullptr);
};
