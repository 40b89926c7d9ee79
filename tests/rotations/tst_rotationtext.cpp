#include "RotationText.h"

#include <QTest>

using Rows = QList<RotationRow>;

static QString mapName(const QString &dvarName)
{
    return dvarName == QLatin1String("mp_a") ? QStringLiteral("Alley") : dvarName;
}

static QString gametypeName(const QString &dvarName)
{
    return dvarName == QLatin1String("dom") ? QStringLiteral("Domination") : dvarName;
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
        row("three fields", "\"mapname\" is: \"mp_a\"^7 in force: \"mp_b\"^7\n", "mp_a");
        row("quotes at the ends", "\"sv_mapRotation\" is: \"\\\"map mp_a\\\"\" in force: \"\"", "map mp_a");
        row("a quote inside", "\"a\" is: \"b\\\"c\"", "b\"c");
        row("empty value", "\"sv_mapRotation\" is: \"\" in force: \"\"", "");
        row("one field", "\"mapname\" is unknown", "");
        row("second field unfinished", "\"mapname\" is: \"mp_a", "");
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
        QTest::newRow("gametypes and maps") << "gametype tdm map mp_a map mp_b gametype dom map mp_c"
                                            << Rows{{"Alley", "tdm"}, {"mp_b", "tdm"}, {"mp_c", "Domination"}};
        QTest::newRow("starts with what is played")
            << "map mp_a gametype dom map mp_a" << Rows{{"Alley", "now"}, {"Alley", "Domination"}};
        QTest::newRow("bare names") << "mp_a gametype dom mp_b map mp_a"
                                    << Rows{{"Alley", "now"}, {"mp_b", "Domination"}, {"Alley", "Domination"}};
        QTest::newRow("gametype at the end") << "map mp_a gametype" << Rows{{"Alley", "now"}};
        QTest::newRow("map at the end") << "map mp_a gametype dom map"
                                        << Rows{{"Alley", "now"}, {"Alley", "Domination"}};
        QTest::newRow("only map") << "map" << Rows{{"", "now"}};
        QTest::newRow("more than a server has")
            << QString("b ").repeated(mostRotationRows + 1) << Rows(mostRotationRows, {"b", "now"});
        QTest::newRow("maps called like the words")
            << "map gametype map map map" << Rows{{"gametype", "now"}, {"map", "now"}, {"map", "now"}};
        QTest::newRow("a gametype called map") << "gametype map mp_b" << Rows{{"mp_b", "map"}};
        QTest::newRow("words in capitals are maps") << "MAP mp_a" << Rows{{"MAP", "now"}, {"Alley", "now"}};
        QTest::newRow("question marks at the ends") << "??map mp_a? b???" << Rows{{"mp_a?", "now"}, {"b", "now"}};
        QTest::newRow("blanks before a question mark keep it")
            << " ?map mp_a" << Rows{{"?map", "now"}, {"Alley", "now"}};
        QTest::newRow("many blanks") << "  map    mp_a  " << Rows{{"Alley", "now"}};
        QTest::newRow("only blanks part") << "map\tmp_a" << Rows{{"map\tmp_a", "now"}};
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
        QTest::newRow("the gametype is repeated") << Rows{{"Alley", "Duel"}, {"Bank", "Duel"}}
                                                  << "gametype du map mp_a gametype du map mp_b" << QStringList();
        QTest::newRow("nothing") << Rows{} << "" << QStringList();
        QTest::newRow("unknown ones, each once")
            << Rows{{"Cave", "Duel"}, {"Alley", "Chess"}, {"Cave", "Go"}} << "" << QStringList{"Cave", "Chess", "Go"};
    }
    void buildsWhatTheServerTakes()
    {
        QFETCH(Rows, rows);
        const QHash<QString, QString> dvars{{"Alley", "mp_a"}, {"Bank", "mp_b"}, {"Duel", "du"}};
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
