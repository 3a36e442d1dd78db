#include "drawings/OdDbSymbolTable.h"

#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbSymbolTableRecord, OdDbObject, L"")
ODRX_DEFINE_MEMBERS(OdDbSymbolTable, OdDbObject, L"TABLE")

#define OD_DEFINE_TABLE(Table, Record, RecordDxf)                    \
  ODRX_DEFINE_MEMBERS(Record, OdDbSymbolTableRecord, RecordDxf)      \
  ODRX_DEFINE_MEMBERS(Table, OdDbSymbolTable, L"TABLE")

OD_DEFINE_TABLE(OdDbLayerTable, OdDbLayerTableRecord, L"LAYER")
OD_DEFINE_TABLE(OdDbLinetypeTable, OdDbLinetypeTableRecord, L"LTYPE")
OD_DEFINE_TABLE(OdDbTextStyleTable, OdDbTextStyleTableRecord, L"STYLE")
OD_DEFINE_TABLE(OdDbRegAppTable, OdDbRegAppTableRecord, L"APPID")
OD_DEFINE_TABLE(OdDbViewTable, OdDbViewTableRecord, L"VIEW")
OD_DEFINE_TABLE(OdDbUCSTable, OdDbUCSTableRecord, L"UCS")
OD_DEFINE_TABLE(OdDbViewportTable, OdDbViewportTableRecord, L"VPORT")
OD_DEFINE_TABLE(OdDbBlockTable, OdDbBlockTableRecord, L"BLOCK_RECORD")

// ---- records ----

OdDbObject::Range OdDbSymbolTableRecord::recordRange() const {
  const auto& t = tags();
  // R13+: the name follows the second subclass marker (AcDbLayerTableRecord, ...).
  size_t end = xdataStart();
  int markers = 0;
  for (size_t i = 0; i < end; ++i) {
    if (t[i].code == 100 && ++markers == 2) {
      size_t j = i + 1;
      while (j < end && t[j].code != 100) ++j;
      return Range{i + 1, j, true};
    }
  }
  if (markers == 1) return subclassRange("AcDbSymbolTableRecord");
  return commonRange();
}

OdString OdDbSymbolTableRecord::getName() const {
  // Nothing before a record's name uses code 2, so the first one is the name; this
  // way looking names up does not parse whole records.
  auto v = firstValue(2);
  return v ? decodeText(*v) : OdString();
}

void OdDbSymbolTableRecord::setName(const OdString& name) {
  assertWriteEnabled();
  setTagText(2, encodeText(name), recordRange(), {2, 70});
  if (auto table = OdSmartPtr<OdDbSymbolTable>::cast(ownerId().openObject())) table->invalidateIndex();
}

int16_t OdDbSymbolTableRecord::flags() const {
  long i = findTag(70, recordRange());
  return i < 0 ? 0 : static_cast<int16_t>(tags()[static_cast<size_t>(i)].toInt());
}

void OdDbSymbolTableRecord::setFlags(int16_t f) {
  assertWriteEnabled();
  setTagText(70, std::to_string(f), recordRange(), {2, 70});
}

// ---- tables ----

OdString OdDbSymbolTable::tableName() const {
  long i = findTag(2, commonRange());
  return i < 0 ? OdString() : decodeText(tags()[static_cast<size_t>(i)].text);
}

OdDbObjectId OdDbSymbolTable::getAt(const OdString& name, bool getErased) const {
  if (!m_indexValid) {
    m_index.clear();
    m_spelled.clear();
    for (const auto& id : m_records) {
      OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
      if (!o || o->isErased()) continue;
      auto rec = static_cast<const OdDbSymbolTableRecord*>(o);
      m_index.emplace(odstr::folded(rec->getName().view()), id);  // the first of equal names wins
    }
    m_indexValid = true;
  }
  auto it = m_index.find(odstr::folded(name.view()));
  if (it != m_index.end()) return it->second;
  if (getErased)
    for (const auto& id : m_records)
      if (id.stub() && id.stub()->object &&
          static_cast<const OdDbSymbolTableRecord*>(id.stub()->object)->getName().iCompare(name) == 0)
        return id;
  return OdDbObjectId();
}

