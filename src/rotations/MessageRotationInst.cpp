#include "MessageRotationInst.h"

#include "RotationXml.h"

MessageRotationInst MessageRotationInst::messageRotationInstWithXMLNode(pugi::xml_node node)
{
    return MessageRotationInst{rotationText(node, "message"), rotationText(node, "duration")};
}

pugi::xml_node MessageRotationInst::xmlNode(pugi::xml_node parent) const
{
    const pugi::xml_node element = parent.append_child(ElementName);
    appendTextElement(element, "message", message);
    appendTextElement(element, "duration", duration);
    return element;
}

QString MessageRotationInst::description() const
{
    return QStringLiteral("message=%1 duration=%2").arg(message, duration);
}
