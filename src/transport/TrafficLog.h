#pragma once

#include <QFile>
#include <QString>

/// The lines that one exchange appends to the traffic log, if logging is on: the environment variable "FerrowRconLog"
/// is exactly "1" and the regular file "log.txt" exists in the current folder. Otherwise, and when writing fails, every
/// call does nothing. It is never told the password or the reply. Used by the thread of its exchange; lines of several
/// exchanges at once stay whole.
class TrafficLog
{
public:
    enum class Kind { Send, SendSingle };

    TrafficLog(const QString &host, int port, Kind kind);

    /// @param attempt  from 1.
    void writeSend(unsigned attempt, const QString &command);
    /// @param packets  datagrams of the last gathered reply; not written for SendSingle.
    void writeResult(unsigned attempt, const QString &resultText, quint32 packets);
    /// The reply ended before the silence that would have ended it.
    void writeKnownEnd(unsigned attempt);
    /// A datagram came after that. @param isKnown  whether the reply held the same one.
    void writeLate(unsigned attempt, qsizetype bytes, bool isKnown);

private:
    void write(const char *verb, unsigned attempt, const QString &what);

    QString m_host;
    int m_port;
    Kind m_kind;
    QFile m_file;
};
