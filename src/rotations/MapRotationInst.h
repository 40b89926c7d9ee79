#pragma once

#include <pugixml.hpp>

#include <QString>

/// One entry of a map rotation.
struct MapRotationInst {
    static constexpr const char *ElementName = "RotationInst";

    QString map;      ///< as users know it: its key in the catalogue of maps
    QString gametype; ///< as users know it

    static MapRotationInst mapRotationInstWithXMLNode(pugi::xml_node node);
    /// Adds the entry to `parent` and gives the new element.
    pugi::xml_node xmlNode(pugi::xml_node parent) const;
    QString description() const;
    bool operator==(const MapRotationInst &) const = default;
};
