#include "Fuzzing.h"

#include "DatagramPacket.h"
#include "RCon.h"
#include "TrafficLog.h"

#include <array>
#include <chrono>

using namespace std::chrono_literals;

namespace
{

constexpr Endpoint server{0x7f000001, 50960};
constexpr Endpoint stranger{0xcb007101, 50960};

constexpr std::array commands{"status all", "tw_x", "dvardump", "setadmindvar a \"1\""};

/// What holds at every moment of an exchange, whatever comes.
class Watched
{
public:
    explicit Watched(const RCon::Task &task) : m_log("h", 1, TrafficLog::Kind::Send), m_machine(task, m_log)
    {
        take(m_machine.start(m_now));
    }

    void receive(QByteArrayView datagram, bool isFromStranger)
    {
        const bool wasFinished = m_machine.isFinished();
        if (wasFinished)
            static_cast<void>(m_machine.takeLate(datagram, isFromStranger ? stranger : server));
        take(m_machine.received(datagram, isFromStranger ? stranger : server, m_now));
        require(!isFromStranger || wasFinished == m_machine.isFinished(), "a stranger ends nothing");
    }
    void pass(std::chrono::milliseconds time)
    {
        m_now += time;
        take(m_machine.elapsed(m_now));
    }
    void finish()
    {
        for (int i = 0; i < 4 && !m_machine.isFinished(); ++i)
            pass(3s);
        require(m_machine.isFinished(), "an exchange with a silent server ends");
        const RCon::Outcome &outcome = m_machine.outcome();
        require(outcome.sends >= 1 && outcome.sends <= 3, "a request is sent one to three times");
        if (outcome.result == RConResultSuccess)
            require(outcome.text == m_streamed, "the reply is what was streamed");
        else
            require(outcome.text == RCon::resultStr(outcome.result), "a failure tells its result");
    }

private:
    void take(const RCon::Step &step)
    {
        require(!m_hasEnded || (step.kind == RCon::Step::Kind::Finished && step.text.isEmpty()),
                "nothing follows the end");
        require(step.kind == RCon::Step::Kind::Finished || step.until > m_now, "there is something to wait for");
        m_hasEnded = m_machine.isFinished();
        m_streamed += step.text;
    }

    TrafficLog m_log;
    RCon m_machine;
    RCon::TimePoint m_now{1000s};
    QString m_streamed;
    bool m_hasEnded = false;
};

} // namespace

/// The input is a byte for what is asked, then pieces with the byte 0xfe between them. A piece is a byte for who speaks
/// and how much later, and a datagram; one without a datagram lets time pass.
static void fuzz(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    const auto asked = static_cast<unsigned char>(bytes.front());
    RCon::Task task;
    task.server = server;
    task.command = QString::fromLatin1(commands.at(asked % commands.size()));
    task.isSingle = (asked & 0x40) != 0;
    task.isBackground = (asked & 0x80) != 0;
    task.end = ReplyEnd(task.command);
    Watched watched(task);
    for (const QByteArray &piece : bytes.mid(1).split('\xfe').mid(0, 64)) {
        if (piece.isEmpty())
            continue;
        const auto head = static_cast<unsigned char>(piece.front());
        watched.pass(std::chrono::milliseconds((head & 0x1f) * 37));
        if (piece.size() > 1)
            watched.receive(QByteArrayView(piece).sliced(1), (head & 0x80) != 0);
    }
    watched.finish();
}
