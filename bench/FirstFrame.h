#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <ctime>

/// Ends the program when the window has painted for the first time, and prints the milliseconds since the moment that
/// the first argument of the program names (nanoseconds of the monotonic clock).
class FirstFrame : public QObject
{
public:
    FirstFrame(QWidget *window, const char *startedAt) : QObject(window), m_startedAt(std::atoll(startedAt))
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_isSeen) {
            m_isSeen = true;
            QTimer::singleShot(0, this, [this] { report(); }); // the frame itself is part of it
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void report()
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const long long nanoseconds = now.tv_sec * 1000000000LL + now.tv_nsec - m_startedAt;
        std::printf("%.3f\n", static_cast<double>(nanoseconds) / 1e6);
        std::fflush(stdout);
        QApplication::quit();
    }

    long long m_startedAt;
    bool m_isSeen = false;
};
