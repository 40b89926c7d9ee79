#include "Secrets.h"

#include <algorithm>
#include <cstring>

bool holdsPassword(const QString &dvar)
{
    return dvar.contains(QLatin1String("password"), Qt::CaseInsensitive);
}

void wipe(std::span<char> bytes)
{
    std::memset(bytes.data(), 0, bytes.size());
    // Without a reader the compiler would leave the writing out.
    asm volatile("" : : "r"(bytes.data()) : "memory");
}

/// `data` is all that Qt has allocated for it, with the spare room at both ends.
template <typename Data>
static void wipeAllocated(Data &data)
{
    if (data.isShared()) // or a literal, which is in no memory of ours
        return;
    auto *const start = data.data() - data.freeSpaceAtBegin();
    const auto count = static_cast<std::size_t>(data.constAllocatedCapacity());
    wipe(std::span(reinterpret_cast<char *>(start), count * sizeof *start));
}

void wipe(QString &text)
{
    wipeAllocated(text.data_ptr());
    text.clear();
}

void wipe(QByteArray &bytes)
{
    wipeAllocated(bytes.data_ptr());
    bytes.clear();
}

void appendWithoutTrace(QString &text, const QString &more)
{
    const qsizetype size = text.size() + more.size();
    if (size > text.capacity()) {
        QString moved;
        moved.reserve(std::max(size, text.capacity() * 2));
        moved.append(text);
        text.swap(moved);
        wipe(moved);
    }
    text.append(more);
}
