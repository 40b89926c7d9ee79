#include "TranscriptView.h"

#include <QFontDatabase>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>

static constexpr int mostLines = 200'000;
static constexpr int linesForgottenAtOnce = 20'000;

TranscriptView::TranscriptView(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    // Lines are laid out as they come into view, and wrapped ones push the end further down then.
    QScrollBar *bar = verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) { m_followsEnd = value == bar->maximum(); });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int, int maximum) {
        if (m_followsEnd)
            bar->setValue(maximum);
    });
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

/// A line of any length would be laid out as a whole at every change; a server may send one of megabytes.
static QString inBlocks(const QString &text, qsizetype lengthOfLastLine)
{
    constexpr qsizetype longestLine = 2000;
    QString blocks;
    blocks.reserve(text.size() + text.size() / longestLine);
    qsizetype length = lengthOfLastLine;
    for (const QChar c : text) {
        if (c == QLatin1Char('\n')) {
            length = 0;
        } else if (++length > longestLine) {
            blocks += QLatin1Char('\n');
            length = 1;
        }
        blocks += c;
    }
    return blocks;
}

void TranscriptView::appendConsoleMessage(const QString &text)
{
    QScrollBar *bar = verticalScrollBar();
    const bool followsEnd = m_followsEnd;
    const int readersPlace = bar->value();
    QTextCursor reader = textCursor();
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    // A selection that reaches to the end must not grow with it.
    const bool doesSelectEnd = reader.hasSelection() && reader.selectionEnd() == end.position();
    const int anchor = reader.anchor();
    const int position = reader.position();
    end.insertText(inBlocks(text, end.block().length() - 1));
    if (doesSelectEnd) {
        reader.setPosition(anchor);
        reader.setPosition(position, QTextCursor::KeepAnchor);
        setTextCursor(reader);
    }
    const int forgotten = forgetOldLines();
    bar->setValue(followsEnd ? bar->maximum() : readersPlace - forgotten);
    m_followsEnd = followsEnd;
}

/// The oldest lines go before the memory does. Many at once, as the whole text is moved for it; a limit that stays set
/// would do that for every thousand lines. Returns how many lines of the view they took.
int TranscriptView::forgetOldLines()
{
    if (blockCount() < mostLines + linesForgottenAtOnce)
        return 0;
    const int lines = document()->lineCount();
    setMaximumBlockCount(mostLines);
    setMaximumBlockCount(0);
    return lines - document()->lineCount();
}
