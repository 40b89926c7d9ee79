#pragma once

#include "Exchange.h"

#include <QThreadPool>

#include <stop_token>

/// Runs RCon's blocking exchanges on a worker thread, so that the main loop never waits for the network.
class RConExchange final : public Exchange
{
public:
    RConExchange();
    /// Waits for the worker, at most one receive time-out. Nobody may be waiting for a reply any more.
    ~RConExchange() override;

    QCoro::Task<Reply> send(Request request) override;
    void cancel() override;

private:
    QThreadPool m_worker;
    std::stop_source m_stop;
};
