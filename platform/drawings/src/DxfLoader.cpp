#include "DxfLoader.h"

#include <charconv>
#include <cstring>
#include <unordered_map>

#include "DxfClasses.h"


static uint64_t hexValue(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\r')) s.remove_suffix(1);
  uint64_t v = 0;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v, 16);
  return r.ec == std::errc() && r.ptr == s.data() + s.size() ? v : 0;
}

void DxfLoader::fail(const Chunk& at, const std::string& expected) const {
  std::string where = m_db.m_format == DxfFormat::Ascii ? "line " : "byte offset ";
  throw DxfSyntaxError{where + std::to_string(at.line) + ", group code 0 (\"" + std::string(at.type.substr(0, 40)) +
                       "\"): expected " + expected};
}

// The file ended where more was needed: says where it ended.
[[noreturn]] static void failAtEnd(const DxfTagScanner& sc, DxfFormat format, const std::string& expected) {
  std::string where = format == DxfFormat::Ascii ? "line " + std::to_string(sc.line())
                                                 : "byte offset " + std::to_string(sc.position());
  throw DxfSyntaxError{where + ": expected " + expected + ", found the end of the file"};
}

// Chunk types that only frame sections, tables and blocks: never an entity or object.
static bool isFraming(std::string_view type) {
  return type == "SECTION" || type == "ENDSEC" || type == "TABLE" || type == "ENDTAB" || type == "BLOCK" ||
         type == "ENDBLK" || type == "EOF";
}

// Reads the tags of one chunk: a 0 tag and everything up to the next 0 tag. Notes
// what the structure needs (handle, owner, name) on the way; every tag is checked.
std::string_view DxfLoader::pendingType() const {
  std::string_view type = m_pending.value;
  while (!type.empty() && type.back() == ' ') type.remove_suffix(1);
  return type;
}

bool DxfLoader::nextChunk(Chunk& c) {
  if (!m_havePending) return false;
  c = Chunk();
  c.type = m_pending.value;
  while (!c.type.empty() && c.type.back() == ' ') c.type.remove_suffix(1);
  c.line = m_pending.line;
  const char* begin = m_pending.raw.data();
  const int handleCode = c.type == "DIMSTYLE" ? 105 : 5;
  bool inGroup = false, pastCommon = false;
  DxfRawTag t;
  m_havePending = false;
  const char* end = begin + m_pending.raw.size();
  while (m_scanner->next(t)) {
    if (t.code == 0) {
      m_pending = t;
      m_havePending = true;
      break;
    }
    end = t.raw.data() + t.raw.size();
    if (t.code == 100) pastCommon = true;
    if (t.code == 102) {
      inGroup = !t.value.empty() && t.value[0] == '{';
      continue;
    }
    if (inGroup) continue;
    if (!pastCommon && t.code == handleCode && !c.hasHandle) {
      c.hasHandle = true;
      c.handle = m_db.m_format == DxfFormat::Ascii ? hexValue(t.value) : hexValue(t.value);
    } else if (!pastCommon && t.code == 330 && !c.hasOwner) {
      c.hasOwner = true;
      c.owner = hexValue(t.value);
    } else if (t.code == 2 && c.name.empty()) {
      c.name = t.value;
    } else if (t.code == 70 && !c.has70) {
      c.has70 = true;
      DxfTag v;
      v.text = dxfValueText(t, m_db.m_format);
      c.first70 = static_cast<int>(v.toInt());
    } else if (t.code == 67 && t.value.find('1') != std::string_view::npos) {
      c.paperSpace = m_db.m_format == DxfFormat::Ascii ? true : (t.value[0] != 0);
    }
  }
  c.raw = std::string_view(begin, static_cast<size_t>(end - begin));
  while (!c.name.empty() && (c.name.back() == ' ' || c.name.back() == '\r')) c.name.remove_suffix(1);
  return true;
}

OdDbObjectPtr DxfLoader::make(const Chunk& c, const OdRxClass* cls) {
  OdDbObjectPtr o(static_cast<OdDbObject*>(cls->create()));
  o->setDxfName(std::string(c.type));
  o->setSource(c.raw, m_db.m_format, c.line, m_db.m_style.shortCodes);
  return o;
}

