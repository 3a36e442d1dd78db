// Writes the project's generated drawings with our own drawing database, every
// dimension block made by our own recompute:
//
//   make_drawings sample OUT.dxf       the sample that scripts/run opens and the
//                                      console sessions use (samples/dimstyles.dxf)
//   make_drawings bench-dims OUT.dxf   5,000 lines and 5,000 linear and aligned
//                                      dimensions for the DXF bench (bench/run)
//
// The same arguments give the same file on every run.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"
#include "drawings/OdDmUtil.h"
#include "drawings/SampleDimensions.h"

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kInch = 0.03937007874016;  // 1/25.4 as drawings store it

double rad(double degrees) { return degrees * kPi / 180.0; }

struct P {
  double x = 0, y = 0;
  P operator+(P o) const { return {x + o.x, y + o.y}; }
  P operator-(P o) const { return {x - o.x, y - o.y}; }
  P operator*(double k) const { return {x * k, y * k}; }
  double dot(P o) const { return x * o.x + y * o.y; }
  double length() const { return std::hypot(x, y); }
  P unit() const { return *this * (1.0 / length()); }
  static P polar(double degrees, double r) { return {r * std::cos(rad(degrees)), r * std::sin(rad(degrees))}; }
  operator OdGePoint3d() const { return OdGePoint3d{x, y, 0.0}; }
};

// ---- tables --------------------------------------------------------------------

// A new record of `table`, named, with the tags every record of the kind starts with.
template <class Record>
OdSmartPtr<Record> newRecord(OdDbDatabase& db, OdDbObjectId tableId, const char* dxfName, const char* marker,
                             const OdString& name) {
  auto table = odOpen<OdDbSymbolTable>(tableId, OdDb::kForWrite);
  OdSmartPtr<Record> rec = Record::createObject();
  rec->setDxfName(dxfName);
  db.addOdDbObject(rec.get(), tableId);
  DxfTagList& t = rec->tagsForWrite();
  t.emplace_back(100, "AcDbSymbolTableRecord");
  t.emplace_back(100, marker);
  t.emplace_back(2, db.codec().encode(name.view()));
  t.emplace_back(70, "0");
  table->add(rec.get());
  return rec;
}

void addLinetype(OdDbDatabase& db, const OdString& name, const char* description, std::initializer_list<double> dashes) {
  auto rec = newRecord<OdDbLinetypeTableRecord>(db, db.getLinetypeTableId(), "LTYPE", "AcDbLinetypeTableRecord", name);
  DxfTagList& t = rec->tagsForWrite();
  double total = 0;
  for (double d : dashes) total += std::fabs(d);
  t.emplace_back(3, description);
  t.emplace_back(72, "65");
  t.emplace_back(73, std::to_string(dashes.size()));
  t.emplace_back(40, dxfFormatDouble(total));
  for (double d : dashes) {
    t.emplace_back(49, dxfFormatDouble(d));
    t.emplace_back(74, "0");
  }
}

// A layer made like layer 0 (same plot style, plotting on) with its own colour,
// linetype and lineweight.
void addLayer(OdDbDatabase& db, const OdString& name, int color, const char* linetype, int lineweight) {
  auto layers = odOpen<OdDbLayerTable>(db.getLayerTableId(), OdDb::kForWrite);
  auto zero = odOpen<OdDbLayerTableRecord>(layers->getAt(L"0"));
  auto rec = newRecord<OdDbLayerTableRecord>(db, db.getLayerTableId(), "LAYER", "AcDbLayerTableRecord", name);
  DxfTagList& t = rec->tagsForWrite();
  t.emplace_back(62, std::to_string(color));
  t.emplace_back(6, linetype);
  t.emplace_back(370, std::to_string(lineweight));
  // The plot style of layer 0: every layer of a drawing names one.
  for (const DxfTag& tag : zero->tags())
    if (tag.code == 390) t.push_back(tag);
}

