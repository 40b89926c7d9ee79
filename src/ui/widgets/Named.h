#pragma once

#include <QWidget>

/// Gives a control, as it is made, the names by which tests and screen readers find it.
/// @param accessibleName  for a control whose own text does not tell what it is.
template <typename Control>
Control *named(const char *objectName, Control *control, const QString &accessibleName = {})
{
    control->setObjectName(QLatin1String(objectName));
    if (!accessibleName.isEmpty())
        control->setAccessibleName(accessibleName);
    return control;
}
