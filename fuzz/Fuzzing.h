#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What libFuzzer calls with every input, and each target defines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Ends the run when a promise of the code does not hold; libFuzzer then keeps the input.
inline void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

/// The input without a copy of it: valid during the call.
inline QByteArray fuzzedBytes(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
}

/// The input as the texts of a server's replies, a zero byte between them; there are `count` of them, empty ones at
/// the end if need be.
inline QStringList fuzzedReplies(const std::uint8_t *data, std::size_t size, qsizetype count)
{
    QStringList replies;
    const QList<QByteArray> pieces = fuzzedBytes(data, size).split('\0');
    for (qsizetype i = 0; i < count; ++i)
        replies.append(QString::fromLatin1(pieces.value(i)));
    return replies;
}
