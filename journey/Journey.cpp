#include "Journey.h"

#include "AppDelegate.h"
#include "ConsoleView.h"
#include "DvarSettingOutlineView.h"
#include "ElidingField.h"
#include "FormMainView.h"
#include "MapsView.h"
#include "PlaceholderTable.h"
#include "PlayerSendMessage.h"
#include "PlayersView.h"
#include "ServersView.h"
#include "SettingsView.h"
#include "StatusLine.h"
#include "TranscriptView.h"
#include "WelcomePage.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QTest>

#include <algorithm>

static constexpr int patience = 60000; // milliseconds; a slow machine under a sanitizer included

Journey::Journey(AppDelegate &application, const QString &pictures) : m_application(application), m_folder(pictures) {}

bool Journey::perform()
{
    FormMainView &window = m_application.window();
    window.show();
    if (!expect(QTest::qWaitForWindowExposed(&window, patience), QStringLiteral("the window opens")))
        return false;
    takePicture(QStringLiteral("welcome"));
    return connectToDemoServer() && kickAPlayer() && writeAMessage() && loadAMap() && changeASetting() &&
           useTheConsole() && disconnect();
}

/// Waits as a person does: reads an alert that comes up, and presses its default button.
bool Journey::waitUntil(const std::function<bool()> &isReached)
{
    const auto look = [&] {
        auto *alert = m_application.window().findChild<QMessageBox *>(QStringLiteral("alert"));
        if (alert != nullptr && alert->isVisible() && alert->defaultButton() != nullptr) {
            if (m_alertCount++ == 0)
                takePicture(QStringLiteral("alert"));
            QTest::mouseClick(alert->defaultButton(), Qt::LeftButton);
        }
        return isReached();
    };
    return QTest::qWaitFor(look, patience);
}

bool Journey::expect(bool isTrue, const QString &what)
{
    if (!isTrue)
        m_failure = what;
    return isTrue;
}

void Journey::takePicture(const QString &name)
{
    if (m_folder.isEmpty())
        return;
    FormMainView &window = m_application.window();
    QPixmap picture = window.grab();
    // Sheets are windows of their own: they are drawn where they stand.
    QPainter painter(&picture);
    for (QWidget *sheet : QApplication::topLevelWidgets()) {
        if (!sheet->isVisible() || sheet == &window || !sheet->isModal())
            continue;
        const QPoint place = window.rect().center() - sheet->rect().center();
        painter.drawPixmap(place, sheet->grab());
        painter.setPen(window.palette().color(QPalette::Mid));
        painter.drawRect(QRect(place, sheet->size()).adjusted(-1, -1, 0, 0));
    }
    painter.end();
    const QString path = QDir(m_folder).absoluteFilePath(QStringLiteral("%1-%2.png").arg(m_paths.size() + 1).arg(name));
    if (picture.save(path))
        m_paths.append(path);
}

bool Journey::connectToDemoServer()
{
    FormMainView &window = m_application.window();
    QTest::mouseClick(window.welcomePage->tryDemoServerButton, Qt::LeftButton);
    const bool isListed = waitUntil([&] { return !window.playersView->playersController->content().isEmpty(); });
    if (!expect(isListed, QStringLiteral("the players of the demo server are listed")))
        return false;
    if (!expect(window.statusLine->status() == QLatin1String("Connected to Demo Server (Unranked)"),
                QStringLiteral("the status line tells of the connection")))
        return false;
    takePicture(QStringLiteral("players"));
    return true;
}

bool Journey::kickAPlayer()
{
    PlayersView &view = *m_application.window().playersView;
    view.playersTableView->selectRow(1);
    const QList<PlayerRow> chosen = view.playersController->selectedObjects();
    if (!expect(chosen.size() == 1, QStringLiteral("a player can be selected")))
        return false;
    QTest::mouseClick(view.kickPlayerButton, Qt::LeftButton);
    if (!expect(waitUntil([&] { return m_application.actions().isIdle(); }), QStringLiteral("the kick is carried out")))
        return false;
    const QString command = QStringLiteral("clientkick ") + chosen.first().identifier;
    if (!expect(m_application.server().commandHistory().last() == command, QStringLiteral("the kick is sent")))
        return false;
    QTest::mouseClick(view.refreshPlayersButton, Qt::LeftButton);
    const auto isStillListed = [&] {
        const QList<PlayerRow> &players = view.playersController->content();
        return std::any_of(players.begin(), players.end(),
                           [&](const PlayerRow &player) { return playerKey(player) == playerKey(chosen.first()); });
    };
    if (!expect(waitUntil([&] { return !isStillListed(); }), QStringLiteral("the kicked player is gone from the list")))
        return false;
    takePicture(QStringLiteral("kicked"));
    return true;
}

