#include "SavedServers.h"

#include "PasswordEncryption.h"
#include "SortedKeys.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include <plist/plist.h>

#include <cstdlib>

static constexpr qint64 largestFile = 2 << 20;
static constexpr qsizetype longestText = 10'000;
static constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
static constexpr QLatin1String encryptionPassword("VendRulpGam");

using Text = std::unique_ptr<char, decltype(&std::free)>;

// What reading a property list may cost. libplist follows nesting by recursion until the stack ends, and copies a value
// for every reference to it, so both are measured before it sees a file.
static constexpr int deepestLevel = 32;
static constexpr quint64 largestCost = 16 << 20;
static constexpr quint64 nodeCost = 64;

/// Walks the objects of a binary property list as they will be read.
class BinaryPlistWalk
{
public:
    explicit BinaryPlistWalk(const QByteArray &data) : m_data(data) {}

    bool isHarmless()
    {
        constexpr quint64 trailerSize = 32;
        const quint64 trailer = size() - trailerSize;
        if (size() < trailerSize + 8)
            return false;
        m_offsetSize = number(trailer + 6, 1);
        m_referenceSize = number(trailer + 7, 1);
        m_objectCount = number(trailer + 8, 8);
        m_offsetTable = number(trailer + 24, 8);
        const bool isSound = m_offsetSize >= 1 && m_offsetSize <= 8 && m_referenceSize >= 1 && m_referenceSize <= 8 &&
                             m_offsetTable < trailer && m_objectCount <= (trailer - m_offsetTable) / m_offsetSize;
        return isSound && walk(number(trailer + 16, 8), deepestLevel);
    }

private:
    quint64 size() const { return static_cast<quint64>(m_data.size()); }

    quint64 number(quint64 position, quint64 width) const
    {
        quint64 value = 0;
        for (quint64 i = position; i < position + width && i < size(); ++i)
            value = value << 8 | static_cast<quint8>(m_data[static_cast<qsizetype>(i)]);
        return value;
    }

    bool take(quint64 bytes) { return (m_cost += bytes + nodeCost) <= largestCost; }

    /// libplist ends the program over a key with a zero in it.
    bool isWholeText(quint64 kind, quint64 position, quint64 count) const
    {
        const quint64 width = kind - 4;
        bool isWhole = position <= size() && count <= (size() - position) / width;
        for (quint64 i = 0; i < count && isWhole; ++i)
            isWhole = number(position + i * width, width) != 0;
        return isWhole;
    }

    bool walk(quint64 object, int levels)
    {
        if (object >= m_objectCount || levels == 0)
            return false;
        quint64 position = number(m_offsetTable + object * m_offsetSize, m_offsetSize);
        if (position >= m_offsetTable)
            return false;
        const quint64 marker = number(position++, 1);
        quint64 count = marker & 0x0f;
        if (count == 0x0f) {
            const quint64 exponent = number(position++, 1) & 0x0f;
            if (exponent > 3)
                return false;
            count = number(position, quint64(1) << exponent);
            position += quint64(1) << exponent;
        }
        const quint64 kind = marker >> 4;
        const bool isDictionary = kind == 0xd;
        if (!isDictionary && kind != 0xa && kind != 0xc)
            return ((kind != 5 && kind != 6) || isWholeText(kind, position, count)) &&
                   take(std::min(count, size()) * 3); // from UTF-16 to UTF-8
        if (position > size() || count > (size() - position) / m_referenceSize / (isDictionary ? 2 : 1))
            return false;
        for (quint64 i = 0; i < count * (isDictionary ? 2 : 1); ++i) {
            if (!walk(number(position + i * m_referenceSize, m_referenceSize), levels - 1))
                return false;
        }
        return take(0);
    }

    const QByteArray &m_data;
    quint64 m_cost = 0;
    quint64 m_offsetSize = 0;
    quint64 m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_offsetTable = 0;
};

