#include "FormMainView.h"

#include "ActionQueue.h"
#include "DvarFetcher.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelServer.h"
#include "LayoutMemory.h"
#include "LinkStatus.h"
#include "MainMenuBar.h"
#include "MainTabs.h"
#include "OutcomeLabel.h"
#include "Preferences.h"
#include "Reconnecting.h"
#include "ServersView.h"
#include "StatusLine.h"
#include "TabPage.h"
#include "UnsavedWork.h"
#include "WelcomePage.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyle>

#include <algorithm>
#include <utility>

FormMainView::FormMainView(const Workplace &workplace, SavedServers &savedServers, QWidget *parent)
    : QMainWindow(parent), m_workplace(workplace), m_splitter(new QSplitter(this)), m_stack(new QStackedWidget(this)),
      // The Tab key goes through them in the order in which they are made.
      serversView(new ServersView(savedServers, workplace.actions, workplace.alerts, this)),
      tabControlMain(new MainTabs(workplace, this)), welcomePage(new WelcomePage(this)),
      statusLine(new StatusLine(this)),
      m_unsavedWork(std::make_unique<UnsavedWork>(*tabControlMain, workplace.rotations)),
      m_connecting(new Connecting(workplace, {*serversView, *tabControlMain, *statusLine, *m_unsavedWork}, this))
{
    setObjectName(QStringLiteral("FormMainView"));
    setWindowTitle(tr("Kelvard Ferrow Remote Console"));
    makeMenus();
    layOut();
    restoreLayout();
    connectParts();
}

FormMainView::~FormMainView() = default;

void FormMainView::makeMenus()
{
    auto *menus = new MainMenuBar(*tabControlMain, *serversView, m_workplace.server, m_workplace.preferences, this);
    connect(menus, &MainMenuBar::demoServerRequested, this, &FormMainView::demoServerRequested);
    connect(menus, &MainMenuBar::hostingGuideRequested, this, &FormMainView::hostingGuideRequested);
    connect(menus, &MainMenuBar::aboutRequested, this, &FormMainView::showAbout);
    connect(menus, &MainMenuBar::quitRequested, this, &QWidget::close);
    setMenuBar(menus);
}

void FormMainView::layOut()
{
    serversView->setObjectName(QStringLiteral("serversView"));
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
    serversView->focusForm();
}

void FormMainView::connectParts()
{
    KelServer &server = m_workplace.server;
    ActionQueue &actions = m_workplace.actions;
    connect(welcomePage, &WelcomePage::demoServerRequested, this, &FormMainView::demoServerRequested);
    connect(serversView, &ServersView::hostwellButtonPressed, this, &FormMainView::hostingGuideRequested);
    connect(&server, &KelServer::tabSetChanged, this, &FormMainView::arrangeTabs);
    connect(&server, &KelServer::lastTabRequested, tabControlMain, &MainTabs::bringLastToFront);
    connect(&server, &KelServer::connectionBegan, &actions, &ActionQueue::refuseWaiting);
    connect(&server, &KelServer::isConnectedChanged, serversView, &ServersView::setConnected);
    connect(&m_workplace.fetcher, &DvarFetcher::progressed, statusLine, &StatusLine::setProgress);
    connect(&server, &KelServer::isConnectedChanged, statusLine, [this] { statusLine->setProgress(0, 0); });
    connect(&m_workplace.fetcher, &DvarFetcher::finished, this, &FormMainView::tellOfUnknownSettings);
    auto *link = new LinkStatus(server.link(), statusLine);
    connect(link, &LinkStatus::tryNowRequested, &m_workplace.reconnecting, &Reconnecting::tryNow);
    connect(link, &LinkStatus::passwordRequested, m_connecting, &Connecting::askForNewPassword);
    statusLine->addLink(link);
    connect(&server.link(), &Link::busyChanged, statusLine, &StatusLine::setBusy);
    connectOutcomes();
    connect(&actions, &ActionQueue::faulted, this,
            [this](const QString &what) { reportFailure(tr("Internal Error"), what); });
}

void FormMainView::connectOutcomes()
{
    KelServer &server = m_workplace.server;
    auto *label = new OutcomeLabel(statusLine);
    statusLine->insertWidget(1, label, 1);
    connect(&server, &KelServer::outcomeKnown, label, &OutcomeLabel::tell);
    connect(&server, &KelServer::connectionBegan, label, &OutcomeLabel::forget);
    connect(&server, &KelServer::isConnectedChanged, label, &OutcomeLabel::forget);
    const auto tellSaved = [&server](const QString &name) {
        const QString text = tr("Saved rotation \"%1\"").arg(name);
        server.tellOutcome({Outcome::Kind::File, tr("Save"), {name}, text, true, QDateTime::currentDateTime()});
    };
    connect(&m_workplace.rotations.maps, &RotationStore::rotationSaved, this, tellSaved);
    connect(&m_workplace.rotations.messages, &RotationStore::rotationSaved, this, tellSaved);
}

