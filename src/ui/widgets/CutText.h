#pragma once

#include <QString>

/// Texts that may be longer than the place where they are shown.
namespace CutText
{
/// Characters that are drawn: no screen has room for more, and laying out a long text takes a while.
inline constexpr qsizetype LongestShown = 1000;
/// Characters that a tooltip tells.
inline constexpr qsizetype LongestToolTip = 1500;

/// The tooltip that tells a text in full: it wraps, and what looks like markup is shown as it is.
QString toolTip(const QString &text);
} // namespace CutText
