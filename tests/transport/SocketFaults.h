#pragma once

#include <QByteArray>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

/// A connected TCP socket from which `sent` can be read and then the reset of its peer.
inline int socketWithReset(const QByteArray &sent)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    const auto generic = reinterpret_cast<sockaddr *>(&address);
    if (::bind(listener, generic, length) != 0 || ::listen(listener, 1) != 0 ||
        ::getsockname(listener, generic, &length) != 0)
        qFatal("no listener");
    const int client = ::socket(AF_INET, SOCK_STREAM, 0);
    if (::connect(client, generic, length) != 0)
        qFatal("no connection");
    const int server = ::accept(listener, nullptr, nullptr);
    if (::write(server, sent.constData(), size_t(sent.size())) != sent.size())
        qFatal("nothing written");
    const linger reset{1, 0};
    ::setsockopt(server, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    ::close(server);
    ::close(listener);
    return client;
}

/// Interrupts the process every 50 ms while it lives.
class Interruptions
{
public:
    Interruptions()
    {
        struct sigaction action {
        };
        action.sa_handler = [](int) {
        };
        ::sigaction(SIGALRM, &action, &m_before);
        const itimerval often{{0, 50'000}, {0, 50'000}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~Interruptions()
    {
        const itimerval never{};
        ::setitimer(ITIMER_REAL, &never, nullptr);
        ::sigaction(SIGALRM, &m_before, nullptr);
    }
    Q_DISABLE_COPY_MOVE(Interruptions)

private:
    struct sigaction m_before {
    };
};
