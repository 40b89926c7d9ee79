#pragma once

#include "XmlDocument.h"

/// What every file of rotations is read within, and what it must keep within to be written.
inline constexpr XmlReading rotationReading{32 * 1024 * 1024, 500'000, true};

/// @return the text of the last direct child with that name, without what XML cannot hold; null when there is none.
QString rotationText(pugi::xml_node element, const char *name);
/// Adds a child that holds `text`.
void appendTextElement(pugi::xml_node parent, const char *name, const QString &text);
/// @return whether XML can hold every character of the text: no control characters, no halves of characters.
bool isStorableText(const QString &text);
/// @return the document as UTF-8, without a declaration and without blanks between its elements.
QByteArray documentBytes(const pugi::xml_document &document);
