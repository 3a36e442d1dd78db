#include "drawings/OdDbVectorizer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cwctype>
#include <numbers>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "drawings/DimText.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTwoPi = 2 * kPi;
// Flattened curves use chords of at most 4 degrees: off the true curve by 0.06 %
// of the radius, which no picture shows.
constexpr double kChordAngle = kPi / 45;
// MTEXT lines are 5/3 of the text height apart at line spacing factor 1.
constexpr double kLineSpacing = 5.0 / 3.0;
// Where an ordinary font's descenders end, below the baseline, in text heights.
constexpr double kDescent = 1.0 / 3.0;
// MINSERT grids larger than this are drawn only this far.
constexpr long kMaxArrayCells = 10000;

using Pt = OdGePoint2d;

Pt operator+(Pt a, Pt b) { return {a.x + b.x, a.y + b.y}; }
Pt operator-(Pt a, Pt b) { return {a.x - b.x, a.y - b.y}; }
Pt operator*(Pt a, double s) { return {a.x * s, a.y * s}; }
double length(Pt a) { return std::hypot(a.x, a.y); }
Pt xy(const OdGePoint3d& p) { return {p.x, p.y}; }
Pt polar(double angle, double r = 1.0) { return {r * std::cos(angle), r * std::sin(angle)}; }

double normalizedAngle(double a) {
  a = std::fmod(a, kTwoPi);
  return a < 0 ? a + kTwoPi : a;
}

// x' = a x + b y + c, y' = d x + e y + f
struct Affine {
  double a = 1, b = 0, c = 0, d = 0, e = 1, f = 0;

  Pt apply(Pt p) const { return {a * p.x + b * p.y + c, d * p.x + e * p.y + f}; }
  Pt applyVector(Pt v) const { return {a * v.x + b * v.y, d * v.x + e * v.y}; }
  double det() const { return a * e - b * d; }
  // This transform after `inner`.
  Affine after(const Affine& i) const {
    return {a * i.a + b * i.d, a * i.b + b * i.e, a * i.c + b * i.f + c,
            d * i.a + e * i.d, d * i.b + e * i.e, d * i.c + e * i.f + f};
  }
  // A rotation and a uniform scale, perhaps mirrored: circles stay circles.
  bool keepsCircles() const {
    double tol = 1e-9 * (std::abs(a) + std::abs(b) + std::abs(d) + std::abs(e));
    return (std::abs(a - e) <= tol && std::abs(b + d) <= tol) || (std::abs(a + e) <= tol && std::abs(b - d) <= tol);
  }
  static Affine translation(Pt t) { return {1, 0, t.x, 0, 1, t.y}; }
  static Affine rotation(double r) { return {std::cos(r), -std::sin(r), 0, std::sin(r), std::cos(r), 0}; }
  static Affine scaling(double sx, double sy) { return {sx, 0, 0, 0, sy, 0}; }
};

OdGeVector3d cross(const OdGeVector3d& u, const OdGeVector3d& v) {
  return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}
OdGeVector3d unit(const OdGeVector3d& v) {
  double l = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return l > 0 ? OdGeVector3d{v.x / l, v.y / l, v.z / l} : OdGeVector3d{0, 0, 1};
}

// An entity's own coordinate system (its plane, by the arbitrary axis rule) seen
// from above, with the plane lifted by `elevation` along the normal.
Affine ocsToWorld(const OdGeVector3d& normal, double elevation = 0.0) {
  OdGeVector3d n = unit(normal);
  if (n.x == 0 && n.y == 0 && n.z > 0) return {};
  constexpr double kArbitrary = 1.0 / 64.0;
  OdGeVector3d ax = std::abs(n.x) < kArbitrary && std::abs(n.y) < kArbitrary ? cross({0, 1, 0}, n) : cross({0, 0, 1}, n);
  ax = unit(ax);
  OdGeVector3d ay = unit(cross(n, ax));
  return {ax.x, ay.x, elevation * n.x, ax.y, ay.y, elevation * n.y};
}

// The tags of one entity up to its extended data or an embedded object, read
// without keeping the entity's parsed tags.
class Tags {
public:
  explicit Tags(const OdDbObject& o) {
    bool done = false;
    o.forEachTag([&](int code, std::string_view v) {
      if (done || code == 101 || code >= 1000) {
        done = true;
        return;
      }
      m_tags.emplace_back(code, std::string(v));
    });
  }
  const std::string* find(int code) const {
    for (const auto& [c, v] : m_tags)
      if (c == code) return &v;
    return nullptr;
  }
  double dbl(int code, double dflt = 0.0) const {
    const std::string* v = find(code);
    return v ? std::strtod(v->c_str(), nullptr) : dflt;
  }
  long integer(int code, long dflt = 0) const {
    const std::string* v = find(code);
    return v ? std::strtol(v->c_str(), nullptr, 10) : dflt;
  }
  // The point whose x is the first tag `code` (y and z follow as code + 10, + 20).
  std::optional<OdGePoint3d> point(int code) const {
    for (size_t i = 0; i < m_tags.size(); ++i)
      if (m_tags[i].first == code) return pointAt(i);
    return std::nullopt;
  }
  OdGePoint3d pointOr(int code, const OdGePoint3d& dflt = {}) const { return point(code).value_or(dflt); }
  OdGeVector3d normal() const {
    OdGePoint3d n = pointOr(210, {0, 0, 1});
    return {n.x, n.y, n.z};
  }
  // Every point with x code `code`, in order.
  std::vector<OdGePoint3d> points(int code) const {
    std::vector<OdGePoint3d> out;
    for (size_t i = 0; i < m_tags.size(); ++i)
      if (m_tags[i].first == code) out.push_back(pointAt(i));
    return out;
  }
  std::vector<double> doubles(int code) const {
    std::vector<double> out;
    for (const auto& [c, v] : m_tags)
      if (c == code) out.push_back(std::strtod(v.c_str(), nullptr));
    return out;
  }

private:
  OdGePoint3d pointAt(size_t i) const {
    OdGePoint3d p{std::strtod(m_tags[i].second.c_str(), nullptr), 0, 0};
    int code = m_tags[i].first;
    for (size_t k = i + 1; k < m_tags.size() && k <= i + 2; ++k) {
      if (m_tags[k].first == code + 10) p.y = std::strtod(m_tags[k].second.c_str(), nullptr);
      else if (m_tags[k].first == code + 20) p.z = std::strtod(m_tags[k].second.c_str(), nullptr);
      else break;
    }
    return p;
  }
  std::vector<std::pair<int, std::string>> m_tags;
};

