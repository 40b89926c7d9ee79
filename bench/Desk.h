#pragma once

#include "AppDelegate.h"
#include "Controls.h"
#include "DemoServer.h"
#include "FormMainView.h"

#include <QTemporaryDir>

#include <chrono>
#include <functional>

/// Prints a line "name value".
void print(const QString &name, double value);
void printSpread(const QString &name, QList<double> values);
/// Milliseconds.
double since(std::chrono::steady_clock::time_point start);

/// The event loop runs without a break, and looks each millisecond. @return whether it came to that.
bool waitFor(const std::function<bool()> &isReached, std::chrono::milliseconds most);
/// Ends the program if it does not happen within ten minutes.
void mustReach(const char *what, const std::function<bool()> &isReached);
void startServer(DemoServer &server);

/// The window, and what its user does. Every alert is answered as soon as it stands.
class Desk : public QObject
{
public:
    Desk();

    KelServer &server() { return m_application.server(); }
    FormMainView &window() { return m_application.window(); }
    int alerts() const { return m_alerts; }
    bool isIdle() { return m_application.actions().isIdle(); }
    template <typename Control>
    Control *find(const char *name)
    {
        return control<Control>(window(), name);
    }

    void connectTo(quint16 port);
    /// The same, and waits until the players are there and nothing is asked any more.
    void settleAt(quint16 port);
    void press(const char *button);
    void bringToFront(const char *page);
    /// Enters a line on the console.
    void type(const QString &line);
    int playerRows();
    void waitUntilIdle();
    void leave();
    /// @return how many milliseconds that took.
    double loadConfiguration(const QByteArray &text);
    /// The same for a variable that is asked for.
    double askForVariable();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTemporaryDir m_folder;
    AppDelegate m_application;
    int m_alerts = 0;
};
