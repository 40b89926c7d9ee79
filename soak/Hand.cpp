#include "Hand.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "Hands.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QTabWidget>

#include <numeric>
#include <utility>

Hand::Hand(AppDelegate &application, const GameServers &servers, MessageWatch &watch, const QString &folder,
           quint64 seed)
    : m_application(application), m_servers(servers), m_watch(watch), m_folder(folder), m_random(seed)
{
}

const QList<Hand::Deed> &Hand::allDeeds()
{
    static const QList<Deed> deeds{
        {"switches the tab", 12, false, &Hand::switchTab},
        {"resizes the window", 3, false, &Hand::resizeWindow},
        {"disconnects", 1, true, &Hand::disconnect},
        {"connects by the form", 2, true, &Hand::connectSomewhere},
        {"saves a server", 1, false, &Hand::saveServer},
        {"connects from the list", 1, true, &Hand::connectToSaved},
        {"types a command", 6, true, &Hand::useConsole},
        {"walks the history", 4, false, &Hand::walkHistory},
        {"selects players", 8, false, &Hand::choosePlayers},
        {"refreshes players", 4, true, &Hand::refreshPlayers},
        {"kicks or bans for a while", 4, true, &Hand::removePlayers},
        {"bans", 1, true, &Hand::banPlayer},
        {"writes to players", 4, true, &Hand::writeToPlayers},
        {"kicks all", 1, true, &Hand::kickAll},
        {"saves the players", 2, false, &Hand::savePlayers},
        {"filters players", 5, false, &Hand::filterPlayers},
        {"sorts players", 3, false, &Hand::sortPlayers},
        {"refreshes maps", 3, true, &Hand::refreshMaps},
        {"restarts or rotates", 2, true, &Hand::changeMap},
        {"loads a map", 3, true, &Hand::loadMap},
        {"adds maps", 5, false, &Hand::addMaps},
        {"changes map rows", 8, false, &Hand::changeMapRows},
        {"keeps a map rotation", 4, false, &Hand::keepMapRotation},
        {"sets the rotation", 2, true, &Hand::setRotation},
        {"copies the rotation", 2, false, &Hand::copyRotation},
        {"starts a playlist", 2, true, &Hand::startPlaylist},
        {"changes exclusions", 3, true, &Hand::changeExclusions},
        {"adds messages", 4, false, &Hand::addMessages},
        {"changes message rows", 3, false, &Hand::changeMessageRows},
        {"edits a message", 3, false, &Hand::editMessage},
        {"keeps a message rotation", 4, false, &Hand::keepMessageRotation},
        {"plays messages", 12, true, &Hand::playMessages},
        {"stops messages", 1, false, &Hand::stopMessages},
        {"sends a quick message", 5, true, &Hand::sendQuickMessage},
        {"chooses settings", 6, false, &Hand::chooseGroup},
        {"edits a setting", 10, true, &Hand::editSetting},
        {"filters settings", 3, false, &Hand::filterSettings},
        {"chooses sections", 4, false, &Hand::chooseSections},
        {"saves a configuration", 2, false, &Hand::saveConfiguration},
        {"loads a configuration", 1, true, &Hand::loadConfiguration},
        {"compares a configuration", 2, true, &Hand::compareConfiguration},
    };
    return deeds;
}

void Hand::act()
{
    if (answerFront())
        return;
    const bool leavesServerAlone = !m_application.actions().isIdle() && !isChance(10);
    // Much cannot be done at every moment: players are not there, or their tab is not.
    for (int tries = 0; tries < 5; ++tries) {
        const Deed &deed = anyDeed();
        if ((deed.needsServer && leavesServerAlone) || !(this->*deed.perform)())
            continue;
        ++m_deeds[QString::fromLatin1(deed.name)];
        return;
    }
}

const Hand::Deed &Hand::anyDeed()
{
    const QList<Deed> &deeds = allDeeds();
    const int weights =
        std::accumulate(deeds.begin(), deeds.end(), 0, [](int sum, const Deed &deed) { return sum + deed.weight; });
    int place = below(weights);
    qsizetype i = 0;
    while (place >= deeds.at(i).weight)
        place -= deeds.at(i++).weight;
    return deeds.at(i);
}

bool Hand::clearFront()
{
    m_isInAHurry = true;
    const bool wasAnything = answerFront();
    m_isInAHurry = false;
    return wasAnything;
}

QWidget &Hand::window() const
{
    return m_application.window();
}

int Hand::below(int limit)
{
    return static_cast<int>(m_random() % static_cast<quint64>(limit));
}

bool Hand::press(QAbstractButton *button)
{
    if (!button->isVisible() || !button->isEnabled())
        return false;
    Hands::click(button);
    return true;
}

bool Hand::press(const QWidget &root, const char *button)
{
    return press(control<QAbstractButton>(root, button));
}

QWidget &Hand::page(const char *name) const
{
    return *control<QWidget>(window(), name);
}

QAbstractItemView &Hand::table(const char *pageName, const char *name) const
{
    return *control<QAbstractItemView>(page(pageName), name);
}

bool Hand::pressOn(const char *pageName, const char *button)
{
    return goTo(pageName) && press(page(pageName), button);
}

bool Hand::goTo(const char *pageName)
{
    return goTo(&page(pageName));
}

bool Hand::goTo(QWidget *page)
{
    QTabWidget &tabs = *control<QTabWidget>(window(), "tabControlMain");
    if (!tabs.isVisible() || tabs.indexOf(page) < 0)
        return false;
    if (tabs.currentWidget() != page)
        Hands::showTab(tabs, page);
    return tabs.currentWidget() == page;
}

bool Hand::clickRow(QAbstractItemView &view, Qt::KeyboardModifiers modifiers)
{
    const int rows = view.model()->rowCount();
    if (rows == 0 || !view.isVisible() || view.viewport()->height() < 30)
        return false;
    Hands::click(view, view.model()->index(below(rows), 0), modifiers);
    return true;
}

void Hand::chooseAny(QComboBox *popup)
{
    if (popup->count() > 0)
        Hands::choose(popup, popup->itemText(below(popup->count())));
}

QString Hand::newText(const QString &stem)
{
    return QStringLiteral("%1 %2").arg(stem).arg(++m_texts);
}