// Gives the object its handle (a new one when the file has none or a duplicate)
// and notes its owner for resolution after the whole file is read.
OdDbObjectId DxfLoader::place(OdDbObject* o, const Chunk& c) {
  OdDbHandle h(c.handle);
  if (c.hasHandle && h.value() != 0) {
    OdDbObjectId id = m_db.getOdDbObjectId(h, true);
    if (id.stub()->object) {
      m_db.m_warnings.push_back("line " + std::to_string(c.line) + ": handle " + dxfFormatHandle(h.value()) + " of " +
                                std::string(c.type) + " is already used by " +
                                std::string(id.stub()->object->dxfName()) + " at line " +
                                std::to_string(id.stub()->object->sourceLine()) + "; the object gets a new handle");
      h = OdDbHandle();
    } else {
      id.stub()->object = o;
      o->attach(id.stub());
      m_db.m_objects.emplace_back(o);
    }
  }
  if (o->objectId().isNull()) {
    OdDbObjectId id = m_db.getOdDbObjectId(OdDbHandle(m_db.m_nextHandle++), true);
    id.stub()->object = o;
    o->attach(id.stub());
    m_db.m_objects.emplace_back(o);
  }
  if (c.hasOwner && c.owner) m_ownerRefs.emplace_back(o, c.owner);
  return o->objectId();
}

void DxfLoader::load(std::shared_ptr<const std::string> bytes) {
  m_db.m_source = bytes;
  m_data = *bytes;
  size_t start = 0;
  bool shortCodes = false;
  if (m_data.substr(0, kDxfBinarySentinel.size()) == kDxfBinarySentinel) {
    m_db.m_format = DxfFormat::Binary;
    start = kDxfBinarySentinel.size();
    // R12 binary files use one-byte group codes: "0" then "SECTION" directly.
    shortCodes = m_data.size() > start + 1 && m_data[start] == 0 && m_data[start + 1] == 'S';
  } else {
    m_db.m_format = DxfFormat::Ascii;
  }
  m_db.m_style.format = m_db.m_format;
  m_db.m_style.shortCodes = shortCodes;
  // Real files hold one object per 130 to 300 bytes: avoid rehashing while loading.
  m_db.m_stubs.reserve(m_data.size() / 128 + 64);
  m_db.m_objects.reserve(m_data.size() / 128 + 64);
  m_scanner = std::make_unique<DxfTagScanner>(m_data, m_db.m_format, shortCodes, start, 1);

  // Comments (999) before the first 0 tag are kept as they are.
  DxfRawTag t;
  for (;;) {
    if (!m_scanner->next(t)) failAtEnd(*m_scanner, m_db.m_format, "0/SECTION");
    if (t.code == 0) break;
    if (t.code != 999) {
      throw DxfSyntaxError{(m_db.m_format == DxfFormat::Ascii ? "line " : "byte offset ") + std::to_string(t.line) +
                           ", group code " + std::to_string(t.code) + ": expected 0/SECTION"};
    }
  }
  m_db.m_prefix.assign(m_data.substr(0, static_cast<size_t>(t.raw.data() - m_data.data())));
  if (m_db.m_format == DxfFormat::Ascii) {
    m_db.m_style.eol = (t.raw.size() > 1 && t.raw[t.raw.size() - 2] == '\r') ? "\r\n" : "\n";
    m_db.m_style.padCodes = !t.raw.empty() && t.raw[0] == ' ';
  }
  m_pending = t;
  m_havePending = true;

  // Files without a header are R12-era; a header overrides this.
  m_db.m_version = DxfVersion::R12;
  m_db.m_codec = DxfCodec::make("", DxfVersion::R12);
  Chunk c;
  bool sawEof = false;
  while (nextChunk(c)) {
    if (c.type == "EOF") {
      // With no section at all there is no drawing: most likely not a DXF file, or a cut one.
      if (m_db.m_sections.empty()) fail(c, "0/SECTION");
      sawEof = true;
      m_db.m_eof = make(c, OdDbProxyObject::desc());
      m_db.m_suffix.assign(m_data.substr(static_cast<size_t>(c.raw.data() + c.raw.size() - m_data.data())));
      break;
    }
    if (c.type != "SECTION") fail(c, "0/SECTION or 0/EOF");
    if (c.name.empty()) fail(c, "a section name (group code 2)");
    m_db.m_sections.emplace_back();
    DxfSection& s = m_db.m_sections.back();
    s.name = std::string(c.name);
    s.head = make(c, OdDbProxyObject::desc());
    if (s.name == "HEADER") {
      m_db.m_header = s.head;
      readHeader(c);
      readPlain(s);
    } else if (s.name == "TABLES") {
      readTables(s);
    } else if (s.name == "BLOCKS") {
      readBlocks(s);
    } else if (s.name == "ENTITIES") {
      readEntities(s);
    } else if (s.name == "OBJECTS") {
      readObjects(s);
    } else {
      readPlain(s);
    }
    if (!m_havePending) failAtEnd(*m_scanner, m_db.m_format, "0/ENDSEC to close section " + s.name);
    nextChunk(c);  // the ENDSEC that ended the section
    s.endsec = make(c, OdDbProxyObject::desc());
  }
  if (!sawEof) failAtEnd(*m_scanner, m_db.m_format, "0/EOF");
  finish();
}

