// Rotated and aligned dimensions: extension lines from the two measured points to
// the dimension line, the dimension line between them with an arrowhead at each
// end, and the measurement on or above it, inside the extension lines when text
// and arrowheads fit there and moved outside when they do not.
#include <algorithm>
#include <cmath>
#include <utility>

#include "DimGeometryImpl.h"
#include "DimVarSnapshot.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDmUtil.h"

namespace dimgeom {
namespace {




using Vars = DimVars;


// Half the length of the line through the middle of a w x h box turned by
// `boxAngle` that lies inside the box, for a line in direction `lineAngle`.
double halfChord(double w, double h, double boxAngle, double lineAngle) {
  const double c = std::fabs(std::cos(lineAngle - boxAngle)), s = std::fabs(std::sin(lineAngle - boxAngle));
  double half = 1e300;
  if (c > 1e-12) half = std::min(half, w / 2 / c);
  if (s > 1e-12) half = std::min(half, h / 2 / s);
  return half;
}

// Half the extent of that box across direction `dirAngle` (its shadow on it).
double halfShadow(double w, double h, double boxAngle, double dirAngle) {
  const double c = std::fabs(std::cos(dirAngle - boxAngle)), s = std::fabs(std::sin(dirAngle - boxAngle));
  return (w * c + h * s) / 2;
}

class Builder {
public:
  explicit Builder(const Vars& v) : m_v(v) {}

  void line(Vec a, Vec b, const Props& props) { m_out.items.push_back(lineItem(a, b, props)); }

  // An arrowhead with its tip at `tip`, pointing along `dir`. A SOLID's corners
  // start on `side`: the left of the direction the text reads in, for both ends.
  void arrow(const Arrow& a, Vec tip, Vec dir, Vec side) {
    m_out.items.push_back(arrowItem(a, tip, dir, side, m_v.asz, propsOf(m_v.clrd, m_v.lwd, OdDbObjectId())));
  }

  void text(Vec at, double angle, const OdString& contents, double height) {
    m_out.items.push_back(textItem(at, angle, contents, height, m_v.txsty, m_v.clrt));
  }

  void point(Vec at) { m_out.items.push_back(pointItem(at)); }

