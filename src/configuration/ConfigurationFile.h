#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>

#include <optional>

/// One variable of a configuration and its value, without the quotes around it.
struct ConfigurationEntry {
    QString dvar;
    QString value;

    bool operator==(const ConfigurationEntry &) const = default;
};

/// A file that sets variables of a game server, one on a line: a name and a value in double quotes. Any thread.
class ConfigurationFile
{
    Q_DECLARE_TR_FUNCTIONS(ConfigurationFile)
public:
    /// What came of reading a file: its text, or why there is none, in the user's language.
    struct Content {
        std::optional<QString> text;
        QString error;
    };

    static constexpr qint64 largestSize = 16 * 1024 * 1024; ///< in bytes
    static constexpr qsizetype mostEntries = 200'000;       ///< that it makes sense to show or to write

    ConfigurationFile() = delete;

    /// Reads a file of any encoding that decoded() knows. Files larger than largestSize, what is no file, and bytes
    /// that are no text are refused. May block for as long as the disk does.
    static Content read(const QString &path);

    /// The text of `bytes`: by their byte order mark, else as UTF-16 if every other byte looks empty, else as UTF-8 if
    /// they are valid, else as Latin-1. Nothing if they hold a zero character, which no text does.
    static std::optional<QString> decoded(const QByteArray &bytes);

    /// The variables that `text` sets, in the order of its lines; of several lines for one variable the first counts.
    /// A line counts if it has one quoted text and two words at least, and does not begin with two slashes; its first
    /// word is the variable. Lines longer than the largest datagram are left out: no server could be told them. Of more
    /// than mostEntries variables just one more is taken.
    static QList<ConfigurationEntry> entries(const QString &text);
};
