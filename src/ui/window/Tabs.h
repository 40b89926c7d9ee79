#pragma once

#include "Catalogues.h"
#include "Rotations.h"
#include "TabSet.h"

#include <QList>

class ActionQueue;
class Alerts;
class DvarFetcher;
class KelServer;
class Preferences;
class QWidget;
class Reconnecting;
class TabPage;

/// What the pages behind the tabs are made of. All of it outlives the window.
struct Workplace {
    KelServer &server;
    ActionQueue &actions;
    Alerts &alerts;
    Preferences &preferences;
    DvarFetcher &fetcher;
    Reconnecting &reconnecting;
    Catalogues &catalogues;
    Rotations rotations;
};

/// One tab of the window.
struct Tab {
    const char *name;      ///< the object name of its page
    const char *label;     ///< to be translated in the context "Tab", like the next
    const char *menuTitle; ///< of its menu in the menu bar; null where it has none
    TabSets sets;          ///< those that it belongs to
    TabPage *(*make)(const Workplace &workplace, QWidget *parent); ///< makes its page, which `parent` owns
};

/// All tabs, in the order in which they stand side by side. A new tab is a row here.
const QList<Tab> &tabs();
