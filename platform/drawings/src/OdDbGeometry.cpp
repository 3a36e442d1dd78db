#include "drawings/OdDbGeometry.h"

#include <algorithm>
#include <vector>

#include "EntityTags.h"
#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbCurve, OdDbEntity, L"")
ODRX_DEFINE_MEMBERS(OdDbLine, OdDbCurve, L"LINE")
ODRX_DEFINE_MEMBERS(OdDbCircle, OdDbCurve, L"CIRCLE")
ODRX_DEFINE_MEMBERS(OdDbArc, OdDbCurve, L"ARC")
ODRX_DEFINE_MEMBERS(OdDbPoint, OdDbEntity, L"POINT")
ODRX_DEFINE_MEMBERS(OdDbSolid, OdDbEntity, L"SOLID")
ODRX_DEFINE_MEMBERS(OdDbPolyline, OdDbCurve, L"LWPOLYLINE")
ODRX_DEFINE_MEMBERS(OdDbBlockReference, OdDbEntity, L"INSERT")

using namespace entitytags;

namespace {

// Each order is the whole entity's, as R12 writes it after the common codes; from
// R13 on every section holds a part of it in the same order.
constexpr int kLineOrder[] = {39, 10, 20, 30, 11, 21, 31, 210, 220, 230};
constexpr int kCircleOrder[] = {39, 10, 20, 30, 40, 50, 51, 210, 220, 230};
constexpr int kPointOrder[] = {10, 20, 30, 39, 210, 220, 230, 50};
constexpr int kSolidOrder[] = {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 39, 210, 220, 230};
constexpr int kPolylineOrder[] = {90, 70, 43, 38, 39, 10, 20, 91, 40, 41, 42, 210, 220, 230};
constexpr int kInsertOrder[] = {66, 2, 10, 20, 30, 41, 42, 43, 50, 70, 71, 44, 45, 210, 220, 230};

const DxfSubclass kLine{"AcDbLine", kLineOrder};
const DxfSubclass kCircle{"AcDbCircle", kCircleOrder};
const DxfSubclass kArc{"AcDbArc", kCircleOrder};
const DxfSubclass kPoint{"AcDbPoint", kPointOrder};
const DxfSubclass kSolid{"AcDbTrace", kSolidOrder};
const DxfSubclass kPolyline{"AcDbPolyline", kPolylineOrder};
const DxfSubclass kInsert{"AcDbBlockReference", kInsertOrder};

const OdGePoint3d kOrigin;

template <class T>
OdSmartPtr<T> newEntity(const OdDbDatabase& db, DxfVersion first, std::initializer_list<NewSection> sections) {
  OdSmartPtr<T> e = T::createObject();
  frame(*e, db, T::desc()->dxfName().toUtf8(), first, sections);
  return e;
}

DxfTagList concat(std::initializer_list<DxfTagList> parts) {
  DxfTagList all;
  for (const auto& p : parts) all.insert(all.end(), p.begin(), p.end());
  return all;
}

}  // namespace

// ---- line ----

OdDbLinePtr OdDbLine::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbLine>(db, DxfVersion::R12, {{&kLine, concat({pointTags(10, kOrigin), pointTags(11, kOrigin)})}});
}

OdGePoint3d OdDbLine::startPoint() const { return getPoint(*this, kLine, 10); }
void OdDbLine::setStartPoint(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kLine, 10, p);
}
OdGePoint3d OdDbLine::endPoint() const { return getPoint(*this, kLine, 11); }
void OdDbLine::setEndPoint(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kLine, 11, p);
}

// ---- circle and arc ----

OdDbCirclePtr OdDbCircle::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbCircle>(db, DxfVersion::R12,
                               {{&kCircle, concat({pointTags(10, kOrigin), {DxfTag(40, "1.0")}})}});
}

OdGePoint3d OdDbCircle::center() const { return getPoint(*this, kCircle, 10); }
void OdDbCircle::setCenter(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kCircle, 10, p);
}
double OdDbCircle::radius() const { return getDouble(*this, kCircle, 40, 0.0); }
void OdDbCircle::setRadius(double r) {
  assertWriteEnabled();
  setDouble(*this, kCircle, 40, r);
}

