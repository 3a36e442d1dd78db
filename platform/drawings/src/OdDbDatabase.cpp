#include "drawings/OdDbDatabase.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <unordered_set>

#include "DxfLoader.h"
#include "DxfWriter.h"
#include "ResBufTags.h"
#include "UndoHistory.h"
#include "drawings/NewDrawing.h"

const OdRxClass* OdDbDatabase::desc() {
  static const OdRxClass cls(L"OdDbDatabase", OdRxObject::desc(), L"", nullptr);
  return &cls;
}

OdDbDatabase::OdDbDatabase() : m_codec(DxfCodec::make("", DxfVersion::R2018)) {}

OdDbDatabase::~OdDbDatabase() {
  // Objects may still be held elsewhere: cut them loose from the stubs that die with us.
  for (auto& o : m_objects) o->attach(nullptr);
}

OdDbDatabasePtr OdDbDatabase::readDxf(std::string bytes) {
  OdDbDatabasePtr db(new OdDbDatabase());
  try {
    DxfLoader(*db).load(std::make_shared<const std::string>(std::move(bytes)));
  } catch (const DxfSyntaxError& e) {
    throw OdError(eBadDxfFile, e.message);
  }
  return db;
}

OdDbDatabasePtr OdDbDatabase::readDxfFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw OdError(eCantOpenFile, "cannot open \"" + path + "\" for reading");
  std::string bytes;
  in.seekg(0, std::ios::end);
  auto size = in.tellg();
  if (size < 0) throw OdError(eCantOpenFile, "cannot read \"" + path + "\"");
  bytes.resize(static_cast<size_t>(size));
  in.seekg(0);
  in.read(bytes.data(), size);
  if (!in) throw OdError(eCantOpenFile, "cannot read \"" + path + "\"");
  try {
    return readDxf(std::move(bytes));
  } catch (const OdError& e) {
    throw OdError(e.code(), path + ": " + e.what());
  }
}

OdDbDatabasePtr OdDbDatabase::createNew(DxfVersion version, bool metric) {
  return readDxf(newDrawingDxf(version, metric));
}

std::string OdDbDatabase::toDxf(const DxfSaveOptions& options, std::vector<std::string>* leftOut) const {
  return DxfWriter(*this, options, leftOut).write();
}

void OdDbDatabase::writeDxfFile(const std::string& path, const DxfSaveOptions& options,
                                std::vector<std::string>* leftOut) const {
  std::string bytes = toDxf(options, leftOut);
  std::string tmp = path + ".tmp~";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) throw OdError(eFileWriteError, "cannot write \"" + path + "\": " + std::strerror(errno));
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      out.close();
      std::remove(tmp.c_str());
      throw OdError(eFileWriteError, "writing \"" + path + "\" failed: " + std::strerror(errno));
    }
  }
  if (std::rename(tmp.c_str(), path.c_str()) != 0) {
    int err = errno;
    std::remove(tmp.c_str());
    throw OdError(eFileWriteError, "cannot replace \"" + path + "\": " + std::strerror(err));
  }
}

OdDbObjectId OdDbDatabase::getOdDbObjectId(OdDbHandle h, bool createIfNotFound) {
  if (h.isNull()) return OdDbObjectId();
  auto it = m_stubs.find(h.value());
  if (it != m_stubs.end()) return OdDbObjectId(it->second);
  if (!createIfNotFound) return OdDbObjectId();
  m_stubArena.push_back(OdDbStub{h, this, nullptr});
  OdDbStub* s = &m_stubArena.back();
  m_stubs.emplace(h.value(), s);
  if (h.value() >= m_nextHandle) m_nextHandle = h.value() + 1;
  return OdDbObjectId(s);
}

OdDbObjectId OdDbDatabase::getOdDbObjectId(OdDbHandle h) const {
  auto it = m_stubs.find(h.value());
  return it == m_stubs.end() ? OdDbObjectId() : OdDbObjectId(it->second);
}

