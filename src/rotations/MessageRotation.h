#pragma once

#include "MessageRotationInst.h"
#include "NamedRotation.h"

/// A named list of chat messages with their durations.
class MessageRotation : public NamedRotation<MessageRotationInst>
{
public:
    static constexpr const char *ElementName = "MessageRotation";

    static MessageRotation messageRotationWithXMLNode(pugi::xml_node node)
    {
        MessageRotation rotation;
        rotation.readFrom(node, &MessageRotationInst::messageRotationInstWithXMLNode);
        return rotation;
    }
    /// Adds the rotation to `parent` and gives the new element.
    pugi::xml_node xmlNode(pugi::xml_node parent) const { return writeTo(parent, ElementName); }
};
