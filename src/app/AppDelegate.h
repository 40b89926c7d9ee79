#pragma once

#include "ActionQueue.h"
#include "Catalogues.h"
#include "DvarFetcher.h"
#include "HostLookup.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "Preferences.h"
#include "RConExchange.h"
#include "Reconnecting.h"
#include "SavedServers.h"
#include "SheetAlerts.h"
#include "UnknownDvars.h"

#include <memory>

class DemoServer;
class FormMainView;

/// The application: what lives as long as the process, and the window. Needs a QApplication.
class AppDelegate : public QObject
{
    Q_OBJECT
public:
    /// Where things are kept. An empty text means the usual place.
    struct Places {
        QString preferencesFile;
        QString resources;
        QString applicationSupport;
    };

    /// @param guide  the file of the user's guide; empty means the usual place.
    explicit AppDelegate(const Places &places = {}, const QString &guide = {});
    ~AppDelegate() override;

    /// The folder for the user's work. Made at the first call, readable by its owner only; the same on every call.
    static QString applicationSupportDirectory();

    FormMainView &window() { return *m_window; }
    ActionQueue &actions() { return m_actions; }
    KelServer &server() { return m_server; }

    /// Starts the demo server on this computer, if it does not run yet, and connects to it.
    void tryDemoServer();

private:
    void registerDefaults();
    void openHostingGuide();

    QString m_guide;
    Preferences m_preferences;
    SheetAlerts m_alerts;
    RConExchange m_exchange;
    SystemHostLookup m_hostLookup;
    KelServer m_server;
    CatalogueReader m_reader;
    KelGametype m_gametypes;
    KelSettings m_settings;
    KelMapList m_maps;
    KelPlaylists m_playlists;
    Catalogues m_catalogues;
    SavedServers m_savedServers;
    ActionQueue m_actions;
    UnknownDvars m_unknownDvars;
    DvarFetcher m_fetcher;
    Reconnecting m_reconnecting;
    KelMapRotation m_mapRotations;
    KelMessageRotation m_messageRotations;
    std::unique_ptr<DemoServer> m_demoServer;
    std::unique_ptr<FormMainView> m_window;
};
