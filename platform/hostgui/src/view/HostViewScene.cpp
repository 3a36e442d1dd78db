#include "hostgui/HostViewScene.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>

#include "drawings/OdDbDictionary.h"
#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdResult.h"
#include "hostgui/HostPaint.h"

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

using Pt = OdGePoint2d;

double dist(const Pt& a, const Pt& b) { return std::hypot(a.x - b.x, a.y - b.y); }

double segmentDistance(const Pt& p, const Pt& a, const Pt& b) {
  double dx = b.x - a.x, dy = b.y - a.y, len2 = dx * dx + dy * dy;
  if (len2 == 0) return dist(p, a);
  double t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / len2, 0.0, 1.0);
  return dist(p, {a.x + t * dx, a.y + t * dy});
}

// Whether `angle` lies on the arc from `start` sweeping `sweep` counter-clockwise.
bool onSweep(double angle, double start, double sweep) {
  if (sweep >= kTwoPi) return true;
  double a = std::fmod(angle - start, kTwoPi);
  if (a < 0) a += kTwoPi;
  return a <= sweep + 1e-12;
}

Pt arcPoint(const OdGiArc& a, double angle) {
  return {a.center.x + a.radius * std::cos(angle), a.center.y + a.radius * std::sin(angle)};
}

// Even-odd: holes of self-overlapping fills count as outside, as they paint.
bool insidePolygon(const Pt& p, const Pt* pts, size_t n) {
  bool in = false;
  for (size_t i = 0, j = n - 1; i < n; j = i++) {
    if ((pts[i].y > p.y) != (pts[j].y > p.y) &&
        p.x < (pts[j].x - pts[i].x) * (p.y - pts[i].y) / (pts[j].y - pts[i].y) + pts[i].x)
      in = !in;
  }
  return in;
}

double chainDistance(const Pt& p, const Pt* pts, size_t n, bool closed) {
  if (n == 0) return INFINITY;
  if (n == 1) return dist(p, pts[0]);
  double d = INFINITY;
  for (size_t i = 0; i + 1 < n; ++i) d = std::min(d, segmentDistance(p, pts[i], pts[i + 1]));
  if (closed) d = std::min(d, segmentDistance(p, pts[n - 1], pts[0]));
  return d;
}

double areaDistance(const Pt& p, const Pt* pts, size_t n) {
  if (n >= 3 && insidePolygon(p, pts, n)) return 0;
  return chainDistance(p, pts, n, true);
}

bool inRect(const Pt& p, const OdGiExtents& r) {
  return p.x >= r.min.x && p.x <= r.max.x && p.y >= r.min.y && p.y <= r.max.y;
}

// Liang-Barsky: whether any part of the segment lies in the rectangle.
bool segmentTouches(const Pt& a, const Pt& b, const OdGiExtents& r) {
  double t0 = 0, t1 = 1, dx = b.x - a.x, dy = b.y - a.y;
  auto clip = [&](double q, double d) {  // keeps the part where q + t d >= 0
    if (d == 0) return q >= 0;
    double t = -q / d;
    if (d > 0) t0 = std::max(t0, t);
    else t1 = std::min(t1, t);
    return t0 <= t1;
  };
  return clip(a.x - r.min.x, dx) && clip(r.max.x - a.x, -dx) && clip(a.y - r.min.y, dy) && clip(r.max.y - a.y, -dy);
}

bool chainTouches(const Pt* pts, size_t n, bool closed, const OdGiExtents& r) {
  if (n == 1) return inRect(pts[0], r);
  for (size_t i = 0; i + 1 < n; ++i)
    if (segmentTouches(pts[i], pts[i + 1], r)) return true;
  return closed && n > 2 && segmentTouches(pts[n - 1], pts[0], r);
}

bool areaTouches(const Pt* pts, size_t n, const OdGiExtents& r) {
  if (n == 0) return false;
  if (chainTouches(pts, n, true, r)) return true;
  // The rectangle lies wholly inside the fill.
  return n >= 3 && insidePolygon(r.min, pts, n);
}

