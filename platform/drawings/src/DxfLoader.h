// Builds a database from the bytes of a DXF file.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "drawings/OdDbDatabase.h"

class DxfLoader {
public:
  explicit DxfLoader(OdDbDatabase& db) : m_db(db) {}
  // Throws DxfSyntaxError; the database is then to be thrown away.
  void load(std::shared_ptr<const std::string> bytes);

private:
  struct Chunk {
    std::string_view type;  // value of the 0 tag
    std::string_view raw;
    std::string_view name;  // first code 2 of the chunk (section, table and block names)
    uint64_t handle = 0;
    uint64_t owner = 0;
    uint32_t line = 0;
    int first70 = 0;  // the first code 70 (a DIMENSION's type)
    bool has70 = false;
    bool hasHandle = false, hasOwner = false, paperSpace = false;
  };

  bool nextChunk(Chunk& c);
  // The type of the chunk that nextChunk reads next (valid while m_havePending).
  std::string_view pendingType() const;
  [[noreturn]] void fail(const Chunk& at, const std::string& expected) const;
  void readHeader(const Chunk& c);
  void readTables(DxfSection& s);
  void readBlocks(DxfSection& s);
  void readEntities(DxfSection& s);
  void readObjects(DxfSection& s);
  void readPlain(DxfSection& s);
  OdDbObjectPtr make(const Chunk& c, const OdRxClass* cls);
  OdDbObjectId place(OdDbObject* o, const Chunk& c);
  OdDbBlockTableRecord* blockFor(const Chunk& blockBegin);
  OdDbBlockTableRecord* syntheticBlock(const Chunk& blockBegin);
  OdDbBlockTableRecord* layoutBlock(bool paperSpace);
  void finish();

  OdDbDatabase& m_db;
  std::string_view m_data;
  std::unique_ptr<DxfTagScanner> m_scanner;
  DxfRawTag m_pending;  // the 0 tag that starts the next chunk
  bool m_havePending = false;
  Chunk m_cur;
  std::unordered_map<std::wstring, OdDbBlockTableRecord*> m_blocksByName;
  bool m_blocksIndexed = false;
  std::vector<std::pair<OdDbObject*, uint64_t>> m_ownerRefs;
  std::vector<std::pair<OdDbObject*, bool>> m_sectionEntities;  // entity, in paper space (67)
  OdDbBlockTableRecord* m_modelSpace = nullptr;
  OdDbBlockTableRecord* m_paperSpace = nullptr;
};
