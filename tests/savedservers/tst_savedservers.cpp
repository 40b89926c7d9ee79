#include "DataColumns.h"
#include "PasswordEncryption.h"
#include "SavedServers.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

// Made by another property-list library: "Ödland" with the password "secret" of the account "alice", and "beta".
static const QByteArray binaryFile = QByteArray::fromBase64(
    "YnBsaXN0MDDSAQIDCFRiZXRhZgDWAGQAbABhAG4AZNIEBQYHVGhvc3RUcG9ydFFiUTHTBAkFCgsMWHBhc3N3b3JkWDEwLjAuMC43TxAQJw4aQn5y"
    "TOpaPjBTWoMQCFU1MDk2MAgNEh8kKS4wMjlCS14AAAAAAAABAQAAAAAAAAANAAAAAAAAAAAAAAAAAAAAZA==");
// "secret" of "alice", as the openssl command encrypts it.
static const QByteArray aliceSecret = QByteArray::fromHex("270e1a427e724cea5a3e30535a831008");

static QByteArray xmlFile(const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"x.dtd\">\n"
           "<plist version=\"1.0\"><dict>" +
           content + "</dict></plist>";
}

static QByteArray xmlEntry(const QByteArray &label, const QByteArray &more = {})
{
    return "<key>" + label + "</key><dict><key>host</key><string>h</string><key>port</key><string>1</string>" + more +
           "</dict>";
}

static QByteArray xmlPassword(const QByteArray &secret)
{
    return "<key>password</key><data>" + secret.toBase64() + "</data>";
}

static QStringList rowsOf(const SavedServers &list)
{
    QStringList rows;
    for (const SavedServer &server : list.servers())
        rows.append(
            QStringList{server.label, server.host, server.port, list.password(server.label).value_or("(none)")}.join(
                '|'));
    return rows;
}

static bool isPrivate(const QString &path)
{
    return (QFile::permissions(path) & QFileDevice::Permissions(0x0077)) == 0;
}

class SavedServersTest : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> m_folder;
    QString m_path;

    void put(const QByteArray &content) const
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }
    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList asides() const { return QDir(m_folder->path()).entryList({"SavedServers.plist.*"}, QDir::Files); }