// Whether the circle's line (not its disc) meets the rectangle, and where it
// crosses the rectangle's edges (angles), for arcs.
bool circleTouches(const Pt& c, double radius, const OdGiExtents& r, std::vector<double>* crossings) {
  double nx = std::clamp(c.x, r.min.x, r.max.x), ny = std::clamp(c.y, r.min.y, r.max.y);
  double near = std::hypot(nx - c.x, ny - c.y);
  double far = 0;
  for (double x : {r.min.x, r.max.x})
    for (double y : {r.min.y, r.max.y}) far = std::max(far, std::hypot(x - c.x, y - c.y));
  if (near > radius || far < radius) return false;
  if (crossings) {
    // Vertical edges x = const, then horizontal ones y = const.
    for (double x : {r.min.x, r.max.x}) {
      double dx = x - c.x, h2 = radius * radius - dx * dx;
      if (h2 < 0) continue;
      for (double s : {-1.0, 1.0}) {
        double y = c.y + s * std::sqrt(h2);
        if (y >= r.min.y && y <= r.max.y) crossings->push_back(std::atan2(y - c.y, dx));
      }
    }
    for (double y : {r.min.y, r.max.y}) {
      double dy = y - c.y, h2 = radius * radius - dy * dy;
      if (h2 < 0) continue;
      for (double s : {-1.0, 1.0}) {
        double x = c.x + s * std::sqrt(h2);
        if (x >= r.min.x && x <= r.max.x) crossings->push_back(std::atan2(dy, x - c.x));
      }
    }
  }
  return true;
}

struct DistanceTo {
  Pt p;
  double operator()(const OdGiLine& l) const { return segmentDistance(p, l.start, l.end); }
  double operator()(const OdGiArc& a) const {
    double sweep = a.endAngle - a.startAngle;
    if (onSweep(std::atan2(p.y - a.center.y, p.x - a.center.x), a.startAngle, sweep))
      return std::abs(dist(p, a.center) - a.radius);
    return std::min(dist(p, arcPoint(a, a.startAngle)), dist(p, arcPoint(a, a.endAngle)));
  }
  double operator()(const OdGiCircle& c) const { return std::abs(dist(p, c.center) - c.radius); }
  double operator()(const OdGiPolyline& pl) const {
    return chainDistance(p, pl.points.data(), pl.points.size(), pl.closed);
  }
  double operator()(const OdGiPolygon& pg) const { return areaDistance(p, pg.points.data(), pg.points.size()); }
  double operator()(const OdGiPoint& pt) const { return dist(p, pt.position); }
  double operator()(const OdGiText& t) const { return areaDistance(p, t.box, 4); }
};

struct TouchesRect {
  const OdGiExtents& r;
  bool operator()(const OdGiLine& l) const { return segmentTouches(l.start, l.end, r); }
  bool operator()(const OdGiArc& a) const {
    if (inRect(arcPoint(a, a.startAngle), r) || inRect(arcPoint(a, a.endAngle), r)) return true;
    std::vector<double> crossings;
    if (!circleTouches(a.center, a.radius, r, &crossings)) return false;
    double sweep = a.endAngle - a.startAngle;
    return std::any_of(crossings.begin(), crossings.end(),
                       [&](double angle) { return onSweep(angle, a.startAngle, sweep); });
  }
  bool operator()(const OdGiCircle& c) const { return circleTouches(c.center, c.radius, r, nullptr); }
  bool operator()(const OdGiPolyline& pl) const {
    return chainTouches(pl.points.data(), pl.points.size(), pl.closed, r);
  }
  bool operator()(const OdGiPolygon& pg) const { return areaTouches(pg.points.data(), pg.points.size(), r); }
  bool operator()(const OdGiPoint& pt) const { return inRect(pt.position, r); }
  bool operator()(const OdGiText& t) const { return areaTouches(t.box, 4, r); }
};

OdGiExtents rectOf(const Pt& a, const Pt& b) {
  OdGiExtents r;
  r.add(a);
  r.add(b);
  return r;
}

bool overlaps(const OdGiExtents& a, const OdGiExtents& b) {
  return a.min.x <= b.max.x && b.min.x <= a.max.x && a.min.y <= b.max.y && b.min.y <= a.max.y;
}

OdGiExtents extentsOf(const OdGiRecorder::Primitive& p) {
  return std::visit([](const auto& prim) { return odGiExtentsOf(prim); }, p);
}

