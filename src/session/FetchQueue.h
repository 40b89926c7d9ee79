#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <deque>

/// The variables that are still to be asked for: which comes next, and which have been ignored too often. Main thread
/// only.
class FetchQueue
{
public:
    static constexpr int mostRounds = 4; ///< that one variable is asked for

    /// Appends those that are not in it.
    void add(const QStringList &names);
    /// Moves those that are in it to the front, in the order given.
    void prefer(const QStringList &names);
    void clear();

    bool isEmpty() const { return m_order.empty(); }
    bool contains(const QString &name) const { return m_names.contains(name); }
    const QString &first() const { return m_order.front(); }

    /// The server has told of it, one way or the other.
    void remove(const QString &name);
    /// No answer came: it is asked for again after the others. @return false if that was the last time.
    bool postpone(const QString &name);

private:
    std::deque<QString> m_order;
    QSet<QString> m_names;
    QHash<QString, int> m_rounds; ///< in which no answer came
};
