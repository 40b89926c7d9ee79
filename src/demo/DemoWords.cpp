#include "DemoWords.h"

QStringList demoWords(const QString &line)
{
    QStringList words;
    QString word;
    bool isInWord = false;
    bool isQuoted = false;
    const auto endWord = [&] {
        if (isInWord)
            words.append(word);
        word.clear();
        isInWord = false;
    };
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        // The last quote of a line closes a word, even behind a backslash that ends the word.
        const bool isEscapedQuote = c == u'\\' && i + 2 < line.size() && line.at(i + 1) == u'"';
        if (isEscapedQuote) {
            word.append(line.at(++i));
            isInWord = true;
        } else if (c == u'"') {
            if (isQuoted || isInWord)
                endWord();
            isQuoted = !isQuoted;
            isInWord = isQuoted;
        } else if (c.isSpace() && !isQuoted) {
            endWord();
        } else {
            word.append(c);
            isInWord = true;
        }
    }
    endWord();
    return words;
}
