#include "Fuzzing.h"

#include "RotationText.h"

#include <algorithm>

static QString itself(const QString &name)
{
    return name;
}

/// A name that the text of a rotation cannot mistake for something else.
static bool isPlain(const QString &name)
{
    return !name.isEmpty() && !name.contains(u' ') && !name.contains(u'?') && name != "map" && name != "gametype";
}

static void checkBuilding(const QList<RotationRow> &rows)
{
    const BuiltRotation built = buildRotation(rows, itself, itself);
    require(built.isComplete() || built.text.isEmpty(), "half a rotation is none");
    const bool arePlain = std::all_of(rows.begin(), rows.end(), [](const RotationRow &row) {
        return isPlain(row.map) && isPlain(row.gametype) && row.map.trimmed() == row.map;
    });
    if (arePlain)
        require(parseRotation(built.text, "crews", itself, itself) == rows, "a rotation is read again");
}

/// A reply to "sv_mapRotation", or the rotation itself.
static void fuzz(const QByteArray &bytes)
{
    const QString reply = QString::fromLatin1(bytes);
    for (const QString &text : {parseMapResponse(reply), reply}) {
        const QList<RotationRow> rows = parseRotation(text, "crews", itself, itself);
        require(rows.size() <= text.count(u' ') + 1, "a row takes a word");
        checkBuilding(rows);
    }
}
