#include "PropertyList.h"

#include <QSet>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

// What reading a property list may cost. libplist follows nesting by recursion until the stack ends, and copies a value
// for every reference to it, so both are measured before it sees a file. It writes in the square of the number of
// values.
static constexpr int deepestLevel = 32;
static constexpr quint64 largestCost = 16 << 20;
static constexpr quint64 nodeCost = 256;
static constexpr quint64 mostXmlElements = 1 << 16;
static constexpr quint64 mostQuotes = 4096;
static constexpr quint64 mostBytesMoved = 1 << 28;

namespace
{

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
    struct Object {
        enum Kind : quint64 { Ascii = 5, Utf16 = 6, Uid = 8, Array = 0xa, Set = 0xc, Dictionary = 0xd };

        quint64 kind;
        quint64 position; ///< of its content
        quint64 count;

        bool isText() const { return kind == Ascii || kind == Utf16; }
        quint64 width() const { return kind == Utf16 ? 2 : 1; }
    };

    quint64 size() const { return static_cast<quint64>(m_data.size()); }

    quint64 number(quint64 position, quint64 width) const
    {
        quint64 value = 0;
        for (quint64 i = position; i < position + width && i < size(); ++i)
            value = value << 8 | static_cast<quint8>(m_data[static_cast<qsizetype>(i)]);
        return value;
    }

    bool take(quint64 bytes) { return (m_cost += bytes + nodeCost) <= largestCost; }

    /// libplist ends the program over a key with a zero in it, and writes a text that is not ASCII where it should be
    /// differently from how it has read it.
    bool isWholeText(const Object &text) const
    {
        const quint64 largest = text.width() == 1 ? 0x7f : 0xffff;
        bool isWhole = text.position <= size() && text.count <= (size() - text.position) / text.width();
        for (quint64 i = 0; i < text.count && isWhole; ++i) {
            const quint64 character = number(text.position + i * text.width(), text.width());
            isWhole = character != 0 && character <= largest;
        }
        return isWhole;
    }

    std::optional<Object> objectAt(quint64 index) const
    {
        if (index >= m_objectCount)
            return std::nullopt;
        quint64 position = number(m_offsetTable + index * m_offsetSize, m_offsetSize);
        if (position >= m_offsetTable)
            return std::nullopt;
        const quint64 marker = number(position++, 1);
        quint64 count = marker & 0x0f;
        if (count == 0x0f) {
            const quint64 exponent = number(position++, 1) & 0x0f;
            if (exponent > 3)
                return std::nullopt;
            count = number(position, quint64(1) << exponent);
            position += quint64(1) << exponent;
        }
        return Object{marker >> 4, position, count};
    }

    quint64 reference(const Object &object, quint64 index) const
    {
        return number(object.position + index * m_referenceSize, m_referenceSize);
    }

    bool walk(quint64 index, int levels)
    {
        const std::optional<Object> object = objectAt(index);
        if (!object || levels == 0 || object->kind == Object::Uid) // which is a dictionary once it is XML
            return false;
        if (object->isText() && !isWholeText(*object))
            return false;
        const quint64 lists = object->kind == Object::Dictionary ? 2 : 1; // the keys, then the values
        if (lists == 1 && object->kind != Object::Array && object->kind != Object::Set)
            return take(std::min(object->count, size()) * 3); // from UTF-16 to UTF-8
        if (object->position > size() || object->count > (size() - object->position) / m_referenceSize / lists)
            return false;
        for (quint64 i = 0; i < object->count * lists; ++i) {
            if (!walk(reference(*object, i), levels - 1))
                return false;
        }
        return (lists == 1 || hasKeysOfItsOwn(*object)) && take(0);
    }

    /// Of a key that stands there twice one program would read the first value, and another one the last.
    bool hasKeysOfItsOwn(const Object &dictionary) const
    {
        QSet<QString> keys;
        for (quint64 i = 0; i < dictionary.count; ++i) {
            const std::optional<Object> key = objectAt(reference(dictionary, i));
            if (!key || !key->isText())
                return false;
            keys.insert(textOf(*key));
        }
        return static_cast<quint64>(keys.size()) == dictionary.count;
    }

    QString textOf(const Object &object) const
    {
        QString text;
        for (quint64 i = 0; i < object.count; ++i)
            text += QChar(static_cast<char16_t>(number(object.position + i * object.width(), object.width())));
        return text;
    }

    const QByteArray &m_data;
    quint64 m_cost = 0;
    quint64 m_offsetSize = 0;
    quint64 m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_offsetTable = 0;
};

} // namespace

/// Whether reading takes a time in proportion. libplist moves the rest of a text for every reference in it, and Qt
/// compares every attribute with all of its tag: minutes, for a file of a few megabytes made for it.
static bool isQuickXml(const QByteArray &data)
{
    quint64 quotes = 0;
    quint64 references = 0;
    quint64 textLength = 0;
    quint64 moved = 0;
    for (const char byte : data) {
        ++textLength;
        if (byte == '"' || byte == '\'')
            ++quotes;
        else if (byte == '&')
            ++references;
        if (byte != '<')
            continue;
        moved += references * textLength;
        references = 0;
        textLength = 0;
    }
    return quotes <= mostQuotes && moved <= mostBytesMoved;
}

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
        if (++level > deepestLevel || !isPlain || ++elements > mostXmlElements)
            return false;
    }
    return !reader.hasError();
}

void PropertyListDeleter::operator()(void *node) const
{
    plist_free(node);
}

PropertyList parsedPropertyList(const QByteArray &data)
{
    plist_t root = nullptr;
    const auto length = static_cast<uint32_t>(data.size());
    if (data.startsWith("bplist00")) {
        if (BinaryPlistWalk(data).isHarmless())
            plist_from_bin(data.constData(), length, &root);
    } else if (isQuickXml(data) && isHarmlessXml(data)) {
        plist_from_xml(data.constData(), length, &root);
    }
    PropertyList owner(root);
    if (root != nullptr && plist_get_node_type(root) != PLIST_DICT)
        owner.reset();
    return owner;
}

QByteArray propertyListBytes(void *dictionary, qsizetype largestSize)
{
    for (const auto writer : {plist_to_xml, plist_to_bin}) {
        char *buffer = nullptr;
        uint32_t length = 0;
        writer(dictionary, &buffer, &length);
        const std::unique_ptr<char, decltype(&std::free)> owner(buffer, &std::free);
        const QByteArray bytes(buffer, static_cast<qsizetype>(length));
        if (bytes.size() <= largestSize && parsedPropertyList(bytes) != nullptr)
            return bytes;
    }
    return {};
}
