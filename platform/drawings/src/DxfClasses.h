// Which class the loader makes for a DXF name.
#pragma once

#include <string_view>

#include "drawings/OdRxObject.h"

struct DxfTableKind {
  const OdRxClass* table;
  const OdRxClass* record;
  int slot;  // index into the database's table ids
};

// The table named by a TABLE's code 2 ("LAYER", ...); null for an unknown table.
const DxfTableKind* dxfTableKind(std::string_view tableName);
// Entities and objects we do not type yet are kept as their tags.
// `typeCode`: the entity's first code 70 (a DIMENSION's type).
const OdRxClass* dxfEntityClass(std::string_view dxfName, int typeCode = 0);
const OdRxClass* dxfObjectClass(std::string_view dxfName);