void DxfLoader::readHeader(const Chunk& c) {
  // The version and code page decide how everything else is read.
  DxfTagScanner sc(c.raw, m_db.m_format, m_db.m_style.shortCodes, 0, c.line);
  DxfRawTag t;
  std::string var, acadver, codepage;
  size_t acadverAt = 0;  // where the value is: line, or offset in the file
  uint64_t seed = 0;
  while (sc.next(t)) {
    if (t.code == 9) {
      var = std::string(t.value);
    } else if (var == "$ACADVER" && t.code == 1) {
      acadver = std::string(t.value);
      acadverAt = m_db.m_format == DxfFormat::Ascii ? t.line + 1 : static_cast<size_t>(t.value.data() - m_data.data());
    } else if (var == "$DWGCODEPAGE" && t.code == 3) {
      codepage = std::string(t.value);
    } else if (var == "$HANDSEED" && t.code == 5) {
      seed = hexValue(t.value);
    }
  }
  while (!acadver.empty() && acadver.back() == ' ') acadver.pop_back();
  auto v = dxfver::fromAcadVer(acadver);
  if (!v) {
    if (!acadver.empty())
      throw DxfSyntaxError{(m_db.m_format == DxfFormat::Ascii ? "line " : "byte offset ") + std::to_string(acadverAt) +
                           ", group code 1: expected a known $ACADVER (AC1003 to AC1032), found \"" +
                           acadver.substr(0, 40) + "\""};
    v = DxfVersion::R12;  // files that write no version are R12-era
  }
  m_db.m_version = *v;
  m_db.m_codec = DxfCodec::make(codepage, *v);
  m_db.m_fileHandseed = seed;
  if (seed > m_db.m_nextHandle) m_db.m_nextHandle = seed;
}

void DxfLoader::readPlain(DxfSection& s) {
  Chunk c;
  while (m_havePending) {
    if (pendingType() == "ENDSEC") return;
    if (pendingType() == "SECTION" || pendingType() == "EOF") {
      nextChunk(c);
      fail(c, "0/ENDSEC to close section " + s.name);
    }
    nextChunk(c);
    s.items.push_back(make(c, OdDbProxyObject::desc()));
  }
}

void DxfLoader::readTables(DxfSection& s) {
  Chunk c;
  while (m_havePending) {
    if (pendingType() == "ENDSEC") return;
    nextChunk(c);
    if (c.type != "TABLE") fail(c, "0/TABLE or 0/ENDSEC in the TABLES section");
    const DxfTableKind* kind = dxfTableKind(c.name);
    OdDbObjectPtr tableObj = make(c, kind ? kind->table : OdDbSymbolTable::desc());
    auto* table = static_cast<OdDbSymbolTable*>(tableObj.get());
    place(table, c);
    s.items.push_back(tableObj);
    if (kind) m_db.m_tables[kind->slot] = table->objectId();
    for (;;) {
      if (!m_havePending) failAtEnd(*m_scanner, m_db.m_format, "0/ENDTAB to close table " + std::string(c.name));
      Chunk r;
      nextChunk(r);
      if (r.type == "ENDTAB") {
        table->endTab = make(r, OdDbProxyObject::desc());
        break;
      }
      if (isFraming(r.type))
        fail(r, "0/ENDTAB to close table " + std::string(c.name));
      OdDbObjectPtr rec = make(r, kind ? kind->record : OdDbSymbolTableRecord::desc());
      place(rec.get(), r);
      if (!r.hasOwner) rec->setOwnerIdRaw(table->objectId());
      table->records().push_back(rec->objectId());
    }
  }
}

