#include "DataColumns.h"
#include "RotationText.h"

#include <QTest>

using Rows = QList<RotationRow>;

static QString mapName(const QString &dvarName)
{
    return dvarName == QLatin1String("ward_a") ? QStringLiteral("Alley") : dvarName;
}

static QString gametypeName(const QString &dvarName)
{
    return dvarName == QLatin1String("docks") ? QStringLiteral("Dock Watch") : dvarName;
}

class RotationTextTest : public QObject
{
    Q_OBJECT
private slots:
    void walksThroughARotation_data()
    {
        const auto row = dataColumns<QString, Rows>("rotation", "rows");
        row("gametypes and maps", "gametype crews map ward_a map ward_b gametype docks map ward_c",
            Rows{{"Alley", "crews"}, {"ward_b", "crews"}, {"ward_c", "Dock Watch"}});
        row("starts with what is played", "map ward_a gametype docks map ward_a",
            Rows{{"Alley", "now"}, {"Alley", "Dock Watch"}});
        row("bare names", "ward_a gametype docks ward_b map ward_a",
            Rows{{"Alley", "now"}, {"ward_b", "Dock Watch"}, {"Alley", "Dock Watch"}});
        row("gametype at the end", "map ward_a gametype", Rows{{"Alley", "now"}});
        row("more than a server has", QString("b ").repeated(mostRotationRows + 1),
            Rows(mostRotationRows, {"b", "now"}));
        row("maps called like the words", "map gametype map map map",
            Rows{{"gametype", "now"}, {"map", "now"}, {"map", "now"}});
        row("question marks at the ends", "??map ward_a? b???", Rows{{"ward_a?", "now"}, {"b", "now"}});
        row("blanks before a question mark keep it", " ?map ward_a", Rows{{"?map", "now"}, {"Alley", "now"}});
        row("only question marks", QString(1000, '?'), Rows{});
        row("enormous, map for map", QString("map ").repeated(100001), Rows(50001, {"map", "now"}));
    }
    void walksThroughARotation()
    {
        QFETCH(QString, rotation);
        QFETCH(Rows, rows);
        QCOMPARE(parseRotation(rotation, QStringLiteral("now"), mapName, gametypeName), rows);
    }

    void buildsWhatTheServerTakes_data()
    {
        const auto row = dataColumns<Rows, QString, QStringList>("rows", "text", "unknown");
        row("the gametype is repeated", Rows{{"Alley", "Duckboard"}, {"Bank", "Duckboard"}},
            "gametype du map ward_a gametype du map ward_b", QStringList());
        row("unknown ones, each once", Rows{{"Cave", "Duckboard"}, {"Alley", "Chess"}, {"Cave", "Go"}}, "",
            QStringList{"Cave", "Chess", "Go"});
    }
    void buildsWhatTheServerTakes()
    {
        QFETCH(Rows, rows);
        const QHash<QString, QString> dvars{{"Alley", "ward_a"}, {"Bank", "ward_b"}, {"Duckboard", "du"}};
        const NameLookup find = [&](const QString &name) {
            return dvars.value(name);
        };
        const BuiltRotation built = buildRotation(rows, find, find);
        QTEST(built.text, "text");
        QTEST(built.unknownMaps + built.unknownGametypes, "unknown");
    }
};

QTEST_GUILESS_MAIN(RotationTextTest)
#include "tst_rotationtext.moc"