// A polyline vertex in its plane.
struct PathVertex {
  Pt p;
  double bulge = 0, startWidth = 0, endWidth = 0;
};

// Points of an arc from `start` turning by `sweep` (negative: clockwise), the
// first point left out.
void appendArc(std::vector<Pt>& out, Pt center, double radius, double start, double sweep) {
  int n = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kChordAngle - 1e-9)));
  for (int k = 1; k <= n; ++k) out.push_back(center + polar(start + sweep * k / n, radius));
}

struct BulgeArc {
  Pt center;
  double radius, start, sweep;
};
// The arc of a segment with bulge b (the tangent of a quarter of its sweep).
BulgeArc bulgeArc(Pt p0, Pt p1, double b) {
  Pt d = p1 - p0;
  Pt center = (p0 + p1) * 0.5 + Pt{-d.y, d.x} * ((1 - b * b) / (4 * b));
  return {center, length(p0 - center), std::atan2(p0.y - center.y, p0.x - center.x), 4 * std::atan(b)};
}

bool isBulge(double b) { return std::abs(b) > 1e-12; }

// The smooth curve of a splined leader: a cubic through every vertex, continuous
// in its first and second derivatives, parametrised by chord length and leaving
// the first and last vertices along the first and last segments (so the
// arrowhead and the hook keep their directions). `startTangent` gets the
// direction at the first vertex.
std::vector<Pt> leaderCurve(const std::vector<Pt>& p, Pt* startTangent) {
  const size_t n = p.size();
  std::vector<double> h(n - 1);
  for (size_t i = 0; i + 1 < n; ++i) h[i] = length(p[i + 1] - p[i]);
  // Derivatives m[i] at the vertices: fixed at the ends, the rest from the
  // tridiagonal system that matches second derivatives at interior vertices.
  std::vector<Pt> m(n), rhs(n);
  std::vector<double> diag(n, 1.0), lower(n, 0.0), upper(n, 0.0);
  m[0] = (p[1] - p[0]) * (1 / h[0]);
  m[n - 1] = (p[n - 1] - p[n - 2]) * (1 / h[n - 2]);
  rhs[0] = m[0];
  rhs[n - 1] = m[n - 1];
  for (size_t i = 1; i + 1 < n; ++i) {
    lower[i] = 1 / h[i - 1];
    upper[i] = 1 / h[i];
    diag[i] = 2 * (lower[i] + upper[i]);
    rhs[i] = (p[i] - p[i - 1]) * (3 / (h[i - 1] * h[i - 1])) + (p[i + 1] - p[i]) * (3 / (h[i] * h[i]));
  }
  for (size_t i = 1; i < n; ++i) {  // forward elimination
    const double w = lower[i] / diag[i - 1];
    diag[i] -= w * upper[i - 1];
    rhs[i] = rhs[i] - rhs[i - 1] * w;
  }
  m[n - 1] = rhs[n - 1] * (1 / diag[n - 1]);
  for (size_t i = n - 1; i-- > 0;) m[i] = (rhs[i] - m[i + 1] * upper[i]) * (1 / diag[i]);
  if (startTangent) *startTangent = m[0];
  constexpr int kSteps = 16;  // per span: the curve turns little between vertices
  std::vector<Pt> out{p[0]};
  for (size_t i = 0; i + 1 < n; ++i) {
    for (int k = 1; k <= kSteps; ++k) {
      const double s = static_cast<double>(k) / kSteps, s2 = s * s, s3 = s2 * s;
      const double h00 = 2 * s3 - 3 * s2 + 1, h10 = s3 - 2 * s2 + s, h01 = -2 * s3 + 3 * s2, h11 = s3 - s2;
      out.push_back(p[i] * h00 + m[i] * (h10 * h[i]) + p[i + 1] * h01 + m[i + 1] * (h11 * h[i]));
    }
  }
  return out;
}

}  // namespace

// ---- primitives ----

OdGiColor OdGiColor::fromAci(int aci) {
  uint32_t rgb = OdCmColor::lookupRGB(aci);
  return {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb), aci == 7};
}

void OdGiExtents::add(const OdGePoint2d& p) {
  if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
  min = {std::min(min.x, p.x), std::min(min.y, p.y)};
  max = {std::max(max.x, p.x), std::max(max.y, p.y)};
}

void OdGiExtents::add(const OdGiExtents& e) {
  if (!e.isValid()) return;
  add(e.min);
  add(e.max);
}

OdGiExtents odGiExtentsOf(const OdGiLine& p) {
  OdGiExtents e;
  e.add(p.start);
  e.add(p.end);
  return e;
}

OdGiExtents odGiExtentsOf(const OdGiArc& p) {
  OdGiExtents e;
  e.add(p.center + polar(p.startAngle, p.radius));
  e.add(p.center + polar(p.endAngle, p.radius));
  // The axis points the sweep passes.
  for (double q = std::ceil(p.startAngle / (kPi / 2)) * (kPi / 2); q < p.endAngle; q += kPi / 2)
    e.add(p.center + polar(q, p.radius));
  return e;
}

OdGiExtents odGiExtentsOf(const OdGiCircle& p) {
  OdGiExtents e;
  e.add(p.center - Pt{p.radius, p.radius});
  e.add(p.center + Pt{p.radius, p.radius});
  return e;
}

OdGiExtents odGiExtentsOf(const OdGiPolyline& p) {
  OdGiExtents e;
  for (const Pt& q : p.points) e.add(q);
  return e;
}

OdGiExtents odGiExtentsOf(const OdGiPolygon& p) {
  OdGiExtents e;
  for (const Pt& q : p.points) e.add(q);
  return e;
}

OdGiExtents odGiExtentsOf(const OdGiPoint& p) {
  OdGiExtents e;
  e.add(p.position);
  return e;
}

OdGiExtents odGiExtentsOf(const OdGiText& p) {
  OdGiExtents e;
  for (const Pt& q : p.box) e.add(q);
  return e;
}

OdGiExtents OdGiRecorder::extents() const {
  OdGiExtents e;
  for (const auto& item : m_items) std::visit([&](const auto& p) { e.add(odGiExtentsOf(p)); }, item);
  return e;
}

