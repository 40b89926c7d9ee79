#include "TrafficLog.h"

#include "LineWriter.h"

#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <ctime>

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

TrafficLog::TrafficLog(const QString &host, int port, Kind kind) : m_host(host), m_port(port), m_kind(kind)
{
    const int descriptor = openLogFile();
    // Unbuffered, so that each line is one write at the end of the file.
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;
    if (descriptor >= 0 && !m_file.open(descriptor, mode, QFileDevice::AutoCloseHandle))
        static_cast<void>(::close(descriptor));
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