/// Stricter than libplist, so that both see the same elements: well-formed UTF-8, no definitions of its own, and no
/// attribute that could hide the end of a tag.
static bool isHarmlessXml(const QByteArray &data)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(data);
    if (decoder.hasError())
        return false;
    QXmlStreamReader reader(text);
    quint64 elements = 0;
    int level = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isDTD() && reader.text().contains(QLatin1Char('[')))
            return false;
        if (reader.isEndElement())
            --level;
        if (!reader.isStartElement())
            continue;
        const bool isPlain = reader.attributes().isEmpty() || (level == 0 && reader.name() == QLatin1String("plist"));
        if (++level > deepestLevel || !isPlain || ++elements > largestCost / nodeCost)
            return false;
    }
    return !reader.hasError();
}

/// @return the root, which the caller frees; null for anything but a sound and harmless dictionary.
static plist_t parsed(const QByteArray &data)
{
    plist_t root = nullptr;
    const auto length = static_cast<uint32_t>(data.size());
    if (data.startsWith("bplist00")) {
        if (BinaryPlistWalk(data).isHarmless())
            plist_from_bin(data.constData(), length, &root);
    } else if (isHarmlessXml(data)) {
        plist_from_xml(data.constData(), length, &root);
    }
    if (root != nullptr && plist_get_node_type(root) == PLIST_DICT)
        return root;
    plist_free(root);
    return nullptr;
}

/// @return the document in a form that is known to be read again; empty if there is none. That is XML, and binary for
/// what XML cannot hold, such as control characters in the text of another program.
static QByteArray serialized(plist_t document)
{
    for (const auto writer : {plist_to_xml, plist_to_bin}) {
        char *buffer = nullptr;
        uint32_t length = 0;
        writer(document, &buffer, &length);
        const Text owner(buffer, &std::free);
        const QByteArray bytes(buffer, static_cast<qsizetype>(length));
        const plist_t readAgain = bytes.size() <= largestFile ? parsed(bytes) : nullptr;
        const bool isReadable = readAgain != nullptr;
        plist_free(readAgain);
        if (isReadable)
            return bytes;
    }
    return {};
}

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

static bool isStorable(const QString &text)
{
    return text.size() <= longestText && !text.contains(QChar(u'\0')) && QString::fromUtf8(text.toUtf8()) == text;
}

/// @return the content of at most `largestFile` bytes; nothing, with the reason, if there is more or it is unreadable.
static std::optional<QByteArray> contentOf(const QString &path, QString *error)
{
    // Opening anything else, such as a pipe, could wait for ever.
    if (!QFileInfo(path).isFile()) {
        *error = SavedServers::tr("it is not a file");
        return std::nullopt;
    }
    QFile file(path);
    QByteArray content;
    if (file.open(QIODevice::ReadOnly))
        content = file.read(largestFile + 1);
    if (file.error() == QFileDevice::NoError && content.size() <= largestFile)
        return content;
    *error = content.size() > largestFile ? SavedServers::tr("it is larger than %1 MB").arg(largestFile >> 20)
                                          : file.errorString();
    return std::nullopt;
}

static QByteArray digestOf(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256);
}

void SavedServers::NodeDeleter::operator()(void *node) const
{
    plist_free(node);
}

SavedServers::SavedServers(QString path, QString loginName)
    : m_path(std::move(path)), m_loginName(std::move(loginName)), m_document(plist_new_dict())
{
}

SavedServersOutcome SavedServers::load()
{
    m_document.reset(plist_new_dict());
    m_servers.clear();
    m_knownDigest.clear();
    m_wouldLoseContent = false;
    if (!QFileInfo::exists(m_path))
        return {};

    QString reason;
    if (const std::optional<QByteArray> content = contentOf(m_path, &reason)) {
        m_knownDigest = digestOf(*content);
        m_document.reset(parsed(*content));
        // What could be read but never be written again would block every later change.
        if (m_document != nullptr && !serialized(m_document.get()).isEmpty()) {
            readEntries();
            return {};
        }
        m_document.reset(plist_new_dict());
        reason = tr("it is damaged");
    }
    m_wouldLoseContent = true;
    return {
        tr("The saved servers in \"%1\" could not be read: %2. The list is empty; the file stays as it is, and is kept "
           "as a copy when you save a server.")
            .arg(QDir::toNativeSeparators(m_path), reason),
        {}};
}

