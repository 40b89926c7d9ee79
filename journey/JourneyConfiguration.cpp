#include "Journey.h"

#include "AppDelegate.h"
#include "CompareWindow.h"
#include "ConfigBuilderView.h"
#include "ConsoleView.h"
#include "DvarSettingOutlineView.h"
#include "FormMainView.h"
#include "Hands.h"
#include "PlaceholderTable.h"
#include "ProgressWindowController.h"
#include "SectionTable.h"
#include "SettingsView.h"
#include "TranscriptView.h"

#include <QFile>
#include <QFileDialog>
#include <QTest>

bool Journey::chooseFile(const QString &panelName, const QString &path)
{
    auto *panel = window().findChild<QFileDialog *>(panelName);
    if (!waitForSheet(panel))
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
    ConfigBuilderView &view = *window().configBuilderView;
    Hands::showTab(*window().tabControlMain, &view);
    Hands::click(view.selectNoneButton);
    SectionTable &groups = *view.configBuilderGeneralSettingsTable;
    SectionTable &gametypes = *view.configBuilderGametypeSettingsTable;
    Hands::click(groups, Hands::find(groups, QStringLiteral("Network")));
    Hands::click(groups, Hands::find(groups, QStringLiteral("Server")), Qt::ControlModifier);
    Hands::click(gametypes, Hands::find(gametypes, QStringLiteral("Domination")));
    takePicture(QStringLiteral("config"));
    Hands::click(view.saveConfigButton);
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
    QAbstractItemView &outline = *window().unrankedSettingsView->settingsOutlineView;
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
    SettingsView &view = *window().unrankedSettingsView;
    Hands::showTab(*window().tabControlMain, &view);
    const QList<QListWidgetItem *> groups =
        view.settingsGroupList->findItems(QStringLiteral("Network"), Qt::MatchExactly);
    if (!expect(groups.size() == 1, QStringLiteral("the settings of the network can be chosen")))
        return false;
    Hands::click(*view.settingsGroupList, view.settingsGroupList->indexFromItem(groups.first()));
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
    ConfigBuilderView &view = *window().configBuilderView;
    Hands::showTab(*window().tabControlMain, &view);
    Hands::click(view.compareConfigButton);
    if (!chooseFile(QStringLiteral("compareConfigPanel"), configurationPath()))
        return false;
    const auto comparison = [this] {
        return window().findChild<CompareWindow *>();
    };
    if (!expect(waitUntil([&] { return comparison() != nullptr; }), QStringLiteral("the comparison opens")) ||
        !waitForSheet(comparison()))
        return false;
    takePicture(QStringLiteral("compare"));
    const QModelIndex ping = Hands::find(*comparison()->comparisonTableView, QStringLiteral("sv_maxPing"));
    if (!expect(ping.siblingAtColumn(1).data() == QLatin1String("201") &&
                    ping.siblingAtColumn(2).data() == QLatin1String("350"),
                QStringLiteral("the comparison shows the value now and the file's")))
        return false;
    const auto writes = [this] {
        return m_server.commandsSeen().filter(QLatin1String("setadmindvar ")).size();
    };
    const qsizetype before = writes();
    Hands::click(comparison()->loadOnlyDifferencesButton);
    if (!expect(waitUntil([&] { return writes() == before + 3; }) && view.progressWindowController() != nullptr,
                QStringLiteral("loading shows how far it is")))
        return false;
    takePicture(QStringLiteral("loading"));
    return expect(waitUntilIdle() && writes() == before + 3 &&
                      m_server.variable(QStringLiteral("sv_maxPing")) == QLatin1String("350"),
                  QStringLiteral("only what differs is written"));
}

bool Journey::useTheConsole()
{
    ConsoleView &view = *window().consoleView;
    Hands::showTab(*window().tabControlMain, &view);
    Hands::type(view.consoleInput, QStringLiteral("sv_hostname"));
    QTest::keyClick(view.consoleInput, Qt::Key_Return);
    const bool isAnswered = waitUntil([this] { return transcript().contains(QLatin1String("\"sv_hostname\" is:")); });
    if (!expect(isAnswered && waitUntilIdle(), QStringLiteral("the console shows the server's reply")))
        return false;
    takePicture(QStringLiteral("console"));
    return true;
}