void OdGiRecorder::replay(OdGiSink& sink) const {
  for (const auto& item : m_items)
    std::visit(
        [&](const auto& p) {
          using T = std::decay_t<decltype(p)>;
          if constexpr (std::is_same_v<T, OdGiLine>) sink.line(p);
          else if constexpr (std::is_same_v<T, OdGiArc>) sink.arc(p);
          else if constexpr (std::is_same_v<T, OdGiCircle>) sink.circle(p);
          else if constexpr (std::is_same_v<T, OdGiPolyline>) sink.polyline(p);
          else if constexpr (std::is_same_v<T, OdGiPolygon>) sink.polygon(p);
          else if constexpr (std::is_same_v<T, OdGiPoint>) sink.point(p);
          else sink.text(p);
        },
        item);
}

double OdGiTextMeasure::lineWidth(const OdString& line, double height) const {
  return 0.6 * height * line.getLength();
}

OdString odTextPlainText(const OdString& text) {
  std::wstring_view s = text.view();
  std::wstring out;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == L'%' && i + 2 < s.size() && s[i + 1] == L'%') {
      wchar_t c = std::towlower(s[i + 2]);
      const wchar_t* symbol = c == L'c' ? L"\u2205" : c == L'd' ? L"\u00B0" : c == L'p' ? L"\u00B1" : c == L'%' ? L"%" : nullptr;
      if (symbol) {
        out += symbol;
        i += 2;
        continue;
      }
      if (c == L'u' || c == L'o' || c == L'k') {
        i += 2;
        continue;
      }
      if (i + 4 < s.size() && std::iswdigit(s[i + 2]) && std::iswdigit(s[i + 3]) && std::iswdigit(s[i + 4])) {
        int code = (s[i + 2] - L'0') * 100 + (s[i + 3] - L'0') * 10 + (s[i + 4] - L'0');
        // CAD shape fonts keep their degree, plus-minus and diameter signs at 127-129.
        out += code == 127 ? L'\u00B0' : code == 128 ? L'\u00B1' : code == 129 ? L'\u2205' : static_cast<wchar_t>(code);
        i += 4;
        continue;
      }
    }
    out += s[i];
  }
  return OdString(std::move(out));
}

// ---- the vectorizer ----

namespace {

// Where the entities being drawn sit.
struct Frame {
  Affine xf;  // from the coordinates of the block being drawn to the world
  int depth = 0;
  // Inside a block reference: entities on layer 0 take refLayer, and ByBlock
  // takes the reference's colour and lineweight.
  bool inBlock = false;
  OdString refLayer;
  OdGiColor byBlockColor = OdGiColor::fromAci(7);
  int byBlockLineWeight = -3;
  bool modelSpace = false;  // the top of model space: paper-space entities are left out
};

// One text line to draw, in the entity's coordinates.
struct TextLine {
  Pt position;
  OdGiText::Align align = OdGiText::kLeft;
  double height = 0, rotation = 0, widthFactor = 1, oblique = 0;
  bool backward = false, upsideDown = false;
  double fitLength = 0;
  OdString text;
};

}  // namespace

struct OdDbVectorizer::State {
  struct LayerInfo {
    OdGiColor color = OdGiColor::fromAci(7);
    int lineWeight = -3;
    bool off = false, frozen = false;
  };
  // What an entity is drawn with, and whether it is drawn at all.
  struct Look {
    OdGiTraits traits;
    OdString layer;  // after layer 0 inside a block took the reference's
    bool off = false, frozen = false;
  };

  OdGiSink& sink;
  const OdGiTextMeasure& measure;
  int maxDepth = 16;
  OdGiVectorizeStats stats;
  std::function<void(OdDbObjectId)> entityObserver;  // told each top-level entity of drawBlock
  const OdDbDatabase* layersOf = nullptr;
  std::unordered_map<std::wstring, LayerInfo> layers;  // folded name -> layer
  int lineWeightDefault = 25;

  // How the entity being drawn is placed and drawn.
  Affine xf;
  OdGiTraits traits;

  State(OdGiSink& s, const OdGiTextMeasure& m) : sink(s), measure(m) {}

  void useDatabase(const OdDbDatabase* db) {
    if (db == layersOf) return;
    layersOf = db;
    layers.clear();
    lineWeightDefault = db ? db->headerInt("$LWDEFAULT", 25) : 25;
    if (lineWeightDefault < 0) lineWeightDefault = 25;
  }

