#include "drawings/OdDbBlockBuilder.h"

#include <algorithm>
#include <cstdint>

#include "drawings/OdDbSymUtil.h"

namespace {

[[noreturn]] void refuse(OdResult code, const OdString& name, const char* why) {
  throw OdError(code, "block name \"" + name.toUtf8() + "\" " + why);
}

bool isAsciiLetter(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }
bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Letters after the '*' of an anonymous name ("*D12" -> 2), 0 when the rest is
// not letters then digits.
int anonymousPrefixLength(const OdString& name) {
  int i = 1;
  while (i < name.getLength() && isAsciiLetter(name.getAt(i))) ++i;
  const int letters = i;
  while (i < name.getLength() && isDigit(name.getAt(i))) ++i;
  return (letters > 1 && i == name.getLength()) ? letters : 0;
}

// "*D" -> "*D<n>" with n one more than any number that name already has here,
// erased blocks included, so that a name is never given twice.
//
// Records are only appended (undo may drop the last ones), so the highest number
// is kept for the table last numbered and only the records added since are read:
// numbering many blocks one after another costs no scan of the whole table each.
// A name taken all the same (a record renamed meanwhile) moves the number on.
OdString numberAnonymous(OdDbSymbolTable& table, const OdString& prefix) {
  thread_local struct {
    const OdDbSymbolTable* table = nullptr;
    OdString prefix;
    size_t scanned = 0;
    uint64_t highest = 0;
  } seen;
  const auto& records = table.records();
  if (seen.table != &table || seen.prefix.iCompare(prefix) != 0 || seen.scanned > records.size()) seen = {&table, prefix, 0, 0};
  uint64_t highest = seen.highest;
  for (size_t i = seen.scanned; i < records.size(); ++i) {
    const OdDbObjectId& id = records[i];
    const OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
    if (!o) continue;
    const OdString n = static_cast<const OdDbSymbolTableRecord*>(o)->getName();
    if (n.getLength() <= prefix.getLength() || n.left(prefix.getLength()).iCompare(prefix) != 0) continue;
    const OdString digits = n.mid(prefix.getLength());
    if (digits.getLength() > 18 || !std::all_of(digits.str().begin(), digits.str().end(), isDigit)) continue;
    highest = std::max<uint64_t>(highest, std::stoull(digits.toUtf8()));
  }
  seen.scanned = records.size();
  seen.highest = highest;
  OdString name = prefix + OdString::fromUtf8(std::to_string(highest + 1));
  while (table.has(name)) name = prefix + OdString::fromUtf8(std::to_string(++highest + 1));
  return name;
}

// A new drawing may come without a BLOCKS section (R12 files need none); it goes
// before the entities, where readers look for it.
DxfSection& blocksSection(OdDbDatabase& db) {
  if (DxfSection* s = db.section("BLOCKS")) return *s;
  auto& sections = db.sections();
  auto at = std::find_if(sections.begin(), sections.end(),
                         [](const DxfSection& s) { return s.name == "ENTITIES" || s.name == "OBJECTS"; });
  DxfSection s;
  s.name = "BLOCKS";
  s.head = OdDbProxyObject::createObject();
  s.head->setDxfName("SECTION");
  s.head->tagsForWrite() = {DxfTag(0, "SECTION"), DxfTag(2, "BLOCKS")};
  s.endsec = OdDbProxyObject::createObject();
  s.endsec->setDxfName("ENDSEC");
  s.endsec->tagsForWrite() = {DxfTag(0, "ENDSEC")};
  return *sections.insert(at, std::move(s));
}

}  // namespace

OdDbObjectId odCreateBlock(OdDbDatabase& db, const OdString& requested) {
  const bool extended = db.extendedNames();
  OdString name = requested;
  const bool anonymous = !name.isEmpty() && name.getAt(0) == L'*';
  int prefix = 0;
  if (anonymous) {
    // Layout names (*Model_Space, *Paper_Space) fail here: they hold a '_'.
    prefix = anonymousPrefixLength(name);
    if (prefix == 0) refuse(eInvalidSymbolTableName, requested, "is not '*', letters and a number");
  } else if (OdDbSymUtil::validateSymbolName(name, false, extended) != eOk) {
    refuse(eInvalidSymbolTableName, requested, "is not a valid name in this drawing");
  }
  if (!extended) name.makeUpper();  // the name is ASCII by now

  auto table = odOpen<OdDbBlockTable>(db.getBlockTableId(), OdDb::kForWrite);
  if (!table) throw OdError(eNotApplicable, "the drawing has no block table");
  if (anonymous && prefix == name.getLength()) name = numberAnonymous(*table, name);
  if (table->has(name)) refuse(eDuplicateKey, name, "is taken");

  const DxfVersion version = db.version();
  const bool objects = dxfver::hasObjects(version);
  const std::string encoded = db.codec().encode(name.view());

  // The record. Drawings without a written block table (R12) get a made-up one.
  OdSmartPtr<OdDbBlockTableRecord> record = OdDbBlockTableRecord::createObject();
  record->setDxfName("BLOCK_RECORD");
  record->synthetic = table->synthetic;
  {
    DxfTagList& t = record->tagsForWrite();
    t.emplace_back(0, "BLOCK_RECORD");
    if (!record->synthetic) {
      t.emplace_back(100, "AcDbSymbolTableRecord");
      t.emplace_back(100, "AcDbBlockTableRecord");
    }
    t.emplace_back(2, encoded);
    if (!record->synthetic && version >= DxfVersion::R2000) t.emplace_back(340, "0");  // no layout
    if (!record->synthetic && version >= DxfVersion::R2007) {
      t.emplace_back(70, "0");   // insertion units: none
      t.emplace_back(280, "1");  // explodable
      t.emplace_back(281, "0");  // scales freely
    }
  }
  const OdDbObjectId recordId = table->add(record.get());

  OdSmartPtr<OdDbBlockBegin> begin = OdDbBlockBegin::createObject();
  begin->setDxfName("BLOCK");
  {
    DxfTagList& t = begin->tagsForWrite();
    t.emplace_back(0, "BLOCK");
    if (objects) t.emplace_back(100, "AcDbEntity");
    t.emplace_back(8, "0");
    if (objects) t.emplace_back(100, "AcDbBlockBegin");
    t.emplace_back(2, encoded);
    t.emplace_back(70, anonymous ? "1" : "0");
    for (int code : {10, 20, 30}) t.emplace_back(code, "0.0");
    t.emplace_back(3, encoded);
    t.emplace_back(1, "");
  }
  db.addOdDbObject(begin.get(), recordId);
  if (!objects) {
    // R12 writes BLOCK without a handle, even where everything else has one.
    DxfTagList& t = begin->tagsForWrite();
    if (t.size() > 1 && t[1].code == 5) t.erase(t.begin() + 1);
  }
  record->blockBegin = begin->objectId();

  OdSmartPtr<OdDbBlockEnd> end = OdDbBlockEnd::createObject();
  end->setDxfName("ENDBLK");
  {
    DxfTagList& t = end->tagsForWrite();
    t.emplace_back(0, "ENDBLK");
    if (objects) t.emplace_back(100, "AcDbEntity");
    t.emplace_back(8, "0");
    if (objects) t.emplace_back(100, "AcDbBlockEnd");
  }
  db.addOdDbObject(end.get(), recordId);
  record->blockEnd = end->objectId();

  blocksSection(db).items.push_back(OdDbObjectPtr(record.get()));
  return recordId;
}
