#include "CatalogueFixture.h"
#include "DataColumns.h"
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
    void readsSettings()
    {
        ScriptedSession session;
        const auto document =
            XmlDocument::parse("<s><DvarSetting><more><name>a</name></more><dvar>x</dvar><dvar>y</dvar><type>int</"
                               "type><type/></DvarSetting>"
                               "<DvarSetting><name>a &lt;b&gt; <![CDATA[<c>]]><!-- no -->, <i>d</i></name>"
                               "<description>Falls</description><category>World</category></DvarSetting></s>");
        QVERIFY(document);
        QStringList texts;
        for (const auto &element : document->elements("//DvarSetting")) {
            const auto read = DvarSetting::dvarSettingWithXMLNode(element, session.server);
            texts += {shown(read->name()), shown(read->dvar()), shown(read->type()), shown(read->settingDescription()),
                      shown(read->category())};
        }
        // Only direct children count, and the last one of a name.
        QCOMPARE(texts.join(' '), "- [y] [] - - [a <b> <c>, d] - [string] [Falls] [World]");
    }

    void groupsSettings()
    {
        ScriptedSession session;
        const auto setting = [](const QByteArray &name, const QByteArray &category) -> QByteArray {
            return "<DvarSetting><name>" + name + "</name><category>" + category + "</category></DvarSetting>";
        };
        const auto document =
            XmlDocument::parse("<L><deep>" + setting("alpha", "Beta") + "</deep>" + setting("Beta", "Beta") +
                               setting("Gamma", "alpha") + setting("alpha", "again") + setting("plain", "") + "</L>");
        QVERIFY(document);
        const auto list = DvarSettingList::dvarSettingsWithXMLNode(document->elements("/L").front(), session.server);
        QStringList categories;
        for (const auto &category : list->children()) {
            QStringList names;
            for (const auto &each : category->children())
                names.append(each->name());
            categories.append(category->name() + '(' + names.join(' ') + ')');
        }
        QCOMPARE(categories.join(' '), "(plain) alpha(Gamma) Beta(Beta alpha)"); // the first of a name is kept
    }

    void validates_data()
    {
        const auto row = dataColumns<QString, QStringList, QStringList>("type", "accepted", "rejected");
        row("bool", "bool", QStringList{"0", "1", "\"1\""}, QStringList{"2", "", "true", "\"2\""});
        row("int", "int", QStringList{"0", "007", "99999999999999999999999", "\"25\"", "\"25"},
            QStringList{"-1", "1.0", "", "1\n", QString::fromUtf8("\u0663"), "\"\"", "2\"5"});
        row("float", "float", QStringList{"-.5", "+3", "10", "0.25", "\"0.25\""},
            QStringList{"1.", "1e5", "", "1.2.3", "0.5\n"});
        row("string", "string", QStringList{"", "anything \" at all"}, QStringList());
        row("unknown type", "integer", QStringList(), QStringList{"1", ""});
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
