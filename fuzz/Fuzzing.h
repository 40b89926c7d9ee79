#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What each target does with an input, which is valid during the call.
static void fuzz(const QByteArray &bytes);

/// What libFuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz(QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    return 0;
}

/// Ends the run when a promise of the code does not hold; libFuzzer then keeps the input.
inline void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}
