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
    void anAlertOverASheetBelongsToTheSheet()
    {
        QWidget window;
        window.show();
        SheetAlerts alerts;
        alerts.setWindow(&window);
        QDialog sheet(&window, Qt::Sheet);
        sheet.setWindowModality(Qt::WindowModal);
        sheet.open();
        const QCoro::Task<int> answer = alerts.run("title", "text");
        auto *alert = window.findChild<QDialog *>("alert");
        QVERIFY(alert != nullptr && alert->isVisible());
        QCOMPARE(alert->parentWidget(), &sheet);
        alert->reject();
        QTRY_VERIFY(answer.isReady());
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
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<int>("defaultButton");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("pressed");
        const auto row = [](const char *name, const QStringList &buttons, int defaultButton, int key, int pressed,
                            int modifiers = Qt::NoModifier) {
            QTest::newRow(name) << buttons << defaultButton << key << modifiers << pressed;
        };
        const QStringList three{"Save & Go", "Stay", "Cancel"};
        row("Return, the first by default", three, 0, Qt::Key_Return, 0);
        row("Return, another default", three, 1, Qt::Key_Return, 1);
        row("first letter", three, 0, Qt::Key_C, 2, Qt::AltModifier);
        row("second letter, as the first is taken", three, 0, Qt::Key_T, 1, Qt::AltModifier);
    }
    void buttonsArePressedByKeys()
    {
        QFETCH(QStringList, buttons);
        QFETCH(int, defaultButton);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QWidget window;
        window.show();
        SheetAlerts alerts;
        alerts.setWindow(&window);
        QCoro::Task<int> asking = alerts.run("Title", "text", buttons, AlertManner{defaultButton, false});
        auto *box = window.findChild<QMessageBox *>("alert");
        QVERIFY(box != nullptr && QTest::qWaitForWindowActive(box));
        QTest::keyClick(box, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTEST(awaited(std::move(asking)), "pressed");
    }
};

QTEST_MAIN(SheetAlertsTest)
#include "tst_sheetalerts.moc"
