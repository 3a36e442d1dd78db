#include "DimBlockWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <cmath>
#include <numbers>

#include "EntityTags.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbText.h"

namespace dimgeom {

namespace {

// A record's name as the file spells it (empty for none), remembered for the
// records last asked for: a drawing's dimensions name the same few arrow blocks,
// text styles and line types again and again.
const std::string& spelledName(const OdDbObjectId& id) {
  struct Entry {
    OdDbObjectId id;
    uint64_t revision = 0;
    std::string name;
  };
  static thread_local std::array<Entry, 8> cache;
  static thread_local std::size_t next = 0;
  static const std::string none;
  OdDbObjectPtr rec = id.openObject();
  if (!rec) return none;
  for (const Entry& e : cache)
    if (e.id == id && e.revision == rec->revision()) return e.name;
  Entry& e = cache[next];
  next = (next + 1) % cache.size();
  e = Entry{id, rec->revision(), rec->firstValue(2).value_or(std::string())};
  return e.name;
}

// Where the definition points go, as the file spells it: the drawing's "Defpoints"
// layer, made when missing (as a copy of layer 0 that does not plot).
std::string defpointsLayer(OdDbDatabase& db) {
  auto layers = odOpen<OdDbLayerTable>(db.getLayerTableId(), OdDb::kForWrite);
  if (!layers) return "Defpoints";
  if (OdDbObjectId id = layers->getAtSpelled("Defpoints", *layers); !id.isNull()) return spelledName(id);
  const OdString name = db.extendedNames() ? OdString(L"Defpoints") : OdString(L"DEFPOINTS");
  auto zero = odOpen<OdDbLayerTableRecord>(layers->getAt(L"0"));
  OdSmartPtr<OdDbLayerTableRecord> record = OdDbLayerTableRecord::createObject();
  record->setDxfName("LAYER");
  DxfTagList& t = record->tagsForWrite();
  if (zero) {
    for (const DxfTag& tag : zero->tags())
      if (tag.code != 5 && tag.code != 330 && tag.code != 102 && tag.code < 1000) t.push_back(tag);
    // Drop the contents of 102 groups (reactors, extension dictionaries).
    DxfTagList kept;
    for (const DxfTag& tag : t)
      if (!(tag.code == 360 || tag.code == 347)) kept.push_back(tag);
    t = kept;
  } else {
    t = {DxfTag(0, "LAYER"), DxfTag(2, "0"), DxfTag(70, "0"), DxfTag(62, "7"), DxfTag(6, "CONTINUOUS")};
  }
  for (DxfTag& tag : t) {
    if (tag.code == 2) tag.set(db.codec().encode(name.view()));
    if (tag.code == 62 && tag.toInt() < 0) tag.set(std::to_string(-tag.toInt()));  // on
  }
  if (db.version() >= DxfVersion::R2000) {
    auto at = std::find_if(t.begin(), t.end(), [](const DxfTag& x) { return x.code == 290; });
    if (at != t.end()) at->set("0");
    else {
      auto after = std::find_if(t.begin(), t.end(), [](const DxfTag& x) { return x.code == 370; });
      t.insert(after, DxfTag(290, "0"));
    }
  }
  layers->add(record.get());
  return db.codec().encode(name.view());
}

// Degrees in [0, 360), whole when within rounding noise of a whole number.
double cleanDegrees(double radians) {
  double d = std::fmod(radians * 180.0 / std::numbers::pi, 360.0);
  if (d < 0) d += 360.0;
  if (std::fabs(d - std::round(d)) < 1e-9) d = std::round(d);
  if (d >= 360.0) d -= 360.0;
  return d;
}

// Spells one entity's tags as binary DXF (values kept as numbers, spelled for the
// file only when it is saved): what the drawing's version holds (subclass markers
// and owners from R13, lineweights from R2000, transparency from R2004) and
// nothing else.
class Speller {
public:
  explicit Speller(const OdDbDatabase& db) : m_version(db.version()) {
    m_style.format = DxfFormat::Binary;
    m_markers = dxfver::hasObjects(m_version);
    m_handles = m_markers || db.headerInt("$HANDLING", 1) != 0;
    m_out.resize(512);
  }

