#pragma once

#include "XmlDocument.h"

/// What every file of rotations is read within, and what it must keep within to be written.
inline constexpr XmlReading rotationReading{32 * 1024 * 1024, 500'000, true};

/// @return the text of the last direct child with that name, without what XML cannot hold; null when there is none.
QString rotationText(pugi::xml_node element, const char *name);
/// @return whether XML can hold every character of the text: no control characters, no halves of characters.
bool isStorableText(const QString &text);
