#include "DatagramPacket.h"

#include "QuotedStrings.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLoggingCategory>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

namespace
{

Q_LOGGING_CATEGORY(transport, "ferrow.transport")

constexpr qsizetype minimumReplyLength = 10;
constexpr qsizetype payloadOffset = 11;
constexpr QByteArrayView requestHeader("\xff\xff\xff\xff\x00", 5);
constexpr QByteArrayView passwordRefusal("\xff\xff\xff\xff\x0a", 5);
constexpr QByteArrayView replyHeader("\xff\xff\xff\xff\x01", 5);

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
    in_addr address{};
    const QByteArray hostBytes = host.toUtf8();
    // A zero byte would hide the rest of the text from the conversion.
    if (hostBytes.contains('\0') || ::inet_pton(AF_INET, hostBytes.constData(), &address) != 1) {
        if (error) {
            const QString description = QCoreApplication::translate("DatagramPacket", "No such host is known.");
            *error = DatagramPacketError{QStringLiteral("DatagramPacketDomain"), 0, description};
        }
        return nullptr;
    }
    return std::make_unique<DatagramPacket>(Key(), Endpoint{ntohl(address.s_addr), port});
}

DatagramPacket::DatagramPacket(Key, const Endpoint &server) : m_server(server), m_socket(createSocket())
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

bool DatagramPacket::send(const QString &requestText)
{
    QByteArray datagram = requestHeader.toByteArray();
    if (isLatin1(requestText))
        datagram += requestText.toLatin1();
    datagram += '\0';

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(m_server.address);
    address.sin_port = htons(m_server.port);
    ssize_t sent = -1;
    do {
        sent = ::sendto(m_socket, datagram.constData(), std::size_t(datagram.size()), MSG_DONTWAIT,
                        reinterpret_cast<const sockaddr *>(&address), sizeof address);
    } while (sent < 0 && errno == EINTR);
    if (sent < 0) {
        const int errorNumber = errno;
        qCWarning(transport, "errno=%d (%s)", errorNumber, systemText(errorNumber).c_str());
    }
    return sent == datagram.size();
}

ReceivedDatagram DatagramPacket::receive(std::span<char> buffer)
{
    sockaddr_in from{};
    socklen_t fromLength = sizeof from;
    ssize_t length = -1;
    do {
        length = ::recvfrom(m_socket, buffer.data(), buffer.size(), MSG_DONTWAIT, reinterpret_cast<sockaddr *>(&from),
                            &fromLength);
    } while (length < 0 && errno == EINTR);
    ReceivedDatagram received;
    if (length >= 0) {
        received.kind = ReceivedDatagram::Kind::Datagram;
        received.length = static_cast<std::size_t>(length);
        received.from = Endpoint{ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)};
    } else if (errno != EAGAIN && errno != EWOULDBLOCK) {
        received.kind = ReceivedDatagram::Kind::Failure;
        received.errorNumber = errno;
    }
    return received;
}

RConResult DatagramPacket::validateDataPacket(QByteArrayView packet)
{
    if (packet == passwordRefusal)
        return RConResultInvalidPassword;
    return packet.size() >= minimumReplyLength && packet.startsWith(replyHeader) ? RConResultSuccess
                                                                                 : RConResultInvalidPacket;
}

RConResult DatagramPacket::getString(QString *reply, QByteArrayView packet)
{
    const RConResult validity = validateDataPacket(packet);
    if (validity == RConResultInvalidPacket)
        place(reply, QStringLiteral("An invalid packet was returned from the server."));
    else if (validity == RConResultInvalidPassword)
        place(reply, QStringLiteral("Invalid password."));
    if (validity != RConResultSuccess)
        return validity;

    const QByteArrayView payload =
        packet.sliced(std::min(payloadOffset, packet.size())).first(getDataPacketPayloadLength(packet, payloadOffset));
    if (isRefusal(payload))
        return RConResultInvalidPassword;
    QString text = QString::fromLatin1(payload);
    text.replace(QStringLiteral("\\\\n"), QStringLiteral("\n"));
    text.replace(QStringLiteral("\\n"), QStringLiteral("\n"));
    place(reply, stringByStrippingColorCodes(std::move(text)));
    return RConResultSuccess;
}

qsizetype DatagramPacket::getDataPacketPayloadLength(QByteArrayView packet, qsizetype startingFrom)
{
    const QByteArrayView rest = packet.sliced(std::min(startingFrom, packet.size()));
    const qsizetype zero = rest.indexOf('\0');
    return zero < 0 ? rest.size() : zero;
}
