#include "Fuzzing.h"

#include "QuotedStrings.h"

static void checkFields(const QString &text)
{
    const QStringList fields = quotedStrings(text);
    require(fields.size() <= text.count(u'"') / 2, "a field takes two quotes");
    qsizetype length = 0;
    for (const QString &field : fields) {
        require(field.size() >= 2 && field.startsWith(u'"') && field.endsWith(u'"'), "a field is between its quotes");
        length += field.size();
    }
    require(length <= text.size(), "fields are parts of the text");
}

/// Whether white space that the scanner skips stands in it, or a backslash that takes the closing quote with it.
static bool isLossy(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i).isSpace() && (i == 0 || text.at(i - 1) == u'"'))
            return true;
    }
    return text.endsWith(u'\\');
}

static void checkQuoting(const QString &text)
{
    if (isLossy(text))
        return;
    QString escaped = text;
    escaped.replace(u'"', QLatin1String("\\\""));
    const QStringList fields = quotedStrings(QStringLiteral("is:\"%1\" default:\"x\"").arg(escaped));
    require(fields == QStringList({u'"' + text + u'"', "\"x\""}), "what is quoted is read again");
}

static void fuzz(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    checkFields(text);
    checkQuoting(text);
    require(stringByStrippingColorCodes(text).size() <= text.size(), "codes go, and nothing comes");
    const QString inner = withoutOuterQuotes(text);
    require(!inner.startsWith(u'"') && !inner.endsWith(u'"') && withoutOuterQuotes(inner) == inner,
            "no outer quote is left");
}
