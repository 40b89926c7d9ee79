#include "DemoVariables.h"

#include "DemoContent.h"

namespace
{
QString withoutMarks(QString value)
{
    for (QChar &c : value) {
        if (c == u'"')
            c = u'\'';
        else if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    return value;
}
} // namespace

DemoVariables::DemoVariables()
{
    using Row = DemoVariableRow;
    for (const Row &row : demoVariableTable())
        add(QString::fromLatin1(row.name), QString::fromLatin1(row.value), row);
    for (const DemoMap &map : demoMaps())
        add(QString::fromLatin1(map.excludeVariable), QStringLiteral("0"), Row{"", "", Row::Switch});
    for (const DemoGametype &gametype : demoGametypes()) {
        const QString stem = QStringLiteral("rule_%1_").arg(QLatin1StringView(gametype.name));
        add(stem + QStringLiteral("overtime"), QStringLiteral("0"), Row{"", "", Row::Switch});
        add(stem + QStringLiteral("turns"), QStringLiteral("0"), Row{"", "", Row::Integer, 0, 25});
        add(stem + QStringLiteral("wait"), QStringLiteral("0"), Row{"", "", Row::Decimal, 0, 60});
        add(stem + QStringLiteral("rounds"), QStringLiteral("1"), Row{"", "", Row::Integer, 0, 12});
        add(stem + QStringLiteral("points"), QString::fromLatin1(gametype.scoreLimit),
            Row{"", "", Row::Integer, 0, 50000});
        add(stem + QStringLiteral("minutes"), QString::fromLatin1(gametype.timeLimit),
            Row{"", "", Row::Decimal, 0, 1440});
    }
}

void DemoVariables::hideAllButFew()
{
    for (Variable &variable : m_variables)
        variable.isHidden = true;
    for (const char *name : demoSparseNames()) {
        const auto found = m_variables.find(QString::fromLatin1(name).toLower());
        Q_ASSERT(found != m_variables.end());
        found->isHidden = false;
    }
}

bool DemoVariables::contains(const QString &name) const
{
    const auto found = m_variables.constFind(name.toLower());
    return found != m_variables.constEnd() && !found->isHidden;
}

void DemoVariables::add(const QString &name, const QString &value, const DemoVariableRow &kind)
{
    m_variables.insert(name.toLower(), {name, value, value, kind.domain, kind.lowest, kind.highest, kind.trait, false});
}

bool DemoVariables::isValid(const Variable &variable, const QString &value)
{
    bool isNumber = false;
    switch (variable.domain) {
    case DemoVariableRow::Text:
        return true;
    case DemoVariableRow::Switch:
        return value == u"0" || value == u"1";
    case DemoVariableRow::Integer: {
        const qlonglong number = value.toLongLong(&isNumber);
        return isNumber && number >= variable.lowest && number <= variable.highest;
    }
    case DemoVariableRow::Decimal: {
        const double number = value.toDouble(&isNumber);
        return isNumber && number >= variable.lowest && number <= variable.highest;
    }
    case DemoVariableRow::Gametype:
        return findDemoGametype(value) != nullptr;
    }
    return false;
}

DemoVariables::Outcome DemoVariables::write(const QString &name, QString value)
{
    const auto found = m_variables.find(name.toLower());
    if (found == m_variables.end() || found->isHidden)
        return Outcome::Unknown;
    if (found->trait == DemoVariableRow::ReadOnly)
        return Outcome::ReadOnly;
    if (value.size() > MaximumLength)
        return Outcome::TooLong;
    value = withoutMarks(std::move(value));
    if (found->domain != DemoVariableRow::Text)
        value = value.trimmed();
    if (!isValid(*found, value))
        return Outcome::NotValid;
    found->value = value;
    if (found->trait != DemoVariableRow::Latched)
        found->inForce = value;
    return Outcome::Written;
}

void DemoVariables::assign(const QString &name, const QString &value)
{
    const auto found = m_variables.find(name.toLower());
    Q_ASSERT(found != m_variables.end());
    found->value = value;
    found->inForce = value;
}

void DemoVariables::bringIntoForce()
{
    for (Variable &variable : m_variables)
        variable.inForce = variable.value;
}

QString DemoVariables::description(const QString &name) const
{
    const Variable variable = m_variables.value(name.toLower());
    // One arg() for all three: a value may hold a place marker itself.
    return QStringLiteral("\"%1\" is: \"%2\"^7 in force: \"%3\"^7\n")
               .arg(variable.name, variable.value, variable.inForce) +
           domain(name);
}

QString DemoVariables::domain(const QString &name) const
{
    const Variable variable = m_variables.value(name.toLower());
    switch (variable.domain) {
    case DemoVariableRow::Text:
        return {};
    case DemoVariableRow::Switch:
        return QStringLiteral("  Takes 0 or 1\n");
    case DemoVariableRow::Integer:
        return QStringLiteral("  Takes any whole number from %1 to %2\n").arg(variable.lowest).arg(variable.highest);
    case DemoVariableRow::Decimal:
        return QStringLiteral("  Takes any number from %1 to %2\n").arg(variable.lowest).arg(variable.highest);
    case DemoVariableRow::Gametype:
        break;
    }
    QString names;
    for (const DemoGametype &gametype : demoGametypes())
        names += u' ' + QString::fromLatin1(gametype.name);
    return QStringLiteral("  Takes one of:") + names + u'\n';
}

QString DemoVariables::dump(bool withCount) const
{
    QString text;
    int count = 0;
    for (const Variable &variable : m_variables) {
        if (variable.isHidden)
            continue;
        ++count;
        const QChar readOnly = variable.trait == DemoVariableRow::ReadOnly ? u'R' : u' ';
        const QChar latched = variable.trait == DemoVariableRow::Latched ? u'L' : u' ';
        text += QStringLiteral("S%1%2    ").arg(readOnly).arg(latched);
        text += variable.name + QStringLiteral(" \"") + variable.value + QStringLiteral("\"\n");
    }
    return withCount ? text + QStringLiteral("\n%1 total dvars\n").arg(count) : text;
}
