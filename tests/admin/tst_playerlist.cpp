#include "PlayerList.h"
#include "PlayerListFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

static PlayerRow player(const QString &name, const QString &identifier = QStringLiteral("1"))
{
    return {identifier,          name,
            QStringLiteral("g"), QStringLiteral("1.2.3.4:5"),
            QStringLiteral("2"), QStringLiteral("0"),
            QStringLiteral("48")};
}

class PlayerListTest : public QObject
{
    Q_OBJECT
private slots:
    void parses_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QStringList>("rows"); // the seven values joined with "|"
        const QString ten = QStringLiteral("3 10 45 900 Tom allies 0 10.0.0.7:3074 77 25000");
        QTest::newRow("ten tokens") << ten << QStringList{"3|Tom|900|10.0.0.7:3074|allies|10|45"};
        QTest::newRow("nine tokens") << "3 10 45 900 Tom allies 0 10.0.0.7:3074 77" << QStringList{};
        QTest::newRow("name of three words") << "12 0 48 abc Big Bad Wolf 2 0 1.2.3.4:555 77 900"
                                             << QStringList{"12|Big Bad Wolf|abc|1.2.3.4:555|2|0|48"};
        QTest::newRow("tabs and runs of blanks") << "\t 3   10\t45 900  Old \t Tom  allies 0 10.0.0.7:3074 77 25000  "
                                                 << QStringList{"3|Old Tom|900|10.0.0.7:3074|allies|10|45"};
        QTest::newRow("title and dashes") << "num score ping guid name team lastmsg address qport rate\n"
                                             "--- ----- ---- ---- ---- ---- ------- ------- ----- ----\n" +
                                                 ten + "\n\n"
                                          << QStringList{"3|Tom|900|10.0.0.7:3074|allies|10|45"};
        QTest::newRow("recording client")
            << "0 0 0 0 democlient free 0 bot 0 0\n" + ten << QStringList{"3|Tom|900|10.0.0.7:3074|allies|10|45"};
        QTest::newRow("named almost like it")
            << "0 0 0 0 democlient 2 free 0 bot 0 0" << QStringList{"0|democlient 2|0|bot|free|0|0"};
        QTest::newRow("number in another form") << "007 10 45 900 Tom allies 0 10.0.0.7:3074 77 25000"
                                                << QStringList{"7|Tom|900|10.0.0.7:3074|allies|10|45"};
        const QString title = QStringLiteral("num score ping guid name team lastmsg address qport rate");
        const QStringList tom{"3|Tom|900|10.0.0.7:3074|allies|10|45"};
        QTest::newRow("cut off") << title + "\n" + ten + "\n4 0 48 abc Big Bad Wolf Man Jr 2" << tom;
        QTest::newRow("doubled") << title + "\n" + ten + "\n4 0 48 abc Wo" + title + "\n" + ten << tom;
        QTest::newRow("beginning late") << "7 0 48 abc Big Bad 2 0 1.2.3.4:5 77 900\n" + title + "\n" + ten << tom;
    }
    void parses()
    {
        QFETCH(QString, reply);
        QFETCH(QStringList, rows);
        QStringList found;
        for (const PlayerRow &row : parsePlayerList(reply))
            found.append(
                QStringList{row.identifier, row.name, row.guid, row.ipaddress, row.team, row.score, row.ping}.join(
                    QLatin1Char('|')));
        QCOMPARE(found, rows);
    }

    void listsNoMorePlayersThanThereCanBe()
    {
        QString reply;
        for (int number = 0; number <= mostPlayers; ++number)
            reply += QString::number(number) + QStringLiteral(" 0 48 g n 2 0 1.2.3.4:5 77 900\n");
        QCOMPARE(parsePlayerList(reply).size(), mostPlayers);
    }

    void addressesSortAsAddresses()
    {
        const QStringList inOrder{"2.0.0.1:9", "10.0.0.1:80", "10.0.0.1:3074", "10.0.0.20:1", "192.168.1.1"};
        for (int i = 1; i < inOrder.size(); ++i)
            QVERIFY(addressSortKey(inOrder.at(i - 1)).toLongLong() < addressSortKey(inOrder.at(i)).toLongLong());
        for (const QString &text : {QStringLiteral("bot"), QStringLiteral("1.2.3"), QStringLiteral("1.2.3.256:1")})
            QCOMPARE(addressSortKey(text), QVariant(text));
    }

    void exports_data()
    {
        QTest::addColumn<QList<PlayerRow>>("players");
        QTest::addColumn<bool>("isCommaSeparated");
        QTest::addColumn<QByteArray>("table");
        QTest::newRow("nobody") << QList<PlayerRow>{} << false << QByteArray("\tID   Name GUID IP   Team ScorePing \n");
        QTest::newRow("columns as wide as needed")
            << QList<PlayerRow>{player(QStringLiteral("Big Bad Wolf"), QStringLiteral("12"))} << false
            << QByteArray("\tID   Name          GUID IP         Team ScorePing \n"
                          "\t12   Big Bad Wolf  g    1.2.3.4:5  2    0    48   \n");
        // Seven characters make the column nine wide; eleven bytes are cut to it.
        QTest::newRow("widths are characters, cuts are bytes")
            << QList<PlayerRow>{player(QString::fromUtf8("Ünïcödé"))} << false
            << QByteArray("\tID   Name     GUID IP         Team ScorePing \n"
                          "\t1    Ünïcödg    1.2.3.4:5  2    0    48   \n");
        QTest::newRow("commas are not quoted")
            << QList<PlayerRow>{player(QStringLiteral("A, B"))} << true
            << QByteArray("ID,Name,GUID,IP,Team,Score,Ping\n1,A, B,g,1.2.3.4:5,2,0,48\n");
    }
    void exports()
    {
        QFETCH(QList<PlayerRow>, players);
        QFETCH(bool, isCommaSeparated);
        QFETCH(QByteArray, table);
        const QByteArray head = "Kelvard - Ferrow\nPlayer list file\nGenerated by FerrowRcon (today %2)\n\n";
        QCOMPARE(playerListText(players, isCommaSeparated, QStringLiteral("today %2")), head + table);
    }

    void choosesTheFormByTheExtension_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isCommaSeparated");
        QTest::newRow("txt") << "list.txt" << false;
        QTest::newRow("csv") << "list.csv" << true;
        QTest::newRow("capitals") << "LIST.CSV" << true;
        QTest::newRow("none") << "csv" << false;
        QTest::newRow("two") << "list.csv.bak" << false;
    }
    void choosesTheFormByTheExtension()
    {
        QFETCH(QString, name);
        QFETCH(bool, isCommaSeparated);
        const QTemporaryDir folder;
        QVERIFY(savePlayerList({player(QStringLiteral("Tom"))}, folder.filePath(name)));
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll().contains("ID,Name,GUID"), isCommaSeparated);
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