OdDbArcPtr OdDbArc::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbArc>(db, DxfVersion::R12,
                            {{&kCircle, concat({pointTags(10, kOrigin), {DxfTag(40, "1.0")}})},
                             {&kArc, {DxfTag(50, "0.0"), DxfTag(51, "90.0")}}});
}

OdGePoint3d OdDbArc::center() const { return getPoint(*this, kCircle, 10); }
void OdDbArc::setCenter(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kCircle, 10, p);
}
double OdDbArc::radius() const { return getDouble(*this, kCircle, 40, 0.0); }
void OdDbArc::setRadius(double r) {
  assertWriteEnabled();
  setDouble(*this, kCircle, 40, r);
}
double OdDbArc::startAngle() const { return toRadians(getDouble(*this, kArc, 50, 0.0)); }
void OdDbArc::setStartAngle(double a) {
  assertWriteEnabled();
  setDouble(*this, kArc, 50, toDegrees(a));
}
double OdDbArc::endAngle() const { return toRadians(getDouble(*this, kArc, 51, 0.0)); }
void OdDbArc::setEndAngle(double a) {
  assertWriteEnabled();
  setDouble(*this, kArc, 51, toDegrees(a));
}

// ---- point ----

OdDbPointPtr OdDbPoint::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbPoint>(db, DxfVersion::R12, {{&kPoint, pointTags(10, kOrigin)}});
}

OdGePoint3d OdDbPoint::position() const { return getPoint(*this, kPoint, 10); }
void OdDbPoint::setPosition(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kPoint, 10, p);
}

// ---- solid ----

static void checkCorner(int index) {
  if (index < 0 || index > 3)
    throw OdError(eInvalidInput, "a solid has corners 0 to 3, not " + std::to_string(index));
}

OdDbSolidPtr OdDbSolid::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbSolid>(
      db, DxfVersion::R12,
      {{&kSolid, concat({pointTags(10, kOrigin), pointTags(11, kOrigin), pointTags(12, kOrigin), pointTags(13, kOrigin)})}});
}

void OdDbSolid::getPointAt(int index, OdGePoint3d& p) const {
  checkCorner(index);
  // A triangle may leave out its fourth corner, which is then the third.
  if (index == 3 && find(*this, kSolid, 13) < 0) index = 2;
  p = getPoint(*this, kSolid, 10 + index);
}

void OdDbSolid::setPointAt(int index, const OdGePoint3d& p) {
  checkCorner(index);
  assertWriteEnabled();
  setPoint(*this, kSolid, 10 + index, p);
}

// ---- lightweight polyline ----

namespace {

// The codes one vertex is made of, in the order they are written.
constexpr int kVertexCodes[] = {10, 20, 91, 40, 41, 42};

bool isVertexCode(int code) { return std::find(std::begin(kVertexCodes), std::end(kVertexCodes), code) != std::end(kVertexCodes); }

// Each vertex runs from its 10 to the next 10 or the first code that is not a
// vertex's (the normal after the last one).
struct VertexSpans {
  Range range;
  std::vector<std::pair<size_t, size_t>> spans;
};

VertexSpans vertexSpans(const OdDbObject& o) {
  VertexSpans v;
  v.range = range(o, kPolyline);
  if (!v.range.found) return v;
  const auto& t = o.tags();
  for (size_t i = v.range.begin; i < v.range.end; ++i) {
    if (t[i].code != 10) continue;
    size_t j = i + 1;
    while (j < v.range.end && t[j].code != 10 && isVertexCode(t[j].code)) ++j;
    v.spans.emplace_back(i, j);
    i = j - 1;
  }
  return v;
}

std::pair<size_t, size_t> vertexSpan(const OdDbObject& o, unsigned int index) {
  VertexSpans v = vertexSpans(o);
  if (index >= v.spans.size())
    throw OdError(eInvalidInput, "vertex " + std::to_string(index) + " of a polyline with " +
                                     std::to_string(v.spans.size()) + " vertices");
  return v.spans[index];
}

long findInSpan(const OdDbObject& o, std::pair<size_t, size_t> span, int code) {
  const auto& t = o.tags();
  for (size_t i = span.first; i < span.second; ++i)
    if (t[i].code == code) return static_cast<long>(i);
  return -1;
}

// Sets a vertex's tag, adding it in vertex order when missing.
void setInSpan(OdDbObject& o, std::pair<size_t, size_t> span, int code, double v) {
  long i = findInSpan(o, span, code);
  auto& t = o.tagsForWrite();
  if (i >= 0) {
    setDoubleAt(t[static_cast<size_t>(i)], v);
    return;
  }
  auto rank = [](int c) { return std::find(std::begin(kVertexCodes), std::end(kVertexCodes), c) - std::begin(kVertexCodes); };
  size_t pos = span.first + 1;
  for (size_t k = span.first; k < span.second; ++k)
    if (rank(t[k].code) < rank(code)) pos = k + 1;
  t.insert(t.begin() + static_cast<long>(pos), DxfTag(code, dxfFormatDouble(v)));
}

}  // namespace

