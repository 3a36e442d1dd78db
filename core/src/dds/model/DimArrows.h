// The arrowhead catalogue: the standard arrowhead blocks in the order the
// arrow pickers list them, each with the resource id of its display name.
#pragma once

#include <span>

#include "drawings/OdString.h"
#include "vextypes.h"

namespace dds {

struct ArrowheadInfo {
  const wchar_t* blockName;  // "" is the default arrow, which has no block
  int nameId;                // string resource of the display name
};

// The twenty standard arrowheads in list order.
std::span<const ArrowheadInfo> ArrowheadTable();

// The catalogue row of a block name, compared exactly (case-sensitive), or null.
const ArrowheadInfo* FindArrowhead(const OdString& blockName);

// The localized display name of a standard arrowhead; any other block name
// comes back as it is.
CXStringW ArrowDisplayName(const OdString& blockName);

}  // namespace dds
