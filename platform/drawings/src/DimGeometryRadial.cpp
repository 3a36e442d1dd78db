// Radius, diameter and jogged radius dimensions: an arrowhead on the circle at the
// chord point, the measurement along the radial line or horizontal at the end of
// a short landing, and, when the leader stays outside the circle, a centre mark.
//
// What the saved blocks of CAD programs show:
// - text inside the circle: the arrowhead points outwards at the chord point and
//   the line runs from it to the text (under all of it, or up to it when the text
//   sits on the line);
// - text outside: the arrowhead points inwards and the line leads out to the text;
//   the circle gets a centre mark (DIMCEN > 0) or a mark and centre lines
//   (DIMCEN < 0) unless a line is drawn inside the circle: always with DIMTOFL,
//   and for a diameter also when there is no centre mark to draw, the line then
//   joining both chord points with an arrowhead at each;
// - horizontal text (DIMTIH inside, DIMTOH outside) ends the leader with a
//   landing one arrowhead long, level with the middle of the text, the text a
//   gap beyond it; text above the line (DIMTAD) sits on a landing under all of it.
#include <algorithm>
#include <cmath>
#include <utility>
#include <numbers>

#include "DimGeometryImpl.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDmUtil.h"

namespace dimgeom {
namespace {

constexpr double kPi = std::numbers::pi;



// The dimension variables this layout reads: the gap as a distance, with the
// frame a negative one asks for apart, and the arrowheads by where they sit.
struct Vars : DimVars {
  bool framed;
  Arrow chordArrow, farArrow;  // at the chord point and at a diameter's far chord point

  explicit Vars(const OdDimVarSource& d) : DimVars(d) {
    framed = gap < 0;
    gap = std::fabs(gap);
    // With separate arrowheads the one on the circle is the second.
    chordArrow = arrow2;
    farArrow = arrow1;
  }
};


class Builder {
public:
  explicit Builder(const Vars& v) : m_v(v) {}

  void line(Vec a, Vec b, const Props& props) {
    if ((b - a).length() <= 1e-12) return;
    m_out.items.push_back(lineItem(a, b, props));
  }

  // An arrowhead with its tip at `tip`, pointing along `dir`.
  void arrow(const Arrow& a, Vec tip, Vec dir) {
    m_out.items.push_back(arrowItem(a, tip, dir, dir.left(), m_v.asz, dimProps()));
  }

  void text(Vec at, double angle, const OdString& contents, double height) {
    m_out.items.push_back(textItem(at, angle, contents, height, m_v.txsty, m_v.clrt));
  }

  void point(Vec at) { m_out.items.push_back(pointItem(at)); }

  Props dimProps() const { return propsOf(m_v.clrd, m_v.lwd, m_v.ltype); }

  // Centre marks take the extension lines' colour and weight.
  Props markProps() const { return propsOf(m_v.clre, m_v.lwe, OdDbObjectId()); }

  BlockContents& out() { return m_out; }

private:
  const Vars& m_v;
  BlockContents m_out;
};

// A cross of DIMCEN half-length at the centre; a negative DIMCEN adds centre lines
// from twice its size out to that far beyond the circle.
void centreMark(Builder& b, const Vars& v, Vec c, double r) {
  const double m = std::fabs(v.cen);
  const Props props = b.markProps();
  b.line(c - Vec(m, 0), c + Vec(m, 0), props);
  b.line(c - Vec(0, m), c + Vec(0, m), props);
  if (v.cen >= 0 || r + m <= 2 * m) return;
  for (Vec d : {Vec(1, 0), Vec(-1, 0), Vec(0, 1), Vec(0, -1)}) b.line(c + d * (2 * m), c + d * (r + m), props);
}

// DIMLFAC; a negative one applies in paper space only.
double lengthFactor(const OdDbDimension& dim, const Vars& v) {
  if (v.lfac >= 0) return v.lfac;
  auto owner = odOpen<OdDbBlockTableRecord>(dim.ownerId());
  const bool paper = owner && owner->isLayout() && owner->getName().left(12).iCompare(L"*Paper_Space") == 0;
  return paper ? -v.lfac : 1.0;
}

// The measurement text and its extents.
struct Text {
  OdString contents;
  double height = 0.0;
  TextExtents ext;

