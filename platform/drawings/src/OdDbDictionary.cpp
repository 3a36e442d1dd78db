#include "drawings/OdDbDictionary.h"

#include "drawings/OdDbDatabase.h"
#include "ResBufTags.h"

ODRX_DEFINE_MEMBERS(OdDbDictionary, OdDbObject, L"DICTIONARY")
ODRX_DEFINE_MEMBERS(OdDbXrecord, OdDbObject, L"XRECORD")

// Entries are 3 (name) followed by 350 (soft owner) or 360 (hard owner).
std::vector<std::pair<OdString, OdDbObjectId>> OdDbDictionary::entries() const {
  std::vector<std::pair<OdString, OdDbObjectId>> out;
  Range r = subclassRange("AcDbDictionary");
  if (!r.found) r = commonRange();
  const auto& t = tags();
  OdDbDatabase* db = database();
  for (size_t i = r.begin; i + 1 < r.end; ++i) {
    if (t[i].code != 3 || (t[i + 1].code != 350 && t[i + 1].code != 360)) continue;
    OdDbObjectId id = db ? db->getOdDbObjectId(OdDbHandle(t[i + 1].toHandle())) : OdDbObjectId();
    out.emplace_back(decodeText(t[i].text), id);
    ++i;
  }
  return out;
}

OdDbObjectId OdDbDictionary::getAt(const OdString& name) const {
  for (auto& [n, id] : entries())
    if (n.iCompare(name) == 0) return id;
  return OdDbObjectId();
}

bool OdDbDictionary::isHardOwner() const {
  Range r = subclassRange("AcDbDictionary");
  long i = findTag(280, r);
  return i >= 0 && tags()[static_cast<size_t>(i)].toInt() != 0;
}

OdDbObjectId OdDbDictionary::setAt(const OdString& name, OdDbObject* object) {
  assertWriteEnabled();
  OdDbDatabase* db = database();
  if (!db || !object) throw OdError(eNotInDatabase);
  OdDbObjectId id = object->objectId();
  if (id.isNull()) {
    id = db->addOdDbObject(object, objectId());
    if (DxfSection* s = db->section("OBJECTS")) s->items.push_back(OdDbObjectPtr(object));
  }
  object->setOwnerId(objectId());
  remove(name);
  Range r = subclassRange("AcDbDictionary");
  auto& t = tagsForWrite();
  size_t pos = r.found ? r.end : xdataStart();
  t.insert(t.begin() + static_cast<long>(pos), DxfTag(3, encodeText(name)));
  t.insert(t.begin() + static_cast<long>(pos + 1), DxfTag(isHardOwner() ? 360 : 350, dxfFormatHandle(id.getHandle().value())));
  return id;
}

bool OdDbDictionary::remove(const OdString& name) {
  Range r = subclassRange("AcDbDictionary");
  if (!r.found) r = commonRange();
  const auto& t = tags();
  for (size_t i = r.begin; i + 1 < r.end; ++i) {
    if (t[i].code == 3 && (t[i + 1].code == 350 || t[i + 1].code == 360) && decodeText(t[i].text).iCompare(name) == 0) {
      auto& w = tagsForWrite();
      w.erase(w.begin() + static_cast<long>(i), w.begin() + static_cast<long>(i + 2));
      return true;
    }
  }
  return false;
}

OdResBufPtr OdDbXrecord::rbChain() const {
  Range r = subclassRange("AcDbXrecord");
  const auto& t = tags();
  size_t i = r.begin;
  if (i < r.end && t[i].code == 280) ++i;  // duplicate record cloning flag
  return resBufChain(codec(), t, i, r.end);
}

void OdDbXrecord::setFromRbChain(const OdResBuf* chain) {
  assertWriteEnabled();
  Range r = subclassRange("AcDbXrecord");
  auto& t = tagsForWrite();
  size_t begin = r.found ? r.begin : t.size();
  if (begin < r.end && t[begin].code == 280) ++begin;
  if (!r.found) {
    t.emplace_back(100, "AcDbXrecord");
    begin = r.end = t.size();
  }
  t.erase(t.begin() + static_cast<long>(begin), t.begin() + static_cast<long>(r.end));
  DxfTagList add = tagsOfChain(codec(), chain);
  t.insert(t.begin() + static_cast<long>(begin), add.begin(), add.end());
}
