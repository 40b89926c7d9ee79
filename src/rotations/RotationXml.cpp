#include "RotationXml.h"

namespace
{
class ByteArrayWriter final : public pugi::xml_writer
{
public:
    void write(const void *data, std::size_t size) override
    {
        bytes.append(static_cast<const char *>(data), static_cast<qsizetype>(size));
    }
    QByteArray bytes;
};
} // namespace

/// @return whether the character at `place` may stand there; a surrogate only beside its other half.
static bool isStorableAt(const QString &text, qsizetype place)
{
    const QChar character = text.at(place);
    if (character.isHighSurrogate())
        return place + 1 < text.size() && text.at(place + 1).isLowSurrogate();
    if (character.isLowSurrogate())
        return place > 0 && text.at(place - 1).isHighSurrogate();
    if (character < QLatin1Char(' '))
        return character == QLatin1Char('\t') || character == QLatin1Char('\n') || character == QLatin1Char('\r');
    return character.unicode() < 0xfffe;
}

bool isStorableText(const QString &text)
{
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (!isStorableAt(text, place))
            return false;
    }
    return true;
}

QString rotationText(pugi::xml_node element, const char *name)
{
    QString text = xmlChildText(element, name);
    if (isStorableText(text))
        return text;
    // A file that other hands have written must not block every later save.
    QString kept;
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (isStorableAt(text, place))
            kept += text.at(place);
    }
    return kept;
}

void appendTextElement(pugi::xml_node parent, const char *name, const QString &text)
{
    parent.append_child(name).append_child(pugi::node_pcdata).set_value(text.toUtf8().constData());
}

QByteArray documentBytes(const pugi::xml_document &document)
{
    ByteArrayWriter writer;
    document.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    // Readers take a plain carriage return for a line feed.
    return writer.bytes.replace("\r", "&#13;");
}
