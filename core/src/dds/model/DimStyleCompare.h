// Walks over the whole catalogue on two holders of dimension values: whether
// they differ, the listing of the differences or of all values, and copying a
// full set of values between a style record and the drawing's current settings.
//
// A side that is not given (null) is the active drawing's current settings.
// Listings are flat lists of cells read in rows of a fixed width, sorted by the
// folded variable name.
#pragma once

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDimVarSource.h"
#include "vextempl.h"
#include "vextypes.h"

namespace dds {

using DimVarCells = VexArray<CXStringW>;

// Row widths of the listings.
inline constexpr int kDiffColumns = 3;          // name, first value, second value
inline constexpr int kDiffColumnsDescribed = 4; // ... then the description
inline constexpr int kValueColumns = 2;         // name, value
inline constexpr int kValueColumnsDescribed = 3;

// Whether any variable of the style differs from the current settings. Stops at
// the first difference. False when both sides are the same holder.
bool HasOverrides(const OdDbDimStyleTableRecord* pStyle, const OdDbDatabase* pDb = nullptr);

// The differences between two sides, one row per differing variable. When a side
// is missing even after the substitution, `out` is left as it was; otherwise it
// is replaced (and stays empty when both sides are the same holder).
void ListDifferencesCurrentStyle(const OdDbDatabase* pDb, const OdDbDimStyleTableRecord* pSecond, DimVarCells& out,
                                 bool withDescriptions);
void ListDifferencesStyleStyle(const OdDbDimStyleTableRecord* pFirst, const OdDbDimStyleTableRecord* pSecond,
                               DimVarCells& out, bool withDescriptions);
void ListDifferencesStyleCurrent(const OdDbDimStyleTableRecord* pFirst, const OdDbDatabase* pDb, DimVarCells& out,
                                 bool withDescriptions);
// Picks the variant: no first → current settings against the second; both →
// record against record; no second → the first against current settings; neither
// → nothing at all (`out` untouched).
void ListDifferences(const OdDbDimStyleTableRecord* pFirst, const OdDbDimStyleTableRecord* pSecond, DimVarCells& out,
                     bool withDescriptions);

// All 78 values of one side, alphabetically; `out` is replaced.
void ListStyleValues(const OdDbDimStyleTableRecord* pStyle, DimVarCells& out, bool withDescriptions);
void ListStyleValues(const OdDbObjectId& styleId, DimVarCells& out, bool withDescriptions);
void ListCurrentValues(const OdDbDatabase* pDb, DimVarCells& out, bool withDescriptions);

// Every variable of the record becomes the current setting.
VxResult CopyStyleToCurrent(OdDbDatabase* pDb, const OdDbDimStyleTableRecord* pStyle);
// Every current setting is written into the record, which the caller has opened for write.
VxResult CopyCurrentToStyle(OdDbDimStyleTableRecord* pStyle, const OdDbDatabase* pDb);

// The walks behind the operations above, over any two holders of a full set of
// values (style records, current settings, a dimension with its overrides, of
// one drawing or of two). No side is substituted here.
bool DimVarsDiffer(const OdDimVarSource& a, const OdDimVarSource& b);
void ListDimVarDifferences(const OdDimVarSource* pFirst, const OdDimVarSource* pSecond, DimVarCells& out,
                           bool withDescriptions);
void ListDimVarValues(const OdDimVarSource& side, DimVarCells& out, bool withDescriptions);
// Writes the variables of `from` that differ into `to`.
void CopyDimVars(const OdDimVarSource& from, OdDimVarSource& to);

}  // namespace dds
