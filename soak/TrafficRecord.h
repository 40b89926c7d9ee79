#pragma once

#include <QList>
#include <QString>

/// One exchange, as the traffic log tells it.
struct RecordedExchange {
    quint16 port = 0;
    QString command; ///< with stars for a password
    int sends = 0;
    QString result; ///< of the last send; null when the exchange was called off

    bool isSuccess() const { return result == QLatin1String("RConResultSuccess"); }
    bool isCalledOff() const { return result.isNull(); }
};

/// Reads what the console appends to its traffic log.
class TrafficRecord
{
public:
    explicit TrafficRecord(QString path) : m_path(std::move(path)) {}

    /// The exchanges since the last call, oldest first; none may be under way. The log is emptied: it would grow for as
    /// long as it is on.
    QList<RecordedExchange> take() const;

private:
    QString m_path;
};
