#include "RowsText.h"

QString RowsText::asCell(QString text)
{
    for (QChar &character : text) {
        if (character == QLatin1Char('\t') || character == QLatin1Char('\n') || character == QLatin1Char('\r'))
            character = QLatin1Char(' ');
    }
    return text;
}

QString RowsText::fromRows(const QList<QStringList> &rows)
{
    QStringList lines;
    for (const QStringList &row : rows) {
        QStringList cells;
        for (const QString &text : row)
            cells.append(asCell(text));
        lines.append(cells.join(QLatin1Char('\t')));
    }
    return lines.join(QLatin1Char('\n'));
}

QStringList RowsText::linesOf(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    if (lines.last().isEmpty())
        lines.removeLast();
    for (QString &line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    }
    return lines;
}

QStringList RowsText::columnsOf(const QString &line)
{
    return line.split(QLatin1Char('\t'));
}
