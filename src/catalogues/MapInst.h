#pragma once

#include <QString>

/// One map of the game. Texts are null when the catalogue leaves them out.
struct MapInst {
    QString name;        ///< as users know it
    QString dvarName;    ///< as the server knows it
    QString excludeDvar; ///< server variable that takes the map out of ranked play

    QString description() const
    {
        return QStringLiteral("name=%1 dvarName=%2 excludeDvar=%3").arg(name, dvarName, excludeDvar);
    }
    bool operator==(const MapInst &) const = default;
};
