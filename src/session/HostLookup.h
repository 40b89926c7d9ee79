#pragma once

#include <QCoroTask>

#include <QByteArray>
#include <QFuture>
#include <QStringList>

#include <functional>
#include <memory>

/// What a name stands for.
struct HostAddresses {
    QStringList addresses; ///< dotted IPv4, in the order in which they are to be tried, at most mostAddresses
    QString error;         ///< why there are none
    bool isCancelled = false;

    static constexpr qsizetype mostAddresses = 4;
};

/// Finds the addresses of servers. Main thread only.
class HostLookup
{
public:
    HostLookup() = default;
    virtual ~HostLookup() = default;
    HostLookup(const HostLookup &) = delete;
    HostLookup &operator=(const HostLookup &) = delete;

    /// @param host  a dotted IPv4 address, which is its own answer, or a name.
    virtual QCoro::Task<HostAddresses> find(QString host) = 0;
    /// Ends what is under way at once; find() resumes from the event loop.
    virtual void cancel() = 0;
};

/// Asks the system, on a thread of its own for each name: a name server that does not answer holds nobody up, neither a
/// "Disconnect" nor the end of the program.
class SystemHostLookup final : public HostLookup
{
public:
    /// Blocks until the system has answered. Any thread.
    using Resolve = std::function<HostAddresses(const QByteArray &name)>;

    explicit SystemHostLookup(Resolve resolve = &SystemHostLookup::resolve);
    ~SystemHostLookup() override;

    QCoro::Task<HostAddresses> find(QString host) override;
    void cancel() override;

    static HostAddresses resolve(const QByteArray &name);

private:
    class Answer;

    Resolve m_resolve;
    std::shared_ptr<Answer> m_pending;
};
