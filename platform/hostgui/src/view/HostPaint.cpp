#include "hostgui/HostPaint.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace {

constexpr double kDegrees = 180 / std::numbers::pi;

bool isFinite(const OdGePoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }
QPointF qp(const OdGePoint2d& p) { return {p.x, p.y}; }

// The text font measured once at a large size, where rounding does not show: the
// capital height and advances at any other size are in proportion.
struct FontReference {
  static constexpr int kPixelSize = 1000;
  QFont font;
  std::unique_ptr<QFontMetricsF> metrics;
  double capHeight = 700;  // at kPixelSize

  FontReference() : font(hostTextFont()) {
    font.setPixelSize(kPixelSize);
    metrics = std::make_unique<QFontMetricsF>(font);
    if (metrics->capHeight() > 0) capHeight = metrics->capHeight();
  }
  // Advance of `text` in capital heights.
  double advance(const QString& text) const { return metrics->horizontalAdvance(text) / capHeight; }
};

const FontReference& fontReference() {
  static const FontReference ref;
  return ref;
}

class FontMeasure : public OdGiTextMeasure {
public:
  double lineWidth(const OdString& line, double height) const override {
    return fontReference().advance(hostQString(line)) * height;
  }
};

// The device pixels one world unit spans (transforms here scale x and y alike).
double scaleOf(const QTransform& t) { return std::sqrt(std::abs(t.m11() * t.m22() - t.m12() * t.m21())); }

// Sets pens and brushes only when they change: most primitives in a row share them.
class Painter {
public:
  Painter(QPainter& p, const QTransform& worldToDevice, const HostPaintOptions& o)
      : m_p(p), m_t(worldToDevice), m_o(o) {}

  void paint(const OdGiRecorder::Primitive& item) {
    std::visit([this](const auto& prim) { draw(prim); }, item);
  }

private:
  QColor colorOf(const OdGiTraits& t) const {
    return m_o.override.isValid() ? m_o.override : hostPrimitiveColor(t.color, m_o.background);
  }
  void stroke(const OdGiTraits& t) {
    QColor c = colorOf(t);
    double w = hostPenWidth(t.lineWeight, m_o);
    if (m_penSet && c == m_penColor && w == m_penWidth && !m_brushSet) return;
    QPen pen(c, w, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    pen.setCosmetic(true);
    m_p.setPen(pen);
    if (m_brushSet) m_p.setBrush(Qt::NoBrush);
    m_penSet = true, m_brushSet = false, m_penColor = c, m_penWidth = w;
  }
  void fill(const OdGiTraits& t) {
    QColor c = colorOf(t);
    if (m_penSet && m_brushSet && c == m_penColor && m_penWidth == 1) return;
    // Outlined in the fill colour too, so that thin fills (arrowheads far out) still show.
    QPen pen(c, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    pen.setCosmetic(true);
    m_p.setPen(pen);
    m_p.setBrush(c);
    m_penSet = m_brushSet = true, m_penColor = c, m_penWidth = 1;
  }
  const std::vector<QPointF>& points(const std::vector<OdGePoint2d>& pts) {
    m_buf.clear();
    for (const auto& p : pts) m_buf.push_back(qp(p));
    return m_buf;
  }

  void draw(const OdGiLine& l) {
    if (!isFinite(l.start) || !isFinite(l.end)) return;
    stroke(l.traits);
    m_p.drawLine(qp(l.start), qp(l.end));
  }
  void draw(const OdGiArc& a) {
    if (!isFinite(a.center) || !std::isfinite(a.radius)) return;
    stroke(a.traits);
    QRectF r(a.center.x - a.radius, a.center.y - a.radius, 2 * a.radius, 2 * a.radius);
    // Qt's angles turn from +x towards -y of the coordinates they are given in;
    // ours turn towards +y, so they go in negated.
    QPainterPath path;
    path.arcMoveTo(r, -a.startAngle * kDegrees);
    path.arcTo(r, -a.startAngle * kDegrees, -(a.endAngle - a.startAngle) * kDegrees);
    m_p.drawPath(path);
  }
  void draw(const OdGiCircle& c) {
    if (!isFinite(c.center) || !std::isfinite(c.radius)) return;
    stroke(c.traits);
    m_p.drawEllipse(qp(c.center), c.radius, c.radius);
  }
  void draw(const OdGiPolyline& pl) {
    if (pl.points.size() < 2 || !std::all_of(pl.points.begin(), pl.points.end(), isFinite)) return;
    stroke(pl.traits);
    const auto& pts = points(pl.points);
    if (pl.closed) m_p.drawPolygon(pts.data(), int(pts.size()));
    else m_p.drawPolyline(pts.data(), int(pts.size()));
  }
  void draw(const OdGiPolygon& pg) {
    if (pg.points.size() < 2 || !std::all_of(pg.points.begin(), pg.points.end(), isFinite)) return;
    fill(pg.traits);
    const auto& pts = points(pg.points);
    m_p.drawPolygon(pts.data(), int(pts.size()));
  }
  void draw(const OdGiPoint& pt) {
    if (!isFinite(pt.position)) return;
    // A dot of at least a pixel's radius, whatever the zoom.
    QColor c = colorOf(pt.traits);
    double r = std::max(1.0, hostPenWidth(pt.traits.lineWeight, m_o) / 2);
    QPointF at = m_t.map(qp(pt.position));
    m_p.save();
    m_p.resetTransform();
    m_p.setPen(Qt::NoPen);
    m_p.setBrush(c);
    m_p.drawEllipse(at, r, r);
    m_p.restore();
  }
  void draw(const OdGiText& t) {
    if (!isFinite(t.position) || t.text.isEmpty() || !(t.height > 0)) return;
    double cap = t.height * scaleOf(m_t);
    if (!std::isfinite(cap) || cap < m_o.minTextPixels / 4) return;
    if (cap < m_o.minTextPixels) {
      // Too small to read: its box shows where it is.
      if (!std::all_of(std::begin(t.box), std::end(t.box), isFinite)) return;
      stroke(t.traits);
      QPointF box[4] = {qp(t.box[0]), qp(t.box[1]), qp(t.box[2]), qp(t.box[3])};
      m_p.drawPolygon(box, 4);
      return;
    }
    const FontReference& ref = fontReference();
    // The font at about the size it shows at, so that hinting and the glyph cache
    // work for it; the transform takes up what rounding leaves.
    int pixels = std::max(1, int(std::lround(cap * FontReference::kPixelSize / ref.capHeight)));
    double fontCap = ref.capHeight * pixels / FontReference::kPixelSize;
    QFont font = ref.font;
    font.setPixelSize(pixels);
    QTransform fontToGlyph(1 / fontCap, 0, 0, -1 / fontCap, 0, 0);
    m_p.save();
    m_p.setTransform(fontToGlyph * hostTextGlyphToWorld(t) * m_t);
    m_p.setFont(font);
    m_p.setPen(colorOf(t.traits));
    m_p.drawText(QPointF(0, 0), hostQString(t.text));
    m_p.restore();
  }

  QPainter& m_p;
  QTransform m_t;
  const HostPaintOptions& m_o;
  bool m_penSet = false, m_brushSet = false;
  QColor m_penColor;
  double m_penWidth = 0;
  std::vector<QPointF> m_buf;
};

}  // namespace

bool hostIsDarkBackground(const QColor& background) { return background.lightness() < 128; }

QColor hostPrimitiveColor(const OdGiColor& color, const QColor& background) {
  bool dark = hostIsDarkBackground(background);
  if (color.foreground) return dark ? Qt::white : Qt::black;
  // Pure white would vanish on white paper: black there, as on plots.
  if (!dark && color.r == 255 && color.g == 255 && color.b == 255) return Qt::black;
  return QColor(color.r, color.g, color.b);
}

QTransform hostFitTransform(const OdGiExtents& extents, const QRectF& target, double margin) {
  OdGePoint2d centre{0, 0};
  double scale = 1;
  if (extents.isValid()) {
    centre = {(extents.min.x + extents.max.x) / 2, (extents.min.y + extents.max.y) / 2};
    double w = extents.max.x - extents.min.x, h = extents.max.y - extents.min.y;
    double aw = std::max(1.0, target.width() - 2 * margin), ah = std::max(1.0, target.height() - 2 * margin);
    // A single point or a flat line fits by the dimension that has a size.
    if (w > 0 && h > 0) scale = std::min(aw / w, ah / h);
    else if (w > 0) scale = aw / w;
    else if (h > 0) scale = ah / h;
  }
  QPointF mid = target.center();
  return QTransform(scale, 0, 0, -scale, mid.x() - scale * centre.x, mid.y() + scale * centre.y);
}

double hostPenWidth(int lineWeight, const HostPaintOptions& options) {
  if (!options.lineWeights) return 1;
  return std::max(1.0, lineWeight / 100.0 * options.pixelsPerMm);
}

void hostPaintPrimitives(QPainter& painter, const OdGiRecorder& primitives, const QTransform& worldToDevice,
                         const HostPaintOptions& options) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  painter.setTransform(worldToDevice);
  Painter p(painter, worldToDevice, options);
  for (const auto& item : primitives.items()) p.paint(item);
  painter.restore();
}

