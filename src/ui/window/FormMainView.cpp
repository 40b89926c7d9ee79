#include "FormMainView.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "Appearance.h"
#include "ConfigBuilderView.h"
#include "ConsoleView.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "MapsView.h"
#include "MessagesView.h"
#include "PlaceholderTable.h"
#include "PlayersView.h"
#include "PlaylistsView.h"
#include "Preferences.h"
#include "RotationPane.h"
#include "SectionTable.h"
#include "ServersView.h"
#include "SettingsView.h"
#include "StatusLine.h"
#include "WelcomePage.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QSignalBlocker>
#include <QTimer>

#include <chrono>
#include <utility>

FormMainView::FormMainView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                           GameCatalogues catalogues, Rotations rotations, SavedServers &savedServers, QWidget *parent)
    : QMainWindow(parent), m_server(server), m_actions(actions), m_alerts(alerts), m_preferences(preferences),
      m_catalogues(catalogues), m_rotations(rotations), m_splitter(new QSplitter(this)),
      m_stack(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("FormMainView"));
    setWindowTitle(tr("Kelvard Ferrow Remote Console"));
    resize(1180, 720);
    restoreGeometry(m_preferences.value(QStringLiteral("window/geometry")).toByteArray());
    // First what needs no fonts: they are still being listed.
    create();
    makeMenus();
    // The Tab key goes through them in the order in which they are made.
    serversView = new ServersView(savedServers, actions, alerts, this);
    serversView->setObjectName(QStringLiteral("serversView"));
    tabControlMain = new QTabWidget(this);
    welcomePage = new WelcomePage(this);
    statusLine = new StatusLine(this);
    layOut();
    connectControls();
    m_splitter->setSizes({270, 910});
    m_splitter->restoreState(m_preferences.value(QStringLiteral("window/splitter")).toByteArray());
}

FormMainView::~FormMainView() = default;

void FormMainView::makeViews()
{
    if (!m_pages.isEmpty())
        return;
    serversView->loadSavedServersList();
    playersView = new PlayersView(m_server, m_actions, m_alerts, m_preferences, this);
    mapsView = new MapsView(m_server, m_actions, m_alerts, m_preferences, m_catalogues, m_rotations.maps, this);
    playlistsView = new PlaylistsView(m_server, m_actions, m_alerts, m_catalogues.gametypes, m_catalogues.maps,
                                      m_catalogues.playlists, this);
    unrankedSettingsView = new SettingsView(SettingsView::Mode::Unranked, m_server, m_actions, m_catalogues.settings,
                                            m_catalogues.gametypes, this);
    rankedSettingsView = new SettingsView(SettingsView::Mode::Ranked, m_server, m_actions, m_catalogues.settings,
                                          m_catalogues.gametypes, this);
    messagesView = new MessagesView(m_rotations.messages, m_actions, m_alerts, m_preferences, this);
    configBuilderView =
        new ConfigBuilderView(m_server, m_actions, m_alerts, m_catalogues.settings, m_catalogues.gametypes, this);
    connect(this, &FormMainView::configBuilderVisitedAgain, configBuilderView, &ConfigBuilderView::selectAllRows);
    consoleView = new ConsoleView(m_server, m_actions, this);
    const std::pair<QWidget *, const char *> names[] = {{playersView, "playersView"},
                                                        {mapsView, "mapsView"},
                                                        {playlistsView, "playlistsView"},
                                                        {unrankedSettingsView, "unrankedSettingsView"},
                                                        {rankedSettingsView, "rankedSettingsView"},
                                                        {messagesView, "messagesView"},
                                                        {configBuilderView, "configBuilderView"},
                                                        {consoleView, "consoleView"}};
    for (const auto &[page, name] : names)
        page->setObjectName(QString::fromLatin1(name));
    insertViews();
    m_undoGroup.addStack(mapsView->rotationPane->undoStack());
    m_undoGroup.addStack(messagesView->rotationPane->undoStack());
    fillPlayersMenu();
    fillMapsMenu();
    fillMessagesMenu();
    fillConfigurationMenu();
    restoreViewLayouts();
}

