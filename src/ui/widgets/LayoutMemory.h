#pragma once

class Preferences;
class QWidget;

/// How the parts of a window were left: widths, order and sorting of the columns of every table and outline, and where
/// its splitters stand. Each is kept by its object name; what has none is not kept.
namespace LayoutMemory
{
/// Also reads what former versions kept. Where nothing that can be read is kept, a part stays as it is.
void restore(QWidget &window, const Preferences &preferences);
void save(const QWidget &window, Preferences &preferences);
} // namespace LayoutMemory
