#include "LeanStyle.h"

#include <QHeaderView>
#include <QStandardItemModel>
#include <QTest>

class LeanStyleTest : public QObject
{
    Q_OBJECT
private slots:
    void linesStandBetweenTheColumns_data();
    void linesStandBetweenTheColumns();
};

void LeanStyleTest::linesStandBetweenTheColumns_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::addColumn<QList<int>>("places");
    QTest::newRow("left to right") << Qt::LeftToRight << QList<int>{99, 199};
    QTest::newRow("right to left") << Qt::RightToLeft << QList<int>{100, 200};
}

void LeanStyleTest::linesStandBetweenTheColumns()
{
    QFETCH(Qt::LayoutDirection, direction);
    LeanStyle style;
    QStandardItemModel model(1, 3);
    model.setHorizontalHeaderLabels({QString(), QString(), QString()});
    QHeaderView header(Qt::Horizontal);
    header.setModel(&model);
    header.setStyle(&style);
    header.setLayoutDirection(direction);
    header.setDefaultSectionSize(100);
    header.resize(300, 20);
    const QImage image = header.grab().toImage();
    const int ground = qGray(image.pixel(150, 10));
    QList<int> darker;
    for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, 10)) < ground - 20)
            darker.append(x);
    }
    QTEST(darker, "places");
}

QTEST_MAIN(LeanStyleTest)
#include "tst_leanstyle.moc"
