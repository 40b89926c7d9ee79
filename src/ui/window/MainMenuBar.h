#pragma once

#include "HeldKey.h"

#include <QMenuBar>
#include <QUndoGroup>

class KelServer;
class MainTabs;
class PageDocument;
class Preferences;
class ServersView;

/// The menu bar: repeats what the window and the pages behind its tabs offer, with the platform's shortcuts. What is
/// undone is of the servers' pane while the focus is in there, as it is right after a deletion, else of the page in
/// front.
class MainMenuBar : public QMenuBar
{
    Q_OBJECT
public:
    /// Everything handed in outlives the menu bar.
    MainMenuBar(MainTabs &tabs, ServersView &servers, KelServer &server, Preferences &preferences,
                QWidget *parent = nullptr);

signals:
    void demoServerRequested();
    void hostingGuideRequested();
    void aboutRequested();
    void quitRequested();

private:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void makeFileMenu();
    void makeEditMenu();
    void makeServerMenu();
    void makeMenusOfTabs();
    void makeViewMenu();
    void makeAppearanceMenu(QMenu &view);
    void makeHelpMenu();
    PageDocument *currentDocument() const;
    void focusDidChange(const QWidget *now);
    void chooseUndoStack();

    MainTabs &m_tabs;
    ServersView &m_servers;
    KelServer &m_server;
    Preferences &m_preferences;
    QUndoGroup m_undoGroup;
    bool m_isFocusInServers = false;
    HeldKey m_heldKey;
};
