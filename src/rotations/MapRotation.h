#pragma once

#include "MapRotationInst.h"
#include "NamedRotation.h"

/// A named list of maps with their gametypes.
class MapRotation : public NamedRotation<MapRotationInst>
{
public:
    static constexpr const char *ElementName = "MapRotation";

    static MapRotation mapRotationWithXMLNode(pugi::xml_node node)
    {
        MapRotation rotation;
        rotation.readFrom(node, &MapRotationInst::mapRotationInstWithXMLNode);
        return rotation;
    }
    /// Adds the rotation to `parent` and gives the new element.
    pugi::xml_node xmlNode(pugi::xml_node parent) const { return writeTo(parent, ElementName); }
};
