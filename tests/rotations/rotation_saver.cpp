#include "KelMapRotation.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "Wait.h"

/// Saves one rotation of 200 equal entries after another into a folder, until it is killed.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString folder = QCoreApplication::arguments().at(1);
    Preferences preferences(folder + QStringLiteral("/preferences.ini"));
    RecordedAlerts alerts;
    KelMapRotation store(preferences, alerts, folder);
    awaited(store.loadMapRotation());
    for (int generation = 0; alerts.shown().isEmpty(); ++generation) {
        store.deleteAllItems();
        const MapRotationInst entry{QString::number(generation), QString(50, 'x')};
        awaited(store.addEntries(QList<MapRotationInst>(200, entry)));
        const bool isSaved = awaited(store.saveUIChanges("n"));
        Q_ASSERT(isSaved);
    }
    return 1;
}
