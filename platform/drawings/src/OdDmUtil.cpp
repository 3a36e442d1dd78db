#include "drawings/OdDmUtil.h"

#include <string>

#include "DxfClasses.h"
#include "drawings/OdDbBlockBuilder.h"

namespace {

// The geometry of the standard arrows at size 1: tip at the origin, pointing along
// +X, so the dimension line comes in from -X. The numbers are those of the arrow
// blocks that real drawings hold, in the same order.
enum class Kind { Line, Circle, Arc, Solid, Polyline };

// Line: x1 y1 x2 y2. Circle: cx cy r. Arc: cx cy r start end (degrees).
// Solid: four corners, in DXF order (the third and fourth are swapped against the
// outline). Polyline: closed flag, constant width, then x y bulge per vertex.
struct Prim {
  Kind kind;
  int count;  // numbers used in v
  double v[8];
};

struct Arrow {
  const wchar_t* name;  // canonical spelling
  int count;
  Prim prims[5];
};

constexpr double kSixth = 1.0 / 6.0;
constexpr double kTan15 = 0.2679491924311227;
constexpr double kTan30 = 0.5773502691896257;

constexpr Prim line(double x1, double y1, double x2, double y2) { return {Kind::Line, 4, {x1, y1, x2, y2}}; }
constexpr Prim circle(double r) { return {Kind::Circle, 3, {0.0, 0.0, r}}; }
constexpr Prim arc(double cx, double cy, double r, double a0, double a1) { return {Kind::Arc, 5, {cx, cy, r, a0, a1}}; }
constexpr Prim solid(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4) {
  return {Kind::Solid, 8, {x1, y1, x2, y2, x3, y3, x4, y4}};
}
// A filled disc of diameter d: two half-circle segments on a circle of diameter
// d/2, drawn with width d/2, so the band reaches from the centre to the edge with
// neither a hole nor an overlap.
constexpr Prim disc(double d) { return {Kind::Polyline, 8, {1.0, d / 2, -d / 4, 0.0, 1.0, d / 4, 0.0, 1.0}}; }
constexpr Prim tick(double width) { return {Kind::Polyline, 8, {0.0, width, -0.5, -0.5, 0.0, 0.5, 0.5, 0.0}}; }

constexpr Prim kTail = line(-0.5, 0.0, -1.0, 0.0);  // dimension line from the far side of a 1-wide mark
constexpr Prim kShaft = line(0.0, 0.0, -1.0, 0.0);  // dimension line up to the tip

// The standard arrows in the order arrow pickers list them; closed filled, the
// default, has no block.
constexpr Arrow kArrows[] = {
    {L"_ClosedBlank", 3,
     {line(-1.0, kSixth, 0.0, 0.0), line(0.0, 0.0, -1.0, -kSixth), line(-1.0, kSixth, -1.0, -kSixth)}},
    {L"_Closed", 4,
     {line(-1.0, kSixth, 0.0, 0.0), line(0.0, 0.0, -1.0, -kSixth), line(-1.0, kSixth, -1.0, -kSixth), kShaft}},
    {L"_Dot", 2, {disc(1.0), kTail}},
    {L"_ArchTick", 1, {tick(0.15)}},
    {L"_Oblique", 1, {line(-0.5, -0.5, 0.5, 0.5)}},
    {L"_Open", 3, {line(-1.0, kSixth, 0.0, 0.0), line(0.0, 0.0, -1.0, -kSixth), kShaft}},
    {L"_Origin", 2, {circle(0.5), kShaft}},
    {L"_Origin2", 3, {circle(0.5), circle(0.25), kTail}},
    {L"_Open90", 3, {line(-0.5, 0.5, 0.0, 0.0), line(0.0, 0.0, -0.5, -0.5), kShaft}},
    {L"_Open30", 3, {line(-1.0, kTan15, 0.0, 0.0), line(0.0, 0.0, -1.0, -kTan15), kShaft}},
    // Some writers give this dot the width of the big one (0.5) on a 0.125 circle,
    // which overlaps itself into a 0.625 disc; a small dot is meant, a quarter of
    // the big one.
    {L"_DotSmall", 1, {disc(0.25)}},
    {L"_DotBlank", 2, {circle(0.5), kTail}},
    {L"_Small", 1, {circle(0.25)}},
    {L"_BoxBlank", 5,
     {line(-0.5, -0.5, 0.5, -0.5), line(0.5, -0.5, 0.5, 0.5), line(0.5, 0.5, -0.5, 0.5), line(-0.5, 0.5, -0.5, -0.5),
      kTail}},
    {L"_BoxFilled", 2, {solid(-0.5, 0.5, 0.5, 0.5, -0.5, -0.5, 0.5, -0.5), kTail}},
    {L"_DatumBlank", 3, {line(0.0, kTan30, -1.0, 0.0), line(-1.0, 0.0, 0.0, -kTan30), line(0.0, -kTan30, 0.0, kTan30)}},
    {L"_DatumFilled", 1, {solid(0.0, kTan30, -1.0, 0.0, 0.0, -kTan30, 0.0, -kTan30)}},
    {L"_Integral", 2,
     {arc(0.44488802, -0.09133463, 0.45416667, 102.0, 168.0), arc(-0.44488802, 0.09133463, 0.45416667, 282.0, 348.0)}},
    {L"_None", 0, {}},
};

// The standard arrow that `name` means: with or without the leading '_', any case.
const Arrow* findArrow(const OdString& name) {
  for (const Arrow& a : kArrows) {
    const OdString canonical(a.name);
    if (name.iCompare(canonical) == 0 || name.iCompare(canonical.mid(1)) == 0) return &a;
  }
  return nullptr;
}

// Writes an arrow's entities into its block as tags, the way the drawing's version
// spells them.
class ArrowWriter {
public:
  ArrowWriter(OdDbDatabase& db, OdDbBlockTableRecord& block)
      : m_block(block), m_objects(dxfver::hasObjects(db.version())),
        m_lineweights(db.version() >= DxfVersion::R2000), m_lwpolylines(db.version() >= DxfVersion::R2000) {}