void SavedServers::readEntries()
{
    plist_dict_iter place = nullptr;
    plist_dict_new_iter(m_document.get(), &place);
    const std::unique_ptr<void, decltype(&std::free)> placeOwner(place, &std::free);
    for (;;) {
        char *key = nullptr;
        plist_t entry = nullptr;
        plist_dict_next_item(m_document.get(), place, &key, &entry);
        const Text keyOwner(key, &std::free);
        if (entry == nullptr)
            return;
        if (plist_get_node_type(entry) != PLIST_DICT)
            continue;
        if (plist_dict_get_item(m_document.get(), key) != entry) { // a label twice: the first counts
            m_wouldLoseContent = true;
            continue;
        }
        const QString label = QString::fromUtf8(key);
        m_servers.insert(label, {label, textOf(entry, "host"), textOf(entry, "port"), passwordOf(entry, m_loginName)});
    }
}

QList<SavedServer> SavedServers::servers() const
{
    return valuesSortedByKey(m_servers);
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
        m_wouldLoseContent = m_wouldLoseContent || node != nullptr;
        node = plist_new_dict();
        plist_dict_set_item(m_document.get(), label.constData(), node);
    }
    plist_dict_set_item(node, "host", plist_new_string(entry.host.toUtf8().constData()));
    plist_dict_set_item(node, "port", plist_new_string(entry.port.toUtf8().constData()));
    m_servers.insert(entry.label, {entry.label, entry.host, entry.port, passwordOf(node, m_loginName)});
    return entry.password ? setPassword(entry.label, *entry.password) : write();
}

SavedServersOutcome SavedServers::setPassword(const QString &label, const QString &password)
{
    const auto server = m_servers.find(label);
    if (server == m_servers.end())
        return {tr("There is no saved server \"%1\" any more; its password was not stored.").arg(label), {}};
    if (password.size() > longestText)
        return {tr("The password of \"%1\" is too long to be stored.").arg(label), {}};
    server->password = password;
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

/// Copies the file if replacing it would lose something: it was unreadable, or another program has written it since.
bool SavedServers::keepAside(SavedServersOutcome *outcome) const
{
    if (!QFileInfo::exists(m_path))
        return true;
    QString reason;
    const std::optional<QByteArray> content = contentOf(m_path, &reason);
    if (content && digestOf(*content) == m_knownDigest && !m_wouldLoseContent)
        return true;
    const QString name = m_path + (m_wouldLoseContent ? QLatin1String(".damaged-") : QLatin1String(".changed-")) +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    outcome->keptCopy = name;
    for (int number = 2; QFileInfo::exists(outcome->keptCopy); ++number)
        outcome->keptCopy = name + QStringLiteral("-%1").arg(number);
    QFile file(m_path);
    if (QFileInfo(m_path).isFile() && file.copy(outcome->keptCopy) &&
        QFile::setPermissions(outcome->keptCopy, ownerOnly))
        return true;
    outcome->keptCopy.clear();
    outcome->error =
        tr("The former file could not be kept as a copy: %1.").arg(reason.isEmpty() ? file.errorString() : reason);
    return false;
}

SavedServersOutcome SavedServers::write()
{
    SavedServersOutcome outcome;
    const QString folder = QFileInfo(m_path).absolutePath();
    const bool hasFolder = QFileInfo::exists(folder) ||
                           (QDir().mkpath(folder) && QFile::setPermissions(folder, ownerOnly | QFileDevice::ExeOwner));
    const QByteArray bytes = serialized(m_document.get());
    QSaveFile file(m_path);
    if (bytes.isEmpty()) {
        outcome.error = tr("The list is too large.");
    } else if (!hasFolder) {
        outcome.error = tr("The folder \"%1\" could not be made.").arg(QDir::toNativeSeparators(folder));
    } else if (keepAside(&outcome)) {
        // The permissions are narrowed while the new file is still empty. commit() alone would not notice a full disk.
        if (file.open(QIODevice::WriteOnly) && file.setPermissions(ownerOnly) && file.write(bytes) == bytes.size() &&
            file.flush() && file.commit()) {
            m_knownDigest = digestOf(bytes);
            m_wouldLoseContent = false;
            return outcome;
        }
        outcome.error = file.errorString() + QLatin1Char('.');
    }
    outcome.error =
        tr("The saved servers could not be written to \"%1\". %2 The file on disk is unchanged; the list keeps "
           "your change until the program ends.")
            .arg(QDir::toNativeSeparators(m_path), outcome.error);
    return outcome;
}
