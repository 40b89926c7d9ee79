#pragma once

#include "WorkingCopy.h"

#include <QCoroTask>

#include <QCoreApplication>

#include <functional>

class Alerts;

/// Opens catalogues and tells the user about those that cannot be opened. Cheap to copy. Main thread only.
class CatalogueReader
{
    Q_DECLARE_TR_FUNCTIONS(CatalogueReader)
public:
    /// `alerts` outlives the reader. `terminate` ends the program; it is called when a catalogue is missing.
    CatalogueReader(CatalogueFolders folders, Alerts &alerts, std::function<void()> terminate);

    /// Resumes when the user has seen what there was to see; the document is there only when it is Ready.
    QCoro::Task<WorkingCopy::Result> open(WorkingCopy::Kind kind);

    const CatalogueFolders &folders() const { return m_folders; }

private:
    CatalogueFolders m_folders;
    Alerts *m_alerts;
    std::function<void()> m_terminate;
};
