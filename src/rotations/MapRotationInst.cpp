#include "MapRotationInst.h"

#include "RotationXml.h"

MapRotationInst MapRotationInst::mapRotationInstWithXMLNode(pugi::xml_node node)
{
    return MapRotationInst{rotationText(node, "map"), rotationText(node, "gametype")};
}

pugi::xml_node MapRotationInst::xmlNode(pugi::xml_node parent) const
{
    const pugi::xml_node element = parent.append_child(ElementName);
    appendTextElement(element, "map", map);
    appendTextElement(element, "gametype", gametype);
    return element;
}

QString MapRotationInst::description() const
{
    return QStringLiteral("map=%1 gametype=%2").arg(map, gametype);
}
