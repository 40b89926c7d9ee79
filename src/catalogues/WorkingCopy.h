#pragma once

#include "XmlDocument.h"

#include <QCoreApplication>
#include <QString>

#include <memory>

/// Where catalogues are found.
struct CatalogueFolders {
    QString resources;          ///< shipped with the program; read only
    QString applicationSupport; ///< the user's
};

enum class CatalogueState {
    Ready,
    Missing, ///< neither shipped nor there: the program cannot go on
    Damaged, ///< there, but not readable; what was loaded before stays
};

/// The user's own copy of a shipped catalogue. It may be edited: it stays until the program ships a newer file, and for
/// ever when it is read-only. Replacing it is atomic. Any thread.
class WorkingCopy
{
    Q_DECLARE_TR_FUNCTIONS(WorkingCopy)
public:
    struct Kind {
        QString extension;
        QString missingText;
        /// A copy of any other version is replaced whatever its age; null where versions do not count.
        QString acceptedVersion;
    };
    struct Result {
        CatalogueState state = CatalogueState::Ready;
        QString error; ///< what to tell the user unless Ready
        std::shared_ptr<const XmlDocument> document;
    };

    static Kind gametypes();
    static Kind settings(bool isRanked);
    static Kind maps();

    WorkingCopy(const CatalogueFolders &folders, const Kind &kind);

    QString path() const { return m_path; }
    QString defaultPath() const { return m_defaultPath; }

    /// Brings the copy up to date with the shipped file and reads it. A copy that cannot be made is not reported as
    /// such, but as what it leaves to be read.
    Result refreshAndRead() const;

private:
    bool isOutdated() const;

    Kind m_kind;
    QString m_path;
    QString m_defaultPath;
};
