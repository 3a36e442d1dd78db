// How a dimension variable's value is spelled in a DXF tag: numbers, strings,
// colour indices, and references as handles or as names, by the tag's code.
#pragma once

#include <optional>
#include <string>

#include "drawings/OdDimVarSource.h"

class OdDbDatabase;

namespace dimvarstore {

// What a reference tag holds.
enum class RefForm { Handle, Name };

// The form of a reference stored under `code`: handles in 320–369 and 1005, names otherwise.
RefForm refFormOf(int code);

// The value of `row` from the text of a tag with `code`. `degrees`: the tag holds an
// angle in degrees (DIMSTYLE's DIMJOGANG) while values are radians.
OdDimVarValue decode(const DimVarDefault& row, int code, const std::string& text, const OdDbDatabase* db, bool degrees);
// The text of a tag with `code` for `value`.
std::string encode(const DimVarDefault& row, int code, const OdDimVarValue& value, const OdDbDatabase* db, bool degrees);
// The built-in value of `row` (imperial: what an absent DIMSTYLE code means).
OdDimVarValue builtIn(const DimVarDefault& row, const OdDbDatabase* db, bool metric = false);

// The table whose records a reference variable names.
OdDbObjectId tableOf(const DimVarDefault& row, const OdDbDatabase* db);
// A record by name in that table; arrow names may lack their leading underscore.
OdDbObjectId lookup(const DimVarDefault& row, const OdDbDatabase* db, const OdString& name);
// The name a reference is stored under ("" for a null id).
OdString nameOf(const OdDbObjectId& id);

// The variables that R2000/R2004 records keep as extended data.
struct XdataSlot {
  const char* app;
  int pseudoCode;  // the 1070 that announces the value
  int valueCode;   // 1005 handle, 1070 integer, 1040 real, 1004 colour
};
const XdataSlot* xdataSlot(const DimVarDefault& row);

}  // namespace dimvarstore
