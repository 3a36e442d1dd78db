#include "hostgui/HostViewRenderer.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kDegrees = 180 / std::numbers::pi;

bool isFinite(const OdGePoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

// `init` sets a new group's keys.
template <class T, class Same, class Init>
T& groupFor(std::vector<T>& groups, const Same& same, const Init& init) {
  // Drawings use a handful of colours and lineweights: a linear search beats a map.
  for (T& g : groups)
    if (same(g)) return g;
  init(groups.emplace_back());
  return groups.back();
}

QPolygonF polygonOf(const OdGePoint2d* pts, size_t n) {
  QPolygonF out;
  if (!std::all_of(pts, pts + n, isFinite)) return out;
  out.reserve(qsizetype(n));
  for (size_t i = 0; i < n; ++i) out.append(QPointF(pts[i].x, pts[i].y));
  return out;
}

double scaleOf(const QTransform& t) { return std::sqrt(std::abs(t.m11() * t.m22() - t.m12() * t.m21())); }

}  // namespace

void HostViewRenderer::clear() {
  m_strokes.clear();
  m_fills.clear();
  m_texts.clear();
  m_points.clear();
}

bool HostViewRenderer::isEmpty() const {
  return m_strokes.empty() && m_fills.empty() && m_texts.empty() && m_points.empty();
}

void HostViewRenderer::build(const HostViewScene& scene, const std::vector<int>* indices) {
  clear();
  auto stroke = [&](const OdGiTraits& t) -> Stroke& {
    return groupFor(
        m_strokes, [&](const Stroke& s) { return s.color == t.color && s.lineWeight == t.lineWeight; },
        [&](Stroke& s) { s.color = t.color, s.lineWeight = t.lineWeight; });
  };
  auto add = [&](const HostViewScene::Entity& e) {
    for (const auto& item : e.primitives.items()) {
      if (auto l = std::get_if<OdGiLine>(&item)) {
        if (isFinite(l->start) && isFinite(l->end))
          stroke(l->traits).lines.emplace_back(l->start.x, l->start.y, l->end.x, l->end.y);
      } else if (auto a = std::get_if<OdGiArc>(&item)) {
        if (!isFinite(a->center) || !std::isfinite(a->radius)) continue;
        QRectF r(a->center.x - a->radius, a->center.y - a->radius, 2 * a->radius, 2 * a->radius);
        // Angles negated: Qt's turn towards -y of the coordinates given, ours towards +y.
        QPainterPath p;
        p.arcMoveTo(r, -a->startAngle * kDegrees);
        p.arcTo(r, -a->startAngle * kDegrees, -(a->endAngle - a->startAngle) * kDegrees);
        stroke(a->traits).curves.push_back(std::move(p));
      } else if (auto c = std::get_if<OdGiCircle>(&item)) {
        if (!isFinite(c->center) || !std::isfinite(c->radius)) continue;
        QPainterPath p;
        p.addEllipse(QPointF(c->center.x, c->center.y), c->radius, c->radius);
        stroke(c->traits).curves.push_back(std::move(p));
      } else if (auto pl = std::get_if<OdGiPolyline>(&item)) {
        QPolygonF poly = polygonOf(pl->points.data(), pl->points.size());
        if (poly.size() >= 2) (pl->closed ? stroke(pl->traits).closedChains : stroke(pl->traits).chains).push_back(poly);
      } else if (auto pg = std::get_if<OdGiPolygon>(&item)) {
        QPolygonF poly = polygonOf(pg->points.data(), pg->points.size());
        if (poly.size() < 2) continue;
        groupFor(
            m_fills, [&](const Fill& f) { return f.color == pg->traits.color; },
            [&](Fill& f) { f.color = pg->traits.color; })
            .polygons.push_back(std::move(poly));
      } else if (auto pt = std::get_if<OdGiPoint>(&item)) {
        if (isFinite(pt->position)) m_points.push_back(pt);
      } else if (auto t = std::get_if<OdGiText>(&item)) {
        if (!isFinite(t->position) || t->text.isEmpty() || !(t->height > 0) || !std::isfinite(t->height)) continue;
        int octave = int(std::floor(std::log2(t->height)));
        TextGroup& g = groupFor(
            m_texts, [&](const TextGroup& g) { return g.color == t->traits.color && g.octave == octave; },
            [&](TextGroup& g) {
              g.color = t->traits.color;
              g.octave = octave;
              g.minHeight = g.maxHeight = t->height;
            });
        g.minHeight = std::min(g.minHeight, t->height);
        g.maxHeight = std::max(g.maxHeight, t->height);
        g.texts.push_back(t);
        if (std::all_of(std::begin(t->box), std::end(t->box), isFinite))
          for (int i = 0; i < 4; ++i) {
            const OdGePoint2d &p = t->box[i], &q = t->box[(i + 1) % 4];
            g.boxes.emplace_back(p.x, p.y, q.x, q.y);
          }
      }
    }
  };
  if (indices) {
    for (int i : *indices)
      if (i >= 0 && size_t(i) < scene.entities().size()) add(scene.entities()[size_t(i)]);
  } else {
    for (const auto& e : scene.entities()) add(e);
  }
  for (Fill& f : m_fills) {
    std::vector<std::pair<double, size_t>> order;
    order.reserve(f.polygons.size());
    for (size_t i = 0; i < f.polygons.size(); ++i) {
      QRectF r = f.polygons[i].boundingRect();
      order.emplace_back(std::max(r.width(), r.height()), i);
    }
    std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<QPolygonF> polygons;
    polygons.reserve(order.size());
    f.sizes.clear();
    for (const auto& [size, i] : order) {
      polygons.push_back(std::move(f.polygons[i]));
      f.sizes.push_back(size);
    }
    f.polygons = std::move(polygons);
  }
}

