#define VEX_SRCFILE "dds"
#include "DimStyleCommand.h"

#include "drawings/DimGeometry.h"

#include <vector>

#include "drawings/DxfVersion.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbSymUtil.h"
#include "host/HostApDocManager.h"
#include "model/DimStyleCompare.h"
#include "model/DimVarTable.h"
#include "res/DdsStrings.h"

namespace dds {

namespace {

OdString od(const CXStringW& s) { return OdString(s.str()); }
OdString text(int id) { return od(ddsString(id)); }

// `s` and blanks up to `width`, at least one.
CXStringW padded(const CXStringW& s, int width) {
  return s + CXStringW(L' ', s.GetLength() < width ? width - s.GetLength() : 1);
}

// Listings come as flat cells, three to a row: name, value, description.
DimVarList describedRows(const DimVarCells& cells) {
  DimVarList rows;
  for (std::size_t p = 0; p + kValueColumnsDescribed <= cells.size(); p += kValueColumnsDescribed)
    rows.push_back({cells[p], cells[p + 1], cells[p + 2]});
  return rows;
}

bool matchFrom(const std::wstring& name, std::size_t n, const std::wstring& pattern, std::size_t p) {
  for (; p < pattern.size(); ++p, ++n) {
    if (pattern[p] == L'*') {
      for (std::size_t rest = n; rest <= name.size(); ++rest)
        if (matchFrom(name, rest, pattern, p + 1)) return true;
      return false;
    }
    if (n >= name.size() || (pattern[p] != L'?' && pattern[p] != name[n])) return false;
  }
  return n == name.size();
}

// A dimension or a leader: both hold a style and overrides, but share no base
// class that has the style.
template <class TEntity>
void applyTo(TEntity& entity, const OdDbObjectId& styleId, const std::vector<bool>& isOverride,
             const OdDbDatabase& db) {
  if (entity.dimensionStyle() != styleId) entity.setDimensionStyle(styleId);
  for (std::size_t row : entity.dimVarOverrides())
    if (!isOverride[row]) entity.removeDimVarOverride(row);
  for (const DimVarInfo& v : DimVarTable) {
    if (!isOverride[v.row]) continue;
    const OdDimVarValue value = v.get(db);
    // An override that holds the value already stays untouched.
    if (!entity.hasDimVarOverride(v.row) || v.differ(v.get(entity), value)) v.set(entity, value);
  }
}

}  // namespace

// ---------------------------------------------------------------- printed lists

CXStringW FormatTwoColumns(const DimVarTriple& row) { return padded(row.name, kNameColumnWidth) + row.value; }

CXStringW FormatThreeColumns(const DimVarTriple& row) {
  return padded(row.name, kNameColumnWidth) + padded(row.value, kValueColumnWidth) + row.description;
}

// ---------------------------------------------------------------- options

int KeywordIndex(const OdString& keywordList, const OdString& localKeyword) {
  const HostKeywordList list = HostKeywordList::parse(keywordList);
  for (std::size_t i = 0; i < list.local.size(); ++i)
    if (list.local[i] == localKeyword) return static_cast<int>(i);
  return -1;
}

DimStyleOption OptionOfKeyword(const OdString& localKeyword) {
  const int i = KeywordIndex(text(IDS_DS_OPTION_KEYWORDS), localKeyword);
  return i < 0 || i >= static_cast<int>(DimStyleOption::Unknown) ? DimStyleOption::Unknown
                                                                   : static_cast<DimStyleOption>(i);
}

bool MatchStylePattern(const OdString& name, const OdString& pattern) {
  return matchFrom(odstr::folded(name.view()), 0, odstr::folded(pattern.view()), 0);
}

// ---------------------------------------------------------------- applying

VxResult ApplyCurrentSettings(OdDbDatabase* pDb, const OdDbObjectIdArray& ids, int* pApplied) {
  if (pApplied) *pApplied = 0;
  RETERRIF(!pDb, E_INVALIDARG);
  const OdDbObjectId styleId = pDb->dimstyle();
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId);
  RETERRIF(!pStyle, E_FAIL);
  std::vector<bool> isOverride(kDimVarDefaults.size(), false);
  for (const DimVarInfo& v : DimVarTable) isOverride[v.row] = v.differ(v.get(*pStyle), v.get(*pDb));

