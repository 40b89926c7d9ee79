#pragma once

#include "GuardedFile.h"
#include "PropertyList.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// One row of the list: everything as the user typed it. The rows that servers() gives hold no password.
struct SavedServer {
    QString label;
    QString host;
    QString port;
    std::optional<QString> password;

    bool operator==(const SavedServer &) const = default;
};

/// What a reading or a writing of the file came to, in words for the user.
using SavedServersOutcome = GuardedFile::Outcome;

/// The servers that the user has saved, and their file: a property list from label to host, port and encrypted
/// password.
///
/// Every change is written at once. A change whose writing fails stays in the list until the program ends, and the
/// outcome says so. What the file holds beyond the known is left as it is: other keys of an entry, values of another
/// kind, passwords that cannot be decrypted. Main thread only.
class SavedServers
{
    Q_DECLARE_TR_FUNCTIONS(SavedServers)

public:
    /// @param path       the file; its folder is made when it is needed, for its owner only.
    /// @param loginName  encrypts the passwords, so that a file opens only for the account that wrote it.
    SavedServers(QString path, QString loginName);

    /// Reads the file anew. A missing file is an empty list and no error; with any error the list is empty, and the
    /// file is kept aside as a copy before something replaces it.
    [[nodiscard]] SavedServersOutcome load();
    /// What loading does with the bytes of the file. @return false, and the list is as it was, if they are damaged.
    [[nodiscard]] bool takeContent(const QByteArray &content);

    /// Sorted by label without regard to case.
    QList<SavedServer> servers() const;

    /// The entry that `text` means, without its password: that of this label, else of this label without regard to
    /// case, else at this HOST:PORT; of several at one address, the first whose password can be told.
    std::optional<SavedServer> find(const QString &text) const;

    /// Decrypted at every call, so that only the password in use stands readable in memory. Nothing if there is none or
    /// if it cannot be decrypted.
    std::optional<QString> password(const QString &label) const;

    /// Stores the entry under its label in place of an older one. Without a password the stored password stays.
    [[nodiscard]] SavedServersOutcome save(const SavedServer &entry);

    /// Removes all of `labels` and writes once; does nothing if none of them is known.
    [[nodiscard]] SavedServersOutcome remove(const QStringList &labels);

    /// Copies of whole entries, with the passwords encrypted as they are and with what this version does not know;
    /// labels that are not in the list are left out.
    PropertyList entries(const QStringList &labels) const;

    /// Puts such copies back and writes once. A server that has been saved under one of their labels meanwhile stays,
    /// and the error names it.
    [[nodiscard]] SavedServersOutcome restore(const PropertyList &entries);

    /// Replaces the password of a saved server; an error if there is none of that label.
    [[nodiscard]] SavedServersOutcome setPassword(const QString &label, const QString &password);

private:
    bool contains(const QString &label) const;
    SavedServersOutcome write();

    GuardedFile m_file;
    QString m_loginName;
    PropertyList m_document; // the whole file, with what this version does not know
};
