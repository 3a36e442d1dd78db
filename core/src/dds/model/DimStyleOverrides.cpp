#define VEX_SRCFILE "dds"
#include "model/DimStyleOverrides.h"

#include <algorithm>

#include "drawings/OdResult.h"
#include "host/HostServices.h"
#include "host/HostTrace.h"
#include "model/DimStyleCompare.h"
#include "model/DimVarTable.h"
#include "res/DdsStrings.h"

namespace dds {

namespace {

OdDbDimStyleTableRecordPtr openCurrentStyle(const OdDbDatabase& db, OdDb::OpenMode mode = OdDb::kForRead) {
  return odOpen<OdDbDimStyleTableRecord>(db.dimstyle(), mode);
}

void appendTriples(const DimVarCells& cells, int width, int valueColumn, int descriptionColumn, DimVarList& list) {
  for (std::size_t p = 0; p + static_cast<std::size_t>(width) <= cells.size(); p += static_cast<std::size_t>(width)) {
    DimVarTriple t;
    t.name = cells[p];
    t.value = cells[p + static_cast<std::size_t>(valueColumn)];
    if (descriptionColumn >= 0) t.description = cells[p + static_cast<std::size_t>(descriptionColumn)];
    list.push_back(std::move(t));
  }
}

void traceValues(const DimVarCells& cells) {
  for (std::size_t p = 0; p + kValueColumns <= cells.size(); p += kValueColumns) {
    hostTrace(L"%s = %s", cells[p].c_str(), cells[p + 1].c_str());
  }
}

bool isChildKind(int code) {
  return std::find(std::begin(kChildKinds), std::end(kChildKinds), code) != std::end(kChildKinds);
}

}  // namespace

// ---------------------------------------------------------------- current style

CXStringW DiscardOverridesQuestion() {
  return ddsString(IDS_DISCARD_OVERRIDES) + L"\n\n" + ddsString(IDS_CONTINUE);
}

VxResult MakeCurrent(OdDbDatabase* pDb, const OdDbObjectId& styleId) {
  RETERRIF(!pDb, E_INVALIDARG);
  OdDbDimStyleTableRecordPtr pCurrent = openCurrentStyle(*pDb);
  RETERRIF(!pCurrent, E_FAIL);
  if (styleId == pCurrent->objectId()) return S_FALSE;
  // Checked before the question, so that the user is never asked in vain.
  RETERRIF(styleId.database() != pDb, E_INVALIDARG);
  RETERRIF(!odOpen<OdDbDimStyleTableRecord>(styleId), E_FAIL);
  if (HasOverrides(pCurrent.get(), pDb) && !hostAskYesNo(DiscardOverridesQuestion().str())) return E_ABORT;
  try {
    pDb->setDimstyleData(styleId);
  } catch (const OdError& e) {
    return LOGERR(E_FAIL, CXStringW::FromUtf8(e.what()));
  }
  return S_OK;
}

void CollectOverrides(const OdDbDimStyleTableRecord* pStyle, const OdDbDatabase* pDb, DimVarList& list) {
  if (!pDb) pDb = hostActiveDatabase();
  RETERRIF3VOID(!pDb);
  OdDbDimStyleTableRecordPtr pCurrent;
  if (!pStyle) {
    pCurrent = openCurrentStyle(*pDb);
    pStyle = pCurrent.get();
  }
  RETERRIF3VOID(!pStyle);
  DimVarCells cells;
  ListDifferencesStyleCurrent(pStyle, pDb, cells, true);
  // The value shown is the current one: the override, not what it overrides.
  appendTriples(cells, kDiffColumnsDescribed, 2, 3, list);
}

void ListCurrentSettings(const OdDbDatabase* pDb, DimVarList& list, bool withDescriptions) {
  DimVarCells cells;
  ListCurrentValues(pDb, cells, withDescriptions);
  appendTriples(cells, withDescriptions ? kValueColumnsDescribed : kValueColumns, 1, withDescriptions ? 2 : -1, list);
}

VxResult DiscardOverrides(OdDbDatabase* pDb) {
  if (!pDb) pDb = hostActiveDatabase();
  RETERRIF(!pDb, E_INVALIDARG);
  OdDbDimStyleTableRecordPtr pStyle = openCurrentStyle(*pDb);
  RETERRIF(!pStyle, E_FAIL);
  return CopyStyleToCurrent(pDb, pStyle.get());
}

VxResult SaveOverridesToCurrentStyle(OdDbDatabase* pDb) {
  if (!pDb) pDb = hostActiveDatabase();
  RETERRIF(!pDb, E_INVALIDARG);
  OdDbDimStyleTableRecordPtr pStyle = openCurrentStyle(*pDb, OdDb::kForWrite);
  RETERRIF(!pStyle, E_FAIL);
  return CopyCurrentToStyle(pStyle.get(), pDb);
}

VxResult SaveOverridesToStyle(OdDbDatabase* pDb, const OdDbObjectId& styleId) {
  if (!pDb) pDb = hostActiveDatabase();
  RETERRIF(!pDb, E_INVALIDARG);
  RETERRIF(styleId.database() != pDb, E_INVALIDARG);
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId, OdDb::kForWrite);
  RETERRIF(!pStyle, E_FAIL);
  // Copied before the style becomes current: settings that the drawing's
  // version keeps only in the current style are read from the old one.
  const VxResult r = CopyCurrentToStyle(pStyle.get(), pDb);
  if (FAILED(r)) return r;
  pDb->setDimstyle(styleId);
  return S_OK;
}

