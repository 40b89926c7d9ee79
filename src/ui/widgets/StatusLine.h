#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>

/// The line at the bottom of the window: what the connection is doing, and whether something is on its way.
class StatusLine : public QStatusBar
{
    Q_OBJECT
public:
    explicit StatusLine(QWidget *parent = nullptr);

    void setStatus(const QString &text) { toolStripStatusLabelMain->setText(text); }
    QString status() const { return toolStripStatusLabelMain->text(); }

    /// Shows the indicator once the work has lasted 150 ms and hides it as late, so that neither short work nor a short
    /// pause flickers.
    void setBusy(bool isBusy);
    /// Tells how many of the server's settings are known, until all are.
    void setProgress(int done, int total);
    /// Puts what tells of the line to the server at the end; the line takes it.
    void addLink(QWidget *link) { addPermanentWidget(link); }

private:
    void showBusy();

    QLabel *toolStripStatusLabelMain;
    QProgressBar *m_busyIndicator;
    QLabel *m_progressLabel;
    bool m_isBusy = false;
    QTimer m_delay;
};
