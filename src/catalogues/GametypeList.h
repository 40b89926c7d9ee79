#pragma once

#include "DvarSettingList.h"

/// A gametype's settings. A name for the kind of list alone: catalogues hold plain lists.
class GametypeList : public DvarSettingList
{
};