// Hands every entity drawBlock reports a recorder of its own.
class EntitySplitter : public OdGiSink {
public:
  explicit EntitySplitter(std::vector<HostViewScene::Entity>& out) : m_out(out) {}
  void start(OdDbObjectId id) {
    m_out.emplace_back();
    m_out.back().id = id;
  }
  void line(const OdGiLine& p) override { if (auto r = current()) r->line(p); }
  void arc(const OdGiArc& p) override { if (auto r = current()) r->arc(p); }
  void circle(const OdGiCircle& p) override { if (auto r = current()) r->circle(p); }
  void polyline(const OdGiPolyline& p) override { if (auto r = current()) r->polyline(p); }
  void polygon(const OdGiPolygon& p) override { if (auto r = current()) r->polygon(p); }
  void point(const OdGiPoint& p) override { if (auto r = current()) r->point(p); }
  void text(const OdGiText& p) override { if (auto r = current()) r->text(p); }

private:
  OdGiRecorder* current() { return m_out.empty() ? nullptr : &m_out.back().primitives; }
  std::vector<HostViewScene::Entity>& m_out;
};

// A LAYOUT object as the tabs need it: the values after its AcDbLayout marker.
struct LayoutObject {
  OdString name;
  int tabOrder = 0;
  uint64_t blockRecord = 0;
};

std::optional<LayoutObject> readLayout(const OdDbObject& o) {
  if (o.dxfName() != "LAYOUT" || o.isErased()) return std::nullopt;
  LayoutObject l;
  bool inLayout = false, named = false;
  o.forEachTag([&](int code, std::string_view value) {
    if (code == 100) inLayout = value == "AcDbLayout";
    if (!inLayout) return;
    if (code == 1 && !named) {
      l.name = o.decodeText(value);
      named = true;
    } else if (code == 71) {
      l.tabOrder = std::atoi(std::string(value).c_str());
    } else if (code == 330 && !l.blockRecord) {
      l.blockRecord = std::strtoull(std::string(value).c_str(), nullptr, 16);
    }
  });
  if (!named) return std::nullopt;
  return l;
}

}  // namespace

double hostPrimitiveDistance(const OdGiRecorder::Primitive& primitive, const OdGePoint2d& p) {
  return std::visit(DistanceTo{p}, primitive);
}

bool hostPrimitiveTouches(const OdGiRecorder::Primitive& primitive, const OdGiExtents& rect) {
  return std::visit(TouchesRect{rect}, primitive);
}

std::vector<HostViewLayout> hostViewLayouts(const OdDbDatabase& db) {
  std::vector<HostViewLayout> out;
  out.push_back({db.getModelSpaceId(), OdString(L"Model")});

  // LAYOUT objects by the block record they lay out; the record's own pointer to
  // its layout (340) is taken too, for files that only fill in one side.
  std::map<uint64_t, LayoutObject> byBlock;
  if (auto root = odOpen<OdDbDictionary>(db.getNamedObjectsDictionaryId())) {
    if (auto dict = odOpen<OdDbDictionary>(root->getAt(L"ACAD_LAYOUT"))) {
      for (const auto& [name, id] : dict->entries()) {
        OdDbObjectPtr o = id.openObject();
        if (!o) continue;
        if (auto l = readLayout(*o); l && l->blockRecord) byBlock.emplace(l->blockRecord, *l);
      }
    }
  }

  struct Paper {
    OdDbObjectId block;
    std::optional<LayoutObject> layout;
  };
  std::vector<Paper> papers;
  auto table = odOpen<OdDbBlockTable>(db.getBlockTableId());
  if (!table) return out;
  for (const OdDbObjectId& id : table->recordIds()) {
    auto record = odOpen<OdDbBlockTableRecord>(id);
    if (!record || !record->isLayout() || id == db.getModelSpaceId()) continue;
    Paper paper{id, std::nullopt};
    auto it = byBlock.find(id.getHandle().value());
    if (it != byBlock.end()) paper.layout = it->second;
    else if (auto h = record->firstValue(340)) {
      OdDbObjectId layoutId = db.getOdDbObjectId(OdDbHandle(std::strtoull(h->c_str(), nullptr, 16)));
      if (OdDbObjectPtr o = layoutId.openObject()) paper.layout = readLayout(*o);
    }
    papers.push_back(std::move(paper));
  }
  // Named layouts in tab order, then the rest as the block table has them.
  std::stable_sort(papers.begin(), papers.end(), [](const Paper& a, const Paper& b) {
    if (a.layout.has_value() != b.layout.has_value()) return a.layout.has_value();
    return a.layout && a.layout->tabOrder < b.layout->tabOrder;
  });
  auto taken = [&](const OdString& name) {
    return std::any_of(out.begin(), out.end(), [&](const HostViewLayout& l) { return l.name.iCompare(name) == 0; }) ||
           std::any_of(papers.begin(), papers.end(),
                       [&](const Paper& p) { return p.layout && p.layout->name.iCompare(name) == 0; });
  };
  int next = 1;
  for (const Paper& p : papers) {
    OdString name;
    if (p.layout && !p.layout->name.isEmpty()) name = p.layout->name;
    else {
      do name = OdString::format(L"Layout%d", next++);
      while (taken(name));
    }
    out.push_back({p.block, name});
  }
  return out;
}

