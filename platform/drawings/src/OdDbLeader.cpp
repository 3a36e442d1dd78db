#include "drawings/OdDbLeader.h"


#include <vector>

#include "EntityTags.h"
#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbLeader, OdDbCurve, L"LEADER")

using namespace entitytags;

namespace {

constexpr int kLeaderOrder[] = {3,  71, 72,  73,  74,  75,  40,  41,  76,  10,  20,  30,  77,  340,
                                210, 220, 230, 211, 221, 231, 212, 222, 232, 213, 223, 233};
const DxfSubclass kLeader{"AcDbLeader", kLeaderOrder};

// A vertex is a 10 with the 20 and 30 after it: [first, second).
std::vector<std::pair<size_t, size_t>> vertexSpans(const OdDbObject& o, Range& r) {
  std::vector<std::pair<size_t, size_t>> spans;
  r = range(o, kLeader);
  if (!r.found) return spans;
  const auto& t = o.tags();
  for (size_t i = r.begin; i < r.end; ++i) {
    if (t[i].code != 10) continue;
    size_t j = i + 1;
    while (j < r.end && (t[j].code == 20 || t[j].code == 30)) ++j;
    spans.emplace_back(i, j);
  }
  return spans;
}

}  // namespace

OdDbLeaderPtr OdDbLeader::createFor(const OdDbDatabase& db) {
  OdDbLeaderPtr e = createObject();
  std::string style = db.codec().encode(db.headerString("$DIMSTYLE", L"Standard").view());
  frame(*e, db, "LEADER", DxfVersion::R13,
        {{&kLeader,
          {DxfTag(3, style), DxfTag(71, "1"), DxfTag(72, "0"), DxfTag(73, "3"), DxfTag(74, "1"), DxfTag(75, "0"),
           DxfTag(40, "0.0"), DxfTag(41, "0.0"), DxfTag(76, "0")}}});
  return e;
}

int OdDbLeader::numVertices() const {
  Range r;
  return static_cast<int>(vertexSpans(*this, r).size());
}

OdGePoint3d OdDbLeader::vertexAt(int index) const {
  Range r;
  auto spans = vertexSpans(*this, r);
  if (index < 0 || static_cast<size_t>(index) >= spans.size())
    throw OdError(eInvalidInput, "vertex " + std::to_string(index) + " of a leader with " +
                                     std::to_string(spans.size()) + " vertices");
  auto [b, e] = spans[static_cast<size_t>(index)];
  return pointAt(tags(), b, e);
}

bool OdDbLeader::setVertexAt(int index, const OdGePoint3d& p) {
  Range r;
  auto spans = vertexSpans(*this, r);
  if (index < 0 || static_cast<size_t>(index) >= spans.size()) return false;
  assertWriteEnabled();
  auto [b, e] = spans[static_cast<size_t>(index)];
  auto& t = tagsForWrite();
  setDoubleAt(t[b], p.x);
  bool hasY = false, hasZ = false;
  for (size_t k = b + 1; k < e; ++k) {
    if (t[k].code == 20) setDoubleAt(t[k], p.y), hasY = true;
    if (t[k].code == 30) setDoubleAt(t[k], p.z), hasZ = true;
  }
  if (!hasZ && p.z != 0.0) t.insert(t.begin() + static_cast<long>(e), DxfTag(30, dxfFormatDouble(p.z)));
  if (!hasY) t.insert(t.begin() + static_cast<long>(b + 1), DxfTag(20, dxfFormatDouble(p.y)));
  return true;
}

bool OdDbLeader::appendVertex(const OdGePoint3d& p) {
  assertWriteEnabled();
  writableRange(*this, kLeader);
  Range r;
  auto spans = vertexSpans(*this, r);
  size_t pos = spans.empty() ? insertPosition(*this, r, kLeader, 10) : spans.back().second;
  DxfTagList v = pointTags(10, p);
  auto& t = tagsForWrite();
  t.insert(t.begin() + static_cast<long>(pos), v.begin(), v.end());
  setInt(*this, kLeader, 76, static_cast<int64_t>(spans.size() + 1));
  return true;
}

void OdDbLeader::removeLastVertex() {
  Range r;
  auto spans = vertexSpans(*this, r);
  if (spans.empty()) return;
  assertWriteEnabled();
  auto& t = tagsForWrite();
  t.erase(t.begin() + static_cast<long>(spans.back().first), t.begin() + static_cast<long>(spans.back().second));
  setInt(*this, kLeader, 76, static_cast<int64_t>(spans.size() - 1));
}

bool OdDbLeader::hasArrowHead() const { return getInt(*this, kLeader, 71, 1) != 0; }
void OdDbLeader::enableArrowHead() {
  assertWriteEnabled();
  setInt(*this, kLeader, 71, 1, 1);
}
void OdDbLeader::disableArrowHead() {
  assertWriteEnabled();
  setInt(*this, kLeader, 71, 0, 1);
}

// Leaders saved without code 75 end in last segments of any length and slope:
// absent means no hook line.
bool OdDbLeader::hasHookLine() const { return getInt(*this, kLeader, 75, 0) != 0; }