  for (const OdDbObjectId& id : ids) {
    const OdDbObjectPtr pObject = id.openObject();
    if (OdDbDimension::cast(pObject.get())) {
      auto pDim = odOpen<OdDbDimension>(id, OdDb::kForWrite);
      CONTINUEERRIF(!pDim);
      applyTo(*pDim, styleId, isOverride, *pDb);
      // The dimension is drawn anew with its new values; kinds the geometry
      // engine does not compute yet keep the block they had.
      recomputeDimBlock(*pDim);
    } else if (OdDbLeader::cast(pObject.get())) {
      auto pLeader = odOpen<OdDbLeader>(id, OdDb::kForWrite);
      CONTINUEERRIF(!pLeader);
      applyTo(*pLeader, styleId, isOverride, *pDb);
    } else {
      continue;
    }
    if (pApplied) ++*pApplied;
  }
  return S_OK;
}

// ---------------------------------------------------------------- the command

void CDimStyleCommand::Print(const CXStringW& line) { m_ui.print(od(line)); }

OdDbObjectId CDimStyleCommand::StyleByName(const OdString& name) const {
  auto pTable = odOpen<OdDbSymbolTable>(m_db.getDimStyleTableId());
  RETERRIF3(!pTable, E_FAIL, OdDbObjectId());
  return name.isEmpty() ? OdDbObjectId() : pTable->getAt(name);
}

void CDimStyleCommand::Run() {
  PrintCurrentStyleLine();
  PrintOverrides();
  for (;;) {
    OdString keyword;
    const HostResult r = m_ui.getKeyword(text(IDS_DS_OPTION_PROMPT), text(IDS_DS_OPTION_KEYWORDS), keyword);
    if (r != kHostOk && r != kHostNone) return;
    const DimStyleOption option = r == kHostNone ? DimStyleOption::Restore : OptionOfKeyword(keyword);
    switch (option) {
      case DimStyleOption::Annotative:
        if (FAILED(Annotative())) return;
        break;
      case DimStyleOption::Save: Save(); return;
      case DimStyleOption::Restore:
        if (SUCCEEDED(Restore())) PrintCurrentStyleLine();
        return;
      case DimStyleOption::Status: Status(); return;
      case DimStyleOption::Variables: Variables(); return;
      case DimStyleOption::Apply: Apply(); return;
      case DimStyleOption::List:
        if (FAILED(List())) return;
        break;
      case DimStyleOption::Unknown:
        LOGERR(E_FAIL, (L"No option for the keyword " + CXStringW(keyword)).c_str());
        return;
    }
  }
}

void CDimStyleCommand::PrintCurrentStyleLine() {
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(m_db.dimstyle());
  RETERRIF3VOID(!pStyle);
  CXStringW line;
  line.Format(ddsString(IDS_DS_CURRENT_STYLE), pStyle->getName().c_str(),
              DimVarFormatBool(pStyle->isAnnotative()).c_str());
  Print(line);
}

void CDimStyleCommand::PrintOverrides() {
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(m_db.dimstyle());
  RETERRIF3VOID(!pStyle);
  DimVarList overrides;
  CollectOverrides(pStyle.get(), &m_db, overrides);
  if (overrides.empty()) return;
  Print(ddsString(IDS_DS_CURRENT_OVERRIDES));
  for (const DimVarTriple& row : overrides) Print(FormatTwoColumns(row));
}

void CDimStyleCommand::PrintThreeColumns(const DimVarList& rows) {
  for (const DimVarTriple& row : rows) Print(FormatThreeColumns(row));
}

void CDimStyleCommand::PrintComparison(const OdString& shownName, const OdString& name) {
  CXStringW heading;
  heading.Format(ddsString(IDS_DS_DIFFERENCES), shownName.c_str());
  Print(heading);
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(StyleByName(name));
  if (!pStyle) {
    Print(ddsString(IDS_DS_UNKNOWN_STYLE));
    return;
  }
  DimVarCells cells;
  ListDifferencesStyleCurrent(pStyle.get(), &m_db, cells, false);
  if (cells.empty()) {
    Print(ddsString(IDS_DS_NO_DIFFERENCES));
    return;
  }
  DimVarList rows{{CXStringW(), pStyle->getName(), ddsString(IDS_DS_CURRENT_SETTING)}};
  for (std::size_t p = 0; p + kDiffColumns <= cells.size(); p += kDiffColumns)
    rows.push_back({cells[p], cells[p + 1], cells[p + 2]});
  PrintThreeColumns(rows);
}

VxResult CDimStyleCommand::AskYesNo(int promptId, bool dflt, bool& answer) {
  const OdString keywords = text(IDS_DS_YES_NO_KEYWORDS);
  OdString keyword;
  const HostResult r = m_ui.getKeyword(text(promptId), keywords, keyword);
  if (r == kHostNone) {
    answer = dflt;
    return S_OK;
  }
  if (r != kHostOk) return E_ABORT;
  answer = KeywordIndex(keywords, keyword) == 0;
  return S_OK;
}

