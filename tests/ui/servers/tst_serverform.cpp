#include "ActionQueue.h"
#include "Controls.h"
#include "RecordedAlerts.h"
#include "SavedServers.h"
#include "ServersView.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

struct Form {
    QLineEdit &field(const char *name) const { return *control<QLineEdit>(view, name); }
    QString address() const { return field("hostField").text() + QLatin1Char('|') + field("portField").text(); }

    QTemporaryDir folder;
    RecordedAlerts alerts;
    ActionQueue actions;
    SavedServers savedServers{folder.filePath("SavedServers.plist"), "tester"};
    ServersView view{savedServers, actions, alerts};
};

class ServerFormTest : public QObject
{
    Q_OBJECT
private slots:
    void understandsWhatIsTyped_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("meant");
        QTest::newRow("as it should be") << "192.0.2.10"
                                         << "50960"
                                         << "192.0.2.10|50960";
        QTest::newRow("blanks") << " 192.0.2.10 "
                                << "\t50960 "
                                << "192.0.2.10|50960";
        QTest::newRow("both in one field") << " 192.0.2.10:50960"
                                           << ""
                                           << "192.0.2.10|50960";
        QTest::newRow("what was typed in one field is meant") << "192.0.2.10:50960"
                                                              << "50961"
                                                              << "192.0.2.10|50960";
    }
    void understandsWhatIsTyped()
    {
        QFETCH(QString, host);
        QFETCH(QString, port);
        QFETCH(QString, meant);
        Form form;
        form.view.fillForm(host, port);
        form.view.setFormPassword("pw");
        form.field("labelField").setText("Home");
        QVERIFY(form.view.canConnect());
        QString connectedTo;
        connect(&form.view, &ServersView::connectButtonPressed, &form.view, [&] {
            const ServerForm typed = form.view.form();
            connectedTo = typed.host + QLatin1Char('|') + typed.port;
        });
        control<QPushButton>(form.view, "saveToServerListButton")->click();
        const SavedServer saved = form.savedServers.servers().first();
        QCOMPARE(saved.host + QLatin1Char('|') + saved.port, meant);
        form.view.fillForm(host, port);
        form.view.pressConnect();
        QCOMPARE(connectedTo, meant);
    }

    void leavingTheHostFieldFillsThePort()
    {
        Form form;
        form.view.show();
        form.view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&form.view));
        form.field("hostField").setFocus();
        QTest::keyClicks(&form.field("hostField"), "192.0.2.10:50960");
        QCOMPARE(form.address(), "192.0.2.10:50960|"); // the port may be not yet complete
        QTest::keyClick(&form.field("hostField"), Qt::Key_Tab);
        QCOMPARE(form.address(), "192.0.2.10|50960");
    }
};

QTEST_MAIN(ServerFormTest)
#include "tst_serverform.moc"