  BlockContents& out() { return m_out; }

private:
  const Vars& m_v;
  BlockContents m_out;
};

}  // namespace

BlockContents computeLinear(const OdDbAlignedDimension& dim) {
  const DimVarSnapshot snapshot(dim);
  const Vars v(snapshot);
  Builder b(v);
  BlockContents& out = b.out();

  const Vec p1(dim.xLine1Point()), p2(dim.xLine2Point()), dp(dim.dimLinePoint());
  const OdDbRotatedDimension* rotated =
      dim.isKindOf(OdDbRotatedDimension::desc()) ? static_cast<const OdDbRotatedDimension*>(&dim) : nullptr;
  // u: the direction measured along; n: its left.
  const Vec u = rotated ? Vec::polar(rotated->rotation()) : (p2 - p1).unit();
  const Vec n = u.left();

  // Extension lines run from each point to the dimension line: across it, or at
  // the oblique angle.
  Vec w = n;
  if (const double obl = dim.oblique(); obl != 0.0) {
    const Vec o = Vec::polar(obl);
    if (std::fabs(o.dot(n)) > 1e-9) w = o;
  }
  auto onLine = [&](Vec p) { return p + w * ((dp - p).dot(n) / w.dot(n)); };
  const Vec d1 = onLine(p1), d2 = onLine(p2);
  out.dimLinePoint = d2;

  const double measured = std::fabs((p2 - p1).dot(u));
  double lfac = std::fabs(v.lfac);
  if (v.lfac < 0) {
    auto owner = odOpen<OdDbBlockTableRecord>(dim.ownerId());
    const bool paper = owner && owner->isLayout() && owner->getName().left(12).iCompare(L"*Paper_Space") == 0;
    if (!paper) lfac = 1.0;
  }
  out.measurement = measured * lfac;

  const double span = (d2 - d1).length();
  const Vec t = span > 1e-12 ? (d2 - d1).unit() : u;  // from the first extension line to the second

  // ---- the text ----
  const OdString contents = dimensionText(dim, snapshot, measured);
  const bool hasText = !contents.isEmpty();
  const OdDbDatabase* db = dim.database();
  const OdGiTextStyle font = db ? textStyleOf(*db, v.txsty) : OdGiTextStyle{};
  const double height = font.fixedHeight > 0 ? font.fixedHeight : v.txt;
  const TextExtents ext = hasText ? measureText(contents, height, font) : TextExtents{};
  const double gap = std::fabs(v.gap);
  const double lineAngle = readable(u.angle());

  const bool userText = !dim.isUsingDefaultTextPosition();
  const double rotationOverride = dim.textRotation();
  const Vec userAt(dim.textPosition());
  // Text the user placed on the dimension line between the extension lines counts
  // as inside; placed elsewhere it takes no room there.
  const bool userBetween = userText && hasText && v.tad == 0 &&
                           std::fabs((userAt - d1).dot(n)) < std::max(ext.height, v.txt) / 2 &&
                           (userAt - d1).dot(t) > 0 && (userAt - d1).dot(t) < span;

  // What fits between the extension lines: the text along the line (with its gap
  // either side where it sits on the line) and both arrowheads.
  const double insideAngle = rotationOverride != 0 ? rotationOverride : (v.tih ? 0.0 : lineAngle);
  const double textAlongInside = hasText ? 2 * halfShadow(ext.width, ext.height, insideAngle, u.angle()) : 0.0;
  const double textNeed = hasText ? textAlongInside + (v.tad == 0 ? 2 * gap : 0.0) : 0.0;
  const double arrowsNeed = 2 * v.asz;
  // DIMJUST 3 and 4 stand the text along the first or second extension line,
  // beyond the dimension line: it takes no room between the extension lines.
  const int overExtension = hasText && !userText && (v.just == 3 || v.just == 4) ? v.just - 2 : 0;
  bool textInside = true, arrowsInside = true;
  if (overExtension) {
    arrowsInside = span >= arrowsNeed;
  } else if (userText && !userBetween && v.atfit != 0) {
    // Text placed away from the line takes no room there: only the arrowheads
    // need to fit (a tick reaches half its size either way).
    arrowsInside = span >= (v.arrow1.atTip ? v.asz / 2 : v.asz) + (v.arrow2.atTip ? v.asz / 2 : v.asz);
  } else if (!hasText) {
    arrowsInside = span >= arrowsNeed;
  } else if (userBetween) {
    // The text stays where the user put it; the arrowheads stay inside when the
    // line left between each extension line and the text's gap holds one. Text
    // whose gap reaches past both extension lines leaves no line to cut (it is
    // drawn whole), and only the arrowheads need room.
    const double cut = halfChord(ext.width + 2 * gap, ext.height + 2 * gap, insideAngle, u.angle());
    const double s = (userAt - d1).dot(t);
    arrowsInside = std::max(s, span - s) <= cut ? span >= arrowsNeed : std::min(s, span - s) - cut >= v.asz;
  } else {
    const Fit f = fitBoth(v, span, textNeed, arrowsNeed);
    textInside = f.textInside;
    arrowsInside = f.arrowsInside;
  }
  if (userText) textInside = userBetween;
  // Arrowheads that would go outside are left out altogether (DIMSOXD).
  const bool arrowsShown = arrowsInside || !v.soxd;

  // The extension line the text stands by runs away from its point.
  const Vec away = overExtension ? ((overExtension == 1 ? d1 - p1 : d2 - p2).length() > 1e-12
                                        ? (overExtension == 1 ? d1 - p1 : d2 - p2).unit()
                                        : n)
                                 : Vec(0, 0);
  const double textAngle = rotationOverride != 0 ? rotationOverride
                           : overExtension       ? readable(away.angle())
                                                 : ((textInside ? v.tih : v.toh) ? 0.0 : lineAngle);
  // Text along the line (as opposed to horizontal text beside a sloping line).
  const bool textAlong = std::fabs(std::sin(textAngle - u.angle())) < 1e-9;
  // "Up" for text above the line: the left of the direction the text reads in along it.
  const Vec up = Vec::polar(lineAngle).left();
  const double acrossHalf = halfShadow(ext.width, ext.height, textAngle, up.angle());
  const double alongHalf = halfShadow(ext.width, ext.height, textAngle, t.angle());
  // A negative DIMGAP draws a frame that far around the text, and the text keeps
  // the gap again outside its frame.
  const bool framed = v.gap < 0;
  const double clearance = framed ? 2 * gap : gap;
  auto lift = [&](Vec base) {
    if (v.tad == 0) return base + up * (v.tvp * v.txt);
    if (v.tad == 4) return base - up * (clearance + acrossHalf);
    return base + up * (clearance + acrossHalf);
  };

  // Beyond the extension lines, text keeps two arrowhead lengths from the line it
  // stands by; the dimension line leads to it.
  const double outsideOffset = 2 * v.asz;
  Vec textAt;
  if (userText) textAt = userAt;
  else if (overExtension) {
    // Its near end the gap past the dimension line; on the line itself for DIMTAD 0,
    // else beside it on the side text reads above.
    const Vec along = Vec::polar(textAngle), above = along.left();
    const double extentAway = halfShadow(ext.width, ext.height, textAngle, away.angle());
    textAt = (overExtension == 1 ? d1 : d2) + away * (gap + extentAway);
    if (v.tad != 0) textAt = textAt + above * (clearance + halfShadow(ext.width, ext.height, textAngle, above.angle()));
  } else if (textInside) {
    // Centred on the visible line (between the arrowheads' backs), or by the first
    // or second extension line as far from it as text outside would be.
    const double back1 = !arrowsInside || v.arrow1.atTip || v.sd1 ? 0.0 : v.asz;
    const double back2 = !arrowsInside || v.arrow2.atTip || v.sd2 ? 0.0 : v.asz;
    double along = (back1 + span - back2) / 2;
    if (v.just == 1) along = std::min(along, outsideOffset + gap + alongHalf);
    else if (v.just == 2) along = std::max(along, span - outsideOffset - gap - alongHalf);
    textAt = lift(d1 + t * along);
  } else if (textAlong) textAt = lift(d2 + t * (outsideOffset + gap + alongHalf));
  else {
    // Horizontal text by a sloping line: after a short horizontal hook.
    const Vec side = Vec::polar(textAngle) * ((Vec::polar(textAngle).dot(t) >= 0) ? 1.0 : -1.0);
    textAt = d2 + t * outsideOffset + side * (v.asz + gap + ext.width / 2);
  }
  out.textPosition = textAt;

  // ---- extension lines ----
  // The extension line the text stands by reaches as far as the text.
  const double textReach = overExtension ? gap + 2 * halfShadow(ext.width, ext.height, textAngle, away.angle()) : 0.0;
  auto extension = [&](Vec p, Vec d, bool suppressed, const OdDbObjectId& lt, bool underText) {
    if (suppressed) return;
    const Vec along = d - p;
    // A point on the dimension line still gets its stub (unless it has no length),
    // on the left of the line.
    const Vec e = along.length() < 1e-12 ? w : along.unit();
    Vec start = p + e * v.exo;
    if (v.fxlon) {
      const Vec fixedStart = d - e * v.fxl;
      if ((fixedStart - p).dot(e) > v.exo) start = fixedStart;
    }
    const Vec end = d + e * (underText ? std::max(v.exe, textReach) : v.exe);
    if ((end - start).length() > 1e-9 * std::max(1.0, v.exe)) b.line(start, end, propsOf(v.clre, v.lwe, lt));
  };
  extension(p1, d1, v.se1, v.ltex1, overExtension == 1);
  extension(p2, d2, v.se2, v.ltex2, overExtension == 2);

  // ---- dimension line ----
  // Positions along the line are measured from d1 towards d2.
  const Props dimProps = propsOf(v.clrd, v.lwd, v.ltype);
  const double textCentre = (textAt - d1).dot(t);
  const bool textOnLine = hasText && !overExtension && v.tad == 0 && std::fabs((textAt - d1).dot(n)) < std::max(ext.height, v.txt) / 2;
  const double textHalfGap = hasText ? halfChord(ext.width + 2 * gap, ext.height + 2 * gap, textAngle, t.angle()) : 0;
  auto at = [&](double s) { return d1 + t * s; };

  // A piece of the line from a to z, cut where the text sits on it; each end keeps
  // its part up to the text. Text wider than the piece leaves it whole.
  auto piece = [&](double a, double z) {
    const double lo = std::min(a, z), hi = std::max(a, z);
    if (textOnLine) {
      const double tlo = textCentre - textHalfGap, thi = textCentre + textHalfGap;
      if (thi > lo && tlo < hi && (tlo > lo || thi < hi)) {
        if (tlo > lo) b.line(at(lo), at(tlo), dimProps);
        if (thi < hi) b.line(at(hi), at(thi), dimProps);
        return;
      }
    }
    if (hi - lo > 1e-12) b.line(at(a), at(z), dimProps);
  };

  const double trim1 = v.arrow1.atTip ? 0.0 : v.asz, trim2 = v.arrow2.atTip ? 0.0 : v.asz;
  const double dle1 = v.arrow1.atTip ? v.dle : 0.0, dle2 = v.arrow2.atTip ? v.dle : 0.0;
  // Text beyond an extension line: which end it is past (-1 before d1, +1 past d2).
  const int textBeyond = !hasText || textInside ? 0 : (textCentre < span / 2 ? -1 : 1);
  // How far past that end the line leads to the text, and whether a hook turns to it.
  double leadTo = 0.0;
  bool hook = false;
  if (textBeyond != 0 && (!userText || v.tmove == 0)) {
    const double beyond = textBeyond < 0 ? -textCentre : textCentre - span;
    if (textAlong) leadTo = v.tad == 0 ? beyond - alongHalf - gap : beyond + alongHalf + gap;
    else {
      leadTo = beyond;
      hook = true;
    }
  }
  // The line beyond an extension line: behind an arrowhead outside, or from the
  // tip of one inside when it leads to the text.
  auto outsidePiece = [&](int end, bool suppressed) {
    if (suppressed) return;
    const double dir = end < 0 ? -1.0 : 1.0, base = end < 0 ? 0.0 : span;
    const double trim = !arrowsInside ? (end < 0 ? trim1 : trim2) : 0.0;
    double len = arrowsInside ? 0.0 : trim + v.asz;
    if (end == textBeyond) len = std::max(len, leadTo);
    if (len <= trim) return;
    b.line(at(base + dir * trim), at(base + dir * len), dimProps);
    if (end == textBeyond && hook) {
      const Vec from = at(base + dir * len);
      const Vec td = Vec::polar(textAngle);
      const Vec toward = td * ((textAt - from).dot(td) >= 0 ? 1.0 : -1.0);
      b.line(from, from + toward * v.asz, dimProps);
    }
  };

  // DIMSD1 and DIMSD2 take away the halves of the line (with their arrowheads).
  const double from = v.sd1 ? span / 2 : 0.0, to = v.sd2 ? span / 2 : span;
  if (arrowsInside) {
    if (from < to) piece(v.sd1 ? from : -dle1 + trim1, v.sd2 ? to : span + dle2 - trim2);
    if (textBeyond != 0 && leadTo > 0) outsidePiece(textBeyond, false);
  } else {
    // Arrowheads outside point inwards, each with a short line behind it; the end
    // the text is past comes second.
    if (arrowsShown) {
      const int first = textBeyond < 0 ? 1 : -1;
      outsidePiece(first, first < 0 ? v.sd1 : v.sd2);
      outsidePiece(-first, -first < 0 ? v.sd1 : v.sd2);
    }
    if ((v.tofl || !arrowsShown) && from < to) piece(from, to);
  }

  // Text the user moved off the line (with a leader or without the line following
  // it) comes before the arrowheads.
  const bool textFirst = userText && v.tmove != 0;
  if (hasText && textFirst) b.text(textAt, textAngle, contents, height);

  // ---- arrowheads ----
  const Vec out1 = arrowsInside ? -t : t, out2 = arrowsInside ? t : -t;
  const Vec side = Vec::polar(lineAngle).left();
  if (arrowsShown && !v.sd1) b.arrow(v.arrow1, d1, out1, side);
  if (arrowsShown && !v.sd2) b.arrow(v.arrow2, d2, out2, side);

  // ---- text and definition points ----
  if (hasText && !textFirst) b.text(textAt, textAngle, contents, height);
  if (hasText && framed)
    appendFrame(out.items, textAt, Vec::polar(textAngle), ext.width / 2 + gap, ext.height / 2 + gap, dimProps);
  b.point(p1);
  b.point(p2);
  b.point(d2);
  return std::move(out);  // out is the builder's: no copy of the items
}

}  // namespace dimgeom
