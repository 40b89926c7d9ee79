#include "SheetAlerts.h"

#include <QDialog>
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
};

QTEST_MAIN(SheetAlertsTest)
#include "tst_sheetalerts.moc"
