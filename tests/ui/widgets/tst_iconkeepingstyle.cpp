#include "IconKeepingStyle.h"

#include <QTest>

class IconKeepingStyleTest : public QObject
{
    Q_OBJECT
private slots:
    void everyDialogGetsTheSameIcons()
    {
        const IconKeepingStyle style;
        const QIcon first = style.standardIcon(QStyle::SP_DialogOkButton, nullptr, nullptr);
        const QIcon second = style.standardIcon(QStyle::SP_DialogOkButton, nullptr, nullptr);
        QVERIFY(!first.isNull());
        QCOMPARE(second.cacheKey(), first.cacheKey());
    }

    void arrowsPointWhereTheTextGoes()
    {
        const IconKeepingStyle style;
        QStyleOption option;
        option.direction = Qt::LeftToRight;
        const QImage forward = style.standardIcon(QStyle::SP_ArrowForward, &option, nullptr).pixmap(16).toImage();
        option.direction = Qt::RightToLeft;
        const QImage mirrored = style.standardIcon(QStyle::SP_ArrowForward, &option, nullptr).pixmap(16).toImage();
        QVERIFY(!forward.isNull());
        QVERIFY(forward != mirrored);
    }
};

QTEST_MAIN(IconKeepingStyleTest)
#include "tst_iconkeepingstyle.moc"
