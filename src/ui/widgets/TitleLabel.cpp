#include "TitleLabel.h"

#include <QLabel>

QLabel *titleOf(const QString &text, QWidget *control)
{
    auto *label = new QLabel(text, control->parentWidget());
    label->setBuddy(control);
    return label;
}