bool OdDbLeader::isSplined() const { return getInt(*this, kLeader, 72, 0) != 0; }
void OdDbLeader::setToSplineLeader() {
  assertWriteEnabled();
  setInt(*this, kLeader, 72, 1, 0);
}
void OdDbLeader::setToStraightLeader() {
  assertWriteEnabled();
  setInt(*this, kLeader, 72, 0, 0);
}

bool OdDbLeader::annotationOnXDir() const { return getInt(*this, kLeader, 74, 1) == 0; }
void OdDbLeader::setAnnotationOnXDir(bool onXDir) {
  assertWriteEnabled();
  setInt(*this, kLeader, 74, onXDir ? 0 : 1, 1);
}

OdGeVector3d OdDbLeader::horizontalDirection() const {
  if (find(*this, kLeader, 211) < 0) return {1, 0, 0};
  const OdGePoint3d p = getPoint(*this, kLeader, 211);
  return {p.x, p.y, p.z};
}
void OdDbLeader::setHorizontalDirection(const OdGeVector3d& dir) {
  assertWriteEnabled();
  // Absent means along x: keep it absent for that.
  if (find(*this, kLeader, 211) < 0 && dir.y == 0 && dir.z == 0 && dir.x > 0) return;
  setPoint(*this, kLeader, 211, {dir.x, dir.y, dir.z});
}

OdGeVector3d OdDbLeader::annotationOffset() const {
  const OdGePoint3d p = getPoint(*this, kLeader, 213);
  return {p.x, p.y, p.z};
}
void OdDbLeader::setAnnotationOffset(const OdGeVector3d& offset) {
  assertWriteEnabled();
  if (find(*this, kLeader, 213) < 0 && offset.x == 0 && offset.y == 0 && offset.z == 0) return;
  setPoint(*this, kLeader, 213, {offset.x, offset.y, offset.z});
}

OdGeVector3d OdDbLeader::blockOffset() const {
  const OdGePoint3d p = getPoint(*this, kLeader, 212);
  return {p.x, p.y, p.z};
}
void OdDbLeader::setBlockOffset(const OdGeVector3d& offset) {
  assertWriteEnabled();
  if (find(*this, kLeader, 212) < 0 && offset.x == 0 && offset.y == 0 && offset.z == 0) return;
  setPoint(*this, kLeader, 212, {offset.x, offset.y, offset.z});
}

double OdDbLeader::annotationHeight() const { return getDouble(*this, kLeader, 40, 0.0); }
double OdDbLeader::annotationWidth() const { return getDouble(*this, kLeader, 41, 0.0); }
void OdDbLeader::setAnnotationSize(double height, double width) {
  assertWriteEnabled();
  setDouble(*this, kLeader, 40, height);
  setDouble(*this, kLeader, 41, width);
}

OdDbLeader::AnnoType OdDbLeader::annoType() const {
  int64_t a = getInt(*this, kLeader, 73, kNoAnno);
  return a >= kMText && a <= kNoAnno ? static_cast<AnnoType>(a) : kNoAnno;
}

OdDbObjectId OdDbLeader::annotationObjId() const {
  long i = find(*this, kLeader, 340);
  OdDbDatabase* db = database();
  if (i < 0 || !db) return OdDbObjectId();
  return db->getOdDbObjectId(OdDbHandle(tags()[static_cast<size_t>(i)].toHandle()));
}

void OdDbLeader::attachAnnotation(const OdDbObjectId& annoId) {
  OdDbObjectPtr anno = annoId.openObject(OdDb::kForWrite);
  if (!anno || !database() || annoId.database() != database())
    throw OdError(eInvalidInput, "a leader's annotation must be an object of its drawing");
  std::string_view kind = anno->dxfName();
  AnnoType type = kind == "MTEXT" ? kMText : kind == "TOLERANCE" ? kFcf : kind == "INSERT" ? kBlockRef : kNoAnno;
  if (type == kNoAnno)
    throw OdError(eInvalidInput, "a leader's annotation is an MTEXT, TOLERANCE or INSERT, not " + std::string(kind));
  assertWriteEnabled();
  setText(*this, kLeader, 340, dxfFormatHandle(annoId.getHandle().value()));
  setInt(*this, kLeader, 73, type);
  anno->addPersistentReactor(objectId());
}

void OdDbLeader::detachAnnotation() {
  assertWriteEnabled();
  remove(*this, kLeader, 340);
  setInt(*this, kLeader, 73, kNoAnno, kNoAnno);
}

OdDbObjectId OdDbLeader::dimensionStyle() const {
  std::string name = getText(*this, kLeader, 3).value_or("Standard");
  return recordId(*this, &OdDbDatabase::getDimStyleTableId, name);
}

void OdDbLeader::setDimensionStyle(const OdDbObjectId& styleId) {
  std::string name = recordName(*this, styleId, &OdDbDatabase::getDimStyleTableId);
  assertWriteEnabled();
  setText(*this, kLeader, 3, std::move(name));
}