// ---------------------------------------------------------------- child styles

CXStringW ChildStyleName(const OdString& parentName, int code) {
  CXStringW s;
  s.Format(L"%s$%d", parentName.c_str(), code);
  return s;
}

bool ParseChildName(const OdDbSymbolTable& table, const OdString& name, int* pCode, CXStringW* pParentName) {
  const int n = name.getLength();
  if (n < 3 || name.getAt(n - 2) != L'$') return false;
  const wchar_t last = name.getAt(n - 1);
  if (last < L'0' || last > L'9') return false;
  const int code = last - L'0';
  if (!isChildKind(code)) return false;
  const OdString parent = name.left(n - 2);
  if (!table.has(parent)) return false;
  if (pCode) *pCode = code;
  if (pParentName) *pParentName = CXStringW(parent);
  return true;
}

bool ParseChildName(const OdDbObjectId& styleId, int* pCode, CXStringW* pParentName) {
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId);
  RETERRIF3(!pStyle, E_FAIL, false);
  auto pTable = odOpen<OdDbSymbolTable>(pStyle->database()->getDimStyleTableId());
  RETERRIF3(!pTable, E_FAIL, false);
  return ParseChildName(*pTable, pStyle->getName(), pCode, pParentName);
}

VexArray<OdDbObjectId> GatherStyleFamily(const OdDbObjectId& styleId) {
  VexArray<OdDbObjectId> family;
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId);
  RETERRIF3(!pStyle, E_FAIL, family);
  auto pTable = odOpen<OdDbSymbolTable>(pStyle->database()->getDimStyleTableId());
  RETERRIF3(!pTable, E_FAIL, family);
  const OdString name = pStyle->getName();
  for (int code : kChildKinds) {
    const OdDbObjectId child = pTable->getAt(ChildStyleName(name, code).str());
    if (!child.isNull()) family.push_back(child);
  }
  family.push_back(styleId);
  return family;
}

VxResult RenameStyleFamily(const OdDbObjectId& styleId, const OdString& newName) {
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId);
  RETERRIF(!pStyle, E_FAIL);
  RETERRIF(pStyle->isDependent(), E_INVALIDARG);
  RETERRIF(newName.isEmpty(), E_INVALIDARG);
  auto pTable = odOpen<OdDbSymbolTable>(pStyle->database()->getDimStyleTableId());
  RETERRIF(!pTable, E_FAIL);
  const OdDbObjectId taken = pTable->getAt(newName);
  RETERRIF(!taken.isNull() && taken != styleId, E_INVALIDARG);

  // Every name is checked before the first one changes, so that a clash leaves
  // the whole family as it was.
  struct Rename {
    OdDbObjectId id;
    OdString name;
  };
  VexArray<Rename> renames{{styleId, newName}};
  const OdString oldName = pStyle->getName();
  for (int code : kChildKinds) {
    const OdDbObjectId child = pTable->getAt(ChildStyleName(oldName, code).str());
    auto pChild = odOpen<OdDbDimStyleTableRecord>(child);
    if (!pChild || pChild->isDependent()) continue;
    const OdString childName = ChildStyleName(newName, code).str();
    const OdDbObjectId other = pTable->getAt(childName);
    RETERRIF(!other.isNull() && other != child, E_INVALIDARG);
    renames.push_back({child, childName});
  }
  for (const Rename& r : renames) {
    auto pRecord = odOpen<OdDbDimStyleTableRecord>(r.id, OdDb::kForWrite);
    CONTINUEERRIF(!pRecord);
    pRecord->setName(r.name);
  }
  return S_OK;
}

// ---------------------------------------------------------------- trace dumps

void TraceCurrentSettings(const OdDbDatabase* pDb) {
  DimVarCells cells;
  ListCurrentValues(pDb, cells, false);
  if (cells.empty()) return;
  hostTrace(L"Dimension Style overrides");
  traceValues(cells);
}

void TraceStyleValues(const OdDbDimStyleTableRecord* pStyle) {
  RETERRIF3VOID(!pStyle);
  DimVarCells cells;
  ListStyleValues(pStyle, cells, false);
  hostTrace(L"Dimension Style %s", pStyle->getName().c_str());
  traceValues(cells);
}

}  // namespace dds
