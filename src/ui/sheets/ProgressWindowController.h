#pragma once

#include "Progress.h"

#include <QDialog>
#include <QPointer>
#include <QString>

#include <functional>
#include <limits>
#include <utility>

class QLabel;
class QProgressBar;

/// The progress sheet of a long task. Its values may be set before the sheet is shown and are applied then;
/// a value that was never set (not a number) leaves the indicator alone.
class ProgressWindowController final : public Progress
{
public:
    /// @param view  begin() shows the sheet on its window, and it outlives this; not needed for beginSheet().
    explicit ProgressWindowController(QWidget *view = nullptr);
    ~ProgressWindowController() override;

    void begin(const QString &title, std::function<void()> cancel) override;
    void setDone(qsizetype done, qsizetype total) override;
    void end() override;

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
    /// Shows the values in the sheet, if there is one.
    void awakeFromNib();
    void addCancelButton();

    QWidget *m_view;
    QString m_title;
    double m_progressMax = std::numeric_limits<double>::quiet_NaN();
    double m_currentProgress = std::numeric_limits<double>::quiet_NaN();
    std::function<void()> m_cancel;
    QPointer<QDialog> m_window;
    QLabel *titleLabel = nullptr; ///< of the sheet while it is shown, as is the next
    QProgressBar *progressIndicator = nullptr;
};
