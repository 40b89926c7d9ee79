#include "RotationXml.h"

/// @return whether the character at `place` may stand there; a surrogate only beside its other half.
static bool isStorableAt(const QString &text, qsizetype place)
{
    const QChar character = text.at(place);
    if (character.isHighSurrogate())
        return place + 1 < text.size() && text.at(place + 1).isLowSurrogate();
    if (character.isLowSurrogate())
        return place > 0 && text.at(place - 1).isHighSurrogate();
    if (character < QLatin1Char(' '))
        return character == QLatin1Char('\t') || character == QLatin1Char('\n') || character == QLatin1Char('\r');
    return character.unicode() < 0xfffe;
}

bool isStorableText(const QString &text)
{
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (!isStorableAt(text, place))
            return false;
    }
    return true;
}

QString rotationText(pugi::xml_node element, const char *name)
{
    QString text = xmlChildText(element, name);
    if (isStorableText(text))
        return text;
    // A file that other hands have written must not block every later save.
    QString kept;
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (isStorableAt(text, place))
            kept += text.at(place);
    }
    return kept;
}
