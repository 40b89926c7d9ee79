#include "RCon.h"

#include "DatagramPacket.h"
#include "Secrets.h"
#include "TrafficLog.h"

#include <QCoreApplication>

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>

using std::chrono::milliseconds;

namespace
{

/// What each attempt waits between its send and its read: a server that was too busy to answer gets more time.
constexpr std::array<milliseconds, 3> pauses{milliseconds(0), milliseconds(500), milliseconds(750)};

constexpr std::array<const char *, 6> resultTexts{
    QT_TRANSLATE_NOOP("RCon", "RConResultSuccess"),
    QT_TRANSLATE_NOOP("RCon",
                      "A connection attempt failed because the connected party did not properly respond after a "
                      "period of time, or established a connection failed because connected host has failed to "
                      "respond."),
    QT_TRANSLATE_NOOP("RCon", "Invalid Password."),
    QT_TRANSLATE_NOOP("RCon", "RConResultInvalidPacket"),
    QT_TRANSLATE_NOOP("RCon", "RConResultNullReply"),
    QT_TRANSLATE_NOOP("RCon", "RConResultError"),
};

void pauseUnlessStopped(milliseconds duration, const std::stop_token &stop)
{
    if (duration == milliseconds::zero())
        return;
    std::mutex mutex;
    std::condition_variable_any stopped;
    std::unique_lock lock(mutex);
    static_cast<void>(stopped.wait_for(lock, stop, duration, [] { return false; }));
}

/// One exchange over an open packet: its attempts, reads and log lines.
class Attempts
{
public:
    Attempts(DatagramPacket &packet, TrafficLog &log, TrafficLog::Kind kind)
        : m_packet(packet), m_log(log), m_kind(kind)
    {
    }

    RConResult run(const QString &password, const QString &command, QString *reply, const std::stop_token &stop)
    {
        Wiped<QString> request(password + u' ' + command);
        RConResult result = RConResultTimeout;
        for (unsigned attempt = 1; attempt <= pauses.size() && result == RConResultTimeout; ++attempt) {
            if (stop.stop_requested())
                return RConResultError;
            m_log.writeSend(attempt, command);
            // A failed send is in the system log, and the read that follows says how the attempt ended.
            static_cast<void>(m_packet.send(*request));
            pauseUnlessStopped(pauses[attempt - 1], stop);
            if (stop.stop_requested())
                return RConResultError;
            result = read(reply, stop);
            if (stop.stop_requested())
                return RConResultError;
            m_log.writeResult(attempt, QString::fromLatin1(resultTexts[result]), m_packets);
        }
        return result;
    }

private:
    RConResult read(QString *reply, const std::stop_token &stop)
    {
        if (m_kind == TrafficLog::Kind::SendSingle)
            return m_packet.receive(reply);
        return m_packet.receiveMulti(reply, &m_packets, stop);
    }

    DatagramPacket &m_packet;
    TrafficLog &m_log;
    TrafficLog::Kind m_kind;
    quint32 m_packets = 0;
};

RConResult exchange(TrafficLog::Kind kind, const QString &host, int port, const QString &password,
                    const QString &command, QString *reply, const std::stop_token &stop)
{
    QString unwanted;
    QString &text = reply ? *reply : unwanted;
    text = QStringLiteral("No additional information");
    TrafficLog log(host, port, kind);
    DatagramPacketError error;
    const auto packet = DatagramPacket::initWithHost(host, static_cast<quint16>(port), &error);
    if (!packet) {
        text = error.localizedDescription;
        return RConResultError;
    }
    const RConResult result = Attempts(*packet, log, kind).run(password, command, &text, stop);
    if (result != RConResultSuccess)
        text = RCon::resultStr(result);
    return result;
}

} // namespace

RConResult RCon::sendTo(const QString &host, int port, const QString &password, const QString &command, QString *reply,
                        const std::stop_token &stop)
{
    return exchange(TrafficLog::Kind::Send, host, port, password, command, reply, stop);
}

RConResult RCon::sendSingleTo(const QString &host, int port, const QString &password, const QString &command,
                              QString *reply, const std::stop_token &stop)
{
    return exchange(TrafficLog::Kind::SendSingle, host, port, password, command, reply, stop);
}

QString RCon::resultStr(RConResult result)
{
    if (result >= resultTexts.size())
        return QString();
    return QCoreApplication::translate("RCon", resultTexts[result]);
}
