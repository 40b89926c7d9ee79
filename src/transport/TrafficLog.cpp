#include "TrafficLog.h"

#include "LineWriter.h"

#include <QDateTime>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace
{

/// The descriptor of the log file, -1 when nothing is to be logged.
int openLogFile()
{
    if (qgetenv("FerrowRconLog") != "1")
        return -1;
    // Not waiting keeps a pipe of that name from holding the exchange; asking the open file leaves no gap to swap it
    // in.
    const int descriptor = ::open("log.txt", O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC);
    struct stat status {
    };
    if (descriptor >= 0 && (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
        static_cast<void>(::close(descriptor));
        return -1;
    }
    return descriptor;
}

QString now()
{
    const QDateTime time = QDateTime::currentDateTime();
    const int offsetMinutes = time.offsetFromUtc() / 60;
    const int distance = std::abs(offsetMinutes);
    const QChar sign(offsetMinutes < 0 ? u'-' : u'+');
    const QString zone = QStringLiteral("%1%2%3")
                             .arg(sign)
                             .arg(distance / 60, 2, 10, QChar(u'0'))
                             .arg(distance % 60, 2, 10, QChar(u'0'));
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss ")) + zone;
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

TrafficLog::TrafficLog(const QString &host, int port, Kind kind) : m_host(host), m_port(port), m_kind(kind)
{
    const int descriptor = openLogFile();
    // Unbuffered, so that each line is one write at the end of the file.
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;
    if (descriptor >= 0 && !m_file.open(descriptor, mode, QFileDevice::AutoCloseHandle))
        static_cast<void>(::close(descriptor));
}

void TrafficLog::writeSend(unsigned attempt, const QString &command)
{
    if (!file())
        return;
    const QString verb = m_kind == Kind::Send ? QStringLiteral("Send") : QStringLiteral("SendSingle");
    writeFormat(file(), QStringLiteral("%1 (%2:%3) %4(%5): %6\n"), now(), m_host, m_port, verb, attempt,
                withoutPassword(command));
}

void TrafficLog::writeResult(unsigned attempt, const QString &resultText, quint32 packets)
{
    if (!file())
        return;
    QString tail;
    if (m_kind == Kind::Send)
        tail = QStringLiteral(" numPackets=%1").arg(packets);
    else if (attempt == 1)
        tail = QStringLiteral("@"); // part of the format that readers of these logs know
    writeFormat(file(), QStringLiteral("%1 (%2:%3)  Res(%4): %5%6\n"), now(), m_host, m_port, attempt, resultText,
                tail);
}

void TrafficLog::writeKnownEnd(unsigned attempt)
{
    if (file())
        writeFormat(file(), QStringLiteral("%1 (%2:%3)  End(%4): known\n"), now(), m_host, m_port, attempt);
}

void TrafficLog::writeLate(unsigned attempt, qsizetype bytes, bool isKnown)
{
    if (!file())
        return;
    const QString what = isKnown ? QStringLiteral("seen before") : QStringLiteral("new");
    writeFormat(file(), QStringLiteral("%1 (%2:%3)  Late(%4): %5 bytes, %6\n"), now(), m_host, m_port, attempt, bytes,
                what);
}
