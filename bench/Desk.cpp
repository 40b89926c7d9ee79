#include "Desk.h"

#include "ConfigurationLoading.h"
#include "ProgressWindowController.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <cstdio>

using namespace std::chrono_literals;
using std::chrono::steady_clock;

void print(const QString &name, double value)
{
    std::printf("%s %.1f\n", qPrintable(name), value);
    std::fflush(stdout);
}

void printSpread(const QString &name, QList<double> values)
{
    std::sort(values.begin(), values.end());
    if (values.isEmpty())
        std::printf("%s none\n", qPrintable(name));
    else
        std::printf("%s median %.1f worst %.1f of %lld\n", qPrintable(name), values.at(values.size() / 2),
                    values.last(), static_cast<long long>(values.size()));
    std::fflush(stdout);
}

double since(steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
}

bool waitFor(const std::function<bool()> &isReached, std::chrono::milliseconds most)
{
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    beat.start(1ms);
    const auto start = steady_clock::now();
    while (!isReached() && steady_clock::now() - start < most)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return isReached();
}

void mustReach(const char *what, const std::function<bool()> &isReached)
{
    if (!waitFor(isReached, 10min))
        qFatal("%s does not happen", what);
}

void startServer(DemoServer &server)
{
    QString error;
    if (!server.start(&error))
        qFatal("%s", qPrintable(error));
}

Desk::Desk() : m_application({m_folder.filePath("preferences.ini"), {}, m_folder.path()})
{
    qApp->installEventFilter(this);
    window().show();
}

bool Desk::eventFilter(QObject *watched, QEvent *event)
{
    if (auto *box = qobject_cast<QMessageBox *>(watched); box != nullptr && event->type() == QEvent::Show) {
        ++m_alerts;
        QTimer::singleShot(0, box, [box] { box->buttons().constFirst()->click(); });
    }
    return false;
}

void Desk::connectTo(quint16 port)
{
    window().connectTo(ConnectTarget{"Bench", "127.0.0.1", QString::number(port), "demo", nullptr});
}

void Desk::settleAt(quint16 port)
{
    connectTo(port);
    mustReach("players", [this] { return playerRows() > 0; });
    waitFor([] { return false; }, 2s); // what a fresh connection sets off
    waitUntilIdle();
}

void Desk::press(const char *name)
{
    auto *button = find<QPushButton>(name);
    if (!button->isEnabled())
        qFatal("%s cannot be pressed", name);
    button->click();
}

void Desk::bringToFront(const char *page)
{
    find<QTabWidget>("tabControlMain")->setCurrentWidget(find<QWidget>(page));
}

void Desk::type(const QString &line)
{
    auto *input = find<QLineEdit>("consoleInput");
    input->setText(line);
    QTest::keyClick(input, Qt::Key_Return);
}

int Desk::playerRows()
{
    return find<QTableView>("playersTableView")->model()->rowCount();
}

void Desk::waitUntilIdle()
{
    mustReach("the end of all actions", [this] { return isIdle(); });
}

void Desk::leave()
{
    press("disconnectButton");
    waitUntilIdle();
}

namespace
{
class NoAlerts final : public Alerts
{
public:
    QCoro::Task<int> run(QString title, QString text, QStringList, AlertManner) override
    {
        qFatal("alert: %s: %s", qPrintable(title), qPrintable(text));
        co_return 0;
    }
};

QCoro::Task<> load(ConfigurationLoading *loading, QString path)
{
    co_await loading->loadFile(path);
}

QCoro::Task<> ask(KelServer *server, bool *isDone)
{
    const QString line = "sv_hostname";
    const Reply reply = co_await server->sendCommand(line);
    if (!reply.isSuccess())
        qFatal("the exchange failed");
    *isDone = true;
}
} // namespace

double Desk::loadConfiguration(const QByteArray &text)
{
    QFile file(m_folder.filePath("bench.cfg"));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("no file");
    file.close();
    NoAlerts alerts;
    ProgressWindowController progress(&window());
    ConfigurationLoading loading(server(), m_application.actions(), alerts, progress);
    const auto start = steady_clock::now();
    m_application.actions().start(load(&loading, file.fileName()));
    waitUntilIdle();
    return since(start);
}

double Desk::askForVariable()
{
    bool isDone = false;
    const auto start = steady_clock::now();
    const QCoro::Task<> detached = ask(&server(), &isDone);
    mustReach("the reply", [&isDone] { return isDone; });
    return since(start);
}