  const LayerInfo& layerInfo(const OdString& name) {
    std::wstring key = odstr::folded(name.view());
    auto it = layers.find(key);
    if (it != layers.end()) return it->second;
    LayerInfo info;
    auto table = layersOf ? odOpen<OdDbSymbolTable>(layersOf->getLayerTableId()) : OdSmartPtr<OdDbSymbolTable>();
    OdDbObjectPtr record = table ? table->getAt(name).openObject() : OdDbObjectPtr();
    if (record) {
      Tags t(*record);
      long aci = t.integer(62, 7);
      info.off = aci < 0;
      aci = std::abs(aci);
      info.color = aci >= 1 && aci <= 255 ? OdGiColor::fromAci(static_cast<int>(aci)) : OdGiColor::fromAci(7);
      if (t.find(420)) {
        long rgb = t.integer(420);
        info.color = {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb), false};
      }
      info.frozen = (t.integer(70) & 1) != 0;
      info.lineWeight = static_cast<int>(t.integer(370, -3));
    }
    return layers.emplace(std::move(key), info).first->second;
  }

  Look look(const OdDbEntity& e, const Frame& fr) {
    Look l;
    l.layer = e.layer();
    if (fr.inBlock && l.layer == L"0") l.layer = fr.refLayer;
    const LayerInfo& layer = layerInfo(l.layer);
    // Defpoints holds the definition points of dimensions, which are never plotted.
    l.off = layer.off || l.layer.iCompare(L"Defpoints") == 0;
    l.frozen = layer.frozen;
    OdCmColor c = e.color();
    if (c.isByLayer()) l.traits.color = layer.color;
    else if (c.isByBlock()) l.traits.color = fr.byBlockColor;
    else if (c.isByACI()) l.traits.color = OdGiColor::fromAci(c.colorIndex());
    else if (c.isByColor()) l.traits.color = {c.red(), c.green(), c.blue(), false};
    else l.traits.color = OdGiColor::fromAci(7);
    int lw = e.lineWeight();
    if (lw == OdDb::kLnWtByLayer) lw = layer.lineWeight;
    else if (lw == OdDb::kLnWtByBlock) lw = fr.byBlockLineWeight;
    l.traits.lineWeight = lw < 0 ? lineWeightDefault : lw;
    return l;
  }

  // ---- emitting, from the entity's coordinates through xf ----

  void line(Pt p, Pt q) {
    sink.line({traits, xf.apply(p), xf.apply(q)});
  }

  void path(const std::vector<Pt>& local, bool closed) {
    if (local.size() < 2) return;
    OdGiPolyline pl{traits, {}, closed};
    pl.points.reserve(local.size());
    for (const Pt& p : local) pl.points.push_back(xf.apply(p));
    sink.polyline(pl);
  }

  void fill(const std::vector<Pt>& local) {
    if (local.size() < 3) return;
    OdGiPolygon pg{traits, {}};
    for (const Pt& p : local) pg.points.push_back(xf.apply(p));
    sink.polygon(pg);
  }

  // Counter-clockwise from start to end; equal angles make a full turn.
  void arc(Pt center, double radius, double start, double end) {
    double sweep = normalizedAngle(end - start);
    if (sweep < 1e-12) sweep = kTwoPi;
    if (xf.keepsCircles()) {
      Pt x = xf.applyVector({1, 0});
      double turn = std::atan2(x.y, x.x);
      double s = start + turn;
      if (xf.det() < 0) s = turn - (start + sweep);  // mirrored: the arc runs the other way
      OdGiArc a{traits, xf.apply(center), radius * length(x), normalizedAngle(s), 0};
      a.endAngle = a.startAngle + sweep;
      sink.arc(a);
      return;
    }
    std::vector<Pt> pts{center + polar(start, radius)};
    appendArc(pts, center, radius, start, sweep);
    path(pts, false);
  }

  void circle(Pt center, double radius) {
    if (xf.keepsCircles()) {
      sink.circle({traits, xf.apply(center), radius * length(xf.applyVector({1, 0}))});
      return;
    }
    std::vector<Pt> pts;
    appendArc(pts, center, radius, 0, kTwoPi);
    pts.pop_back();
    path(pts, true);
  }

  void point(Pt p) {
    sink.point({traits, xf.apply(p)});
  }

  // A polyline: a single path when it has no width, else one filled outline per
  // segment with width (and plain lines for the others).
  void polyline(const std::vector<PathVertex>& v, bool closed) {
    if (v.empty()) return;
    size_t segments = closed ? v.size() : v.size() - 1;
    bool wide = false;
    for (size_t i = 0; i < segments; ++i) wide = wide || v[i].startWidth > 0 || v[i].endWidth > 0;
    if (!wide) {
      std::vector<Pt> pts{v[0].p};
      for (size_t i = 0; i < segments; ++i) {
        const PathVertex& a = v[i];
        Pt to = v[(i + 1) % v.size()].p;
        if (isBulge(a.bulge) && length(to - a.p) > 0) {
          BulgeArc arc = bulgeArc(a.p, to, a.bulge);
          appendArc(pts, arc.center, arc.radius, arc.start, arc.sweep);
          pts.back() = to;
        } else {
          pts.push_back(to);
        }
      }
      if (closed && pts.size() > 1) pts.pop_back();
      if (pts.size() == 1) return point(pts[0]);
      return path(pts, closed);
    }
    for (size_t i = 0; i < segments; ++i) {
      const PathVertex& a = v[i];
      Pt to = v[(i + 1) % v.size()].p;
      double w0 = a.startWidth / 2, w1 = a.endWidth / 2;
      Pt d = to - a.p;
      double len = length(d);
      if (len == 0) continue;
      if (w0 <= 0 && w1 <= 0) {
        if (isBulge(a.bulge)) {
          BulgeArc arc = bulgeArc(a.p, to, a.bulge);
          std::vector<Pt> pts{a.p};
          appendArc(pts, arc.center, arc.radius, arc.start, arc.sweep);
          path(pts, false);
        } else {
          line(a.p, to);
        }
        continue;
      }
      if (!isBulge(a.bulge)) {
        Pt n = Pt{-d.y, d.x} * (1 / len);
        fill({a.p + n * w0, to + n * w1, to - n * w1, a.p - n * w0});
        continue;
      }
      BulgeArc arc = bulgeArc(a.p, to, a.bulge);
      int n = std::max(1, static_cast<int>(std::ceil(std::abs(arc.sweep) / kChordAngle)));
      std::vector<Pt> outer, inner;
      for (int k = 0; k <= n; ++k) {
        double t = static_cast<double>(k) / n, w = w0 + (w1 - w0) * t, angle = arc.start + arc.sweep * t;
        outer.push_back(arc.center + polar(angle, arc.radius + w));
        inner.push_back(arc.center + polar(angle, std::max(0.0, arc.radius - w)));
      }
      outer.insert(outer.end(), inner.rbegin(), inner.rend());
      fill(outer);
    }
  }

  // Text in the entity's coordinates; the box is estimated there, then everything
  // goes through xf (a mirror turns the glyphs upside down along the new baseline).
  void text(const TextLine& t) {
    if (t.text.isEmpty() || !(t.height > 0)) return;
    double width = t.fitLength > 0 ? t.fitLength : measure.lineWidth(t.text, t.height) * t.widthFactor;
    double x0 = t.align == OdGiText::kLeft ? 0 : t.align == OdGiText::kCenter ? -width / 2 : -width;
    double x1 = x0 + width;
    if (t.backward) std::tie(x0, x1) = std::pair(-x1, -x0);
    double y0 = 0, y1 = t.height;
    if (t.upsideDown) std::tie(y0, y1) = std::pair(-y1, -y0);
    Pt u = polar(t.rotation), v = polar(t.rotation + kPi / 2);
    OdGiText out;
    out.traits = traits;
    out.align = t.align;
    out.text = t.text;
    out.oblique = t.oblique;
    out.backward = t.backward;
    const Pt corners[4] = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    for (int i = 0; i < 4; ++i) out.box[i] = xf.apply(t.position + u * corners[i].x + v * corners[i].y);
    out.position = xf.apply(t.position);
    Pt U = xf.applyVector(u), V = xf.applyVector(v);
    double lenU = length(U);
    if (lenU == 0) return;
    double up = (U.x * V.y - U.y * V.x) / lenU;  // V's part across the new baseline
    if (up == 0) return;
    out.rotation = std::atan2(U.y, U.x);
    out.height = t.height * std::abs(up);
    out.widthFactor = t.widthFactor * lenU / std::abs(up);
    out.upsideDown = t.upsideDown != (up < 0);
    out.fitLength = t.fitLength * lenU;
    sink.text(out);
  }
};

