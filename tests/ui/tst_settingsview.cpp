#include "SettingsFixture.h"

using Model = SettingsOutlineModel;

class SettingsViewTest : public QObject
{
    Q_OBJECT

private slots:
    void togglesWhatTheSessionSays_data();
    void togglesWhatTheSessionSays();
    void togglesWhatTheSessionSaysAtItsTurn();
    void aClickOnTheBoxSendsTheOpposite();
    void typedValues_data();
    void typedValues();
    void leavingTheFieldReturnsTheOldValue();
    void theSessionDoesNotOverwriteTheTyping();
    void thePendingWriteIsMarked();
    void writesTheLastOfTwo();
    void tellsOfFailures_data();
    void tellsOfFailures();
    void outlivesAReload();
    void droppedActionsSendNothing();
};

void SettingsViewTest::togglesWhatTheSessionSays_data()
{
    QTest::addColumn<QString>("dvar");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QStringList>("sent");
    QTest::newRow("on") << "g_fire"
                        << "1" << QStringList{"setadmindvar g_fire \"0\""};
    QTest::newRow("off") << "g_fire"
                         << "0" << QStringList{"setadmindvar g_fire \"1\""};
    QTest::newRow("any number is on") << "g_fire"
                                      << "7" << QStringList{"setadmindvar g_fire \"0\""};
    QTest::newRow("no number is off") << "g_fire"
                                      << "yes" << QStringList{"setadmindvar g_fire \"1\""};
    QTest::newRow("Bool") << "g_cam"
                          << "0" << QStringList{"setadmindvar g_cam \"1\""};
    QTest::newRow("not known to the server") << "g_lost" << QString() << QStringList{"setadmindvar g_lost \"1\""};
    QTest::newRow("not a box") << "g_time"
                               << "1" << QStringList{};
}

void SettingsViewTest::togglesWhatTheSessionSays()
{
    QFETCH(QString, dvar);
    QFETCH(QString, value);
    QFETCH(QStringList, sent);
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    if (!value.isNull())
        shown.server.addDvarLine(QStringLiteral("%1 \"%2\"").arg(dvar, value));
    shown.press(dvar, Qt::Key_Space);
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), sent);
    QVERIFY(shown.alerts.shown().isEmpty());
}

void SettingsViewTest::togglesWhatTheSessionSaysAtItsTurn()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    shown.exchange.hold();
    shown.press("g_fire", Qt::Key_Space);
    shown.press("g_fire", Qt::Key_Space);
    QCOMPARE(shown.valueOf("g_fire").data(Qt::CheckStateRole), QVariant(Qt::Checked)); // still what the session says
    shown.exchange.release();
    QTRY_COMPARE(shown.exchange.keptCount(), 1);
    QCOMPARE(shown.valueOf("g_fire").data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
    shown.exchange.release();
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), QStringList({"setadmindvar g_fire \"0\"", "setadmindvar g_fire \"1\""}));
}

void SettingsViewTest::aClickOnTheBoxSendsTheOpposite()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    const QRect cell = shown.tree().visualRect(shown.valueOf("g_fire"));
    QTest::mouseClick(shown.tree().viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 10, cell.center().y()));
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), QStringList{"setadmindvar g_fire \"0\""});
    QTest::mouseClick(shown.tree().viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 5, cell.center().y()));
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent().size(), 1);
}

void SettingsViewTest::typedValues_data()
{
    QTest::addColumn<QString>("dvar");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sent"); ///< null: rejected; empty: accepted without need to send
    QTest::newRow("int") << "g_time"
                         << "30"
                         << "setadmindvar g_time \"30\"";
    QTest::newRow("int with sign") << "g_time"
                                   << "-1" << QString();
    QTest::newRow("int without digits") << "g_time"
                                        << "" << QString();
    QTest::newRow("the same") << "g_time"
                              << "20"
                              << "";
    QTest::newRow("float") << "g_gravity"
                           << "+3"
                           << "setadmindvar g_gravity \"+3\"";
    QTest::newRow("float that ends early") << "g_gravity"
                                           << "1." << QString();
    QTest::newRow("text") << "g_motd"
                          << "good day"
                          << "setadmindvar g_motd \"good day\"";
    QTest::newRow("no text") << "g_motd"
                             << ""
                             << "setadmindvar g_motd \"\"";
    QTest::newRow("quoted") << "g_motd"
                            << "\"hi\""
                            << "setadmindvar g_motd \"hi\"";
    QTest::newRow("unknown to the server") << "g_lostText"
                                           << "here"
                                           << "setadmindvar g_lostText \"here\"";
    QTest::newRow("no type, nothing goes") << "g_odd"
                                           << "3" << QString();
}

