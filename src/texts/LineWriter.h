#pragma once

#include <QIODevice>
#include <QString>

#include <type_traits>

// Writers of UTF-8 text. A null file swallows everything, and no failure is reported: a caller whose user must know
// asks the file itself. Each call hands the device one block.

namespace LineWriterDetail
{

inline void writeText(QIODevice *file, const QString &text)
{
    static_cast<void>(file->write(text.toUtf8()));
}

template <typename Value>
QString valueText(const Value &value)
{
    if constexpr (std::is_arithmetic_v<Value>)
        return QString::number(value);
    else
        return value;
}

template <typename... Args>
QString formatted(const QString &format, const Args &...args)
{
    if constexpr (sizeof...(args) == 0)
        return format;
    else
        return format.arg(valueText(args)...);
}

} // namespace LineWriterDetail

/// Writes `format` with its markers %1, %2 ... replaced by the values (texts or numbers), all in one pass: a value that
/// looks like a marker stays as it is.
template <typename... Args>
void writeFormat(QIODevice *file, const QString &format, const Args &...args)
{
    if (file)
        LineWriterDetail::writeText(file, LineWriterDetail::formatted(format, args...));
}

/// Like writeFormat(), with a newline after it.
template <typename... Args>
void writeLineFormat(QIODevice *file, const QString &format, const Args &...args)
{
    if (file)
        LineWriterDetail::writeText(file, LineWriterDetail::formatted(format, args...) + u'\n');
}

/// Writes `text` as it is and a newline.
inline void writeLine(QIODevice *file, const QString &text)
{
    if (file)
        LineWriterDetail::writeText(file, text + u'\n');
}

/// Writes a newline.
inline void writeLine(QIODevice *file)
{
    writeLine(file, QString());
}