OdDbVectorizer::OdDbVectorizer(OdGiSink& sink, const OdGiTextMeasure* measure) {
  static const OdGiTextMeasure kEstimate;
  m_state = std::make_unique<State>(sink, measure ? *measure : kEstimate);
}

OdDbVectorizer::~OdDbVectorizer() = default;

void OdDbVectorizer::setMaxDepth(int depth) { m_state->maxDepth = depth; }

void OdDbVectorizer::setEntityObserver(std::function<void(OdDbObjectId)> observer) {
  m_state->entityObserver = std::move(observer);
}

const OdGiVectorizeStats& OdDbVectorizer::stats() const { return m_state->stats; }

namespace {

class Drawer {
public:
  explicit Drawer(OdDbVectorizer::State& s) : m_s(s) {}
  using State = OdDbVectorizer::State;

  void drawBlock(OdDbObjectId blockId, const Frame& fr) {
    auto block = odOpen<OdDbBlockTableRecord>(blockId);
    if (!block) return;
    // Vertices and attributes are in the list after their polyline or reference.
    std::vector<OdDbObjectId> list = block->entities();
    list.insert(list.end(), block->sectionEntities().begin(), block->sectionEntities().end());
    std::vector<OdDbEntity*> entities;
    entities.reserve(list.size());
    for (const OdDbObjectId& id : list) {
      OdDbObject* o = id.stub() ? id.stub()->object : nullptr;
      entities.push_back(o && !o->isErased() && o->isKindOf(OdDbEntity::desc()) ? static_cast<OdDbEntity*>(o) : nullptr);
    }
    for (size_t i = 0; i < entities.size(); ++i) {
      if (!entities[i]) continue;
      std::string_view name = entities[i]->dxfName();
      if (name == "VERTEX" || name == "ATTRIB" || name == "SEQEND") continue;
      if (fr.depth == 0 && !fr.inBlock && m_s.entityObserver) m_s.entityObserver(list[i]);
      drawOne(*entities[i], fr, entities, i);
    }
  }

  // `list` and `index`: where the entity is among its block's entities, for the
  // vertices and attributes that follow it.
  void drawOne(const OdDbEntity& e, const Frame& fr, const std::vector<OdDbEntity*>& list, size_t index) {
    std::string_view name = e.dxfName();
    if (name == "BLOCK" || name == "ENDBLK" || name == "SEQEND") return;
    if (fr.modelSpace && e.isInPaperSpace()) {
      ++m_s.stats.hidden;
      return;
    }
    State::Look look = m_s.look(e, fr);
    // A reference on a layer that is off still shows its entities on other layers.
    bool reference = name == "INSERT" || e.isKindOf(OdDbDimension::desc());
    if (look.frozen || (look.off && !reference) || e.visibility() == OdDb::kInvisible) {
      ++m_s.stats.hidden;
      return;
    }
    m_s.traits = look.traits;
    bool handled = true;
    try {
      Tags t(e);
      if (name == "INSERT") insert(e, t, fr, look, list, index);
      else if (auto dim = OdDbDimension::cast(&e)) handled = dimension(*dim, fr, look);
      else {
        m_s.xf = fr.xf;
        handled = simple(e, name, t, fr, list, index);
      }
    } catch (const OdError&) {
      // One entity that cannot be read leaves the rest of the picture.
      ++m_s.stats.skipped[std::string(name) + " (unreadable)"];
      return;
    }
    if (!handled) ++m_s.stats.skipped[std::string(name)];
    else ++m_s.stats.drawn;
  }

private:
  Frame childFrame(const Frame& fr, const State::Look& look) const {
    Frame child;
    child.xf = fr.xf;
    child.depth = fr.depth + 1;
    child.inBlock = true;
    child.refLayer = look.layer;
    child.byBlockColor = look.traits.color;
    child.byBlockLineWeight = look.traits.lineWeight;
    return child;
  }

  bool enter(const Frame& fr) {
    if (fr.depth < m_s.maxDepth) return true;
    ++m_s.stats.tooDeep;
    return false;
  }

  void insert(const OdDbEntity& e, const Tags& t, const Frame& fr, const State::Look& look,
              const std::vector<OdDbEntity*>& list, size_t index) {
    auto ref = OdDbBlockReference::cast(&e);
    OdDbObjectId blockId = ref ? ref->blockTableRecord() : OdDbObjectId();
    auto block = odOpen<OdDbBlockTableRecord>(blockId);
    if (block && enter(fr)) {
      OdGePoint3d base;
      if (auto begin = block->blockBegin.openObject()) base = Tags(*begin).pointOr(10);
      OdGeScale3d s = ref->scaleFactors();
      double rotation = ref->rotation();
      Affine placed = fr.xf.after(ocsToWorld(t.normal(), ref->position().z));
      long cols = std::max(1L, t.integer(70, 1)), rows = std::max(1L, t.integer(71, 1));
      if (cols * rows > kMaxArrayCells) cols = rows = 1;
      double colStep = t.dbl(44), rowStep = t.dbl(45);
      Frame child = childFrame(fr, look);
      for (long r = 0; r < rows; ++r)
        for (long c = 0; c < cols; ++c) {
          Affine local = Affine::translation(xy(ref->position()))
                             .after(Affine::rotation(rotation))
                             .after(Affine::translation({c * colStep, r * rowStep}))
                             .after(Affine::scaling(s.sx, s.sy))
                             .after(Affine::translation({-base.x, -base.y}));
          child.xf = placed.after(local);
          drawBlock(blockId, child);
        }
    }
    // Attributes stand where they were placed, in the reference's own coordinates.
    if (t.integer(66) != 0) {
      Frame attribs = childFrame(fr, look);
      attribs.depth = fr.depth;
      for (size_t i = index + 1; i < list.size() && list[i] && list[i]->dxfName() == "ATTRIB"; ++i) {
        const OdDbEntity& a = *list[i];
        State::Look al = m_s.look(a, attribs);
        Tags at(a);
        if (al.off || al.frozen || a.visibility() == OdDb::kInvisible || (at.integer(70) & 1)) {
          ++m_s.stats.hidden;
          continue;
        }
        m_s.traits = al.traits;
        m_s.xf = fr.xf;
        text(a, at, at.find(1), 74);
        ++m_s.stats.drawn;
      }
    }
  }

