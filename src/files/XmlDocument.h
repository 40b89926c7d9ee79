#pragma once

#include <pugixml.hpp>

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// How much of an XML document is read, and how.
struct XmlReading {
    qint64 maximumSize = 8 * 1024 * 1024; ///< bytes
    int maximumElements = 100'000;
    bool keepsBlankTexts = false; ///< a text of blanks counts where it is all that an element holds
};

/// An XML document from outside, read within bounds: its size, its depth and the number of its elements are limited,
/// and neither a document type nor an external entity is ever followed. Nodes live as long as the document. Any thread.
class XmlDocument
{
    Q_DECLARE_TR_FUNCTIONS(XmlDocument)
public:
    static constexpr int MaximumDepth = 16; ///< nodes within nodes

    /// @param error  what is wrong, with the line where it shows, in the user's language; may be null.
    static std::optional<XmlDocument> read(const QString &path, QString *error = nullptr,
                                           const XmlReading &reading = {});
    static std::optional<XmlDocument> parse(const QByteArray &bytes, QString *error = nullptr,
                                            const XmlReading &reading = {});

    /// The elements that an XPath query finds, in document order.
    std::vector<pugi::xml_node> elements(const char *query) const;
    /// The text of the last element that an XPath query finds; null when it finds none.
    QString lastText(const char *query) const;

private:
    XmlDocument();

    std::unique_ptr<pugi::xml_document> m_document;
};

/// The elements below `node` that an XPath query finds, in document order.
std::vector<pugi::xml_node> xmlElements(pugi::xml_node node, const char *query);
/// The text of an element: all text within it, elements inside it included. Never null.
QString xmlText(pugi::xml_node element);
/// The text of the last direct child with that name; null when there is none, empty when it holds nothing.
QString xmlChildText(pugi::xml_node element, const char *name);
/// Adds a child that holds `text`.
void appendTextElement(pugi::xml_node parent, const char *name, const QString &text);

enum class XmlLayout {
    Compact, ///< no declaration, no blanks between elements
    Indented ///< each element on its line, behind tabs
};
/// The document as UTF-8.
QByteArray documentBytes(const pugi::xml_document &document, XmlLayout layout = XmlLayout::Compact);
