#pragma once

#include <QString>

/// Tells when a reply is whole although nothing marks its end. Where it cannot tell, only silence can. It is asked
/// after each datagram with everything gathered so far, which only grows. Any thread, one at a time.
class ReplyEnd
{
public:
    /// The replies whose end can be known, by what was asked.
    enum class Kind {
        None,      ///< players, chat, kicks, whatever was typed: never
        Variable,  ///< a variable's name alone
        Dump,      ///< "dvardump", if its last line says how many variables there are
        EmptyWrite ///< "setadmindvar", if it is answered with nothing
    };

    /// @param command  as it is sent, without the password.
    explicit ReplyEnd(const QString &command = {});

    Kind kind() const { return m_kind; }
    /// From now on only silence ends the reply.
    void trustNothing() { m_kind = Kind::None; }

    bool isWhole(const QString &gathered);

    /// Whether a dump names the number of its variables and holds fewer.
    static bool isDumpShort(const QString &dump);

private:
    bool isDumpWhole(const QString &gathered);

    Kind m_kind = Kind::None;
    QString m_name;
    qsizetype m_counted = 0;   ///< characters of the dump whose lines are counted
    qsizetype m_variables = 0; ///< lines of variables among them
};