OdDbObjectId OdDbDatabase::attachNew(OdDbObject* object, OdDbHandle handle) {
  if (!object) throw OdError(eInvalidInput);
  if (object->database()) throw OdError(eAlreadyInDb);
  if (handle.isNull() || (m_stubs.count(handle.value()) && m_stubs[handle.value()]->object))
    handle = OdDbHandle(m_nextHandle);
  OdDbObjectId id = getOdDbObjectId(handle, true);
  id.stub()->object = object;
  object->attach(id.stub());
  m_objects.emplace_back(object);
  ++m_changes;
  if (m_undo) m_undo->recordNew(object);
  object->setOpenMode(OdDb::kForWrite);
  if (object->dxfName().empty()) object->setDxfName(object->isA()->dxfName().toUtf8());
  return id;
}

OdDbObjectId OdDbDatabase::addOdDbObject(OdDbObject* object, OdDbObjectId ownerId, OdDbHandle handle) {
  OdDbObjectId id = attachNew(object, handle);
  // A new object's tags start with its name and handle; the owner follows.
  DxfTagList& t = object->tagsForWrite();
  if (t.empty()) t.emplace_back(0, std::string(object->dxfName()));
  if (dxfver::hasObjects(m_version) || headerInt("$HANDLING", 1)) {
    int hc = object->dxfName() == "DIMSTYLE" ? 105 : 5;
    std::string h = dxfFormatHandle(id.getHandle().value());
    if (t.size() < 2 || (t[1].code != hc)) t.insert(t.begin() + 1, DxfTag(hc, std::move(h)));
    else t[1].set(std::move(h));
  }
  object->setOwnerId(ownerId);
  updateHandseed();
  return id;
}

OdDbObjectId OdDbDatabase::addSpelledObject(OdDbObject* object, OdDbObjectId ownerId) {
  OdDbObjectId id = attachNew(object, OdDbHandle());
  object->setOwnerIdRaw(ownerId);
  updateHandseed();
  return id;
}

void OdDbDatabase::updateHandseed() {
  if (!m_header) return;
  recordUndo(m_header.get());  // the header has no handle, so it cannot record itself
  DxfTagList& t = m_header->tagsForWrite();
  size_t i = m_handseedTag;
  if (i == 0 || i >= t.size() || t[i].code != 5 || t[i - 1].code != 9 || t[i - 1].text != "$HANDSEED") {
    i = 0;
    for (size_t k = 0; k + 1 < t.size(); ++k)
      if (t[k].code == 9 && t[k].text == "$HANDSEED") {
        i = k + 1;
        break;
      }
  }
  if (i == 0 || t[i].code != 5) {
    setHeaderString("$HANDSEED", 5, OdString::fromUtf8(dxfFormatHandle(m_nextHandle)));
    return;
  }
  m_handseedTag = i;
  t[i].set(dxfFormatHandle(m_nextHandle));
}

DxfSection* OdDbDatabase::section(std::string_view name) {
  for (auto& s : m_sections)
    if (s.name == name) return &s;
  return nullptr;
}

const DxfSection* OdDbDatabase::section(std::string_view name) const {
  for (auto& s : m_sections)
    if (s.name == name) return &s;
  return nullptr;
}

static OdDbObjectId findBlock(const OdDbDatabase& db, const wchar_t* a, const wchar_t* b) {
  auto bt = OdSmartPtr<OdDbSymbolTable>::cast(db.getBlockTableId().openObject());
  if (!bt) return OdDbObjectId();
  OdDbObjectId id = bt->getAt(a);
  return id.isNull() ? bt->getAt(b) : id;
}

OdDbObjectId OdDbDatabase::getModelSpaceId() const { return findBlock(*this, L"*Model_Space", L"$MODEL_SPACE"); }
OdDbObjectId OdDbDatabase::getPaperSpaceId() const { return findBlock(*this, L"*Paper_Space", L"$PAPER_SPACE"); }

OdDbObjectId OdDbDatabase::registerApp(const OdString& name) {
  auto table = OdSmartPtr<OdDbSymbolTable>::cast(getRegAppTableId().openObject(OdDb::kForWrite));
  if (!table) return OdDbObjectId();
  OdDbObjectId id = table->getAt(name);
  if (!id.isNull()) return id;
  OdSmartPtr<OdDbRegAppTableRecord> rec = OdDbRegAppTableRecord::createObject();
  rec->setDxfName("APPID");
  addOdDbObject(rec.get(), table->objectId());
  DxfTagList& t = rec->tagsForWrite();
  if (dxfver::hasObjects(m_version)) {
    t.emplace_back(100, "AcDbSymbolTableRecord");
    t.emplace_back(100, "AcDbRegAppTableRecord");
  }
  t.emplace_back(2, m_codec.encode(name.view()));
  t.emplace_back(70, "0");
  return table->add(rec.get());
}

