#include "StatusLine.h"

#include <chrono>

using namespace std::chrono_literals;

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent), toolStripStatusLabelMain(new QLabel(this)), m_busyIndicator(new QProgressBar(this)),
      m_progressLabel(new QLabel(this))
{
    setObjectName(QStringLiteral("statusLine"));
    setSizeGripEnabled(false);
    toolStripStatusLabelMain->setObjectName(QStringLiteral("toolStripStatusLabelMain"));
    toolStripStatusLabelMain->setTextFormat(Qt::PlainText);
    toolStripStatusLabelMain->setContentsMargins(6, 0, 6, 0);
    m_busyIndicator->setObjectName(QStringLiteral("busyIndicator"));
    m_busyIndicator->setAccessibleName(tr("Busy"));
    m_busyIndicator->setFixedWidth(90);
    m_busyIndicator->setMaximumHeight(toolStripStatusLabelMain->sizeHint().height());
    m_busyIndicator->setRange(0, 0);
    m_busyIndicator->setTextVisible(false);
    m_busyIndicator->hide();
    addWidget(toolStripStatusLabelMain, 1);
    m_progressLabel->setObjectName(QStringLiteral("progressLabel"));
    m_progressLabel->setTextFormat(Qt::PlainText);
    m_progressLabel->hide();
    addPermanentWidget(m_progressLabel);
    addPermanentWidget(m_busyIndicator);

    m_delay.setSingleShot(true);
    m_delay.setInterval(150ms);
    connect(&m_delay, &QTimer::timeout, this, &StatusLine::showBusy);
}

void StatusLine::setBusy(bool isBusy)
{
    m_isBusy = isBusy;
    if (m_busyIndicator->isHidden() == isBusy)
        m_delay.start();
    else
        m_delay.stop();
}

void StatusLine::showBusy()
{
    m_busyIndicator->setVisible(m_isBusy);
}

void StatusLine::setProgress(int done, int total)
{
    m_progressLabel->setText(tr("%1 of %n settings", nullptr, total).arg(done));
    m_progressLabel->setVisible(done < total);
}