  void write(const Prim& p) {
    const double* v = p.v;
    switch (p.kind) {
      case Kind::Line: {
        DxfTagList t = head("LINE", "AcDbLine");
        point(t, 10, v[0], v[1]);
        point(t, 11, v[2], v[3]);
        append(std::move(t));
        break;
      }
      case Kind::Circle: {
        DxfTagList t = head("CIRCLE", "AcDbCircle");
        point(t, 10, v[0], v[1]);
        real(t, 40, v[2]);
        append(std::move(t));
        break;
      }
      case Kind::Arc: {
        DxfTagList t = head("ARC", "AcDbCircle");
        point(t, 10, v[0], v[1]);
        real(t, 40, v[2]);
        marker(t, "AcDbArc");
        real(t, 50, v[3]);
        real(t, 51, v[4]);
        append(std::move(t));
        break;
      }
      case Kind::Solid: {
        DxfTagList t = head("SOLID", "AcDbTrace");
        for (int k = 0; k < 4; ++k) point(t, 10 + k, v[2 * k], v[2 * k + 1]);
        append(std::move(t));
        break;
      }
      case Kind::Polyline:
        polyline(p);
        break;
    }
  }

private:
  DxfTagList head(const char* type, const char* subclass) const {
    DxfTagList t;
    t.emplace_back(0, type);
    marker(t, "AcDbEntity");
    t.emplace_back(8, "0");
    t.emplace_back(6, m_objects ? "ByBlock" : "BYBLOCK");
    t.emplace_back(62, "0");
    if (m_lineweights) t.emplace_back(370, "-2");
    marker(t, subclass);
    return t;
  }
  // Subclass markers exist from R13 on.
  void marker(DxfTagList& t, const char* name) const {
    if (m_objects) t.emplace_back(100, name);
  }
  static void real(DxfTagList& t, int code, double v) { t.emplace_back(code, dxfFormatDouble(v)); }
  static void point(DxfTagList& t, int code, double x, double y) {
    real(t, code, x);
    real(t, code + 10, y);
    real(t, code + 20, 0.0);
  }