// A dimension style whose variables start as `base`'s (the built-in imperial
// values when base is null).
OdDbDimStyleTableRecordPtr addDimStyle(OdDbDatabase& db, const OdString& name, const OdDbObjectId& base) {
  OdDbObjectId id = odOpen<OdDbDimStyleTable>(db.getDimStyleTableId())->getAt(name);
  OdDbDimStyleTableRecordPtr rec =
      id.isNull() ? newRecord<OdDbDimStyleTableRecord>(db, db.getDimStyleTableId(), "DIMSTYLE", "AcDbDimStyleTableRecord", name)
                  : odOpen<OdDbDimStyleTableRecord>(id, OdDb::kForWrite);
  if (!base.isNull()) {
    auto from = odOpen<OdDbDimStyleTableRecord>(base);
    for (std::size_t row = 0; row < kDimVarCatalogueSize; ++row) rec->setDimVar(row, from->dimVar(row));
  }
  rec->setDimtxsty(odOpen<OdDbTextStyleTable>(db.getTextStyleTableId())->getAt(L"Standard"));
  return rec;
}

OdDbObjectId arrow(OdDbDatabase& db, const wchar_t* name) { return OdDmUtil::getArrowId(name, &db); }

// ---- the sample ------------------------------------------------------------------

// Two small metric parts dimensioned with several styles, child styles and
// per-dimension overrides, plus a legend row for each named style.
OdDbDatabasePtr makeSample() {
  OdDbDatabasePtr pDb = OdDbDatabase::createNew(DxfVersion::R2018, /*metric=*/true);
  OdDbDatabase& db = *pDb;
  db.setHeaderDouble("$LTSCALE", 40, 1.0);
  // Angles to two decimals: listings of angular variables then show that the
  // drawing's precision is applied, not a fixed one.
  db.setHeaderInt("$AUPREC", 70, 2);

  addLinetype(db, L"CENTER", "Center ____ _ ____ _ ____", {12.0, -3.0, 2.0, -3.0});
  addLayer(db, L"Part", 7, "Continuous", 50);
  addLayer(db, L"Center", 1, "CENTER", 18);
  addLayer(db, L"Dimensions", 5, "Continuous", 18);
  addLayer(db, L"Notes", 7, "Continuous", 25);

  // The styles. ISO-25 is the new metric drawing's own; the others start from
  // the imperial values (Standard) or from ISO-25.
  const OdDbObjectId standard = addDimStyle(db, L"Standard", OdDbObjectId())->objectId();
  const OdDbObjectId iso = addDimStyle(db, L"ISO-25", OdDbObjectId())->objectId();
  {
    // Standard leads the table, where drawings that began imperial keep it, so
    // that style lists start with it.
    auto table = odOpen<OdDbDimStyleTable>(db.getDimStyleTableId(), OdDb::kForWrite);
    auto& records = table->records();
    const auto at = std::find(records.begin(), records.end(), standard);
    std::rotate(records.begin(), at, at + 1);
  }
  {
    // Millimetres shown as feet and inches: DIMLFAC turns them into inches.
    auto s = addDimStyle(db, L"Architectural", iso);
    s->setDimlunit(4);
    s->setDimlfac(kInch);
    s->setDimdec(4);
    s->setDimzin(0);
    s->setDimdsep('.');
    s->setDimblk(arrow(db, L"_ArchTick"));
    s->setDimtad(1);
    s->setDimdle(1.25);
    s->setDimtih(false);
    s->setDimtoh(false);
  }
  {
    auto s = addDimStyle(db, L"Mechanical", iso);
    s->setDimtol(true);
    s->setDimtp(0.1);
    s->setDimtm(0.05);
    s->setDimdec(3);
    s->setDimtdec(3);
    s->setDimzin(0);
    s->setDimtzin(0);
    s->setDimtfac(0.7);
    s->setDimtolj(1);
    s->setDimdsep('.');
    s->setDimalt(true);
    s->setDimaltf(kInch);
    s->setDimaltd(3);
    s->setDimalttd(3);
  }
  {
    auto s = addDimStyle(db, L"Annotative", iso);
    s->setDimscale(0.0);
    s->setAnnotative(true);
  }
  // Child styles: what ISO-25 does differently for one kind of dimension.
  addDimStyle(db, L"ISO-25$0", iso)->setDimblk(arrow(db, L"_Open30"));
  {
    auto s = addDimStyle(db, L"ISO-25$2", iso);
    s->setDimaunit(1);
    s->setDimadec(2);
  }
  {
    auto s = addDimStyle(db, L"ISO-25$3", iso);
    s->setDimtoh(true);
    s->setDimcen(-2.5);
  }
  {
    auto s = addDimStyle(db, L"ISO-25$4", iso);
    s->setDimtoh(true);
    s->setDimcen(0.0);
  }
  addDimStyle(db, L"ISO-25$7", iso)->setDimldrblk(arrow(db, L"_Dot"));

  // ISO-25 current, with settings that differ from it: the drawing opens with
  // style overrides, as after a user set DIMASZ, DIMTXT and DIMCLRD by hand.
  db.setDimstyleData(iso);
  db.setDimasz(3.0);
  db.setDimtxt(3.5);
  OdCmColor red;
  red.setColorIndex(1);
  db.setDimclrd(red);

  ModelSpaceBuilder d(db);
  const OdString part = L"Part", center = L"Center", dims = L"Dimensions", notes = L"Notes";
  auto centreCross = [&](P c, double half) {
    d.line(c - P{half, 0}, c + P{half, 0}, center);
    d.line(c - P{0, half}, c + P{0, half}, center);
  };
  // New dimensions take the current style; each names its own.
  auto dimension = [&](auto dim, const OdString& styleName) {
    auto e = d.add(dim, dims);
    e->setDimensionStyle(d.style(styleName));
    return e;
  };
  auto linear = [&](P p1, P p2, P base, const OdString& styleName, double angleDeg = 0.0) {
    auto e = dimension(OdDbRotatedDimension::createFor(db), styleName);
    e->setXLine1Point(p1);
    e->setXLine2Point(p2);
    e->setDimLinePoint(base);
    e->setRotation(rad(angleDeg));
    return e;
  };

  // --- Part A: a plate 180 x 110 with a bore, four holes, a V-notch, a slanted
  // right edge and a rounded corner.
  const double W = 180.0, H = 110.0, R = 25.0;
  const P V{170.0, H};  // the sharp corner the round replaces
  const P A{W, 0.0};    // the foot of the slanted edge
  const P edge = (V - A).unit();
  const P inward{-edge.y, edge.x};  // into the plate
  // The round's centre: R below the top edge and R inside the slanted edge.
  const double t = (R - inward.dot(P{0, H - R} - A)) / inward.x;
  const P C{t, H - R};
  const P tanSlant = C - inward * R, tanTop{C.x, H};
  const double slantDeg = std::atan2(-inward.y, -inward.x) * 180.0 / kPi;

  d.line({0, 0}, A, part);
  d.line(A, tanSlant, part);
  d.arc(C, R, slantDeg, 90, part);
  d.line(tanTop, {100, H}, part);
  d.line({100, H}, {90, 98}, part);
  d.line({90, 98}, {80, H}, part);
  d.line({80, H}, {0, H}, part);
  d.line({0, H}, {0, 0}, part);
  const P bore{90.0, 55.0};
  d.circle(bore, 20, part);
  centreCross(bore, 24);
  const P holes[] = {{15.0, 15.0}, {160.0, 15.0}, {15.0, 95.0}, {160.0, 95.0}};
  for (P h : holes) {
    d.circle(h, 4, part);
    centreCross(h, 6);
  }

  // Hole positions chained along the bottom and the left, overall sizes outside.
  d.makeBlock(*linear({0, 0}, {15, 15}, {0, -10}, L"ISO-25"), "$0");
  d.makeBlock(*linear({15, 15}, bore, {0, -10}, L"ISO-25"), "$0");
  d.makeBlock(*linear(bore, {160, 15}, {0, -10}, L"ISO-25"), "$0");
  {
    auto e = linear({0, 0}, A, {0, -24}, L"ISO-25");
    e->setDimtxt(3.5);
    d.makeBlock(*e, "$0");
  }
  d.makeBlock(*linear({0, 0}, {15, 15}, {-10, 0}, L"ISO-25", 90), "$0");
  {
    auto e = linear({15, 15}, {15, 95}, {-10, 0}, L"ISO-25", 90);
    e->setDimtol(true);
    e->setDimtp(0.2);
    e->setDimtm(0.2);
    d.makeBlock(*e, "$0");
  }
  d.makeBlock(*linear({0, 0}, {0, H}, {-24, 0}, L"Annotative", 90), "$0");

  {
    // The notch's angle, measured at its bottom.
    auto e = dimension(OdDb3PointAngularDimension::createFor(db), L"ISO-25");
    e->setXLine1Point(P{100, H});
    e->setXLine2Point(P{80, H});
    e->setCenterPoint(P{90, 98});
    e->setArcPoint(P{90, 119});
    d.makeBlock(*e, "$2");
  }
  {
    // The angle between the slanted edge and the bottom edge produced beyond the
    // corner: the first line is the slanted edge, the second runs along the
    // bottom from the corner (its points are stored under 15 and 10).
    auto e = dimension(OdDb2LineAngularDimension::createFor(db), L"ISO-25");
    e->setXLine1Start(A);
    e->setXLine1End(V);
    e->setXLine2End(A);
    e->setXLine2Start(A + P{20, 0});
    e->setArcPoint(A + P::polar(45, 18));
    d.makeBlock(*e, "$2");
  }
  {
    auto e = dimension(OdDbRadialDimension::createFor(db), L"ISO-25");
    e->setCenter(C);
    e->setChordPoint(C + P::polar(65, R));
    e->setTextPosition(C + P::polar(65, R + 12));
    d.makeBlock(*e, "$4");
  }
  auto diameter = [&](P c, double r, double angleDeg, P textAt, const OdString& styleName) {
    auto e = dimension(OdDbDiametricDimension::createFor(db), styleName);
    e->setChordPoint(c + P::polar(angleDeg, r));
    e->setFarChordPoint(c - P::polar(angleDeg, r));
    e->setTextPosition(textAt);
    return e;
  };
  d.makeBlock(*diameter(bore, 20, 35, {118, 78}, L"Mechanical"), "$3");
  {
    auto e = diameter(holes[2], 4, 75, {22, 126}, L"ISO-25");
    e->setDimensionText(L"4x <>");
    d.makeBlock(*e, "$3");
  }

  {
    // A note pointing at the plate's face; the leader's arrow comes from the
    // style (ISO-25$7: a dot), here with a smaller size of its own.
    auto e = d.add(OdDbLeader::createFor(db), dims);
    e->setDimensionStyle(iso);
    for (P v : {P{45, 80}, P{50, 126}, P{54, 126}}) e->appendVertex(v);
    e->setDimasz(1.5);
    d.mtext(L"PLATE t=8", {55, 126}, 2.5, OdDbMText::kMiddleLeft, notes);
  }

  // --- Part B: a strip with a curved top edge and a slanted end, dimensioned by
  // ordinates from its lower left corner.
  const P O{0.0, -100.0};
  auto p = [&](double x, double y) { return O + P{x, y}; };
  const double chord = 110.0, sag = 8.0;
  const double RB = (chord / 2) * (chord / 2) / (2 * sag) + sag / 2;
  const P CB = p(chord / 2, 30 + sag - RB);
  const double half = std::asin((chord / 2) / RB) * 180.0 / kPi;
  d.line(p(0, 0), p(100, 0), part);
  d.line(p(100, 0), p(110, 30), part);
  d.arc(CB, RB, 90 - half, 90 + half, part);
  d.line(p(0, 30), p(0, 0), part);
  for (double x : {20.0, 55.0, 90.0}) {
    d.circle(p(x, 15), 4, part);
    centreCross(p(x, 15), 6);
  }

  auto ordinate = [&](P feature, P leaderEnd, bool xAxis) {
    auto e = dimension(OdDbOrdinateDimension::createFor(db), L"ISO-25");
    e->setOrigin(O);
    e->setDefiningPoint(feature);
    e->setLeaderEndPoint(leaderEnd);
    e->setUsingXAxis(xAxis);
    d.makeBlock(*e, "$6");
  };
  for (auto [x, y] : {std::pair{0.0, 0.0}, {20.0, 15.0}, {55.0, 15.0}, {90.0, 15.0}, {100.0, 0.0}})
    ordinate(p(x, y), p(x, -12), true);
  for (auto [x, y] : {std::pair{0.0, 0.0}, {20.0, 15.0}, {0.0, 30.0}}) ordinate(p(x, y), p(-12, y), false);
  {
    // The curved edge's length, 8 above it.
    auto e = dimension(OdDbArcDimension::createFor(db), L"ISO-25");
    e->setCenterPoint(CB);
    e->setXLine1Point(CB + P::polar(90 - half, RB));
    e->setXLine2Point(CB + P::polar(90 + half, RB));
    e->setArcPoint(CB + P::polar(90, RB + 8));
    e->setArcStartParam(rad(90 - half));
    e->setArcEndParam(rad(90 + half));
    d.makeBlock(*e);
  }
  {
    // The slanted end, 10 to its right, without the style's inch values.
    auto e = dimension(OdDbAlignedDimension::createFor(db), L"Mechanical");
    const P p1 = p(100, 0), p2 = p(110, 30);
    const P dir = (p2 - p1).unit();
    e->setXLine1Point(p1);
    e->setXLine2Point(p2);
    e->setDimLinePoint(p1 + P{-dir.y, dir.x} * -10.0);
    e->setDimalt(false);
    d.makeBlock(*e);
  }

  // --- Legend: the same 60 mm measured with each named style.
  const double LX = 235.0, LY = 118.0;
  d.text(L"DIMENSION STYLES", {LX, LY + 12}, 5, notes);
  struct Row {
    const wchar_t* label;
    const wchar_t* style;
  };
  const Row rows[] = {
      {L"ISO-25 (current; linear dimensions use ISO-25$0)", L"ISO-25"},
      {L"Standard (imperial sizes, DIMSCALE 12 override)", L"Standard"},
      {L"Architectural (feet and inches)", L"Architectural"},
      {L"Mechanical (tolerance and inches)", L"Mechanical"},
      {L"Annotative (DIMSCALE 0)", L"Annotative"},
  };
  for (int i = 0; i < 5; ++i) {
    const double y = LY - 26 * i;
    d.text(rows[i].label, {LX, y}, 3, notes);
    d.line({LX, y - 18}, {LX + 60, y - 18}, notes);
    auto e = linear({LX, y - 18}, {LX + 60, y - 18}, {0, y - 10}, rows[i].style);
    if (i == 1) e->setDimscale(12.0);
    d.makeBlock(*e, "$0");
  }
  d.mtext(L"Child styles of ISO-25:\\P"
          L"ISO-25$0  linear: open 30\u00b0 arrows\\P"
          L"ISO-25$2  angular: degrees and minutes\\P"
          L"ISO-25$3  diameter: horizontal text, centre lines\\P"
          L"ISO-25$4  radius: horizontal text, no centre mark\\P"
          L"ISO-25$7  leader: dot arrow",
          {LX, LY - 26 * 5 + 4}, 3, OdDbMText::kTopLeft, notes);
  d.text(L"PART A  PLATE", {0, 140}, 5, notes);
  d.text(L"PART B  STRIP", {0, -45}, 5, notes);
  return pDb;
}

