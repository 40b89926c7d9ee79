#pragma once

#include "RotationXml.h"
#include "SortedKeys.h"

#include <QCoreApplication>
#include <QMap>

#include <algorithm>
#include <optional>

/// The content of a file of rotations: every named rotation of one kind. Any thread.
template <typename Kind>
class RotationDocument
{
    Q_DECLARE_TR_FUNCTIONS(RotationDocument)
public:
    using Rotation = typename Kind::Rotation;
    using Dictionary = QMap<QString, Rotation>;

    /// Of two rotations with one name the later is taken.
    static Dictionary rotationsIn(const XmlDocument &document)
    {
        const QByteArray query = QByteArrayLiteral("//") + Rotation::ElementName;
        Dictionary found;
        for (const pugi::xml_node node : document.elements(query.constData())) {
            const Rotation rotation = Kind::rotationWithXMLNode(node);
            found.insert(rotation.name, rotation);
        }
        return found;
    }

    /// The bytes of a file. They are read again first, so that nothing replaces a good file that is not as good.
    /// @param error  why the rotations cannot be stored, in the user's language; must not be null.
    static QByteArray checkedBytes(const Dictionary &rotations, QString *error)
    {
        *error = obstacle(rotations);
        if (!error->isEmpty())
            return {};
        const QByteArray bytes = serialized(rotations);
        const std::optional<XmlDocument> again = XmlDocument::parse(bytes, error, rotationReading);
        if (again && rotationsIn(*again) != rotations)
            *error = tr("They could not be read again as they are.");
        return bytes;
    }

private:
    static QByteArray serialized(const Dictionary &rotations)
    {
        pugi::xml_document document;
        pugi::xml_node root = document.append_child(Kind::rootElement);
        root.append_attribute("xmlns:xsi") = "http://www.w3.org/2001/XMLSchema-instance";
        root.append_attribute("xmlns:xsd") = "http://www.w3.org/2001/XMLSchema";
        appendTextElement(root, "version", QStringLiteral("1.0"));
        for (const Rotation &rotation : valuesSortedByKey(rotations))
            rotation.xmlNode(root);
        return documentBytes(document);
    }

    static QString obstacle(const Dictionary &rotations)
    {
        for (const Rotation &rotation : rotations) {
            if (!isStorableText(rotation.name))
                return tr("The name of a rotation holds a character that cannot be stored.");
            const auto &list = rotation.rotationList;
            const auto unstorable = std::find_if(
                list.begin(), list.end(), [](const auto &entry) { return !isStorableText(entry->description()); });
            if (unstorable == list.end())
                continue;
            return tr("Row %1 of the rotation \"%2\" holds a character that cannot be stored.")
                .arg(unstorable - list.begin() + 1)
                .arg(rotation.name);
        }
        return {};
    }
};
