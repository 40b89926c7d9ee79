#pragma once

#include <QPlainTextEdit>

/// The console transcript: grows at its end and follows it only while the reader is there.
class TranscriptView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TranscriptView(QWidget *parent = nullptr);

    /// Appends `text` as it stands, without a line break of its own.
    void appendConsoleMessage(const QString &text);

private:
    bool m_followsEnd = true;
};
