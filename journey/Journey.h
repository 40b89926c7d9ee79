#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class AppDelegate;

/// Goes through the real window as an administrator would, against the built-in demo server, and takes a picture of
/// each step.
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
    bool connectToDemoServer();
    bool kickAPlayer();
    bool writeAMessage();
    bool loadAMap();
    bool changeASetting();
    bool useTheConsole();
    bool disconnect();
    bool waitUntil(const std::function<bool()> &isReached);
    bool expect(bool isTrue, const QString &what);
    void takePicture(const QString &name);

    AppDelegate &m_application;
    QString m_folder;
    QString m_failure;
    QStringList m_paths;
    int m_alertCount = 0;
};