void SettingsViewTest::typedValues()
{
    QFETCH(QString, dvar);
    QFETCH(QString, text);
    QFETCH(QString, sent);
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    if (dvar == QLatin1String("g_motd") || dvar == QLatin1String("g_odd"))
        shown.settings.setSelectedSettingList(QStringLiteral("About"));
    const QString before = shown.shownValue(dvar);
    shown.type(dvar, text);
    QTest::keyClick(shown.editor(), Qt::Key_Return);
    if (sent.isNull()) {
        QCoreApplication::processEvents();
        QVERIFY(shown.editor() != nullptr && shown.editor()->isVisible());
        QVERIFY(shown.isHintShown());
        QCOMPARE(shown.tree().findChild<QLabel *>(QStringLiteral("dvarValueHint"))->text(),
                 shown.outline().settingAt(shown.valueOf(dvar))->acceptedValues());
        QTest::keyClick(shown.editor(), Qt::Key_Escape);
    }
    QTRY_VERIFY(shown.editor() == nullptr);
    QVERIFY(!shown.isHintShown());
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), sent.isEmpty() ? QStringList{} : QStringList{sent});
    const bool isStored = !sent.isEmpty() && dvar != QLatin1String("g_lostText");
    QCOMPARE(shown.shownValue(dvar), isStored ? text : before);
    QVERIFY(shown.alerts.shown().isEmpty());
}

void SettingsViewTest::leavingTheFieldReturnsTheOldValue()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    QVERIFY(QTest::qWaitForWindowActive(&shown.view));
    shown.type("g_time", QStringLiteral("soon"));
    QVERIFY(shown.isHintShown());
    shown.view.settingsFilterField->setFocus();
    QTRY_VERIFY(shown.editor() == nullptr);
    QVERIFY(!shown.isHintShown());
    QCOMPARE(shown.shownValue("g_time"), QStringLiteral("20"));
    QVERIFY(shown.exchange.sent().isEmpty());
    shown.type("g_time", QStringLiteral("25"));
    shown.view.settingsFilterField->setFocus();
    QTRY_COMPARE(shown.exchange.sent(), QStringList{"setadmindvar g_time \"25\""});
    QVERIFY(shown.settle());
}

void SettingsViewTest::theSessionDoesNotOverwriteTheTyping()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    shown.type("g_time", QStringLiteral("4"));
    awaited(shown.server.setDvar(QStringLiteral("g_time"), QStringLiteral("15")));
    QCOMPARE(shown.editor()->text(), QStringLiteral("4"));
    QTest::keyClick(shown.editor(), Qt::Key_Escape);
    QTRY_VERIFY(shown.editor() == nullptr);
    // A field that nobody has typed into follows, and writes nothing back.
    shown.press("g_time", Qt::Key_Return);
    QCOMPARE(shown.editor()->text(), QStringLiteral("15"));
    awaited(shown.server.setDvar(QStringLiteral("g_time"), QStringLiteral("16")));
    QCOMPARE(shown.editor()->text(), QStringLiteral("16"));
    shown.exchange.forgetSent();
    QTest::keyClick(shown.editor(), Qt::Key_Return);
    QTRY_VERIFY(shown.editor() == nullptr);
    QVERIFY(shown.settle());
    QVERIFY(shown.exchange.sent().isEmpty());
}

void SettingsViewTest::thePendingWriteIsMarked()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    shown.exchange.hold();
    QVERIFY(shown.outline().setData(shown.valueOf("g_time"), QStringLiteral("30")));
    QCOMPARE(shown.shownValue("g_time"), QStringLiteral("20"));
    QVERIFY(shown.valueOf("g_time").data(Model::IsPendingRole).toBool());
    QVERIFY(!shown.valueOf("g_gravity").data(Model::IsPendingRole).toBool());
    shown.exchange.release();
    QVERIFY(shown.settle());
    QCOMPARE(shown.shownValue("g_time"), QStringLiteral("30"));
    QVERIFY(!shown.valueOf("g_time").data(Model::IsPendingRole).toBool());
}

