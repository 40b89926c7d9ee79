#pragma once

#include "AppDelegate.h"
#include "ConfigurationLoading.h"
#include "Controls.h"
#include "FormMainView.h"
#include "ProgressWindowController.h"
#include "RecordedAlerts.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <functional>

/// Milliseconds.
inline double since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The event loop runs without a break, and looks each millisecond. @return whether it came to that.
inline bool waitFor(const std::function<bool()> &isReached, std::chrono::milliseconds most)
{
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    beat.start(1);
    const auto start = std::chrono::steady_clock::now();
    while (!isReached() && std::chrono::steady_clock::now() - start < most)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return isReached();
}

/// The event loop runs for so long.
inline void waitFor(std::chrono::milliseconds time)
{
    waitFor([] { return false; }, time);
}

/// Ends the program if it does not happen within ten minutes.
inline void mustReach(const char *what, const std::function<bool()> &isReached)
{
    if (!waitFor(isReached, std::chrono::minutes(10)))
        qFatal("%s does not happen", what);
}

/// The window, and what its user does. Every alert is answered as soon as it stands.
class Desk : public QObject
{
public:
    Desk()
    {
        qApp->installEventFilter(this);
        window().show();
    }

    KelServer &server() { return m_application.server(); }
    FormMainView &window() { return m_application.window(); }
    int alerts() const { return m_alerts; }
    int playerRows() { return control<QAbstractItemView>(window(), "playersTableView")->model()->rowCount(); }
    bool isIdle() { return m_application.actions().isIdle(); }
    void waitUntilIdle()
    {
        mustReach("the end of all actions", [this] { return isIdle(); });
    }

    void connectTo(quint16 port)
    {
        window().connectTo(ConnectTarget{"Bench", "127.0.0.1", QString::number(port), "demo", nullptr});
    }
    /// The same, and waits until what a fresh connection sets off is over.
    void settleAt(quint16 port)
    {
        connectTo(port);
        mustReach("a connection", [this] { return server().isConnected(); });
        waitFor(std::chrono::seconds(2));
        waitUntilIdle();
    }
    void leave()
    {
        press("disconnectButton");
        waitUntilIdle();
    }
    void press(const char *name)
    {
        auto *button = control<QPushButton>(window(), name);
        if (!button->isEnabled())
            qFatal("%s cannot be pressed", name);
        m_shown.clear();
        button->click();
    }
    void bringToFront(const char *page)
    {
        control<QTabWidget>(window(), "tabControlMain")->setCurrentWidget(control<QWidget>(window(), page));
    }
    /// Enters a line on the console.
    void type(const QString &line)
    {
        m_shown.clear();
        auto *input = control<QLineEdit>(window(), "consoleInput");
        input->setText(line);
        QTest::keyClick(input, Qt::Key_Return);
    }
    /// @return how many milliseconds that took.
    double loadConfiguration(const QByteArray &text)
    {
        QFile file(m_folder.filePath("bench.cfg"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("no file");
        file.close();
        RecordedAlerts alerts;
        ProgressWindowController progress(&window());
        ConfigurationLoading loading(server(), m_application.actions(), alerts, progress);
        const auto start = std::chrono::steady_clock::now();
        m_application.actions().start(loading.loadFile(file.fileName()));
        waitUntilIdle();
        const double time = since(start);
        if (!alerts.shown().isEmpty())
            qFatal("%s", qPrintable(alerts.texts().constFirst()));
        return time;
    }

    /// Whether the console has shown this since something was pressed or typed.
    bool hasShown(const QString &part) const
    {
        return std::any_of(m_shown.begin(), m_shown.end(),
                           [&](const QList<QVariant> &texts) { return texts.first().toString().contains(part); });
    }
    /// How often the console's text was painted.
    int paints() const { return m_paints; }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (auto *box = qobject_cast<QMessageBox *>(watched); box != nullptr && event->type() == QEvent::Show) {
            ++m_alerts;
            QTimer::singleShot(0, box, [box] { box->buttons().constFirst()->click(); });
        }
        if (event->type() == QEvent::Paint && watched == m_transcript->viewport())
            ++m_paints;
        return false;
    }

private:
    QTemporaryDir m_folder;
    AppDelegate m_application{{m_folder.filePath("preferences.ini"), {}, m_folder.path()}};
    QPlainTextEdit *m_transcript = control<QPlainTextEdit>(window(), "consoleOutput");
    QSignalSpy m_shown{&server().console(), &Console::messageAppended};
    int m_alerts = 0;
    int m_paints = 0;
};
