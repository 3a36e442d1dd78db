#include "drawings/OdDbObject.h"

#include <algorithm>
#include <atomic>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDictionary.h"
#include "drawings/OdDbSymbolTable.h"
#include "ResBufTags.h"

const OdRxClass* OdRxObject::desc() {
  static const OdRxClass cls(L"OdRxObject", nullptr, L"", nullptr);
  return &cls;
}

ODRX_DEFINE_MEMBERS(OdDbObject, OdRxObject, L"")
ODRX_DEFINE_MEMBERS(OdDbProxyObject, OdDbObject, L"")

const char* odResultText(OdResult r) {
  switch (r) {
    case eOk: return "OK";
    case eNotApplicable: return "not applicable";
    case eInvalidInput: return "invalid input";
    case eKeyNotFound: return "key not found";
    case eDuplicateKey: return "duplicate key";
    case eNullObjectId: return "null object id";
    case eWasErased: return "object was erased";
    case eNotOpenForWrite: return "object not open for write";
    case eInvalidOpenState: return "invalid open state";
    case eCantOpenFile: return "cannot open file";
    case eFileWriteError: return "file write error";
    case eBadDxfFile: return "bad DXF file";
    case eInvalidSymbolTableName: return "invalid symbol table name";
    case eNotInDatabase: return "object not in a database";
    case eAlreadyInDb: return "object already in a database";
    case eWrongObjectType: return "wrong object type";
    case eNotImplementedYet: return "not implemented yet";
  }
  return "unknown error";
}

OdString OdDbHandle::ascii() const { return OdString::fromUtf8(dxfFormatHandle(m_v)); }

const OdDbObjectId OdDbObjectId::kNull;

bool OdDbObjectId::isErased() const { return m_stub && m_stub->object && m_stub->object->isErased(); }

OdDbObjectPtr OdDbObjectId::openObject(OdDb::OpenMode mode, bool openErased) const {
  if (!m_stub || !m_stub->object) return OdDbObjectPtr();
  OdDbObject* o = m_stub->object;
  if (o->isErased() && !openErased) return OdDbObjectPtr();
  if (mode == OdDb::kForWrite) o->setOpenMode(OdDb::kForWrite);
  return OdDbObjectPtr(o);
}

OdDbObjectPtr OdDbObjectId::safeOpenObject(OdDb::OpenMode mode, bool openErased) const {
  if (isNull()) throw OdError(eNullObjectId);
  OdDbObjectPtr p = openObject(mode, openErased);
  if (p.isNull()) throw OdError(isErased() ? eWasErased : eKeyNotFound);
  return p;
}

OdDbObject::~OdDbObject() = default;

uint64_t OdDbObject::nextRevision() {
  static std::atomic<uint64_t> counter{0};
  return ++counter;
}

void OdDbObject::noteChange() {
  m_revision = nextRevision();
  if (OdDbDatabase* db = database()) db->recordUndo(this);
}

void OdDbObject::setOwnerId(OdDbObjectId owner) {
  if (owner == m_owner) return;
  noteChange();
  m_owner = owner;
  if (m_raw.empty() && !m_tags) return;
  // The owner is the 330 of the common part (outside the 102 groups).
  Range r = commonRange();
  std::string text = owner.isNull() ? "0" : dxfFormatHandle(owner.getHandle().value());
  if (database() && !dxfver::hasObjects(database()->version())) return;
  setTagText(330, text, r, {5, 105, 102, 330});
}

OdResult OdDbObject::erase(bool erasing) {
  if (m_erased == erasing) return erasing ? eWasErased : eOk;
  noteChange();
  m_erased = erasing;
  m_modified = true;
  // A table's name index must not find erased records.
  if (OdDbObject* owner = m_owner.stub() ? m_owner.stub()->object : nullptr)
    if (owner->isKindOf(OdDbSymbolTable::desc())) static_cast<OdDbSymbolTable*>(owner)->invalidateIndex();
  // What the object owns goes with it: its extension dictionary and, for a
  // dictionary, the entries it owns. Left behind they would be orphans that
  // other programs' checks delete.
  std::vector<OdDbObject*> owned;
  if (OdDbObject* ext = extensionDictionary().stub() ? extensionDictionary().stub()->object : nullptr) owned.push_back(ext);
  if (isKindOf(OdDbDictionary::desc()))
    for (auto& [name, id] : static_cast<OdDbDictionary*>(this)->entries())
      if (OdDbObject* o = id.stub() ? id.stub()->object : nullptr) owned.push_back(o);
  for (OdDbObject* o : owned)
    if (o->ownerId() == objectId() && o->isErased() != erasing) o->erase(erasing);
  return eOk;
}

