#include "ApplicationFont.h"

#include <QApplication>
#include <QFontDatabase>
#include <QTest>
#include <QWidget>

class TestApplicationFont : public QObject
{
    Q_OBJECT

private slots:
    void namesTheFamilyOnlyWhereTheDesktopNamesNone_data();
    void namesTheFamilyOnlyWhereTheDesktopNamesNone();
    void followsTheDesktopAndKeepsItsFontForMenus();
};

void TestApplicationFont::namesTheFamilyOnlyWhereTheDesktopNamesNone_data()
{
    const QString desktop = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    const bool isNamed = desktop != QLatin1String("Sans Serif");
    QTest::addColumn<QString>("known");
    QTest::addColumn<QString>("expected");
    QTest::newRow("known") << QStringLiteral("DejaVu Serif") << (isNamed ? desktop : QStringLiteral("DejaVu Serif"));
    QTest::newRow("not known") << QString() << desktop;
}

void TestApplicationFont::namesTheFamilyOnlyWhereTheDesktopNamesNone()
{
    QFETCH(QString, known);
    const ApplicationFont font(known);
    QTEST(QApplication::font().family(), "expected");
    QCOMPARE(QApplication::font().styleStrategy(), QFont::PreferNoShaping);
}

void TestApplicationFont::followsTheDesktopAndKeepsItsFontForMenus()
{
    QFont forMenus = QApplication::font();
    forMenus.setPointSize(23);
    QApplication::setFont(forMenus, "QMenu");
    ApplicationFont font(QStringLiteral("DejaVu Sans"));
    const QFont first = QApplication::font();
    QCOMPARE(QApplication::font("QMenu").pointSize(), 23);
    QVERIFY(first.pointSize() != 23);

    QWidget window;
    font.follow(window);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Serif"), 17));
    QApplication::setFont(forMenus, "QMenu");
    QEvent change(QEvent::ThemeChange);
    QApplication::sendEvent(&window, &change);
    QCOMPARE(QApplication::font(), first);
    QCOMPARE(QApplication::font("QMenu").pointSize(), 23);
}

QTEST_MAIN(TestApplicationFont)
#include "tst_applicationfont.moc"
