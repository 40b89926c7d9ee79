#include "GameText.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <optional>

namespace
{

bool isHeld(QChar c)
{
    return c.unicode() <= 0xff && !c.isNull();
}

bool isHeld(QStringView text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return isHeld(c); });
}

bool isDoubleQuote(QChar c)
{
    const char16_t code = c.unicode();
    return code >= 0x201c && code <= 0x201f;
}

bool isUnseen(QChar c)
{
    const char16_t code = c.unicode();
    return (code >= 0x200b && code <= 0x200f) || code == 0x2060 || code == 0xfeff || (code >= 0xfe00 && code <= 0xfe0f);
}

struct Replacement {
    QStringView characters;
    QLatin1String text;
};

constexpr std::array replacements{
    Replacement{u"\u2018\u2019\u201a\u201b\u2032\u2039\u203a", QLatin1String("'")}, // quotes and prime
    // A double prime stands for inches and seconds: a double quote would open a value.
    Replacement{u"\u2033", QLatin1String("''")},
    Replacement{u"\u2010\u2011\u2012\u2013\u2014\u2015\u2212", QLatin1String("-")}, // hyphens, dashes and minus
    Replacement{u"\u2022", QLatin1String("*")},                                     // bullet
    Replacement{u"\u2025", QLatin1String("..")},
    Replacement{u"\u2026", QLatin1String("...")},
};

/// What stands for `c`, double quotes apart; nothing if the game has nothing like it.
std::optional<QString> plain(QChar c)
{
    if (isHeld(c))
        return QString(c);
    if (isUnseen(c))
        return QString();
    if (c.isSpace())
        return QStringLiteral(" ");
    for (const Replacement &each : replacements) {
        if (each.characters.contains(c))
            return each.text;
    }
    return std::nullopt;
}

/// Knows, from the first character of a line to its last, what a double quote at this place means.
class LineQuotes
{
public:
    void pass(QChar c)
    {
        if (c == u'"' && !m_isEscape)
            m_state = m_state == State::Outside ? State::InPlain : State::Outside;
        m_isEscape = c == u'\\';
    }
    QString replaced()
    {
        m_isEscape = false;
        if (m_state == State::InPlain)
            return QStringLiteral("'");
        m_state = m_state == State::Outside ? State::InTypographic : State::Outside;
        return QStringLiteral("\"");
    }

private:
    enum class State { Outside, InPlain, InTypographic };
    State m_state = State::Outside;
    bool m_isEscape = false;
};

/// What a reader would take for one character: a letter with its accents, a sign of two surrogates.
template <typename Take>
void forEachCharacter(const QString &text, Take take)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype begin = 0, end = finder.toNextBoundary(); end >= 0; begin = end, end = finder.toNextBoundary())
        take(QStringView(text).sliced(begin, end - begin));
}

/// Normalising everything would also turn the Greek question mark into a semicolon, which ends a command.
QString withLettersComposed(QStringView character)
{
    const QString text = character.toString();
    if (text.size() == 1 || !text.front().isLetter())
        return text;
    const QString composed = text.normalized(QString::NormalizationForm_C);
    return isHeld(composed) ? composed : text;
}

/// The number of the first that the game lacks.
QString codeOf(QStringView character)
{
    qsizetype first = 0;
    while (first + 1 < character.size() && isHeld(character.at(first)))
        ++first;
    const QStringView found = character.sliced(first);
    const bool isPair = found.size() > 1 && found.at(0).isHighSurrogate() && found.at(1).isLowSurrogate();
    const uint code = isPair ? QChar::surrogateToUcs4(found.at(0), found.at(1)) : found.at(0).unicode();
    return QStringLiteral("U+%1").arg(QString::number(code, 16).toUpper(), 4, u'0');
}

/// The character itself, or its number where there would be nothing to see.
QString nameOf(QStringView character)
{
    constexpr qsizetype longestShown = 20; // accents may be piled up without end
    const QList<uint> codes = character.toUcs4();
    const bool isShown =
        character.isValidUtf16() && character.size() <= longestShown && QChar::isPrint(codes.constFirst());
    return isShown ? character.toString() : codeOf(character);
}

} // namespace

void GameText::refuse(const QString &character)
{
    if (!m_unsendable.contains(character))
        m_unsendable.append(character);
}

GameText GameText::replaced(const QString &text, DoubleQuotes quotes)
{
    GameText result;
    if (isHeld(text)) {
        result.m_text = text;
        return result;
    }
    LineQuotes line;
    forEachCharacter(text, [&](QStringView character) {
        const QString composed = withLettersComposed(character);
        QString replaced;
        for (const QChar c : composed) {
            if (isDoubleQuote(c)) {
                replaced += quotes == DoubleQuotes::Typed ? line.replaced() : QStringLiteral("'");
                continue;
            }
            line.pass(c);
            const std::optional<QString> piece = plain(c);
            if (!piece) {
                result.refuse(nameOf(character));
                replaced = composed;
                break;
            }
            replaced += *piece;
        }
        result.m_text += replaced;
    });
    return result;
}

GameText GameText::of(const QString &text)
{
    return replaced(text, DoubleQuotes::Single);
}

GameText GameText::ofTypedLine(const QString &line)
{
    return replaced(line, DoubleQuotes::Typed);
}

GameText GameText::asItStands(const QString &text)
{
    GameText result;
    result.m_text = text;
    if (!isHeld(text)) {
        forEachCharacter(text, [&result](QStringView character) {
            if (!isHeld(character))
                result.refuse(nameOf(character));
        });
    }
    return result;
}

QString GameText::complaint() const
{
    constexpr qsizetype mostNamed = 10;
    if (isSendable())
        return {};
    QStringList named = m_unsendable.mid(0, mostNamed);
    if (m_unsendable.size() > mostNamed)
        named.append(QStringLiteral("…"));
    return tr("The game cannot show these characters: %1.").arg(named.join(u' '));
}
