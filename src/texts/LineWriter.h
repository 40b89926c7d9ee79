#pragma once

#include <QIODevice>
#include <QString>

// Writers of UTF-8 text. A null file swallows everything, and no failure is reported: a caller whose user must know
// asks the file itself. Each call hands the device one block.

/// Writes `format` with its markers %1, %2 ... replaced by the texts, all in one pass: a text that looks like a marker
/// stays as it is.
template <typename... Texts>
void writeFormat(QIODevice *file, const QString &format, const Texts &...texts)
{
    if (file)
        static_cast<void>(file->write(format.arg(texts...).toUtf8()));
}

/// Like writeFormat(), with a newline after it.
template <typename... Texts>
void writeLineFormat(QIODevice *file, const QString &format, const Texts &...texts)
{
    writeFormat(file, format + u'\n', texts...);
}

/// Writes `text` as it is and a newline.
inline void writeLine(QIODevice *file, const QString &text = {})
{
    if (file)
        static_cast<void>(file->write((text + u'\n').toUtf8()));
}
