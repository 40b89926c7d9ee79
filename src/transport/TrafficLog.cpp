#include "TrafficLog.h"

#include "LineWriter.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <array>
#include <ctime>

namespace
{

QString now()
{
    const std::time_t time = std::time(nullptr);
    std::tm local{};
    ::tzset();
    ::localtime_r(&time, &local);
    std::array<char, 64> text{};
    static_cast<void>(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %z", &local));
    return QString::fromLatin1(text.data());
}

/// A command that sets a password, with stars for the password and what follows it.
QString withoutPassword(const QString &command)
{
    static const QRegularExpression setting(
        QStringLiteral("((?:^|[;\\n])\\s*(?:\\S+\\s+)?\\S*password[^\\s\"]*(?:\\s+|(?=\")))\\S.*$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = setting.match(command);
    return match.hasMatch() ? command.left(match.capturedEnd(1)) + QStringLiteral("***") : command;
}

} // namespace

TrafficLog::TrafficLog(const QString &host, int port, Kind kind)
    : m_host(host), m_port(port), m_kind(kind), m_file(QStringLiteral("log.txt"))
{
    // Unbuffered, so that each line is one write at the end of the file. A pipe would hold the exchange.
    if (qgetenv("FerrowRconLog") == "1" && QFileInfo(m_file).isFile())
        static_cast<void>(
            m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::ExistingOnly | QIODevice::Unbuffered));
}

void TrafficLog::write(const char *verb, unsigned attempt, const QString &what)
{
    if (m_file.isOpen())
        writeFormat(&m_file, QStringLiteral("%1 (%2:%3) %4(%5): %6\n"), now(), m_host, QString::number(m_port),
                    QLatin1String(verb), QString::number(attempt), what);
}

void TrafficLog::writeSend(unsigned attempt, const QString &command)
{
    write(m_kind == Kind::Send ? "Send" : "SendSingle", attempt, withoutPassword(command));
}

void TrafficLog::writeResult(unsigned attempt, const QString &resultText, quint32 packets)
{
    QString tail;
    if (m_kind == Kind::Send)
        tail = QStringLiteral(" numPackets=%1").arg(packets);
    else if (attempt == 1)
        tail = QStringLiteral("@"); // part of the format that readers of these logs know
    write(" Res", attempt, resultText + tail);
}

void TrafficLog::writeKnownEnd(unsigned attempt)
{
    write(" End", attempt, QStringLiteral("known"));
}

void TrafficLog::writeLate(unsigned attempt, qsizetype bytes, bool isKnown)
{
    const QString what = isKnown ? QStringLiteral("%1 bytes, seen before") : QStringLiteral("%1 bytes, new");
    write(" Late", attempt, what.arg(bytes));
}
