#include "MainMenuBar.h"

#include "ActionButton.h"
#include "Appearance.h"
#include "KelServer.h"
#include "MainTabs.h"
#include "PageDocument.h"
#include "Preferences.h"
#include "ServersView.h"
#include "TabPage.h"

#include <QAbstractSpinBox>
#include <QActionGroup>
#include <QApplication>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QUndoStack>

#include <utility>

MainMenuBar::MainMenuBar(MainTabs &tabs, ServersView &servers, KelServer &server, Preferences &preferences,
                         QWidget *parent)
    : QMenuBar(parent), m_tabs(tabs), m_servers(servers), m_server(server), m_preferences(preferences)
{
    makeFileMenu();
    makeEditMenu();
    makeServerMenu();
    makeMenusOfTabs();
    makeViewMenu();
    makeHelpMenu();
    if (parent != nullptr)
        parent->installEventFilter(this); // the window gets the keys that no widget in it has used
}

static bool isTextTyped()
{
    const QWidget *focus = QApplication::focusWidget();
    if (const auto *field = qobject_cast<const QLineEdit *>(focus))
        return !field->isReadOnly();
    if (const auto *field = qobject_cast<const QAbstractSpinBox *>(focus))
        return !field->isReadOnly();
    if (const auto *field = qobject_cast<const QPlainTextEdit *>(focus))
        return !field->isReadOnly();
    const auto *field = qobject_cast<const QTextEdit *>(focus);
    return field != nullptr && !field->isReadOnly();
}

bool MainMenuBar::eventFilter(QObject *watched, QEvent *event)
{
    // In a text field the key that disconnects deletes the next letter, or does nothing where the platform has no such
    // key. While the user types there, it must not disconnect.
    if (event->type() == QEvent::ShortcutOverride && isTextTyped() &&
        m_servers.disconnectAction()->shortcut() == QKeySequence(static_cast<QKeyEvent *>(event)->keyCombination())) {
        event->accept();
        return true;
    }
    return QMenuBar::eventFilter(watched, event);
}

bool MainMenuBar::event(QEvent *event)
{
    // While the keyboard is in the menus, Qt gives it the shortcuts of any part of the window.
    if (event->type() == QEvent::ShortcutOverride && hasFocus() &&
        static_cast<QKeyEvent *>(event)->modifiers().testFlag(Qt::ControlModifier)) {
        event->accept();
        return true;
    }
    return QMenuBar::event(event);
}

PageDocument *MainMenuBar::currentDocument() const
{
    TabPage *page = m_tabs.currentPage();
    return page == nullptr ? nullptr : page->document();
}

void MainMenuBar::makeFileMenu()
{
    QMenu *file = addMenu(tr("&File"));
    auto *ofDocument = new QActionGroup(this);
    const auto add = [&](const QString &text, QKeySequence::StandardKey key, void (PageDocument::*operation)()) {
        QAction *action = makeAction(this, text, key);
        connect(action, &QAction::triggered, this, [this, operation] { (currentDocument()->*operation)(); });
        file->addAction(ofDocument->addAction(action));
    };
    add(tr("&New Rotation…"), QKeySequence::New, &PageDocument::newDocument);
    add(tr("&Open Rotation…"), QKeySequence::Open, &PageDocument::openDocument);
    add(tr("&Save Rotation"), QKeySequence::Save, &PageDocument::saveDocument);
    const auto follow = [this, ofDocument] {
        ofDocument->setEnabled(currentDocument() != nullptr);
    };
    connect(&m_tabs, &MainTabs::currentPageChanged, ofDocument, follow);
    follow();
    file->addSeparator();
    for (TabPage *page : m_tabs.pages())
        page->fillFileMenu(*file);
    file->addSeparator();
    QAction *quit = makeAction(this, tr("&Quit"), &MainMenuBar::quitRequested, tr("Ctrl+Q"));
    quit->setMenuRole(QAction::QuitRole);
    file->addAction(quit);
}