void FormMainView::insertViews()
{
    m_pages.insert(TabItem::Players, playersView);
    m_pages.insert(TabItem::Maps, mapsView);
    m_pages.insert(TabItem::Playlists, playlistsView);
    m_pages.insert(TabItem::UnrankedSettings, unrankedSettingsView);
    m_pages.insert(TabItem::RankedSettings, rankedSettingsView);
    m_pages.insert(TabItem::Messages, messagesView);
    m_pages.insert(TabItem::ConfigBuilder, configBuilderView);
    m_pages.insert(TabItem::Console, consoleView);
    for (QWidget *page : std::as_const(m_pages))
        page->hide();
    playersView->setFocusProxy(playersView->playersTableView);
    mapsView->setFocusProxy(mapsView->mapListView);
    playlistsView->setFocusProxy(playlistsView->playlistsTableView);
    unrankedSettingsView->setFocusProxy(unrankedSettingsView->settingsGroupList);
    rankedSettingsView->setFocusProxy(rankedSettingsView->settingsGroupList);
    messagesView->setFocusProxy(messagesView->rotationPane->tableView);
    configBuilderView->setFocusProxy(configBuilderView->configBuilderGeneralSettingsTable);
}

void FormMainView::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    // A window that opens minimised paints nothing yet, and gets its views all the same.
    QTimer::singleShot(std::chrono::milliseconds(500), this, &FormMainView::makeViews);
}

void FormMainView::paintEvent(QPaintEvent *event)
{
    QMainWindow::paintEvent(event);
    if (std::exchange(m_hasPainted, true))
        return;
    // After the first frame, so that it comes as early as it can.
    QTimer::singleShot(0, this, [this] {
        emit firstFrameShown();
        makeViews();
    });
}

void FormMainView::layOut()
{
    tabControlMain->setObjectName(QStringLiteral("tabControlMain"));
    tabControlMain->setAccessibleName(tr("Server"));
    tabControlMain->setDocumentMode(true);
    m_stack->addWidget(welcomePage);
    m_stack->addWidget(tabControlMain);
    m_splitter->setObjectName(QStringLiteral("mainSplitter"));
    m_splitter->addWidget(serversView);
    m_splitter->addWidget(m_stack);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    setCentralWidget(m_splitter);
    setStatusBar(statusLine);
    statusLine->setStatus(tr("Not connected"));
    serversView->hostField->setFocus();
}

void FormMainView::connectControls()
{
    connect(serversView, &ServersView::connectButtonPressed, this, &FormMainView::connectButtonPressed);
    connect(serversView, &ServersView::savedServerChosen, this, &FormMainView::connectToSavedServer);
    connect(serversView, &ServersView::disconnectButtonPressed, this, &FormMainView::disconnectButtonPressed);
    connect(welcomePage->tryDemoServerButton, &QPushButton::clicked, this, &FormMainView::demoServerRequested);
    connect(tabControlMain, &QTabWidget::currentChanged, this, &FormMainView::selectedTabDidChange);
    connect(&m_server, &KelServer::tabItemsChanged, this, &FormMainView::arrangeTabs);
    connect(&m_server, &KelServer::lastTabRequested, this, [this] { bringToFront(tabControlMain->count() - 1); });
    connect(&m_server, &KelServer::connectionBegan, &m_actions, &ActionQueue::refuseWaiting);
    connect(&m_server, &KelServer::isConnectedChanged, serversView, &ServersView::setConnected);
    connect(&m_server, &KelServer::connectProgressed, statusLine, &StatusLine::setProgress);
    connect(&m_actions, &ActionQueue::busyChanged, statusLine, &StatusLine::setBusy);
    connect(&m_actions, &ActionQueue::faulted, this,
            [this](const QString &what) { reportFailure(tr("Internal Error"), what); });
}

void FormMainView::reportFailure(const QString &title, const QString &text)
{
    m_actions.start(tell(title, text));
}

QCoro::Task<> FormMainView::tell(QString title, QString text)
{
    co_await m_alerts.run(title, text);
}

void FormMainView::bringToFront(int tab)
{
    const bool isFocusInside = tabControlMain->isAncestorOf(focusWidget());
    tabControlMain->setCurrentIndex(tab);
    if (isFocusInside)
        tabControlMain->currentWidget()->setFocus();
}

