#pragma once

#include "MapRotation.h"
#include "RotationStoreOf.h"
#include "SharedInstance.h"

/// The store of map rotations and the rows of the rotation builder. Main thread only.
class KelMapRotation final : public RotationStoreOf<MapRotationInst>
{
    Q_OBJECT
public:
    /// @param folder  where the file is; preferences and alerts outlive the store. The latest store made is the shared
    /// one.
    KelMapRotation(Preferences &preferences, Alerts &alerts, const QString &folder, QObject *parent = nullptr);

    /// @return the latest store made, or null.
    static KelMapRotation *sharedKelMapRotation() { return SharedInstance<KelMapRotation>::latest(); }

    /// Reads the file anew and opens the rotation that was open; keeps everything when there is no file to read.
    QCoro::Task<> loadMapRotation() { return load(); }
    Dictionary mapRotationList() const { return dictionary(); }

    /// Appends one row before the first wait; alerts when the table is full.
    QCoro::Task<> addToRotation(QString map, QString gametype);

private:
    SharedInstance<KelMapRotation> m_shared{this};
};
