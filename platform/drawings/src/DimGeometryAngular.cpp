// Angular (two-line and three-point) and arc-length dimensions: a dimension arc
// about the vertex (or the measured arc's centre) through the arc point, radial
// extension lines from the measured lines or points out to it, an arrowhead at
// each end of the arc along its tangent, and the measurement centred on the arc
// (an arc length's with its symbol, a small half circle, before or above it).
#include <algorithm>
#include <cmath>
#include <numbers>

#include "DimGeometryImpl.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDmUtil.h"

namespace dimgeom {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTwoPi = 2 * kPi;

// An angle in [0, 2 pi).
double normal(double a) {
  a = std::fmod(a, kTwoPi);
  return a < 0 ? a + kTwoPi : a;
}




using Vars = DimVars;

// The text of a dimension as a box in the text's own frame (x along the text, y
// up) about the middle of its ink: the ink itself, or the ink with the arc-length
// symbol, which takes room, sets the gap in the dimension arc and decides fit
// like the text it belongs to.
struct TextBox {
  double left = 0, right = 0, bottom = 0, top = 0;
  double width() const { return right - left; }
  double height() const { return top - bottom; }
  Vec middle() const { return {(left + right) / 2, (top + bottom) / 2}; }
  // How far the box reaches in direction `dir` (world) from the text's middle
  // when the text runs along `x`.
  double reach(Vec x, Vec dir) const {
    const Vec y = x.left();
    return std::max(left * x.dot(dir), right * x.dot(dir)) + std::max(bottom * y.dot(dir), top * y.dot(dir));
  }
};

// The arc-length symbol: a half circle over a chord along the text, bulging to
// the text's top. Its size follows the height H of the text's ink: radius 0.8 H.
// Before the text (DIMARCSYM 0) its chord lies 0.4 H below the text's middle, so
// that it spans the middle of the text's height, and it ends 0.2 H short of the
// ink; above the text (1) it is centred over the ink and 0.2 H clear of it.
struct ArcSymbol {
  bool shown = false;
  Vec centre;  // in the text's frame, from the middle of its ink
  double radius = 0.0;
};

ArcSymbol arcSymbolOf(int placement, const TextExtents& ext) {
  ArcSymbol s;
  const double h = ext.height;
  if ((placement != 0 && placement != 1) || h <= 0) return s;
  s.shown = true;
  s.radius = 0.8 * h;
  s.centre = placement == 0 ? Vec(-ext.width / 2 - h, -0.4 * h) : Vec(0.0, h / 2 + 0.2 * h);
  return s;
}

TextBox textBoxOf(const TextExtents& ext, const ArcSymbol& sym) {
  TextBox b{-ext.width / 2, ext.width / 2, -ext.height / 2, ext.height / 2};
  if (sym.shown) {
    b.left = std::min(b.left, sym.centre.x - sym.radius);
    b.right = std::max(b.right, sym.centre.x + sym.radius);
    b.bottom = std::min(b.bottom, sym.centre.y);
    b.top = std::max(b.top, sym.centre.y + sym.radius);
  }
  return b;
}

// The line type the symbol is drawn in: continuous, as the text is, whatever the
// dimension line's is.
OdDbObjectId continuousLinetype(const OdDbDatabase* db) {
  if (!db) return {};
  auto table = odOpen<OdDbLinetypeTable>(db->getLinetypeTableId());
  return table ? table->getAt(L"Continuous") : OdDbObjectId();
}


// What is measured, reduced to the same shape for every kind: the sector from
// `start` counter-clockwise through `sweep` about `centre`, and on each bounding
// ray the stretch [near, far] (distances from the centre) that the measured
// line or point covers.
struct Sector {
  Vec centre;
  double start = 0.0, sweep = 0.0;
  double near1 = 0.0, far1 = 0.0, near2 = 0.0, far2 = 0.0;
  std::vector<Vec> marks;  // the definition points marked on the Defpoints layer, in order
  bool startsOnFirst = true;  // whether the sector starts on the first line (or point)
};

// Which of the sectors between a ray of each pair contains `at`: the first
// ray's direction is a1 or a1 + pi (likewise the second's) when `bothWays`.
// Returns the sector's start angle, its sweep and whether it starts on the
// first ray.
struct Chosen {
  double start, sweep;
  bool startsOnFirst;
  double dir1, dir2;  // the ray directions taken
};

Chosen chooseSector(double a1, double a2, double at, bool bothWays) {
  const int ways = bothWays ? 2 : 1;
  for (int i = 0; i < ways; ++i)
    for (int j = 0; j < ways; ++j) {
      const double r1 = normal(a1 + i * kPi), r2 = normal(a2 + j * kPi);
      const double s12 = normal(r2 - r1);  // from ray 1 counter-clockwise to ray 2
      if (bothWays && s12 > kPi + 1e-12) continue;  // the lines' four sectors are each under pi
      const double off = normal(at - r1);
      if (bothWays) {
        if (off <= s12 + 1e-12) return {r1, s12, true, r1, r2};
        if (s12 < 1e-12) continue;
      } else {
        if (off <= s12 + 1e-12) return {r1, s12, true, r1, r2};
        return {r2, kTwoPi - s12, false, r1, r2};
      }
    }
  // The arc point on the other side of both lines' pairs: take the sector from ray 2 to ray 1.
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) {
      const double r1 = normal(a1 + i * kPi), r2 = normal(a2 + j * kPi);
      const double s21 = normal(r1 - r2);
      if (s21 > kPi + 1e-12) continue;
      if (normal(at - r2) <= s21 + 1e-12) return {r2, s21, false, r1, r2};
    }
  return {normal(a1), normal(a2 - a1), true, normal(a1), normal(a2)};
}

