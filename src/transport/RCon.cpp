#include "RCon.h"

#include "DatagramPacket.h"
#include "TrafficLog.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

using std::chrono::milliseconds;

namespace
{

constexpr unsigned mostSends = 3;
/// How long each send is waited for: a server that was too busy to answer gets more time.
constexpr std::array<milliseconds, mostSends> waits{milliseconds(500), milliseconds(1250), milliseconds(1500)};
/// The silence that ends a reply, by the send that it answers.
constexpr std::array<milliseconds, mostSends> silences{milliseconds(500), milliseconds(750), milliseconds(750)};

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

} // namespace

RCon::RCon(Task task, TrafficLog &log) : m_task(std::move(task)), m_log(log) {}

RCon::Step RCon::start(TimePoint now)
{
    m_firstSend = now;
    return send(now);
}

RCon::Step RCon::send(TimePoint now)
{
    m_log.writeSend(++m_outcome.sends, m_task.command);
    m_until = now + std::max(waits.at(m_outcome.sends - 1), m_task.firstWait);
    return Step{Step::Kind::Send, m_until, {}};
}

RCon::Step RCon::wait(QString text) const
{
    return Step{Step::Kind::Wait, m_until, std::move(text)};
}

RCon::Step RCon::elapsed(TimePoint now)
{
    if (m_isFinished)
        return Step{};
    if (now < m_until)
        return wait();
    if (m_outcome.datagrams > 0)
        return finish(RConResultSuccess);
    const unsigned most = m_task.isBackground ? 1 : mostSends;
    if (m_outcome.sends == most)
        return finish(RConResultTimeout);
    m_log.writeResult(m_outcome.sends, QString::fromLatin1(resultTexts[RConResultTimeout]), 0);
    return send(now);
}

RCon::Step RCon::failed()
{
    return m_isFinished ? Step{} : finish(RConResultError);
}

RCon::Step RCon::received(QByteArrayView datagram, const Endpoint &from, TimePoint now)
{
    if (m_isFinished)
        return Step{};
    // Another port of the same machine is taken: a router on the way may translate it.
    if (from.address != m_task.server.address) {
        noteStranger(datagram, from);
        return wait();
    }
    if (datagram.isEmpty())
        return finish(m_outcome.datagrams == 0 ? RConResultNullReply : RConResultSuccess);
    if (!m_outcome.firstAnswerAfter) {
        m_outcome.firstAnswerAfter = now - m_firstSend;
        m_outcome.wasReadLate = now >= m_until;
    }
    QString text;
    const RConResult result = DatagramPacket::getString(&text, datagram);
    if (result != RConResultSuccess)
        return finish(result);
    // A server that never falls silent must not fill the memory.
    if (m_outcome.datagrams == mostDatagrams || m_outcome.text.size() + text.size() > mostCharacters)
        return finish(RConResultError);
    noteSeen(datagram);
    return gather(std::move(text), now);
}

RCon::Step RCon::gather(QString text, TimePoint now)
{
    ++m_outcome.datagrams;
    m_outcome.text += text;
    m_until = now + silences.at(m_outcome.sends - 1);
    const bool isFirst = m_outcome.datagrams == 1;
    // What answers a write with nothing has answered with nothing only if that is the first that came.
    const bool mayEnd = m_task.end.kind() != ReplyEnd::Kind::EmptyWrite || isFirst;
    m_outcome.isEndKnown = !m_task.isSingle && mayEnd && m_task.end.isWhole(m_outcome.text);
    if (!m_task.isSingle && !m_outcome.isEndKnown)
        return wait(std::move(text));
    Step step = finish(RConResultSuccess);
    step.text = std::move(text);
    return step;
}

RCon::Step RCon::finish(RConResult result)
{
    const bool isSuccess = result == RConResultSuccess;
    m_isFinished = true;
    m_outcome.result = result;
    m_log.writeResult(m_outcome.sends, QString::fromLatin1(resultTexts[result]), isSuccess ? m_outcome.datagrams : 0);
    if (m_outcome.isEndKnown)
        m_log.writeKnownEnd(m_outcome.sends);
    if (!isSuccess)
        m_outcome.text = resultStr(result);
    return Step{};
}

QString RCon::takeLate(QByteArrayView datagram, const Endpoint &from)
{
    QString text;
    if (from.address != m_task.server.address || DatagramPacket::getString(&text, datagram) != RConResultSuccess)
        return {};
    const bool isKnown = m_seen.contains(qHash(datagram));
    noteSeen(datagram);
    m_log.writeLate(m_outcome.sends, datagram.size(), isKnown);
    return isKnown ? QString() : text;
}

void RCon::noteStranger(QByteArrayView datagram, const Endpoint &from)
{
    ++m_outcome.strangers;
    if (DatagramPacket::validateDataPacket(datagram) != RConResultInvalidPacket)
        m_outcome.plausibleStranger = from;
}

void RCon::noteSeen(QByteArrayView datagram)
{
    const unsigned times = ++m_seen[qHash(datagram)];
    // A server answers each send: only what comes once more was doubled on the way.
    if (times > m_outcome.sends)
        ++m_outcome.doubled;
    // What came twice must not stand for what is missing.
    if (times > 1 && m_task.end.kind() == ReplyEnd::Kind::Dump)
        m_task.end.trustNothing();
}

QString RCon::resultStr(RConResult result)
{
    if (result >= resultTexts.size())
        return QString();
    return QCoreApplication::translate("RCon", resultTexts[result]);
}
