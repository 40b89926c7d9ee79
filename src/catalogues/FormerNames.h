#pragma once

#include <QHash>
#include <QString>

/// What former versions called the variables, gametypes and maps of the game. Files that a user saved with such a name
/// go on to work with the present one. Cheap to copy; any thread.
class FormerNames
{
public:
    FormerNames() = default; ///< no name has changed
    /// Reads the table of names. Without one in the folder, no name has changed. May block for as long as the disk
    /// does.
    /// @param resources  the folder of the shipped files.
    explicit FormerNames(const QString &resources);

    /// The present name of what was called `name`; `name` itself if that has not changed.
    QString present(const QString &name) const { return m_names.value(name, name); }
    /// The same of every word of `text`, between single blanks.
    QString presentWords(const QString &text) const;
    /// Whether a server with these variables goes by present names: it has one of them, and none of the former.
    bool haveChangedFor(const QHash<QString, QString> &dvars) const;

    const QHash<QString, QString> &names() const { return m_names; } ///< former to present

private:
    QHash<QString, QString> m_names;
};