void hostPaintPrimitive(QPainter& painter, const OdGiRecorder::Primitive& primitive, const QTransform& worldToDevice,
                        const HostPaintOptions& options) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  painter.setTransform(worldToDevice);
  Painter p(painter, worldToDevice, options);
  p.paint(primitive);
  painter.restore();
}

QFont hostTextFont() {
  QFont font;
  font.setFamilies({QStringLiteral("DejaVu Sans"), QStringLiteral("Liberation Sans")});
  font.setStyleHint(QFont::SansSerif);
  // Widths must scale with the size, or boxes and fitted lengths drift at some zooms.
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setKerning(true);
  return font;
}

QString hostQString(const OdString& text) {
  auto v = text.view();
  return QString::fromWCharArray(v.data(), qsizetype(v.size()));
}

const OdGiTextMeasure& hostTextMeasure() {
  static const FontMeasure measure;
  return measure;
}

QTransform hostTextGlyphToWorld(const OdGiText& t) {
  double advance = fontReference().advance(hostQString(t.text));
  double sx = t.widthFactor;
  if (t.fitLength > 0 && advance > 0) sx = t.fitLength / (advance * t.height);
  double offset = t.align == OdGiText::kLeft ? 0 : t.align == OdGiText::kCenter ? advance / 2 : advance;
  double sy = 1;
  if (t.backward) sx = -sx;
  if (t.upsideDown) sy = -1;
  double c = std::cos(t.rotation), s = std::sin(t.rotation);
  QTransform shear(1, 0, std::tan(t.oblique), 1, -offset, 0);
  QTransform scale(sx * t.height, 0, 0, sy * t.height, 0, 0);
  QTransform rotate(c, s, -s, c, t.position.x, t.position.y);
  return shear * scale * rotate;
}