  bool dimension(const OdDbDimension& dim, const Frame& fr, const State::Look& look) {
    OdDbObjectId blockId = dim.dimBlockId();
    if (!odOpen<OdDbBlockTableRecord>(blockId)) return false;
    if (enter(fr)) drawBlock(blockId, childFrame(fr, look));
    return true;
  }

  // Entities without blocks of their own; false when the type is not drawn.
  bool simple(const OdDbEntity& e, std::string_view name, const Tags& t, const Frame& fr,
              const std::vector<OdDbEntity*>& list, size_t index) {
    if (auto line = OdDbLine::cast(&e)) {
      m_s.line(xy(line->startPoint()), xy(line->endPoint()));
    } else if (auto arc = OdDbArc::cast(&e)) {
      inPlane(t, arc->center().z);
      m_s.arc(xy(arc->center()), arc->radius(), arc->startAngle(), arc->endAngle());
    } else if (auto circle = OdDbCircle::cast(&e)) {
      inPlane(t, circle->center().z);
      m_s.circle(xy(circle->center()), circle->radius());
    } else if (auto point = OdDbPoint::cast(&e)) {
      m_s.point(xy(point->position()));
    } else if (auto solid = OdDbSolid::cast(&e)) {
      OdGePoint3d c[4];
      for (int i = 0; i < 4; ++i) solid->getPointAt(i, c[i]);
      inPlane(t, c[0].z);
      quad(c);
    } else if (name == "TRACE") {
      OdGePoint3d c[4] = {t.pointOr(10), t.pointOr(11), t.pointOr(12), t.pointOr(13, t.pointOr(12))};
      inPlane(t, c[0].z);
      quad(c);
    } else if (name == "3DFACE") {
      face(t);
    } else if (auto pl = OdDbPolyline::cast(&e)) {
      inPlane(t, pl->elevation());
      std::vector<PathVertex> v(pl->numVerts());
      for (unsigned i = 0; i < v.size(); ++i) {
        pl->getPointAt(i, v[i].p);
        v[i].bulge = pl->getBulgeAt(i);
        pl->getWidthsAt(i, v[i].startWidth, v[i].endWidth);
      }
      m_s.polyline(v, pl->isClosed());
    } else if (name == "POLYLINE") {
      oldPolyline(t, list, index);
    } else if (name == "ELLIPSE") {
      ellipse(t);
    } else if (name == "SPLINE") {
      spline(t);
    } else if (auto leader = OdDbLeader::cast(&e)) {
      drawLeader(*leader, t, fr);
    } else if (name == "TEXT") {
      text(e, t, t.find(1), 73);
    } else if (name == "ATTDEF") {
      // Outside a block the definition shows its tag; references show attributes instead.
      if (fr.depth == 0) text(e, t, t.find(2), 74);
    } else if (auto mtext = OdDbMText::cast(&e)) {
      drawMText(*mtext);
    } else {
      return false;
    }
    return true;
  }

  void inPlane(const Tags& t, double elevation) { m_s.xf = m_s.xf.after(ocsToWorld(t.normal(), elevation)); }

  // SOLID and TRACE corners run 0, 1, 3, 2 around the outline.
  void quad(const OdGePoint3d c[4]) {
    std::vector<Pt> pts{xy(c[0]), xy(c[1]), xy(c[3])};
    if (!(c[3] == c[2])) pts.push_back(xy(c[2]));
    m_s.fill(pts);
  }

  void face(const Tags& t) {
    OdGePoint3d c[4] = {t.pointOr(10), t.pointOr(11), t.pointOr(12), t.pointOr(13, t.pointOr(12))};
    long hidden = t.integer(70);
    for (int i = 0; i < 4; ++i) {
      Pt a = xy(c[i]), b = xy(c[(i + 1) % 4]);
      if (!(hidden & (1 << i)) && (a.x != b.x || a.y != b.y)) m_s.line(a, b);
    }
  }

  void oldPolyline(const Tags& t, const std::vector<OdDbEntity*>& list, size_t index) {
    long flags = t.integer(70);
    double w0 = t.dbl(40), w1 = t.dbl(41);
    struct Vertex {
      OdGePoint3d p;
      PathVertex path;
      long flags;
      long face[4];
    };
    std::vector<Vertex> vs;
    for (size_t i = index + 1; i < list.size() && list[i] && list[i]->dxfName() == "VERTEX"; ++i) {
      Tags vt(*list[i]);
      Vertex v;
      v.p = vt.pointOr(10);
      v.path = {xy(v.p), vt.dbl(42), vt.dbl(40, w0), vt.dbl(41, w1)};
      v.flags = vt.integer(70);
      for (int k = 0; k < 4; ++k) v.face[k] = vt.integer(71 + k);
      vs.push_back(v);
    }
    if (flags & 64) {  // polyface mesh: positions, then faces that index them from 1
      std::vector<Pt> positions;
      for (const Vertex& v : vs)
        if ((v.flags & 128) && (v.flags & 64)) positions.push_back(xy(v.p));
      for (const Vertex& v : vs) {
        if (!(v.flags & 128) || (v.flags & 64)) continue;
        int n = 0;
        while (n < 4 && v.face[n] != 0) ++n;
        for (int k = 0; k < n; ++k) {
          long a = v.face[k], b = std::abs(v.face[(k + 1) % n]);
          if (a <= 0 || static_cast<size_t>(a) > positions.size() || b == 0 || static_cast<size_t>(b) > positions.size())
            continue;  // a negative index hides the edge that starts there
          m_s.line(positions[a - 1], positions[b - 1]);
        }
      }
      return;
    }
    if (flags & 16) {  // polygon mesh: m rows of n vertices
      long m = t.integer(71), n = t.integer(72);
      if (m <= 0 || n <= 0 || static_cast<size_t>(m * n) > vs.size()) return;
      auto at = [&](long i, long j) { return xy(vs[static_cast<size_t>(i * n + j)].p); };
      for (long i = 0; i < m; ++i) {
        std::vector<Pt> row;
        for (long j = 0; j < n; ++j) row.push_back(at(i, j));
        m_s.path(row, (flags & 32) != 0);
      }
      for (long j = 0; j < n; ++j) {
        std::vector<Pt> col;
        for (long i = 0; i < m; ++i) col.push_back(at(i, j));
        m_s.path(col, (flags & 1) != 0);
      }
      return;
    }
    // Spline-fitted polylines keep their frame's control points too; only the curve is drawn.
    std::vector<PathVertex> path;
    for (const Vertex& v : vs)
      if (!(v.flags & 16)) path.push_back(v.path);
    if (flags & 8) {
      for (auto& v : path) v.bulge = v.startWidth = v.endWidth = 0;
    } else {
      inPlane(t, t.pointOr(10).z);
    }
    m_s.polyline(path, (flags & 1) != 0);
  }

