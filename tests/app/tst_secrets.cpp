#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "ProcessPrivacy.h"
#include "Secrets.h"
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

#include <algorithm>

// "rcon-q38-zt4", masked: in the memory it is to stand only where the program has put it.
static const QByteArray masked = "sbno,p29,{u5";
static const QString partOfAll = "-q38-";

static QByteArray unmasked()
{
    QByteArray text = masked;
    std::transform(masked.begin(), masked.end(), text.begin(), [](char byte) { return char(byte ^ 1); });
    return text;
}

/// How often the process holds the password in its writable memory: as UTF-16, or as bytes for `char`. Its first
/// letters do not count, as a text that is emptied where it lies loses no more than those.
template <typename Unit>
static int copiesInMemory()
{
    constexpr int lost = 2;
    QFile maps("/proc/self/maps");
    const QByteArrayList areas = maps.open(QIODevice::ReadOnly) ? maps.readAll().split('\n') : QByteArrayList();
    int count = 0;
    for (const QByteArray &area : areas) {
        if (!area.contains(" rw-p "))
            continue;
        const QByteArrayList ends = area.left(area.indexOf(' ')).split('-');
        // NOLINTBEGIN(performance-no-int-to-ptr): the system gives addresses as numbers
        const auto *at = reinterpret_cast<const Unit *>(ends.first().toULongLong(nullptr, 16));
        const auto *const end = reinterpret_cast<const Unit *>(ends.last().toULongLong(nullptr, 16));
        // NOLINTEND(performance-no-int-to-ptr)
        const auto isSame = [](Unit stored, char byte) {
            return stored == (byte ^ 1);
        };
        for (; (at = std::search(at, end, masked.begin() + lost, masked.end(), isSame)) != end; ++at)
            ++count;
    }
    return count;
}

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
    void passwordsStayOutOfSightAndGoFromMemory()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()) && QFile("log.txt").open(QIODevice::WriteOnly));
        static QString messages;
        const QtMessageHandler ofTests = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { messages += text + '\n'; });
        qputenv("FerrowRconLog", "1");
        qputenv("FERROW_DEMO_PASSWORD", *Wiped<QByteArray>(unmasked()));
        QProcess demo;
        demo.start(FERROW_DEMO_SERVER, {"--port", "0"});
        QVERIFY(demo.waitForReadyRead());
        QCOMPARE(ProcessPrivacy::takeFromEnvironment("FERROW_DEMO_PASSWORD").size(), masked.size());

        AppDelegate application({folder.filePath("preferences.ini"), {}, folder.filePath("made")});
        FormMainView &window = application.window();
        window.show();
        const QWidget &pane = *control<QWidget>(window, "serversView");
        auto *passwordField = control<QLineEdit>(pane, "passwordField");
        QTest::keyClicks(control<QLineEdit>(pane, "labelField"), "Mine");
        QTest::keyClicks(control<QLineEdit>(pane, "hostField"), "127.0.0.1");
        QTest::keyClicks(control<QLineEdit>(pane, "portField"), demo.readAll().trimmed().split(':').last());
        QTest::keyClicks(passwordField, *Wiped<QString>(unmasked()));
        control<QPushButton>(pane, "saveToServerListButton")->click();
        control<QPushButton>(pane, "connectButton")->click();
        const auto isSettled = [&] {
            if (auto *alert = window.findChild<QMessageBox *>("alert")) // a variable that the demo server lacks
                alert->defaultButton()->click();
            return application.server().isConnected() && application.actions().isIdle();
        };
        QVERIFY(QTest::qWaitFor(isSettled, 30000));
        QTest::keyClicks(control<QLineEdit>(window, "consoleInput"), "say 1; set g_password game-q38-vk6\r");
        awaited(application.server().setDvar("g_password", "game-q38-vk7"));
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
        if (!FERROW_SANITIZED)                       // which would stop the look at freed memory
            QCOMPARE(copiesInMemory<char16_t>(), 3); // of the two fields and of the session
        control<QPushButton>(pane, "disconnectButton")->click();
        QVERIFY(QTest::qWaitFor([&application] { return application.actions().isIdle(); })); // a request let go of it
        passwordField->clear();
        QTest::keyClick(saved, Qt::Key_Delete);
        QVERIFY(control<ServersView>(window, "serversView")->undoStack()->canUndo()); // by an encrypted copy
        if (!FERROW_SANITIZED) {
            QCOMPARE(copiesInMemory<char16_t>(), 0);
            QCOMPARE(copiesInMemory<char>(), 0);
        }

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