  Text(const OdDbDimension& dim, const Vars& v, double measured) : contents(odDimensionText(dim, measured)) {
    const OdDbDatabase* db = dim.database();
    const OdGiTextStyle font = db ? textStyleOf(*db, v.txsty) : OdGiTextStyle{};
    height = font.fixedHeight > 0 ? font.fixedHeight : v.txt;
    if (shown()) ext = measureText(contents, height, font);
  }
  bool shown() const { return !contents.isEmpty(); }
};

// chord: the point on the circle the arrowhead marks; other: the centre of a
// radius, the opposite chord point of a diameter.
BlockContents computeCircular(const OdDbDimension& dim, Vec chord, Vec other, bool diameter) {
  const Vars v(dim);
  Builder b(v);
  BlockContents& out = b.out();
  out.dimLinePoint = other;

  const Vec c = diameter ? (chord + other) * 0.5 : other;
  const double r = (chord - c).length();
  const Vec u = (chord - c).unit();  // outwards at the chord point
  const double measured = diameter ? 2 * r : r;
  out.measurement = measured * lengthFactor(dim, v);

  // ---- the text ----
  const Text text(dim, v, measured);
  const OdString& contents = text.contents;
  const bool hasText = text.shown();
  const double height = text.height, halfW = text.ext.width / 2, halfH = text.ext.height / 2;

  const bool userText = !dim.isUsingDefaultTextPosition();
  const Vec userAt(dim.textPosition());
  const bool inside = userText ? (userAt - c).length() < r : v.tix;
  const double lineAngle = readable(u.angle());
  const double rotationOverride = dim.textRotation();
  const double textAngle =
      rotationOverride != 0 ? rotationOverride : ((inside ? v.tih : v.toh) ? 0.0 : lineAngle);
  const bool along = std::fabs(std::sin(textAngle - u.angle())) < 1e-9;

  // Text outside leaves the circle to a line drawn inside it, or to a centre mark.
  const bool innerLine = !inside && (v.tofl || (diameter && v.cen == 0));
  const bool mark = !inside && !innerLine && v.cen != 0;
  const Props dimProps = b.dimProps();
  const double trim1 = v.chordArrow.atTip ? 0.0 : v.asz, trim2 = v.farArrow.atTip ? 0.0 : v.asz;
  // A diameter's inner line carries an arrowhead at each end, pointing outwards.
  const bool arrowOut = inside || (diameter && innerLine);
  auto at = [&](double s) { return c + u * s; };
  if (diameter && innerLine) b.line(at(-r + trim2), at(r - trim1), dimProps);

  Vec textAt, arrowDir;
  if (along) {
    // Along the radial line: above it (DIMTAD) or on it, the line reaching a gap
    // past the text's far end, or stopping a gap short of it.
    const Vec up = Vec::polar(lineAngle).left();
    auto lift = [&](Vec base) {
      if (v.tad == 0) return base + up * (v.tvp * v.txt);
      // A framed text keeps the gap again outside its frame.
      const double clearance = v.framed ? 2 * v.gap : v.gap;
      if (v.tad == 4) return base - up * (clearance + halfH);
      return base + up * (clearance + halfH);
    };
    // Text outside by default stands two arrowheads and a gap beyond the circle.
    const double s = userText ? (userAt - c).dot(u) : inside ? (diameter ? 0.0 : r / 2) : r + 2 * v.asz + v.gap + halfW;
    const Vec base = userText ? userAt : at(s);
    textAt = lift(base);
    out.textPosition = userText ? userAt : textAt;
    const bool onLine = v.tad == 0;
    if (inside) {
      arrowDir = u;
      const double end = hasText ? (onLine ? s + halfW + v.gap : s - halfW - v.gap) : (diameter ? -r : 0.0);
      if (end < r - trim1) b.line(at(r - trim1), at(end), dimProps);
    } else {
      arrowDir = arrowOut ? u : -u;
      const double from = arrowOut ? r : r + trim1;
      const double end = hasText ? (onLine ? s - halfW - v.gap : s + halfW + v.gap) : r + 2 * v.asz;
      if (end > from) b.line(at(end), at(from), dimProps);
    }
  } else {
    // Horizontal (or turned) text: a landing on the side towards the chord point,
    // then the leader to the arrowhead. The landing is level with the middle of
    // the text and one arrowhead long, or, for text above the line (DIMTAD), runs
    // under all of it.
    const Vec td = Vec::polar(textAngle);
    const bool onLine = v.tad == 0;
    // From the text's middle to the elbow where landing and leader meet.
    const double reach = onLine ? halfW + v.gap + v.asz : halfW + 2 * v.gap;
    Vec k, base;  // k: from the text towards the landing; base: the text's middle on the landing
    if (userText && v.tmove == 1) {
      // Text moved with a leader: the user's point is the elbow.
      k = (chord - userAt).dot(td) >= 0 ? td : -td;
      base = userAt - k * reach;
    } else if (userText) {
      base = userAt;
      k = (chord - base).dot(td) >= 0 ? td : -td;
    } else {
      const Vec elbow = inside ? at(diameter ? 0.0 : r / 2) : at(r + 2 * v.asz);
      k = u.dot(td) > 1e-9 ? -td : td;  // text on the left of a vertical leader
      base = elbow - k * reach;
    }
    const Vec elbow = base + k * reach;
    const Vec up = td.left() * (v.tad == 4 ? -1.0 : 1.0);
    textAt = onLine ? base : base + up * ((v.framed ? 2 * v.gap : v.gap) + halfH);
    out.textPosition = userText ? userAt : textAt;
    const Vec d = (chord - elbow).unit();
    if (onLine) b.line(base + k * (halfW + v.gap), elbow, dimProps);
    else b.line(base - k * (halfW + v.gap), elbow, dimProps);
    if (arrowOut && !inside) {
      arrowDir = u;
      b.line(elbow, chord, dimProps);
    } else {
      arrowDir = d;
      b.line(elbow, chord - d * trim1, dimProps);
    }
  }

  // Arrowhead blocks at the end of a leader with a landing come before the text;
  // SOLIDs, and blocks by text along the line, after it.
  const bool blockArrows = !v.chordArrow.block.isNull() && !along && !(userText && v.tmove == 1);
  auto arrows = [&] {
    if (diameter && innerLine) b.arrow(v.farArrow, other, -u);
    b.arrow(v.chordArrow, chord, arrowDir);
  };
  if (blockArrows) arrows();
  if (hasText) b.text(textAt, textAngle, contents, height);
  if (hasText && v.framed) {
    const Vec dir = Vec::polar(textAngle), across = dir.left();
    const double hw = halfW + v.gap, hh = halfH + v.gap;
    const Vec corner[4] = {textAt - dir * hw - across * hh, textAt + dir * hw - across * hh,
                           textAt + dir * hw + across * hh, textAt - dir * hw + across * hh};
    for (int i = 0; i < 4; ++i) b.line(corner[i], corner[(i + 1) % 4], dimProps);
  }
  if (!diameter && innerLine) b.line(c, chord, dimProps);
  if (!blockArrows) arrows();
  if (mark) centreMark(b, v, c, r);
  b.point(chord);
  b.point(other);
  return std::move(out);  // out is the builder's: no copy of the items
}

// Half the length of the line through the middle of a w x h box turned by
// `boxAngle` that lies inside the box, for a line in direction `lineAngle`.
double halfChord(double w, double h, double boxAngle, double lineAngle) {
  const double c = std::fabs(std::cos(lineAngle - boxAngle)), s = std::fabs(std::sin(lineAngle - boxAngle));
  double half = 1e300;
  if (c > 1e-12) half = std::min(half, w / 2 / c);
  if (s > 1e-12) half = std::min(half, h / 2 / s);
  return half;
}

}  // namespace

// The radius of a large arc whose centre lies off the drawing: the line starts at
// a stand-in centre and runs parallel to the true radial line until the jog, a
// stroke at DIMJOGANG to the line through the true centre and the chord point,
// which goes on out to the arrowhead. The jog point is the middle of the stroke.
BlockContents computeJogged(const VxHugeRadius& dim) {
  const Vars v(dim);
  Builder b(v);
  BlockContents& out = b.out();
  const Vec c(dim.center()), chord(dim.chordPoint()), stand(dim.overrideCenter()), jog(dim.jogPoint());
  out.dimLinePoint = c;
  const double r = (chord - c).length();
  const Vec u = (chord - c).unit(), n = u.left();
  out.measurement = r * lengthFactor(dim, v);

  // The two lines: the radial one, and its parallel through the stand-in centre.
  const double offset = n.dot(c - stand);
  const double jogAngle = v.jogang > 1e-6 && v.jogang <= kPi / 2 ? v.jogang : kPi / 4;
  const double s = u.dot(jog - c), half = std::fabs(offset) / 2 / std::tan(jogAngle);
  const Vec outer = c + u * (s + half) - n * offset, inner = c + u * (s - half);
  const Props dimProps = b.dimProps();
  b.line(stand, outer, dimProps);
  b.line(outer, inner, dimProps);

  // The text: on the radial line past the jog, where the user put it, or midway
  // to the arrowhead.
  const Text text(dim, v, r);
  const bool hasText = text.shown();
  const double base = r - (v.chordArrow.atTip ? 0.0 : v.asz);  // the arrowhead's back
  const bool userText = !dim.isUsingDefaultTextPosition();
  const Vec anchor = userText ? Vec(dim.textPosition()) : c + u * ((s - half + base) / 2);
  const bool inside = (anchor - c).length() < r;
  const double lineAngle = readable(u.angle());
  const double rotationOverride = dim.textRotation();
  const double textAngle =
      rotationOverride != 0 ? rotationOverride : ((inside ? v.tih : v.toh) ? 0.0 : lineAngle);
  Vec textAt = anchor;
  const double at = u.dot(anchor - c);
  if (hasText && v.tad == 0 && std::fabs(n.dot(anchor - c)) < std::max(text.ext.height, v.txt) / 2) {
    // On the line: the line stops a gap short of the text on either side.
    const double cut = halfChord(text.ext.width + 2 * v.gap, text.ext.height + 2 * v.gap, textAngle, u.angle());
    // Past the jog the line keeps at least an arrowhead's length, into the gap if need be.
    if (at - cut > s - half) b.line(c + u * std::max(at - cut, s - half + v.asz), inner, dimProps);
    if (at + cut < base) b.line(c + u * base, c + u * (at + cut), dimProps);
  } else {
    if (hasText && v.tad != 0) {
      const Vec up = Vec::polar(lineAngle).left() * (v.tad == 4 ? -1.0 : 1.0);
      textAt = anchor + up * (v.gap + text.ext.height / 2);
    }
    b.line(c + u * base, inner, dimProps);
  }
  out.textPosition = userText ? anchor : textAt;
  b.arrow(v.chordArrow, chord, u);
  if (hasText) b.text(textAt, textAngle, text.contents, text.height);
  b.point(chord);
  b.point(stand);
  b.point(jog);
  return std::move(out);  // out is the builder's: no copy of the items
}

BlockContents computeRadial(const OdDbRadialDimension& dim) {
  return computeCircular(dim, Vec(dim.chordPoint()), Vec(dim.center()), false);
}

BlockContents computeDiametric(const OdDbDiametricDimension& dim) {
  return computeCircular(dim, Vec(dim.chordPoint()), Vec(dim.farChordPoint()), true);
}

}  // namespace dimgeom
