#pragma once

#include <QPlainTextEdit>

/// The console transcript: grows at its end and follows it only while the reader is there. Keeps at least the newest
/// 200,000 lines.
class TranscriptView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TranscriptView(QWidget *parent = nullptr);

    /// Appends `text` as it stands, without a line break of its own.
    void appendConsoleMessage(const QString &text);
    /// Appends a dim line about what stands before it.
    void appendNote(const QString &note);

protected:
    /// The selected text as it was appended, to the last character.
    QMimeData *createMimeDataFromSelection() const override;
    void changeEvent(QEvent *event) override;

private:
    QTextCharFormat noteFormat() const;
    void append(const QString &text, const QTextCharFormat &format);
    int forgetOldLines();

    bool m_followsEnd = true;
};
