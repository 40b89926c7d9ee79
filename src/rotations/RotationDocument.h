#pragma once

#include "NamedRotation.h"
#include "SortedKeys.h"

#include <QCoreApplication>
#include <QMap>

#include <algorithm>
#include <optional>

/// Every named rotation of one kind.
template <typename Entry>
using RotationDictionary = QMap<QString, NamedRotation<Entry>>;

/// The rotations in a file; of two with one name the later is taken. Any thread.
template <typename Entry>
RotationDictionary<Entry> rotationsIn(const XmlDocument &document)
{
    const QByteArray query = QByteArrayLiteral("//") + Entry::RotationElement;
    RotationDictionary<Entry> found;
    for (const pugi::xml_node node : document.elements(query.constData())) {
        const auto rotation = NamedRotation<Entry>::withXMLNode(node);
        found.insert(rotation.name, rotation);
    }
    return found;
}

/// Why the rotation cannot be stored, in the user's language; empty if it can.
template <typename Entry>
QString rotationObstacle(const NamedRotation<Entry> &rotation)
{
    if (!isStorableText(rotation.name))
        return QCoreApplication::translate("RotationDocument",
                                           "The name of a rotation holds a character that cannot be stored.");
    for (qsizetype row = 0; row < rotation.rotationList.size(); ++row) {
        for (const RotationField<Entry> &field : Entry::fields) {
            if (!isStorableText(rotation.rotationList.at(row).*field.text))
                return QCoreApplication::translate(
                           "RotationDocument", "Row %1 of the rotation \"%2\" holds a character that cannot be stored.")
                    .arg(row + 1)
                    .arg(rotation.name);
        }
    }
    return {};
}

/// The bytes of a file. They are read again first, so that nothing replaces a good file that is not as good. Any
/// thread.
/// @param error  why the rotations cannot be stored, in the user's language; must not be null.
template <typename Entry>
QByteArray checkedRotationBytes(const RotationDictionary<Entry> &rotations, QString *error)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(Entry::RootElement);
    root.append_attribute("xmlns:xsi") = "http://www.w3.org/2001/XMLSchema-instance";
    root.append_attribute("xmlns:xsd") = "http://www.w3.org/2001/XMLSchema";
    appendTextElement(root, "version", QStringLiteral("1.0"));
    for (const NamedRotation<Entry> &rotation : valuesSortedByKey(rotations)) {
        *error = rotationObstacle(rotation);
        if (!error->isEmpty())
            return {};
        rotation.addTo(root);
    }
    const QByteArray bytes = documentBytes(document);
    const std::optional<XmlDocument> again = XmlDocument::parse(bytes, error, rotationReading);
    if (again && rotationsIn<Entry>(*again) != rotations)
        *error = QCoreApplication::translate("RotationDocument", "They could not be read again as they are.");
    return bytes;
}
