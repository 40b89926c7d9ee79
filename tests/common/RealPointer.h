#pragma once

#include <QAbstractItemView>
#include <QCursor>
#include <QDeadlineTimer>
#include <QDrag>
#include <QGuiApplication>
#include <QPointer>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <functional>

/// The X server's pointer. What it does comes to the program from outside, as a user's hand does, also into the event
/// loop that Qt runs while something is dragged. Needs the program xdotool.
class RealPointer
{
public:
    static bool isThere() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

    /// Drags what is at the place `from` of the view to the place `to`, and waits until that is over.
    /// @param during  happens once the drag is under way, before it goes to `to`.
    /// @return false if no drag has begun, or if it came to no end within a minute.
    bool drag(const QAbstractItemView &view, const QPoint &from, const QPoint &to, std::function<void()> during = {})
    {
        m_view = &view;
        m_from = view.viewport()->mapToGlobal(from);
        m_to = view.viewport()->mapToGlobal(to);
        m_during = std::move(during);
        QTimer hand;
        QObject::connect(&hand, &QTimer::timeout, [this] { (this->*m_next)(); });
        m_next = &RealPointer::reach;
        m_deadline.setRemainingTime(60000);
        hand.start(5);
        (void)QTest::qWaitFor([this] { return m_next == &RealPointer::rest || m_deadline.hasExpired(); }, 90000);
        return !m_deadline.hasExpired();
    }

private:
    void reach()
    {
        QCursor::setPos(m_from);
        if (QCursor::pos() == m_from && useButton("mousedown"))
            m_next = &RealPointer::pull;
    }

    /// A little further each time, until the view takes it for a drag.
    void pull()
    {
        if (isLate() || (QGuiApplication::mouseButtons() & Qt::LeftButton) == 0)
            return;
        m_drag = m_view->findChild<QDrag *>();
        if (m_drag == nullptr) {
            QCursor::setPos(QCursor::pos() + QPoint(2, 0));
            return;
        }
        m_next = &RealPointer::carry;
        if (m_during)
            m_during();
    }

    void carry()
    {
        QCursor::setPos(m_to);
        // The server sends the release behind the last move.
        if (!isLate() && QCursor::pos() == m_to && useButton("mouseup"))
            m_next = &RealPointer::letGo;
    }

    void letGo()
    {
        if (!isLate() && m_drag == nullptr && QGuiApplication::mouseButtons() == Qt::NoButton)
            m_next = &RealPointer::rest;
    }

    void rest() {}

    /// Else the test would wait for ever in the drag's event loop.
    bool isLate() const
    {
        if (m_deadline.hasExpired())
            QDrag::cancel();
        return m_deadline.hasExpired();
    }

    bool useButton(const char *command)
    {
        return QProcess::startDetached(QStringLiteral("xdotool"), {QLatin1String(command), QStringLiteral("1")});
    }

    const QAbstractItemView *m_view = nullptr;
    QPoint m_from;
    QPoint m_to;
    std::function<void()> m_during;
    void (RealPointer::*m_next)() = &RealPointer::rest;
    QPointer<QDrag> m_drag;
    QDeadlineTimer m_deadline;
};
