// Inside the dimension geometry engine: the entities of a dimension block as
// plain values, computed by one function per dimension kind and written into
// the drawing by one writer, and the text measurements both need.
#pragma once

#include <vector>

#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDimVarSource.h"
#include "drawings/OdGiTextMetrics.h"

namespace dimgeom {

// 2D vector arithmetic on the x and y of points (dimension blocks are flat).
struct Vec {
  double x = 0, y = 0;
  Vec() = default;
  Vec(double x_, double y_) : x(x_), y(y_) {}
  explicit Vec(const OdGePoint3d& p) : x(p.x), y(p.y) {}
  Vec operator+(Vec o) const { return {x + o.x, y + o.y}; }
  Vec operator-(Vec o) const { return {x - o.x, y - o.y}; }
  Vec operator*(double k) const { return {x * k, y * k}; }
  Vec operator-() const { return {-x, -y}; }
  double dot(Vec o) const { return x * o.x + y * o.y; }
  double length() const;
  Vec unit() const;    // (1, 0) for a zero vector
  Vec left() const { return {-y, x}; }
  double angle() const;  // radians, atan2
  OdGePoint3d point() const { return OdGePoint3d{x, y, 0.0}; }
  static Vec polar(double radians);
};

// An arrowhead as a dimension variable names it.
struct Arrow {
  OdDbObjectId block;   // null: the closed filled arrow, drawn as a SOLID
  bool atTip = false;   // drawn around the point it marks (ticks, dots): the line runs up to it
};
Arrow arrowOf(const OdDbObjectId& block);

// The direction that text along angle `a` reads in: left to right, or upwards.
double readable(double a);

// The dimension variables that the geometry reads, once per dimension; sizes are
// scaled by DIMSCALE (gap keeps its sign: negative draws a frame).
struct DimVars {
  double scale, asz, exo, exe, gap, txt, dle, tvp, fxl, lfac, cen, jogang;
  int tad, just, atfit, tmove;
  bool tih, toh, tix, soxd, tofl, se1, se2, sd1, sd2, fxlon;
  Arrow arrow1, arrow2;
  OdCmColor clrd, clre, clrt;
  OdDb::LineWeight lwd, lwe;
  OdDbObjectId ltype, ltex1, ltex2, txsty;

