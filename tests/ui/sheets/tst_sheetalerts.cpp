#include "ProgressWindowController.h"
#include "SheetAlerts.h"
#include "Wait.h"

#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QTest>

class SheetAlertsTest : public QObject
{
    Q_OBJECT
private slots:
    void anAlertOverASheetBelongsToTheSheetAndGivesTheKeysBack()
    {
        QWidget window;
        window.show();
        ProgressWindowController progress(&window);
        progress.begin("title", [] {});
        QVERIFY(QTest::qWaitForWindowActive(progress.window()));
        SheetAlerts alerts;
        alerts.setWindow(&window);
        const QCoro::Task<int> answer = alerts.run("title", "text");
        auto *alert = window.findChild<QDialog *>("alert");
        QVERIFY(alert != nullptr && QTest::qWaitForWindowActive(alert));
        QCOMPARE(alert->parentWidget(), progress.window());
        alert->reject();
        QTRY_VERIFY(answer.isReady());
        QTRY_VERIFY(progress.window()->isActiveWindow());
    }

    void alertsTakeServerTextLiterallyAndKeepItShort()
    {
        QWidget window;
        window.show();
        SheetAlerts alerts;
        alerts.setWindow(&window);
        const QString word(70, QLatin1Char('a'));
        const QString text = word + QStringLiteral("\n<b>bold</b>").repeated(500);
        QCoro::Task<int> asking = alerts.run("Title", text, {"Yes", "No"});
        auto *box = window.findChild<QMessageBox *>("alert");
        QVERIFY(box != nullptr);
        for (const QLabel *label : box->findChildren<QLabel *>())
            QVERIFY(label->textFormat() == Qt::PlainText || label->text().isEmpty() || !label->pixmap().isNull());
        QVERIFY(box->informativeText().size() < 1300);
        QVERIFY(box->width() > box->fontMetrics().horizontalAdvance(word));
        QCOMPARE(box->detailedText(), text);
        QTest::keyClick(box, Qt::Key_Escape);
        QCOMPARE(awaited(std::move(asking)), 1); // dismissing is the last button
    }

    void whatEndsAnAlertWithoutAButtonMeansTheLast_data()
    {
        QTest::addColumn<bool>("isDestroyed");
        QTest::newRow("closed by its title bar") << false;
        QTest::newRow("gone with its window") << true;
    }
    void whatEndsAnAlertWithoutAButtonMeansTheLast()
    {
        QFETCH(bool, isDestroyed);
        QWidget window;
        window.show();
        SheetAlerts alerts;
        alerts.setWindow(&window);
        QCoro::Task<int> asking = alerts.run("Title", "text", {"Yes", "No"});
        auto *box = window.findChild<QMessageBox *>("alert");
        QVERIFY(box != nullptr);
        if (isDestroyed)
            delete box;
        else
            QVERIFY(box->close());
        QCOMPARE(awaited(std::move(asking)), 1);
    }

    void buttonsArePressedByKeys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<int>("pressed");
        const Qt::KeyboardModifiers alt = Qt::AltModifier;
        QTest::newRow("Return, the default") << int(Qt::Key_Return) << Qt::KeyboardModifiers() << 1;
        QTest::newRow("first letter") << int(Qt::Key_C) << alt << 2;
        QTest::newRow("second letter, as the first is taken") << int(Qt::Key_T) << alt << 1;
    }
    void buttonsArePressedByKeys()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QWidget window;
        window.show();
        SheetAlerts alerts;
        alerts.setWindow(&window);
        QCoro::Task<int> asking = alerts.run("Title", "text", {"Save & Go", "Stay", "Cancel"}, AlertManner{1, false});
        auto *box = window.findChild<QMessageBox *>("alert");
        QVERIFY(box != nullptr && QTest::qWaitForWindowActive(box));
        QTest::keyClick(box, Qt::Key(key), modifiers);
        QTEST(awaited(std::move(asking)), "pressed");
    }
};

QTEST_MAIN(SheetAlertsTest)
#include "tst_sheetalerts.moc"
