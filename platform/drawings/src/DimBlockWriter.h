// Writing a dimension's computed items into its block as entities.
#pragma once

#include <vector>

#include "DimGeometryImpl.h"
#include "drawings/OdDbSymbolTable.h"

namespace dimgeom {

// Makes the block's entities the items, in order, on the dimension's layer
// (definition points on "Defpoints", made when missing). Old entities are reused
// while their kinds match and the rest erased, so undo brings the old block back.
// Throws eInvalidInput when the block is a layout.
void writeBlockItems(OdDbDatabase& db, OdDbBlockTableRecord& block, const OdDbDimension& dim,
                     const std::vector<Item>& items);

}  // namespace dimgeom
