#pragma once

#include "DemoVariableTable.h"

#include <QMap>
#include <QString>

/// The variables of the simulated server. Names are found in any case. The set of names is fixed, and values have a
/// largest length, so that no client can make it grow.
class DemoVariables
{
public:
    static constexpr int MaximumLength = 8192;

    enum class Outcome { Written, Unknown, ReadOnly, NotValid, TooLong };

    DemoVariables();

    /// From now on the console knows a few names only. The game goes on by the values that all the others had.
    void hideAllButFew();

    bool contains(const QString &name) const;
    /// The value as last written, also of a hidden variable; empty for an unknown name.
    QString value(const QString &name) const { return m_variables.value(name.toLower()).value; }
    /// The value that the running map goes by: that of a latched variable changes with the map only.
    QString inForce(const QString &name) const { return m_variables.value(name.toLower()).inForce; }

    /// Writes as a client may. Double quotes in the value become single ones and control characters blanks, as the
    /// dump could not tell them from its own.
    Outcome write(const QString &name, QString value);
    /// Writes as the server itself does, without any check. `name` is one that exists.
    void assign(const QString &name, const QString &value);
    void bringIntoForce();

    /// What the console shows for a bare name: the name, its value and the value in force, each between quotes.
    QString description(const QString &name) const;
    /// What values the variable takes, as a sentence; empty for one that takes any text.
    QString domain(const QString &name) const;
    /// All variables, one a line.
    /// @param withCount  a last line tells their number.
    QString dump(bool withCount) const;

private:
    struct Variable {
        QString name;
        QString value;
        QString inForce;
        DemoVariableRow::Domain domain = DemoVariableRow::Text;
        int lowest = 0;
        int highest = 0;
        DemoVariableRow::Trait trait = DemoVariableRow::None;
        bool isHidden = false;
    };

    void add(const QString &name, const QString &value, const DemoVariableRow &kind);
    static bool isValid(const Variable &variable, const QString &value);

    QMap<QString, Variable> m_variables; ///< by name in lower case, which is also the order of the dump
};
