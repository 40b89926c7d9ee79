#pragma once

#include "DatagramPacket.h"
#include "Exchange.h"
#include "RCon.h"
#include "TrafficLog.h"

#include <QObject>
#include <QTimer>

#include <memory>

class QSocketNotifier;

/// One request under way: drives the exchange's machine with a socket and a timer of the main loop. Main thread only.
/// Its slots may be running while it is abandoned, so it is deleted later.
class Flight : public QObject
{
    Q_OBJECT
public:
    /// @param packet  aimed at the server that `task` names.
    Flight(const Request &request, RCon::Task task, std::unique_ptr<DatagramPacket> packet);
    ~Flight() override;

    /// Sends; may end at once when there is no socket.
    void start();
    /// Sends and reads nothing more, and tells nobody.
    void abandon();

    const RCon::Outcome &outcome() const { return m_machine.outcome(); }
    const QString &command() const { return m_command; }
    bool isBackground() const { return m_isBackground; }
    bool isProbe() const { return m_isProbe; }
    RCon::TimePoint sentAt() const { return m_sentAt; }
    bool isFinished() const { return m_machine.isFinished(); }

signals:
    void arrived(const QString &text);
    void finished();
    /// After the end: the reply lacked this.
    void cameLate(const QString &text);
    /// After the end: the network has brought a part of the reply once more.
    void cameTwice();
    /// Nothing can come any more.
    void landed();

private:
    void listen(bool isListening);
    void perform(RCon::Step step);
    void readWaiting();
    void takeDatagram(const ReceivedDatagram &datagram, QByteArrayView bytes);
    void timeIsUp();
    void end();

    QString m_command;
    bool m_isBackground;
    bool m_isProbe;
    QString m_requestText;
    std::unique_ptr<DatagramPacket> m_packet;
    TrafficLog m_log;
    RCon m_machine;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_timer;
    RCon::TimePoint m_sentAt;
};