// ---- header variables ----

namespace {
// The value tags of a header variable: [begin, end) in the header's tags.
struct VarRange {
  size_t begin = 0, end = 0;
  bool found = false;
};

VarRange findVar(const OdDbObject& header, const std::string& name) {
  const auto& t = header.tags();
  for (size_t i = 0; i < t.size(); ++i) {
    if (t[i].code == 9 && t[i].text == name) {
      size_t j = i + 1;
      while (j < t.size() && t[j].code != 9) ++j;
      return VarRange{i + 1, j, true};
    }
  }
  return VarRange{t.size(), t.size(), false};
}
}  // namespace

OdResBufPtr OdDbDatabase::getHeaderVar(const OdString& name) const {
  if (!m_header) return OdResBufPtr();
  VarRange r = findVar(*m_header, name.toUtf8());
  if (!r.found) return OdResBufPtr();
  return resBufChain(m_codec, m_header->tags(), r.begin, r.end);
}

void OdDbDatabase::setHeaderVar(const OdString& name, const OdResBuf* values) {
  if (!m_header) throw OdError(eNotApplicable, "the drawing has no HEADER section");
  std::string n = name.toUtf8();
  DxfTagList fresh = tagsOfChain(m_codec, values);
  VarRange r = findVar(*m_header, n);
  recordUndo(m_header.get());  // the header has no handle, so it cannot record itself
  DxfTagList& t = m_header->tagsForWrite();
  if (r.found && r.end - r.begin == fresh.size()) {
    // Same shape: change values in place, so untouched parts keep their spelling.
    for (size_t k = 0; k < fresh.size(); ++k) {
      if (t[r.begin + k].code == fresh[k].code) t[r.begin + k].set(fresh[k].text);
      else t[r.begin + k] = fresh[k];
    }
    return;
  }
  if (r.found) {
    t.erase(t.begin() + static_cast<long>(r.begin), t.begin() + static_cast<long>(r.end));
    t.insert(t.begin() + static_cast<long>(r.begin), fresh.begin(), fresh.end());
    return;
  }
  t.emplace_back(9, n);
  t.insert(t.end(), fresh.begin(), fresh.end());
}

double OdDbDatabase::headerDouble(const char* name, double dflt) const {
  OdResBufPtr rb = getHeaderVar(OdString::fromUtf8(name));
  return rb ? (dxfTypeOf(rb->restype()) == DxfType::Double ? rb->getDouble() : static_cast<double>(rb->getInt64())) : dflt;
}

int OdDbDatabase::headerInt(const char* name, int dflt) const {
  OdResBufPtr rb = getHeaderVar(OdString::fromUtf8(name));
  return rb ? static_cast<int>(rb->getInt64()) : dflt;
}

OdString OdDbDatabase::headerString(const char* name, const OdString& dflt) const {
  OdResBufPtr rb = getHeaderVar(OdString::fromUtf8(name));
  return rb ? rb->getString() : dflt;
}

void OdDbDatabase::setHeaderDouble(const char* name, int code, double v) {
  setHeaderVar(OdString::fromUtf8(name), OdResBuf::newRb(code, v).get());
}

void OdDbDatabase::setHeaderInt(const char* name, int code, int v) {
  setHeaderVar(OdString::fromUtf8(name), OdResBuf::newRb(code, static_cast<int32_t>(v)).get());
}

void OdDbDatabase::setHeaderString(const char* name, int code, const OdString& v) {
  setHeaderVar(OdString::fromUtf8(name), OdResBuf::newRb(code, v).get());
}

DxfStyle dxfStyleOf(const OdDbDatabase& db) {
  DxfStyle st;
  st.format = db.format();
  st.shortCodes = db.format() == DxfFormat::Binary && dxfver::binaryShortCodes(db.version());
  return st;
}

// ---- purge ----

