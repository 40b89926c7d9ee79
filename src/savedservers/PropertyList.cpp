#include "PropertyList.h"

#include "XmlDocument.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QStringDecoder>

#include <algorithm>
#include <bit>
#include <cmath>

/// Dictionaries and arrays within one another. As XML each is a level, below the root element; a text takes two more.
static constexpr int deepestLevel = XmlDocument::MaximumDepth - 4;

namespace
{

/// What is damaged makes values without a meaning, which whole() does not let out.
class Reader
{
protected:
    void require(bool isSound) { m_isSound = m_isSound && isSound; }
    QVariant whole(const QVariant &value) const { return m_isSound ? value : QVariant(); }

    void put(const QVariant &key, QLatin1String kindOfKeys, const QVariant &value, QVariantMap *dictionary)
    {
        const auto text = key.value<PropertyText>();
        // Of a key that stands there twice one program would read the first value, and another one the last.
        require(text.kind == kindOfKeys && !dictionary->contains(text.text));
        dictionary->insert(text.text, value);
    }

    bool m_isSound = true;
};

/// Builds the values of a binary property list.
class BinaryReader : private Reader
{
public:
    explicit BinaryReader(QByteArrayView bytes) : m_bytes(bytes) {}

    QVariant root()
    {
        constexpr quint64 trailerSize = 32;
        const quint64 trailer = size() - std::min(size(), trailerSize);
        m_offsetSize = number(trailer + 6, 1);
        m_referenceSize = number(trailer + 7, 1);
        m_objectCount = number(trailer + 8, 8);
        m_offsetTable = number(trailer + 24, 8);
        require(m_objectCount <= trailer && m_offsetTable <= trailer);
        const QVariant value = valueAt(number(trailer + 16, 8), deepestLevel);
        return whole(value);
    }

private:
    quint64 size() const { return static_cast<quint64>(m_bytes.size()); }

    QByteArrayView bytesAt(quint64 position, quint64 count)
    {
        require(position <= size() && count <= size() - position);
        return m_isSound ? m_bytes.sliced(static_cast<qsizetype>(position), static_cast<qsizetype>(count))
                         : QByteArrayView();
    }

    quint64 number(quint64 position, quint64 width)
    {
        quint64 value = 0;
        for (const char byte : bytesAt(position, width))
            value = value << 8 | static_cast<quint8>(byte);
        return value;
    }

    QVariant valueAt(quint64 index, int levels)
    {
        constexpr quint64 largestCost = 16 << 20;
        constexpr quint64 valueCost = 256;
        constexpr quint64 firstCountedKind = 0x4;
        require(index < m_objectCount);
        quint64 position = number(m_offsetTable + index * m_offsetSize, m_offsetSize);
        const quint64 marker = number(position++, 1);
        const quint64 kind = marker >> 4;
        quint64 count = marker & 0x0f;
        if (kind >= firstCountedKind && count == 0x0f) { // it follows as an integer of its own
            const quint64 width = quint64(1) << (number(position++, 1) & 0x0f);
            count = number(position, width);
            position += width;
        }
        // A list may refer to a value many times, and to itself, so what it unfolds to is bounded.
        m_cost += std::min(count, size()) + valueCost;
        require(levels >= 0 && count <= size() && m_cost <= largestCost);
        return m_isSound ? value(kind, position, count, levels) : QVariant();
    }

    QVariant value(quint64 kind, quint64 position, quint64 count, int levels)
    {
        switch (kind) {
        case 0x0:
            require(count == 8 || count == 9); // else it is a null, which XML does not have
            return made(count == 9 ? "true" : "false", {});
        case 0x1:
            return made("integer", integer(position, quint64(1) << count));
        case 0x2:
            return made("real", QString::number(real(position, quint64(1) << count), 'g', 17));
        case 0x3:
            return made("date", date(real(position, quint64(1) << count)));
        case 0x4:
            return made("data", QString::fromLatin1(bytesAt(position, count).toByteArray().toBase64()));
        case 0x5:
            return made("string", text(bytesAt(position, count), QStringDecoder::Utf8));
        case 0x6:
            return made("string", text(bytesAt(position, count * 2), QStringDecoder::Utf16BE));
        case 0xa:
            return array(position, count, levels - 1);
        case 0xd:
            return dictionary(position, count, levels - 1);
        default: // a set, or a reference within an archive
            require(false);
            return {};
        }
    }

    static QVariant made(const char *kind, const QString &text)
    {
        return QVariant::fromValue(PropertyText{QLatin1String(kind), text});
    }

    QString integer(quint64 position, quint64 width)
    {
        if (width <= 8)
            return QString::number(static_cast<qint64>(number(position, width)));
        require(width == 16 && number(position, 8) == 0); // the larger half of those without a sign
        return QString::number(number(position + 8, 8));
    }

    double real(quint64 position, quint64 width)
    {
        require(width == 4 || width == 8);
        const quint64 bits = number(position, width);
        return width == 4 ? std::bit_cast<float>(static_cast<quint32>(bits)) : std::bit_cast<double>(bits);
    }

