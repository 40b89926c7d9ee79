#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QString>

#include <functional>
#include <limits>

/// The progress sheet of one long task. Its values may be set before the sheet is shown and are applied then;
/// a value that was never set (not a number) leaves the indicator alone.
class ProgressWindowController
{
public:
    ProgressWindowController() = default;
    ~ProgressWindowController();
    ProgressWindowController(const ProgressWindowController &) = delete;
    ProgressWindowController &operator=(const ProgressWindowController &) = delete;

    QString title() const { return m_title; }
    double progressMax() const { return m_progressMax; }
    double currentProgress() const { return m_currentProgress; }
    void setTitle(const QString &title);
    void setProgressMax(double progressMax);
    void setCurrentProgress(double currentProgress);

    /// Gives the sheet a "Cancel" button, which calls `cancel` once; the sheet stays until endSheet(). Set before the
    /// sheet is shown.
    void setCancel(std::function<void()> cancel) { m_cancel = std::move(cancel); }

    /// Shows the sheet on `window`, which owns it until it is closed.
    void beginSheet(QWidget *window);
    void endSheet();
    /// The sheet while it is shown, else null.
    QDialog *window() const { return m_window; }

private:
    void awakeFromNib();
    void addCancelButton();

    QString m_title;
    double m_progressMax = std::numeric_limits<double>::quiet_NaN();
    double m_currentProgress = std::numeric_limits<double>::quiet_NaN();
    std::function<void()> m_cancel;
    QPointer<QDialog> m_window;
    QPointer<QLabel> titleLabel;
    QPointer<QProgressBar> progressIndicator;
};
