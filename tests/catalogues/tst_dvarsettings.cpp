#include "CatalogueFixture.h"
#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "DvarSettingList.h"
#include "XmlDocument.h"

using Exchanged = ScriptedExchange;

class DvarSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void readsSetting_data();
    void readsSetting();
    void groupsSettings_data();
    void groupsSettings();
    void validates_data();
    void validates();
    void readsValue();
    void writes_data();
    void writes();
    void cancelledWrite();
    void replacedWhileWriting();

private:
    static std::shared_ptr<DvarSetting> setting(ScriptedSession &session, const QString &type = "string")
    {
        auto made = std::make_shared<DvarSetting>(CatalogueContext{session.server, session.alerts});
        made->setDvar("g_gravity");
        made->setType(type);
        return made;
    }
};

static QString shown(const QString &text)
{
    return text.isNull() ? QStringLiteral("-") : '[' + text + ']';
}

void DvarSettingsTest::readsSetting_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("read"); // name, dvar, type, description, category; a dash where nothing is
    QTest::newRow("complete") << QByteArray("<name>Gravity</name><dvar>g_gravity</dvar><type>int</type>"
                                            "<description>How things fall</description><category>World</category>")
                              << "[Gravity] [g_gravity] [int] [How things fall] [World]";
    QTest::newRow("nothing at all") << QByteArray() << "- - [string] - -";
    QTest::newRow("last one counts") << QByteArray("<name>a</name><dvar>x</dvar><name>b</name><type>int</type><type/>")
                                     << "[b] [x] [] - -";
    QTest::newRow("only direct children")
        << QByteArray("<more><name>a</name></more><dvar>x</dvar>") << "- [x] [string] - -";
    QTest::newRow("marked up text") << QByteArray("<name>a &lt;b&gt; <![CDATA[<c>]]><!-- no -->, <i>d</i></name>")
                                    << "[a <b> <c>, d] - [string] - -";
}

void DvarSettingsTest::readsSetting()
{
    QFETCH(QByteArray, xml);
    ScriptedSession session;
    const auto document = XmlDocument::parse("<DvarSetting>" + xml + "</DvarSetting>");
    QVERIFY(document);
    const auto read = DvarSetting::dvarSettingWithXMLNode(document->elements("/DvarSetting").front(),
                                                          {session.server, session.alerts});
    const QStringList texts{shown(read->name()), shown(read->dvar()), shown(read->type()),
                            shown(read->settingDescription()), shown(read->category())};
    QTEST(texts.join(' '), "read");
}

void DvarSettingsTest::groupsSettings_data()
{
    QTest::addColumn<QByteArray>("xml"); // s: a setting, n: its name, d: its variable, c: its category
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QString>("categories");
    QTest::newRow("first of a name is kept")
        << QByteArray("<s><n>a</n><d>1</d><c>x</c></s><s><n>a</n><d>2</d><c>y</c></s>") << "a=1"
        << "x(a)";
    QTest::newRow("an empty category is one")
        << QByteArray("<name>L</name><s><n>a</n><d>1</d><c/></s><s><n>b</n><d>2</d></s>") << "a=1 b=2"
        << "(a) L(b)";
    QTest::newRow("the two orders") << QByteArray(
                                           "<s><n>alpha</n><d>1</d><c>Beta</c></s><s><n>Beta</n><d>2</d><c>Beta</c></s>"
                                           "<s><n>Gamma</n><d>3</d><c>alpha</c></s>")
                                    << "alpha=1 Beta=2 Gamma=3"
                                    << "alpha(Gamma) Beta(Beta alpha)";
    QTest::newRow("at any depth, in document order")
        << QByteArray("<deep><deeper><s><n>a</n><d>1</d></s></deeper></deep><s><n>a</n><d>2</d></s><name>L</name>")
        << "a=1"
        << "L(a)";
}

void DvarSettingsTest::groupsSettings()
{
    QFETCH(QByteArray, xml);
    ScriptedSession session;
    xml.replace("<s>", "<DvarSetting>").replace("</s>", "</DvarSetting>");
    xml.replace("<n>", "<name>").replace("</n>", "</name>").replace("<d>", "<dvar>").replace("</d>", "</dvar>");
    xml.replace("<c>", "<category>").replace("</c>", "</category>").replace("<c/>", "<category/>");
    const auto document = XmlDocument::parse("<L>" + xml + "</L>");
    QVERIFY(document);
    const auto list =
        DvarSettingList::dvarSettingsWithXMLNode(document->elements("/L").front(), {session.server, session.alerts});
    QStringList settings;
    for (const auto &each : list->settings())
        settings.append(each->name() + '=' + each->dvar());
    QTEST(settings.join(' '), "settings");

    QStringList categories;
    for (const auto &category : list->children()) {
        QStringList names;
        for (const auto &each : category->children())
            names.append(each->name());
        categories.append(category->name() + '(' + names.join(' ') + ')');
    }
    QTEST(categories.join(' '), "categories");
}