OdDbBlockTableRecord* DxfLoader::blockFor(const Chunk& b) {
  // R13+: the BLOCK points at its record; older files (and some writers) only name it.
  if (b.hasOwner && b.owner) {
    OdDbObjectId id = m_db.getOdDbObjectId(OdDbHandle(b.owner));
    if (id.stub() && id.stub()->object && id.stub()->object->isKindOf(OdDbBlockTableRecord::desc()))
      return static_cast<OdDbBlockTableRecord*>(id.stub()->object);
  }
  if (!m_blocksIndexed) {
    // Only files whose BLOCKs do not point at their records need the names.
    m_blocksIndexed = true;
    if (auto bt = OdSmartPtr<OdDbSymbolTable>::cast(m_db.getBlockTableId().openObject()))
      for (auto& id : bt->records())
        if (id.stub() && id.stub()->object)
          m_blocksByName.emplace(odstr::folded(static_cast<OdDbBlockTableRecord*>(id.stub()->object)->getName().view()),
                                 static_cast<OdDbBlockTableRecord*>(id.stub()->object));
  }
  std::wstring key = odstr::folded(m_db.codec().decode(b.name).view());
  auto it = m_blocksByName.find(key);
  if (it != m_blocksByName.end()) return it->second;
  return nullptr;
}

void DxfLoader::readBlocks(DxfSection& s) {
  Chunk c;
  while (m_havePending) {
    if (pendingType() == "ENDSEC") return;
    nextChunk(c);
    if (c.type != "BLOCK") fail(c, "0/BLOCK or 0/ENDSEC in the BLOCKS section");
    OdDbObjectPtr begin = make(c, OdDbBlockBegin::desc());
    OdDbBlockTableRecord* btr = blockFor(c);
    if (btr && !btr->blockBegin.isNull()) {
      // A second definition keeps its own made-up record, so that both are written back.
      m_db.m_warnings.push_back("line " + std::to_string(c.line) + ": block " + std::string(c.name) +
                                " is defined a second time");
      btr = nullptr;
    }
    if (!btr) btr = syntheticBlock(c);
    place(begin.get(), c);
    begin->setOwnerIdRaw(btr->objectId());
    btr->blockBegin = begin->objectId();
    s.items.push_back(OdDbObjectPtr(btr));
    for (;;) {
      if (!m_havePending) failAtEnd(*m_scanner, m_db.m_format, "0/ENDBLK to close block " + std::string(c.name));
      Chunk e;
      nextChunk(e);
      if (e.type == "ENDBLK") {
        OdDbObjectPtr end = make(e, OdDbBlockEnd::desc());
        place(end.get(), e);
        end->setOwnerIdRaw(btr->objectId());
        btr->blockEnd = end->objectId();
        break;
      }
      if (isFraming(e.type))
        fail(e, "0/ENDBLK to close block " + std::string(c.name));
      OdDbObjectPtr ent = make(e, dxfEntityClass(e.type, e.first70));
      place(ent.get(), e);
      if (!e.hasOwner) ent->setOwnerIdRaw(btr->objectId());
      btr->entities().push_back(ent->objectId());
    }
  }
}

OdDbBlockTableRecord* DxfLoader::syntheticBlock(const Chunk& c) {
  // R12 files have no block records; some writers leave a block without one.
  // The record is made up so that the block can be found, and is not written.
  OdSmartPtr<OdDbBlockTableRecord> btr = OdDbBlockTableRecord::createObject();
  btr->setDxfName("BLOCK_RECORD");
  btr->synthetic = true;
  DxfTagList& t = btr->tagsForWrite();
  t.emplace_back(0, "BLOCK_RECORD");
  t.emplace_back(2, std::string(c.name));
  OdDbObjectId id = m_db.getOdDbObjectId(OdDbHandle(m_db.m_nextHandle++), true);
  id.stub()->object = btr.get();
  btr->attach(id.stub());
  m_db.m_objects.emplace_back(btr.get());
  if (c.line && dxfver::hasObjects(m_db.version()) && !m_db.getBlockTableId().isNull())
    m_db.m_warnings.push_back("line " + std::to_string(c.line) + ": block " + std::string(c.name) +
                              " has no block record");
  if (m_db.getBlockTableId().isNull()) {
    // One made-up block table for the whole file.
    OdSmartPtr<OdDbBlockTable> bt = OdDbBlockTable::createObject();
    bt->setDxfName("TABLE");
    bt->synthetic = true;
    OdDbObjectId tid = m_db.getOdDbObjectId(OdDbHandle(m_db.m_nextHandle++), true);
    tid.stub()->object = bt.get();
    bt->attach(tid.stub());
    m_db.m_objects.emplace_back(bt.get());
    m_db.m_tables[0] = tid;
  }
  auto* bt = static_cast<OdDbSymbolTable*>(m_db.getBlockTableId().stub()->object);
  bt->records().push_back(id);
  bt->invalidateIndex();
  btr->setOwnerIdRaw(bt->objectId());
  m_blocksByName[odstr::folded(m_db.codec().decode(c.name).view())] = btr.get();
  return btr.get();
}

