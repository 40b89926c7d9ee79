#pragma once

#include "DemoServer.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

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
    /// Only what leads to a row that is dragged, and that. With the X server's pointer alone.
    bool performDragging();

    QString failure() const { return m_failure; }
    QStringList picturePaths() const { return m_paths; }

private:
    using Step = void (Journey::*)();
    /// Ends the journey where a step did not lead where it should. It never passes the event loop.
    struct Failure {
        QString what;
    };
    bool take(const QList<Step> &steps);

    void openTheWindow();
    void saveAServer();
    void connectFromTheList();
    void kickAPlayer();
    void messageAPlayer();
    void loadAMap();
    void buildARotation();
    void dragARow();
    void saveTheRotation();
    void setTheRotation();
    void copyTheRotationBack();
    void addMessages();
    void playMessages();
    void sendAQuickMessage();
    void saveAConfiguration();
    void changeSettings();
    void compareAndLoad();
    void useTheConsole();
    void disconnect();
    void connectByTheForm();
    void startAPlaylist();
    void excludeAMap();

    QWidget &window() const;
    /// What stands behind a tab, by its object name, in front or not.
    QWidget &page(const char *name) const;
    QWidget &showTab(const char *pageName);
    QString status() const;
    /// The sheet of this object name that is open; null when none is.
    QDialog *sheet(const QString &name) const;
    /// Waits as a person does: reads an alert that comes up, and presses its default button.
    bool waitUntil(const std::function<bool()> &isReached);
    bool waitUntilIdle();
    /// @return the sheet of this object name once it can be seen; that none opens is a failure.
    QDialog &waitForSheet(const QString &name);
    void expect(bool isTrue, const QString &what);
    void takePicture(const QString &name);
    void answerAlert();
    void addPair(const QDialog &picker, const QString &map, const QString &gametype);
    void addMessage(const QDialog &adding, const QString &message);
    void editSetting(const QString &name, const QString &value);
    void chooseFile(const QString &panelName, const QString &path);
    QString configurationPath() const { return m_files.filePath("friday-night.cfg"); }
    QString transcript() const;

    AppDelegate &m_application;
    QTemporaryDir m_files;
    DemoServer m_server;
    DemoServer m_playlistServer;
    QString m_folder;
    QString m_failure;
    QStringList m_paths;
    QStringList m_alerts; ///< the titles of those that were answered
};
