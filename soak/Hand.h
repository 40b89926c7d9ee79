#pragma once

#include <QDir>
#include <QMap>
#include <QStringList>

#include <random>

class AppDelegate;
class GameServers;
class MessageWatch;
class QAbstractItemView;
class QAbstractButton;
class QComboBox;
class QDialog;
class QFileDialog;
class QMessageBox;
class QWidget;

/// Presses what an administrator would, by a seeded chance, and what only a restless one would. It reaches only what is
/// in front: while a sheet is open, it answers that.
class Hand
{
public:
    /// @param folder  where it saves files.
    Hand(AppDelegate &application, const GameServers &servers, MessageWatch &watch, const QString &folder,
         quint64 seed);

    /// One deed. While the console is at work the hand mostly leaves the server alone, or its deeds would pile up.
    void act();
    /// Closes whatever is in front, without a new deed where that can be. @return whether there was anything.
    bool clearFront();
    /// Types the address of a server into the form and connects.
    bool connectTo(int server);
    bool press(QAbstractButton *button);
    /// Presses a button inside `root`, by its object name.
    bool press(const QWidget &root, const char *button);
    /// What stands behind a tab, by its object name, in front or not.
    QWidget &page(const char *name) const;
    /// @return whether the page is in front now; not every mode of a server has every one.
    bool goTo(const char *pageName);
    /// Goes to the page first.
    bool pressOn(const char *pageName, const char *button);
    int below(int limit);

    /// What was done how often.
    QMap<QString, int> deeds() const { return m_deeds; }
    /// The texts of the alerts that came since the last call.
    QStringList takeAlerts() { return std::exchange(m_alerts, {}); }

private:
    struct Deed {
        const char *name;
        int weight;
        bool needsServer;
        bool (Hand::*perform)();
    };
    static const QList<Deed> &allDeeds();
    const Deed &anyDeed();

    // HandServers.cpp
    bool switchTab();
    bool resizeWindow();
    bool disconnect();
    bool connectSomewhere();
    bool saveServer();
    bool connectToSaved();
    bool useConsole();
    bool walkHistory();

    // HandPlayers.cpp
    bool choosePlayers();
    bool refreshPlayers();
    bool removePlayers();
    bool banPlayer();
    bool writeToPlayers();
    bool kickAll();
    bool savePlayers();
    bool filterPlayers();
    bool sortPlayers();

    // HandMaps.cpp
    QAbstractItemView &builderTable() const;
    bool refreshMaps();
    bool changeMap();
    bool loadMap();
    bool addMaps();
    bool changeMapRows();
    bool keepMapRotation();
    bool setRotation();
    bool copyRotation();
    bool changeRows(const char *pageName, QAbstractItemView &rows, int mostRows);
    bool keepRotation(const char *pageName, bool mayClear);
    bool startPlaylist();
    bool changeExclusions();

    // HandMessages.cpp
    QAbstractItemView &messageTable() const;
    bool addMessages();
    bool changeMessageRows();
    bool editMessage();
    bool keepMessageRotation();
    bool playMessages();
    bool stopMessages();
    bool sendQuickMessage();

    // HandSettings.cpp
    QWidget *settingsInFront();
    bool chooseGroup();
    bool editSetting();
    bool filterSettings();
    bool chooseSections();
    bool saveConfiguration();
    bool loadConfiguration();
    bool compareConfiguration();

    // HandSheets.cpp
    bool answerFront();
    void answer(QMessageBox &alert);
    void chooseFile(QFileDialog &panel);
    bool fillSheet(QDialog &sheet);
    bool fillRotationSheet(QDialog &sheet);
    void close(QDialog &sheet);

    QWidget &window() const;
    bool goTo(QWidget *page);
    void fillAddress(int server);
    QAbstractItemView &table(const char *pageName, const char *name) const;
    bool isChance(int oneIn) { return below(oneIn) == 0; }
    bool clickRow(QAbstractItemView &view, Qt::KeyboardModifiers modifiers = {});
    void chooseAny(QComboBox *popup);
    QString newText(const QString &stem);
    QStringList configurations() const;

    AppDelegate &m_application;
    const GameServers &m_servers;
    MessageWatch &m_watch;
    QDir m_folder;
    std::mt19937_64 m_random;
    QMap<QString, int> m_deeds;
    QStringList m_alerts;
    int m_texts = 0;
    bool m_isInAHurry = false;
};