OdDbPolylinePtr OdDbPolyline::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbPolyline>(db, DxfVersion::R14, {{&kPolyline, {DxfTag(90, "0"), DxfTag(70, "0")}}});
}

unsigned int OdDbPolyline::numVerts() const { return static_cast<unsigned int>(vertexSpans(*this).spans.size()); }

void OdDbPolyline::getPointAt(unsigned int index, OdGePoint2d& p) const {
  auto span = vertexSpan(*this, index);
  OdGePoint3d q = pointAt(tags(), span.first, span.second);
  p = OdGePoint2d{q.x, q.y};
}

void OdDbPolyline::setPointAt(unsigned int index, const OdGePoint2d& p) {
  auto span = vertexSpan(*this, index);
  assertWriteEnabled();
  setInSpan(*this, span, 10, p.x);
  setInSpan(*this, vertexSpan(*this, index), 20, p.y);
}

double OdDbPolyline::getBulgeAt(unsigned int index) const {
  long i = findInSpan(*this, vertexSpan(*this, index), 42);
  return i < 0 ? 0.0 : tags()[static_cast<size_t>(i)].toDouble();
}

void OdDbPolyline::setBulgeAt(unsigned int index, double bulge) {
  auto span = vertexSpan(*this, index);
  assertWriteEnabled();
  if (bulge == 0.0 && findInSpan(*this, span, 42) < 0) return;
  setInSpan(*this, span, 42, bulge);
}

void OdDbPolyline::getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const {
  auto span = vertexSpan(*this, index);
  long s = findInSpan(*this, span, 40), e = findInSpan(*this, span, 41);
  double constant = getConstantWidth();
  startWidth = s < 0 ? constant : tags()[static_cast<size_t>(s)].toDouble();
  endWidth = e < 0 ? constant : tags()[static_cast<size_t>(e)].toDouble();
}

void OdDbPolyline::setWidthsAt(unsigned int index, double startWidth, double endWidth) {
  vertexSpan(*this, index);
  assertWriteEnabled();
  setInSpan(*this, vertexSpan(*this, index), 40, startWidth);
  setInSpan(*this, vertexSpan(*this, index), 41, endWidth);
}

void OdDbPolyline::addVertexAt(unsigned int index, const OdGePoint2d& p, double bulge, double startWidth,
                               double endWidth) {
  assertWriteEnabled();
  writableRange(*this, kPolyline);
  VertexSpans v = vertexSpans(*this);
  size_t pos;
  if (index < v.spans.size())
    pos = v.spans[index].first;
  else if (!v.spans.empty())
    pos = v.spans.back().second;
  else
    pos = insertPosition(*this, v.range, kPolyline, 10);
  DxfTagList vertex{DxfTag(10, dxfFormatDouble(p.x)), DxfTag(20, dxfFormatDouble(p.y))};
  if (startWidth >= 0.0 || endWidth >= 0.0) {
    double constant = getConstantWidth();
    vertex.emplace_back(40, dxfFormatDouble(startWidth >= 0.0 ? startWidth : constant));
    vertex.emplace_back(41, dxfFormatDouble(endWidth >= 0.0 ? endWidth : constant));
  }
  if (bulge != 0.0) vertex.emplace_back(42, dxfFormatDouble(bulge));
  auto& t = tagsForWrite();
  t.insert(t.begin() + static_cast<long>(pos), vertex.begin(), vertex.end());
  setInt(*this, kPolyline, 90, static_cast<int64_t>(v.spans.size() + 1));
}

