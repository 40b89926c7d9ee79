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

/// Takes what the desktop would open.
class Desktop : public QObject
{
    Q_OBJECT
public:
    Desktop() { QDesktopServices::setUrlHandler("file", this, "open"); }
    ~Desktop() override { QDesktopServices::unsetUrlHandler("file"); }
    QList<QUrl> opened;
public slots:
    void open(const QUrl &url) { opened.append(url); }
};

class HostingGuideTest : public QObject
{
    Q_OBJECT
private slots:
    void opensTheSectionOrSaysWhereItIs_data()
    {
        QTest::addColumn<bool>("isThere");
        QTest::newRow("there") << true;
        QTest::newRow("not there") << false;
    }
    void opensTheSectionOrSaysWhereItIs()
    {
        QFETCH(bool, isThere);
        const QTemporaryDir folder;
        const QString guide = isThere ? guideFile() : folder.filePath("guide.md");
        Desktop desktop;
        AppDelegate delegate({folder.filePath("preferences.ini"), resourceFolder(), folder.path()}, guide);
        delegate.window().show();
        control<QPushButton>(delegate.window(), "hostwellButton")->click();
        auto *alert = delegate.window().findChild<QMessageBox *>("alert");
        QCOMPARE(alert == nullptr, isThere);
        if (isThere) {
            QCOMPARE(desktop.opened.size(), 1);
            QCOMPARE(desktop.opened.first().toLocalFile(), guide);
            QFile file(guide);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString heading = "\n## " + desktop.opened.first().fragment() + "\n"; // as its anchor is made of it
            QVERIFY(QString::fromUtf8(file.readAll()).toLower().contains(heading));
        } else {
            QVERIFY(desktop.opened.isEmpty());
            QVERIFY(alert->informativeText().contains(QDir::toNativeSeparators(guide)));
            alert->close();
        }
        QVERIFY(QTest::qWaitFor([&] { return delegate.actions().isIdle(); }));
        delegate.window().close();
    }
};

QTEST_MAIN(HostingGuideTest)
#include "tst_hostingguide.moc"
