#include "EntityTags.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "drawings/OdDbDatabase.h"

namespace entitytags {

namespace {

// The common entity codes in the order they are written; in R12 entities the
// class codes follow them in the same run of tags.
constexpr int kCommonOrder[] = {5, 102, 330, 67, 410, 8, 6, 347, 62, 420, 430, 370, 48, 60, 440, 390, 284};

int position(const DxfSubclass& s, int code) {
  auto c = std::find(std::begin(kCommonOrder), std::end(kCommonOrder), code);
  if (c != std::end(kCommonOrder)) return static_cast<int>(c - std::begin(kCommonOrder));
  auto k = std::find(s.order.begin(), s.order.end(), code);
  if (k != s.order.end()) return static_cast<int>(std::size(kCommonOrder) + static_cast<size_t>(k - s.order.begin()));
  return -1;
}

// A code's place in the written order, -1 when it has none. The y and z of a point
// the order names only by its x come right after that x, so that a missing tag is
// never put between the coordinates of the point before it.
int rank(const DxfSubclass& s, int code) {
  if (int p = position(s, code); p >= 0) return 3 * p;
  const bool y = (code >= 20 && code < 30) || code == 220, z = (code >= 30 && code < 38) || code == 230;
  if (!y && !z) return -1;
  const int x = code >= 200 ? 210 : code - (y ? 10 : 20);
  const int p = position(s, x);
  return p < 0 ? -1 : 3 * p + (y ? 1 : 2);
}

}  // namespace

Range range(const OdDbObject& o, const DxfSubclass& s) {
  // One pass (every typed value is read through here): the subclass's tags up to
  // the next marker, an embedded object (101) or the extended data; an object
  // written without markers (R12) keeps its values in its common part.
  const auto& t = o.tags();
  bool markers = false;
  size_t i = 0;
  for (; i < t.size() && t[i].code != 1001; ++i) {
    if (t[i].code != 100) continue;
    markers = true;
    if (t[i].text != s.marker) continue;
    size_t end = i + 1;
    while (end < t.size() && t[end].code != 100 && t[end].code != 101 && t[end].code != 1001) ++end;
    return Range{i + 1, end, true};
  }
  return markers ? Range{i, i, false} : o.commonRange();
}

long find(const OdDbObject& o, const DxfSubclass& s, int code) {
  Range r = range(o, s);
  return r.found ? o.findTag(code, r) : -1;
}

size_t insertPosition(const OdDbObject& o, Range r, const DxfSubclass& s, int code) {
  const auto& t = o.tags();
  int mine = rank(s, code);
  if (mine < 0) return r.end;
  size_t pos = r.begin;
  for (size_t k = r.begin; k < r.end; ++k) {
    int rk = rank(s, t[k].code);
    if (rk >= 0 && rk < mine) pos = k + 1;
  }
  return pos;
}

Range writableRange(OdDbObject& o, const DxfSubclass& s) {
  // Without its name and common part the entity could not be written; which
  // markers it needs depends on the drawing, which createFor is told.
  if (o.tags().empty())
    throw OdError(eNotApplicable, "a new " + std::string(s.marker) + " entity is made with createFor(database)");
  Range r = range(o, s);
  if (r.found) return r;
  size_t at = o.xdataStart();
  auto& t = o.tagsForWrite();
  t.insert(t.begin() + static_cast<long>(at), DxfTag(100, std::string(s.marker)));
  return range(o, s);
}

double getDouble(const OdDbObject& o, const DxfSubclass& s, int code, double dflt) {
  long i = find(o, s, code);
  return i < 0 ? dflt : o.tags()[static_cast<size_t>(i)].toDouble();
}

int64_t getInt(const OdDbObject& o, const DxfSubclass& s, int code, int64_t dflt) {
  long i = find(o, s, code);
  return i < 0 ? dflt : o.tags()[static_cast<size_t>(i)].toInt();
}

std::optional<std::string> getText(const OdDbObject& o, const DxfSubclass& s, int code) {
  long i = find(o, s, code);
  if (i < 0) return std::nullopt;
  return o.tags()[static_cast<size_t>(i)].text;
}

OdGePoint3d getPoint(const OdDbObject& o, const DxfSubclass& s, int code) {
  // y and z follow x in every file seen; looked for apart only when they do not.
  const Range r = range(o, s);
  const long i = r.found ? o.findTag(code, r) : -1;
  if (i >= 0 && static_cast<size_t>(i) + 2 < r.end) {
    const auto& t = o.tags();
    const DxfTag &y = t[static_cast<size_t>(i) + 1], &z = t[static_cast<size_t>(i) + 2];
    if (y.code == code + 10 && z.code == code + 20)
      return OdGePoint3d{t[static_cast<size_t>(i)].toDouble(), y.toDouble(), z.toDouble()};
  }
  return OdGePoint3d{getDouble(o, s, code, 0.0), getDouble(o, s, code + 10, 0.0), getDouble(o, s, code + 20, 0.0)};
}

OdGePoint3d pointAt(const DxfTagList& t, size_t i, size_t end) {
  OdGePoint3d p;
  int code = t[i].code;
  p.x = t[i].toDouble();
  for (size_t k = i + 1; k < end && k < i + 3; ++k) {
    if (t[k].code == code + 10) p.y = t[k].toDouble();
    else if (t[k].code == code + 20) p.z = t[k].toDouble();
  }
  return p;
}

// Values this close are the same number printed to the last digit or two (an angle
// read in degrees and set back from radians); rewriting would only change spelling.
static bool sameDouble(double a, double b) {
  return a == b || std::fabs(a - b) <= 1e-13 * std::max(std::fabs(a), std::fabs(b));
}

void setDoubleAt(DxfTag& t, double v) {
  if (!sameDouble(t.toDouble(), v) || t.text.empty()) t.set(dxfFormatDouble(v));
}

static void setValue(OdDbObject& o, const DxfSubclass& s, int code, std::string text, bool same, bool omit) {
  Range r = range(o, s);
  long i = r.found ? o.findTag(code, r) : -1;
  if (i >= 0) {
    if (!same) o.tagsForWrite()[static_cast<size_t>(i)].set(std::move(text));
    return;
  }
  if (omit) return;
  r = writableRange(o, s);
  size_t pos = insertPosition(o, r, s, code);
  auto& t = o.tagsForWrite();
  t.insert(t.begin() + static_cast<long>(pos), DxfTag(code, std::move(text)));
}

void setDouble(OdDbObject& o, const DxfSubclass& s, int code, double v, std::optional<double> dflt) {
  long i = find(o, s, code);
  bool same = i >= 0 && sameDouble(o.tags()[static_cast<size_t>(i)].toDouble(), v);
  setValue(o, s, code, dxfFormatDouble(v), same, dflt && *dflt == v);
}

void setInt(OdDbObject& o, const DxfSubclass& s, int code, int64_t v, std::optional<int64_t> dflt) {
  long i = find(o, s, code);
  bool same = i >= 0 && o.tags()[static_cast<size_t>(i)].toInt() == v;
  setValue(o, s, code, std::to_string(v), same, dflt && *dflt == v);
}

void setText(OdDbObject& o, const DxfSubclass& s, int code, std::string text) {
  setValue(o, s, code, std::move(text), false, false);
}

void setPoint(OdDbObject& o, const DxfSubclass& s, int code, const OdGePoint3d& p) {
  setDouble(o, s, code, p.x);
  setDouble(o, s, code + 10, p.y);
  setDouble(o, s, code + 20, p.z, 0.0);
}

void remove(OdDbObject& o, const DxfSubclass& s, int code) {
  Range r = range(o, s);
  if (r.found) o.removeTag(code, r);
}

const DxfCodec& codecOf(const OdDbObject& o, const std::optional<DxfCodec>& madeFor) {
  return o.database() || !madeFor ? o.codec() : *madeFor;
}

double toRadians(double degrees) { return degrees * std::numbers::pi / 180.0; }
double toDegrees(double radians) { return radians * 180.0 / std::numbers::pi; }

DxfTagList pointTags(int code, const OdGePoint3d& p) {
  return {DxfTag(code, dxfFormatDouble(p.x)), DxfTag(code + 10, dxfFormatDouble(p.y)),
          DxfTag(code + 20, dxfFormatDouble(p.z))};
}

void frame(OdDbEntity& e, const OdDbDatabase& db, std::string_view dxfName, DxfVersion firstVersion,
           std::initializer_list<NewSection> sections) {
  if (db.version() < firstVersion)
    throw OdError(eNotApplicable, std::string(dxfName) + " entities need " + std::string(dxfver::keyword(firstVersion)) +
                                      " or later; the drawing is " + std::string(dxfver::keyword(db.version())));
  const bool markers = dxfver::hasObjects(db.version());
  e.setDxfName(std::string(dxfName));
  auto& t = e.tagsForWrite();
  t.clear();
  t.emplace_back(0, std::string(dxfName));
  if (markers) t.emplace_back(100, "AcDbEntity");
  t.emplace_back(8, "0");
  for (const NewSection& s : sections) {
    if (markers) t.emplace_back(100, std::string(s.subclass->marker));
    t.insert(t.end(), s.tags.begin(), s.tags.end());
  }
}

OdDbObjectId recordId(const OdDbObject& e, OdDbObjectId (OdDbDatabase::*table)() const, std::string_view nameInFile) {
  const OdDbDatabase* db = e.database();
  if (!db) return OdDbObjectId();
  auto t = OdSmartPtr<OdDbSymbolTable>::cast((db->*table)().openObject());
  return t ? t->getAtSpelled(nameInFile, e) : OdDbObjectId();
}

std::string recordName(const OdDbObject& e, const OdDbObjectId& id, OdDbObjectId (OdDbDatabase::*table)() const) {
  const OdDbDatabase* db = e.database() ? e.database() : id.database();
  OdDbObjectPtr rec = id.openObject();
  if (!db || !rec || id.database() != db || rec->ownerId() != (db->*table)())
    throw OdError(eInvalidInput, "the record is not in the drawing's table of that kind");
  return rec->firstValue(2).value_or(std::string());
}

}  // namespace entitytags
