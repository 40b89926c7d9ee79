#include "FormMainView.h"

#include "ActionQueue.h"
#include "Appearance.h"
#include "ConfigBuilderView.h"
#include "KelServer.h"
#include "MapsView.h"
#include "MessagesView.h"
#include "PlayersView.h"
#include "Preferences.h"
#include "RotationPane.h"
#include "ServersView.h"
#include "WelcomePage.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

void FormMainView::makeMenus()
{
    makeFileMenu();
    makeEditMenu();
    makeServerMenu();
    m_playersMenu = menuBar()->addMenu(tr("&Players"));
    m_mapsMenu = menuBar()->addMenu(tr("&Maps"));
    m_messagesMenu = menuBar()->addMenu(tr("Mess&ages"));
    m_configurationMenu = menuBar()->addMenu(tr("&Configuration"));
    showMenuWithTab(m_mapsMenu, TabItem::Maps);
    showMenuWithTab(m_messagesMenu, TabItem::Messages);
    showMenuWithTab(m_configurationMenu, TabItem::ConfigBuilder);
    makeViewMenu();
    QMenu *help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("Try the &Demo Server"), this, &FormMainView::demoServerRequested);
    help->addAction(tr("Server &Hosting"), this, [this] { serversView->hostwellButtonPressed(); });
    QAction *about = help->addAction(tr("&About"), this, &FormMainView::showAbout);
    about->setMenuRole(QAction::AboutRole);
}

/// A menu for a tab that this server's mode does not have would act on what cannot be seen.
void FormMainView::showMenuWithTab(QMenu *menu, TabItem item)
{
    connect(&m_server, &KelServer::tabItemsChanged, menu,
            [this, menu, item] { menu->menuAction()->setVisible(m_server.tabItems().contains(item)); });
}

RotationPane *FormMainView::currentRotationPane() const
{
    const QWidget *page = tabControlMain->currentWidget();
    if (page == nullptr || m_stack->currentWidget() != tabControlMain)
        return nullptr;
    if (page == mapsView)
        return mapsView->rotationPane;
    return page == messagesView ? messagesView->rotationPane : nullptr;
}

void FormMainView::makeFileMenu()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    QList<QAction *> rotationActions;
    const auto add = [&](const QString &text, QKeySequence::StandardKey key, void (RotationPane::*slot)()) {
        rotationActions.append(file->addAction(text, QKeySequence(key), this, [this, slot] {
            if (RotationPane *pane = currentRotationPane())
                (pane->*slot)();
        }));
    };
    add(tr("&New Rotation…"), QKeySequence::New, &RotationPane::newRotationMenuItemClicked);
    add(tr("&Open Rotation…"), QKeySequence::Open, &RotationPane::openRotationMenuItemClicked);
    add(tr("&Save Rotation"), QKeySequence::Save, &RotationPane::saveRotationMenuItemClicked);
    // Grey in the menu where there is no rotation to act on; the shortcuts ask for themselves.
    connect(file, &QMenu::aboutToShow, this, [this, rotationActions] {
        for (QAction *action : rotationActions)
            action->setEnabled(currentRotationPane() != nullptr);
    });
    connect(file, &QMenu::aboutToHide, this, [rotationActions] {
        for (QAction *action : rotationActions)
            action->setEnabled(true);
    });
    file->addSeparator();
    file->addAction(tr("Save &Player List…"), QKeySequence(tr("Ctrl+Shift+S")), this, [this] {
        makeViews();
        playersView->savePlayerListButtonPressed();
    });
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"), QKeySequence(tr("Ctrl+Q")), this, &QWidget::close);
    quit->setMenuRole(QAction::QuitRole);
}

void FormMainView::makeEditMenu()
{
    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    QAction *undo = m_undoGroup.createUndoAction(edit, tr("&Undo"));
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = m_undoGroup.createRedoAction(edit, tr("&Redo"));
    redo->setShortcut(QKeySequence::Redo);
    edit->addActions({undo, redo});
}

void FormMainView::makeServerMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Server"));
    QAction *connectAction = menu->addAction(tr("&Connect"), QKeySequence(tr("Ctrl+Return")), this,
                                             [this] { serversView->connectButton->click(); });
    menu->addAction(tr("&Disconnect"), QKeySequence(tr("Ctrl+D")), this, &FormMainView::disconnectButtonPressed);
    connect(menu, &QMenu::aboutToShow, connectAction,
            [this, connectAction] { connectAction->setEnabled(serversView->connectButton->isEnabled()); });
    connect(menu, &QMenu::aboutToHide, connectAction, [connectAction] { connectAction->setEnabled(true); });
}

