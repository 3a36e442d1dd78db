#include "drawings/DimGeometry.h"

#include <algorithm>
#include <array>
#include <optional>
#include <cmath>
#include <numbers>

#include "DimBlockWriter.h"
#include "DimGeometryImpl.h"
#include "DimVarSnapshot.h"
#include "drawings/OdDmUtil.h"
#include "EntityTags.h"
#include "drawings/DimText.h"
#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbText.h"

namespace dimgeom {

const StyleValues& styleValues(const OdDbDimStyleTableRecord& style) {
  struct Entry {
    const OdDbDimStyleTableRecord* style = nullptr;
    uint64_t styleRevision = 0, headerRevision = 0;
    StyleValues values;
  };
  // A few styles at a time: drawings mostly use one or two (and their children).
  static thread_local std::array<Entry, 4> cache;
  static thread_local std::size_t nextSlot = 0;
  const OdDbObject* header = style.database() ? style.database()->header() : nullptr;
  const uint64_t headerRevision = header ? header->revision() : 0;
  for (Entry& e : cache)
    if (e.style == &style && e.styleRevision == style.revision() && e.headerRevision == headerRevision) return e.values;
  Entry& e = cache[nextSlot];
  nextSlot = (nextSlot + 1) % cache.size();
  e.style = &style;
  e.styleRevision = style.revision();
  e.headerRevision = headerRevision;
  for (std::size_t row = 0; row < e.values.size(); ++row) e.values[row] = style.dimVar(row);
  return e.values;
}

double Vec::length() const { return std::hypot(x, y); }

Vec Vec::unit() const {
  const double l = length();
  return l > 0 ? Vec(x / l, y / l) : Vec(1, 0);
}

double Vec::angle() const { return std::atan2(y, x); }

Vec Vec::polar(double radians) { return {std::cos(radians), std::sin(radians)}; }

}  // namespace dimgeom

// ---- writing the block ---------------------------------------------------------

namespace {

using namespace dimgeom;

constexpr int kDimensionOrder[] = {280, 2, 10, 11, 12, 70, 71, 72, 41, 42, 73, 74, 75, 1, 53, 51, 210, 3};
const DxfSubclass kDimension{"AcDbDimension", kDimensionOrder};
// Sets a point of the dimension when it moved by more than rounding noise, so that
// an unchanged value keeps its spelling in the file.
void updatePoint(OdDbDimension& dim, int code, Vec p) {
  const OdGePoint3d old = entitytags::getPoint(dim, kDimension, code);
  const double tolerance = 1e-9 * std::max({1.0, std::fabs(old.x), std::fabs(old.y)});
  if (std::fabs(old.x - p.x) <= tolerance && std::fabs(old.y - p.y) <= tolerance) return;
  entitytags::setPoint(dim, kDimension, code, OdGePoint3d{p.x, p.y, old.z});
}

}  // namespace

OdResult recomputeDimBlock(OdDbDimension& dim) {
  OdDbDatabase* db = dim.database();
  if (!db) return eNotInDatabase;
  if (!dim.isWriteEnabled()) return eNotOpenForWrite;
  const int type = dim.dimensionType();
  const bool linear = dim.isKindOf(OdDbAlignedDimension::desc()) && (type == 0 || type == 1);
  const bool ordinate = type == 6 && dim.isKindOf(OdDbOrdinateDimension::desc());
  const bool radius = type == 4 && dim.isKindOf(OdDbRadialDimension::desc());
  const bool diameter = type == 3 && dim.isKindOf(OdDbDiametricDimension::desc());
  const bool jogged = dim.isKindOf(VxHugeRadius::desc());
  const bool angular = isAngularKind(dim);
  if (!linear && !ordinate && !radius && !diameter && !jogged && !angular) return eNotImplementedYet;
  try {
    const BlockContents contents =
        ordinate   ? computeOrdinate(static_cast<const OdDbOrdinateDimension&>(dim))
        : radius   ? computeRadial(static_cast<const OdDbRadialDimension&>(dim))
        : diameter ? computeDiametric(static_cast<const OdDbDiametricDimension&>(dim))
        : jogged   ? computeJogged(static_cast<const VxHugeRadius&>(dim))
        : angular  ? computeAngular(dim)
                   : computeLinear(static_cast<const OdDbAlignedDimension&>(dim));

    OdDbObjectId blockId = dim.dimBlockId();
    if (blockId.isNull()) {
      blockId = odCreateBlock(*db, L"*D");
      auto made = odOpen<OdDbBlockTableRecord>(blockId);
      entitytags::setText(dim, kDimension, 2, db->codec().encode(made->getName().view()));
    }
    auto block = odOpen<OdDbBlockTableRecord>(blockId, OdDb::kForWrite);
    if (!block) return eKeyNotFound;
    writeBlockItems(*db, *block, dim, contents.items);

    dim.assertWriteEnabled();
    updatePoint(dim, 10, contents.dimLinePoint);
    if (dim.isUsingDefaultTextPosition()) updatePoint(dim, 11, contents.textPosition);
    if (db->version() >= DxfVersion::R2000) {
      const std::optional<double> old = dim.measurement();
      if (!old || std::fabs(*old - contents.measurement) > 1e-9 * std::max(1.0, contents.measurement))
        entitytags::setDouble(dim, kDimension, 42, contents.measurement);
    }
  } catch (const OdError& e) {
    return e.code();
  }
  return eOk;
}

