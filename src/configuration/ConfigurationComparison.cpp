#include "ConfigurationComparison.h"

#include "GameText.h"
#include "QuotedStrings.h"
#include "Secrets.h"

#include <QSet>

ConfigurationComparison::ConfigurationComparison(const QList<ConfigurationEntry> &file,
                                                 const QHash<QString, QString> &dvars,
                                                 const QList<ConfigurationEntry> &written)
{
    QSet<QString> inFile;
    for (const ConfigurationEntry &entry : file) {
        inFile.insert(entry.dvar);
        const auto now = dvars.constFind(entry.dvar);
        if (now == dvars.constEnd()) {
            add(entry.dvar, std::nullopt, entry.value, State::OnlyInFile);
            m_changes.append(entry);
            continue;
        }
        // As it would be sent, or what has just been loaded would go on to differ.
        const QString sent = holdsPassword(entry.dvar) ? entry.value : GameText::of(entry.value).text();
        const bool isSame = withoutOuterQuotes(sent) == withoutOuterQuotes(*now);
        add(entry.dvar, *now, entry.value, isSame ? State::Same : State::Differs);
        if (!isSame)
            m_changes.append(entry);
    }
    for (const ConfigurationEntry &entry : written) {
        if (!inFile.contains(entry.dvar))
            add(entry.dvar, entry.value, std::nullopt, State::OnlyOnServer);
    }
}

void ConfigurationComparison::add(const QString &dvar, const std::optional<QString> &now,
                                  const std::optional<QString> &inFile, State state)
{
    const bool isHidden = holdsPassword(dvar);
    const auto shown = [isHidden](const std::optional<QString> &value) {
        if (!value)
            return QString();
        return isHidden ? tr("(hidden)") : *value;
    };
    // Where a tab stands between them, the value belongs to the name.
    const QString name = isHidden ? dvar.section(QLatin1Char('"'), 0, 0) : dvar;
    m_rows.append(Row{name, shown(now), shown(inFile), state});
    ++m_counts[static_cast<int>(state)];
}

QString ConfigurationComparison::stateText(State state)
{
    switch (state) {
    case State::Differs:
        return tr("Differs");
    case State::OnlyInFile:
        return tr("Only in file");
    case State::OnlyOnServer:
        return tr("Only on server");
    case State::Same:
        return tr("Same");
    }
    return {};
}
