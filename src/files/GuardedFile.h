#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <optional>

/// A file of the user's work. It is replaced as a whole; what this program has not read, because the file is damaged or
/// another program has changed it, is kept aside as a copy before it goes. What is written only its owner can read.
/// Main thread only.
class GuardedFile
{
    Q_DECLARE_TR_FUNCTIONS(GuardedFile)
public:
    /// What a writing came to, in words for the user.
    struct Outcome {
        QString error;    ///< empty if all is well
        QString keptCopy; ///< path of the copy of the former file, if one had to be kept aside

        bool isSuccess() const { return error.isEmpty(); }
    };

    /// What any file at `path` holds; nothing when that is more than `largestSize` bytes, or cannot be read. May block
    /// for as long as the disk does. Any thread.
    /// @param error  the reason in the user's language; may be null.
    static std::optional<QByteArray> readBounded(const QString &path, qint64 largestSize, QString *error = nullptr);

    /// @param largestSize  in bytes; a larger file counts as damaged.
    GuardedFile(QString path, qint64 largestSize);

    QString path() const { return m_path; }
    bool exists() const;
    /// Clears away what a killed program left of its last writing as well, and nothing else.
    /// @param error  why it cannot be read, in the user's language; must not be null.
    std::optional<QByteArray> read(QString *error);
    /// The caller has not made sense of all that was read: the next writing would lose some of it.
    void markDamaged() { m_isDamaged = true; }
    /// Makes the folder when it is missing, for its owner only.
    [[nodiscard]] Outcome write(const QByteArray &bytes);
    /// Does nothing when there is no file.
    [[nodiscard]] Outcome remove();

private:
    bool keepAside(Outcome *outcome);

    QString m_path;
    qint64 m_largestSize;
    QByteArray m_knownDigest; // of the file as it was last read, written or kept aside
    bool m_isDamaged = false;
};
