#pragma once

#include "XmlDocument.h"

#include <QCoroTask>

#include <QCoreApplication>
#include <QString>

#include <functional>
#include <memory>

class Alerts;

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

/// Reads the catalogues from the user's own copies of the shipped files. A copy may be edited: it stays until the
/// program ships a newer file, and for ever when it is read-only. Replacing it is atomic. Cheap to copy.
class CatalogueReader
{
    Q_DECLARE_TR_FUNCTIONS(CatalogueReader)
public:
    enum class Kind { Gametypes, RankedSettings, UnrankedSettings, Maps };
    struct Result {
        CatalogueState state = CatalogueState::Ready;
        QString error; ///< what to tell the user unless Ready
        std::shared_ptr<const XmlDocument> document;
    };

    /// `alerts` outlives the reader. `terminate` ends the program; it is called when a catalogue is missing.
    CatalogueReader(CatalogueFolders folders, Alerts &alerts, std::function<void()> terminate);

    /// Hands the document to `take` when it is Ready, and tells the user when it is not. Main thread only.
    /// @return resumes when the user has seen what there was to see.
    QCoro::Task<CatalogueState> load(Kind kind, std::function<void(const XmlDocument &)> take);

    /// Brings the copy up to date with the shipped file and reads it. A copy that cannot be made is not reported as
    /// such, but as what it leaves to be read. Any thread; blocks for as long as the disk does.
    Result refreshAndRead(Kind kind) const;

    const CatalogueFolders &folders() const { return m_folders; }
    QString path(Kind kind) const; ///< of the user's copy
    QString shippedPath(Kind kind) const;

private:
    bool isOutdated(Kind kind) const;

    CatalogueFolders m_folders;
    Alerts *m_alerts;
    std::function<void()> m_terminate;
};