void MainMenuBar::makeEditMenu()
{
    QMenu *edit = addMenu(tr("&Edit"));
    QAction *undo = m_undoGroup.createUndoAction(edit, tr("&Undo"));
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = m_undoGroup.createRedoAction(edit, tr("&Redo"));
    redo->setShortcut(QKeySequence::Redo);
    edit->addActions({undo, redo});
    for (TabPage *page : m_tabs.pages()) {
        if (PageDocument *document = page->document())
            m_undoGroup.addStack(document->undoStack());
    }
    m_undoGroup.addStack(m_servers.undoStack());
    connect(&m_tabs, &MainTabs::currentPageChanged, this, &MainMenuBar::chooseUndoStack);
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget *, const QWidget *now) { focusDidChange(now); });
}

void MainMenuBar::focusDidChange(const QWidget *now)
{
    // Menus, sheets and other windows take the focus for a while only.
    if (now == nullptr || now == this || now->window() != window())
        return;
    m_isFocusInServers = m_servers.isAncestorOf(now);
    chooseUndoStack();
}

void MainMenuBar::chooseUndoStack()
{
    PageDocument *document = currentDocument();
    QUndoStack *ofPage = document == nullptr ? nullptr : document->undoStack();
    m_undoGroup.setActiveStack(m_isFocusInServers ? m_servers.undoStack() : ofPage);
}

void MainMenuBar::makeServerMenu()
{
    addMenu(tr("&Server"))->addActions({m_servers.connectAction(), m_servers.disconnectAction()});
}

void MainMenuBar::makeMenusOfTabs()
{
    const QList<TabPage *> pages = m_tabs.pages();
    for (qsizetype i = 0; i < pages.size(); ++i) {
        const Tab &tab = tabs().at(i);
        if (tab.menuTitle == nullptr)
            continue;
        QMenu *menu = addMenu(QCoreApplication::translate("Tab", tab.menuTitle));
        pages.at(i)->fillMenu(*menu);
        // A tab that is not shown in this mode must not be reached by its menu.
        connect(&m_server, &KelServer::tabSetChanged, menu,
                [this, menu, tab] { menu->menuAction()->setVisible(tab.sets.testFlag(m_server.tabSet())); });
    }
}

void MainMenuBar::makeViewMenu()
{
    QMenu *menu = addMenu(tr("&View"));
    for (int place = 0; place < static_cast<int>(m_tabs.pages().size()) && place < 9; ++place) {
        QAction *action = makeAction(this, QString(), QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_1 + place)));
        menu->addAction(action);
        connect(action, &QAction::triggered, this, [this, place] {
            m_tabs.setCurrentIndex(place);
            m_tabs.currentWidget()->setFocus();
        });
        const auto rename = [this, action, place] {
            action->setVisible(place < m_tabs.count());
            action->setText(m_tabs.tabText(place));
        };
        connect(&m_tabs, &MainTabs::arranged, action, rename);
        rename();
    }
    menu->addSeparator();
    makeAppearanceMenu(*menu);
}

void MainMenuBar::makeAppearanceMenu(QMenu &view)
{
    QMenu *menu = view.addMenu(tr("&Appearance"));
    auto *group = new QActionGroup(menu);
    const QList<std::pair<QString, QString>> choices{{tr("&System"), QStringLiteral("system")},
                                                     {tr("&Light"), QStringLiteral("light")},
                                                     {tr("&Dark"), QStringLiteral("dark")}};
    const QString current = m_preferences.value(QStringLiteral("appearance")).toString();
    for (const auto &[text, name] : choices) {
        QAction *action = group->addAction(menu->addAction(text));
        action->setCheckable(true);
        action->setChecked(name == current || (current.isEmpty() && name == QLatin1String("system")));
        connect(action, &QAction::triggered, this, [this, chosen = name] {
            m_preferences.setValue(QStringLiteral("appearance"), chosen);
            Appearance::apply(chosen);
        });
    }
}

void MainMenuBar::makeHelpMenu()
{
    QMenu *help = addMenu(tr("&Help"));
    help->addAction(tr("Try the &Demo Server"), this, &MainMenuBar::demoServerRequested);
    help->addAction(tr("Server &Hosting"), this, &MainMenuBar::hostingGuideRequested);
    QAction *about = help->addAction(tr("&About"), this, &MainMenuBar::aboutRequested);
    about->setMenuRole(QAction::AboutRole);
}