void OdDbObject::assertWriteEnabled() {
  if (m_openMode != OdDb::kForWrite && database()) throw OdError(eNotOpenForWrite);
  noteChange();
  m_modified = true;
}

bool OdDbObject::replaceBytes(std::string_view bytes, DxfFormat format) {
  if (!m_tags && m_rawFormat == format && !m_shortCodes && m_raw == bytes) return false;
  assertWriteEnabled();
  m_ownBytes = std::make_shared<const std::string>(bytes);
  m_raw = *m_ownBytes;
  m_rawFormat = format;
  m_shortCodes = false;
  m_line = 0;
  m_tags.reset();
  return true;
}

void OdDbObject::parseTags() const {
  auto list = std::make_unique<DxfTagList>();
  if (!m_raw.empty()) {
    DxfTagScanner sc(m_raw, m_rawFormat, m_shortCodes, 0, m_line);
    DxfRawTag rt;
    list->reserve(m_raw.size() / 12);
    // Bytes the object spelled itself need not be in the file's format: its tags
    // are written afresh rather than copied.
    const bool keepSpelling = !m_ownBytes;
    while (sc.next(rt)) {
      DxfTag t;
      t.code = static_cast<int16_t>(rt.code);
      t.changed = !keepSpelling;
      if (keepSpelling) t.raw = rt.raw;
      t.valueOffset = static_cast<uint16_t>(rt.value.data() - rt.raw.data() -
                                            (dxfTypeOf(rt.code) == DxfType::Binary && m_rawFormat == DxfFormat::Binary ? 1 : 0));
      t.text = dxfValueText(rt, m_rawFormat);
      list->push_back(std::move(t));
    }
  }
  m_tags = std::move(list);
}

std::optional<std::string> OdDbObject::firstValue(int code) const {
  if (m_tags) {
    for (const auto& t : *m_tags)
      if (t.code == code) return t.text;
    return std::nullopt;
  }
  DxfTagScanner sc(m_raw, m_rawFormat, m_shortCodes, 0, m_line);
  DxfRawTag rt;
  while (sc.next(rt))
    if (rt.code == code) return dxfValueText(rt, m_rawFormat);
  return std::nullopt;
}

void OdDbObject::forEachTag(const std::function<void(int, std::string_view)>& f) const {
  if (m_tags) {
    for (const auto& t : *m_tags) f(t.code, t.text);
    return;
  }
  DxfTagScanner sc(m_raw, m_rawFormat, m_shortCodes, 0, m_line);
  DxfRawTag rt;
  std::string text;
  while (sc.next(rt)) {
    if (m_rawFormat == DxfFormat::Ascii) {
      f(rt.code, rt.value);
    } else {
      text = dxfValueText(rt, m_rawFormat);
      f(rt.code, text);
    }
  }
}

const DxfTagList& OdDbObject::tags() const {
  if (!m_tags) parseTags();
  return *m_tags;
}

DxfTagList& OdDbObject::tagsForWrite() {
  noteChange();
  if (!m_tags) parseTags();
  m_modified = true;
  return *m_tags;
}

size_t OdDbObject::xdataStart() const {
  const auto& t = tags();
  for (size_t i = 0; i < t.size(); ++i)
    if (t[i].code == 1001) return i;
  return t.size();
}

OdDbObject::Range OdDbObject::subclassRange(std::string_view marker) const {
  // One pass, ending at the extended data: typed accessors call this for every value.
  const auto& t = tags();
  size_t i = 0;
  for (; i < t.size() && t[i].code != 1001; ++i) {
    if (t[i].code == 100 && t[i].text == marker) {
      size_t j = i + 1;
      while (j < t.size() && t[j].code != 100 && t[j].code != 1001) ++j;
      return Range{i + 1, j, true};
    }
  }
  return Range{i, i, false};
}