VxResult CDimStyleCommand::MakeCurrentByName(const OdString& name) {
  if (name.isEmpty()) return S_FALSE;
  const OdDbObjectId id = StyleByName(name);
  if (id.isNull()) return E_INVALIDARG;
  m_db.setDimstyle(id);
  return S_OK;
}

VxResult CDimStyleCommand::Annotative() {
  bool annotative = true;
  const VxResult r = AskYesNo(IDS_DS_ANNOTATIVE_PROMPT, true, annotative);
  if (FAILED(r)) return r;
  return Save(annotative);
}

VxResult CDimStyleCommand::SaveTarget(const OdString& name, OdDbDimStyleTableRecordPtr& pStyle) {
  auto pTable = odOpen<OdDbSymbolTable>(m_db.getDimStyleTableId(), OdDb::kForWrite);
  RETERRIF(!pTable, E_FAIL);
  const OdDbObjectId existing = pTable->getAt(name);
  if (!existing.isNull()) {
    bool redefine = false;
    const VxResult r = AskYesNo(IDS_DS_REDEFINE_PROMPT, false, redefine);
    if (FAILED(r)) return r;
    if (!redefine) return S_FALSE;
    pStyle = odOpen<OdDbDimStyleTableRecord>(existing, OdDb::kForWrite);
    RETERRIF(!pStyle, E_FAIL);
    return S_OK;
  }
  if (OdDbSymUtil::validateSymbolName(name, false, &m_db) != eOk) {
    Print(ddsString(IDS_DS_INVALID_NAME));
    return S_FALSE;
  }
  try {
    OdDbDimStyleTableRecordPtr pNew = OdDbDimStyleTableRecord::createObject();
    m_db.addOdDbObject(pNew.get(), pTable->objectId());
    DxfTagList& tags = pNew->tagsForWrite();
    if (dxfver::hasObjects(m_db.version())) {
      tags.emplace_back(100, "AcDbSymbolTableRecord");
      tags.emplace_back(100, "AcDbDimStyleTableRecord");
    }
    tags.emplace_back(2, "");
    tags.emplace_back(70, "0");
    // Drawings with the short names of old versions store them in capitals.
    OdString stored = name;
    if (!m_db.extendedNames()) stored.makeUpper();
    pNew->setName(stored);
    pTable->add(pNew.get());
    // Every value is written, not only those that differ from the built-in
    // ones: versions that list every code in a record get every code.
    for (const DimVarInfo& v : DimVarTable) v.set(*pNew, v.get(m_db));
    pStyle = pNew;
  } catch (const OdError& e) {
    return LOGERR(E_FAIL, CXStringW::FromUtf8(e.what()).c_str());
  }
  return S_OK;
}

VxResult CDimStyleCommand::Save(std::optional<bool> annotative) {
  OdDbDimStyleTableRecordPtr pStyle;
  for (;;) {
    OdString name;
    const HostResult r = m_ui.getString(text(IDS_DS_SAVE_PROMPT), true, name, L"?");
    if (r == kHostKeyword) {
      if (FAILED(List())) return E_ABORT;
      continue;
    }
    if (r != kHostOk || name.isEmpty()) return E_ABORT;
    if (name.getAt(0) == L'~') {
      const OdString rest = od(CXStringW(name.mid(1)).MakeUpper());
      PrintComparison(rest, rest);
      continue;
    }
    const VxResult target = SaveTarget(name, pStyle);
    if (FAILED(target)) return target;
    if (target == S_OK) break;
  }
  // Copied while the old style is still current: settings that the drawing's
  // version keeps only in the current style are read from it.
  const VxResult copied = CopyCurrentToStyle(pStyle.get(), &m_db);
  if (FAILED(copied)) return copied;
  if (annotative) pStyle->setAnnotative(*annotative);
  return MakeCurrentByName(pStyle->getName());
}

VxResult CDimStyleCommand::Choose(bool restore) {
  for (;;) {
    OdString name;
    const HostResult r = m_ui.getString(text(IDS_DS_CHOOSE_PROMPT), true, name, L"?");
    if (r == kHostKeyword) {
      if (FAILED(List())) return E_ABORT;
      continue;
    }
    if (r == kHostNone || (r == kHostOk && name.isEmpty())) return ChoosePicked(restore);
    if (r != kHostOk) return E_ABORT;
    if (name.getAt(0) == L'~') {
      PrintComparison(name.mid(1), name.mid(1));
      continue;
    }
    OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(StyleByName(name));
    if (!pStyle) {
      Print(ddsString(IDS_DS_UNKNOWN_STYLE));
      continue;
    }
    if (!restore) {
      DimVarCells cells;
      ListDimVarValues(*pStyle, cells, true);
      PrintThreeColumns(describedRows(cells));
      return S_OK;
    }
    const VxResult made = MakeCurrentByName(pStyle->getName());
    if (FAILED(made)) return made;
    return CopyStyleToCurrent(&m_db, pStyle.get());
  }
}