  void ellipse(const Tags& t) {
    OdGePoint3d c = t.pointOr(10), m = t.pointOr(11);
    OdGeVector3d minor = cross(unit(t.normal()), {m.x, m.y, m.z});
    double ratio = t.dbl(40, 1), start = t.dbl(41, 0), end = t.dbl(42, kTwoPi);
    double sweep = end - start;
    while (sweep <= 1e-12) sweep += kTwoPi;
    bool full = sweep >= kTwoPi - 1e-9;
    int n = std::max(2, static_cast<int>(std::ceil(sweep / kChordAngle)));
    std::vector<Pt> pts;
    for (int k = 0; k < (full ? n : n + 1); ++k) {
      double a = start + sweep * k / n;
      pts.push_back(Pt{c.x, c.y} + Pt{m.x, m.y} * std::cos(a) + Pt{minor.x, minor.y} * (ratio * std::sin(a)));
    }
    m_s.path(pts, full);
  }

  // A NURBS curve by de Boor's algorithm, or the fit points when there are no
  // control points.
  void spline(const Tags& t) {
    int degree = static_cast<int>(t.integer(71, 3));
    std::vector<double> knots = t.doubles(40), weights = t.doubles(41);
    std::vector<OdGePoint3d> ctrl = t.points(10);
    size_t n = ctrl.size();
    if (degree < 1 || n < static_cast<size_t>(degree) + 1 || knots.size() != n + degree + 1) {
      std::vector<Pt> fit;
      for (const auto& p : t.points(11)) fit.push_back(xy(p));
      if (fit.size() < 2)
        for (const auto& p : ctrl) fit.push_back(xy(p));
      m_s.path(fit, (t.integer(70) & 1) != 0);
      return;
    }
    if (weights.size() != n) weights.assign(n, 1.0);
    double t0 = knots[degree], t1 = knots[n];
    int samples = static_cast<int>(std::clamp<size_t>(n * 8, 16, 4000));
    std::vector<Pt> pts;
    std::vector<OdGePoint3d> d(degree + 1);  // x·w, y·w, w
    for (int s = 0; s <= samples; ++s) {
      double u = t0 + (t1 - t0) * s / samples;
      size_t k = degree;
      while (k + 1 < n && knots[k + 1] <= u) ++k;
      for (int j = 0; j <= degree; ++j) {
        const OdGePoint3d& p = ctrl[k - degree + j];
        double w = weights[k - degree + j];
        d[j] = {p.x * w, p.y * w, w};
      }
      for (int r = 1; r <= degree; ++r)
        for (int j = degree; j >= r; --j) {
          double lo = knots[k - degree + j], hi = knots[k + 1 + j - r];
          double alpha = hi > lo ? (u - lo) / (hi - lo) : 0.0;
          d[j] = {d[j - 1].x * (1 - alpha) + d[j].x * alpha, d[j - 1].y * (1 - alpha) + d[j].y * alpha,
                  d[j - 1].z * (1 - alpha) + d[j].z * alpha};
        }
      if (d[degree].z != 0) pts.push_back({d[degree].x / d[degree].z, d[degree].y / d[degree].z});
    }
    m_s.path(pts, false);
  }

  // A leader draws in its style's dimension-line colour and lineweight. ByBlock
  // there stands for the leader's own (or the colour its code 77 keeps for that
  // case), ByLayer for the leader's layer.
  void leaderTraits(const OdDbLeader& leader, const Tags& t, const Frame& fr) {
    OdString layerName = leader.layer();
    if (fr.inBlock && layerName == L"0") layerName = fr.refLayer;
    const State::LayerInfo& layer = m_s.layerInfo(layerName);
    const OdCmColor c = leader.dimclrd();
    if (c.isByLayer()) {
      m_s.traits.color = layer.color;
    } else if (c.isByBlock()) {
      const long kept = t.integer(77, 0);
      if (kept >= 1 && kept <= 255) m_s.traits.color = OdGiColor::fromAci(static_cast<int>(kept));
      else if (kept == 256) m_s.traits.color = layer.color;
    } else if (c.isByACI()) {
      m_s.traits.color = OdGiColor::fromAci(c.colorIndex());
    } else if (c.isByColor()) {
      m_s.traits.color = {c.red(), c.green(), c.blue(), false};
    }
    const int lw = leader.dimlwd();
    if (lw == OdDb::kLnWtByLayer) m_s.traits.lineWeight = layer.lineWeight < 0 ? m_s.lineWeightDefault : layer.lineWeight;
    else if (lw == OdDb::kLnWtByLwDefault) m_s.traits.lineWeight = m_s.lineWeightDefault;
    else if (lw >= 0) m_s.traits.lineWeight = lw;
  }

  void drawLeader(const OdDbLeader& leader, const Tags& t, const Frame& fr) {
    std::vector<Pt> pts;
    for (int i = 0; i < leader.numVertices(); ++i) {
      const Pt p = xy(leader.vertexAt(i));
      if (pts.empty() || length(p - pts.back()) > 0) pts.push_back(p);
    }
    leaderTraits(leader, t, fr);
    const Affine placed = m_s.xf;
    Pt tangent = pts.size() >= 2 ? pts[1] - pts[0] : Pt{};
    if (leader.isSplined() && pts.size() > 2) {
      std::vector<Pt> curve = leaderCurve(pts, &tangent);
      m_s.path(curve, false);
    } else {
      m_s.path(pts, false);
    }
    if (pts.size() < 2 || !leader.hasArrowHead()) return;
    const double scale = leader.dimscale() > 0 ? leader.dimscale() : 1.0;
    const double size = leader.dimasz() * scale;
    // A first segment shorter than the arrowhead leaves no room for it.
    if (!(size > 0) || length(pts[1] - pts[0]) < size || length(tangent) == 0) return;
    const Pt u = tangent * (1 / length(tangent));
    const OdDbObjectId arrow = leader.dimldrblk();
    if (arrow.isNull()) {  // closed filled: no block
      const Pt n = Pt{-u.y, u.x} * (size / 6);
      const Pt base = pts[0] + u * size;
      m_s.fill({pts[0], base + n, base - n});
      return;
    }
    auto block = odOpen<OdDbBlockTableRecord>(arrow);
    if (!block || !enter(fr)) return;
    // Arrow blocks point along +X with the tip at their base point; the leader's
    // tip points back along its first segment.
    OdGePoint3d base;
    if (auto begin = block->blockBegin.openObject()) base = Tags(*begin).pointOr(10);
    Frame child;
    child.depth = fr.depth + 1;
    child.inBlock = true;
    child.refLayer = leader.layer();
    if (fr.inBlock && child.refLayer == L"0") child.refLayer = fr.refLayer;
    child.byBlockColor = m_s.traits.color;
    child.byBlockLineWeight = m_s.traits.lineWeight;
    child.xf = placed.after(Affine::translation(pts[0]))
                   .after(Affine::rotation(std::atan2(-u.y, -u.x)))
                   .after(Affine::scaling(size, size))
                   .after(Affine::translation({-base.x, -base.y}));
    drawBlock(arrow, child);
  }