bool Journey::writeAMessage()
{
    PlayersView &view = *m_application.window().playersView;
    view.playersTableView->selectRow(0);
    QTest::mouseClick(view.messagePlayerButton, Qt::LeftButton);
    PlayerSendMessage *panel = view.playerSendMessagePanel;
    if (!expect(QTest::qWaitForWindowExposed(panel, patience), QStringLiteral("the message panel opens")))
        return false;
    QTest::keyClicks(panel->messageTextField, QStringLiteral("Welcome! The rules are on our page."));
    takePicture(QStringLiteral("message"));
    QTest::mouseClick(panel->sendButton, Qt::LeftButton);
    if (!expect(waitUntil([&] { return m_application.actions().isIdle(); }), QStringLiteral("the message is sent")))
        return false;
    return expect(m_application.server().commandHistory().last().startsWith(QLatin1String("tell ")),
                  QStringLiteral("the message goes to the player"));
}

bool Journey::loadAMap()
{
    FormMainView &window = m_application.window();
    MapsView &view = *window.mapsView;
    window.tabControlMain->setCurrentWidget(&view);
    const bool isShown = waitUntil(
        [&] { return !view.currentMapField->text().isEmpty() && view.mapServerRotationController->rowCount() > 0; });
    if (!expect(isShown, QStringLiteral("map and rotation are shown")))
        return false;
    const QModelIndex other = view.mapListController->arranged()->index(5, 0);
    view.mapListView->setCurrentIndex(other);
    QTest::mouseClick(view.loadMapButton, Qt::LeftButton);
    const QString name = other.data().toString();
    if (!expect(waitUntil([&] { return view.currentMapField->text() == name; }),
                QStringLiteral("the chosen map is loaded")))
        return false;
    takePicture(QStringLiteral("maps"));
    return true;
}

bool Journey::changeASetting()
{
    FormMainView &window = m_application.window();
    SettingsView &view = *window.unrankedSettingsView;
    window.tabControlMain->setCurrentWidget(&view);
    const QAbstractItemModel *model = view.settingsOutlineView->model();
    // The first text that can be edited: the server's name or the like.
    QModelIndex value;
    for (int category = 0; category < model->rowCount() && !value.isValid(); ++category) {
        const QModelIndex parent = model->index(category, 0);
        for (int row = 0; row < model->rowCount(parent) && !value.isValid(); ++row) {
            const QModelIndex cell = model->index(row, 1, parent);
            if ((cell.flags() & Qt::ItemIsEditable) != 0 && cell.data().toString().toInt() > 0)
                value = cell;
        }
    }
    if (!expect(value.isValid(), QStringLiteral("there is a number to edit")))
        return false;
    const QString typed = QString::number(value.data().toString().toInt() - 1);
    view.settingsOutlineView->setCurrentIndex(value);
    view.settingsOutlineView->edit(value);
    auto *editor = view.settingsOutlineView->findChild<QLineEdit *>();
    if (!expect(editor != nullptr, QStringLiteral("the value can be edited")))
        return false;
    editor->selectAll();
    QTest::keyClicks(editor, typed);
    takePicture(QStringLiteral("editing"));
    QTest::keyClick(editor, Qt::Key_Return);
    const QString written = QStringLiteral("\"%1\"").arg(typed);
    const bool isWritten = waitUntil([&] {
        const QStringList history = m_application.server().commandHistory();
        return m_application.actions().isIdle() && history.last().startsWith(QLatin1String("setadmindvar ")) &&
               history.last().endsWith(written);
    });
    if (!expect(isWritten, QStringLiteral("the edit is written")))
        return false;
    takePicture(QStringLiteral("settings"));
    return expect(window.consoleView->consoleOutput->toPlainText().contains(written),
                  QStringLiteral("the transcript shows the write"));
}

bool Journey::useTheConsole()
{
    FormMainView &window = m_application.window();
    window.tabControlMain->setCurrentWidget(window.consoleView);
    QTest::keyClicks(window.consoleView->consoleInput, QStringLiteral("sv_hostname"));
    QTest::keyClick(window.consoleView->consoleInput, Qt::Key_Return);
    const TranscriptView &transcript = *window.consoleView->consoleOutput;
    const bool isAnswered =
        waitUntil([&] { return transcript.toPlainText().contains(QLatin1String("\"sv_hostname\" is:")); });
    if (!expect(isAnswered, QStringLiteral("the console shows the server's reply")))
        return false;
    takePicture(QStringLiteral("console"));
    return true;
}

bool Journey::disconnect()
{
    FormMainView &window = m_application.window();
    QTest::mouseClick(window.serversView->disconnectButton, Qt::LeftButton);
    return expect(window.statusLine->status() == QLatin1String("Not connected"),
                  QStringLiteral("the connection is ended"));
}