    /// @param seconds  since the start of 2001.
    QString date(double seconds)
    {
        constexpr double mostSeconds = 5e10; // so that the year has four digits
        constexpr qint64 start = 978'307'200;
        require(std::abs(seconds) < mostSeconds); // also false where it is no number
        const qint64 sinceEpoch = start + (m_isSound ? static_cast<qint64>(seconds) : 0);
        return QDateTime::fromSecsSinceEpoch(sinceEpoch, Qt::UTC).toString(Qt::ISODate);
    }

    QString text(QByteArrayView bytes, QStringDecoder::Encoding encoding)
    {
        QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
        const QString text = decoder.decode(bytes);
        require(!decoder.hasError() && text.isValidUtf16() && !text.contains(QChar::Null));
        return text;
    }

    QVariant item(quint64 list, quint64 place, int levels)
    {
        return valueAt(number(list + place * m_referenceSize, m_referenceSize), levels);
    }

    QVariantList array(quint64 position, quint64 count, int levels)
    {
        QVariantList items;
        for (quint64 i = 0; i < count && m_isSound; ++i)
            items.append(item(position, i, levels));
        return items;
    }

    QVariantMap dictionary(quint64 position, quint64 count, int levels)
    {
        QVariantMap items;
        for (quint64 i = 0; i < count && m_isSound; ++i) {
            const QVariant key = item(position, i, levels);
            put(key, QLatin1String("string"), item(position, count + i, levels), &items);
        }
        return items;
    }

    QByteArrayView m_bytes;
    quint64 m_cost = 0;
    quint64 m_offsetSize = 0;
    quint64 m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_offsetTable = 0;
};

/// Builds the values of a property list in XML.
class XmlReader : private Reader
{
public:
    QVariant root(const QByteArray &data)
    {
        static const QRegularExpression zeroCharacter(QStringLiteral("&#x?0+;")); // would end a text before its end
        require(data.isValidUtf8() && !data.contains('\0') && !data.contains("<!ENTITY") &&
                !QString::fromUtf8(data).contains(zeroCharacter));
        XmlReading reading;
        reading.keepsBlankTexts = true;
        const std::optional<XmlDocument> document = XmlDocument::parse(data, nullptr, reading);
        const auto roots =
            document ? document->elements("/*[last() = 1]/self::plist/*") : std::vector<pugi::xml_node>();
        return m_isSound && roots.size() == 1 ? whole(valueOf(roots.front())) : QVariant();
    }

private:
    QVariant valueOf(pugi::xml_node element)
    {
        const QString kind = QString::fromUtf8(element.name());
        QVariantList items;
        for (const pugi::xml_node child : element.children()) {
            if (child.type() == pugi::node_element)
                items.append(valueOf(child));
            else // a numeric reference may have made something of it that is no text
                require(QByteArrayView(child.value()).isValidUtf8());
        }
        if (kind == QLatin1String("array"))
            return items;
        if (kind == QLatin1String("dict"))
            return dictionary(items);
        require(items.isEmpty());
        return QVariant::fromValue(PropertyText{kind, xmlText(element)});
    }

    QVariantMap dictionary(const QVariantList &keysAndValues)
    {
        require(keysAndValues.size() % 2 == 0);
        QVariantMap items;
        for (qsizetype i = 0; i < keysAndValues.size() && m_isSound; i += 2)
            put(keysAndValues.at(i), QLatin1String("key"), keysAndValues.at(i + 1), &items);
        return items;
    }
};

} // namespace

std::optional<PropertyList> parsedPropertyList(const QByteArray &data)
{
    const QVariant root = data.startsWith("bplist00") ? BinaryReader(data).root() : XmlReader().root(data);
    if (root.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return root.toMap();
}

static void append(pugi::xml_node parent, const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap items = value.toMap();
        const pugi::xml_node element = parent.append_child("dict");
        for (auto item = items.cbegin(); item != items.cend(); ++item) {
            appendTextElement(element, "key", item.key());
            append(element, item.value());
        }
    } else if (value.typeId() == QMetaType::QVariantList) {
        const pugi::xml_node element = parent.append_child("array");
        for (const QVariant &item : value.toList())
            append(element, item);
    } else {
        const auto scalar = value.value<PropertyText>();
        appendTextElement(parent, scalar.kind.toUtf8().constData(), scalar.text);
    }
}

QByteArray propertyListBytes(const PropertyList &list, qsizetype largestSize)
{
    pugi::xml_document document;
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value("1.0");
    declaration.append_attribute("encoding").set_value("UTF-8");
    document.append_child(pugi::node_doctype)
        .set_value("plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\"");
    pugi::xml_node root = document.append_child("plist");
    root.append_attribute("version").set_value("1.0");
    append(root, list);
    const QByteArray bytes = documentBytes(document, XmlLayout::Indented);
    return bytes.size() <= largestSize && parsedPropertyList(bytes) ? bytes : QByteArray();
}
