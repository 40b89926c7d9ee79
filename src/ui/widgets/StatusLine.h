#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>

/// The line at the bottom of the window: what the connection is doing, and whether an action is at work.
class StatusLine : public QStatusBar
{
    Q_OBJECT
public:
    explicit StatusLine(QWidget *parent = nullptr);

    void setStatus(const QString &text) { toolStripStatusLabelMain->setText(text); }
    QString status() const { return toolStripStatusLabelMain->text(); }

    /// Shows the indicator once the work has lasted 150 ms, so that short work does not flicker.
    void setBusy(bool isBusy);
    /// Tells how far a connect has come; the indicator forgets it when the work ends.
    void setProgress(int done, int total);
    void clearProgress();

private:
    QLabel *toolStripStatusLabelMain;
    QProgressBar *m_busyIndicator;
    QTimer m_delay;
};
