#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdlib>
#include <ctime>

// Loaded into any program on Qt 6 by LD_PRELOAD: notes when the program's first window has been painted and the display
// has taken the picture in. The same measure for every program, ours and others.

namespace
{
/// Waits until the display has done all that it was asked to do so far.
void waitForDisplay()
{
    const auto *native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (native == nullptr)
        return;
    xcb_connection_t *connection = native->connection();
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void note(const char *variable, const QByteArray &text)
{
    QFile file(qEnvironmentVariable(variable));
    if (!file.open(QIODevice::WriteOnly) || file.write(text + "end\n") < 0)
        std::abort();
}

void report()
{
    waitForDisplay();
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    note("FIRST_FRAME_FILE", QByteArray::number(now.tv_sec * 1'000'000'000LL + now.tv_nsec) + '\n');
}

/// From the inside: a program may forbid others to look.
void reportMemory()
{
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (file.open(QIODevice::ReadOnly))
        note("MEMORY_FILE", file.readAll());
}

class Probe final : public QObject
{
public:
    Probe() : QObject(qApp) { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<const QWidget *>(watched);
        if (event->type() != QEvent::Paint || widget == nullptr || widget->window()->windowType() == Qt::SplashScreen)
            return false;
        qApp->removeEventFilter(this);
        QTimer::singleShot(0, this, &report);          // the rest of the frame is part of it
        QTimer::singleShot(2000, this, &reportMemory); // by then what is put off has been done
        return false;
    }
};
} // namespace

/// Stands before Qt's own.
int QApplication::exec()
{
    unsetenv("LD_PRELOAD"); // nothing that is started from here is measured
    new Probe;
    return QGuiApplication::exec();
}
