#define VEX_SRCFILE "dds"
#include "model/DimStyleCompare.h"

#include "host/HostServices.h"
#include "model/DimVarTable.h"

namespace dds {

namespace {

const OdDimVarSource* sideOrCurrent(const OdDimVarSource* side) {
  return side ? side : hostActiveDatabase();
}

}  // namespace

void ListDimVarDifferences(const OdDimVarSource* pFirst, const OdDimVarSource* pSecond, DimVarCells& out,
                           bool withDescriptions) {
  if (!pFirst || !pSecond) return;
  out.clear();
  // A record and the database are different holders, so only two records (or
  // the database twice) can be the same one.
  if (pFirst == pSecond) return;

  const auto w = static_cast<std::size_t>(withDescriptions ? kDiffColumnsDescribed : kDiffColumns);
  // Rows are placed at their sorted positions and the gaps dropped afterwards,
  // so the differences come out alphabetically without a sort.
  DimVarCells scratch(kDimVarCount * w);
  for (const DimVarInfo& v : DimVarTable) {
    const OdDimVarValue a = v.get(*pFirst), b = v.get(*pSecond);
    if (!v.differ(a, b)) continue;
    const CXStringW name = v.foldedName();
    const std::size_t p = static_cast<std::size_t>(DimVarSortedPosition(name)) * w;
    scratch[p] = name;
    scratch[p + 1] = v.format(a);
    scratch[p + 2] = v.format(b);
    if (withDescriptions) scratch[p + 3] = v.description();
  }
  for (std::size_t p = 0; p < scratch.size(); p += w) {
    if (scratch[p].IsEmpty()) continue;
    out.insert(out.end(), scratch.begin() + static_cast<std::ptrdiff_t>(p),
               scratch.begin() + static_cast<std::ptrdiff_t>(p + w));
  }
}

void ListDimVarValues(const OdDimVarSource& side, DimVarCells& out, bool withDescriptions) {
  const auto w = static_cast<std::size_t>(withDescriptions ? kValueColumnsDescribed : kValueColumns);
  out.assign(kDimVarCount * w, CXStringW());
  for (const DimVarInfo& v : DimVarTable) {
    const CXStringW name = v.foldedName();
    const std::size_t p = static_cast<std::size_t>(DimVarSortedPosition(name)) * w;
    out[p] = name;
    out[p + 1] = v.format(v.get(side));
    if (withDescriptions) out[p + 2] = v.description();
  }
}

// Equal values are left alone, so that a copy changes (and marks for undo and
// saving) only what really differs.
void CopyDimVars(const OdDimVarSource& from, OdDimVarSource& to) {
  for (const DimVarInfo& v : DimVarTable) {
    const OdDimVarValue value = v.get(from);
    if (v.differ(value, v.get(to))) v.set(to, value);
  }
}

bool DimVarsDiffer(const OdDimVarSource& a, const OdDimVarSource& b) {
  if (&a == &b) return false;
  for (const DimVarInfo& v : DimVarTable) {
    if (v.differ(v.get(a), v.get(b))) return true;
  }
  return false;
}

bool HasOverrides(const OdDbDimStyleTableRecord* pStyle, const OdDbDatabase* pDb) {
  const OdDimVarSource* a = sideOrCurrent(pStyle);
  const OdDimVarSource* b = sideOrCurrent(pDb);
  return a && b && DimVarsDiffer(*a, *b);
}

void ListDifferencesCurrentStyle(const OdDbDatabase* pDb, const OdDbDimStyleTableRecord* pSecond, DimVarCells& out,
                                 bool withDescriptions) {
  ListDimVarDifferences(sideOrCurrent(pDb), sideOrCurrent(pSecond), out, withDescriptions);
}

void ListDifferencesStyleStyle(const OdDbDimStyleTableRecord* pFirst, const OdDbDimStyleTableRecord* pSecond,
                               DimVarCells& out, bool withDescriptions) {
  ListDimVarDifferences(sideOrCurrent(pFirst), sideOrCurrent(pSecond), out, withDescriptions);
}

void ListDifferencesStyleCurrent(const OdDbDimStyleTableRecord* pFirst, const OdDbDatabase* pDb, DimVarCells& out,
                                 bool withDescriptions) {
  ListDimVarDifferences(sideOrCurrent(pFirst), sideOrCurrent(pDb), out, withDescriptions);
}

void ListDifferences(const OdDbDimStyleTableRecord* pFirst, const OdDbDimStyleTableRecord* pSecond, DimVarCells& out,
                     bool withDescriptions) {
  if (!pFirst && pSecond) ListDifferencesCurrentStyle(nullptr, pSecond, out, withDescriptions);
  else if (pFirst && pSecond) ListDifferencesStyleStyle(pFirst, pSecond, out, withDescriptions);
  else if (pFirst) ListDifferencesStyleCurrent(pFirst, nullptr, out, withDescriptions);
}

void ListStyleValues(const OdDbDimStyleTableRecord* pStyle, DimVarCells& out, bool withDescriptions) {
  if (!pStyle) {
    ListCurrentValues(nullptr, out, withDescriptions);
    return;
  }
  ListDimVarValues(*pStyle, out, withDescriptions);
}

void ListStyleValues(const OdDbObjectId& styleId, DimVarCells& out, bool withDescriptions) {
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId);
  RETERRIF3VOID(!pStyle);
  ListDimVarValues(*pStyle, out, withDescriptions);
}

void ListCurrentValues(const OdDbDatabase* pDb, DimVarCells& out, bool withDescriptions) {
  const OdDimVarSource* pCurrent = sideOrCurrent(pDb);
  RETERRIF3VOID(!pCurrent);
  ListDimVarValues(*pCurrent, out, withDescriptions);
}

VxResult CopyStyleToCurrent(OdDbDatabase* pDb, const OdDbDimStyleTableRecord* pStyle) {
  if (!pDb) pDb = hostActiveDatabase();
  RETERRIF(!pDb, E_INVALIDARG);
  RETERRIF(!pStyle, E_INVALIDARG);
  CopyDimVars(*pStyle, *pDb);
  return S_OK;
}

VxResult CopyCurrentToStyle(OdDbDimStyleTableRecord* pStyle, const OdDbDatabase* pDb) {
  if (!pDb) pDb = hostActiveDatabase();
  RETERRIF(!pDb, E_INVALIDARG);
  RETERRIF(!pStyle, E_INVALIDARG);
  RETERRIF(!pStyle->isWriteEnabled(), E_INVALIDARG);
  CopyDimVars(*pDb, *pStyle);
  return S_OK;
}

}  // namespace dds
