#include "TrafficRecord.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>

QList<RecordedExchange> TrafficRecord::take() const
{
    static const QRegularExpression sending(
        QStringLiteral("^\\S+ \\S+ \\S+ \\([^:]+:(\\d+)\\) Send(?:Single)?\\((\\d)\\): (.*)$"));
    static const QRegularExpression answering(
        QStringLiteral("^\\S+ \\S+ \\S+ \\([^:]+:(\\d+)\\)  Res\\(\\d\\): (.*?)(?: numPackets=\\d+|@)?$"));
    QList<RecordedExchange> exchanges;
    QFile file(m_path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Text))
        return exchanges;
    QHash<quint16, qsizetype> latest; // by port: one exchange at a time talks to a server
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).chopped(1);
        QRegularExpressionMatch match = sending.match(line);
        if (match.hasMatch()) {
            const quint16 port = match.captured(1).toUShort();
            if (match.captured(2) == QLatin1String("1")) {
                latest.insert(port, exchanges.size());
                exchanges.append(RecordedExchange{port, match.captured(3), 0, {}});
            }
            ++exchanges[latest.value(port)].sends;
            exchanges[latest.value(port)].result = QString();
            continue;
        }
        match = answering.match(line);
        if (match.hasMatch())
            exchanges[latest.value(match.captured(1).toUShort())].result = match.captured(2);
    }
    [[maybe_unused]] const bool isEmptied = file.resize(0); // else they are read again, which shows
    return exchanges;
}
