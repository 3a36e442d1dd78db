#include "host/HostSelection.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDbText.h"

namespace {

OdGePoint3d onCircle(const OdGePoint3d& c, double r, double angle) {
  return {c.x + r * std::cos(angle), c.y + r * std::sin(angle), c.z};
}

// Code 10 of a dimension: each kind names it after what it means there.
std::optional<OdGePoint3d> definitionPoint(const OdDbEntity& e) {
  if (auto d = OdDbAlignedDimension::cast(&e)) return d->dimLinePoint();
  if (auto d = OdDb2LineAngularDimension::cast(&e)) return d->xLine2Start();
  if (auto d = OdDb3PointAngularDimension::cast(&e)) return d->arcPoint();
  if (auto d = OdDbDiametricDimension::cast(&e)) return d->farChordPoint();
  if (auto d = OdDbRadialDimension::cast(&e)) return d->center();
  if (auto d = OdDbOrdinateDimension::cast(&e)) return d->origin();
  if (auto d = OdDbArcDimension::cast(&e)) return d->arcPoint();
  if (auto d = VxHugeRadius::cast(&e)) return d->center();
  return std::nullopt;
}

double distance2(const OdGePoint3d& a, const OdGePoint2d& b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

}  // namespace

std::vector<OdGePoint3d> hostEntityPoints(const OdDbEntity& e) {
  std::vector<OdGePoint3d> pts;
  if (auto line = OdDbLine::cast(&e)) {
    pts = {line->startPoint(), line->endPoint()};
  } else if (auto insert = OdDbBlockReference::cast(&e)) {
    pts = {insert->position()};
  } else if (auto text = OdDbText::cast(&e)) {
    pts = {text->position()};
  } else if (auto mtext = OdDbMText::cast(&e)) {
    pts = {mtext->location()};
  } else if (auto dim = OdDbDimension::cast(&e)) {
    pts = {dim->textPosition()};
    if (auto p = definitionPoint(e)) pts.push_back(*p);
  } else if (auto leader = OdDbLeader::cast(&e)) {
    for (int i = 0; i < leader->numVertices(); ++i) pts.push_back(leader->vertexAt(i));
  } else if (auto point = OdDbPoint::cast(&e)) {
    pts = {point->position()};
  } else if (auto circle = OdDbCircle::cast(&e)) {
    for (int q = 0; q < 4; ++q) pts.push_back(onCircle(circle->center(), circle->radius(), q * M_PI / 2));
  } else if (auto arc = OdDbArc::cast(&e)) {
    pts = {onCircle(arc->center(), arc->radius(), arc->startAngle()),
           onCircle(arc->center(), arc->radius(), arc->endAngle())};
  } else if (auto pline = OdDbPolyline::cast(&e)) {
    for (unsigned i = 0; i < pline->numVerts(); ++i) {
      OdGePoint2d v;
      pline->getPointAt(i, v);
      pts.push_back({v.x, v.y, pline->elevation()});
    }
  } else if (auto solid = OdDbSolid::cast(&e)) {
    for (int i = 0; i < 4; ++i) {
      OdGePoint3d p;
      solid->getPointAt(i, p);
      pts.push_back(p);
    }
  }
  return pts;
}

OdDbObjectIdArray hostSelectableEntities(const OdDbDatabase& db) {
  auto space = odOpen<OdDbBlockTableRecord>(db.getModelSpaceId());
  return space ? space->entityIds() : OdDbObjectIdArray();
}

OdDbObjectId hostPickNearest(const OdDbDatabase& db, const OdGePoint2d& p) {
  OdDbObjectId best;
  double bestDistance = std::numeric_limits<double>::infinity();
  for (const auto& id : hostSelectableEntities(db)) {
    auto e = odOpen<OdDbEntity>(id);
    if (!e) continue;
    for (const auto& q : hostEntityPoints(*e)) {
      const double d = distance2(q, p);
      if (d <= bestDistance) {
        bestDistance = d;
        best = id;
      }
    }
  }
  return best;
}

OdDbObjectIdArray hostSelectWindow(const OdDbDatabase& db, const OdGePoint2d& c1, const OdGePoint2d& c2,
                                   bool crossing) {
  const double x0 = std::min(c1.x, c2.x), x1 = std::max(c1.x, c2.x);
  const double y0 = std::min(c1.y, c2.y), y1 = std::max(c1.y, c2.y);
  auto inside = [&](const OdGePoint3d& q) { return q.x >= x0 && q.x <= x1 && q.y >= y0 && q.y <= y1; };
  OdDbObjectIdArray out;
  for (const auto& id : hostSelectableEntities(db)) {
    auto e = odOpen<OdDbEntity>(id);
    if (!e) continue;
    const std::vector<OdGePoint3d> pts = hostEntityPoints(*e);
    if (pts.empty()) continue;
    const bool chosen = crossing ? std::any_of(pts.begin(), pts.end(), inside)
                                 : std::all_of(pts.begin(), pts.end(), inside);
    if (chosen) out.push_back(id);
  }
  return out;
}

OdDbObjectId hostEntityByHandle(const OdDbDatabase& db, std::string_view hex) {
  uint64_t value = 0;
  auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
  if (hex.empty() || ec != std::errc() || end != hex.data() + hex.size() || value == 0) return OdDbObjectId();
  const OdDbObjectId id = db.getOdDbObjectId(OdDbHandle(value));
  auto e = odOpen<OdDbEntity>(id);
  if (!e) return OdDbObjectId();
  auto owner = odOpen<OdDbBlockTableRecord>(e->ownerId());
  return owner && owner->isLayout() ? id : OdDbObjectId();
}

bool hostParsePoint(std::string_view text, OdGePoint2d& p) {
  double v[3];
  int n = 0;
  const char* s = text.data();
  const char* end = s + text.size();
  for (;;) {
    if (n == 3) return false;
    // from_chars takes no leading '+'.
    if (s != end && *s == '+') ++s;
    auto [next, ec] = std::from_chars(s, end, v[n]);
    if (ec != std::errc() || !std::isfinite(v[n])) return false;
    ++n;
    s = next;
    if (s == end) break;
    if (*s++ != ',') return false;
  }
  if (n < 2) return false;
  p = {v[0], v[1]};
  return true;
}

OdDbObjectIdArray HostSelectionSetManager::previous() const {
  OdDbObjectIdArray out;
  for (const auto& id : m_previous)
    if (id.isValid() && !id.isErased()) out.push_back(id);
  return out;
}
