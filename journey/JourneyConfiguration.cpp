#include "Journey.h"

#include "Controls.h"
#include "Hands.h"

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QTest>

bool Journey::chooseFile(const QString &panelName, const QString &path)
{
    const QDialog *panel = waitForSheet(panelName);
    if (panel == nullptr)
        return false;
    auto *name = panel->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    if (!expect(name != nullptr, QStringLiteral("a file name can be typed")))
        return false;
    Hands::type(name, path);
    QTest::keyClick(name, Qt::Key_Return);
    return expect(!panel->isVisible(), QStringLiteral("the file is chosen"));
}

bool Journey::saveAConfiguration()
{
    const QWidget &builder = showTab("configBuilderView");
    Hands::click(builder, "selectNoneButton");
    auto &groups = *control<QAbstractItemView>(builder, "configBuilderGeneralSettingsTable");
    auto &gametypes = *control<QAbstractItemView>(builder, "configBuilderGametypeSettingsTable");
    Hands::click(groups, Hands::find(groups, QStringLiteral("Network")));
    Hands::click(groups, Hands::find(groups, QStringLiteral("Server")), Qt::ControlModifier);
    Hands::click(gametypes, Hands::find(gametypes, QStringLiteral("Domination")));
    takePicture(QStringLiteral("config"));
    Hands::click(builder, "saveConfigButton");
    if (!chooseFile(QStringLiteral("saveConfigPanel"), configurationPath()))
        return false;
    QFile file(configurationPath());
    if (!expect(waitUntilIdle() && file.open(QIODevice::ReadOnly), QStringLiteral("the file is written")))
        return false;
    const QByteArray text = file.readAll();
    const qsizetype network = text.indexOf("// 'Network' Settings");
    const qsizetype server = text.indexOf("// 'Server' Settings");
    return expect(network > 0 && server > network && text.contains("sv_maxPing \"350\"") &&
                      !text.contains("rcon_password"),
                  QStringLiteral("the file has the sections in the order of their selection"));
}

bool Journey::editSetting(const QString &name, const QString &value)
{
    auto &outline = *control<QAbstractItemView>(page("unrankedSettingsView"), "unrankedOutlineView");
    const QModelIndex setting = Hands::find(outline, name);
    if (!expect(setting.isValid(), QStringLiteral("the setting is listed: ") + name))
        return false;
    Hands::click(outline, setting);
    QTest::keyClick(&outline, Qt::Key_Return);
    auto *editor = outline.findChild<QLineEdit *>();
    if (!expect(editor != nullptr, QStringLiteral("the value can be edited")))
        return false;
    Hands::type(editor, value);
    QTest::keyClick(editor, Qt::Key_Return);
    const QString written = QStringLiteral("\"%1\"").arg(value);
    return expect(waitUntil([&] { return transcript().contains(written); }) && waitUntilIdle(),
                  QStringLiteral("the edit is written"));
}

bool Journey::changeSettings()
{
    auto &groups = *control<QAbstractItemView>(showTab("unrankedSettingsView"), "settingsGroupList");
    const QString network = QStringLiteral("Network");
    if (!expect(shownTexts(groups).count(network) == 1, QStringLiteral("the settings of the network can be chosen")))
        return false;
    Hands::click(groups, Hands::find(groups, network));
    if (!editSetting(QStringLiteral("Highest ping"), QStringLiteral("201")) ||
        !editSetting(QStringLiteral("Play time-out"), QStringLiteral("121")) ||
        !editSetting(QStringLiteral("Connect time-out"), QStringLiteral("91")))
        return false;
    takePicture(QStringLiteral("settings"));
    return expect(m_server.variable(QStringLiteral("sv_maxPing")) == QLatin1String("201"),
                  QStringLiteral("the server has the edited value"));
}

bool Journey::compareAndLoad()
{
    Hands::click(showTab("configBuilderView"), "compareConfigButton");
    if (!chooseFile(QStringLiteral("compareConfigPanel"), configurationPath()))
        return false;
    const QString name = QStringLiteral("CompareWindow");
    if (!expect(waitUntil([&] { return sheet(name) != nullptr; }), QStringLiteral("the comparison opens")))
        return false;
    const QDialog *comparison = waitForSheet(name);
    if (comparison == nullptr)
        return false;
    takePicture(QStringLiteral("compare"));
    const auto &table = *control<QAbstractItemView>(*comparison, "comparisonTableView");
    const QModelIndex ping = Hands::find(table, QStringLiteral("sv_maxPing"));
    if (!expect(ping.siblingAtColumn(1).data() == QLatin1String("201") &&
                    ping.siblingAtColumn(2).data() == QLatin1String("350"),
                QStringLiteral("the comparison shows the value now and the file's")))
        return false;
    const auto writes = [this] {
        return m_server.commandsSeen().filter(QLatin1String("setadmindvar ")).size();
    };
    const qsizetype before = writes();
    Hands::click(*comparison, "loadOnlyDifferencesButton");
    if (!expect(waitUntil([&] { return writes() == before + 3; }) &&
                    sheet(QStringLiteral("ProgressWindowController")) != nullptr,
                QStringLiteral("loading shows how far it is")))
        return false;
    takePicture(QStringLiteral("loading"));
    return expect(waitUntilIdle() && writes() == before + 3 &&
                      m_server.variable(QStringLiteral("sv_maxPing")) == QLatin1String("350"),
                  QStringLiteral("only what differs is written"));
}

bool Journey::useTheConsole()
{
    auto *command = control<QLineEdit>(showTab("consoleView"), "consoleInput");
    Hands::type(command, QStringLiteral("sv_hostname"));
    QTest::keyClick(command, Qt::Key_Return);
    const bool isAnswered = waitUntil([this] { return transcript().contains(QLatin1String("\"sv_hostname\" is:")); });
    if (!expect(isAnswered && waitUntilIdle(), QStringLiteral("the console shows the server's reply")))
        return false;
    takePicture(QStringLiteral("console"));
    return true;
}