  // TEXT, ATTRIB and ATTDEF: `value` is the string shown, `verticalCode` where the
  // vertical alignment is (attributes keep their field length at 73).
  void text(const OdDbEntity& e, const Tags& t, const std::string* value, int verticalCode) {
    if (!value) return;
    TextLine line;
    line.text = odTextPlainText(e.decodeText(*value));
    line.height = t.dbl(40);
    line.rotation = t.dbl(50) * kPi / 180;
    line.widthFactor = t.dbl(41, 1.0);
    if (!(line.widthFactor > 0)) line.widthFactor = 1;
    line.oblique = t.dbl(51) * kPi / 180;
    long generation = t.integer(71);
    line.backward = (generation & 2) != 0;
    line.upsideDown = (generation & 4) != 0;
    long h = t.integer(72), v = t.integer(verticalCode);
    OdGePoint3d first = t.pointOr(10);
    inPlane(t, first.z);
    line.position = xy(first);
    if (h != 0 || v != 0) line.position = xy(t.pointOr(11, first));
    if (h == 3 || h == 5) {  // aligned or fitted between the two points
      Pt a = xy(first), b = xy(t.pointOr(11, first));
      double len = length(b - a);
      if (len > 0) {
        line.rotation = std::atan2(b.y - a.y, b.x - a.x);
        line.position = (a + b) * 0.5;
        line.align = OdGiText::kCenter;
        line.fitLength = len;
        // Aligned text keeps its proportions: its height follows the length.
        if (h == 3) line.height *= len / (m_s.measure.lineWidth(line.text, line.height) * line.widthFactor);
        v = 0;
      }
    } else if (h == 1 || h == 4) {
      line.align = OdGiText::kCenter;
    } else if (h == 2) {
      line.align = OdGiText::kRight;
    }
    // Middle alignment centres on the capital height; bottom rests the descenders on the point.
    double drop = h == 4 && v == 0 ? 0.5 : v == 1 ? -kDescent : v == 2 ? 0.5 : v == 3 ? 1.0 : 0.0;
    line.position = line.position - polar(line.rotation + kPi / 2, drop * line.height);
    m_s.text(line);
  }

  void drawMText(const OdDbMText& m) {
    double h = m.textHeight();
    if (!(h > 0)) return;
    std::vector<OdString> lines = wrap(odMTextPlainText(m.contents()), m.width(), h);
    Tags t(m);
    double spacing = kLineSpacing * h * t.dbl(44, 1.0);
    int a = m.attachment() - 1, col = a % 3, row = a / 3;
    double total = h + spacing * (lines.size() - 1);
    double top = row == 0 ? 0 : row == 1 ? total / 2 : total;  // the text's top above the location
    OdGeVector3d dir = m.direction();
    double rotation = dir.x == 0 && dir.y == 0 ? 0 : std::atan2(dir.y, dir.x);
    Pt up = polar(rotation + kPi / 2);
    for (size_t i = 0; i < lines.size(); ++i) {
      TextLine line;
      line.text = lines[i];
      line.height = h;
      line.rotation = rotation;
      line.align = col == 0 ? OdGiText::kLeft : col == 1 ? OdGiText::kCenter : OdGiText::kRight;
      line.position = xy(m.location()) + up * (top - h - spacing * static_cast<double>(i));
      m_s.text(line);
    }
  }

  // Paragraphs split at line breaks, and at spaces where a line would pass `width`.
  std::vector<OdString> wrap(const OdString& plain, double width, double height) const {
    std::vector<OdString> out;
    std::wstring_view s = plain.view();
    for (size_t start = 0;;) {
      size_t end = s.find(L'\n', start);
      std::wstring_view para = s.substr(start, end == std::wstring_view::npos ? s.npos : end - start);
      std::wstring current;
      size_t p = 0;
      while (p <= para.size()) {
        size_t space = para.find(L' ', p);
        std::wstring_view word = para.substr(p, space == std::wstring_view::npos ? para.npos : space - p);
        std::wstring tryLine = current.empty() ? std::wstring(word) : current + L" " + std::wstring(word);
        if (width > 0 && !current.empty() && m_s.measure.lineWidth(OdString(tryLine), height) > width) {
          out.emplace_back(current);
          current = std::wstring(word);
        } else {
          current = std::move(tryLine);
        }
        if (space == std::wstring_view::npos) break;
        p = space + 1;
      }
      out.emplace_back(current);
      if (end == std::wstring_view::npos) break;
      start = end + 1;
    }
    return out;
  }

  State& m_s;
};

}  // namespace

void OdDbVectorizer::drawBlock(const OdDbDatabase& db, OdDbObjectId block) {
  if (block.isNull()) block = db.getModelSpaceId();
  auto record = odOpen<OdDbBlockTableRecord>(block);
  if (!record || record->database() != &db) throw OdError(eInvalidInput, "not a block of this drawing");
  m_state->useDatabase(&db);
  Frame top;
  top.modelSpace = block == db.getModelSpaceId();
  Drawer(*m_state).drawBlock(block, top);
}

void OdDbVectorizer::drawEntity(const OdDbEntity& entity) {
  m_state->useDatabase(entity.database());
  Drawer(*m_state).drawOne(entity, Frame(), {}, 0);
}
