#pragma once

#include "RotationXml.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <memory>

/// A name and the entries that are played in their order: what map and message rotations are made of. A copy shares
/// its entries with the original; two rotations are equal when they hold the same.
template <typename Entry>
class NamedRotation
{
public:
    using Entries = QList<std::shared_ptr<Entry>>;

    QString name;
    Entries rotationList;

    QString description() const
    {
        QStringList entries;
        for (const std::shared_ptr<Entry> &entry : rotationList)
            entries.append(entry->description());
        return QStringLiteral("name=%1 rotation=(%2)").arg(name, entries.join(QLatin1String(", ")));
    }

    bool operator==(const NamedRotation &other) const
    {
        const auto holdsSame = [](const std::shared_ptr<Entry> &left, const std::shared_ptr<Entry> &right) {
            return *left == *right;
        };
        return name == other.name && std::equal(rotationList.begin(), rotationList.end(), other.rotationList.begin(),
                                                other.rotationList.end(), holdsSame);
    }

protected:
    void readFrom(pugi::xml_node node, Entry (*entryWithXMLNode)(pugi::xml_node))
    {
        name = rotationText(node, "name");
        for (const pugi::xml_node list : node.children("Rotation")) {
            for (const pugi::xml_node entry : list.children(Entry::ElementName))
                rotationList.append(std::make_shared<Entry>(entryWithXMLNode(entry)));
        }
    }

    pugi::xml_node writeTo(pugi::xml_node parent, const char *elementName) const
    {
        pugi::xml_node element = parent.append_child(elementName);
        appendTextElement(element, "name", name);
        const pugi::xml_node list = element.append_child("Rotation");
        for (const std::shared_ptr<Entry> &entry : rotationList)
            entry->xmlNode(list);
        return element;
    }
};
