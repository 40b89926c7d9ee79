#include "OutcomeLabel.h"

using namespace std::chrono_literals;

OutcomeLabel::OutcomeLabel(QWidget *parent) : ElidingLabel(parent)
{
    setObjectName(QStringLiteral("outcomeLabel"));
    m_timer.setSingleShot(true);
    m_timer.setInterval(10s);
    connect(&m_timer, &QTimer::timeout, this, &OutcomeLabel::forget);
    hide();
}

void OutcomeLabel::tell(const Outcome &outcome)
{
    showText(outcome.summary()); // which a screen reader takes for the label's name
    show();
    m_timer.start();
}

void OutcomeLabel::forget()
{
    m_timer.stop();
    showText({});
    hide();
}
