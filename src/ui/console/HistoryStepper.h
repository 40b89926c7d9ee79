#pragma once

#include <QSpinBox>

/// Picks an entry of the command history: -1 means none, 0 the newest, and so on back in time.
class HistoryStepper : public QSpinBox
{
    Q_OBJECT
public:
    explicit HistoryStepper(QWidget *parent = nullptr);

    /// Brings the stepper back to "none" or to another range without announcing a change.
    void setCount(int entryCount);
    void reset();

protected:
    QString textFromValue(int value) const override;
};
