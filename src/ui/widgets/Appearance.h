#pragma once

#include <QString>

/// Light or dark, whatever the desktop says.
namespace Appearance
{
/// @param name  "light", "dark", or anything else for what the desktop chose.
void apply(const QString &name);
} // namespace Appearance