  explicit DimVars(const OdDimVarSource& d) {
    scale = d.dimscale();
    if (scale <= 0.0) scale = 1.0;  // 0 scales to a paper-space viewport, which a block cannot know
    asz = d.dimasz() * scale;
    exo = d.dimexo() * scale;
    exe = d.dimexe() * scale;
    gap = d.dimgap() * scale;
    txt = d.dimtxt() * scale;
    dle = d.dimdle() * scale;
    tvp = d.dimtvp();
    fxl = d.dimfxl() * scale;
    lfac = d.dimlfac();
    cen = d.dimcen() * scale;
    jogang = d.dimjogang();
    tad = d.dimtad();
    just = d.dimjust();
    atfit = d.dimatfit();
    tmove = d.dimtmove();
    tih = d.dimtih();
    toh = d.dimtoh();
    tix = d.dimtix();
    soxd = d.dimsoxd();
    tofl = d.dimtofl();
    se1 = d.dimse1();
    se2 = d.dimse2();
    sd1 = d.dimsd1();
    sd2 = d.dimsd2();
    fxlon = d.dimfxlon();
    if (d.dimsah()) {
      arrow1 = arrowOf(d.dimblk1());
      arrow2 = arrowOf(d.dimblk2());
    } else {
      arrow1 = arrow2 = arrowOf(d.dimblk());
    }
    clrd = d.dimclrd();
    clre = d.dimclre();
    clrt = d.dimclrt();
    lwd = d.dimlwd();
    lwe = d.dimlwe();
    ltype = d.dimltype();
    ltex1 = d.dimltex1();
    ltex2 = d.dimltex2();
    txsty = d.dimtxsty();
  }
};

// What each kind of block entity takes from the dimension variables.
struct Props {
  OdCmColor color;
  OdDb::LineWeight lineWeight = OdDb::kLnWtByBlock;
  OdDbObjectId linetype;  // null: none written (the block entity follows its layer)
};

enum class ItemKind { Line, Arc, Solid, Arrow, Text, Point };

// One entity of the block.
struct Item {
  ItemKind kind = ItemKind::Line;
  Vec p[4];              // Line: start, end. Solid: corners. Arc: centre. Arrow, Text, Point: p[0]
  double radius = 0.0;   // Arc
  double startAngle = 0.0, endAngle = 0.0;  // Arc: counter-clockwise, radians
  OdDbObjectId block;    // Arrow: the arrow block
  double scale = 1.0;    // Arrow
  double angle = 0.0;    // Arrow: rotation. Text: direction (radians)
  OdString contents;     // Text, MTEXT codes included
  double height = 0.0;   // Text
  OdDbObjectId textStyle;
  Props props;
};

struct BlockContents {
  BlockContents() { items.reserve(12); }  // a block seldom holds more: no regrowth while it is built
  std::vector<Item> items;
  Vec textPosition;      // the text's middle (code 11)
  Vec dimLinePoint;      // where the definition point on the dimension line belongs (code 10)
  double measurement = 0.0;  // code 42: the measured length after DIMLFAC
};

// Where text and arrowheads go when `room` along the dimension line is short of
// what both need (DIMATFIT, DIMTIX); unchanged (both inside) when they fit.
struct Fit {
  bool textInside = true, arrowsInside = true;
};
Fit fitBoth(const DimVars& v, double room, double textNeed, double arrowsNeed);

// The block's items, built alike for every kind of dimension.
Props propsOf(const OdCmColor& color, OdDb::LineWeight lineWeight, const OdDbObjectId& linetype);
Item lineItem(Vec a, Vec b, const Props& props);
// An arrowhead of `size` with its tip at `tip`, pointing along `dir`: a SOLID for
// the closed filled arrow (its corners start on `side`), else an insert of the block.
Item arrowItem(const Arrow& arrow, Vec tip, Vec dir, Vec side, double size, const Props& props);
Item textItem(Vec at, double angle, const OdString& contents, double height, const OdDbObjectId& textStyle,
              const OdCmColor& color);
// A definition point (the writer puts it on the Defpoints layer).
Item pointItem(Vec at);
// The frame a negative DIMGAP draws: four lines around `centre`, `halfAlong` along
// `along` and `halfAcross` across it.
void appendFrame(std::vector<Item>& items, Vec centre, Vec along, double halfAlong, double halfAcross, const Props& props);

// ---- text measurement ----

// Extents of dimension text, in drawing units, before any rotation.
struct TextExtents {
  double width = 0.0;
  double height = 0.0;  // of the lines together (a stack counts with its parts)
};

// The text style of dimension text (the drawing's "Standard" for a null id). Its
// fixed height, when not 0, replaces DIMTXT.
OdGiTextStyle textStyleOf(const OdDbDatabase& db, const OdDbObjectId& textStyle);
// MTEXT contents laid out as a dimension shows them (one line per \P or \X),
// measured by odTextMetrics().
TextExtents measureText(const OdString& contents, double height, const OdGiTextStyle& style);

// ---- the kinds ----

// Rotated and aligned dimensions.
BlockContents computeLinear(const OdDbAlignedDimension& dim);

// Two-line and three-point angular dimensions and arc-length dimensions.
bool isAngularKind(const OdDbDimension& dim);
BlockContents computeAngular(const OdDbDimension& dim);
// Ordinate dimensions.
BlockContents computeOrdinate(const OdDbOrdinateDimension& dim);
// Radius and diameter dimensions.
BlockContents computeRadial(const OdDbRadialDimension& dim);
BlockContents computeDiametric(const OdDbDiametricDimension& dim);
// Jogged radius dimensions (large radial).
BlockContents computeJogged(const VxHugeRadius& dim);

}  // namespace dimgeom
