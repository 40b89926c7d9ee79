#pragma once

#include <QString>

/// Whether the value of this variable is a password, as far as its name tells. Also of passwords that no catalogue
/// knows: what is shown may be seen over a shoulder, and what is copied is pasted. Any thread.
bool holdsPassword(const QString &dvar);
