#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "ResourceFolder.h"

#include <QDesktopServices>
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
        AppDelegate delegate({m_folder.filePath("preferences.ini"), resourceFolder(), m_folder.path()}, guideFile());
        delegate.window().show();
        control<QPushButton>(delegate.window(), "hostwellButton")->click();
        QVERIFY(delegate.window().findChild<QMessageBox *>("alert") == nullptr);
        QVERIFY(QTest::qWaitFor([&] { return delegate.actions().isIdle(); }));
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened.first().toLocalFile(), guideFile());
        QFile file(guideFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString heading = "\n## " + m_opened.first().fragment() + "\n"; // as its anchor is made of it
        QVERIFY(QString::fromUtf8(file.readAll()).toLower().contains(heading));
    }

private:
    const QTemporaryDir m_folder;
    QList<QUrl> m_opened;
};

QTEST_MAIN(HostingGuideTest)
#include "tst_hostingguide.moc"
