#include "ColorPreview.h"

#include "ColorCodes.h"

#include <QColor>

static constexpr qsizetype mostCharacters = 300; // the game's chat line is shorter

ColorPreview::ColorPreview(QWidget *parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("colorPreview"));
    setTextFormat(Qt::RichText); // made here, every text of the user's escaped
    setMargin(6);
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    // As dark as the game's chat in either appearance, or half of the colours would not be seen.
    QPalette dark = palette();
    dark.setColor(QPalette::Window, QColor(0x2a, 0x2f, 0x36));
    dark.setColor(QPalette::WindowText, Qt::white);
    setPalette(dark);
    showMessage({});
}

static QString runMarkup(const ColorRun &run, bool isNamed)
{
    const ColorCode &code = colorCodes().at(run.digit);
    const QColor color = QColor::fromRgb(code.rgb);
    const QString ground = color.lightness() < 60 ? QStringLiteral("background-color:#c8c8c8;") : QString();
    QString markup;
    if (isNamed)
        markup =
            QStringLiteral("<small style=\"color:#b8c0c8\">&nbsp;[%1]&nbsp;</small>").arg(code.name.toHtmlEscaped());
    return markup + QStringLiteral("<span style=\"white-space:pre;color:%1;%2\">%3</span>")
                        .arg(color.name(), ground, run.text.toHtmlEscaped());
}

void ColorPreview::showMessage(const QString &message)
{
    const QList<ColorRun> runs = colorRuns(message.left(mostCharacters));
    if (runs.isEmpty()) {
        const QString hint = tr("What players will see appears here.");
        setText(QStringLiteral("<span style=\"color:#b8c0c8\">%1</span>").arg(hint.toHtmlEscaped()));
        setAccessibleName(hint);
        return;
    }
    const bool isPlain = runs.size() == 1 && runs.first().digit == 7;
    QString markup;
    QStringList spoken;
    for (const ColorRun &run : runs) {
        markup += runMarkup(run, !isPlain);
        spoken.append(isPlain ? run.text : tr("%1: %2").arg(colorCodes().at(run.digit).name, run.text));
    }
    setText(markup);
    setAccessibleName(tr("Players will see: %1").arg(spoken.join(QStringLiteral("; "))));
}