/// Repeats a button in a menu.
static void addButtonAction(QMenu *menu, const QString &text, const QKeySequence &keys, QPushButton *button)
{
    QAction *action = menu->addAction(text, keys, button, &QPushButton::click);
    // Grey in the menu when grey in the window; the shortcut itself asks the button.
    QObject::connect(menu, &QMenu::aboutToShow, action, [action, button] { action->setEnabled(button->isEnabled()); });
    QObject::connect(menu, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
}

void FormMainView::fillPlayersMenu()
{
    QMenu *menu = m_playersMenu;
    addButtonAction(menu, tr("&Refresh"), QKeySequence::Refresh, playersView->refreshPlayersButton);
    menu->addSeparator();
    addButtonAction(menu, tr("&Message…"), QKeySequence(tr("Ctrl+M")), playersView->messagePlayerButton);
    addButtonAction(menu, tr("&Kick"), QKeySequence(tr("Ctrl+K")), playersView->kickPlayerButton);
    addButtonAction(menu, tr("&Temp Ban"), QKeySequence(), playersView->tempBanPlayerButton);
    addButtonAction(menu, tr("&Ban"), QKeySequence(), playersView->banPlayerButton);
    menu->addSeparator();
    addButtonAction(menu, tr("Kick &All…"), QKeySequence(), playersView->kickAllButton);
}

void FormMainView::fillMapsMenu()
{
    QMenu *menu = m_mapsMenu;
    addButtonAction(menu, tr("&Refresh"), QKeySequence(), mapsView->refreshCurrentMapButton);
    addButtonAction(menu, tr("Restart &Map"), QKeySequence(), mapsView->restartMapButton);
    addButtonAction(menu, tr("&Fast Restart"), QKeySequence(), mapsView->fastRestartMapButton);
    addButtonAction(menu, tr("Ne&xt Map"), QKeySequence(), mapsView->startNextMapButton);
    addButtonAction(menu, tr("&Load Map"), QKeySequence(), mapsView->loadMapButton);
    menu->addSeparator();
    addButtonAction(menu, tr("&Copy Server's Rotation to Builder"), QKeySequence(), mapsView->copyToBuilderButton);
    addButtonAction(menu, tr("&Add Map…"), QKeySequence(), mapsView->addMapButton);
    addButtonAction(menu, tr("Set Rotation &on Server"), QKeySequence(), mapsView->setBuiltRotationButton);
}

void FormMainView::fillMessagesMenu()
{
    QMenu *menu = m_messagesMenu;
    addButtonAction(menu, tr("&Add Message…"), QKeySequence(), messagesView->addMessageButton);
    menu->addSeparator();
    addButtonAction(menu, tr("&Start"), QKeySequence(), messagesView->buttonStartMessageRotation);
    addButtonAction(menu, tr("S&top"), QKeySequence(), messagesView->buttonStopMessageRotation);
}

void FormMainView::fillConfigurationMenu()
{
    QMenu *menu = m_configurationMenu;
    addButtonAction(menu, tr("&Save Config…"), QKeySequence(), configBuilderView->saveConfigButton);
    addButtonAction(menu, tr("&Load Config…"), QKeySequence(), configBuilderView->loadConfigButton);
    addButtonAction(menu, tr("&Compare With File…"), QKeySequence(), configBuilderView->compareConfigButton);
}

void FormMainView::makeViewMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&View"));
    constexpr int mostTabs = 7;
    for (int tab = 0; tab < mostTabs; ++tab) {
        QAction *action =
            menu->addAction(QString(), QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_1 + tab)), this, [this, tab] {
                tabControlMain->setCurrentIndex(tab);
                tabControlMain->currentWidget()->setFocus();
            });
        const auto rename = [this, action, tab] {
            const QList<TabItem> items = m_server.tabItems();
            action->setVisible(tab < items.size());
            if (tab < items.size())
                action->setText(tr(tabLabel(items.at(tab)).toUtf8().constData()));
        };
        connect(&m_server, &KelServer::tabItemsChanged, action, rename);
        rename();
    }
    menu->addSeparator();
    QMenu *appearance = menu->addMenu(tr("&Appearance"));
    auto *group = new QActionGroup(appearance);
    const QList<std::pair<QString, QString>> choices{{tr("&System"), QStringLiteral("system")},
                                                     {tr("&Light"), QStringLiteral("light")},
                                                     {tr("&Dark"), QStringLiteral("dark")}};
    const QString current = m_preferences.value(QStringLiteral("appearance")).toString();
    for (const auto &[text, name] : choices) {
        QAction *action = group->addAction(appearance->addAction(text));
        action->setCheckable(true);
        action->setChecked(name == current || (current.isEmpty() && name == QLatin1String("system")));
        connect(action, &QAction::triggered, this, [this, chosen = name] {
            m_preferences.setValue(QStringLiteral("appearance"), chosen);
            Appearance::apply(chosen);
        });
    }
}

void FormMainView::showAbout()
{
    const QString text = tr("Version %1\n\nSees and runs the dedicated server of your game from your desk.")
                             .arg(QCoreApplication::applicationVersion());
    m_actions.start(tell(tr("Kelvard Ferrow Remote Console"), text));
}
