#pragma once

#include <QList>
#include <QString>

/// The colours that a caret and a digit stand for in the game's chat, in the order of their digits. Any thread.
struct ColorCode {
    int digit;
    QString name; ///< in the user's language
    quint32 rgb;  ///< 0xRRGGBB, about as the game shows it
};

const QList<ColorCode> &colorCodes();

/// What is inserted into a text to begin a colour.
QString colorCodeText(int digit);

/// A stretch of a text in one colour, its code left out.
struct ColorRun {
    int digit; ///< 7 where no code has been yet
    QString text;

    bool operator==(const ColorRun &) const = default;
};

/// What players see of a text. Empty stretches are left out.
QList<ColorRun> colorRuns(const QString &text);