  DxfVersion version() const { return m_version; }

  void begin(std::string_view name, uint64_t handle, uint64_t owner) {
    m_length = 0;
    text(0, name);
    if (m_handles) hex(5, handle);
    if (m_markers) {
      hex(330, owner);
      text(100, "AcDbEntity");
    }
  }
  void marker(std::string_view m) {
    if (m_markers) text(100, m);
  }
  // Strings and handles end with a NUL; a caret needs the escapes the general writer knows.
  void text(int code, std::string_view v) {
    if (v.find('^') != std::string_view::npos) {
      std::string tag;
      dxfWriteNewTag(tag, code, v, m_style);
      std::memcpy(room(tag.size()), tag.data(), tag.size());
      return;
    }
    char* p = tagOf(code, v.size() + 1);
    std::memcpy(p, v.data(), v.size());
    p[v.size()] = '\0';
  }
  void hex(int code, uint64_t h) {
    char buf[20];
    char* end = std::to_chars(buf, buf + sizeof buf, h, 16).ptr;
    for (char* c = buf; c != end; ++c)
      if (*c >= 'a') *c = static_cast<char>(*c - 'a' + 'A');
    text(code, std::string_view(buf, static_cast<size_t>(end - buf)));
  }
  void integer(int code, int64_t v) {
    switch (dxfTypeOf(code)) {
      case DxfType::Int16: put(code, static_cast<int16_t>(v)); break;
      case DxfType::Int32: put(code, static_cast<int32_t>(v)); break;
      case DxfType::Bool: put(code, static_cast<uint8_t>(v)); break;
      default: put(code, v);
    }
  }
  void real(int code, double v) { put(code, v); }
  void point(int code, Vec p) {
    real(code, p.x);
    real(code + 10, p.y);
    real(code + 20, 0.0);
  }
  std::string_view spelled() const { return std::string_view(m_out.data(), m_length); }

private:
  // The bytes are written in place (every entity of every recomputed block goes
  // through here): a tag is its two-byte group code and `n` bytes of value.
  char* room(size_t n) {
    if (m_length + n > m_out.size()) m_out.resize(std::max(2 * m_out.size(), m_length + n));
    char* p = m_out.data() + m_length;
    m_length += n;
    return p;
  }
  char* tagOf(int code, size_t n) {
    char* p = room(2 + n);
    p[0] = static_cast<char>(code & 0xFF);
    p[1] = static_cast<char>((code >> 8) & 0xFF);
    return p + 2;
  }
  template <class T>
  void put(int code, T v) {
    std::memcpy(tagOf(code, sizeof v), &v, sizeof v);  // little-endian, as binary files are
  }

  DxfStyle m_style;
  DxfVersion m_version;
  bool m_markers = false, m_handles = false;
  std::string m_out;  // its first m_length bytes are the entity
  size_t m_length = 0;
};

// Writes the items into the block, reusing its entities in order while their kind
// matches: a recompute that changes little leaves the unchanged entities as they
// are (same bytes, same handles, nothing for undo to keep), and one that changes
// much makes no new objects for the old ones to be erased.
class Writer {
public:
  Writer(OdDbDatabase& db, OdDbBlockTableRecord& block, const OdDbDimension& dim)
      : m_db(db), m_block(block), m_speller(db), m_old(block.entityIds()) {
    m_layer = encode(dim.layer());
    if (const OdString own = dim.linetype(); own.iCompare(L"ByLayer") != 0) m_linetype = encode(own);
  }

  void write(const Item& it) {
    const std::string_view name = dxfNameOf(it);
    OdDbEntityPtr e = reusable(name);
    if (e.isNull()) {
      e = newEntity(it);
      m_db.addSpelledObject(e.get(), m_block.objectId());
      m_block.entities().push_back(e->objectId());
    }
    m_speller.begin(name, e->getDbHandle().value(), m_block.getDbHandle().value());
    common(it);
    body(it);
    e->replaceBytes(m_speller.spelled(), DxfFormat::Binary);
  }

