#include "XmlDocument.h"

#include "BoundedFile.h"

#include <algorithm>

static void report(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
}

namespace
{
struct Shape {
    int depth = 0;
    int elementCount = 0;
};
} // namespace

/// Walks without recursion, as the depth is what is in question, and no deeper than it must.
static Shape shapeOf(pugi::xml_node root)
{
    Shape shape;
    int depth = 0;
    pugi::xml_node node = root;
    while (true) {
        if (node.type() == pugi::node_element)
            ++shape.elementCount;
        if (node.first_child()) {
            shape.depth = std::max(shape.depth, ++depth);
            if (depth > XmlDocument::MaximumDepth)
                return shape;
            node = node.first_child();
            continue;
        }
        while (node != root && !node.next_sibling()) {
            node = node.parent();
            --depth;
        }
        if (node == root)
            return shape;
        node = node.next_sibling();
    }
}

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
    const std::optional<QByteArray> bytes = BoundedFile::read(path, reading.maximumSize, error);
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
    const Shape shape = shapeOf(*document.m_document);
    if (shape.depth > MaximumDepth) {
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