void SettingsViewTest::writesTheLastOfTwo()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    shown.exchange.hold();
    QVERIFY(shown.outline().setData(shown.valueOf("g_time"), QStringLiteral("30")));
    // What the row still shows is no longer what the server has when this one's turn comes.
    QVERIFY(shown.outline().setData(shown.valueOf("g_time"), QStringLiteral("20")));
    shown.exchange.release();
    QTRY_COMPARE(shown.exchange.keptCount(), 1);
    shown.exchange.release();
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), QStringList({"setadmindvar g_time \"30\"", "setadmindvar g_time \"20\""}));
    QCOMPARE(shown.shownValue("g_time"), QStringLiteral("20"));
}

void SettingsViewTest::tellsOfFailures_data()
{
    QTest::addColumn<Reply>("reply");
    QTest::addColumn<QString>("alert");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QString>("shownAfter");
    const QString write = QStringLiteral("setadmindvar g_time \"9999\"");
    QTest::newRow("no answer") << ScriptedExchange::failure("no answer") << "Error setting dvar 'g_time': no answer"
                               << QStringList{write} << "20";
    QTest::newRow("turned down") << ScriptedExchange::ok("9999 is not a valid value for g_time")
                                 << "9999 is not a valid value for g_time" << QStringList{write, "g_time"} << "60";
    QTest::newRow("cancelled") << Reply{RConResultError, QStringLiteral("cancelled"), true} << QString()
                               << QStringList{write} << "20";
}

void SettingsViewTest::tellsOfFailures()
{
    QFETCH(Reply, reply);
    QFETCH(QString, alert);
    QFETCH(QStringList, sent);
    QFETCH(QString, shownAfter);
    SettingsFixture shown;
    shown.exchange.answer(sent.first(), reply);
    shown.exchange.answer(QStringLiteral("g_time"), ScriptedExchange::ok(QStringLiteral("\"g_time\" \"60\" \"60\"")));
    QVERIFY(shown.outline().setData(shown.valueOf("g_time"), QStringLiteral("9999")));
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), sent);
    QCOMPARE(shown.alerts.texts(), alert.isNull() ? QStringList{} : QStringList{alert});
    QCOMPARE(shown.shownValue("g_time"), shownAfter);
    QVERIFY(!shown.valueOf("g_time").data(Model::IsPendingRole).toBool());
}

void SettingsViewTest::outlivesAReload()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    shown.exchange.hold();
    shown.press("g_fire", Qt::Key_Space);
    shown.press("g_cam", Qt::Key_Space);
    QVERIFY(shown.outline().setData(shown.valueOf("g_time"), QStringLiteral("30")));
    shown.write(QStringLiteral("gameSettingsUnranked"), "<s/>");
    shown.write(QStringLiteral("gametypes"), "<g/>");
    awaited(shown.settings.loadSettings());
    awaited(shown.gametypes.loadGametypeList());
    QVERIFY(shown.shownNames(shown.tree()).isEmpty());
    for (int each = 0; each < 3; ++each) {
        QTRY_COMPARE(shown.exchange.keptCount(), 1);
        shown.exchange.release();
    }
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(),
             QStringList({"setadmindvar g_fire \"0\"", "setadmindvar g_cam \"1\"", "setadmindvar g_time \"30\""}));
}

void SettingsViewTest::droppedActionsSendNothing()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    shown.exchange.hold();
    shown.press("g_fire", Qt::Key_Space);
    shown.press("g_cam", Qt::Key_Space);
    QVERIFY(shown.outline().setData(shown.valueOf("g_time"), QStringLiteral("30")));
    shown.actions.dropWaiting();
    shown.server.cancelExchange();
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), QStringList{"setadmindvar g_fire \"0\""});
    QVERIFY(shown.alerts.shown().isEmpty());
    QVERIFY(!shown.valueOf("g_time").data(Model::IsPendingRole).toBool());
}

QTEST_MAIN(SettingsViewTest)
#include "tst_settingsview.moc"
