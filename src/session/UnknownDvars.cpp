#include "UnknownDvars.h"

#include "Preferences.h"

#include <QVariantMap>

#include <utility>

static constexpr QLatin1String key("unknownVariables");
static constexpr QLatin1String dateKey("asked");
static constexpr QLatin1String namesKey("names");

/// What is too old goes, so that servers which are no longer visited leave nothing behind.
static QVariantMap withoutOld(QVariantMap servers, const QDateTime &now)
{
    for (auto each = servers.begin(); each != servers.end();) {
        const QDateTime asked = each->toMap().value(dateKey).toDateTime();
        const bool isFresh = asked.isValid() && asked <= now && asked.daysTo(now) < UnknownDvars::daysKept;
        each = isFresh ? std::next(each) : servers.erase(each);
    }
    return servers;
}

QStringList UnknownDvars::of(const QString &server, const QDateTime &now) const
{
    const QVariantMap servers = withoutOld(m_preferences.value(key).toMap(), now);
    return servers.value(server).toMap().value(namesKey).toStringList();
}

void UnknownDvars::remember(const QString &server, const QStringList &names, const QDateTime &now)
{
    QVariantMap servers = withoutOld(m_preferences.value(key).toMap(), now);
    if (names.isEmpty())
        servers.remove(server);
    else
        servers.insert(server, QVariantMap{{dateKey, now}, {namesKey, names}});
    m_preferences.setValue(key, servers);
}

void UnknownDvars::forget(const QString &server)
{
    QVariantMap servers = m_preferences.value(key).toMap();
    servers.remove(server);
    m_preferences.setValue(key, servers);
}