OdDbObject::Range OdDbObject::commonRange() const {
  const auto& t = tags();
  size_t end = xdataStart();
  size_t i = t.empty() ? 0 : 1;  // past the 0 tag
  size_t j = i;
  while (j < end && t[j].code != 100) ++j;
  return Range{i, j, true};
}

long OdDbObject::findTag(int code, Range r) const {
  const auto& t = tags();
  bool inGroup = false;
  for (size_t i = r.begin; i < r.end && i < t.size(); ++i) {
    if (t[i].code == 102) {
      inGroup = !t[i].text.empty() && t[i].text[0] == '{';
      continue;
    }
    if (!inGroup && t[i].code == code) return static_cast<long>(i);
  }
  return -1;
}

void OdDbObject::setTagText(int code, std::string text, Range r, std::initializer_list<int> order) {
  long i = findTag(code, r);
  auto& t = tagsForWrite();
  if (i >= 0) {
    t[static_cast<size_t>(i)].set(std::move(text));
    return;
  }
  // Insert after the last tag that comes before this code in the usual order.
  size_t pos = r.begin;
  auto rank = [&](int c) {
    auto it = std::find(order.begin(), order.end(), c);
    return it == order.end() ? -1 : static_cast<int>(it - order.begin());
  };
  int myRank = rank(code);
  for (size_t k = r.begin; k < r.end && k < t.size(); ++k) {
    int rk = rank(t[k].code);
    if (rk >= 0 && (myRank < 0 || rk < myRank)) pos = k + 1;
  }
  if (myRank < 0) pos = r.end;
  // Never split a 102 group.
  while (pos < r.end && pos > 0 && t[pos - 1].code == 102 && t[pos - 1].text != "}") ++pos;
  t.insert(t.begin() + static_cast<long>(pos), DxfTag(code, std::move(text)));
}

void OdDbObject::removeTag(int code, Range r) {
  long i = findTag(code, r);
  if (i < 0) return;
  auto& t = tagsForWrite();
  t.erase(t.begin() + i);
}

const DxfCodec& OdDbObject::codec() const {
  if (OdDbDatabase* db = database()) return db->codec();
  static const DxfCodec utf8 = DxfCodec::make("", DxfVersion::R2018);  // objects not in a drawing yet
  return utf8;
}

OdString OdDbObject::decodeText(std::string_view fileBytes) const { return codec().decode(fileBytes); }

std::string OdDbObject::encodeText(const OdString& s) const { return codec().encode(s.view()); }

// ---- extended data ----

OdResBufPtr OdDbObject::xData(const OdString& regappName) const {
  const auto& t = tags();
  size_t begin = xdataStart(), end = t.size();
  if (!regappName.isEmpty()) {
    for (begin = xdataStart(); begin < t.size(); ++begin)
      if (t[begin].code == 1001 && decodeText(t[begin].text).iCompare(regappName) == 0) break;
    for (end = begin + 1; end < t.size() && t[end].code != 1001;) ++end;
    if (begin >= t.size()) return OdResBufPtr();
  }
  return resBufChain(codec(), t, begin, end);
}

OdResBufPtr OdResBuf::last() {
  OdResBuf* p = this;
  while (p->m_next) p = p->m_next.get();
  return OdResBufPtr(p);
}

void OdDbObject::setXData(const OdResBuf* xdata) {
  // Group the new data by application.
  std::vector<std::pair<OdString, DxfTagList>> groups;
  for (const OdResBuf* rb = xdata; rb; rb = rb->next().get()) {
    if (rb->restype() == 1001) groups.emplace_back(rb->getString(), DxfTagList());
    if (groups.empty()) throw OdError(eInvalidInput, "extended data must start with an application name (1001)");
    OdResBufPtr one = OdResBuf::newRb(rb->restype());
    *one = *rb;
    one->setNext(OdResBufPtr());
    DxfTagList t = tagsOfChain(codec(), one.get());
    groups.back().second.insert(groups.back().second.end(), t.begin(), t.end());
  }
  auto& t = tagsForWrite();
  for (auto& [app, newTags] : groups) {
    if (OdDbDatabase* db = database()) db->registerApp(app);
    // Replace the application's group where it was, or append it.
    size_t start = t.size(), end = t.size();
    for (size_t i = xdataStart(); i < t.size(); ++i) {
      if (t[i].code != 1001) continue;
      if (start != t.size()) { end = i; break; }
      if (decodeText(t[i].text).iCompare(app) == 0) start = i;
    }
    if (start == t.size()) end = t.size();
    if (start < t.size() && newTags.size() > 1) {
      // Keep the original spelling of the application name tag.
      newTags.front() = t[start];
    }
    t.erase(t.begin() + static_cast<long>(start), t.begin() + static_cast<long>(end));
    if (newTags.size() > 1)
      t.insert(t.begin() + static_cast<long>(start), std::make_move_iterator(newTags.begin()),
               std::make_move_iterator(newTags.end()));
  }
}

