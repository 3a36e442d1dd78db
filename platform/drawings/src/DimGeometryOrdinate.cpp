// Ordinate dimensions: a leader from the feature to the leader end, running
// across the measured axis (upwards or downwards for an X datum, sideways for a
// Y datum), with a jog where the leader end is off the feature's line, and the
// distance from the origin written past the leader end. No arrowheads.
//
// Layout taken from the blocks CAD programs saved: the leader starts DIMEXO off
// the feature; a jog leaves the feature's line four arrowhead lengths before the
// leader end (but no nearer the feature than two) and reaches the leader end's
// line two arrowhead lengths before it. The text begins a gap past the leader end;
// above the line (DIMTAD not 0) the leader runs on under the whole text, on it the
// leader stops at the leader end.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "DimGeometryImpl.h"
#include "DimVarSnapshot.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"

namespace dimgeom {
namespace {

constexpr double kPi = std::numbers::pi;

// Half the extent of a w x h box turned by `boxAngle` across direction `dirAngle`.
double halfShadow(double w, double h, double boxAngle, double dirAngle) {
  const double c = std::fabs(std::cos(dirAngle - boxAngle)), s = std::fabs(std::sin(dirAngle - boxAngle));
  return (w * c + h * s) / 2;
}


}  // namespace

BlockContents computeOrdinate(const OdDbOrdinateDimension& dim) {
  BlockContents out;
  const DimVarSnapshot v(dim);
  double scale = v.dimscale();
  if (scale <= 0.0) scale = 1.0;  // 0 scales to a paper-space viewport, which a block cannot know
  const double asz = v.dimasz() * scale, exo = v.dimexo() * scale, gap = std::fabs(v.dimgap() * scale);
  const double txt = v.dimtxt() * scale;
  const int tad = v.dimtad();
  const bool framed = v.dimgap() < 0;

  const Vec feature(dim.definingPoint()), end(dim.leaderEndPoint()), origin(dim.origin());
  const bool xDatum = dim.isUsingXAxis();
  // The leader runs across the measured axis, towards the leader end.
  const Vec axis = xDatum ? Vec(0, 1) : Vec(1, 0);
  const double reach = (end - feature).dot(axis);
  const Vec d = reach < 0 ? -axis : axis;
  const Vec across = d.left();

  const double measured = std::fabs(xDatum ? feature.x - origin.x : feature.y - origin.y);
  out.measurement = measured * std::fabs(v.dimlfac());
  out.dimLinePoint = origin;  // code 10 holds the origin: left as it is

  // ---- the text: reading along the leader, left to right or upwards ----
  const OdString contents = dimensionText(dim, v, measured);
  const bool hasText = !contents.isEmpty();
  const OdDbDatabase* db = dim.database();
  const OdGiTextStyle font = db ? textStyleOf(*db, v.dimtxsty()) : OdGiTextStyle{};
  const double height = font.fixedHeight > 0 ? font.fixedHeight : txt;
  const TextExtents ext = hasText ? measureText(contents, height, font) : TextExtents{};
  const double rotationOverride = dim.textRotation();
  const double textAngle = rotationOverride != 0 ? rotationOverride : (xDatum ? kPi / 2 : 0.0);
  const Vec up = Vec::polar(xDatum ? kPi / 2 : 0.0).left();  // "above": the left of the reading direction
  const double alongHalf = halfShadow(ext.width, ext.height, textAngle, d.angle());
  const double acrossHalf = halfShadow(ext.width, ext.height, textAngle, up.angle());
  // A frame around the text keeps the gap again outside it, across the leader.
  const double clearance = framed ? 2 * gap : gap;
  Vec textAt = end + d * (gap + alongHalf);
  if (tad == 0) textAt = textAt + up * (v.dimtvp() * txt);
  else if (tad == 4) textAt = textAt - up * (clearance + acrossHalf);
  else textAt = textAt + up * (clearance + acrossHalf);
  if (!dim.isUsingDefaultTextPosition()) textAt = Vec(dim.textPosition());
  out.textPosition = textAt;

  // ---- the leader ----
  const Props lp = propsOf(v.dimclre(), v.dimlwe(), v.dimltex1());
  auto line = [&](Vec a, Vec b) {
    if ((b - a).length() <= 1e-12) return;
    Item it;
    it.kind = ItemKind::Line;
    it.p[0] = a;
    it.p[1] = b;
    it.props = lp;
    out.items.push_back(it);
  };
  const Vec start = feature + d * exo;
  // Where the leader ends: at the leader end, or under the far end of text above it.
  const Vec last = tad != 0 && hasText && dim.isUsingDefaultTextPosition() ? end + d * (gap + 2 * alongHalf) : end;
  const double offset = (end - feature).dot(across);
  if (std::fabs(offset) <= 1e-9 * std::max(1.0, std::fabs(reach))) {
    line(start, feature + d * (last - feature).dot(d));
  } else {
    const double jogFrom = std::max(std::fabs(reach) - 4 * asz, 2 * asz);
    const Vec j1 = feature + d * jogFrom;
    const Vec j2 = end - d * (2 * asz);
    line(start, j1);
    line(j1, j2);
    line(j2, last);
  }

  // ---- text, its frame and the definition points ----
  if (hasText) {
    out.items.push_back(textItem(textAt, textAngle, contents, height, v.dimtxsty(), v.dimclrt()));
    if (framed)
      appendFrame(out.items, textAt, Vec::polar(textAngle), ext.width / 2 + gap, ext.height / 2 + gap,
                  propsOf(v.dimclrd(), v.dimlwd(), v.dimltype()));
  }
  for (Vec p : {feature, end, origin}) out.items.push_back(pointItem(p));
  return out;
}

}  // namespace dimgeom
