#include "SavedServers.h"

#include "HostAndPort.h"
#include "PasswordEncryption.h"
#include "SortedKeys.h"

#include <QDir>

static constexpr qint64 largestFile = 2 << 20;
static constexpr qsizetype longestText = 10'000;
static constexpr QLatin1String encryptionPassword("VendRulpGam");
static constexpr QLatin1String hostKey("host");
static constexpr QLatin1String portKey("port");
static constexpr QLatin1String passwordKey("password");
static constexpr QLatin1String stringKind("string");
static constexpr QLatin1String dataKind("data");

/// A port that was written by hand may be a number.
static QString textOf(const QVariant &value)
{
    const auto [kind, text] = value.value<PropertyText>();
    return kind == stringKind || kind == QLatin1String("integer") ? text : QString();
}

static bool isStorable(const QString &text)
{
    return text.size() <= longestText && !text.contains(QChar(u'\0')) && QString::fromUtf8(text.toUtf8()) == text;
}

SavedServers::SavedServers(QString path, QString loginName)
    : m_file(std::move(path), largestFile), m_loginName(std::move(loginName))
{
}

SavedServersOutcome SavedServers::load()
{
    m_document.clear();
    if (!m_file.exists())
        return {};

    QString reason;
    if (const std::optional<QByteArray> content = m_file.read(&reason)) {
        if (takeContent(*content))
            return {};
        m_file.markDamaged();
        reason = tr("It is damaged.");
    }
    return {
        tr("The saved servers in \"%1\" could not be read. The list is empty; the file stays as it is, and is kept as "
           "a copy when you save a server.\n\n%2")
            .arg(QDir::toNativeSeparators(m_file.path()), reason),
        {}};
}

bool SavedServers::takeContent(const QByteArray &content)
{
    const std::optional<PropertyList> document = parsedPropertyList(content);
    // What could be read but never be written again would block every later change.
    if (!document || propertyListBytes(*document, largestFile).isEmpty())
        return false;
    m_document = *document;
    return true;
}

bool SavedServers::contains(const QString &label) const
{
    return m_document.value(label).typeId() == QMetaType::QVariantMap;
}

QList<SavedServer> SavedServers::servers() const
{
    QList<SavedServer> servers;
    for (const QString &label : sortedKeys(m_document)) {
        const QVariantMap entry = m_document.value(label).toMap();
        if (contains(label))
            servers.append({label, textOf(entry.value(hostKey)), textOf(entry.value(portKey)), std::nullopt});
    }
    return servers;
}

std::optional<SavedServer> SavedServers::find(const QString &text) const
{
    const QList<SavedServer> all = servers();
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (const SavedServer &server : all) {
            if (server.label.compare(text, sensitivity) == 0)
                return server;
        }
    }
    const HostAndPort wanted = splitHostAndPort(text);
    std::optional<SavedServer> found;
    for (const SavedServer &server : all) {
        if (wanted.port.isEmpty() || server.host.trimmed() != wanted.host || server.port.trimmed() != wanted.port)
            continue;
        if (password(server.label))
            return server;
        if (!found)
            found = server;
    }
    return found;
}

std::optional<QString> SavedServers::password(const QString &label) const
{
    const auto secret = m_document.value(label).toMap().value(passwordKey).value<PropertyText>();
    if (secret.kind != dataKind)
        return std::nullopt;
    const QByteArray encrypted = QByteArray::fromBase64(secret.text.toUtf8());
    return AES256DecryptWithPassword(encrypted, encryptionPassword, m_loginName);
}

SavedServersOutcome SavedServers::save(const SavedServer &entry)
{
    if (entry.label.isEmpty())
        return {tr("A server needs a label to be saved under."), {}};
    if (entry.password.value_or(QString()).size() > longestText || !isStorable(entry.label) ||
        !isStorable(entry.host) || !isStorable(entry.port))
        return {
            tr("The server was not saved: one of its texts is too long or holds a character that cannot be stored."),
            {}};

    if (m_document.contains(entry.label) && !contains(entry.label))
        m_file.markDamaged();
    QVariantMap changed = m_document.value(entry.label).toMap();
    changed.insert(hostKey, QVariant::fromValue(PropertyText{stringKind, entry.host}));
    changed.insert(portKey, QVariant::fromValue(PropertyText{stringKind, entry.port}));
    m_document.insert(entry.label, changed);
    return entry.password ? setPassword(entry.label, *entry.password) : write();
}

SavedServersOutcome SavedServers::setPassword(const QString &label, const QString &password)
{
    if (!contains(label))
        return {tr("There is no saved server \"%1\" any more; its password was not stored.").arg(label), {}};
    if (password.size() > longestText)
        return {tr("The password of \"%1\" is too long to be stored.").arg(label), {}};
    QVariantMap entry = m_document.value(label).toMap();
    const auto secret = AES256EncryptWithPassword(password, encryptionPassword, m_loginName);
    if (secret)
        entry.insert(passwordKey, QVariant::fromValue(PropertyText{dataKind, QString::fromLatin1(secret->toBase64())}));
    else
        entry.remove(passwordKey);
    m_document.insert(label, entry);
    SavedServersOutcome outcome = write();
    if (!secret && outcome.error.isEmpty())
        outcome.error = tr("The password of \"%1\" could not be encrypted. It was saved without it.").arg(label);
    return outcome;
}

SavedServersOutcome SavedServers::remove(const QStringList &labels)
{
    bool isChanged = false;
    for (const QString &label : labels) {
        if (contains(label))
            isChanged = m_document.remove(label) != 0;
    }
    return isChanged ? write() : SavedServersOutcome();
}

PropertyList SavedServers::entries(const QStringList &labels) const
{
    PropertyList copies;
    for (const QString &label : labels) {
        if (contains(label))
            copies.insert(label, m_document.value(label));
    }
    return copies;
}

SavedServersOutcome SavedServers::restore(const PropertyList &entries)
{
    bool isChanged = false;
    QStringList taken;
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (m_document.contains(entry.key())) {
            taken.append(entry.key());
            continue;
        }
        m_document.insert(entry.key(), entry.value());
        isChanged = true;
    }
    SavedServersOutcome outcome = isChanged ? write() : SavedServersOutcome();
    if (!taken.isEmpty() && outcome.error.isEmpty())
        outcome.error = tr("Another server has been saved as \"%1\" meanwhile. It stays, and the deleted one was not "
                           "brought back.")
                            .arg(taken.join(QLatin1String("\", \"")));
    return outcome;
}

SavedServersOutcome SavedServers::write()
{
    SavedServersOutcome outcome;
    const QByteArray bytes = propertyListBytes(m_document, largestFile);
    if (bytes.isEmpty())
        outcome.error = tr("The list is too large.");
    else
        outcome = m_file.write(bytes);
    if (!outcome.error.isEmpty())
        outcome.error =
            tr("The saved servers could not be written to \"%1\". The file on disk is unchanged; the list keeps your "
               "change until the program ends.\n\n%2")
                .arg(QDir::toNativeSeparators(m_file.path()), outcome.error);
    return outcome;
}
