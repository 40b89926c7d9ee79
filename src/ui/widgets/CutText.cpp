#include "CutText.h"

QString CutText::toolTip(const QString &text)
{
    const QString told = text.left(LongestToolTip).toHtmlEscaped();
    return QStringLiteral("<span>%1</span>").arg(QString(told).replace(QLatin1Char('\n'), QLatin1String("<br>")));
}
