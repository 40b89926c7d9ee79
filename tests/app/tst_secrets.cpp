#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "ProcessPrivacy.h"
#include "ServersView.h"
#include "Wait.h"

#include <QClipboard>
#include <QDirIterator>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

static const QString password = "rcon-q38-zt4";
static const QString partOfAll = "-q38-";

/// Whether part of a password is in a text that a user or an assistive program comes across without asking for it. The
/// transcript shows what was typed, and is asked for.
static bool isShown(const QWidget &window)
{
    QStringList texts{QGuiApplication::clipboard()->text(), QGuiApplication::clipboard()->text(QClipboard::Selection)};
    for (const QWidget *each : QApplication::allWidgets())
        texts << each->windowTitle() << each->toolTip() << each->whatsThis() << each->statusTip()
              << each->accessibleName() << each->accessibleDescription();
    bool isFound = texts.join(' ').contains(partOfAll);
    for (const QAbstractItemView *view : window.findChildren<QAbstractItemView *>()) {
        const QAbstractItemModel *model = view->model();
        for (int column = 0; model != nullptr && column < model->columnCount(); ++column)
            for (const int role :
                 {Qt::DisplayRole, Qt::ToolTipRole, Qt::AccessibleTextRole, Qt::AccessibleDescriptionRole})
                isFound |=
                    !model->match(model->index(0, column), role, partOfAll, 1, Qt::MatchContains | Qt::MatchRecursive)
                         .isEmpty();
    }
    return isFound;
}

class SecretsTest : public QObject
{
    Q_OBJECT
private slots:
    void passwordsStayOutOfSight()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()) && QFile("log.txt").open(QIODevice::WriteOnly));
        static QString messages;
        const QtMessageHandler ofTests = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { messages += text + '\n'; });
        qputenv("FerrowRconLog", "1");
        qputenv("FERROW_DEMO_PASSWORD", password.toUtf8());
        QProcess demo;
        demo.start(FERROW_DEMO_SERVER, {"--port", "0"});
        QVERIFY(demo.waitForReadyRead());
        const char *const atStart = ::getenv("FERROW_DEMO_PASSWORD");
        QCOMPARE(ProcessPrivacy::takeFromEnvironment("FERROW_DEMO_PASSWORD"), password);
        QCOMPARE(*atStart, '\0'); // the system goes on showing what is there
        QVERIFY(!qEnvironmentVariableIsSet("FERROW_DEMO_PASSWORD"));

        AppDelegate application({folder.filePath("preferences.ini"), {}, folder.filePath("made")});
        FormMainView &window = application.window();
        window.show();
        const QWidget &pane = *control<QWidget>(window, "serversView");
        auto *passwordField = control<QLineEdit>(pane, "passwordField");
        QTest::keyClicks(control<QLineEdit>(pane, "labelField"), "Mine");
        QTest::keyClicks(control<QLineEdit>(pane, "hostField"), "127.0.0.1");
        QTest::keyClicks(control<QLineEdit>(pane, "portField"), demo.readAll().trimmed().split(':').last());
        QTest::keyClicks(passwordField, password);
        control<QPushButton>(pane, "saveToServerListButton")->click();
        control<QPushButton>(pane, "connectButton")->click();
        const auto isSettled = [&] {
            if (auto *alert = window.findChild<QMessageBox *>("alert")) // a variable that the demo server lacks
                alert->defaultButton()->click();
            return application.server().isConnected() && application.actions().isIdle();
        };
        QVERIFY(QTest::qWaitFor(isSettled, 30000));
        QTest::keyClicks(control<QLineEdit>(window, "consoleInput"), "say 1; set door_password game-q38-vk6\r");
        awaited(application.server().setDvar("door_password", "game-q38-vk7"));
        QVERIFY(QTest::qWaitFor(isSettled, 30000));
        const QWidget &settings = *control<QWidget>(window, "unrankedSettingsView");
        auto *groups = control<QListWidget>(settings, "settingsGroupList");
        for (int row = 0; row < groups->count(); ++row) {
            groups->setCurrentRow(row);
            QVERIFY2(!isShown(window), qPrintable(groups->currentItem()->text()));
        }
        qInstallMessageHandler(ofTests);
        QVERIFY2(!messages.contains(partOfAll), qPrintable(messages));

        auto *saved = control<QTableView>(pane, "savedServerTableView");
        saved->selectRow(0);
        QCOMPARE(control<QLineEdit>(pane, "savedPasswordField")->text(), passwordField->text());
        QCOMPARE(application.server().dvarList().value("rcon_password"), password);
        control<QPushButton>(pane, "disconnectButton")->click();
        QTRY_VERIFY(!application.server().dvarList().contains("rcon_password"));
        QTest::keyClick(saved, Qt::Key_Delete);
        QVERIFY(control<ServersView>(window, "serversView")->undoStack()->canUndo()); // by an encrypted copy

        QDirIterator files(folder.path(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(!QString(file.readAll()).contains(partOfAll), qPrintable(file.fileName()));
            const bool isOpen = (file.permissions() & QFile::Permissions(0x0077)) != 0;
            QVERIFY2(!isOpen || file.fileName().endsWith("log.txt"), qPrintable(file.fileName()));
        }
        demo.terminate();
        QVERIFY(demo.waitForFinished());
    }
};

QTEST_MAIN(SecretsTest)
#include "tst_secrets.moc"
