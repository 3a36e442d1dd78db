#include "host/HostSampleDb.h"

#include <cmath>
#include <map>
#include <numbers>
#include <vector>

#include "drawings/LeaderGeometry.h"
#include "drawings/OdDbLeader.h"
#include "drawings/SampleDimensions.h"

namespace {

// The sample is laid out in millimetres for 2.5 text and arrows; an imperial
// sample is the same picture in inches for 0.18 text, a little roomier than the
// ratio of the text heights, since imperial sizes show four decimals where
// metric ones show two.
constexpr double kImperialScale = 0.1;

struct Layout {
  double k;  // model units per millimetre of the layout
  OdGePoint3d at(double x, double y) const { return {x * k, y * k, 0.0}; }
  OdGePoint3d polar(double x, double y, double degrees, double r) const {
    const double a = degrees * std::numbers::pi / 180.0;
    return at(x + r * std::cos(a), y + r * std::sin(a));
  }
};

// Ten small scenes in two rows of five, about 110 x 60 mm in all; each scene keeps
// to its own cell at the default settings of either kind of drawing (texts that
// go outside point away from their neighbours).
void layOut(OdDbDatabase& db, double k, double textHeight) {
  const Layout L{k};
  const OdString layer = L"0";
  ModelSpaceBuilder b(db);

  // Bottom row.
  {
    // A horizontal edge measured by a rotated (horizontal) dimension above it.
    b.line(L.at(2, 4), L.at(18, 4), layer);
    auto e = b.add(OdDbRotatedDimension::createFor(db), layer);
    e->setXLine1Point(L.at(2, 4));
    e->setXLine2Point(L.at(18, 4));
    e->setDimLinePoint(L.at(2, 11));
    b.makeBlock(*e);
  }
  {
    // A slanted edge measured along itself, on its upper left.
    const double x1 = 26, y1 = 2, x2 = 38, y2 = 16;
    const double len = std::hypot(x2 - x1, y2 - y1);
    b.line(L.at(x1, y1), L.at(x2, y2), layer);
    auto e = b.add(OdDbAlignedDimension::createFor(db), layer);
    e->setXLine1Point(L.at(x1, y1));
    e->setXLine2Point(L.at(x2, y2));
    e->setDimLinePoint(L.at(x1 - (y2 - y1) / len * 5, y1 + (x2 - x1) / len * 5));
    b.makeBlock(*e);
  }
  {
    // A 60 degree corner given by its vertex and a point on each leg.
    const double cx = 46, cy = 3;
    b.line(L.at(cx, cy), L.polar(cx, cy, 0, 16), layer);
    b.line(L.at(cx, cy), L.polar(cx, cy, 60, 16), layer);
    auto e = b.add(OdDb3PointAngularDimension::createFor(db), layer);
    e->setCenterPoint(L.at(cx, cy));
    e->setXLine1Point(L.polar(cx, cy, 0, 16));
    e->setXLine2Point(L.polar(cx, cy, 60, 16));
    e->setArcPoint(L.polar(cx, cy, 30, 12));
    b.makeBlock(*e);
  }
  {
    // A block whose far corner is given by its distance from the origin corner.
    const double ox = 68, oy = 3, w = 12, h = 8;
    b.line(L.at(ox, oy), L.at(ox + w, oy), layer);
    b.line(L.at(ox + w, oy), L.at(ox + w, oy + h), layer);
    b.line(L.at(ox + w, oy + h), L.at(ox, oy + h), layer);
    b.line(L.at(ox, oy + h), L.at(ox, oy), layer);
    auto e = b.add(OdDbOrdinateDimension::createFor(db), layer);
    e->setOrigin(L.at(ox, oy));
    e->setDefiningPoint(L.at(ox + w, oy + h));
    e->setLeaderEndPoint(L.at(ox + w, oy + h + 9));
    e->setUsingXAxis(true);
    b.makeBlock(*e);
  }
  {
    // A note pointing at a hole; the leader follows its text.
    const double cx = 90, cy = 5, r = 2.5;
    b.circle(L.at(cx, cy), r * k, layer);
    auto note = b.mtext(L"Note", L.at(98, 15), textHeight, OdDbMText::kMiddleLeft, layer);
    auto e = b.add(OdDbLeader::createFor(db), layer);
    for (const OdGePoint3d& v : {L.polar(cx, cy, 60, r), L.at(95, 15), L.at(97, 15)}) e->appendVertex(v);
    e->attachAnnotation(note->objectId());
    if (const OdResult r2 = recomputeLeader(*e); r2 != eOk) throw OdError(r2, "the sample leader could not be placed");
  }

  // Top row.
  {
    // Two edges meeting at 50 degrees.
    const double cx = 2, cy = 34;
    b.line(L.at(cx, cy), L.polar(cx, cy, 0, 16), layer);
    b.line(L.at(cx, cy), L.polar(cx, cy, 50, 16), layer);
    auto e = b.add(OdDb2LineAngularDimension::createFor(db), layer);
    e->setXLine1Start(L.at(cx, cy));
    e->setXLine1End(L.polar(cx, cy, 0, 16));
    e->setXLine2Start(L.at(cx, cy));
    e->setXLine2End(L.polar(cx, cy, 50, 16));
    e->setArcPoint(L.polar(cx, cy, 25, 11));
    b.makeBlock(*e);
  }
  {
    const double cx = 30, cy = 44, r = 6;
    b.circle(L.at(cx, cy), r * k, layer);
    auto e = b.add(OdDbDiametricDimension::createFor(db), layer);
    e->setChordPoint(L.polar(cx, cy, 135, r));
    e->setFarChordPoint(L.polar(cx, cy, 315, r));
    b.makeBlock(*e);
  }
  {
    const double cx = 52, cy = 36, r = 12;
    b.arc(L.at(cx, cy), r * k, 40, 140, layer);
    auto e = b.add(OdDbRadialDimension::createFor(db), layer);
    e->setCenter(L.at(cx, cy));
    e->setChordPoint(L.polar(cx, cy, 105, r));
    b.makeBlock(*e);
  }
  {
    const double cx = 79, cy = 34, r = 11, a1 = 35, a2 = 145;
    b.arc(L.at(cx, cy), r * k, a1, a2, layer);
    auto e = b.add(OdDbArcDimension::createFor(db), layer);
    e->setCenterPoint(L.at(cx, cy));
    e->setXLine1Point(L.polar(cx, cy, a1, r));
    e->setXLine2Point(L.polar(cx, cy, a2, r));
    e->setArcPoint(L.polar(cx, cy, 90, r + 6));
    e->setArcStartParam(a1 * std::numbers::pi / 180.0);
    e->setArcEndParam(a2 * std::numbers::pi / 180.0);
    b.makeBlock(*e);
  }
  {
    // A flat arc whose centre lies far below the cell: the dimension starts from a
    // stand-in centre beside the radial line and jogs on its way to the arc.
    const double cx = 102, cy = 12, r = 40, a = 84;
    b.arc(L.at(cx, cy), r * k, 78, 98, layer);
    const double ux = std::cos(a * std::numbers::pi / 180.0), uy = std::sin(a * std::numbers::pi / 180.0);
    auto along = [&](double d, double side) { return L.at(cx + ux * d - uy * side, cy + uy * d + ux * side); };
    auto e = b.add(VxHugeRadius::createFor(db), layer);
    e->setCenter(L.at(cx, cy));
    e->setChordPoint(along(r, 0));
    e->setOverrideCenter(along(r - 18, 5));
    e->setJogPoint(along(r - 11, 2.5));
    b.makeBlock(*e);
  }
}

OdDbDatabasePtr makeSample(bool metric) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, metric);
  // The note's text as high as the dimensions' of a new drawing of that kind.
  layOut(*db, metric ? 1.0 : kImperialScale, db->dimtxt());
  return db;
}

