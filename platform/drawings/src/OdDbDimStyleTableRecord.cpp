#include "drawings/OdDbDimStyleTableRecord.h"

#include <algorithm>

#include "DimVarStorage.h"
#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbDimStyleTableRecord, OdDbSymbolTableRecord, L"DIMSTYLE")
ODRX_DEFINE_MEMBERS(OdDbDimStyleTable, OdDbSymbolTable, L"TABLE")

using namespace dimvarstore;

namespace {

// The order in which a DIMSTYLE record lists its codes; a code that a record did
// not have yet is put after those that come before it here. The fill colour (a
// second 70) ranks as -70.
constexpr int kCodeOrder[] = {2,   70,  3,   4,   5,   6,   7,   40,  41,  42,  43,  44,  45,  46,  47,  48,  49,
                              50,  140, 141, 142, 143, 144, 145, 146, 147, 148, 69,  -70, 71,  72,  73,  74,  75,
                              76,  77,  78,  79,  90,  170, 171, 172, 173, 174, 175, 176, 177, 178, 179, 270, 271,
                              272, 273, 274, 275, 276, 277, 278, 279, 280, 281, 282, 283, 284, 285, 286, 287, 288,
                              289, 290, 294, 295, 296, 297, 298, 340, 341, 342, 343, 344, 345, 346, 347, 371, 372};

int rankOf(int code) {
  auto it = std::find(std::begin(kCodeOrder), std::end(kCodeOrder), code);
  return it == std::end(kCodeOrder) ? -1 : static_cast<int>(it - std::begin(kCodeOrder));
}

bool isFillColour(const DimVarDefault& row) { return row.name == "DIMTFILLCLR"; }

DxfVersion versionOf(const OdDbObject& o) { return o.database() ? o.database()->version() : DxfVersion::R2018; }

}  // namespace

long OdDbDimStyleTableRecord::findVarTag(const DimVarDefault& row, int code) const {
  Range r = recordRange();
  // The first 70 is the record's flag word; the fill colour is the second one.
  int skip = isFillColour(row) ? 1 : 0;
  const auto& t = tags();
  for (size_t i = r.begin; i < r.end; ++i) {
    if (t[i].code != code) continue;
    if (skip-- > 0) continue;
    return static_cast<long>(i);
  }
  return -1;
}

std::optional<std::string> OdDbDimStyleTableRecord::xdataValue(const DimVarDefault& row) const {
  const XdataSlot* slot = xdataSlot(row);
  const auto& t = tags();
  bool inApp = false;
  for (size_t i = xdataStart(); i < t.size(); ++i) {
    if (t[i].code == 1001) inApp = decodeText(t[i].text).iCompare(OdString::fromUtf8(slot->app)) == 0;
    else if (inApp && t[i].code == 1070 && t[i].toInt() == slot->pseudoCode && i + 1 < t.size()) return t[i + 1].text;
  }
  return std::nullopt;
}

void OdDbDimStyleTableRecord::setXdataValue(const DimVarDefault& row, const std::string& text) {
  const XdataSlot* slot = xdataSlot(row);
  auto& t = tagsForWrite();
  size_t appAt = t.size();
  for (size_t i = xdataStart(); i < t.size(); ++i) {
    if (t[i].code == 1001 && decodeText(t[i].text).iCompare(OdString::fromUtf8(slot->app)) == 0) {
      appAt = i;
      break;
    }
  }
  if (appAt == t.size()) {
    if (OdDbDatabase* db = database()) db->registerApp(OdString::fromUtf8(slot->app));
    t.emplace_back(1001, slot->app);
    t.emplace_back(1070, std::to_string(slot->pseudoCode));
    t.emplace_back(slot->valueCode, text);
    return;
  }
  size_t end = appAt + 1;
  while (end < t.size() && t[end].code != 1001) ++end;
  for (size_t i = appAt + 1; i + 1 < end; ++i) {
    if (t[i].code == 1070 && t[i].toInt() == slot->pseudoCode) {
      t[i + 1].set(text);
      return;
    }
  }
  t.insert(t.begin() + static_cast<long>(end), {DxfTag(1070, std::to_string(slot->pseudoCode)), DxfTag(slot->valueCode, text)});
}