void DvarSettingsTest::validates_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QStringList>("accepted");
    QTest::addColumn<QStringList>("rejected");
    QTest::newRow("bool") << "bool" << QStringList{"0", "1"} << QStringList{"2", "", "true"};
    QTest::newRow("int") << "int" << QStringList{"0", "007", "99999999999999999999999"}
                         << QStringList{"-1", "1.0", "", "1\n", QString::fromUtf8("\u0663")};
    QTest::newRow("float") << "float" << QStringList{"-.5", "+3", "10", "0.25"}
                           << QStringList{"1.", "1e5", "", "1.2.3", "0.5\n"};
    QTest::newRow("string") << "string" << QStringList{"", "anything \" at all"} << QStringList();
    QTest::newRow("unknown type") << "integer" << QStringList() << QStringList{"1", ""};
}

void DvarSettingsTest::validates()
{
    QFETCH(QString, type);
    QFETCH(QStringList, accepted);
    QFETCH(QStringList, rejected);
    ScriptedSession session;
    const auto tested = setting(session, type);
    for (const QString &value : accepted)
        QVERIFY2(tested->validateValue(value), qPrintable(value));
    for (const QString &value : rejected)
        QVERIFY2(!tested->validateValue(value), qPrintable(value));
}

void DvarSettingsTest::readsValue()
{
    ScriptedSession session;
    const auto tested = setting(session, "bool");
    QVERIFY(tested->dvarValue().isNull());
    QVERIFY(hasEnded(session.connectTo({{"zero", "0"}, {"half", "0.5"}, {"text", "1st"}})));
    QStringList on;
    for (const char *dvar : {"zero", "half", "text", "unknown"}) {
        tested->setDvar(dvar);
        if (tested->dvarBoolValue())
            on.append(tested->dvarValue());
    }
    QCOMPARE(on, QStringList{"0.5"});
}

void DvarSettingsTest::writes_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QString>("alert");
    QTest::addColumn<QString>("valueAfter");
    const QString write = "setadmindvar g_gravity \"900\"";
    QTest::newRow("accepted") << int(RConResultSuccess) << "will take effect later" << QStringList{write} << QString()
                              << "900";
    QTest::newRow("no answer") << int(RConResultTimeout) << "no %1 answer" << QStringList{write}
                               << "Error setting dvar 'g_gravity': no %1 answer"
                               << "800";
    QTest::newRow("a failure is never read as a refusal")
        << int(RConResultError) << "not a valid value" << QStringList{write}
        << "Error setting dvar 'g_gravity': not a valid value"
        << "800";
    QTest::newRow("turned down") << int(RConResultSuccess) << "'900' is not a valid value for g_gravity"
                                 << QStringList{write, "g_gravity"} << "'900' is not a valid value for g_gravity"
                                 << "850";
}

void DvarSettingsTest::writes()
{
    QFETCH(int, result);
    QFETCH(QString, reply);
    QFETCH(QString, alert);
    ScriptedSession session;
    QVERIFY(hasEnded(session.connectTo({{"g_gravity", "800"}})));
    session.exchange.forgetSent();
    session.exchange.answer("setadmindvar g_gravity \"900\"", Reply{RConResult(result), reply, false});
    session.exchange.answer("g_gravity", Exchanged::ok("\"g_gravity\" is: \"850\" in force: \"850\""));
    const auto tested = setting(session, "int");
    QVERIFY(hasEnded(tested->setDvarValue("900")));
    QTEST(session.exchange.sent(), "sent");
    QCOMPARE(session.alerts.texts(), alert.isNull() ? QStringList() : QStringList{alert});
    QCOMPARE(session.alerts.titles(), alert.isNull() ? QStringList() : QStringList{"Remote Command Failure"});
    QTEST(tested->dvarValue(), "valueAfter");
}

void DvarSettingsTest::cancelledWrite()
{
    ScriptedSession session;
    QVERIFY(hasEnded(session.connectTo({{"g_gravity", "800"}})));
    session.exchange.hold();
    const auto tested = setting(session);
    const auto write = tested->setDvarValue("900");
    session.server.cancelExchange();
    QVERIFY(hasEnded(write));
    QCOMPARE(session.alerts.shown().size(), 0);
    QCOMPARE(tested->dvarValue(), QString("800"));
}

void DvarSettingsTest::replacedWhileWriting()
{
    ScriptedSession session;
    QVERIFY(hasEnded(session.connectTo({{"g_gravity", "800"}})));
    session.exchange.answer("setadmindvar g_gravity \"1\"", Exchanged::ok("1 is not a valid value"));
    session.exchange.answer("g_gravity", Exchanged::ok("\"g_gravity\" \"850\" \"850\""));
    session.exchange.hold();
    auto tested = setting(session);
    const auto write = tested->setDvarBoolValue(true);
    tested.reset();
    session.exchange.release();
    QTRY_COMPARE(session.exchange.keptCount(), 1); // the value is read anew
    session.exchange.release();
    QVERIFY(hasEnded(write));
    QCOMPARE(session.alerts.texts(), QStringList{"1 is not a valid value"});
    QCOMPARE(session.server.dvarList().value("g_gravity"), QString("850"));
}

QTEST_GUILESS_MAIN(DvarSettingsTest)
#include "tst_dvarsettings.moc"
