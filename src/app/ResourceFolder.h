#pragma once

#include <QString>

/// @return the folder of the shipped catalogues: where the program is installed, in its bundle, or the source tree's
///         for a program that runs where it was built. Needs a QCoreApplication.
QString resourceFolder();

/// @return the file of the user's guide: where the program is installed, in its bundle, or in the source tree; empty if
///         it is in none of these places. Needs a QCoreApplication.
QString guideFile();