void HostViewRenderer::paint(QPainter& painter, const QTransform& worldToDevice, const QRectF& visible,
                             const HostPaintOptions& options, const QPen* highlight) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  painter.setTransform(worldToDevice);
  HostPaintOptions o = options;
  if (highlight) o.override = highlight->color();
  auto colorOf = [&](const OdGiColor& c) { return o.override.isValid() ? o.override : hostPrimitiveColor(c, o.background); };
  auto penOf = [&](const OdGiColor& c, double width) {
    QPen pen = highlight ? *highlight : QPen(colorOf(c), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    if (highlight) pen.setWidthF(std::max(pen.widthF(), width));
    pen.setCosmetic(true);
    return pen;
  };

  // Fills under two pixels across look the same outlined only, which Qt draws
  // several times faster: arrowheads of a zoomed-out drawing are most of them.
  const double tinyFill = 2 / scaleOf(worldToDevice);
  for (const Fill& f : m_fills) {
    // Outlined in the fill colour too, so that thin fills (arrowheads far out) still show.
    painter.setPen(penOf(f.color, 1));
    painter.setBrush(colorOf(f.color));
    size_t i = 0;
    for (; i < f.polygons.size() && f.sizes[i] >= tinyFill; ++i) painter.drawPolygon(f.polygons[i], Qt::WindingFill);
    painter.setBrush(Qt::NoBrush);
    for (; i < f.polygons.size(); ++i) painter.drawPolygon(f.polygons[i]);
  }
  painter.setBrush(Qt::NoBrush);
  for (const Stroke& s : m_strokes) {
    painter.setPen(penOf(s.color, hostPenWidth(s.lineWeight, o)));
    painter.drawLines(s.lines.data(), int(s.lines.size()));
    for (const QPolygonF& p : s.chains) painter.drawPolyline(p);
    for (const QPolygonF& p : s.closedChains) painter.drawPolygon(p);
    for (const QPainterPath& p : s.curves) painter.drawPath(p);
  }

  double scale = scaleOf(worldToDevice);
  double readable = o.minTextPixels / scale, seen = readable / 4;  // world heights
  QRectF world = worldToDevice.inverted().mapRect(visible);
  auto inView = [&](const OdGiText& t) {
    double x0 = t.box[0].x, x1 = x0, y0 = t.box[0].y, y1 = y0;
    for (const auto& p : t.box) x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
    return x1 >= world.left() && x0 <= world.right() && y1 >= world.top() && y0 <= world.bottom();
  };
  for (const TextGroup& g : m_texts) {
    if (g.maxHeight < seen) continue;
    if (g.maxHeight < readable) {
      painter.setPen(penOf(g.color, 1));
      painter.drawLines(g.boxes.data(), int(g.boxes.size()));
      continue;
    }
    // Readable, or some of each: hostPaintPrimitive decides for every text.
    painter.save();
    for (const OdGiText* t : g.texts)
      if (inView(*t)) hostPaintPrimitive(painter, *t, worldToDevice, o);
    painter.restore();
  }
  for (const OdGiPoint* p : m_points) hostPaintPrimitive(painter, *p, worldToDevice, o);
  painter.restore();
}
