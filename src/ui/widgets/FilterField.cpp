#include "FilterField.h"

#include <QToolButton>

FilterField::FilterField(const QString &name, QWidget *parent) : QLineEdit(parent)
{
    setAccessibleName(name);
    setPlaceholderText(name);
    setClearButtonEnabled(true);
    setMinimumWidth(220);
    // Qt gives its button no name, so that a screen reader would say nothing of it.
    if (auto *clearButton = findChild<QToolButton *>())
        clearButton->setAccessibleName(tr("Clear"));
}
