#include "TranscriptView.h"

#include <QFontDatabase>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <memory>

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
        // A transcript that fits into the view, emptied or in a larger window, shows its end.
        m_followsEnd = m_followsEnd || bar->value() >= maximum;
        if (m_followsEnd)
            bar->setValue(maximum);
    });
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

// A block's state holds the character that stood before it in the server's text; without a state it was a line feed.
static constexpr int nothingBefore = 0;
static constexpr int carriageReturnAndLineFeedBefore = 0x0d0a;

/// What a document cannot hold within a block.
static bool beginsBlock(QChar c)
{
    const char16_t code = c.unicode();
    return code == u'\n' || code == u'\r' || code == QChar::ParagraphSeparator || code == 0xfdd0 || code == 0xfdd1;
}

namespace
{

/// A text as a document takes it: blocks, and what stood before those that no line feed began.
class Blocks
{
public:
    struct Beginning {
        int block; ///< counted from the one that the text continues
        int before;
    };

    Blocks(const QString &text, qsizetype lengthOfLastBlock) : m_length(lengthOfLastBlock)
    {
        m_text.reserve(text.size() + text.size() / longestBlock);
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text.at(i);
            if (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n') {
                begin(carriageReturnAndLineFeedBefore);
                ++i;
            } else if (beginsBlock(c)) {
                begin(c.unicode());
            } else {
                append(c);
            }
        }
    }

    const QString &text() const { return m_text; }
    const QList<Beginning> &beginnings() const { return m_beginnings; }

private:
    // A block is laid out as a whole at every change, and a server may send a line of megabytes. No line that fits into
    // a datagram is cut.
    static constexpr qsizetype longestBlock = 65536;

    void begin(int before)
    {
        m_text += u'\n';
        ++m_block;
        m_length = 0;
        if (before != u'\n')
            m_beginnings.append({m_block, before});
    }
    void append(QChar c)
    {
        if (m_length >= longestBlock && !c.isLowSurrogate())
            begin(nothingBefore);
        ++m_length;
        m_text += c;
    }

    QString m_text;
    QList<Beginning> m_beginnings;
    int m_block = 0;
    qsizetype m_length;
};

} // namespace

static QString textBefore(const QTextBlock &block)
{
    switch (block.userState()) {
    case nothingBefore:
        return {};
    case carriageReturnAndLineFeedBefore:
        return QStringLiteral("\r\n");
    case -1:
        return QStringLiteral("\n");
    default:
        return QString(QChar(block.userState()));
    }
}

QMimeData *TranscriptView::createMimeDataFromSelection() const
{
    const QTextCursor selection = textCursor();
    const int begin = selection.selectionStart();
    const int end = selection.selectionEnd();
    QString text;
    text.reserve(end - begin);
    QTextBlock block = document()->findBlock(begin);
    for (; block.isValid() && block.position() <= end; block = block.next()) {
        if (block.position() > begin)
            text += textBefore(block);
        const int first = std::max(0, begin - block.position());
        text += QStringView(block.text()).mid(first, end - block.position() - first);
    }
    auto copied = std::make_unique<QMimeData>();
    copied->setText(text);
    return copied.release(); // Qt deletes it
}

void TranscriptView::appendConsoleMessage(const QString &text)
{
    append(text, QTextCharFormat());
}

void TranscriptView::appendNote(const QString &note)
{
    const bool isLineOpen = document()->lastBlock().length() > 1;
    const QString lineBreak = isLineOpen ? QStringLiteral("\n") : QString();
    append(lineBreak + QStringLiteral("— ") + note, noteFormat());
    append(QStringLiteral("\n"), QTextCharFormat());
}

QTextCharFormat TranscriptView::noteFormat() const
{
    QTextCharFormat format;
    format.setForeground(palette().placeholderText());
    return format;
}

void TranscriptView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    const QTextCharFormat format = noteFormat();
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        if (cursor.hasSelection() && cursor.charFormat().hasProperty(QTextFormat::ForegroundBrush))
            cursor.setCharFormat(format);
    }
}

void TranscriptView::append(const QString &text, const QTextCharFormat &format)
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
    const Blocks blocks(text, end.block().length() - 1);
    const int continued = end.blockNumber();
    end.insertText(blocks.text(), format);
    for (const Blocks::Beginning &beginning : blocks.beginnings())
        document()->findBlockByNumber(continued + beginning.block).setUserState(beginning.before);
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
