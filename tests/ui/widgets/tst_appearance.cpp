#include "Appearance.h"

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>

#include <algorithm>
#include <cmath>

/// How far two colours are apart in brightness, from 1 for equal ones to 21.
static double contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &colour) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const auto [dark, light] = std::minmax(luminance(one), luminance(other));
    return (light + 0.05) / (dark + 0.05);
}

class AppearanceTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QApplication::setStyle(QStringLiteral("Fusion")); }

    void anEmptyBoxCanBeSeen_data()
    {
        QTest::addColumn<QString>("appearance");
        QTest::addColumn<double>("least");
        QTest::newRow("dark") << "dark" << 3.0;
        QTest::newRow("light after dark") << "light" << 1.5; // as Fusion has it
    }
    void anEmptyBoxCanBeSeen()
    {
        QFETCH(QString, appearance);
        QFETCH(double, least);
        Appearance::apply(appearance);
        QWidget window;
        QCheckBox box(QStringLiteral("Loop"), &window);
        window.resize(box.sizeHint() + QSize(8, 8));
        box.setGeometry(QRect(QPoint(4, 4), box.sizeHint()));
        const QImage picture = window.grab().toImage();
        QStyleOptionButton option;
        option.initFrom(&box);
        const QRect indicator = box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box);
        const QColor outside = picture.pixelColor(1, 1);
        double best = 1;
        for (int x = indicator.left(); x < indicator.left() + 3; ++x)
            best = std::max(best, contrast(outside, picture.pixelColor(4 + x, 4 + indicator.center().y())));
        QVERIFY2(best >= least, qPrintable(QString::number(best)));
    }
};

QTEST_MAIN(AppearanceTest)
#include "tst_appearance.moc"
