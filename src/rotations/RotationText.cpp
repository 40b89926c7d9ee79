#include "RotationText.h"

#include "QuotedStrings.h"

QString parseMapResponse(const QString &reply)
{
    const QStringList fields = quotedStrings(reply);
    if (fields.size() < 2)
        return {};
    return withoutOuterQuotes(fields.at(1));
}

QList<RotationRow> parseRotation(const QString &rotation, const QString &gametype, const NameLookup &findMap,
                                 const NameLookup &findGametype)
{
    const QString text = withoutOuter(rotation, QLatin1Char('?'));
    const QList<QStringView> pieces = QStringView(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QList<RotationRow> rows;
    RotationRow row{{}, gametype};
    for (auto piece = pieces.begin(); piece != pieces.end() && rows.size() < mostRotationRows; ++piece) {
        if (*piece == QLatin1String("gametype")) {
            if (++piece == pieces.end())
                break;
            row.gametype = findGametype(piece->toString());
            continue;
        }
        const bool isAnnounced = *piece == QLatin1String("map");
        if (isAnnounced)
            ++piece;
        const bool isNamed = piece != pieces.end();
        if (isNamed)
            row.map = findMap(piece->toString());
        rows.append(row); // "map" at the very end stands for the map before it
        if (!isNamed)
            break;
    }
    return rows;
}

static QString serverName(const QString &name, const NameLookup &find, QStringList &unknown)
{
    const QString dvarName = find(name);
    if (dvarName.isEmpty() && !unknown.contains(name))
        unknown.append(name);
    return dvarName;
}

BuiltRotation buildRotation(const QList<RotationRow> &rows, const NameLookup &findMapDvar,
                            const NameLookup &findGametypeDvar)
{
    BuiltRotation built;
    for (const RotationRow &row : rows) {
        const QString gametype = serverName(row.gametype, findGametypeDvar, built.unknownGametypes);
        const QString map = serverName(row.map, findMapDvar, built.unknownMaps);
        built.text += QStringLiteral("gametype %1 map %2 ").arg(gametype, map);
    }
    built.text = built.isComplete() ? built.text.trimmed() : QString();
    return built;
}
