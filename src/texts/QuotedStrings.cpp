#include "QuotedStrings.h"

namespace
{

/// Walks over a text from quote to quote; every step first skips white space and line ends.
class QuoteScanner
{
public:
    explicit QuoteScanner(QStringView text) : m_text(text) {}

    bool isAtEnd()
    {
        skipWhiteSpace();
        return m_position == m_text.size();
    }

    QStringView scanUpToQuote()
    {
        skipWhiteSpace();
        const qsizetype start = m_position;
        const qsizetype quote = m_text.indexOf(u'"', start);
        m_position = quote < 0 ? m_text.size() : quote;
        return m_text.sliced(start, m_position - start);
    }

    void consumeQuote()
    {
        skipWhiteSpace();
        if (m_position < m_text.size() && m_text[m_position] == u'"')
            ++m_position;
    }

private:
    void skipWhiteSpace()
    {
        while (m_position < m_text.size() && m_text[m_position].isSpace())
            ++m_position;
    }

    QStringView m_text;
    qsizetype m_position = 0;
};

/// Removes every caret followed by `digit` in one pass from left to right; false when no caret is left.
bool stripColorCode(QString &text, QChar digit)
{
    const qsizetype firstCaret = text.indexOf(u'^');
    if (firstCaret < 0)
        return false;
    QChar *const begin = text.data();
    const QChar *const end = begin + text.size();
    QChar *kept = begin + firstCaret;
    for (const QChar *next = kept; next != end;) {
        if (*next == u'^' && next + 1 != end && next[1] == digit)
            next += 2;
        else
            *kept++ = *next++;
    }
    text.truncate(kept - begin);
    return true;
}

} // namespace

QStringList quotedStrings(const QString &text)
{
    QStringList fields;
    fields.reserve(3); // a reply to a variable's name has three of them
    QuoteScanner scanner(text);
    while (!scanner.isAtEnd()) {
        scanner.scanUpToQuote();
        scanner.consumeQuote();
        QString field = scanner.scanUpToQuote().toString();
        while (!scanner.isAtEnd() && field.endsWith(u'\\')) {
            field.back() = u'"';
            scanner.consumeQuote();
            field.append(scanner.scanUpToQuote());
        }
        if (scanner.isAtEnd())
            break;
        fields.append(u'"' + field + u'"');
        scanner.consumeQuote();
    }
    return fields;
}

QString withoutOuter(QStringView text, QChar mark)
{
    while (text.startsWith(mark))
        text = text.sliced(1);
    while (text.endsWith(mark))
        text.chop(1);
    return text.toString();
}

QString stringByStrippingColorCodes(QString text)
{
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        if (!stripColorCode(text, digit))
            break;
    }
    return text;
}

bool startsWithString(const QString &text, const QString &prefix)
{
    return !prefix.isEmpty() && text.startsWith(prefix);
}
