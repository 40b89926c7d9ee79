#pragma once

#include "DemoServer.h"

#include <memory>

/// A demo server that answers. Without one there is nothing to do: the program ends.
inline std::unique_ptr<DemoServer> startedServer(const DemoOptions &options)
{
    auto server = std::make_unique<DemoServer>(options);
    QString error;
    if (!server->start(&error))
        qFatal("%s", qPrintable(error));
    return server;
}
