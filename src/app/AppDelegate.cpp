#include "AppDelegate.h"

#include "Appearance.h"
#include "DemoServer.h"
#include "FormMainView.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

AppDelegate::AppDelegate(const QString &preferencesFile)
    : m_preferences(preferencesFile), m_server(m_exchange, m_alerts)
{
    registerDefaults();
    Appearance::apply(m_preferences.value(QStringLiteral("appearance")).toString());
    m_window = std::make_unique<FormMainView>(m_server, m_actions, m_alerts, m_preferences);
    m_alerts.setWindow(m_window.get());
    connect(m_window.get(), &FormMainView::demoServerRequested, this, &AppDelegate::tryDemoServer);
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
        const bool isThere = QDir(folder).exists();
        // A folder that cannot be made shows when something is written into it.
        if (!isThere && QDir().mkpath(folder))
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return folder;
    }();
    return path;
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
