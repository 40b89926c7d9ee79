#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "ResourceFolder.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

class HostingGuideTest : public QObject
{
    Q_OBJECT
public slots:
    void open(const QUrl &url) { m_opened.append(url); } // as the desktop would
private slots:
    void initTestCase() { QDesktopServices::setUrlHandler("file", this, "open"); }

    void opensTheSection()
    {
        press(guideFile());
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened.first().toLocalFile(), guideFile());
        QFile file(guideFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString heading = "\n## " + m_opened.takeFirst().fragment() + "\n"; // as its anchor is made of it
        QVERIFY(QString::fromUtf8(file.readAll()).toLower().contains(heading));
        QCOMPARE(m_alert, QString());
    }

    void saysWhereItIs()
    {
        const QString guide = m_folder.filePath("guide.md");
        press(guide);
        QVERIFY(m_opened.isEmpty());
        QVERIFY(m_alert.contains(QDir::toNativeSeparators(guide)));
    }

private:
    void press(const QString &guide)
    {
        AppDelegate delegate({m_folder.filePath("preferences.ini"), resourceFolder(), m_folder.path()}, guide);
        delegate.window().show();
        control<QPushButton>(delegate.window(), "hostwellButton")->click();
        auto *alert = delegate.window().findChild<QMessageBox *>("alert");
        m_alert = alert ? alert->informativeText() : QString();
        if (alert)
            alert->close();
        QVERIFY(QTest::qWaitFor([&] { return delegate.actions().isIdle(); }));
        delegate.window().close();
    }

    const QTemporaryDir m_folder;
    QList<QUrl> m_opened;
    QString m_alert;
};

QTEST_MAIN(HostingGuideTest)
#include "tst_hostingguide.moc"
