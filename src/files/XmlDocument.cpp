#include "XmlDocument.h"

#include "GuardedFile.h"

static void report(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
}

namespace
{
/// Stops where the elements are nested too deep. pugixml walks without recursion.
struct Shape : pugi::xml_tree_walker {
    bool for_each(pugi::xml_node &node) override
    {
        isTooDeep = depth() >= XmlDocument::MaximumDepth;
        elementCount += node.type() == pugi::node_element ? 1 : 0;
        return !isTooDeep;
    }

    bool isTooDeep = false;
    int elementCount = 0;
};

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

static void appendUtf8(const char *utf8, QString &text)
{
    for (; qstrncmp(utf8, "\xEF\xBB\xBF", 3) == 0; utf8 += 3) // the conversion would drop it as a mark
        text += QChar(QChar::ByteOrderMark);
    text += QString::fromUtf8(utf8);
}

static void appendText(pugi::xml_node node, QString &text)
{
    for (const pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            appendUtf8(child.value(), text);
        else if (child.type() == pugi::node_element)
            appendText(child, text); // no deeper than a document may be
    }
}

XmlDocument::XmlDocument() : m_document(std::make_unique<pugi::xml_document>()) {}

std::optional<XmlDocument> XmlDocument::read(const QString &path, QString *error, const XmlReading &reading)
{
    const std::optional<QByteArray> bytes = GuardedFile::readBounded(path, reading.maximumSize, error);
    return bytes ? parse(*bytes, error, reading) : std::nullopt;
}

std::optional<XmlDocument> XmlDocument::parse(const QByteArray &bytes, QString *error, const XmlReading &reading)
{
    if (bytes.size() > reading.maximumSize) {
        report(error, tr("It is larger than %1 MiB.").arg(reading.maximumSize / (1024 * 1024)));
        return std::nullopt;
    }
    XmlDocument document;
    const unsigned int flags =
        pugi::parse_default | (reading.keepsBlankTexts ? pugi::parse_ws_pcdata_single : pugi::parse_minimal);
    const pugi::xml_parse_result result =
        document.m_document->load_buffer(bytes.constData(), static_cast<std::size_t>(bytes.size()), flags);
    if (!result) {
        const QString reason = QString::fromLatin1(result.description());
        const auto line = bytes.left(static_cast<qsizetype>(result.offset)).count('\n') + 1;
        report(error, tr("Line %1: %2.").arg(line).arg(reason));
        return std::nullopt;
    }
    Shape shape;
    static_cast<void>(document.m_document->traverse(shape));
    if (shape.isTooDeep) {
        report(error, tr("Its elements are nested more than %1 deep.").arg(MaximumDepth));
        return std::nullopt;
    }
    if (shape.elementCount > reading.maximumElements) {
        report(error, tr("It holds more than %1 elements.").arg(reading.maximumElements));
        return std::nullopt;
    }
    return document;
}

std::vector<pugi::xml_node> XmlDocument::elements(const char *query) const
{
    return xmlElements(*m_document, query);
}

QString XmlDocument::lastText(const char *query) const
{
    const std::vector<pugi::xml_node> found = elements(query);
    return found.empty() ? QString() : xmlText(found.back());
}

std::vector<pugi::xml_node> xmlElements(pugi::xml_node node, const char *query)
{
    pugi::xpath_node_set found = node.select_nodes(query);
    found.sort();
    std::vector<pugi::xml_node> elements;
    elements.reserve(found.size());
    for (const pugi::xpath_node &each : found)
        elements.push_back(each.node());
    return elements;
}

QString xmlText(pugi::xml_node element)
{
    QString text = QStringLiteral("");
    appendText(element, text);
    return text;
}

QString xmlChildText(pugi::xml_node element, const char *name)
{
    pugi::xml_node last;
    for (const pugi::xml_node child : element.children(name))
        last = child;
    return last ? xmlText(last) : QString();
}

void appendTextElement(pugi::xml_node parent, const char *name, const QString &text)
{
    parent.append_child(name).append_child(pugi::node_pcdata).set_value(text.toUtf8().constData());
}

QByteArray documentBytes(const pugi::xml_document &document, XmlLayout layout)
{
    ByteArrayWriter writer;
    const unsigned int flags = layout == XmlLayout::Indented ? pugi::format_indent : pugi::format_raw;
    document.save(writer, "\t", flags | pugi::format_no_declaration, pugi::encoding_utf8);
    // Readers take a plain carriage return for a line feed.
    return writer.bytes.replace("\r", "&#13;");
}
