#include "AppDelegate.h"

#include "Appearance.h"
#include "AtomicFile.h"
#include "DemoServer.h"
#include "FormMainView.h"
#include "IconKeepingStyle.h"
#include "PasswordEncryption.h"
#include "ResourceFolder.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

static CatalogueFolders catalogueFolders(const AppDelegate::Places &places)
{
    CatalogueFolders folders{places.resources, places.applicationSupport};
    if (folders.resources.isEmpty())
        folders.resources = resourceFolder();
    if (folders.applicationSupport.isEmpty())
        folders.applicationSupport = AppDelegate::applicationSupportDirectory();
    return folders;
}

AppDelegate::AppDelegate(const Places &places, const QString &guide)
    : m_guide(guide.isEmpty() ? guideFile() : guide), m_preferences(places.preferencesFile),
      m_server(m_exchange, m_alerts), m_reader(catalogueFolders(places), m_alerts, [this] { m_window->close(); }),
      m_gametypes(m_server, m_reader), m_settings(m_server, m_reader), m_maps(m_server, m_reader),
      m_playlists(m_server, m_gametypes, m_maps, m_alerts, m_reader.folders().resources),
      m_catalogues(m_gametypes, m_settings, m_maps, m_playlists),
      m_savedServers(m_reader.folders().applicationSupport + QStringLiteral("/SavedServers.plist"), userLoginName()),
      m_unknownDvars(m_preferences), m_fetcher(m_server, m_actions, m_unknownDvars),
      m_reconnecting(m_server, m_actions, m_alerts, m_fetcher),
      m_mapRotations(m_preferences, m_alerts, m_reader.folders().applicationSupport),
      m_messageRotations({m_preferences, m_alerts, m_server, m_actions}, m_reader.folders().applicationSupport)
{
    m_server.setCatalogueLoader(&m_catalogues);
    m_server.setHostLookup(&m_hostLookup);
    registerDefaults();
    QApplication::setStyle(new IconKeepingStyle); // which the application takes
    Appearance::apply(m_preferences.value(QStringLiteral("appearance")).toString());
    const Workplace workplace{m_server,  m_actions,      m_alerts,     m_preferences,
                              m_fetcher, m_reconnecting, m_catalogues, {m_mapRotations, m_messageRotations}};
    m_window = std::make_unique<FormMainView>(workplace, m_savedServers);
    m_alerts.setWindow(m_window.get());
    connect(m_window.get(), &FormMainView::demoServerRequested, this, &AppDelegate::tryDemoServer);
    connect(m_window.get(), &FormMainView::hostingGuideRequested, this, &AppDelegate::openHostingGuide);
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::registerDefaults()
{
    m_preferences.registerDefaults({{QStringLiteral("autoUpdatePlayersTime"), 30},
                                    {QStringLiteral("autoUpdatePlayers"), false},
                                    {QStringLiteral("autoupdateMaps"), false},
                                    {QStringLiteral("autoupdateMapsInterval"), 30}});
}

QString AppDelegate::applicationSupportDirectory()
{
    static const QString path = [] {
        const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        const QString folder = base + QStringLiteral("/Kelvard Ferrow Remote Console");
        // A folder that cannot be made shows when something is written into it.
        static_cast<void>(AtomicFile::makePrivateFolder(folder));
        return folder;
    }();
    return path;
}

void AppDelegate::openHostingGuide()
{
    QUrl section = QUrl::fromLocalFile(m_guide);
    section.setFragment(QStringLiteral("hosting"));
    if (QFileInfo::exists(m_guide) && QDesktopServices::openUrl(section))
        return;
    const QString usual = QStringLiteral("/usr/share/doc/ferrow-rcon/guide.md");
    m_window->reportFailure(tr("Guide Not Opened"),
                            tr("The section \"Hosting\" of the user's guide could not be opened. It stands in the file "
                               "\"%1\".")
                                .arg(m_guide.isEmpty() ? usual : QDir::toNativeSeparators(m_guide)));
}

void AppDelegate::tryDemoServer()
{
    if (m_demoServer == nullptr) {
        auto server = std::make_unique<DemoServer>(DemoOptions{});
        QString error;
        if (!server->start(&error)) {
            m_window->reportFailure(tr("Demo Server Failed"),
                                    tr("The demo server could not be started.\n\n%1").arg(error));
            return;
        }
        m_demoServer = std::move(server);
    }
    m_window->connectTo(ConnectTarget{tr("Demo Server"), QStringLiteral("127.0.0.1"),
                                      QString::number(m_demoServer->port()), m_demoServer->password(), nullptr});
}