namespace dimgeom {

Arrow arrowOf(const OdDbObjectId& block) {
  Arrow a{block, false};
  if (block.isNull()) return a;
  const OdString name = OdDmUtil::arrowName(block);
  for (const wchar_t* n : {L"_ArchTick", L"_Oblique", L"_None", L"_Small", L"_Integral", L"_DotSmall"})
    if (name.iCompare(n) == 0) a.atTip = true;
  return a;
}

double readable(double a) {
  const double pi = std::numbers::pi;
  a = std::remainder(a, 2 * pi);  // (-pi, pi]
  if (a > pi / 2 + 1e-9) a -= pi;
  else if (a <= -pi / 2 + 1e-9) a += pi;
  return a;
}

Props propsOf(const OdCmColor& color, OdDb::LineWeight lineWeight, const OdDbObjectId& linetype) {
  Props p;
  p.color = color;
  p.lineWeight = lineWeight;
  p.linetype = linetype;
  return p;
}

Item lineItem(Vec a, Vec b, const Props& props) {
  Item it;
  it.kind = ItemKind::Line;
  it.p[0] = a;
  it.p[1] = b;
  it.props = props;
  return it;
}

Item arrowItem(const Arrow& arrow, Vec tip, Vec dir, Vec side, double size, const Props& props) {
  Item it;
  it.props = props;
  if (arrow.block.isNull()) {
    const Vec base = tip - dir * size;
    it.kind = ItemKind::Solid;
    it.p[0] = base + side * (size / 6);
    it.p[1] = base - side * (size / 6);
    it.p[2] = tip;
    it.p[3] = tip;
    it.props.linetype = OdDbObjectId();
  } else {
    it.kind = ItemKind::Arrow;
    it.p[0] = tip;
    it.block = arrow.block;
    it.scale = size;
    it.angle = dir.angle();
  }
  return it;
}

Item textItem(Vec at, double angle, const OdString& contents, double height, const OdDbObjectId& textStyle,
              const OdCmColor& color) {
  Item it;
  it.kind = ItemKind::Text;
  it.p[0] = at;
  it.angle = angle;
  it.contents = contents;
  it.height = height;
  it.textStyle = textStyle;
  it.props.color = color;
  return it;
}

Item pointItem(Vec at) {
  Item it;
  it.kind = ItemKind::Point;
  it.p[0] = at;
  it.props.color.setColorIndex(0);
  return it;
}

void appendFrame(std::vector<Item>& items, Vec centre, Vec along, double halfAlong, double halfAcross,
                 const Props& props) {
  const Vec across = along.left();
  const Vec corner[4] = {centre - along * halfAlong - across * halfAcross, centre + along * halfAlong - across * halfAcross,
                         centre + along * halfAlong + across * halfAcross, centre - along * halfAlong + across * halfAcross};
  for (int i = 0; i < 4; ++i) items.push_back(lineItem(corner[i], corner[(i + 1) % 4], props));
}

Fit fitBoth(const DimVars& v, double room, double textNeed, double arrowsNeed) {
  Fit f;
  if (room >= textNeed + arrowsNeed) return f;
  const bool textFits = room >= textNeed, arrowsFit = room >= arrowsNeed;
  switch (v.atfit) {
    case 0: f.textInside = f.arrowsInside = false; break;
    case 1:  // arrowheads go first
      f.arrowsInside = false;
      f.textInside = textFits;
      break;
    case 2:  // the text goes first
      f.textInside = false;
      f.arrowsInside = arrowsFit;
      break;
    default:  // whichever fits best
      if (textFits) f.arrowsInside = false;
      else if (arrowsFit) f.textInside = false;
      else f.textInside = f.arrowsInside = false;
  }
  if (v.tix) {
    // Text kept inside: the arrowheads give way.
    f.textInside = true;
    f.arrowsInside = false;
  }
  return f;
}

}  // namespace dimgeom