OdDimVarValue OdDbDimStyleTableRecord::dimVar(std::size_t index) const {
  const DimVarDefault& row = kDimVarDefaults[index];
  auto kept = m_sessionOnly.find(index);
  if (kept != m_sessionOnly.end()) return kept->second;
  const OdDbDatabase* db = database();
  const DxfVersion v = versionOf(*this);
  if (int code = row.styleCodeIn(v)) {
    long i = findVarTag(row, code);
    if (i >= 0)
      return decode(row, code, tags()[static_cast<size_t>(i)].text, db, row.has(dimvar::kStyleDegrees) && code == row.styleCode);
  } else if (xdataSlot(row) && v >= DxfVersion::R2000) {
    if (auto text = xdataValue(row)) return decode(row, xdataSlot(row)->valueCode, *text, db, false);
  }
  return builtIn(row, db);
}

void OdDbDimStyleTableRecord::setDimVar(std::size_t index, const OdDimVarValue& value) {
  assertWriteEnabled();
  const DimVarDefault& row = kDimVarDefaults[index];
  const OdDbDatabase* db = database();
  const DxfVersion v = versionOf(*this);
  const bool isDefault = OdDimVarValue::same(row.kind, value, builtIn(row, db));
  int code = row.styleCodeIn(v);
  // Codes 290-299 hold booleans: a number or text there would make the file unreadable,
  // so the sub-unit variables whose codes lie there are kept for the session only.
  if (code >= 290 && code <= 299 && row.kind != DimVarKind::Bool) code = 0;
  if (code) {
    m_sessionOnly.erase(index);
    const bool degrees = row.has(dimvar::kStyleDegrees) && code == row.styleCode;
    std::string text = encode(row, code, value, db, degrees);
    long i = findVarTag(row, code);
    if (i >= 0) {
      // A reference cleared from R2000 on is written as no code at all.
      if (refFormOf(code) == RefForm::Handle && value.id.isNull() && !row.has(dimvar::kAlwaysInStyle))
        removeTag(code, Range{static_cast<size_t>(i), static_cast<size_t>(i) + 1, true});
      else
        tagsForWrite()[static_cast<size_t>(i)].set(text);
      return;
    }
    // Records from R2000 on leave out what equals the built-in value.
    if (isDefault && v >= DxfVersion::R2000 && !row.has(dimvar::kAlwaysInStyle)) return;
    Range r = recordRange();
    auto& t = tagsForWrite();
    const int myRank = rankOf(isFillColour(row) ? -70 : code);
    size_t pos = r.begin;
    bool sawFlags = false;
    for (size_t k = r.begin; k < r.end; ++k) {
      int c = t[k].code;
      if (c == 70 && sawFlags) c = -70;
      if (c == 70) sawFlags = true;
      int rk = rankOf(c);
      if (rk >= 0 && rk < myRank) pos = k + 1;
    }
    t.insert(t.begin() + static_cast<long>(pos), DxfTag(code, text));
    return;
  }
  if (xdataSlot(row) && v >= DxfVersion::R2000 && !row.styleCodeIn(v)) {
    m_sessionOnly.erase(index);
    if (isDefault && !xdataValue(row)) return;
    setXdataValue(row, encode(row, xdataSlot(row)->valueCode, value, db, false));
    return;
  }
  // The file's version has no place for this variable: it lasts for the session.
  m_sessionOnly[index] = value;
}

bool OdDbDimStyleTableRecord::isAnnotative() const {
  OdResBufPtr rb = xData(L"AcadAnnotative");
  // 1001 AcadAnnotative, 1000 AnnotativeData, 1002 {, 1070 version, 1070 flag, 1002 }
  int n = 0;
  for (OdResBufPtr p = rb; p; p = p->next())
    if (p->restype() == 1070 && ++n == 2) return p->getInt16() != 0;
  return false;
}

void OdDbDimStyleTableRecord::setAnnotative(bool annotative) {
  assertWriteEnabled();
  OdString app = L"AcadAnnotative";
  // Drawings that spell the application in capitals keep their spelling.
  if (OdDbDatabase* db = database()) {
    auto apps = odOpen<OdDbSymbolTable>(db->getRegAppTableId());
    if (apps && !apps->getAt(app).isNull()) app = odOpen<OdDbSymbolTableRecord>(apps->getAt(app))->getName();
  }
  OdResBufPtr head = OdResBuf::newRb(1001, app);
  head->setNext(OdResBuf::newRb(1000, OdString(L"AnnotativeData")))
      ->setNext(OdResBuf::newRb(1002, OdString(L"{")))
      ->setNext(OdResBuf::newRb(1070, int32_t(1)))
      ->setNext(OdResBuf::newRb(1070, int32_t(annotative ? 1 : 0)))
      ->setNext(OdResBuf::newRb(1002, OdString(L"}")));
  setXData(head.get());
}