void OdDbPolyline::removeVertexAt(unsigned int index) {
  auto span = vertexSpan(*this, index);
  assertWriteEnabled();
  auto& t = tagsForWrite();
  t.erase(t.begin() + static_cast<long>(span.first), t.begin() + static_cast<long>(span.second));
  setInt(*this, kPolyline, 90, numVerts());
}

bool OdDbPolyline::isClosed() const { return (getInt(*this, kPolyline, 70, 0) & 1) != 0; }

void OdDbPolyline::setClosed(bool closed) {
  assertWriteEnabled();
  int64_t flags = getInt(*this, kPolyline, 70, 0);
  setInt(*this, kPolyline, 70, closed ? flags | 1 : flags & ~int64_t(1), 0);
}

double OdDbPolyline::getConstantWidth() const { return getDouble(*this, kPolyline, 43, 0.0); }

void OdDbPolyline::setConstantWidth(double width) {
  assertWriteEnabled();
  VertexSpans v = vertexSpans(*this);
  auto& t = tagsForWrite();
  for (auto it = v.spans.rbegin(); it != v.spans.rend(); ++it)
    for (size_t k = it->second; k-- > it->first;)
      if (t[k].code == 40 || t[k].code == 41) t.erase(t.begin() + static_cast<long>(k));
  setDouble(*this, kPolyline, 43, width, 0.0);
}

double OdDbPolyline::elevation() const { return getDouble(*this, kPolyline, 38, 0.0); }

void OdDbPolyline::setElevation(double z) {
  assertWriteEnabled();
  setDouble(*this, kPolyline, 38, z, 0.0);
}

// ---- block reference ----

OdDbBlockReferencePtr OdDbBlockReference::createFor(const OdDbDatabase& db) {
  return newEntity<OdDbBlockReference>(db, DxfVersion::R12, {{&kInsert, pointTags(10, kOrigin)}});
}

OdDbObjectId OdDbBlockReference::blockTableRecord() const {
  auto name = getText(*this, kInsert, 2);
  return name ? recordId(*this, &OdDbDatabase::getBlockTableId, *name) : OdDbObjectId();
}

void OdDbBlockReference::setBlockTableRecord(const OdDbObjectId& blockId) {
  std::string name = recordName(*this, blockId, &OdDbDatabase::getBlockTableId);
  assertWriteEnabled();
  setText(*this, kInsert, 2, std::move(name));
}

OdGePoint3d OdDbBlockReference::position() const { return getPoint(*this, kInsert, 10); }
void OdDbBlockReference::setPosition(const OdGePoint3d& p) {
  assertWriteEnabled();
  setPoint(*this, kInsert, 10, p);
}

OdGeScale3d OdDbBlockReference::scaleFactors() const {
  return OdGeScale3d{getDouble(*this, kInsert, 41, 1.0), getDouble(*this, kInsert, 42, 1.0),
                     getDouble(*this, kInsert, 43, 1.0)};
}

void OdDbBlockReference::setScaleFactors(const OdGeScale3d& s) {
  assertWriteEnabled();
  setDouble(*this, kInsert, 41, s.sx, 1.0);
  setDouble(*this, kInsert, 42, s.sy, 1.0);
  setDouble(*this, kInsert, 43, s.sz, 1.0);
}

double OdDbBlockReference::rotation() const { return toRadians(getDouble(*this, kInsert, 50, 0.0)); }
void OdDbBlockReference::setRotation(double a) {
  assertWriteEnabled();
  setDouble(*this, kInsert, 50, toDegrees(a), 0.0);
}
