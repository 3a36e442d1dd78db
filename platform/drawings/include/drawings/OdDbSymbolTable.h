// Symbol tables and their records.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "drawings/OdDbEntity.h"
#include "drawings/OdDbObject.h"

class OdDbSymbolTableRecord : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbSymbolTableRecord)

public:
  OdString getName() const;
  // Renaming keeps the table's name index current.
  void setName(const OdString& name);
  int16_t flags() const;
  void setFlags(int16_t f);
  // Externally referenced ("xref|name"), flag 16.
  bool isDependent() const { return (flags() & 16) != 0; }
  bool isResolved() const { return (flags() & 32) != 0; }

protected:
  // Where the name and flags live: after the record's own subclass marker, or
  // right after the handle in R12 files.
  Range recordRange() const;
};
using OdDbSymbolTableRecordPtr = OdSmartPtr<OdDbSymbolTableRecord>;

class OdDbSymbolTable;
using OdDbSymbolTablePtr = OdSmartPtr<OdDbSymbolTable>;

class OdDbSymbolTable : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbSymbolTable)

public:
  // The table's name in DXF ("LAYER", "DIMSTYLE", ...).
  OdString tableName() const;
  // Case-insensitive lookup; erased records are not found unless asked for.
  OdDbObjectId getAt(const OdString& name, bool getErased = false) const;
  bool has(const OdString& name) const { return !getAt(name).isNull(); }
  // The same lookup by a name as the file spells it, remembered per spelling:
  // entities name their style or block this way each time they are read.
  OdDbObjectId getAtSpelled(std::string_view nameInFile, const OdDbObject& reader) const;
  // Adds a record (name must be set and new); returns its id.
  OdDbObjectId add(OdDbSymbolTableRecord* record);
  // Records in table order, erased ones left out.
  OdDbObjectIdArray recordIds(bool includeErased = false) const;
  // The record class that this table holds.
  virtual const OdRxClass* recordClass() const { return OdDbSymbolTableRecord::desc(); }

  // Loader and writer access: the order of records as in the file, and the ENDTAB
  // that closes the table.
  std::vector<OdDbObjectId>& records() { return m_records; }
  OdDbObjectPtr endTab;
  // R12 files have no block record table: it is made up and not written.
  bool synthetic = false;
  void invalidateIndex() { m_indexValid = false; }

private:
  std::vector<OdDbObjectId> m_records;
  mutable std::unordered_map<std::wstring, OdDbObjectId> m_index;  // folded name -> id
  mutable std::unordered_map<std::string, OdDbObjectId> m_spelled;  // found names as files spell them -> id
  mutable bool m_indexValid = false;
};

#define OD_DECLARE_TABLE(Table, Record)                                          \
  class Record : public OdDbSymbolTableRecord {                                  \
    ODRX_DECLARE_MEMBERS(Record)                                                 \
  };                                                                             \
  using Record##Ptr = OdSmartPtr<Record>;                                        \
  class Table : public OdDbSymbolTable {                                         \
    ODRX_DECLARE_MEMBERS(Table)                                                  \
    const OdRxClass* recordClass() const override { return Record::desc(); }     \
  };                                                                             \
  using Table##Ptr = OdSmartPtr<Table>;

OD_DECLARE_TABLE(OdDbLayerTable, OdDbLayerTableRecord)
OD_DECLARE_TABLE(OdDbLinetypeTable, OdDbLinetypeTableRecord)
OD_DECLARE_TABLE(OdDbTextStyleTable, OdDbTextStyleTableRecord)
OD_DECLARE_TABLE(OdDbRegAppTable, OdDbRegAppTableRecord)
OD_DECLARE_TABLE(OdDbViewTable, OdDbViewTableRecord)
OD_DECLARE_TABLE(OdDbUCSTable, OdDbUCSTableRecord)
OD_DECLARE_TABLE(OdDbViewportTable, OdDbViewportTableRecord)

// A block: its record (BLOCK_RECORD, or made up for R12 files, which have none),
// the BLOCK and ENDBLK entities and the entities between them.
class OdDbBlockTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbBlockTableRecord)

public:
  OdDbObjectIdArray entityIds(bool includeErased = false) const;
  OdDbObjectId appendOdDbEntity(OdDbEntity* entity);
  bool isLayout() const;    // *Model_Space or *Paper_Space...
  bool isAnonymous() const; // name starts with '*'
  OdDbObjectId blockBegin, blockEnd;
  // Entities in file order between BLOCK and ENDBLK.
  std::vector<OdDbObjectId>& entities() { return m_entities; }
  // Entities of model space and the active paper space layout, which the file keeps
  // in the ENTITIES section (whose own list decides their order in the file).
  std::vector<OdDbObjectId>& sectionEntities() { return m_sectionEntities; }
  bool isModelOrActivePaperSpace() const;
  // An R12 drawing has no BLOCK_RECORD table: the record is made up and not written.
  bool synthetic = false;

private:
  std::vector<OdDbObjectId> m_entities;
  std::vector<OdDbObjectId> m_sectionEntities;
};
using OdDbBlockTableRecordPtr = OdSmartPtr<OdDbBlockTableRecord>;

class OdDbBlockTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbBlockTable)
  const OdRxClass* recordClass() const override { return OdDbBlockTableRecord::desc(); }
};
using OdDbBlockTablePtr = OdSmartPtr<OdDbBlockTable>;

using OdDbLayerTableRecordPtr = OdSmartPtr<OdDbLayerTableRecord>;
