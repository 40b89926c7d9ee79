#include "DatagramPacket.h"

#include "QuotedStrings.h"
#include "Secrets.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLoggingCategory>

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace
{

Q_LOGGING_CATEGORY(transport, "ferrow.transport")

constexpr std::array<milliseconds, 3> timeouts{milliseconds(250), milliseconds(500), milliseconds(750)};
constexpr std::size_t bufferLength = 1500;
constexpr std::size_t minimumReplyLength = 10;
constexpr std::size_t payloadOffset = 11;
constexpr QByteArrayView requestHeader("\xff\xff\xff\xff\x00", 5);
constexpr QByteArrayView passwordRefusal("\xff\xff\xff\xff\x0a", 5);
constexpr QByteArrayView replyHeader("\xff\xff\xff\xff\x01", 5);
constexpr quint32 maximumDatagrams = 65'536;
constexpr qsizetype maximumReplyCharacters = 16 * 1024 * 1024;

std::string systemText(int errorNumber)
{
    return std::system_category().message(errorNumber);
}

int createSocket()
{
#ifdef SOCK_CLOEXEC
    return ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
#else
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (descriptor >= 0)
        static_cast<void>(::fcntl(descriptor, F_SETFD, FD_CLOEXEC));
    return descriptor;
#endif
}

bool isTimeout(int errorNumber)
{
    return errorNumber == EAGAIN || errorNumber == EWOULDBLOCK;
}

bool isLatin1(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) { return character.unicode() <= 0xff; });
}

void place(QString *reply, const QString &text)
{
    if (reply)
        *reply = text;
}

bool isRefusal(QByteArrayView payload)
{
    return payload == QByteArrayView("The server must set 'rcon_password' for clients to use 'rcon'.\n") ||
           payload == QByteArrayView("Invalid password.\n");
}

} // namespace

std::unique_ptr<DatagramPacket> DatagramPacket::initWithHost(const QString &host, quint16 port,
                                                             DatagramPacketError *error)
{
    sockaddr_in address{};
    const QByteArray hostBytes = host.toUtf8();
    // A zero byte would hide the rest of the text from the conversion.
    if (hostBytes.contains('\0') || ::inet_pton(AF_INET, hostBytes.constData(), &address.sin_addr) != 1) {
        if (error) {
            const QString description = QCoreApplication::translate("DatagramPacket", "No such host is known.");
            *error = DatagramPacketError{QStringLiteral("DatagramPacketDomain"), 0, description};
        }
        return nullptr;
    }
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    return std::make_unique<DatagramPacket>(Key(), address);
}

DatagramPacket::DatagramPacket(Key, const sockaddr_in &address) : m_address(address), m_socket(createSocket())
{
    if (m_socket < 0) {
        const int errorNumber = errno;
        qCWarning(transport, "Couldn't create socket, errno=%d (%s)", errorNumber, systemText(errorNumber).c_str());
    }
}

DatagramPacket::~DatagramPacket()
{
    close();
}

void DatagramPacket::close()
{
    // Not repeated when interrupted: the descriptor is gone all the same.
    if (m_socket >= 0)
        static_cast<void>(::close(m_socket));
    m_socket = -1;
}

void DatagramPacket::setSocket(int socket)
{
    if (socket != m_socket)
        close();
    m_socket = socket;
}

void DatagramPacket::setSendAttemptNum(unsigned sendAttemptNum)
{
    m_sendAttemptNum = std::min(sendAttemptNum, unsigned(timeouts.size() - 1));
}

bool DatagramPacket::send(const QString &requestText)
{
    setSendAttemptNum(m_sendAttemptNum + 1);
    Wiped<QByteArray> datagram; // it holds the password
    datagram->reserve(requestHeader.size() + requestText.size() + 1);
    datagram->append(requestHeader);
    if (isLatin1(requestText)) {
        for (const QChar character : requestText)
            datagram->append(character.toLatin1());
    }
    datagram->append('\0');

    const ssize_t sent = withinTimeout(SO_SNDTIMEO, [this, &datagram](bool isBounded, microseconds) {
        return ::sendto(m_socket, datagram->constData(), std::size_t(datagram->size()), isBounded ? 0 : MSG_DONTWAIT,
                        reinterpret_cast<const sockaddr *>(&m_address), sizeof m_address);
    });
    if (sent < 0) {
        const int errorNumber = errno;
        qCWarning(transport, "errno=%d (%s)", errorNumber, systemText(errorNumber).c_str());
    }
    return sent == datagram->size();
}

RConResult DatagramPacket::receive(QString *reply)
{
    Wiped<std::array<char, bufferLength>> buffer; // a list of all variables has the password among them
    const ssize_t length = readDatagram(*buffer);
    if (length > 0)
        return getString(reply, buffer->data(), std::size_t(length));
    if (length == 0) {
        place(reply, QStringLiteral("The server replied with an empty packet."));
        return RConResultNullReply;
    }
    const int errorNumber = errno;
    if (isTimeout(errorNumber)) {
        place(reply, QStringLiteral("Timed out"));
        return RConResultTimeout;
    }
    if (errorNumber == ECONNRESET)
        place(reply, QStringLiteral("Unable to connect to server"));
    else
        place(reply, QString::fromStdString(systemText(errorNumber)));
    return RConResultError;
}

