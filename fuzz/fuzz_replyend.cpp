#include "Fuzzing.h"

#include "QuotedStrings.h"
#include "ReplyEnd.h"

/// What a server sends as a value: a quote in it is escaped, and no backslash stands where it would escape the closing
/// quote.
static QString asValue(const QByteArray &bytes)
{
    QString value = QString::fromLatin1(bytes).remove(QLatin1Char('\\'));
    value.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return value;
}

/// The input is a value and a value in force with a zero byte between them.
static void fuzz(const QByteArray &bytes)
{
    const QString any = QString::fromLatin1(bytes);
    ReplyEnd growing("dvardump");
    for (qsizetype cut = 0; cut <= any.size(); cut += 1 + any.size() / 16)
        static_cast<void>(growing.isWhole(any.left(cut)));
    static_cast<void>(ReplyEnd::isDumpShort(any));
    static_cast<void>(ReplyEnd("tw_x").isWhole(any));

    const qsizetype zero = bytes.indexOf('\0');
    const QString value = asValue(bytes.left(zero));
    const QString inForce = zero < 0 ? QString() : asValue(bytes.mid(zero + 1));
    if (value.size() + inForce.size() > 200) // every cut is tried
        return;
    const QString reply =
        QStringLiteral("\"tw_x\" is: \"") + value + QStringLiteral("\" in force: \"") + inForce + "\"\n";
    const QStringList fields = quotedStrings(reply);
    for (qsizetype cut = 0; cut <= reply.size(); ++cut) {
        const QString part = reply.left(cut);
        if (ReplyEnd("tw_x").isWhole(part))
            require(quotedStrings(part) == fields, "what is taken for whole tells what the whole tells");
    }
    require(fields.size() != 3 || ReplyEnd("tw_x").isWhole(reply), "a whole reply is known as one");
}
