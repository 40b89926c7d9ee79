#pragma once

#include "ElidingLabel.h"
#include "Outcome.h"

#include <QTimer>

/// The part of the status line that tells for ten seconds what became of the last thing that was done.
class OutcomeLabel : public ElidingLabel
{
    Q_OBJECT
public:
    explicit OutcomeLabel(QWidget *parent = nullptr);

    void tell(const Outcome &outcome);
    void forget();

private:
    QTimer m_timer;
};
