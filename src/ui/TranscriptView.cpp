#include "TranscriptView.h"

#include <QFontDatabase>
#include <QScrollBar>
#include <QTextDocument>

TranscriptView::TranscriptView(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

void TranscriptView::appendConsoleMessage(const QString &text)
{
    QScrollBar *bar = verticalScrollBar();
    const bool isAtEnd = bar->value() == bar->maximum();
    const int readersPlace = bar->value();
    QTextCursor reader = textCursor();
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    // A selection that reaches to the end must not grow with it.
    const bool doesSelectEnd = reader.hasSelection() && reader.selectionEnd() == end.position();
    const int anchor = reader.anchor();
    const int position = reader.position();
    end.insertText(text);
    if (doesSelectEnd) {
        reader.setPosition(anchor);
        reader.setPosition(position, QTextCursor::KeepAnchor);
        setTextCursor(reader);
    }
    bar->setValue(isAtEnd ? bar->maximum() : readersPlace);
}
