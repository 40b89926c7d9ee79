#include "CatalogueFixture.h"
#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "DvarSettingList.h"
#include "XmlDocument.h"

static QString shown(const QString &text)
{
    return text.isNull() ? QStringLiteral("-") : '[' + text + ']';
}

class DvarSettingsTest : public QObject
{
    Q_OBJECT
private slots:
    void readsSetting_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("read"); // name, dvar, type, description, category; a dash where nothing is
        const auto row = [](const char *name, const char *xml, const char *read) {
            QTest::newRow(name) << QByteArray(xml) << QString(read);
        };
        row("only direct children, the last one counts",
            "<more><name>a</name></more><dvar>x</dvar><dvar>y</dvar><type>int</type><type/>", "- [y] [] - -");
        row("nothing at all", "", "- - [string] - -");
        row("marked up text",
            "<name>a &lt;b&gt; <![CDATA[<c>]]><!-- no -->, <i>d</i></name><description>Falls</description>"
            "<category>World</category>",
            "[a <b> <c>, d] - [string] [Falls] [World]");
    }
    void readsSetting()
    {
        QFETCH(QByteArray, xml);
        ScriptedSession session;
        const auto document = XmlDocument::parse("<DvarSetting>" + xml + "</DvarSetting>");
        QVERIFY(document);
        const auto read =
            DvarSetting::dvarSettingWithXMLNode(document->elements("/DvarSetting").front(), session.server);
        const QStringList texts{shown(read->name()), shown(read->dvar()), shown(read->type()),
                                shown(read->settingDescription()), shown(read->category())};
        QTEST(texts.join(' '), "read");
    }

    void groupsSettings_data()
    {
        QTest::addColumn<QByteArray>("xml"); // s: a setting, n: its name, d: its variable, c: its category
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("categories");
        const auto row = [](const char *name, const char *xml, const char *settings, const char *categories) {
            QTest::newRow(name) << QByteArray(xml) << QString(settings) << QString(categories);
        };
        row("first of a name is kept", "<s><n>a</n><d>1</d><c>x</c></s><s><n>a</n><d>2</d><c>y</c></s>", "a=1", "x(a)");
        row("an empty category is one", "<name>L</name><s><n>a</n><d>1</d><c/></s><s><n>b</n><d>2</d></s>", "a=1 b=2",
            "(a) L(b)");
        row("the two orders, at any depth",
            "<deep><s><n>alpha</n><d>1</d><c>Beta</c></s></deep><s><n>Beta</n><d>2</d><c>Beta</c></s>"
            "<s><n>Gamma</n><d>3</d><c>alpha</c></s>",
            "alpha=1 Beta=2 Gamma=3", "alpha(Gamma) Beta(Beta alpha)");
    }
    void groupsSettings()
    {
        QFETCH(QByteArray, xml);
        ScriptedSession session;
        xml.replace("<s>", "<DvarSetting>").replace("</s>", "</DvarSetting>");
        xml.replace("<n>", "<name>").replace("</n>", "</name>").replace("<d>", "<dvar>").replace("</d>", "</dvar>");
        xml.replace("<c>", "<category>").replace("</c>", "</category>").replace("<c/>", "<category/>");
        const auto document = XmlDocument::parse("<L>" + xml + "</L>");
        QVERIFY(document);
        const auto list = DvarSettingList::dvarSettingsWithXMLNode(document->elements("/L").front(), session.server);
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

    void validates_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QStringList>("accepted");
        QTest::addColumn<QStringList>("rejected");
        QTest::newRow("bool") << "bool" << QStringList{"0", "1", "\"1\""} << QStringList{"2", "", "true", "\"2\""};
        QTest::newRow("int") << "int" << QStringList{"0", "007", "99999999999999999999999", "\"25\"", "\"25"}
                             << QStringList{"-1", "1.0", "", "1\n", QString::fromUtf8("\u0663"), "\"\"", "2\"5"};
        QTest::newRow("float") << "float" << QStringList{"-.5", "+3", "10", "0.25", "\"0.25\""}
                               << QStringList{"1.", "1e5", "", "1.2.3", "0.5\n"};
        QTest::newRow("string") << "string" << QStringList{"", "anything \" at all"} << QStringList();
        QTest::newRow("unknown type") << "integer" << QStringList() << QStringList{"1", ""};
    }
    void validates()
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

    void readsValue()
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

private:
    static std::shared_ptr<DvarSetting> setting(ScriptedSession &session, const QString &type = "string")
    {
        auto made = std::make_shared<DvarSetting>(session.server);
        made->setDvar("world_gravity");
        made->setType(type);
        return made;
    }
};

QTEST_GUILESS_MAIN(DvarSettingsTest)
#include "tst_dvarsettings.moc"
