// The current dimension style, the overrides (current settings that differ from
// it) and child styles: a parent's variant for one kind of dimension, named
// parent + "$" + kind code.
#pragma once

#include <span>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "vextempl.h"
#include "vextypes.h"

namespace dds {

// One row of a printed or traced variable list.
struct DimVarTriple {
  CXStringW name;  // folded full name, "DIMASZ"
  CXStringW value;
  CXStringW description;  // empty when listed without descriptions
};
using DimVarList = VexArray<DimVarTriple>;

// Kind codes of child styles, in the order a style family is gathered.
enum ChildKind : int {
  kChildLinear = 0,
  kChildAngular = 2,
  kChildDiameter = 3,
  kChildRadius = 4,
  kChildOrdinate = 6,
  kChildLeader = 7,
};
inline constexpr int kChildKinds[] = {kChildLinear, kChildAngular, kChildDiameter,
                                      kChildRadius, kChildOrdinate, kChildLeader};

// Makes the style current with its values as the current settings. S_FALSE when
// it is current already (nothing changes, nothing is asked); E_ABORT when the
// user declines to discard existing overrides; E_INVALIDARG without a drawing;
// E_FAIL when the current style cannot be opened or the id is no style.
VxResult MakeCurrent(OdDbDatabase* pDb, const OdDbObjectId& styleId);

// The question MakeCurrent asks before overrides are discarded.
CXStringW DiscardOverridesQuestion();

// Appends one triple per variable whose current setting differs from the style,
// alphabetically, with the current (overriding) value and the description.
void CollectOverrides(const OdDbDimStyleTableRecord* pStyle, const OdDbDatabase* pDb, DimVarList& list);
// Appends a triple for every variable of the current settings, alphabetically.
void ListCurrentSettings(const OdDbDatabase* pDb, DimVarList& list, bool withDescriptions);

// The current style's values become the current settings again.
VxResult DiscardOverrides(OdDbDatabase* pDb);
// The current settings are written into the current style record.
VxResult SaveOverridesToCurrentStyle(OdDbDatabase* pDb);
// The current settings are written into the style, which then becomes current.
VxResult SaveOverridesToStyle(OdDbDatabase* pDb, const OdDbObjectId& styleId);

// Whether the style is a child style; if so its kind code and its parent's name.
bool ParseChildName(const OdDbObjectId& styleId, int* pCode = nullptr, CXStringW* pParentName = nullptr);
// The same for a name, against the dimension style table that would hold it.
bool ParseChildName(const OdDbSymbolTable& table, const OdString& name, int* pCode = nullptr,
                    CXStringW* pParentName = nullptr);
// "%s$%d" of the parent's name and the kind code.
CXStringW ChildStyleName(const OdString& parentName, int code);

// The style's existing children in the order of kChildKinds, then the style itself.
VexArray<OdDbObjectId> GatherStyleFamily(const OdDbObjectId& styleId);

// Renames the style and every existing child of it (externally referenced
// records excepted) after the new name. E_INVALIDARG, changing nothing, when a
// new name is empty or taken by another style.
VxResult RenameStyleFamily(const OdDbObjectId& styleId, const OdString& newName);

// Trace log: "Dimension Style overrides" and one "name = value" line per current setting.
void TraceCurrentSettings(const OdDbDatabase* pDb);
// Trace log: "Dimension Style " + the style's name and one "name = value" line per variable.
void TraceStyleValues(const OdDbDimStyleTableRecord* pStyle);

}  // namespace dds
