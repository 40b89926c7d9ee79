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
    void findsTheValueOfAReply_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("value");
        const auto row = [](const char *name, const char *reply, const char *value) {
            QTest::newRow(name) << QString(reply) << QString(value);
        };
        row("three fields", "\"mapname\" is: \"ward_a\"^7 in force: \"ward_b\"^7\n", "ward_a");
        row("quotes at the ends", "\"sv_mapRotation\" is: \"\\\"map ward_a\\\"\" in force: \"\"", "map ward_a");
        row("a quote inside", "\"a\" is: \"b\\\"c\"", "b\"c");
        row("empty value", "\"sv_mapRotation\" is: \"\" in force: \"\"", "");
        row("one field", "\"mapname\" is unknown", "");
        row("second field unfinished", "\"mapname\" is: \"ward_a", "");
    }
    void findsTheValueOfAReply()
    {
        QFETCH(QString, reply);
        QTEST(parseMapResponse(reply), "value");
    }

    void walksThroughARotation_data()
    {
        QTest::addColumn<QString>("rotation");
        QTest::addColumn<Rows>("rows");
        QTest::newRow("gametypes and maps") << "gametype crews map ward_a map ward_b gametype docks map ward_c"
                                            << Rows{{"Alley", "crews"}, {"ward_b", "crews"}, {"ward_c", "Dock Watch"}};
        QTest::newRow("starts with what is played")
            << "map ward_a gametype docks map ward_a" << Rows{{"Alley", "now"}, {"Alley", "Dock Watch"}};
        QTest::newRow("bare names") << "ward_a gametype docks ward_b map ward_a"
                                    << Rows{{"Alley", "now"}, {"ward_b", "Dock Watch"}, {"Alley", "Dock Watch"}};
        QTest::newRow("gametype at the end") << "map ward_a gametype" << Rows{{"Alley", "now"}};
        QTest::newRow("map at the end") << "map ward_a gametype docks map"
                                        << Rows{{"Alley", "now"}, {"Alley", "Dock Watch"}};
        QTest::newRow("only map") << "map" << Rows{{"", "now"}};
        QTest::newRow("more than a server has")
            << QString("b ").repeated(mostRotationRows + 1) << Rows(mostRotationRows, {"b", "now"});
        QTest::newRow("maps called like the words")
            << "map gametype map map map" << Rows{{"gametype", "now"}, {"map", "now"}, {"map", "now"}};
        QTest::newRow("a gametype called map") << "gametype map ward_b" << Rows{{"ward_b", "map"}};
        QTest::newRow("words in capitals are maps") << "MAP ward_a" << Rows{{"MAP", "now"}, {"Alley", "now"}};
        QTest::newRow("question marks at the ends") << "??map ward_a? b???" << Rows{{"ward_a?", "now"}, {"b", "now"}};
        QTest::newRow("blanks before a question mark keep it")
            << " ?map ward_a" << Rows{{"?map", "now"}, {"Alley", "now"}};
        QTest::newRow("many blanks") << "  map    ward_a  " << Rows{{"Alley", "now"}};
        QTest::newRow("only blanks part") << "map\tward_a" << Rows{{"map\tward_a", "now"}};
        QTest::newRow("only question marks") << QString(1000, '?') << Rows{};
        QTest::newRow("enormous, map for map") << QString("map ").repeated(100001) << Rows(50001, {"map", "now"});
    }
    void walksThroughARotation()
    {
        QFETCH(QString, rotation);
        QFETCH(Rows, rows);
        QCOMPARE(parseRotation(rotation, QStringLiteral("now"), mapName, gametypeName), rows);
    }

    void buildsWhatTheServerTakes_data()
    {
        QTest::addColumn<Rows>("rows");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("unknown");
        QTest::newRow("the gametype is repeated") << Rows{{"Alley", "Duckboard"}, {"Bank", "Duckboard"}}
                                                  << "gametype du map ward_a gametype du map ward_b" << QStringList();
        QTest::newRow("nothing") << Rows{} << "" << QStringList();
        QTest::newRow("unknown ones, each once") << Rows{{"Cave", "Duckboard"}, {"Alley", "Chess"}, {"Cave", "Go"}}
                                                 << "" << QStringList{"Cave", "Chess", "Go"};
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