  // The old entities no item took are erased (undo brings them back).
  void finish() {
    for (size_t i = m_next; i < m_old.size(); ++i)
      if (auto e = m_old[i].openObject(OdDb::kForWrite)) e->erase();
  }

private:
  std::string_view dxfNameOf(const Item& it) const {
    switch (it.kind) {
      case ItemKind::Line: return "LINE";
      case ItemKind::Arc: return "ARC";
      case ItemKind::Solid: return "SOLID";
      case ItemKind::Arrow: return "INSERT";
      case ItemKind::Text: return m_speller.version() >= DxfVersion::R13 ? "MTEXT" : "TEXT";
      case ItemKind::Point: return "POINT";
    }
    return "";
  }

  OdDbEntityPtr newEntity(const Item& it) const {
    switch (it.kind) {
      case ItemKind::Line: return OdDbLine::createObject();
      case ItemKind::Arc: return OdDbArc::createObject();
      case ItemKind::Solid: return OdDbSolid::createObject();
      case ItemKind::Arrow: return OdDbBlockReference::createObject();
      case ItemKind::Text:
        if (m_speller.version() >= DxfVersion::R13) return OdDbMText::createObject();
        return OdDbText::createObject();
      case ItemKind::Point: return OdDbPoint::createObject();
    }
    return OdDbEntityPtr();
  }

  // The next old entity when it is of the same kind and carries nothing that
  // would be orphaned by respelling it (an extension dictionary, reactors).
  OdDbEntityPtr reusable(std::string_view name) {
    while (m_reusing && m_next < m_old.size()) {
      OdDbEntityPtr e = OdDbEntity::cast(m_old[m_next].openObject(OdDb::kForWrite).get());
      if (e.isNull()) {  // gone meanwhile: look at the next one
        ++m_next;
        continue;
      }
      // What this writer spelled has neither; what a file brought may have.
      if (e->dxfName() != name || (!e->isSpelled() && e->firstValue(102))) break;
      ++m_next;
      return e;
    }
    m_reusing = false;
    return OdDbEntityPtr();
  }

  void common(const Item& it) {
    const bool point = it.kind == ItemKind::Point;
    if (point && m_defpoints.empty()) m_defpoints = defpointsLayer(m_db);
    m_speller.text(8, point ? m_defpoints : m_layer);
    // A line type of the dimension variables where one is named; the others follow
    // the dimension's own. Empty: ByLayer, written as no code.
    std::string_view linetype = m_linetype;
    if (!it.props.linetype.isNull())
      if (const std::string_view named = linetypeName(it.props.linetype); !named.empty()) linetype = named;
    if (!linetype.empty()) m_speller.text(6, linetype);
    const OdCmColor& c = it.props.color;
    if (!c.isByLayer()) {
      m_speller.integer(62, c.dxfAci());
      if (auto tc = c.dxfTrueColor()) m_speller.integer(420, *tc);
      if (!c.colorName().isEmpty()) m_speller.text(430, encode(c.bookName() + OdString(L"$") + c.colorName()));
    }
    const bool hasLineWeight = it.kind == ItemKind::Line || it.kind == ItemKind::Arc || it.kind == ItemKind::Arrow;
    if (hasLineWeight && m_speller.version() >= DxfVersion::R2000 && it.props.lineWeight != OdDb::kLnWtByLayer)
      m_speller.integer(370, static_cast<int>(it.props.lineWeight));
    // Transparency ByBlock: the block's entities show the dimension's own.
    if (m_speller.version() >= DxfVersion::R2004) m_speller.integer(440, 16777216);
  }

  void body(const Item& it) {
    Speller& s = m_speller;
    switch (it.kind) {
      case ItemKind::Line:
        s.marker("AcDbLine");
        s.point(10, it.p[0]);
        s.point(11, it.p[1]);
        break;
      case ItemKind::Arc:
        s.marker("AcDbCircle");
        s.point(10, it.p[0]);
        s.real(40, it.radius);
        s.marker("AcDbArc");
        s.real(50, entitytags::toDegrees(it.startAngle));
        s.real(51, entitytags::toDegrees(it.endAngle));
        break;
      case ItemKind::Solid:
        s.marker("AcDbTrace");
        for (int i = 0; i < 4; ++i) s.point(10 + i, it.p[i]);
        break;
      case ItemKind::Arrow: {
        s.marker("AcDbBlockReference");
        s.text(2, spelledName(it.block));
        s.point(10, it.p[0]);
        if (it.scale != 1.0)
          for (int code : {41, 42, 43}) s.real(code, it.scale);
        if (const double degrees = cleanDegrees(it.angle); degrees != 0.0) s.real(50, degrees);
        break;
      }
      case ItemKind::Text:
        if (s.version() >= DxfVersion::R13) mtext(it);
        else text(it);
        break;
      case ItemKind::Point:
        s.marker("AcDbPoint");
        s.point(10, it.p[0]);
        break;
    }
  }

