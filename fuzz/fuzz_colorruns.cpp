#include "Fuzzing.h"

#include "ColorCodes.h"

/// A chat message as an administrator types it.
static void fuzz(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    const QList<ColorRun> runs = colorRuns(text);
    QString shown;
    for (const ColorRun &run : runs) {
        require(!run.text.isEmpty(), "empty stretches are left out");
        require(run.digit >= 0 && run.digit <= 9, "a colour is a digit");
        shown += run.text;
    }
    require(shown.size() <= text.size(), "nothing is made up");
    require(text.contains(u'^') || shown == text, "a text without codes is shown as it is");
}
