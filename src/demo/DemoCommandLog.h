#pragma once

#include <QStringList>

/// The commands that a simulated server was sent, oldest first. Bounded: the oldest make room.
class DemoCommandLog
{
public:
    static constexpr qsizetype MaximumEntries = 100'000;
    static constexpr qsizetype MaximumCharacters = 16'000'000;
    static constexpr qsizetype LongestEntry = 4'096; ///< longer commands are kept cut

    void append(const QString &command)
    {
        m_entries.append(command.left(LongestEntry));
        m_characters += m_entries.last().size();
        while (m_entries.size() > MaximumEntries || m_characters > MaximumCharacters)
            m_characters -= m_entries.takeFirst().size();
    }
    QStringList entries() const { return m_entries; }

private:
    QStringList m_entries;
    qsizetype m_characters = 0;
};