VxResult CDimStyleCommand::ChoosePicked(bool restore) {
  OdDbObjectId id;
  if (m_ui.getEntity(text(IDS_DS_SELECT_DIMENSION), id) != kHostOk || id.isNull()) return E_ABORT;
  const OdDbObjectPtr pObject = id.openObject();
  const OdDimVarSource* pValues = nullptr;
  OdDbObjectId styleId;
  if (auto pDim = OdDbDimension::cast(pObject.get())) {
    pValues = pDim.get();
    styleId = pDim->dimensionStyle();
  } else if (auto pLeader = OdDbLeader::cast(pObject.get())) {
    pValues = pLeader.get();
    styleId = pLeader->dimensionStyle();
  } else {
    Print(ddsString(IDS_DS_NOT_A_DIMENSION));
    return E_INVALIDARG;
  }
  if (!restore) {
    DimVarCells cells;
    ListDimVarValues(*pValues, cells, true);
    PrintThreeColumns(describedRows(cells));
    return S_OK;
  }
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(styleId);
  RETERRIF(!pStyle, E_FAIL);
  const VxResult made = MakeCurrentByName(pStyle->getName());
  if (FAILED(made)) return made;
  CopyDimVars(*pValues, m_db);
  return S_OK;
}

VxResult CDimStyleCommand::Status() {
  OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(m_db.dimstyle());
  RETERRIF(!pStyle, E_FAIL);
  PrintThreeColumns({
      {L"DIMASO", DimVarFormatBool(m_db.getDIMASO() != 0), ddsString(IDS_DS_DIMASO_DESCRIPTION)},
      {L"DIMSTYLE", pStyle->getName(), ddsString(IDS_DS_DIMSTYLE_DESCRIPTION)},
  });
  Print(CXStringW());
  DimVarList all;
  ListCurrentSettings(&m_db, all, true);
  PrintThreeColumns(all);
  return S_OK;
}

VxResult CDimStyleCommand::Apply() {
  OdDbObjectIdArray ids;
  if (m_ui.selectObjects(text(IDS_DS_SELECT_OBJECTS), ids) != kHostOk) return E_ABORT;
  return ApplyCurrentSettings(&m_db, ids);
}

VxResult CDimStyleCommand::List() {
  OdString pattern;
  const HostResult r = m_ui.getString(text(IDS_DS_LIST_PROMPT), true, pattern);
  if (r != kHostOk && r != kHostNone) return E_ABORT;
  if (pattern.isEmpty()) pattern = L"*";
  auto pTable = odOpen<OdDbSymbolTable>(m_db.getDimStyleTableId());
  RETERRIF(!pTable, E_FAIL);
  DimVarList lines;
  for (const OdDbObjectId& id : pTable->recordIds()) {
    OdDbDimStyleTableRecordPtr pStyle = odOpen<OdDbDimStyleTableRecord>(id);
    CONTINUEERRIF(!pStyle);
    const OdString name = pStyle->getName();
    if (!MatchStylePattern(name, pattern)) continue;
    lines.push_back({name, pStyle->isAnnotative() ? ddsString(IDS_DS_ANNOTATIVE_MARK) : CXStringW(), CXStringW()});
  }
  if (lines.empty()) {
    Print(ddsString(IDS_DS_UNKNOWN_STYLE));
    return S_OK;
  }
  Print(ddsString(IDS_DS_NAMED_STYLES));
  for (const DimVarTriple& line : lines) Print(line.value.IsEmpty() ? line.name : FormatTwoColumns(line));
  return S_OK;
}

// ---------------------------------------------------------------- the handler

VxResult DimStyleCommand(HostApDocManager* pDocManager) {
  RETERRIF(!pDocManager, E_FAIL);
  HostApDocument* pAD = pDocManager->curDocument();
  RETERRIF(!pAD, E_FAIL);
  OdDbDatabase* pBase = pAD->database();
  RETERRIF(!pBase, E_FAIL);
  IVxContext* pEdInput = pAD->editorInput();
  RETERRIF(!pEdInput, E_FAIL);
  HostSelectionSetManager* pEdSSManager = pAD->selectionSetManager();
  RETERRIF(!pEdSSManager, E_FAIL);
  CDimStyleCommand(*pEdInput, *pBase).Run();
  return S_OK;
}

}  // namespace dds