OdDbObjectId OdDbSymbolTable::add(OdDbSymbolTableRecord* record) {
  if (!record || !record->isKindOf(recordClass())) throw OdError(eWrongObjectType);
  OdString name = record->getName();
  if (name.isEmpty()) throw OdError(eInvalidSymbolTableName, "a record needs a name");
  if (has(name)) throw OdError(eDuplicateKey, "\"" + name.toUtf8() + "\" already exists");
  OdDbDatabase* db = database();
  if (!db) throw OdError(eNotInDatabase);
  OdDbObjectId id = record->objectId().isNull() ? db->addOdDbObject(record, objectId()) : record->objectId();
  record->setOwnerId(objectId());
  m_records.push_back(id);
  // The name is new (has() built the index just now): adding it keeps the index
  // valid, so that adding many records costs no rebuild each.
  if (m_indexValid) m_index.emplace(odstr::folded(name.view()), id);
  return id;
}

OdDbObjectId OdDbSymbolTable::getAtSpelled(std::string_view nameInFile, const OdDbObject& reader) const {
  if (m_indexValid)
    if (auto it = m_spelled.find(std::string(nameInFile)); it != m_spelled.end()) return it->second;
  const OdDbObjectId id = getAt(reader.decodeText(nameInFile));  // rebuilds both indexes when they are stale
  // Only found names: a name not there yet may be added without the index being rebuilt.
  if (!id.isNull()) m_spelled.emplace(nameInFile, id);
  return id;
}

OdDbObjectIdArray OdDbSymbolTable::recordIds(bool includeErased) const {
  OdDbObjectIdArray ids;
  ids.reserve(m_records.size());
  for (const auto& id : m_records)
    if (includeErased || !id.isErased()) ids.push_back(id);
  return ids;
}

// ---- blocks ----

OdDbObjectIdArray OdDbBlockTableRecord::entityIds(bool includeErased) const {
  OdDbObjectIdArray ids;
  ids.reserve(m_entities.size() + m_sectionEntities.size());
  for (const auto* list : {&m_entities, &m_sectionEntities})
    for (const auto& id : *list) {
      OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
      if (!o || (!includeErased && o->isErased())) continue;
      // Vertices, attributes and SEQEND belong to the entity before them.
      std::string_view n = o->dxfName();
      if (n == "VERTEX" || n == "ATTRIB" || n == "SEQEND") continue;
      ids.push_back(id);
    }
  return ids;
}

OdDbObjectId OdDbBlockTableRecord::appendOdDbEntity(OdDbEntity* entity) {
  OdDbDatabase* db = database();
  if (!db) throw OdError(eNotInDatabase);
  OdDbObjectId id = db->addOdDbObject(entity, objectId());
  DxfSection* s = db->section("ENTITIES");
  if (s && isModelOrActivePaperSpace()) {
    m_sectionEntities.push_back(id);
    s->items.push_back(OdDbObjectPtr(entity));
  } else {
    m_entities.push_back(id);
  }
  return id;
}

bool OdDbBlockTableRecord::isLayout() const {
  OdString n = getName();
  return n.iCompare(L"*Model_Space") == 0 || n.left(12).iCompare(L"*Paper_Space") == 0 ||
         n.iCompare(L"$MODEL_SPACE") == 0 || n.left(12).iCompare(L"$PAPER_SPACE") == 0;
}

bool OdDbBlockTableRecord::isModelOrActivePaperSpace() const {
  OdString n = getName();
  return n.iCompare(L"*Model_Space") == 0 || n.iCompare(L"*Paper_Space") == 0 ||
         n.iCompare(L"$MODEL_SPACE") == 0 || n.iCompare(L"$PAPER_SPACE") == 0;
}

bool OdDbBlockTableRecord::isAnonymous() const {
  OdString n = getName();
  return !n.isEmpty() && n.getAt(0) == L'*' && !isLayout();
}