struct Sample {
  OdDbDatabasePtr db;
  bool metric = false;
  // Samples made before a change of MEASUREMENT: a dialog may still hold one, so
  // they live until the source is dropped.
  std::vector<OdDbDatabasePtr> former;
};

std::map<const OdDbDatabase*, Sample>& samples() {
  static std::map<const OdDbDatabase*, Sample> m;
  return m;
}

}  // namespace

OdDbDatabase* UpdateSampleDb(const OdDbDatabase* source) {
  Sample& s = samples()[source];
  const bool metric = source && source->getMEASUREMENT() != 0;
  if (s.db.isNull() || s.metric != metric) {
    if (!s.db.isNull()) s.former.push_back(s.db);
    s.db = makeSample(metric);
    s.metric = metric;
  }
  if (source) {
    OdDbDatabase& db = *s.db;
    db.setHeaderInt("$LUNITS", 70, source->getLUNITS());
    db.setHeaderInt("$LUPREC", 70, source->getLUPREC());
    db.setHeaderInt("$AUNITS", 70, source->getAUNITS());
    db.setHeaderInt("$AUPREC", 70, source->getAUPREC());
    db.setHeaderInt("$MEASUREMENT", 70, source->getMEASUREMENT());
  }
  return s.db.get();
}

void hostDropSampleDb(const OdDbDatabase* source) { samples().erase(source); }
