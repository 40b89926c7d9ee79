#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <span>
#include <utility>

/// Whether the value of this variable is a password, as far as its name tells. Also of passwords that no catalogue
/// knows: what is shown may be seen over a shoulder, and what is copied is pasted. Any thread.
bool holdsPassword(const QString &dvar);

/// Overwrites `bytes`, although nobody reads them again. Any thread.
void wipe(std::span<char> bytes);
template <std::size_t Size>
void wipe(std::array<char, Size> &bytes)
{
    wipe(std::span<char>(bytes));
}

/// Overwrites all the memory of a text and empties it. What others share is left to them, and only let go. Any thread.
void wipe(QString &text);
void wipe(QByteArray &bytes);

/// Appends to `text`; where that moves it to other memory, what it leaves behind is wiped. Any thread.
void appendWithoutTrace(QString &text, const QString &more);

/// Bytes or a text that are wiped when they go out of scope.
template <typename Content>
class Wiped
{
public:
    Wiped() = default;
    explicit Wiped(Content content) : m_content(std::move(content)) {}
    ~Wiped() { wipe(m_content); }
    Wiped(const Wiped &) = delete;
    Wiped &operator=(const Wiped &) = delete;

    Content &operator*() { return m_content; }
    Content *operator->() { return &m_content; }

private:
    Content m_content{};
};
