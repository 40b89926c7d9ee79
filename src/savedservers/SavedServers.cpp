#include "SavedServers.h"

#include "HostAndPort.h"
#include "PasswordEncryption.h"
#include "SortedKeys.h"

#include <QDir>

#include <plist/plist.h>

#include <cstdlib>
#include <functional>

static constexpr qint64 largestFile = 2 << 20;
static constexpr qsizetype longestText = 10'000;
static constexpr QLatin1String encryptionPassword("VendRulpGam");

using Text = std::unique_ptr<char, decltype(&std::free)>;

static QString textOf(plist_t entry, const char *key)
{
    const plist_t node = plist_dict_get_item(entry, key);
    if (node != nullptr && plist_get_node_type(node) == PLIST_STRING)
        return QString::fromUtf8(plist_get_string_ptr(node, nullptr));
    if (node == nullptr || plist_get_node_type(node) != PLIST_UINT)
        return {};
    uint64_t number = 0; // a port that somebody has written by hand
    plist_get_uint_val(node, &number);
    return QString::number(number);
}

static std::optional<QString> passwordOf(plist_t entry, const QString &loginName)
{
    const plist_t node = plist_dict_get_item(entry, "password");
    if (node == nullptr || plist_get_node_type(node) != PLIST_DATA)
        return std::nullopt;
    uint64_t length = 0;
    const char *bytes = plist_get_data_ptr(node, &length);
    return AES256DecryptWithPassword(QByteArray(bytes, static_cast<qsizetype>(length)), encryptionPassword, loginName);
}

static void forEachItem(plist_t dictionary, const std::function<void(const char *key, plist_t item)> &visit)
{
    plist_dict_iter place = nullptr;
    plist_dict_new_iter(dictionary, &place);
    const std::unique_ptr<void, decltype(&std::free)> placeOwner(place, &std::free);
    for (;;) {
        char *key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(dictionary, place, &key, &item);
        const Text keyOwner(key, &std::free);
        if (item == nullptr)
            return;
        visit(key, item);
    }
}

static bool isStorable(const QString &text)
{
    return text.size() <= longestText && !text.contains(QChar(u'\0')) && QString::fromUtf8(text.toUtf8()) == text;
}

SavedServers::SavedServers(QString path, QString loginName)
    : m_file(std::move(path), largestFile), m_loginName(std::move(loginName)), m_document(plist_new_dict())
{
}

SavedServersOutcome SavedServers::load()
{
    m_document.reset(plist_new_dict());
    m_servers.clear();
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
    PropertyList document = parsedPropertyList(content);
    // What could be read but never be written again would block every later change.
    if (document == nullptr || propertyListBytes(document.get(), largestFile).isEmpty())
        return false;
    m_document = std::move(document);
    m_servers.clear();
    readEntries();
    return true;
}

void SavedServers::readEntries()
{
    forEachItem(m_document.get(), [this](const char *key, plist_t entry) {
        if (plist_get_node_type(entry) == PLIST_DICT)
            readEntry(QString::fromUtf8(key), entry);
    });
}

void SavedServers::readEntry(const QString &label, void *entry)
{
    m_servers.insert(label, {label, textOf(entry, "host"), textOf(entry, "port"), std::nullopt});
}

QList<SavedServer> SavedServers::servers() const
{
    return valuesSortedByKey(m_servers);
}

std::optional<SavedServer> SavedServers::find(const QString &text) const
{
    const auto exact = m_servers.constFind(text);
    if (exact != m_servers.constEnd())
        return *exact;
    const QList<SavedServer> all = servers();
    for (const SavedServer &server : all) {
        if (server.label.compare(text, Qt::CaseInsensitive) == 0)
            return server;
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
    if (!m_servers.contains(label))
        return std::nullopt;
    return passwordOf(plist_dict_get_item(m_document.get(), label.toUtf8().constData()), m_loginName);
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

    const QByteArray label = entry.label.toUtf8();
    plist_t node = plist_dict_get_item(m_document.get(), label.constData());
    if (node == nullptr || plist_get_node_type(node) != PLIST_DICT) {
        if (node != nullptr)
            m_file.markDamaged();
        node = plist_new_dict();
        plist_dict_set_item(m_document.get(), label.constData(), node);
    }
    plist_dict_set_item(node, "host", plist_new_string(entry.host.toUtf8().constData()));
    plist_dict_set_item(node, "port", plist_new_string(entry.port.toUtf8().constData()));
    m_servers.insert(entry.label, {entry.label, entry.host, entry.port, std::nullopt});
    return entry.password ? setPassword(entry.label, *entry.password) : write();
}

SavedServersOutcome SavedServers::setPassword(const QString &label, const QString &password)
{
    if (!m_servers.contains(label))
        return {tr("There is no saved server \"%1\" any more; its password was not stored.").arg(label), {}};
    if (password.size() > longestText)
        return {tr("The password of \"%1\" is too long to be stored.").arg(label), {}};
    const plist_t entry = plist_dict_get_item(m_document.get(), label.toUtf8().constData());
    const auto secret = AES256EncryptWithPassword(password, encryptionPassword, m_loginName);
    if (secret)
        plist_dict_set_item(entry, "password",
                            plist_new_data(secret->constData(), static_cast<uint64_t>(secret->size())));
    else
        plist_dict_remove_item(entry, "password");
    SavedServersOutcome outcome = write();
    if (!secret && outcome.error.isEmpty())
        outcome.error = tr("The password of \"%1\" could not be encrypted. It was saved without it.").arg(label);
    return outcome;
}

SavedServersOutcome SavedServers::remove(const QStringList &labels)
{
    bool isChanged = false;
    for (const QString &label : labels) {
        if (m_servers.remove(label) == 0)
            continue;
        plist_dict_remove_item(m_document.get(), label.toUtf8().constData());
        isChanged = true;
    }
    return isChanged ? write() : SavedServersOutcome();
}

PropertyList SavedServers::entries(const QStringList &labels) const
{
    PropertyList copies(plist_new_dict());
    for (const QString &label : labels) {
        const QByteArray key = label.toUtf8();
        if (m_servers.contains(label))
            plist_dict_set_item(copies.get(), key.constData(),
                                plist_copy(plist_dict_get_item(m_document.get(), key.constData())));
    }
    return copies;
}

SavedServersOutcome SavedServers::restore(const PropertyList &entries)
{
    bool isChanged = false;
    QStringList taken;
    forEachItem(entries.get(), [&](const char *key, plist_t entry) {
        const QString label = QString::fromUtf8(key);
        if (plist_dict_get_item(m_document.get(), key) != nullptr) {
            taken.append(label);
            return;
        }
        plist_dict_set_item(m_document.get(), key, plist_copy(entry));
        readEntry(label, entry);
        isChanged = true;
    });
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
    const QByteArray bytes = propertyListBytes(m_document.get(), largestFile);
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