  OdDbObjectId append(DxfTagList tags) {
    const OdRxClass* cls = dxfEntityClass(tags[0].text);
    OdDbObjectPtr o(static_cast<OdDbObject*>(cls->create()));
    o->setDxfName(tags[0].text);
    o->tagsForWrite() = std::move(tags);
    return m_block.appendOdDbEntity(static_cast<OdDbEntity*>(o.get()));
  }

  void polyline(const Prim& p) {
    const bool closed = p.v[0] != 0.0;
    const double width = p.v[1];
    const int vertices = (p.count - 2) / 3;
    if (m_lwpolylines) {
      DxfTagList t = head("LWPOLYLINE", "AcDbPolyline");
      t.emplace_back(90, std::to_string(vertices));
      t.emplace_back(70, closed ? "1" : "0");
      real(t, 43, width);
      for (int k = 0; k < vertices; ++k) {
        const double* v = p.v + 2 + 3 * k;
        real(t, 10, v[0]);
        real(t, 20, v[1]);
        if (v[2] != 0.0) real(t, 42, v[2]);
      }
      append(std::move(t));
      return;
    }
    // Before LWPOLYLINE: the polyline, its vertices and a SEQEND, owned by the
    // polyline from R13 on. Widths go on every vertex as well as on the polyline,
    // since some readers take no default from the polyline.
    DxfTagList t = head("POLYLINE", "AcDb2dPolyline");
    t.emplace_back(66, "1");
    point(t, 10, 0.0, 0.0);
    if (closed) t.emplace_back(70, "1");
    real(t, 40, width);
    real(t, 41, width);
    const OdDbObjectId polylineId = append(std::move(t));
    for (int k = 0; k < vertices; ++k) {
      const double* v = p.v + 2 + 3 * k;
      DxfTagList vt = head("VERTEX", "AcDbVertex");
      marker(vt, "AcDb2dVertex");
      point(vt, 10, v[0], v[1]);
      real(vt, 40, width);
      real(vt, 41, width);
      if (v[2] != 0.0) real(vt, 42, v[2]);
      ownedByPolyline(append(std::move(vt)), polylineId);
    }
    DxfTagList end;
    end.emplace_back(0, "SEQEND");
    marker(end, "AcDbEntity");
    end.emplace_back(8, "0");
    ownedByPolyline(append(std::move(end)), polylineId);
  }

  void ownedByPolyline(const OdDbObjectId& id, const OdDbObjectId& polylineId) const {
    if (m_objects) id.openObject(OdDb::kForWrite)->setOwnerId(polylineId);
  }

  OdDbBlockTableRecord& m_block;
  const bool m_objects;      // handles, owners and subclass markers: R13 on
  const bool m_lineweights;  // code 370: R2000 on
  const bool m_lwpolylines;
};

OdString blockName(const OdDbObjectId& id) {
  auto block = odOpen<OdDbBlockTableRecord>(id);
  return block ? block->getName() : OdString();
}

}  // namespace

namespace OdDmUtil {

OdString arrowName(const OdDbObjectId& blockId) {
  const OdString name = blockName(blockId);
  // Only the underscored spelling is the block of a standard arrow: a block named
  // "DOT" is the user's own.
  if (!name.isEmpty() && name.getAt(0) == L'_')
    if (const Arrow* a = findArrow(name)) return a->name;
  return name;
}

OdDbObjectId getArrowId(const OdString& name, OdDbDatabase* db) {
  if (!db || name.isEmpty() || name == L".") return OdDbObjectId();
  auto table = odOpen<OdDbBlockTable>(db->getBlockTableId());
  if (!table) return OdDbObjectId();
  const OdDbObjectId existing = table->getAt(name);
  if (!existing.isNull()) return existing;
  const Arrow* arrow = findArrow(name);
  if (!arrow) return OdDbObjectId();
  const OdDbObjectId found = table->getAt(arrow->name);
  if (!found.isNull()) return found;

  const OdDbObjectId id = odCreateBlock(*db, arrow->name);
  auto block = odOpen<OdDbBlockTableRecord>(id, OdDb::kForWrite);
  ArrowWriter writer(*db, *block);
  for (int k = 0; k < arrow->count; ++k) writer.write(arrow->prims[k]);
  return id;
}

}  // namespace OdDmUtil
