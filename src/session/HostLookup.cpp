#include "HostLookup.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPromise>
#include <QUrl>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <thread>
#include <utility>

static QString noSuchHost()
{
    return QCoreApplication::translate("DatagramPacket", "No such host is known.");
}

/// The first of the system's answer and a cancellation counts. Shared by the two threads.
class SystemHostLookup::Answer
{
public:
    Answer() { m_promise.start(); }

    QFuture<HostAddresses> future() { return m_promise.future(); }

    void give(HostAddresses addresses)
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_isGiven, true))
            return;
        m_promise.addResult(std::move(addresses));
        m_promise.finish();
    }

private:
    std::mutex m_mutex;
    QPromise<HostAddresses> m_promise;
    bool m_isGiven = false;
};

SystemHostLookup::SystemHostLookup(Resolve resolve) : m_resolve(std::move(resolve)) {}

SystemHostLookup::~SystemHostLookup()
{
    cancel();
}

static bool isAddress(const QString &host)
{
    in_addr address{};
    const QByteArray bytes = host.toUtf8();
    return !bytes.contains('\0') && ::inet_pton(AF_INET, bytes.constData(), &address) == 1;
}

QCoro::Task<HostAddresses> SystemHostLookup::find(QString host)
{
    if (isAddress(host))
        co_return HostAddresses{{host}, {}, false};
    const QByteArray name = QUrl::toAce(host);
    // What is nothing but digits and dots is an address that lacks a part; the system would complete it.
    const bool isName = std::any_of(name.begin(), name.end(), [](char c) { return (c < '0' || c > '9') && c != '.'; });
    if (!isName)
        co_return HostAddresses{{}, noSuchHost(), false};
    const auto answer = std::make_shared<Answer>();
    m_pending = answer;
    QFuture<HostAddresses> future = answer->future();
    std::thread([answer, name, resolve = m_resolve] { answer->give(resolve(name)); }).detach();
    co_await future;
    if (m_pending == answer)
        m_pending.reset();
    co_return future.takeResult();
}

void SystemHostLookup::cancel()
{
    if (m_pending != nullptr)
        m_pending->give(HostAddresses{{}, {}, true});
}

HostAddresses SystemHostLookup::resolve(const QByteArray &name)
{
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_DGRAM;
    wanted.ai_flags = AI_ADDRCONFIG;
    addrinfo *list = nullptr;
    const int failure = ::getaddrinfo(name.constData(), nullptr, &wanted, &list);
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);
    HostAddresses found;
    for (const addrinfo *each = list; each != nullptr; each = each->ai_next) {
        std::array<char, INET_ADDRSTRLEN> text{};
        const auto *const address = reinterpret_cast<const sockaddr_in *>(each->ai_addr);
        if (::inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size()) == nullptr)
            continue;
        const QString dotted = QString::fromLatin1(text.data());
        if (!found.addresses.contains(dotted) && found.addresses.size() < HostAddresses::mostAddresses)
            found.addresses.append(dotted);
    }
    if (failure == EAI_AGAIN)
        found.error = QCoreApplication::translate("HostLookup", "The name could not be looked up for now.");
    else if (found.addresses.isEmpty())
        found.error = noSuchHost();
    return found;
}
