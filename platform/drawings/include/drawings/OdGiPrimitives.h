// Drawing primitives: a drawing as flat 2D geometry in world units, every colour
// and lineweight already resolved, ready for a picture, a preview or a view.
// Curves that stay circular are arcs and circles; everything else that is curved
// (ellipses, splines, arcs under a non-uniform block scale, polyline bulges) comes
// as polylines of short chords.
#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "drawings/OdDbGeometry.h"
#include "drawings/OdString.h"

struct OdGiColor {
  uint8_t r = 0, g = 0, b = 0;
  // ACI 7 and the foreground colour: white on a dark background, black on a light
  // one, so the sink decides; r, g, b then hold white.
  bool foreground = false;
  static OdGiColor fromAci(int aci);
  friend bool operator==(const OdGiColor&, const OdGiColor&) = default;
};

struct OdGiTraits {
  OdGiColor color;
  int lineWeight = 25;  // hundredths of a millimetre; ByLayer, ByBlock and Default resolved
};

struct OdGiLine {
  OdGiTraits traits;
  OdGePoint2d start, end;
};

// Counter-clockwise from startAngle to endAngle (radians, endAngle > startAngle,
// at most a full turn more).
struct OdGiArc {
  OdGiTraits traits;
  OdGePoint2d center;
  double radius = 0, startAngle = 0, endAngle = 0;
};

struct OdGiCircle {
  OdGiTraits traits;
  OdGePoint2d center;
  double radius = 0;
};

struct OdGiPolyline {
  OdGiTraits traits;
  std::vector<OdGePoint2d> points;
  bool closed = false;
};

// Filled; the outline closes itself.
struct OdGiPolygon {
  OdGiTraits traits;
  std::vector<OdGePoint2d> points;
};

struct OdGiPoint {
  OdGiTraits traits;
  OdGePoint2d position;
};

// One line of text. Glyph space: x along the baseline, y up, one unit = height.
struct OdGiText {
  enum Align { kLeft, kCenter, kRight };
  OdGiTraits traits;
  OdGePoint2d position;  // on the baseline, at the left end, centre or right end
  Align align = kLeft;
  double height = 0;       // capital height
  double rotation = 0;     // baseline direction, radians counter-clockwise
  double widthFactor = 1;  // glyph widths relative to the font's
  double oblique = 0;      // slant of the glyphs, radians clockwise from upright
  bool backward = false;   // mirrored along the baseline, about position
  bool upsideDown = false; // mirrored across the baseline
  // > 0: the line is stretched or squeezed to exactly this length (aligned and
  // fitted text).
  double fitLength = 0;
  OdString text;         // plain characters, no formatting codes or line breaks
  OdGePoint2d box[4];    // estimated outline: baseline start, baseline end, top end, top start
};

class OdGiSink {
public:
  virtual ~OdGiSink() = default;
  virtual void line(const OdGiLine& p) = 0;
  virtual void arc(const OdGiArc& p) = 0;
  virtual void circle(const OdGiCircle& p) = 0;
  virtual void polyline(const OdGiPolyline& p) = 0;
  virtual void polygon(const OdGiPolygon& p) = 0;
  virtual void point(const OdGiPoint& p) = 0;
  virtual void text(const OdGiText& p) = 0;
};

struct OdGiExtents {
  OdGePoint2d min{1e300, 1e300}, max{-1e300, -1e300};
  bool isValid() const { return min.x <= max.x && min.y <= max.y; }
  void add(const OdGePoint2d& p);
  void add(const OdGiExtents& e);
};

// The extents of each primitive: arcs by their actual sweep, text by its box.
OdGiExtents odGiExtentsOf(const OdGiLine& p);
OdGiExtents odGiExtentsOf(const OdGiArc& p);
OdGiExtents odGiExtentsOf(const OdGiCircle& p);
OdGiExtents odGiExtentsOf(const OdGiPolyline& p);
OdGiExtents odGiExtentsOf(const OdGiPolygon& p);
OdGiExtents odGiExtentsOf(const OdGiPoint& p);
OdGiExtents odGiExtentsOf(const OdGiText& p);

// Keeps the primitives in the order given, which is the order they paint in.
class OdGiRecorder : public OdGiSink {
public:
  using Primitive = std::variant<OdGiLine, OdGiArc, OdGiCircle, OdGiPolyline, OdGiPolygon, OdGiPoint, OdGiText>;

  void line(const OdGiLine& p) override { m_items.emplace_back(p); }
  void arc(const OdGiArc& p) override { m_items.emplace_back(p); }
  void circle(const OdGiCircle& p) override { m_items.emplace_back(p); }
  void polyline(const OdGiPolyline& p) override { m_items.emplace_back(p); }
  void polygon(const OdGiPolygon& p) override { m_items.emplace_back(p); }
  void point(const OdGiPoint& p) override { m_items.emplace_back(p); }
  void text(const OdGiText& p) override { m_items.emplace_back(p); }

  const std::vector<Primitive>& items() const { return m_items; }
  // Primitives of one kind, in order.
  template <class T>
  std::vector<T> all() const {
    std::vector<T> out;
    for (const auto& i : m_items)
      if (auto p = std::get_if<T>(&i)) out.push_back(*p);
    return out;
  }
  OdGiExtents extents() const;
  void replay(OdGiSink& sink) const;

private:
  std::vector<Primitive> m_items;
};
