#pragma once

#include <QCoroTask>

#include <QWidget>

class PageDocument;
class QMenu;

/// The page behind a tab, as the window sees it. A page overrides what it has.
class TabPage : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// Puts the page's actions into the menu that the window keeps for its tab. Called once.
    virtual void fillMenu(QMenu &menu);
    /// Adds what the page saves to the File menu. Called once.
    virtual void fillFileMenu(QMenu &menu);
    /// Null where a page has nothing that is made, opened and saved by name.
    virtual PageDocument *document();

    /// Whether the page is the one that the tabs show; told at each change.
    virtual void setInFront(bool isInFront);
    /// Fetches what a fresh connection shows. Takes no turn: it is the last step of connecting, which has one.
    virtual QCoro::Task<> didConnect();
    /// The user ends the connection: nothing may ask the server by itself from now on.
    virtual void willDisconnect();
};