void FormMainView::tellOfUnknownSettings(int unknown, int total)
{
    if (unknown > 0)
        m_workplace.server.console().appendConsoleNote(
            tr("%n of %1 catalogued settings are not on this server", nullptr, unknown).arg(total));
}

void FormMainView::connectTo(ConnectTarget target)
{
    m_connecting->connectTo(std::move(target));
}

void FormMainView::connectByCommandLine(const QString &target, const QString &password)
{
    m_connecting->connectByCommandLine(target, password);
}

void FormMainView::reportFailure(const QString &title, const QString &text)
{
    m_workplace.actions.start(tell(title, text, AlertManner()));
}

QCoro::Task<> FormMainView::tell(QString title, QString text, AlertManner manner)
{
    const QStringList justOk;
    co_await m_workplace.alerts.run(title, text, justOk, manner);
}

void FormMainView::showAbout()
{
    const QString text = tr("Version %1\n\nSees and runs the dedicated server of your game from your desk.")
                             .arg(QGuiApplication::applicationVersion());
    m_workplace.actions.start(tell(tr("Kelvard Ferrow Remote Console"), text, AlertManner{.isGoodNews = true}));
}

void FormMainView::arrangeTabs()
{
    // After a connect the focus leaves the form for the tab in front; a tab that goes away hands it to the next.
    const bool takesFocus = m_stack->currentWidget() == welcomePage || tabControlMain->isAncestorOf(focusWidget());
    tabControlMain->arrange(m_workplace.server.tabSet());
    m_stack->setCurrentWidget(tabControlMain);
    if (takesFocus)
        tabControlMain->currentWidget()->setFocus();
}

void FormMainView::restoreLayout()
{
    const Preferences &preferences = m_workplace.preferences;
    resize(1180, 720);
    restoreGeometry(preferences.value(QStringLiteral("window/geometry")).toByteArray());
    fitIntoScreen();
    m_splitter->setSizes({270, 910});
    LayoutMemory::restore(*this, preferences);
}

void FormMainView::fitIntoScreen()
{
    if (isMaximized() || isFullScreen()) // the window system places such a window
        return;
    const QScreen *place = QGuiApplication::screenAt(geometry().center());
    const QRect room = (place == nullptr ? screen() : place)->availableGeometry();
    QMargins frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0); // a guess while there is no frame
    if (frameGeometry() != geometry())
        frame = QMargins(geometry().left() - frameGeometry().left(), geometry().top() - frameGeometry().top(),
                         frameGeometry().right() - geometry().right(), frameGeometry().bottom() - geometry().bottom());
    const QRect inside = room.marginsRemoved(frame);
    QRect fitting(pos(), size().boundedTo(inside.size()));
    fitting.moveTopLeft(geometry().topLeft());
    fitting.moveRight(std::min(fitting.right(), inside.right()));
    fitting.moveBottom(std::min(fitting.bottom(), inside.bottom()));
    fitting.moveLeft(std::max(fitting.left(), inside.left()));
    fitting.moveTop(std::max(fitting.top(), inside.top()));
    if (fitting != geometry())
        setGeometry(fitting);
}

void FormMainView::saveLayout()
{
    Preferences &preferences = m_workplace.preferences;
    preferences.setValue(QStringLiteral("window/geometry"), saveGeometry());
    LayoutMemory::save(*this, preferences);
}

bool FormMainView::event(QEvent *event)
{
    // The window system frames a window when it shows it, so the size of the frame is known only now.
    if (event->type() == QEvent::WindowActivate && !std::exchange(m_hasBeenActive, true))
        fitIntoScreen();
    return QMainWindow::event(event);
}

void FormMainView::closeEvent(QCloseEvent *event)
{
    saveLayout();
    m_unsavedWork->finishEditing();
    if (m_unsavedWork->isAny()) {
        event->ignore();
        // The user may answer "Cancel": what an earlier attempt to close has prepared is taken back.
        m_workplace.actions.reopen();
        disconnect(&m_workplace.actions, &ActionQueue::idle, this, &QWidget::close);
        if (!std::exchange(m_isAskingToClose, true))
            m_workplace.actions.start(closeAfterQuestion());
        return;
    }
    m_workplace.rotations.messages.stopRotation();
    m_workplace.actions.close(); // a timer must not start another action
    if (m_workplace.actions.isIdle()) {
        event->accept();
        return;
    }
    event->ignore(); // the window closes when the last action has ended
    m_workplace.server.cancelExchange();
    connect(&m_workplace.actions, &ActionQueue::idle, this, &QWidget::close,
            Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection | Qt::UniqueConnection));
}

QCoro::Task<> FormMainView::closeAfterQuestion()
{
    const bool goesOn = co_await m_unsavedWork->settle();
    m_isAskingToClose = false;
    if (!goesOn)
        co_return;
    m_unsavedWork->giveUp();
    close();
}
