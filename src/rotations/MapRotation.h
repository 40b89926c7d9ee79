#pragma once

#include "NamedRotation.h"

/// One entry of a map rotation.
struct MapRotationInst {
    QString map;      ///< as users know it: its key in the catalogue of maps
    QString gametype; ///< as users know it

    static constexpr const char *RootElement = "KelMapRotation";
    static constexpr const char *RotationElement = "MapRotation";
    static constexpr const char *EntryElement = "RotationInst";
    static constexpr bool IsEditable = false; ///< in the table
    static constexpr RotationField<MapRotationInst> fields[] = {
        {"map", QT_TRANSLATE_NOOP("RotationField", "Map"), &MapRotationInst::map},
        {"gametype", QT_TRANSLATE_NOOP("RotationField", "Gametype"), &MapRotationInst::gametype}};

    /// Whether a row with these texts may be pasted.
    bool isWhole() const { return !map.isEmpty() && !gametype.isEmpty(); }
    bool operator==(const MapRotationInst &) const = default;
};

/// A named list of maps with their gametypes.
using MapRotation = NamedRotation<MapRotationInst>;
