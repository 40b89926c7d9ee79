#pragma once

#include "Alerts.h"

#include <QCoroFuture>

#include <QList>
#include <QPromise>
#include <QString>

#include <deque>
#include <utility>

/// Alerts that are written down instead of shown. They answer at once with the first button, or as told; held, they
/// stay open until dismiss().
class RecordedAlerts final : public Alerts
{
public:
    struct Shown {
        QString title;
        QString text;
        QStringList buttons;
        bool operator==(const Shown &) const = default;
    };

    QCoro::Task<int> run(QString title, QString text, QStringList buttons = {}, AlertManner manner = {}) override
    {
        m_manners.append(manner);
        m_shown.append(Shown{title, text, buttons});
        QPromise<int> promise;
        promise.start();
        const QFuture<int> pending = promise.future();
        if (m_isHeld)
            m_open.push_back(std::move(promise));
        else
            finish(promise, m_answer);
        const int pressed = co_await pending;
        co_return pressed;
    }

    void answerWith(int button) { m_answer = button; }
    void hold() { m_isHeld = true; }
    int openCount() const { return static_cast<int>(m_open.size()); }
    void dismiss(int button = 0)
    {
        QPromise<int> promise = std::move(m_open.front());
        m_open.pop_front();
        finish(promise, button);
    }

    QList<Shown> shown() const { return m_shown; }
    /// How the alert of the same place in shown() was meant.
    QList<AlertManner> manners() const { return m_manners; }
    QStringList titles() const
    {
        QStringList list;
        for (const Shown &alert : m_shown)
            list.append(alert.title);
        return list;
    }
    QStringList texts() const
    {
        QStringList list;
        for (const Shown &alert : m_shown)
            list.append(alert.text);
        return list;
    }

private:
    static void finish(QPromise<int> &promise, int button)
    {
        promise.addResult(button);
        promise.finish();
    }

    QList<Shown> m_shown;
    QList<AlertManner> m_manners;
    std::deque<QPromise<int>> m_open;
    int m_answer = 0;
    bool m_isHeld = false;
};
