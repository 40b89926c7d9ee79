#include "Flight.h"

#include <QSocketNotifier>

#include <array>
#include <utility>

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// A reply whose end was known is listened for a little longer: what comes late is shown, and the port is not used
/// again at once.
static constexpr auto lingering = 750ms;

static TrafficLog::Kind logKind(const Request &request)
{
    return request.isSingle ? TrafficLog::Kind::SendSingle : TrafficLog::Kind::Send;
}

Flight::Flight(const Request &request, RCon::Task task, std::unique_ptr<DatagramPacket> packet)
    : m_command(request.command), m_isBackground(request.isBackground), m_isProbe(request.isProbe),
      m_requestText(request.password + u' ' + request.command), m_packet(std::move(packet)),
      m_log(request.host, request.port, logKind(request)), m_machine(std::move(task), m_log)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Flight::timeIsUp);
}

Flight::~Flight() = default;

void Flight::start()
{
    m_sentAt = steady_clock::now();
    const RCon::Step step = m_machine.start(m_sentAt);
    if (m_packet->socket() < 0) {
        perform(m_machine.failed());
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_packet->socket(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Flight::readWaiting);
    perform(step);
}

void Flight::abandon()
{
    disconnect();
    m_timer.stop();
    listen(false);
}

/// Off instead of gone: it may be the one whose slot is running.
void Flight::listen(bool isListening)
{
    if (m_notifier)
        m_notifier->setEnabled(isListening);
}

void Flight::perform(RCon::Step step)
{
    if (!step.text.isEmpty()) {
        emit arrived(step.text);
        if (!m_notifier->isEnabled()) // whoever took it has called the request off
            return;
    }
    if (step.kind == RCon::Step::Kind::Finished) {
        end();
        return;
    }
    if (step.kind == RCon::Step::Kind::Send)
        static_cast<void>(m_packet->send(m_requestText)); // a failure is in the system log, and nothing will come
    m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(step.until - steady_clock::now()));
}

void Flight::readWaiting()
{
    constexpr int mostAtOnce = 4; // each may cost a millisecond to show, and a flood must not hold up the window
    std::array<char, DatagramPacket::mostBytes> buffer;
    for (int i = 0; i < mostAtOnce && m_notifier->isEnabled(); ++i) {
        const ReceivedDatagram datagram = m_packet->receive(buffer);
        if (datagram.kind == ReceivedDatagram::Kind::Nothing)
            return;
        takeDatagram(datagram, QByteArrayView(buffer.data(), static_cast<qsizetype>(datagram.length)));
    }
}

void Flight::takeDatagram(const ReceivedDatagram &datagram, QByteArrayView bytes)
{
    const bool isReadable = datagram.kind == ReceivedDatagram::Kind::Datagram;
    if (!m_machine.isFinished()) {
        perform(isReadable ? m_machine.received(bytes, datagram.from, steady_clock::now()) : m_machine.failed());
        return;
    }
    const unsigned doubled = outcome().doubled;
    QString text;
    if (isReadable)
        text = m_machine.takeLate(bytes, datagram.from);
    if (outcome().doubled > doubled)
        emit cameTwice();
    if (!text.isEmpty())
        emit cameLate(text);
}

void Flight::timeIsUp()
{
    const bool isLingering = m_machine.isFinished();
    readWaiting(); // while the main loop was held up, time passed for what had come as well
    if (isLingering) {
        listen(false);
        emit landed();
    } else if (!m_machine.isFinished() && m_notifier->isEnabled()) {
        perform(m_machine.elapsed(steady_clock::now()));
    }
}

void Flight::end()
{
    m_timer.stop();
    listen(outcome().isEndKnown);
    emit finished();
    if (outcome().isEndKnown)
        m_timer.start(lingering);
    else
        emit landed();
}