void DxfLoader::readEntities(DxfSection& s) {
  Chunk c;
  while (m_havePending) {
    if (pendingType() == "ENDSEC") return;
    nextChunk(c);
    if (isFraming(c.type)) fail(c, "an entity or 0/ENDSEC to close section ENTITIES");
    OdDbObjectPtr ent = make(c, dxfEntityClass(c.type, c.first70));
    place(ent.get(), c);
    s.items.push_back(ent);
    m_sectionEntities.push_back({ent.get(), c.paperSpace});
  }
}

void DxfLoader::readObjects(DxfSection& s) {
  Chunk c;
  while (m_havePending) {
    if (pendingType() == "ENDSEC") return;
    nextChunk(c);
    if (isFraming(c.type)) fail(c, "an object or 0/ENDSEC to close section OBJECTS");
    OdDbObjectPtr obj = make(c, dxfObjectClass(c.type));
    place(obj.get(), c);
    s.items.push_back(obj);
    if (m_db.m_namedObjects.isNull() && c.type == "DICTIONARY") m_db.m_namedObjects = obj->objectId();
  }
}

void DxfLoader::finish() {
  // Every drawing has a model space and a paper space, even an R12 file that never
  // names them.
  layoutBlock(false);
  layoutBlock(true);
  for (auto& [obj, owner] : m_ownerRefs) {
    OdDbObjectId id = m_db.getOdDbObjectId(OdDbHandle(owner), true);
    obj->setOwnerIdRaw(id);
    if (!id.stub()->object)
      m_db.m_warnings.push_back("line " + std::to_string(obj->sourceLine()) + ": the owner " +
                                dxfFormatHandle(owner) + " of " + std::string(obj->dxfName()) + " does not exist");
  }
  // Entities of the ENTITIES section belong to model space or the active paper space.
  for (auto& [ent, paper] : m_sectionEntities) {
    OdDbObject* owner = ent->ownerId().stub() ? ent->ownerId().stub()->object : nullptr;
    OdDbBlockTableRecord* btr = nullptr;
    if (owner && owner->isKindOf(OdDbBlockTableRecord::desc())) {
      btr = static_cast<OdDbBlockTableRecord*>(owner);
    } else if (!owner || !owner->isKindOf(OdDbEntity::desc())) {
      btr = layoutBlock(paper);
      if (ent->ownerId().isNull()) ent->setOwnerIdRaw(btr->objectId());
    }
    if (btr) btr->sectionEntities().push_back(ent->objectId());
  }
}

OdDbBlockTableRecord* DxfLoader::layoutBlock(bool paper) {
  OdDbBlockTableRecord*& known = paper ? m_paperSpace : m_modelSpace;
  if (known) return known;
  const wchar_t* names[] = {paper ? L"*Paper_Space" : L"*Model_Space", paper ? L"$PAPER_SPACE" : L"$MODEL_SPACE"};
  if (auto bt = OdSmartPtr<OdDbSymbolTable>::cast(m_db.getBlockTableId().openObject()))
    for (const wchar_t* n : names) {
      OdDbObjectId id = bt->getAt(n);
      if (!id.isNull()) return known = static_cast<OdDbBlockTableRecord*>(id.stub()->object);
    }
  Chunk c;
  std::string name = paper ? "*Paper_Space" : "*Model_Space";
  c.name = name;
  return known = syntheticBlock(c);
}