void OdDbDatabase::purge(OdDbObjectIdArray& ids) const {
  std::unordered_set<OdDbStub*> used;
  // Names that tags use to refer to records (layer 8, linetype 6, text style 7,
  // block 2 of inserts and dimensions, dimension style 3), resolved per table.
  std::unordered_set<std::wstring> names[9];
  auto noteName = [&](int slot, std::string_view bytes) { names[slot].insert(odstr::folded(m_codec.decode(bytes).view())); };
  auto scan = [&](const OdDbObject* o) {
    std::string_view type = o->dxfName();
    const bool isEntity = o->isKindOf(OdDbEntity::desc());
    const bool refersToStyle = type == "DIMENSION" || type == "ARC_DIMENSION" || type == "LARGE_RADIAL_DIMENSION" ||
                               type == "LEADER" || type == "TOLERANCE";
    bool inGroup = false, first = true;
    o->forEachTag([&](int c, std::string_view text) {
      if (first) { first = false; return; }  // the 0 tag
      if (c == 102) { inGroup = !text.empty() && text[0] == '{'; return; }
      if (inGroup || c == 330 || c == 5 || c == 105) return;  // owners and reactors do not keep an object
      if ((c >= 340 && c <= 369) || (c >= 390 && c <= 399) || c == 1005 || c == 331 || c == 332) {
        DxfTag h;
        h.text = std::string(text);
        if (OdDbStub* s = getOdDbObjectId(OdDbHandle(h.toHandle())).stub()) used.insert(s);
        return;
      }
      if (isEntity) {
        if (c == 8) noteName(1, text);
        else if (c == 6) noteName(2, text);
        else if (c == 7 && !refersToStyle) noteName(3, text);
        else if (c == 3 && refersToStyle) noteName(4, text);
        else if (c == 2 && (type == "INSERT" || refersToStyle)) noteName(0, text);
      } else if (type == "LAYER" && c == 6) {
        noteName(2, text);
      } else if (type == "DIMSTYLE" && c >= 5 && c <= 7 && !text.empty()) {
        // Arrows by name; older files leave out the underscore of the standard ones.
        noteName(0, text);
        noteName(0, "_" + std::string(text));
      }
    });
    // A child style ("A$0") keeps its parent.
    if (type == "DIMSTYLE") {
      OdString n = static_cast<const OdDbSymbolTableRecord*>(o)->getName();
      int dollar = n.reverseFind(L'$');
      if (dollar > 0 && dollar + 1 < n.getLength()) names[4].insert(odstr::folded(n.left(dollar).view()));
    }
  };
  for (const auto& o : m_objects)
    if (!o->isErased()) scan(o.get());
  // Header variables name the current layer, linetype, text style and dimension style.
  const std::pair<const char*, int> headerRefs[] = {{"$CLAYER", 1}, {"$CELTYPE", 2}, {"$TEXTSTYLE", 3}, {"$DIMSTYLE", 4},
                                                    {"$DIMTXSTY", 3}, {"$DIMBLK", 0}, {"$DIMBLK1", 0}, {"$DIMBLK2", 0},
                                                    {"$DIMLDRBLK", 0}, {"$DIMLTYPE", 2}, {"$DIMLTEX1", 2},
                                                    {"$DIMLTEX2", 2}};
  for (auto& [var, slot] : headerRefs) names[slot].insert(odstr::folded(headerString(var).view()));
  std::vector<OdDbObjectId> keep;
  for (auto& id : ids) {
    OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
    if (!o || used.count(id.stub())) continue;
    if (auto* rec = dynamic_cast<OdDbSymbolTableRecord*>(o)) {
      int slot = -1;
      for (int k = 0; k < 9; ++k)
        if (m_tables[k] == rec->ownerId()) slot = k;
      std::wstring n = odstr::folded(rec->getName().view());
      if (slot >= 0 && names[slot].count(n)) continue;
      if (slot >= 0 && names[slot].count(odstr::folded((L"_" + rec->getName()).view()))) continue;
      // Records every drawing needs.
      if ((slot == 1 && n == L"0") || (slot == 2 && (n == L"CONTINUOUS" || n == L"BYLAYER" || n == L"BYBLOCK")) ||
          (slot == 0 && static_cast<OdDbBlockTableRecord*>(rec)->isLayout()) || (slot == 5 && n == L"ACAD"))
        continue;
    }
    keep.push_back(id);
  }
  ids.swap(keep);
}