// ---- the bench drawing ---------------------------------------------------------------

// 5,000 lines and 5,000 dimensions on a 100-column grid, which keeps the extents
// plausible and every dimension distinct, so that no two blocks are the same.
OdDbDatabasePtr makeBenchDims() {
  constexpr int kLines = 5000, kDims = 5000;
  OdDbDatabasePtr pDb = OdDbDatabase::createNew(DxfVersion::R2018);
  OdDbDatabase& db = *pDb;
  ModelSpaceBuilder d(db);
  for (int i = 0; i < kLines; ++i) {
    const double x = (i % 100) * 20.0, y = (i / 100) * 20.0;
    d.line({x, y}, {x + 10.0 + (i % 7), y + (i % 5)}, L"0");
  }
  for (int i = 0; i < kDims; ++i) {
    const double x = (i % 100) * 20.0, y = 1200.0 + (i / 100) * 20.0;
    const P p1{x, y}, p2{x + 8.0 + (i % 9), y + (i % 4)};
    if (i % 2 == 0) {
      auto e = d.add(OdDbRotatedDimension::createFor(db), L"0");
      e->setXLine1Point(p1);
      e->setXLine2Point(p2);
      e->setDimLinePoint(P{x, y + 5.0});
      e->setRotation(i % 4 == 0 ? 0.0 : kPi / 2);
      d.makeBlock(*e);
    } else {
      auto e = d.add(OdDbAlignedDimension::createFor(db), L"0");
      const P dir = (p2 - p1).unit();
      e->setXLine1Point(p1);
      e->setXLine2Point(p2);
      e->setDimLinePoint(p1 + P{-dir.y, dir.x} * 4.0);
      d.makeBlock(*e);
    }
  }
  return pDb;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || (std::strcmp(argv[1], "sample") != 0 && std::strcmp(argv[1], "bench-dims") != 0)) {
    std::fprintf(stderr, "usage: make_drawings sample|bench-dims OUT.dxf\n");
    return 2;
  }
  try {
    OdDbDatabasePtr db = std::strcmp(argv[1], "sample") == 0 ? makeSample() : makeBenchDims();
    db->writeDxfFile(argv[2]);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "make_drawings: %s\n", e.what());
    return 1;
  }
  std::printf("wrote %s\n", argv[2]);
  return 0;
}