// Where a line from p to q lies along the ray from c in direction d: the
// distances of its ends' projections, nearest first.
void stretchOf(Vec c, Vec d, Vec p, Vec q, double& nearD, double& farD) {
  const double a = (p - c).dot(d), b = (q - c).dot(d);
  nearD = std::min(a, b);
  farD = std::max(a, b);
}

}  // namespace

BlockContents computeAngular(const OdDbDimension& dim) {
  const Vars v(dim);
  BlockContents out;
  auto& items = out.items;

  // ---- what is measured ----
  Sector s;
  Vec arcPoint;
  const bool arcLength = dim.isKindOf(OdDbArcDimension::desc());
  double measuredRadius = 0.0;  // arc length: the measured arc's radius
  if (auto d2 = OdDb2LineAngularDimension::cast(&dim)) {
    const Vec a(d2->xLine1Start()), b(d2->xLine1End()), c(d2->xLine2Start()), e(d2->xLine2End());
    arcPoint = Vec(d2->arcPoint());
    const Vec u = b - a, w = e - c;
    const double cross = u.x * w.y - u.y * w.x;
    if (std::fabs(cross) < 1e-12 * std::max(1.0, u.length() * w.length())) throw OdError(eInvalidInput);
    const double t = ((c - a).x * w.y - (c - a).y * w.x) / cross;
    s.centre = a + u * t;
    const Chosen ch = chooseSector(u.angle(), w.angle(), (arcPoint - s.centre).angle(), true);
    s.start = ch.start;
    s.sweep = ch.sweep;
    double n1, f1, n2, f2;
    stretchOf(s.centre, Vec::polar(ch.dir1), a, b, n1, f1);
    stretchOf(s.centre, Vec::polar(ch.dir2), c, e, n2, f2);
    if (ch.startsOnFirst) s.near1 = n1, s.far1 = f1, s.near2 = n2, s.far2 = f2;
    else s.near1 = n2, s.far1 = f2, s.near2 = n1, s.far2 = f1;
    s.marks = {arcPoint, e, a, b, c};
    s.startsOnFirst = ch.startsOnFirst;
    out.dimLinePoint = c;
  } else {
    Vec p1, p2;
    if (auto d3 = OdDb3PointAngularDimension::cast(&dim)) {
      p1 = Vec(d3->xLine1Point());
      p2 = Vec(d3->xLine2Point());
      s.centre = Vec(d3->centerPoint());
      arcPoint = Vec(d3->arcPoint());
    } else if (auto al = OdDbArcDimension::cast(&dim)) {
      p1 = Vec(al->xLine1Point());
      p2 = Vec(al->xLine2Point());
      s.centre = Vec(al->centerPoint());
      arcPoint = Vec(al->arcPoint());
    } else {
      throw OdError(eNotImplementedYet);
    }
    const Chosen ch = chooseSector((p1 - s.centre).angle(), (p2 - s.centre).angle(), (arcPoint - s.centre).angle(), false);
    s.start = ch.start;
    s.sweep = ch.sweep;
    const Vec first = ch.startsOnFirst ? p1 : p2, second = ch.startsOnFirst ? p2 : p1;
    s.near1 = s.far1 = (first - s.centre).length();
    s.near2 = s.far2 = (second - s.centre).length();
    s.marks = {s.centre, p1, p2, arcPoint};
    s.startsOnFirst = ch.startsOnFirst;
    measuredRadius = (p1 - s.centre).length();
    out.dimLinePoint = arcPoint;
  }
  const double r = (arcPoint - s.centre).length();
  if (r < 1e-12) throw OdError(eInvalidInput);
  const Vec c = s.centre;
  auto onArc = [&](double a) { return c + Vec::polar(a) * r; };

  const double measured = arcLength ? measuredRadius * s.sweep : s.sweep;
  out.measurement = measured;

  // The extension lines: radial, from the measured line's end nearest the arc (or
  // the point) out to the arc and a little past it; none where the line already
  // reaches the arc. An arc length under a right angle has them parallel instead,
  // along the bisector, and the dimension arc runs between where they meet it.
  struct Extension {
    bool shown = false;
    Vec from, to;
  };
  Extension ext1, ext2;
  auto radial = [&](double angle, double nearD, double farD) {
    Extension e;
    const Vec d = Vec::polar(angle);
    double from, to;
    if (r > farD) from = farD + v.exo, to = r + v.exe;
    else if (r < nearD) from = nearD - v.exo, to = r - v.exe;
    else return e;
    if (std::fabs(to - from) < 1e-12 || (r > farD ? to < from : to > from)) return e;
    e.shown = true;
    e.from = c + d * from;
    e.to = c + d * to;
    return e;
  };
  if (arcLength && s.sweep < kPi / 2 - 1e-9) {
    const Vec d = Vec::polar(s.start + s.sweep / 2);
    auto parallel = [&](double angle, double dist, double& arcAngle) {
      const Vec q = Vec::polar(angle) * dist;  // the point, from the centre
      const double b = q.dot(d), disc = b * b - q.dot(q) + r * r;
      Extension e;
      if (disc < 0) {
        arcAngle = angle;
        return radial(angle, dist, dist);
      }
      const double t1 = -b + std::sqrt(disc), t2 = -b - std::sqrt(disc);
      const double t = std::fabs(t1) < std::fabs(t2) ? t1 : t2;
      arcAngle = (q + d * t).angle();
      const double sign = t >= 0 ? 1.0 : -1.0;
      if (std::fabs(t) <= v.exo) return e;
      e.shown = true;
      e.from = c + q + d * (sign * v.exo);
      e.to = c + q + d * (t + sign * v.exe);
      return e;
    };
    double a1 = s.start, a2 = s.start + s.sweep;
    ext1 = parallel(s.start, s.near1, a1);
    ext2 = parallel(s.start + s.sweep, s.near2, a2);
    s.start = normal(a1);
    s.sweep = normal(a2 - a1);
  } else {
    ext1 = radial(s.start, s.near1, s.far1);
    ext2 = radial(s.start + s.sweep, s.near2, s.far2);
  }
  const double end = s.start + s.sweep;

  // ---- the text ----
  const OdString contents = odDimensionText(dim, measured);
  const bool hasText = !contents.isEmpty();
  const OdDbDatabase* db = dim.database();
  const OdGiTextStyle font = db ? textStyleOf(*db, v.txsty) : OdGiTextStyle{};
  const double height = font.fixedHeight > 0 ? font.fixedHeight : v.txt;
  const TextExtents ext = hasText ? measureText(contents, height, font) : TextExtents{};
  const double gap = std::fabs(v.gap);
  const ArcSymbol symbol = arcLength && hasText ? arcSymbolOf(dim.dimarcsym(), ext) : ArcSymbol{};
  const TextBox box = textBoxOf(ext, symbol);

  // The arc's length and what needs room on it: the text (with its gap either
  // side where it sits on the arc) and the two arrowheads.
  const double arcLen = r * s.sweep;
  const double mid = s.start + s.sweep / 2;
  const double tangentAngle = readable(mid + kPi / 2);
  const bool userText = !dim.isUsingDefaultTextPosition();
  const double rotationOverride = dim.textRotation();
  const double insideAngle = rotationOverride != 0 ? rotationOverride : (v.tih ? 0.0 : tangentAngle);
  const double along = hasText ? box.width() * std::fabs(std::cos(insideAngle - tangentAngle)) +
                                     box.height() * std::fabs(std::sin(insideAngle - tangentAngle))
                               : 0.0;
  const double textNeed = hasText ? along + (v.tad == 0 ? 2 * gap : 0.0) : 0.0;
  const double arrowsNeed = 2 * v.asz;
  // Text the user placed away from the arc takes no room on it: only the
  // arrowheads need to fit (a tick reaches half its size either way).
  const Vec userAt(dim.textPosition());
  const bool userOnArc = userText && v.tad == 0 &&
                         std::fabs((userAt - s.centre).length() - r) < std::max(ext.height, v.txt) / 2 &&
                         normal((userAt - s.centre).angle() - s.start) <= s.sweep;
  bool textInside = true, arrowsInside = true;
  if (!hasText) arrowsInside = arcLen >= arrowsNeed;
  else if (userText && !userOnArc && v.atfit != 0)
    arrowsInside = arcLen >= (v.arrow1.atTip ? v.asz / 2 : v.asz) + (v.arrow2.atTip ? v.asz / 2 : v.asz);
  else {
    const Fit f = fitBoth(v, arcLen, textNeed, arrowsNeed);
    textInside = f.textInside;
    arrowsInside = f.arrowsInside;
  }
  if (userText) textInside = true;
  const bool arrowsShown = arrowsInside || !v.soxd;

  // Text moved away with a leader reads horizontally.
  const bool movedWithLeader = userText && v.tmove == 1;
  const double textAngle = rotationOverride != 0 ? rotationOverride
                           : movedWithLeader || (textInside ? v.tih : v.toh) ? 0.0
                                                                             : tangentAngle;
  Vec textAt;
  if (userText) {
    textAt = userAt;
  } else {
    // Outside, the text follows the second end along the arc's tangent, past an
    // arrowhead and its gap. "Above" is the left of the direction the text reads in.
    // Inside, the text itself is centred on the arc (a symbol before it hangs
    // out to one side); outside, the text and its symbol keep clear together.
    Vec base = onArc(mid);
    Vec up = Vec::polar(tangentAngle).left();
    const Vec x = Vec::polar(textAngle);
    if (!textInside) {
      const Vec t = Vec::polar(end).left();
      const Vec boxMiddle = x * box.middle().x + x.left() * box.middle().y;
      base = onArc(end) + t * (2 * v.asz + gap + along / 2 - boxMiddle.dot(t));
      up = Vec::polar(readable(end + kPi / 2)).left();
    }
    // A negative DIMGAP frames the text that far around it, and the text keeps
    // the gap again outside its frame.
    const double clearance = v.gap < 0 ? 2 * gap : gap;
    if (v.tad == 0) textAt = base + up * (v.tvp * v.txt);
    else if (v.tad == 4) textAt = base - up * (clearance + (hasText ? box.reach(x, up) : 0.0));
    else textAt = base + up * (clearance + (hasText ? box.reach(x, -up) : 0.0));
  }
  out.textPosition = textAt;

  // ---- extension lines ----
  auto extension = [&](const Extension& e, bool suppressed, const OdDbObjectId& lt) {
    if (suppressed || !e.shown) return;
    Item it;
    it.kind = ItemKind::Line;
    it.p[0] = e.from;
    it.p[1] = e.to;
    it.props = propsOf(v.clre, v.lwe, lt);
    items.push_back(it);
  };
  // The first extension line's variables go with the first line, wherever the
  // sector starts.
  const bool f = s.startsOnFirst;
  extension(ext1, f ? v.se1 : v.se2, f ? v.ltex1 : v.ltex2);
  extension(ext2, f ? v.se2 : v.se1, f ? v.ltex2 : v.ltex1);

  // ---- the dimension arc ----
  const Props dimProps = propsOf(v.clrd, v.lwd, v.ltype);
  auto arc = [&](double a0, double a1) {
    if (a1 - a0 < 1e-12) return;
    Item it;
    it.kind = ItemKind::Arc;
    it.p[0] = c;
    it.radius = r;
    it.startAngle = normal(a0);
    it.endAngle = normal(a1);
    it.props = dimProps;
    items.push_back(it);
  };
  // Text on the arc (not above or below it) cuts it where the arc runs through
  // the text's box (the text and its gap).
  const bool cutsArc = hasText && v.tad == 0;
  const Vec tx = Vec::polar(textAngle), ty = tx.left();
  // (the symbol's room with the text's)
  const double left = box.left - gap, right = box.right + gap, bottom = box.bottom - gap, top = box.top + gap;
  auto inBox = [&](double a) {
    const Vec q = onArc(a) - textAt;
    const double qx = q.dot(tx), qy = q.dot(ty), eps = 1e-9 * r;
    return qx > left + eps && qx < right - eps && qy > bottom + eps && qy < top - eps;
  };
  auto arcPiece = [&](double from, double to, bool cut) {
    if (to - from < 1e-12) return;
    if (!cut) return arc(from, to);
    std::vector<double> cuts{from, to};
    if (cutsArc) {
      // Where the circle crosses each edge's line: (centre - textAt + r (cos a, sin a)).n = k
      // for the edge normal n at offset k.
      const Vec off = c - textAt;
      const std::pair<Vec, double> edges[] = {{tx, right}, {tx, left}, {ty, top}, {ty, bottom}};
      for (const auto& [n, k] : edges) {
        const double rhs = k - off.dot(n);
        if (std::fabs(rhs) > r) continue;
        const double base = n.angle(), spread = std::acos(rhs / r);
        for (double a : {base + spread, base - spread}) {
          const double rel = normal(a - from);
          if (rel > 0 && rel < to - from) cuts.push_back(from + rel);
        }
      }
    }
    std::sort(cuts.begin(), cuts.end());
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
      const double a0 = cuts[i], a1 = cuts[i + 1];
      if (a1 - a0 < 1e-12) continue;
      if (cutsArc && inBox((a0 + a1) / 2)) continue;
      // Neighbouring pieces outside the box stay one arc.
      std::size_t j = i + 1;
      while (j + 1 < cuts.size() && !(cutsArc && inBox((cuts[j] + cuts[j + 1]) / 2))) ++j;
      arc(a0, cuts[j]);
      i = j - 1;
    }
  };
  // Inside, the arc stops at the back of each arrowhead (a tick sits on its end).
  // Arrowheads outside point in, each with an arrowhead's length of arc behind
  // it; the arc between them is drawn only when DIMTOFL asks for it (or they are
  // left out).
  // An arrowhead's length along the arc: the angle whose chord is that long.
  const double len = 2 * std::asin(std::min(1.0, v.asz / (2 * r)));
  // The first arrowhead marks the sector's start (counter-clockwise), whichever
  // line that is.
  const double back1 = v.arrow1.atTip ? 0.0 : len, back2 = v.arrow2.atTip ? 0.0 : len;
  if (arrowsInside) {
    arcPiece(s.start + (arrowsShown ? back1 : 0.0), end - (arrowsShown ? back2 : 0.0), true);
  } else {
    if (arrowsShown) {
      // (the text does not cut these short pieces)
      arcPiece(s.start - back1 - len, s.start - back1, false);
      arcPiece(end + back2, end + back2 + len, false);
    }
    if (v.tofl || !arrowsShown) arcPiece(s.start, end, true);
  }

  // ---- arrowheads ----
  auto arrow = [&](const Arrow& a, double at, bool first) {
    const Vec tip = onArc(at);
    // Pointing out of the arc (into it when outside), along the chord from the
    // arc's point an arrowhead's length back to the tip: the arrowhead's back
    // sits on the arc.
    const double sense = (first ? 1.0 : -1.0) * (arrowsInside ? 1.0 : -1.0);
    Vec dir = (tip - onArc(at + sense * len)).unit();
    if (a.atTip) dir = Vec::polar(at).left() * -sense;
    items.push_back(arrowItem(a, tip, dir, dir.left(), v.asz, dimProps));
  };
  if (arrowsShown) {
    arrow(v.arrow1, s.start, true);
    arrow(v.arrow2, end, false);
  }

  // ---- text and definition points ----
  if (hasText) {
    items.push_back(textItem(textAt, textAngle, contents, height, v.txsty, v.clrt));
    if (v.gap < 0) appendFrame(items, textAt, tx, ext.width / 2 + gap, ext.height / 2 + gap, dimProps);
    if (symbol.shown) {
      Item it;
      it.kind = ItemKind::Arc;
      it.p[0] = textAt + tx * symbol.centre.x + ty * symbol.centre.y;
      it.radius = symbol.radius;
      it.startAngle = normal(textAngle);
      it.endAngle = normal(textAngle + kPi);
      it.props = propsOf(v.clrt, OdDb::kLnWtByBlock, continuousLinetype(db));
      items.push_back(it);
    }
  }
  for (const Vec& m : s.marks) items.push_back(pointItem(m));
  return out;
}

}  // namespace dimgeom

namespace dimgeom {

bool isAngularKind(const OdDbDimension& dim) {
  if (dim.isKindOf(OdDbArcDimension::desc())) return true;
  const int type = dim.dimensionType();
  return (type == 2 && dim.isKindOf(OdDb2LineAngularDimension::desc())) ||
         (type == 5 && dim.isKindOf(OdDb3PointAngularDimension::desc()));
}

}  // namespace dimgeom
