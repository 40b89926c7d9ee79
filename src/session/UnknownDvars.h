#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

class Preferences;

/// Which catalogued variables a server did not know when it was asked last: they are asked for last. Only names are
/// kept, for seven days. Main thread only.
class UnknownDvars
{
public:
    static constexpr int daysKept = 7;

    /// `preferences` outlives this.
    explicit UnknownDvars(Preferences &preferences) : m_preferences(preferences) {}

    /// @param server  host as typed, in lower case, and port.
    QStringList of(const QString &server, const QDateTime &now) const;
    void remember(const QString &server, const QStringList &names, const QDateTime &now);
    void forget(const QString &server);

private:
    Preferences &m_preferences;
};
