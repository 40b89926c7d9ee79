#include "Journey.h"

#include "Controls.h"
#include "Hands.h"

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QTest>

void Journey::chooseFile(const QString &panelName, const QString &path)
{
    const QDialog &panel = waitForSheet(panelName);
    auto *name = panel.findChild<QLineEdit *>("fileNameEdit");
    expect(name != nullptr, "a file name can be typed");
    Hands::type(name, path);
    QTest::keyClick(name, Qt::Key_Return);
    expect(!panel.isVisible(), "the file is chosen");
}

void Journey::saveAConfiguration()
{
    const QWidget &builder = showTab("configBuilderView");
    Hands::click(builder, "selectNoneButton");
    auto &groups = *control<QAbstractItemView>(builder, "configBuilderGeneralSettingsTable");
    auto &gametypes = *control<QAbstractItemView>(builder, "configBuilderGametypeSettingsTable");
    Hands::click(groups, Hands::find(groups, "Network"));
    Hands::click(groups, Hands::find(groups, "Server"), Qt::ControlModifier);
    Hands::click(gametypes, Hands::find(gametypes, "Dock Watch"));
    takePicture("config");
    Hands::click(builder, "saveConfigButton");
    chooseFile("saveConfigPanel", configurationPath());
    QFile file(configurationPath());
    expect(waitUntilIdle() && file.open(QIODevice::ReadOnly), "the file is written");
    const QByteArray text = file.readAll();
    const qsizetype network = text.indexOf("// 'Network' Settings");
    const qsizetype server = text.indexOf("// 'Server' Settings");
    expect(network > 0 && server > network && text.contains("line_highestPing \"350\"") &&
               !text.contains("rcon_password"),
           "the file has the sections in the order of their selection");
}

void Journey::editSetting(const QString &name, const QString &value)
{
    auto &outline = *control<QAbstractItemView>(page("unrankedSettingsView"), "unrankedOutlineView");
    const QModelIndex setting = Hands::find(outline, name);
    expect(setting.isValid(), QStringLiteral("the setting is listed: ") + name);
    Hands::click(outline, setting);
    QTest::keyClick(&outline, Qt::Key_Return);
    auto *editor = outline.findChild<QLineEdit *>();
    expect(editor != nullptr, "the value can be edited");
    Hands::type(editor, value);
    QTest::keyClick(editor, Qt::Key_Return);
    const QString written = QStringLiteral("\"%1\"").arg(value);
    expect(waitUntil([&] { return transcript().contains(written); }) && waitUntilIdle(), "the edit is written");
}

void Journey::changeSettings()
{
    auto &groups = *control<QAbstractItemView>(showTab("unrankedSettingsView"), "settingsGroupList");
    const QString network = "Network";
    expect(shownTexts(groups).count(network) == 1, "the settings of the network can be chosen");
    Hands::click(groups, Hands::find(groups, network));
    editSetting("Highest ping", "201");
    editSetting("Play time-out", "121");
    editSetting("Connect time-out", "91");
    takePicture("settings");
    expect(m_server.variable("line_highestPing") == "201", "the server has the edited value");
}

void Journey::compareAndLoad()
{
    Hands::click(showTab("configBuilderView"), "compareConfigButton");
    chooseFile("compareConfigPanel", configurationPath());
    const QString name = "CompareWindow";
    expect(waitUntil([&] { return sheet(name) != nullptr; }), "the comparison opens");
    const QDialog &comparison = waitForSheet(name);
    takePicture("compare");
    const auto &table = *control<QAbstractItemView>(comparison, "comparisonTableView");
    const QModelIndex ping = Hands::find(table, "line_highestPing");
    expect(ping.siblingAtColumn(1).data() == "201" && ping.siblingAtColumn(2).data() == "350",
           "the comparison shows the value now and the file's");
    const auto writes = [this] {
        return m_server.commandsSeen().filter("setadmindvar ").size();
    };
    const qsizetype before = writes();
    Hands::click(comparison, "loadOnlyDifferencesButton");
    expect(waitUntil([&] { return writes() == before + 3; }) && sheet("ProgressWindowController") != nullptr,
           "loading shows how far it is");
    takePicture("loading");
    expect(waitUntilIdle() && writes() == before + 3 && m_server.variable("line_highestPing") == "350",
           "only what differs is written");
}