  void mtext(const Item& it) {
    Speller& s = m_speller;
    s.marker("AcDbMText");
    s.point(10, it.p[0]);
    s.real(40, it.height);
    s.real(41, 0.0);
    if (s.version() >= DxfVersion::R2007) s.real(46, 0.0);
    s.integer(71, 5);  // middle centre
    s.integer(72, 1);
    const std::vector<std::string> pieces = entitytags::mtextPieces(m_db.codec(), it.contents);
    for (size_t i = 0; i < pieces.size(); ++i) s.text(i + 1 < pieces.size() ? 3 : 1, pieces[i]);
    if (const std::string_view style = textStyleName(it.textStyle); !style.empty()) s.text(7, style);
    if (std::fabs(std::remainder(it.angle, 2 * std::numbers::pi)) > 1e-12) {
      s.real(11, std::cos(it.angle));
      s.real(21, std::sin(it.angle));
      s.real(31, 0.0);
    }
    if (s.version() >= DxfVersion::R2000) {
      s.integer(73, 1);
      s.real(44, 1.0);
    }
  }

  // R12 has no MTEXT: a single-line text centred on the same point.
  void text(const Item& it) {
    Speller& s = m_speller;
    std::wstring one = odMTextPlainText(it.contents).str();
    std::replace(one.begin(), one.end(), L'\n', L' ');
    s.point(10, it.p[0]);
    s.real(40, it.height);
    s.text(1, m_db.codec().encode(one));
    if (const double degrees = cleanDegrees(it.angle); degrees != 0.0) s.real(50, degrees);
    if (const std::string_view style = textStyleName(it.textStyle); !style.empty()) s.text(7, style);
    s.integer(72, 1);  // centred
    s.point(11, it.p[0]);
    s.integer(73, 2);  // middle
  }

  std::string encode(const OdString& s) const { return m_db.codec().encode(s.view()); }

  // Empty for the standard style, which text follows when it names none.
  std::string_view textStyleName(const OdDbObjectId& id) {
    if (id.isNull()) return {};
    const std::string& name = spelledName(id);
    return dxfEqualNoCase(name, "Standard") ? std::string_view() : name;
  }
  // A named line type; empty for ByLayer, ByBlock and none.
  static std::string_view linetypeName(const OdDbObjectId& id) {
    const std::string& name = spelledName(id);
    return dxfEqualNoCase(name, "ByLayer") || dxfEqualNoCase(name, "ByBlock") ? std::string_view() : name;
  }

  OdDbDatabase& m_db;
  OdDbBlockTableRecord& m_block;
  Speller m_speller;
  OdDbObjectIdArray m_old;
  size_t m_next = 0;
  bool m_reusing = true;
  std::string m_layer, m_defpoints;
  std::string m_linetype;  // the dimension's own, as the file spells it; empty for ByLayer
};

}  // namespace

void writeBlockItems(OdDbDatabase& db, OdDbBlockTableRecord& block, const OdDbDimension& dim,
                     const std::vector<Item>& items) {
  // Anonymous dimension blocks ("*D...") are never layouts: only other names are looked at closely.
  const std::string name = block.firstValue(2).value_or("");
  if ((name.size() < 2 || name[0] != '*' || (name[1] != 'D' && name[1] != 'd')) && block.isLayout())
    throw OdError(eInvalidInput, "a dimension's block cannot be a layout");
  Writer writer(db, block, dim);
  for (const Item& it : items) writer.write(it);
  writer.finish();
}

}  // namespace dimgeom
