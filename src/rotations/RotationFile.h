#pragma once

#include "XmlDocument.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <optional>

/// The file of the rotations of one kind. It is replaced as a whole; what this program has not read, because the file
/// is damaged or another program has changed it, is kept aside as a copy before it goes. Main thread only.
class RotationFile
{
    Q_DECLARE_TR_FUNCTIONS(RotationFile)
public:
    /// What a writing came to, in words for the user.
    struct Outcome {
        QString error;    ///< empty if all is well
        QString keptCopy; ///< path of the copy of the former file, if one had to be kept aside

        bool isSuccess() const { return error.isEmpty(); }
    };

    /// @param rootElement  begins every file of this kind.
    RotationFile(QString path, QByteArray rootElement);

    QString path() const { return m_path; }
    bool exists() const;
    /// @param error  why it cannot be read, in the user's language; must not be null.
    std::optional<XmlDocument> read(QString *error);
    /// Makes the folder when it is missing, for its owner only.
    [[nodiscard]] Outcome write(const QByteArray &bytes);
    /// Does nothing when there is no file.
    [[nodiscard]] Outcome remove();
    /// Removes what a save has left behind that was killed more than a minute ago.
    void removeStaleTemporaries() const;

private:
    bool keepAside(Outcome *outcome);
    bool isOwnTemporary(const QString &path) const;

    QString m_path;
    QByteArray m_rootElement;
    QByteArray m_knownDigest; // of the file as it was last read, written or kept aside
    bool m_isDamaged = false;
};
