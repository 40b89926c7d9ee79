#pragma once

#include "ConfigurationFile.h"

#include <QCoreApplication>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

/// What a configuration file would change at the server. Plain values; any thread.
class ConfigurationComparison
{
    Q_DECLARE_TR_FUNCTIONS(ConfigurationComparison)
public:
    enum class State { Differs, OnlyInFile, OnlyOnServer, Same };

    /// One variable; a side that lacks it has an empty value.
    struct Row {
        QString dvar;
        QString valueNow;
        QString valueInFile;
        State state = State::Same;

        bool operator==(const Row &) const = default;
    };

    ConfigurationComparison() = default;
    /// @param file     what the file sets.
    /// @param dvars    name to value as the session holds it.
    /// @param written  what a configuration of everything would hold: variables of it that the file lacks are told too.
    ConfigurationComparison(const QList<ConfigurationEntry> &file, const QHash<QString, QString> &dvars,
                            const QList<ConfigurationEntry> &written);

    /// The variables in the order of the file, then those that it lacks. A value that is a password stands as
    /// "(hidden)" wherever there is one; the state tells of it like of any other.
    const QList<Row> &rows() const { return m_rows; }
    /// The entries of the file that would change the server: those that differ and those that it does not report.
    const QList<ConfigurationEntry> &changes() const { return m_changes; }
    qsizetype count(State state) const { return m_counts.value(static_cast<int>(state)); }

    static QString stateText(State state);

private:
    void add(const QString &dvar, const std::optional<QString> &now, const std::optional<QString> &inFile, State state);

    QList<Row> m_rows;
    QList<ConfigurationEntry> m_changes;
    QList<qsizetype> m_counts{0, 0, 0, 0};
};
