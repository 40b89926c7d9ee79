#include "Sequence.h"

#include <set>
#include <utility>

namespace
{
/// How far a reading has come: so many texts done, and so often the next one seen.
using Place = std::pair<qsizetype, int>;

bool fits(const QString &expected, const QString &observed)
{
    static const QString stars = QStringLiteral("***");
    return expected == observed || (expected.endsWith(stars) && observed.startsWith(expected.chopped(stars.size())));
}

/// The places from which `place` can go on without anything coming.
std::set<Place> withSkips(const QList<ExpectedText> &expected, Place place)
{
    std::set<Place> places{place};
    while (place.first < expected.size() && place.second >= expected.at(place.first).least) {
        place = {place.first + 1, 0};
        places.insert(place);
    }
    return places;
}

QString missing(const QList<ExpectedText> &expected, const std::set<Place> &places)
{
    const Place last = *places.rbegin();
    return QStringLiteral("\"%1\" came %2 times, not %3")
        .arg(expected.at(last.first).text.left(80))
        .arg(last.second)
        .arg(expected.at(last.first).least);
}
} // namespace

QString sequenceFault(const QList<ExpectedText> &expected, const QStringList &observed)
{
    // The same text may be due twice in a row: every reading that is possible is followed.
    std::set<Place> places = withSkips(expected, {0, 0});
    for (qsizetype i = 0; i < observed.size(); ++i) {
        std::set<Place> next;
        for (const Place &place : places) {
            if (place.first == expected.size())
                continue;
            const ExpectedText &due = expected.at(place.first);
            if (place.second < due.most && fits(due.text, observed.at(i)))
                next.merge(withSkips(expected, {place.first, place.second + 1}));
        }
        if (next.empty()) {
            const Place last = *places.rbegin();
            const QString due = last.first < expected.size() ? expected.at(last.first).text.left(80) : QString();
            return QStringLiteral("number %1, \"%2\", came where \"%3\" was due")
                .arg(QString::number(i), observed.at(i).left(80), due);
        }
        places = std::move(next);
    }
    return places.contains({expected.size(), 0}) ? QString() : missing(expected, places);
}
