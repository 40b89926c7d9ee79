#pragma once

#include <QList>
#include <QString>

/// One exchange, as the traffic log tells it.
struct RecordedExchange {
    quint16 port = 0;
    QString command; ///< with stars for a password
    int sends = 0;
    QString result{}; ///< of the last send; null when the exchange was called off

    bool isSuccess() const { return result == "RConResultSuccess"; }
};

/// Reads what the console has appended to its traffic log, and empties it. No exchange may be under way.
/// @return the exchanges, oldest first.
QList<RecordedExchange> takeExchanges(const QString &path);

/// Compares the exchanges with one server with the commands that reached it. An answered command has arrived. It may
/// have arrived again when an answer got lost, but no more often than it was sent: what a clean reply confirmed to a
/// single send is carried out once.
/// @return what does not fit, for people; empty when all fits.
QString trafficFault(const QList<RecordedExchange> &exchanges, const QStringList &arrived);
