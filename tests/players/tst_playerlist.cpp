#include "DataColumns.h"
#include "PlayerColumns.h"
#include "PlayerList.h"
#include "PlayerListFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

static PlayerRow player(const QString &name, const QString &identifier = QStringLiteral("1"))
{
    PlayerRow row;
    row.identifier = identifier;
    row.name = name;
    row.guid = QStringLiteral("g");
    row.ipaddress = QStringLiteral("192.0.2.4:50005");
    row.team = QStringLiteral("2");
    row.score = QStringLiteral("0");
    row.ping = QStringLiteral("48");
    return row;
}

class PlayerListTest : public QObject
{
    Q_OBJECT
private slots:
    void parses_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("rows"); // the seven values joined with "|", a player a line
        QTest::addColumn<bool>("isDamaged");
        const auto row = [](const char *name, const QString &reply, const char *rows, bool isDamaged = false) {
            QTest::newRow(name) << reply << QString(rows) << isDamaged;
        };
        const QString title = QStringLiteral("num score ping guid name team lastmsg address qport rate\n");
        const QString dashes = QStringLiteral("--- ----- ---- ---- ---- ---- ------- ------- ----- ----\n");
        const QString recorder = QStringLiteral("0 0 0 0 democlient alone 0 bot 0 0\n");
        const QString tom = QStringLiteral("3 10 45 900 Tom red 0 192.0.2.7:50074 77 25000\n");
        const char *onlyTom = "3|Tom|900|192.0.2.7:50074|red|10|45";
        row("ten tokens", tom, onlyTom);
        row("nine tokens", "3 10 45 900 Tom red 0 192.0.2.7:50074 77", "");
        row("name of three words", "12 0 48 abc Big Bad Wolf 2 0 192.0.2.4:50555 77 900",
            "12|Big Bad Wolf|abc|192.0.2.4:50555|2|0|48");
        row("title and dashes", title + dashes + tom, onlyTom);
        row("nobody", title + dashes, "");
        row("recording client", title + recorder + tom, onlyTom);
        row("the map before the title", "map: ward_saltworks\n" + title + tom, onlyTom);
        row("a player without a name", title + "4 0 48 abc red 0 192.0.2.8:50074 77 25000\n" + tom, onlyTom);
        row("twice", title + tom + title + tom, onlyTom);
        row("twice, and he has scored meanwhile", "3 5 50 900 Tom red 0 192.0.2.7:50074 77 25000\n" + tom, onlyTom);
        row("cut off in the number", title + tom + "1", onlyTom, true);
        row("cut off after the address", title + tom + "4 0 48 abc red 0 192.0.2.8:50074", onlyTom, true);
        row("its end alone", title + "Bad Wolf 2 0 192.0.2.4:50005 77 900\n" + tom, onlyTom, true);
        row("joined to the title", title + "4 0 48 abc Wo" + title + tom, onlyTom, true);
        row("beginning late", "7 0 48 abc Big Bad 2 0 192.0.2.4:50005 77 900\n" + title + tom, onlyTom, true);
        row("without a title nothing is certain", tom + "1", onlyTom);
    }
    void parses()
    {
        QFETCH(QString, reply);
        QStringList found;
        const PlayerList list = parsePlayerList(reply);
        for (const PlayerRow &row : list.players) {
            const QStringList values{row.identifier, row.name, row.guid, row.ipaddress, row.team, row.score, row.ping};
            found.append(values.join(QLatin1Char('|')));
        }
        QTEST(found.join(QLatin1Char('\n')), "rows");
        QTEST(list.isDamaged, "isDamaged");
        QCOMPARE(list.isTitled, reply.contains("qport"));
    }

    void listsNoMorePlayersThanThereCanBe()
    {
        QString reply;
        for (int number = 0; number <= mostPlayers; ++number)
            reply += QString::number(number) + QStringLiteral(" 0 48 g n 2 0 192.0.2.4:50005 77 900\n");
        QCOMPARE(parsePlayerList(reply).players.size(), mostPlayers);
    }

    void columnsShowTheirValuesAndSortByWhatTheyMean()
    {
        ArrayController<PlayerRow> table(playerTableColumns(), playerKey);
        for (const char *ping : {"CNCT", "10", "9"}) {
            PlayerRow row = player("Tom", ping);
            row.ping = ping;
            table.addObject(row);
        }
        table.arranged()->sort(6);
        QStringList shown;
        for (int column = 0; column < 7; ++column)
            shown.append(table.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString() + '=' +
                         table.arranged()->index(0, column).data().toString());
        QCOMPARE(shown,
                 QStringList({"ID=9", "Name=Tom", "GUID=g", "IP=192.0.2.4:50005", "Team=2", "Score=0", "Ping=9"}));
        QCOMPARE(table.arrangedObjects().last().ping, "CNCT");
    }

    void exports_data()
    {
        const auto row = dataColumns<QList<PlayerRow>, bool, QByteArray>("players", "isCommaSeparated", "table");
        row("columns as wide as needed", QList<PlayerRow>{player(QStringLiteral("Big Bad Wolf"), QStringLiteral("12"))},
            false,
            QByteArray("\tID   Name          GUID IP               Team ScorePing \n"
                       "\t12   Big Bad Wolf  g    192.0.2.4:50005  2    0    48   \n"));
        // Seven characters make the column nine wide; eleven bytes are cut to it.
        row("widths are characters, cuts are bytes", QList<PlayerRow>{player(QString::fromUtf8("Ünïcödé"))}, false,
            QByteArray("\tID   Name     GUID IP               Team ScorePing \n"
                       "\t1    Ünïcödg    192.0.2.4:50005  2    0    48   \n"));
        row("commas are not quoted", QList<PlayerRow>{player(QStringLiteral("A, B"))}, true,
            QByteArray("ID,Name,GUID,IP,Team,Score,Ping\n1,A, B,g,192.0.2.4:50005,2,0,48\n"));
    }
    void exports()
    {
        QFETCH(QList<PlayerRow>, players);
        QFETCH(bool, isCommaSeparated);
        QFETCH(QByteArray, table);
        const QByteArray head = "Kelvard - Ferrow\nPlayer list file\nGenerated by FerrowRcon (today %2)\n\n";
        QCOMPARE(playerListText(players, isCommaSeparated, QStringLiteral("today %2")), head + table);
    }

    void choosesTheFormByTheExtension()
    {
        const QTemporaryDir folder;
        for (const char *name : {"list.txt", "csv", "list.csv.bak", "list.csv", "LIST.CSV"}) {
            QVERIFY(savePlayerList({player(QStringLiteral("Tom"))}, folder.filePath(name)));
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll().contains("ID,Name,GUID"), QString(name).endsWith(".csv", Qt::CaseInsensitive));
        }
    }

    void aDeviceIsNotReplaced()
    {
        QString error;
        QVERIFY(!savePlayerList({player(QStringLiteral("Tom"))}, QStringLiteral("/dev/null"), &error));
        QVERIFY(!error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(PlayerListTest)
#include "tst_playerlist.moc"
