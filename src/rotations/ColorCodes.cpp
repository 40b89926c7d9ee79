#include "ColorCodes.h"

#include <QCoreApplication>

namespace
{
struct Text {
    Q_DECLARE_TR_FUNCTIONS(ColorCodes)
};
} // namespace

const QList<ColorCode> &colorCodes()
{
    static const QList<ColorCode> codes{
        {0, Text::tr("Black"), 0x000000},   {1, Text::tr("Red"), 0xff5050},
        {2, Text::tr("Green"), 0x40e060},   {3, Text::tr("Yellow"), 0xf5e050},
        {4, Text::tr("Blue"), 0x6080ff},    {5, Text::tr("Cyan"), 0x50e8f0},
        {6, Text::tr("Magenta"), 0xf070e8}, {7, Text::tr("White (default)"), 0xffffff},
        {8, Text::tr("Grey"), 0xa8a8a8},    {9, Text::tr("Brown"), 0xb08050},
    };
    return codes;
}

QString colorCodeText(int digit)
{
    return QStringLiteral("^%1").arg(digit);
}

QList<ColorRun> colorRuns(const QString &text)
{
    constexpr int defaultDigit = 7;
    QList<ColorRun> runs;
    ColorRun run{defaultDigit, {}};
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar digit = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (text.at(i) != QLatin1Char('^') || digit < QLatin1Char('0') || digit > QLatin1Char('9')) {
            run.text += text.at(i);
            continue;
        }
        if (!run.text.isEmpty())
            runs.append(run);
        run = ColorRun{digit.unicode() - '0', {}};
        ++i;
    }
    if (!run.text.isEmpty())
        runs.append(run);
    return runs;
}