// ---- 102 groups: extension dictionary and reactors ----

static long findGroup(const DxfTagList& t, std::string_view name, size_t end) {
  for (size_t i = 0; i < end; ++i)
    if (t[i].code == 102 && t[i].text == name) return static_cast<long>(i);
  return -1;
}

OdDbObjectId OdDbObject::extensionDictionary() const {
  const auto& t = tags();
  long g = findGroup(t, "{ACAD_XDICTIONARY", xdataStart());
  if (g < 0 || !database()) return OdDbObjectId();
  for (size_t i = static_cast<size_t>(g) + 1; i < t.size() && t[i].code != 102; ++i)
    if (t[i].code == 360) return database()->getOdDbObjectId(OdDbHandle(t[i].toHandle()));
  return OdDbObjectId();
}

bool OdDbObject::createExtensionDictionary() {
  if (!extensionDictionary().isNull()) return false;
  OdDbDatabase* db = database();
  if (!db) throw OdError(eNotInDatabase);
  OdSmartPtr<OdDbDictionary> dict = OdDbDictionary::createObject();
  dict->setDxfName("DICTIONARY");
  OdDbObjectId id = db->addOdDbObject(dict.get(), objectId());
  if (DxfSection* objs = db->section("OBJECTS")) objs->items.push_back(dict);
  dict->addPersistentReactor(objectId());
  auto& t = tagsForWrite();
  // After the reactors group if there is one, else right after the handle.
  size_t pos = 1;
  if (pos < t.size() && (t[pos].code == 5 || t[pos].code == 105)) ++pos;
  long r = findGroup(t, "{ACAD_REACTORS", xdataStart());
  if (r >= 0) {
    pos = static_cast<size_t>(r) + 1;
    while (pos < t.size() && t[pos].code != 102) ++pos;
    ++pos;
  }
  DxfTagList g;
  g.emplace_back(102, "{ACAD_XDICTIONARY");
  g.emplace_back(360, dxfFormatHandle(id.getHandle().value()));
  g.emplace_back(102, "}");
  t.insert(t.begin() + static_cast<long>(pos), g.begin(), g.end());
  return true;
}

OdDbObjectIdArray OdDbObject::getPersistentReactors() const {
  OdDbObjectIdArray ids;
  const auto& t = tags();
  long g = findGroup(t, "{ACAD_REACTORS", xdataStart());
  if (g < 0 || !database()) return ids;
  for (size_t i = static_cast<size_t>(g) + 1; i < t.size() && t[i].code != 102; ++i)
    if (t[i].code == 330) ids.push_back(database()->getOdDbObjectId(OdDbHandle(t[i].toHandle())));
  return ids;
}

void OdDbObject::addPersistentReactor(OdDbObjectId id) {
  auto& t = tagsForWrite();
  std::string h = dxfFormatHandle(id.getHandle().value());
  long g = findGroup(t, "{ACAD_REACTORS", xdataStart());
  if (g >= 0) {
    size_t i = static_cast<size_t>(g) + 1;
    for (; i < t.size() && t[i].code != 102; ++i)
      if (t[i].code == 330 && t[i].toHandle() == id.getHandle().value()) return;
    t.insert(t.begin() + static_cast<long>(i), DxfTag(330, h));
    return;
  }
  size_t pos = 1;
  if (pos < t.size() && (t[pos].code == 5 || t[pos].code == 105)) ++pos;
  DxfTagList grp;
  grp.emplace_back(102, "{ACAD_REACTORS");
  grp.emplace_back(330, h);
  grp.emplace_back(102, "}");
  t.insert(t.begin() + static_cast<long>(pos), grp.begin(), grp.end());
}