void HostViewScene::clear() {
  m_entities.clear();
  m_index.clear();
  m_extents = {};
  m_stats = {};
}

void HostViewScene::build(const OdDbDatabase& db, OdDbObjectId layout) {
  std::vector<Entity> entities;
  EntitySplitter splitter(entities);
  OdDbVectorizer vectorizer(splitter, &hostTextMeasure());
  vectorizer.setEntityObserver([&](OdDbObjectId id) { splitter.start(id); });
  vectorizer.drawBlock(db, layout);  // throws before anything is replaced

  clear();
  m_stats = vectorizer.stats();
  m_entities.reserve(entities.size());
  for (Entity& e : entities) {
    if (e.primitives.items().empty()) continue;  // hidden, or nothing to draw
    e.extents = e.primitives.extents();
    m_index.emplace(e.id, int(m_entities.size()));
    m_extents.add(e.extents);
    m_entities.push_back(std::move(e));
  }
}

int HostViewScene::indexOf(OdDbObjectId id) const {
  auto it = m_index.find(id);
  return it == m_index.end() ? -1 : it->second;
}

OdDbObjectId HostViewScene::pick(const OdGePoint2d& p, double tolerance) const {
  OdDbObjectId best;
  double bestDistance = INFINITY;
  OdGiExtents box = rectOf({p.x - tolerance, p.y - tolerance}, {p.x + tolerance, p.y + tolerance});
  for (const Entity& e : m_entities) {
    if (!overlaps(e.extents, box)) continue;
    for (const auto& prim : e.primitives.items()) {
      double d = hostPrimitiveDistance(prim, p);
      // Later entities lie on top: they win ties.
      if (d <= tolerance && d <= bestDistance) {
        bestDistance = d;
        best = e.id;
      }
    }
  }
  return best;
}

OdDbObjectIdArray HostViewScene::window(const OdGePoint2d& corner1, const OdGePoint2d& corner2) const {
  OdGiExtents r = rectOf(corner1, corner2);
  OdDbObjectIdArray out;
  for (const Entity& e : m_entities)
    if (inRect(e.extents.min, r) && inRect(e.extents.max, r)) out.push_back(e.id);
  return out;
}

OdDbObjectIdArray HostViewScene::crossing(const OdGePoint2d& corner1, const OdGePoint2d& corner2) const {
  OdGiExtents r = rectOf(corner1, corner2);
  OdDbObjectIdArray out;
  for (const Entity& e : m_entities) {
    if (!overlaps(e.extents, r)) continue;
    const auto& items = e.primitives.items();
    if (std::any_of(items.begin(), items.end(), [&](const auto& prim) {
          return overlaps(extentsOf(prim), r) && hostPrimitiveTouches(prim, r);
        }))
      out.push_back(e.id);
  }
  return out;
}

OdDbObjectIdArray HostViewScene::all() const {
  OdDbObjectIdArray out;
  out.reserve(m_entities.size());
  for (const Entity& e : m_entities) out.push_back(e.id);
  return out;
}
