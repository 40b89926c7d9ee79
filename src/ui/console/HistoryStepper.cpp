#include "HistoryStepper.h"

#include <QLineEdit>
#include <QSignalBlocker>

HistoryStepper::HistoryStepper(QWidget *parent) : QSpinBox(parent)
{
    setObjectName(QStringLiteral("numericUpDownCommandCursor"));
    setAccessibleName(tr("Command history"));
    setToolTip(
        tr("Steps through the commands that were sent, newest first. Up and Down in the command line do the same."));
    setRange(-1, -1);
    lineEdit()->setReadOnly(true);
    setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("000000")) + 40);
}

void HistoryStepper::setCount(int entryCount)
{
    const QSignalBlocker blocker(this);
    setRange(-1, entryCount - 1);
}

void HistoryStepper::reset()
{
    const QSignalBlocker blocker(this);
    setValue(-1);
}

QString HistoryStepper::textFromValue(int value) const
{
    return value < 0 ? tr("New") : QStringLiteral("−%1").arg(value + 1);
}
