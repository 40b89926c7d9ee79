#include "Traffic.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>

#include <set>
#include <utility>

QList<RecordedExchange> takeExchanges(const QString &path)
{
    static const QRegularExpression pattern("^\\S+ \\S+ \\S+ \\([^:]+:(\\d+)\\) (?:Send(?:Single)?\\((\\d)\\): (.*)|"
                                            " Res\\(\\d\\): (.*?)(?: numPackets=\\d+|@)?)$");
    QList<RecordedExchange> exchanges;
    QHash<quint16, qsizetype> latest; // by port: one exchange at a time talks to a server
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Text))
        return exchanges;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).chopped(1);
        const QRegularExpressionMatch told = pattern.match(line);
        if (!told.hasMatch())
            continue;
        const quint16 port = told.captured(1).toUShort();
        if (told.captured(2) == "1") {
            latest.insert(port, exchanges.size());
            exchanges.append(RecordedExchange{port, told.captured(3)});
        }
        RecordedExchange &exchange = exchanges[latest.value(port)];
        exchange.sends += told.hasCaptured(2) ? 1 : 0;
        exchange.result = told.captured(4);
    }
    [[maybe_unused]] const bool isEmptied = file.resize(0); // else they are read again, which shows
    return exchanges;
}

namespace
{
/// How far a reading has come: so many exchanges done, and so often the next one's command seen.
using Place = std::pair<qsizetype, int>;

bool fits(const QString &command, const QString &arrived)
{
    return command == arrived || (command.endsWith("***") && arrived.startsWith(command.chopped(3)));
}

/// The places from which `place` can go on without anything coming.
std::set<Place> withSkips(const QList<RecordedExchange> &exchanges, Place place)
{
    std::set<Place> places{place};
    while (place.first < exchanges.size() && (place.second > 0 || !exchanges.at(place.first).isSuccess())) {
        place = {place.first + 1, 0};
        places.insert(place);
    }
    return places;
}
} // namespace

QString trafficFault(const QList<RecordedExchange> &exchanges, const QStringList &arrived)
{
    // The same command may be sent twice in a row: every reading that is possible is followed.
    std::set<Place> places = withSkips(exchanges, {0, 0});
    for (qsizetype i = 0; i <= arrived.size(); ++i) {
        const Place last = *places.rbegin();
        const QString due = exchanges.value(last.first).command.left(80);
        if (i == arrived.size())
            return places.contains({exchanges.size(), 0}) ? QString() : QString("\"%1\" never came").arg(due);
        std::set<Place> next;
        for (const auto &[done, seen] : places) {
            if (done < exchanges.size() && seen < exchanges.at(done).sends &&
                fits(exchanges.at(done).command, arrived.at(i)))
                next.merge(withSkips(exchanges, {done, seen + 1}));
        }
        if (next.empty())
            return QString("number %1, \"%2\", came where \"%3\" was due").arg(i).arg(arrived.at(i).left(80), due);
        places = std::move(next);
    }
    return {};
}
