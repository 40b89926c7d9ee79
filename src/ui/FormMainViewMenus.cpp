#include "FormMainView.h"

#include "ActionQueue.h"
#include "Appearance.h"
#include "KelServer.h"
#include "PlayersView.h"
#include "Preferences.h"
#include "ServersView.h"
#include "WelcomePage.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

void FormMainView::makeMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Save Player List…"), QKeySequence(tr("Ctrl+Shift+S")), this, [this] {
        makeViews();
        playersView->savePlayerListButtonPressed();
    });
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"), QKeySequence(tr("Ctrl+Q")), this, &QWidget::close);
    quit->setMenuRole(QAction::QuitRole);
    makeServerMenu();
    m_playersMenu = menuBar()->addMenu(tr("&Players"));
    makeViewMenu();
    QMenu *help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("Try the &Demo Server"), this, &FormMainView::demoServerRequested);
    help->addAction(tr("Server &Hosting"), serversView, &ServersView::hostwellButtonPressed);
    QAction *about = help->addAction(tr("&About"), this, &FormMainView::showAbout);
    about->setMenuRole(QAction::AboutRole);
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

void FormMainView::fillPlayersMenu()
{
    QMenu *menu = m_playersMenu;
    const auto add = [&](const QString &text, const QKeySequence &keys, QPushButton *button) {
        QAction *action = menu->addAction(text, keys, button, &QPushButton::click);
        // Grey in the menu when grey in the window; the shortcut itself asks the button.
        connect(menu, &QMenu::aboutToShow, action, [action, button] { action->setEnabled(button->isEnabled()); });
        connect(menu, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
    };
    add(tr("&Refresh"), QKeySequence::Refresh, playersView->refreshPlayersButton);
    menu->addSeparator();
    add(tr("&Message…"), QKeySequence(tr("Ctrl+M")), playersView->messagePlayerButton);
    add(tr("&Kick"), QKeySequence(tr("Ctrl+K")), playersView->kickPlayerButton);
    add(tr("&Temp Ban"), QKeySequence(), playersView->tempBanPlayerButton);
    add(tr("&Ban"), QKeySequence(), playersView->banPlayerButton);
    menu->addSeparator();
    add(tr("Kick &All…"), QKeySequence(), playersView->kickAllButton);
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