RConResult DatagramPacket::receiveMulti(QString *reply, quint32 *packetsReceived, const std::stop_token &stop)
{
    QString unwanted;
    QString &gathered = reply ? *reply : unwanted;
    const RConResult firstResult = receive(&gathered);
    if (firstResult != RConResultSuccess)
        return firstResult;

    quint32 count = 1;
    Wiped<std::array<char, bufferLength>> buffer;
    while (!stop.stop_requested()) {
        const ssize_t length = readDatagram(*buffer);
        // The server sends no end mark: a reply is over when nothing has come for one time-out.
        if (length == 0 || (length < 0 && isTimeout(errno))) {
            if (packetsReceived)
                *packetsReceived = count;
            return RConResultSuccess;
        }
        if (length < 0) {
            gathered = QString::fromStdString(systemText(errno));
            return RConResultError;
        }
        QString text;
        const RConResult result = getString(&text, buffer->data(), std::size_t(length));
        if (result != RConResultSuccess) {
            gathered = text;
            return result;
        }
        // A server that never falls silent must not fill the memory.
        if (count == maximumDatagrams || gathered.size() + text.size() > maximumReplyCharacters) {
            gathered = QStringLiteral("The server's reply is too long.");
            return RConResultError;
        }
        appendWithoutTrace(gathered, text);
        wipe(text);
        ++count;
    }
    gathered = QStringLiteral("The exchange was cancelled.");
    return RConResultError;
}

RConResult DatagramPacket::validateDataPacket(const char *packet, std::size_t length)
{
    const QByteArrayView bytes(packet, qsizetype(length));
    if (bytes == passwordRefusal)
        return RConResultInvalidPassword;
    return length >= minimumReplyLength && bytes.startsWith(replyHeader) ? RConResultSuccess : RConResultInvalidPacket;
}

RConResult DatagramPacket::getString(QString *reply, const char *packet, std::size_t length)
{
    const RConResult validity = validateDataPacket(packet, length);
    if (validity == RConResultInvalidPacket)
        place(reply, QStringLiteral("An invalid packet was returned from the server."));
    else if (validity == RConResultInvalidPassword)
        place(reply, QStringLiteral("Invalid password."));
    if (validity != RConResultSuccess)
        return validity;

    const std::size_t start = std::min(payloadOffset, length);
    const std::size_t payloadLength = getDataPacketPayloadLength(packet, length, start);
    const QByteArrayView payload(packet + start, qsizetype(payloadLength));
    if (isRefusal(payload))
        return RConResultInvalidPassword;
    if (!reply)
        return RConResultSuccess;

    QString text = QString::fromLatin1(payload);
    text.replace(QStringLiteral("\\\\n"), QStringLiteral("\n"));
    text.replace(QStringLiteral("\\n"), QStringLiteral("\n"));
    *reply = stringByStrippingColorCodes(std::move(text));
    return RConResultSuccess;
}

std::size_t DatagramPacket::getDataPacketPayloadLength(const char *packet, std::size_t length, std::size_t startingFrom)
{
    if (startingFrom >= length)
        return 0;
    const char *const start = packet + startingFrom;
    const void *const zero = std::memchr(start, 0, length - startingFrom);
    return zero ? std::size_t(static_cast<const char *>(zero) - start) : length - startingFrom;
}

microseconds DatagramPacket::timeout() const
{
    return timeouts[m_sendAttemptNum];
}

bool DatagramPacket::setTimeout(int option, microseconds timeout) const
{
    timeval value{};
    value.tv_usec = static_cast<suseconds_t>(timeout.count());
    return ::setsockopt(m_socket, SOL_SOCKET, option, &value, sizeof value) == 0;
}

template <typename Call>
ssize_t DatagramPacket::withinTimeout(int option, Call call) const
{
    const auto deadline = steady_clock::now() + timeout();
    microseconds remaining = timeout();
    for (;;) {
        // Where the time-out cannot be set the call must not wait at all; it then tells what is wrong with the socket.
        const bool isBounded = setTimeout(option, remaining);
        const ssize_t result = call(isBounded, remaining);
        if (result >= 0 || errno != EINTR)
            return result;
        remaining = std::chrono::duration_cast<microseconds>(deadline - steady_clock::now());
        // A process that was stopped for longer takes what has come meanwhile, and waits no more.
        if (remaining <= microseconds::zero())
            return call(false, microseconds::zero());
    }
}

ssize_t DatagramPacket::readDatagram(std::span<char> buffer) const
{
    return withinTimeout(SO_RCVTIMEO, [this, buffer](bool isBounded, microseconds remaining) -> ssize_t {
        // The kernel rounds a socket's own time-out up to its tick; poll counts the milliseconds as they are.
        if (isBounded) {
            pollfd waited{m_socket, POLLIN, 0};
            const int ready = ::poll(&waited, 1, int(std::chrono::ceil<milliseconds>(remaining).count()));
            if (ready == 0)
                errno = EAGAIN;
            if (ready <= 0)
                return -1;
        }
        return ::recvfrom(m_socket, buffer.data(), buffer.size(), isBounded ? 0 : MSG_DONTWAIT, nullptr, nullptr);
    });
}
