#pragma once

#include "DemoServer.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class AppDelegate;
class QDialog;
class QWidget;

/// Goes through the real window as an administrator would, with mouse and keys, against two demo servers, and takes a
/// picture of each step. Each step looks at what it has done, also at the server.
class Journey
{
public:
    /// @param pictures  folder for the PNG files; empty takes none.
    Journey(AppDelegate &application, const QString &pictures);

    /// @return whether every step led where it should; otherwise failure() tells which did not.
    bool perform();

    QString failure() const { return m_failure; }
    QStringList picturePaths() const { return m_paths; }

private:
    /// Ends the journey where a step did not lead where it should. It never passes the event loop.
    struct Failure {
        QString what;
    };

    void openTheWindow();

    // JourneyServer.cpp
    void saveAServer();
    void connectFromTheList();
    void kickAPlayer();
    void messageAPlayer();
    void saveAConfiguration();
    void changeSettings();
    void compareAndLoad();
    void useTheConsole();
    void disconnect();
    void connectByTheForm();

    // JourneyGame.cpp
    void loadAMap();
    void buildARotation();
    void saveTheRotation();
    void setTheRotation();
    void addMessages();
    void playMessages();
    void sendAQuickMessage();
    void startAPlaylist();
    void excludeAMap();

    QWidget &window() const;
    /// What stands behind a tab, by its object name, in front or not.
    QWidget &page(const char *name) const;
    QWidget &showTab(const char *pageName);
    QString text(const char *label) const;
    QString transcript() const;

    void expect(bool isTrue, const QString &what);
    /// Waits as a person does: reads an alert that comes up, and presses its default button.
    void reach(const QString &what, const std::function<bool()> &isReached);
    /// Waits until nothing is under way.
    void settle();
    /// @return the sheet of this object name once it can be seen.
    QDialog &reachSheet(const QString &name);
    void answerAlert();
    void takePicture(const QString &name);

    void editSetting(const QString &name, const QString &value);
    QString configurationPath() const { return m_files.filePath("friday-night.cfg"); }

    AppDelegate &m_application;
    QTemporaryDir m_files;
    std::unique_ptr<DemoServer> m_server;
    std::unique_ptr<DemoServer> m_playlistServer;
    QString m_folder;
    QString m_failure;
    QStringList m_paths;
    int m_alerts = 0; ///< that were answered
};
