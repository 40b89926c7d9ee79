#include "FilterField.h"

#include <QToolButton>

FilterField::FilterField(const QString &name, QWidget *parent) : QLineEdit(parent)
{
    setAccessibleName(name);
    setPlaceholderText(name);
    setClearButtonEnabled(true);
    // Qt gives the clear button no name, so screen readers would pass over it.
    if (auto *clearButton = findChild<QToolButton *>())
        clearButton->setAccessibleName(tr("Clear"));
}
