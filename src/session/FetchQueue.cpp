#include "FetchQueue.h"

#include <algorithm>
#include <functional>

void FetchQueue::add(const QStringList &names)
{
    for (const QString &name : names) {
        if (contains(name))
            continue;
        m_names.insert(name);
        m_order.push_back(name);
    }
}

void FetchQueue::prefer(const QStringList &names)
{
    const QSet<QString> preferred(names.begin(), names.end());
    const auto isOther = [&preferred](const QString &name) {
        return !preferred.contains(name);
    };
    m_order.erase(std::remove_if(m_order.begin(), m_order.end(), std::not_fn(isOther)), m_order.end());
    QSet<QString> placed;
    std::deque<QString> front;
    for (const QString &name : names) {
        if (!contains(name) || placed.contains(name))
            continue;
        placed.insert(name);
        front.push_back(name);
    }
    m_order.insert(m_order.begin(), front.begin(), front.end());
}

void FetchQueue::clear()
{
    *this = FetchQueue();
}

void FetchQueue::remove(const QString &name)
{
    if (!m_names.remove(name))
        return;
    m_order.erase(std::find(m_order.begin(), m_order.end(), name));
    m_rounds.remove(name);
}

bool FetchQueue::postpone(const QString &name)
{
    if (!contains(name))
        return false;
    const int rounds = m_rounds.value(name) + 1;
    remove(name);
    if (rounds >= mostRounds)
        return false;
    m_rounds.insert(name, rounds);
    add({name});
    return true;
}
