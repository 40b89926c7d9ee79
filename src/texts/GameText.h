#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

/// Text on its way to the game, which knows the characters of Latin-1 and no others. A zero character would end the
/// request before its end. Any thread.
///
/// What Latin-1 lacks becomes something plain where that says the same: quotes, dashes, spaces, the ellipsis, primes
/// and the bullet; what nobody sees, such as a byte order mark, goes; a letter and the accent after it become one. What
/// Latin-1 has is never touched, also not « », a non-breaking space or a control character: a value that came from the
/// server goes back as it was.
class GameText
{
    Q_DECLARE_TR_FUNCTIONS(GameText)
public:
    /// For a command or an argument that the program puts together: a typographic double quote becomes a single one,
    /// as a plain double quote would end the quoted value that it stands in.
    static GameText of(const QString &text);
    /// For a line of the console: there the typographic quotes around a value were typed as the plain ones that the
    /// game needs, and become those. Within a value that stands between other quotes they become single ones.
    static GameText ofTypedLine(const QString &line);
    /// For passwords: nothing is replaced, and what the game cannot hold is found.
    static GameText asItStands(const QString &text);

    /// With everything replaced that can be; what cannot be sent is still in it.
    const QString &text() const { return m_text; }
    bool isSendable() const { return m_unsendable.isEmpty(); }
    /// What cannot be sent, as a user would count characters: each once, in order. What has no shape stands as
    /// "U+200E".
    const QStringList &unsendable() const { return m_unsendable; }
    /// A sentence that names them, the first ten at most; empty when everything can be sent.
    QString complaint() const;

private:
    enum class DoubleQuotes { Single, Typed };

    static GameText replaced(const QString &text, DoubleQuotes quotes);
    void refuse(const QString &character);

    QString m_text;
    QStringList m_unsendable;
};
