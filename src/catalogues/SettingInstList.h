#pragma once

#include "DvarSettingList.h"

/// A group of game settings. A name for the kind of list alone: catalogues hold plain lists.
class SettingInstList : public DvarSettingList
{
};
