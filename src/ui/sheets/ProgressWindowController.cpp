#include "ProgressWindowController.h"

#include "Named.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

namespace
{
/// Ends with its task: Escape can but ask the task to end.
class ProgressSheet final : public QDialog
{
public:
    using QDialog::QDialog;
    void reject() override
    {
        if (auto *cancelButton = findChild<QPushButton *>(QStringLiteral("cancelButton")))
            cancelButton->click();
    }

protected:
    bool event(QEvent *event) override
    {
        // An alert over the sheet leaves the focus to the window below, which would get the Escape key.
        if (event->type() == QEvent::WindowUnblocked)
            QTimer::singleShot(0, this, &QWidget::activateWindow);
        return QDialog::event(event);
    }
};
} // namespace

ProgressWindowController::ProgressWindowController(QWidget *view) : m_view(view) {}

ProgressWindowController::~ProgressWindowController()
{
    endSheet();
}

void ProgressWindowController::begin(const QString &title, std::function<void()> cancel)
{
    endSheet();
    setTitle(title);
    setProgressMax(100); // until the task tells its length
    setCurrentProgress(0);
    setCancel(std::move(cancel));
    beginSheet(m_view->window());
}

void ProgressWindowController::setDone(qsizetype done, qsizetype total)
{
    setProgressMax(static_cast<double>(total));
    setCurrentProgress(static_cast<double>(done));
}

void ProgressWindowController::end()
{
    endSheet();
}

void ProgressWindowController::setTitle(const QString &title)
{
    m_title = title;
    awakeFromNib();
}

void ProgressWindowController::setProgressMax(double progressMax)
{
    m_progressMax = progressMax;
    awakeFromNib();
}

void ProgressWindowController::setCurrentProgress(double currentProgress)
{
    m_currentProgress = currentProgress;
    awakeFromNib();
}

void ProgressWindowController::beginSheet(QWidget *window)
{
    m_window = new ProgressSheet(window, Qt::Sheet);
    m_window->setObjectName(QStringLiteral("ProgressWindowController"));
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    m_window->setWindowModality(Qt::WindowModal);
    titleLabel = named("titleLabel", new QLabel(m_window));
    titleLabel->setTextFormat(Qt::PlainText);
    progressIndicator = named("progressIndicator", new QProgressBar(m_window), QDialog::tr("Progress"));
    progressIndicator->setMinimumWidth(320);
    auto *layout = new QVBoxLayout(m_window);
    layout->addWidget(titleLabel);
    layout->addWidget(progressIndicator);
    if (m_cancel)
        addCancelButton();
    awakeFromNib();
    m_window->open();
}

void ProgressWindowController::addCancelButton()
{
    auto *cancelButton = named("cancelButton", new QPushButton(QDialog::tr("Cancel"), m_window));
    QObject::connect(cancelButton, &QPushButton::clicked, cancelButton, [cancelButton, cancel = m_cancel] {
        cancelButton->setEnabled(false);
        cancel();
    });
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cancelButton);
    static_cast<QVBoxLayout *>(m_window->layout())->addLayout(row);
}

void ProgressWindowController::awakeFromNib()
{
    if (m_window == nullptr)
        return;
    titleLabel->setText(m_title);
    m_window->setWindowTitle(m_title);
    if (!std::isnan(m_progressMax))
        progressIndicator->setMaximum(static_cast<int>(m_progressMax));
    if (!std::isnan(m_currentProgress))
        progressIndicator->setValue(static_cast<int>(m_currentProgress));
}

void ProgressWindowController::endSheet()
{
    if (m_window != nullptr)
        m_window->accept();
    m_window.clear();
}
