#pragma once

#include "RotationXml.h"

#include <QList>
#include <QString>

/// A text of an entry: an element of the file, and a column of the table.
template <typename Entry>
struct RotationField {
    const char *element;
    const char *title; ///< of the column, to be translated in the context "RotationField"
    QString Entry::*text;
};

/// A name and the entries that are played in their order: what map and message rotations are made of. `Entry` names its
/// `RotationElement` and its `EntryElement` in the file, and its `fields`.
template <typename Entry>
struct NamedRotation {
    QString name;
    QList<Entry> rotationList;

    static NamedRotation withXMLNode(pugi::xml_node node)
    {
        NamedRotation rotation{rotationText(node, "name"), {}};
        for (const pugi::xml_node list : node.children("Rotation")) {
            for (const pugi::xml_node element : list.children(Entry::EntryElement)) {
                Entry entry;
                for (const RotationField<Entry> &field : Entry::fields)
                    entry.*field.text = rotationText(element, field.element);
                rotation.rotationList.append(entry);
            }
        }
        return rotation;
    }

    void addTo(pugi::xml_node parent) const
    {
        pugi::xml_node element = parent.append_child(Entry::RotationElement);
        appendTextElement(element, "name", name);
        pugi::xml_node list = element.append_child("Rotation");
        for (const Entry &entry : rotationList) {
            const pugi::xml_node child = list.append_child(Entry::EntryElement);
            for (const RotationField<Entry> &field : Entry::fields)
                appendTextElement(child, field.element, entry.*field.text);
        }
    }

    bool operator==(const NamedRotation &) const = default;
};