private slots:
    void init()
    {
        m_folder.emplace();
        m_path = m_folder->filePath("SavedServers.plist");
    }

    // As "openssl dgst -sha256" makes the key and "openssl enc -aes-256-cbc" with a start vector of zeros the rest; of
    // more than one block, so that their chaining counts.
    void passwordsAgreeWithTheOpensslCommand()
    {
        const QString salt = QString::fromUtf8("jörg");
        const QString text = QString::fromUtf8("pässwört€, länger als ein Block");
        const std::optional<QByteArray> encrypted = AES256EncryptWithPassword(text, "VendRulpGam", salt);
        QCOMPARE(encrypted->toHex(), QByteArray("29d112d2aab2fc87d6c97ea21b6afb0a79205976f7d736022826e580f87317c3"
                                                "74f1791558bcd80140c7e87fcd6d91cf"));
        QCOMPARE(AES256DecryptWithPassword(*encrypted, "VendRulpGam", salt), text);
        QCOMPARE(AES256DecryptWithPassword(*encrypted, "VendRulpGam", salt + '2'), std::nullopt);
    }

    void damagedSecretsYieldNothing()
    {
        const Aes256Key key = *keyFromPassword("p", "s");
        const QByteArray noUtf8 = *aes256Encrypt("a\xff", key);
        for (const QByteArray &cipher : {QByteArray(), QByteArray(8, 'x'), noUtf8})
            QCOMPARE(AES256DecryptWithPassword(cipher, "p", "s"), std::nullopt);
    }

    void readsBothFlavours_data()
    {
        const auto row = dataColumns<QByteArray, QString, QStringList>("file", "login", "rows");
        const QString odland = QString::fromUtf8("Ödland|10.0.0.7|50960|");
        row("binary", binaryFile, "alice", QStringList{"beta|b|1|(none)", odland + "secret"});
        row("a port written by hand as a number",
            xmlFile("<key>a</key><dict><key>port</key><integer>50100</integer></dict>"), "alice",
            QStringList{"a||50100|(none)"});
        row("XML, in order without case",
            xmlFile(xmlEntry("b") + xmlEntry("C") + xmlEntry("A &amp; B", xmlPassword(aliceSecret))), "alice",
            QStringList{"A & B|h|1|secret", "b|h|1|(none)", "C|h|1|(none)"});
        // A reader that moves the rest of the text for each of them, or compares each with all, takes minutes.
        row("XML of references", xmlFile("<key>a</key><string>" + QByteArray("&lt;").repeated(300'000) + "</string>"),
            "alice", QStringList());
        QByteArray attributes = "<plist ";
        for (int i = 0; i < 60'000; ++i)
            attributes += "a" + QByteArray::number(i) + "='>' ";
        row("XML of attributes", attributes + "><dict/></plist>", "alice", QStringList());
    }
    void readsBothFlavours()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, login);
        QFETCH(QStringList, rows);
        put(file);
        SavedServers list(m_path, login);
        QCOMPARE(list.load().error, QString());
        QCOMPARE(rowsOf(list), rows);
        // What is not understood survives a rewrite: the file still opens for the account that wrote it.
        QCOMPARE(list.save({"new", "h", "2", "pw"}).error, QString());
        QVERIFY(contentOf(m_path).startsWith("<?xml"));
        QCOMPARE(asides(), QStringList());
        SavedServers again(m_path, login);
        QCOMPARE(again.load().error, QString());
        QVERIFY(rowsOf(again).removeOne("new|h|2|pw"));
        QCOMPARE(again.servers().size(), rows.size() + 1);
    }

    void changesReachTheFile()
    {
        m_path = m_folder->filePath("made/SavedServers.plist");
        const QString marked = "a<&>\"'\n\x07"; // the last of them can be in XML only as a reference
        SavedServers list(m_path, "alice");
        QCOMPARE(list.load().error, QString());
        QCOMPARE(list.save({"a", "old", "1", "x"}).error, QString());
        QCOMPARE(list.save({marked, "\r\n", "2", ""}).error, QString());
        QCOMPARE(list.save({"c", "h", "3", "0123456789abcdef"}).error, QString());
        QCOMPARE(list.save({"d", "h", "3", std::nullopt}).error, QString());
        QCOMPARE(list.save({"a", "new", "1", "y"}).error, QString());
        QCOMPARE(list.setPassword("a", "z").error, QString());
        QCOMPARE(list.remove({"c", "d", "unknown"}).error, QString());
        QVERIFY(!list.setPassword("c", "lost").error.isEmpty());

        const QStringList rows{"a|new|1|z", marked + "|\r\n|2|"};
        QCOMPARE(rowsOf(list), rows);
        SavedServers again(m_path, "alice");
        QCOMPARE(again.load().error, QString());
        QCOMPARE(rowsOf(again), rows);
        QVERIFY(isPrivate(m_path));
        QVERIFY(isPrivate(QFileInfo(m_path).path()));
    }

    /// Also for another account, which cannot decrypt the password.
    void whatIsUnknownStays()
    {
        put(xmlFile(xmlEntry("a") +
                    xmlEntry("B &amp; C", xmlPassword(aliceSecret) +
                                              "<key>colour</key><string>red</string>"
                                              "<key>seen</key><array><real>0.50</real></array>") +
                    "<key>future</key><array><integer>-7</integer><true/></array>"));
        QVERIFY(QFile::setPermissions(m_path, QFileDevice::Permissions(0x6644)));
        SavedServers list(m_path, "bob");
        QCOMPARE(list.load().error, QString());
        QCOMPARE(list.setPassword("a", "x").error, QString()); // in our writing from now on
        const QByteArray written = contentOf(m_path);
        for (const QByteArray &part : QByteArrayList{"colour", "red", "0.50", "-7", "true", aliceSecret.toBase64()})
            QVERIFY2(written.contains(part), part.constData());
        QVERIFY(isPrivate(m_path));

        const QStringList rows = rowsOf(list);
        const QStringList labels{"B & C", "future", "unknown"};
        const PropertyList entries = list.entries(labels);
        QCOMPARE(list.remove(labels).error, QString());
        QVERIFY(!contentOf(m_path).contains("B &amp; C"));
        QCOMPARE(list.restore(entries).error, QString());
        QCOMPARE(contentOf(m_path), written);
        QCOMPARE(rowsOf(list), rows);
        QCOMPARE(asides(), QStringList());
        // Only a server saved over the value that is no entry would lose it.
        const SavedServersOutcome outcome = list.save({"future", "h", "1", "p"});
        QCOMPARE(outcome.error, QString());
        QCOMPARE(contentOf(outcome.keptCopy), written);
    }

    void whatHasBeenSavedMeanwhileStays()
    {
        SavedServers list(m_path, "alice");
        QCOMPARE(list.save({"a", "old", "1", "x"}).error, QString());
        QCOMPARE(list.save({"b", "h", "2", "y"}).error, QString());
        const PropertyList entries = list.entries({"a", "b"});
        QCOMPARE(list.remove({"a", "b"}).error, QString());
        QCOMPARE(list.save({"a", "new", "1", "z"}).error, QString());
        const QString error = list.restore(entries).error;
        QVERIFY2(error.contains("\"a\"") && !error.contains("\"b\""), qPrintable(error));
        SavedServers again(m_path, "alice");
        QCOMPARE(again.load().error, QString());
        QCOMPARE(rowsOf(again), QStringList({"a|new|1|z", "b|h|2|y"}));
    }

    void damagedFilesAreKeptAside_data()
    {
        const auto row = dataColumns<QByteArray>("file");
        const QByteArray circle("bplist00\xd1\x01\0\x51\x61\x08\x0b\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x02"
                                "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0d",
                                47);
        // Three objects of a byte or two, and where they are.
        const auto binary = [](const QByteArray &objects, char second, char third) -> QByteArray {
            const QByteArray offsets{"\x08", 1}, sizes("\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03", 16);
            const QByteArray table = offsets + second + third + sizes + QByteArray(15, '\0');
            return "bplist00" + objects + table + static_cast<char>(8 + objects.size());
        };
        row("no bytes", QByteArray());
        row("binary key twice", binary("\xd2\x01\x01\x02\x02\x51\x61\xd0", 0x0d, 0x0f));
        row("binary reference of an archive", binary("\xd1\x01\x02\x51\x61\x80\x01", 0x0b, 0x0d));
        row("XML of too many values", xmlFile(QByteArray("<key>a</key><dict/>").repeated(70'000)));
        row("binary dictionary within itself", circle);
        row("XML root is no dictionary", QByteArray("<plist version=\"1.0\"><array/></plist>"));
        row("XML with entities", QByteArray("<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><dict/></plist>"));
        row("XML deep", xmlFile("<key>a</key>" + QByteArray("<array>").repeated(100'000) +
                                QByteArray("</array>").repeated(100'000)));
        row("XML key twice", xmlFile(xmlEntry("a") + xmlEntry("a")));
        row("XML with a zero character", xmlFile(xmlEntry("a&#x0;b")));
        row("larger than the bound", xmlFile("<key>a</key><string>" + QByteArray(3 << 20, 'x') + "</string>"));
    }
    void damagedFilesAreKeptAside()
    {
        QFETCH(QByteArray, file);
        put(file);
        SavedServers list(m_path, "alice");
        QVERIFY(list.load().error.contains(m_path));
        QCOMPARE(list.servers().size(), 0);
        QCOMPARE(contentOf(m_path), file);
        const SavedServersOutcome outcome = list.save({"a", "h", "1", "p"});
        QCOMPARE(outcome.error, QString());
        QVERIFY(outcome.keptCopy.startsWith(m_path + ".damaged-"));
        QCOMPARE(contentOf(outcome.keptCopy), file);
        QCOMPARE(list.save({"b", "h", "1", "p"}).keptCopy, QString());
        QCOMPARE(asides().size(), 1);
        QCOMPARE(list.load().error, QString());
        QCOMPARE(rowsOf(list), QStringList({"a|h|1|p", "b|h|1|p"}));
    }

    void changesOfAnotherProgramAreKeptAside()
    {
        SavedServers list(m_path, "alice");
        QCOMPARE(list.load().error, QString());
        put(xmlFile(xmlEntry("other")));
        const SavedServersOutcome outcome = list.save({"mine", "h", "1", "p"});
        QCOMPARE(outcome.error, QString());
        QVERIFY(outcome.keptCopy.startsWith(m_path + ".changed-"));
        QCOMPARE(contentOf(outcome.keptCopy), xmlFile(xmlEntry("other")));
        QVERIFY(QFile::remove(m_path));
        QCOMPARE(list.setPassword("mine", "q").keptCopy, QString());
        QCOMPARE(list.load().error, QString());
        QCOMPARE(rowsOf(list), QStringList("mine|h|1|q"));
    }

    void findsWhatATextMeans()
    {
        SavedServers list(m_path, "alice");
        for (const SavedServer &server : {SavedServer{"192.0.2.9:50960", "192.0.2.1", "50960", "pw"},
                                          {"A server", "192.0.2.8", "50960", std::nullopt},
                                          {"Home", "192.0.2.9", "50960", "pw"},
                                          {"Home 2", " 192.0.2.8 ", "50960 ", "pw"},
                                          {"home 2", "192.0.2.6", "50960", "pw"},
                                          {"without", "192.0.2.7", "50960", std::nullopt}})
            QVERIFY(list.save(server).error.isEmpty());
        for (const auto &[text, label] : {std::pair("Home", "Home"),
                                          {"home 2", "home 2"},                   // not the one in other letters
                                          {"192.0.2.9:50960", "192.0.2.9:50960"}, // a label goes before an address
                                          {"192.0.2.8:50960", "Home 2"},          // its password is known
                                          {"192.0.2.7:50960", "without"},
                                          {"192.0.2.8:50961", ""},
                                          {"Hom", ""}})
            QCOMPARE(list.find(text).value_or(SavedServer()).label, label);
    }
};

QTEST_GUILESS_MAIN(SavedServersTest)
#include "tst_savedservers.moc"
