#include "DemoGame.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// The demo server knows what the shipped catalogues offer, so that a newcomer can change it, and lacks a few, so that
/// connecting shows what becomes of a variable that a server does not know.
class TestDemoCatalogues : public QObject
{
    Q_OBJECT
private slots:
    void lacksButAFew_data();
    void lacksButAFew();
};

void TestDemoCatalogues::lacksButAFew_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("element");
    QTest::addColumn<QStringList>("lacking");
    QTest::newRow("gametypes") << "gametypes"
                               << "dvar" << QStringList();
    QTest::newRow("maps") << "maps"
                          << "excludeDvar" << QStringList();
    QTest::newRow("ranked") << "gameSettingsRanked"
                            << "dvar" << QStringList{"scr_lobbyMusic", "sv_autoRecord"};
    QTest::newRow("unranked") << "gameSettingsUnranked"
                              << "dvar"
                              << QStringList{"g_tideLevel", "g_weatherCycle", "scr_lobbyMusic", "sv_autoRecord"};
}

void TestDemoCatalogues::lacksButAFew()
{
    QFETCH(QString, extension);
    QFETCH(QString, element);
    QFile file(QStringLiteral(FERROW_RESOURCES "/FerrowRcon.default.") + extension);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    DemoGame game({});
    QStringList lacking;
    int count = 0;
    const QRegularExpression tag(QStringLiteral("<%1>\\s*(\\w+)\\s*</%1>").arg(element));
    for (auto found = tag.globalMatch(text); found.hasNext(); ++count) {
        const QString name = found.next().captured(1);
        const QStringList shown = game.execute(name).split(u'"');
        if (shown.size() != 7 || shown.at(1) != name)
            lacking.append(name);
    }
    QVERIFY(count >= 16);
    lacking.sort();
    QTEST(lacking, "lacking");
}

QTEST_GUILESS_MAIN(TestDemoCatalogues)
#include "tst_democatalogues.moc"