void FormMainView::arrangeTabs()
{
    // From the form the focus goes to what has been connected to; from a tab that goes away, to its successor.
    const bool takesFocus = m_stack->currentWidget() == welcomePage || tabControlMain->isAncestorOf(focusWidget());
    {
        makeViews();
        const QSignalBlocker blocker(tabControlMain); // the tabs in between are nobody's choice
        tabControlMain->clear();
        for (const TabItem item : m_server.tabItems())
            tabControlMain->addTab(m_pages.value(item), tr(tabLabel(item).toUtf8().constData()));
    }
    tabControlMain->setCurrentIndex(0);
    m_stack->setCurrentWidget(tabControlMain);
    if (takesFocus)
        tabControlMain->currentWidget()->setFocus();
    selectedTabDidChange();
}

void FormMainView::selectedTabDidChange()
{
    const int index = tabControlMain->currentIndex();
    const QList<TabItem> items = m_server.tabItems();
    const bool isShown = index >= 0 && index < items.size();
    if (playersView == nullptr)
        return;
    const QString label = isShown ? tabLabel(items.at(index)) : QString();
    playersView->setSelectedTabLabel(label);
    countConfigBuilderVisit(label);
    RotationPane *pane = currentRotationPane();
    m_undoGroup.setActiveStack(pane == nullptr ? nullptr : pane->undoStack());
}

void FormMainView::countConfigBuilderVisit(const QString &label)
{
    static int visits = 0;
    if (label == tabLabel(TabItem::ConfigBuilder) && ++visits == 2)
        emit configBuilderVisitedAgain();
}

QList<std::pair<const char *, QHeaderView *>> FormMainView::tableHeaders() const
{
    return {{"window/playersTable", playersView->playersTableView->horizontalHeader()},
            {"window/serverRotation", mapsView->mapServerRotationTableView->horizontalHeader()},
            {"window/rotationBuilder", mapsView->rotationPane->tableView->horizontalHeader()},
            {"window/messages", messagesView->rotationPane->tableView->horizontalHeader()},
            {"window/configGroups", configBuilderView->configBuilderGeneralSettingsTable->horizontalHeader()},
            {"window/configGametypes", configBuilderView->configBuilderGametypeSettingsTable->horizontalHeader()}};
}

void FormMainView::restoreViewLayouts()
{
    const auto saved = [this](const char *key) {
        return m_preferences.value(QLatin1String(key)).toByteArray();
    };
    for (const auto &[key, header] : tableHeaders()) {
        const QByteArray state = saved(key);
        if (!state.isEmpty())
            header->restoreState(state);
    }
    playlistsView->restoreLayout(saved("window/playlists"));
    unrankedSettingsView->restoreLayout(saved("window/unrankedSettings"));
    rankedSettingsView->restoreLayout(saved("window/rankedSettings"));
}

void FormMainView::saveLayout()
{
    m_preferences.setValue(QStringLiteral("window/geometry"), saveGeometry());
    m_preferences.setValue(QStringLiteral("window/splitter"), m_splitter->saveState());
    if (playersView == nullptr)
        return;
    for (const auto &[key, header] : tableHeaders())
        m_preferences.setValue(QLatin1String(key), header->saveState());
    m_preferences.setValue(QStringLiteral("window/playlists"), playlistsView->saveLayout());
    m_preferences.setValue(QStringLiteral("window/unrankedSettings"), unrankedSettingsView->saveLayout());
    m_preferences.setValue(QStringLiteral("window/rankedSettings"), rankedSettingsView->saveLayout());
}

void FormMainView::closeEvent(QCloseEvent *event)
{
    saveLayout();
    finishEditing();
    if (m_rotations.maps.hasUnsavedWork() || m_rotations.messages.hasUnsavedWork()) {
        event->ignore();
        if (!std::exchange(m_isAskingToClose, true))
            m_actions.start(closeAfterQuestion());
        return;
    }
    m_rotations.messages.stopRotation();
    m_actions.close(); // or a timer that comes due would start the next action
    if (m_actions.isIdle()) {
        event->accept();
        return;
    }
    event->ignore(); // come back when the last action has let go
    m_server.cancelExchange();
    connect(&m_actions, &ActionQueue::idle, this, &QWidget::close,
            Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
}
