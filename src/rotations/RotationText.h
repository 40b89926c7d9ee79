#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

/// One step of the server's map rotation, by the names that users know.
struct RotationRow {
    QString map;
    QString gametype;

    bool operator==(const RotationRow &) const = default;
};

/// A game server plays a few hundred steps at most; what sends more is none.
inline constexpr qsizetype mostRotationRows = 100'000;

/// Turns the server's name of something into the one that users know; the name itself when it is unknown.
using NameLookup = std::function<QString(const QString &)>;

/// @return the value in the reply to a variable's name; empty when the reply holds none. Any thread.
QString parseMapResponse(const QString &reply);

/// Reads a rotation such as "gametype crews map ward_a map ward_b". A map may stand without "map" before it.
/// Of more than mostRotationRows steps the rest is left out.
/// @param gametype  display name of what is played until the rotation names another gametype.
QList<RotationRow> parseRotation(const QString &rotation, const QString &gametype, const NameLookup &findMap,
                                 const NameLookup &findGametype);

/// A rotation as the server takes it.
struct BuiltRotation {
    QString text;
    /// Maps and gametypes that have no server name, each once and in their order. With one of them, `text` is empty.
    QStringList unknownMaps;
    QStringList unknownGametypes;

    bool isComplete() const { return unknownMaps.isEmpty() && unknownGametypes.isEmpty(); }
};

/// Turns the names that users know into the server's: "gametype crews map ward_a gametype crews map ward_b".
/// @param findMapDvar, findGametypeDvar  the server's name for what users know by a name; empty when it is unknown.
BuiltRotation buildRotation(const QList<RotationRow> &rows, const NameLookup &findMapDvar,
                            const NameLookup &findGametypeDvar);
