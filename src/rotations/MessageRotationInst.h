#pragma once

#include <pugixml.hpp>

#include <QString>

/// One message of a message rotation.
struct MessageRotationInst {
    static constexpr const char *ElementName = "MessageRotationInst";

    QString message;  ///< as typed, without quoting
    QString duration; ///< how long it stays, in whole seconds; may be any text, it is parsed when it is played

    static MessageRotationInst messageRotationInstWithXMLNode(pugi::xml_node node);
    /// Adds the message to `parent` and gives the new element.
    pugi::xml_node xmlNode(pugi::xml_node parent) const;
    QString description() const;
    bool operator==(const MessageRotationInst &) const = default;
};
