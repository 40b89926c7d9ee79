#include "StatusLine.h"

#include <chrono>

using namespace std::chrono_literals;

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent), toolStripStatusLabelMain(new QLabel(this)), m_busyIndicator(new QProgressBar(this))
{
    setObjectName(QStringLiteral("statusLine"));
    setSizeGripEnabled(false);
    toolStripStatusLabelMain->setObjectName(QStringLiteral("toolStripStatusLabelMain"));
    toolStripStatusLabelMain->setTextFormat(Qt::PlainText);
    toolStripStatusLabelMain->setContentsMargins(6, 0, 6, 0);
    m_busyIndicator->setObjectName(QStringLiteral("busyIndicator"));
    m_busyIndicator->setAccessibleName(tr("Busy"));
    m_busyIndicator->setFixedWidth(140);
    m_busyIndicator->setMaximumHeight(toolStripStatusLabelMain->sizeHint().height());
    m_busyIndicator->setRange(0, 0);
    m_busyIndicator->setTextVisible(false);
    m_busyIndicator->hide();
    addWidget(toolStripStatusLabelMain, 1);
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
    if (!m_isBusy)
        clearProgress();
}

void StatusLine::clearProgress()
{
    m_busyIndicator->setRange(0, 0);
    m_busyIndicator->setTextVisible(false);
}

void StatusLine::setProgress(int done, int total)
{
    m_busyIndicator->setRange(0, total);
    m_busyIndicator->setValue(done);
    m_busyIndicator->setFormat(tr("%1 of %2 settings").arg(done).arg(total));
    m_busyIndicator->setTextVisible(true);
}
