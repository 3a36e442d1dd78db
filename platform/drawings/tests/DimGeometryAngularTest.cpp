// The drawn geometry of angular (three-point and two-line) and arc-length
// dimensions: layouts worked out by hand from dimensions of real drawings with
// their points and variables changed (the metric style of those drawings:
// arrowheads 2.5, extension line offset 0.625 and extension 1.25, gap 0.625,
// text 2.5), and agreement with the blocks CAD programs saved.
#include <gtest/gtest.h>

#include "DimGeometryTestSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "drawings/DimGeometry.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbText.h"
#include "drawings/OdDmUtil.h"

namespace fs = std::filesystem;

namespace {
using namespace dimgeomtest;

constexpr double kPi = std::numbers::pi;

OdGePoint3d polar(double r, double a) { return {r * std::cos(a), r * std::sin(a), 0}; }

#define EXPECT_ANGLE(actual, expected) \
  EXPECT_LT(std::fabs(std::remainder((actual) - (expected), 2 * kPi)), 1e-9) << (actual) * 180 / kPi << " degrees"

// Sets the tag with `code` after the subclass marker `marker` (and the one after
// it, its y).
void setPoint(OdDbDimension& d, const char* marker, int code, double x, double y) {
  DxfTagList& t = d.tagsForWrite();
  bool in = false;
  for (size_t i = 0; i + 1 < t.size(); ++i) {
    if (t[i].code == 100) in = t[i].text == marker;
    if (in && t[i].code == code) {
      t[i].set(exact(x));
      t[i + 1].set(exact(y));
      return;
    }
  }
  FAIL() << "no " << code << " in " << marker;
}

// A right angle: vertex at the origin, points 10 along each axis, the arc `arc` out
// on the bisector.
void rightAngle(OdDb3PointAngularDimension& d, double arc) {
  setPoint(d, "AcDb3PointAngularDimension", 15, 0, 0);
  setPoint(d, "AcDb3PointAngularDimension", 13, 10, 0);
  setPoint(d, "AcDb3PointAngularDimension", 14, 0, 10);
  setPoint(d, "AcDbDimension", 10, arc * std::cos(kPi / 4), arc * std::sin(kPi / 4));
}

// An arc-length dimension of the arc of `radius` about the origin from 0 to
// `sweep`, its dimension arc `at` from the centre.
void aboutOrigin(OdDbArcDimension& d, double radius, double sweep, double at) {
  setPoint(d, "AcDbArcDimension", 15, 0, 0);
  setPoint(d, "AcDbArcDimension", 13, radius, 0);
  setPoint(d, "AcDbArcDimension", 14, radius * std::cos(sweep), radius * std::sin(sweep));
  setPoint(d, "AcDbDimension", 10, at * std::cos(sweep / 2), at * std::sin(sweep / 2));
}

// Both corners of a closed filled arrowhead's back lie a sixth of its length from
// the point `back`, across the line from it to the tip.
void expectArrow(const Prim& solid, OdGePoint3d tip, OdGePoint3d back) {
  ASSERT_EQ(solid.kind, "SOLID");
  EXPECT_AT(solid.p[2], tip.x, tip.y);
  const OdGePoint3d mid{(solid.p[0].x + solid.p[1].x) / 2, (solid.p[0].y + solid.p[1].y) / 2, 0};
  EXPECT_AT(mid, back.x, back.y);
  EXPECT_NEAR(dist(solid.p[0], solid.p[1]), 2 * 2.5 / 6, 1e-9);
  const double across = (solid.p[1].x - solid.p[0].x) * (tip.x - back.x) + (solid.p[1].y - solid.p[0].y) * (tip.y - back.y);
  EXPECT_NEAR(across, 0, 1e-9);
}

}  // namespace

// A right angle: vertex at the origin, points 10 along each axis, the arc 20 out.
TEST(DimGeometryAngular, ThreePointAngleWorkedOutByHand) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("DomCR__ACadSharp__sample_AC1015_ascii.dxf"));
  auto d = first<OdDb3PointAngularDimension>(*db);
  ASSERT_TRUE(d);
  rightAngle(*d, 20);
  d->setDimtad(1);
  d->setDimtih(false);
  // The arrowheads' backs sit on the arc, 2.5 from their tips.
  const double back = 2 * std::asin(1.25 / 20);

  {
    SCOPED_TRACE("text above the arc");
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE ARC SOLID SOLID MTEXT POINT POINT POINT POINT");
    // Radial extension lines, from 0.625 past the points to 1.25 past the arc.
    EXPECT_AT(b[0].p[0], 10.625, 0);
    EXPECT_AT(b[0].p[1], 21.25, 0);
    EXPECT_AT(b[1].p[0], 0, 10.625);
    EXPECT_AT(b[1].p[1], 0, 21.25);
    // The arc stops at the arrowheads' backs, which sit on it.
    EXPECT_AT(b[2].p[0], 0, 0);
    EXPECT_DOUBLE_EQ(b[2].radius, 20);
    EXPECT_ANGLE(b[2].startAngle, back);
    EXPECT_ANGLE(b[2].endAngle, kPi / 2 - back);
    expectArrow(b[3], polar(20, 0), polar(20, back));
    expectArrow(b[4], polar(20, kPi / 2), polar(20, kPi / 2 - back));
    // The text on the bisector, outside the arc (above it as it reads, at -45
    // degrees) by the gap and half its height.
    EXPECT_EQ(b[5].plain, "90°");
    EXPECT_ANGLE(b[5].angle, -kPi / 4);
    const double out = std::hypot(b[5].p[0].x, b[5].p[0].y);
    EXPECT_NEAR(b[5].p[0].x, b[5].p[0].y, 1e-9);
    EXPECT_GT(out, 20 + 0.625 + 1.25 - 1e-9);
    EXPECT_LT(out, 20 + 0.625 + 1.3);
    // Vertex, the two points, the arc point.
    EXPECT_AT(b[6].p[0], 0, 0);
    EXPECT_AT(b[7].p[0], 10, 0);
    EXPECT_AT(b[8].p[0], 0, 10);
    EXPECT_AT(b[9].p[0], 20 * std::cos(kPi / 4), 20 * std::sin(kPi / 4));
    EXPECT_DOUBLE_EQ(d->measurement().value_or(0), kPi / 2);
    EXPECT_AT(d->textPosition(), b[5].p[0].x, b[5].p[0].y);
  }
  {
    SCOPED_TRACE("text on the arc: the arc breaks around it, symmetrically");
    d->setDimtad(0);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE ARC ARC SOLID SOLID MTEXT POINT POINT POINT POINT");
    EXPECT_AT(b[6].p[0], 20 * std::cos(kPi / 4), 20 * std::sin(kPi / 4));
    EXPECT_ANGLE(b[2].startAngle, back);
    EXPECT_ANGLE(b[3].endAngle, kPi / 2 - back);
    EXPECT_NEAR(b[2].endAngle + b[3].startAngle, kPi / 2, 1e-9);
    EXPECT_LT(b[2].endAngle, kPi / 4 - 0.05);
  }
  {
    SCOPED_TRACE("the arc point beyond the vertex measures the reflex angle");
    setPoint(*d, "AcDbDimension", 10, -20 * std::cos(kPi / 4), -20 * std::sin(kPi / 4));
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    EXPECT_DOUBLE_EQ(d->measurement().value_or(0), 3 * kPi / 2);
    const auto b = primitives(d->dimBlockId());
    ASSERT_GE(b.size(), 3u);
    ASSERT_EQ(b[2].kind, "ARC");
    EXPECT_ANGLE(b[2].startAngle, kPi / 2 + back);
  }
}

// Too short an arc for its text and arrowheads: the arrowheads go outside and
// point in, each with an arrowhead's length of arc behind it.
TEST(DimGeometryAngular, ArrowheadsOutsideAShortArc) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("DomCR__ACadSharp__sample_AC1015_ascii.dxf"));
  auto d = first<OdDb3PointAngularDimension>(*db);
  ASSERT_TRUE(d);
  rightAngle(*d, 3);
  d->setDimtofl(false);
  d->setDimatfit(3);
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  const auto b = primitives(d->dimBlockId());
  ASSERT_EQ(kinds(b), "LINE LINE ARC ARC SOLID SOLID MTEXT POINT POINT POINT POINT");
  // The points lie beyond the arc: the extension lines run inwards.
  EXPECT_AT(b[0].p[0], 9.375, 0);
  EXPECT_AT(b[0].p[1], 1.75, 0);
  const double len = 2 * std::asin(1.25 / 3);
  EXPECT_ANGLE(b[2].startAngle, -2 * len);
  EXPECT_ANGLE(b[2].endAngle, -len);
  EXPECT_ANGLE(b[3].startAngle, kPi / 2 + len);
  EXPECT_ANGLE(b[3].endAngle, kPi / 2 + 2 * len);
  expectArrow(b[4], polar(3, 0), polar(3, -len));
  expectArrow(b[5], polar(3, kPi / 2), polar(3, kPi / 2 + len));

  d->setDimtofl(true);
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  EXPECT_EQ(kinds(primitives(d->dimBlockId())), "LINE LINE ARC ARC ARC SOLID SOLID MTEXT POINT POINT POINT POINT")
      << "DIMTOFL draws the arc between the extension lines too";
}

// Two lines that do not reach the arc: the sector is the one holding the arc
// point, the extension lines continue the lines from their nearer ends, and the
// first arrowhead marks the sector's start.
TEST(DimGeometryAngular, TwoLineAngleTakesTheSectorOfTheArcPoint) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("DomCR__ACadSharp__sample_AC1015_ascii.dxf"));
  auto d = first<OdDb2LineAngularDimension>(*db);
  ASSERT_TRUE(d);
  // First line (5,5)-(10,10) on the diagonal, second (5,0)-(10,0) on the x axis.
  setPoint(*d, "AcDb2LineAngularDimension", 13, 5, 5);
  setPoint(*d, "AcDb2LineAngularDimension", 14, 10, 10);
  setPoint(*d, "AcDbDimension", 10, 5, 0);
  setPoint(*d, "AcDb2LineAngularDimension", 15, 10, 0);
  setPoint(*d, "AcDb2LineAngularDimension", 16, 20 * std::cos(kPi / 8), 20 * std::sin(kPi / 8));
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  auto b = primitives(d->dimBlockId());
  ASSERT_EQ(kinds(b), "LINE LINE ARC SOLID SOLID MTEXT POINT POINT POINT POINT POINT");
  EXPECT_DOUBLE_EQ(d->measurement().value_or(0), kPi / 4);
  // The sector starts on the x axis (counter-clockwise to the diagonal).
  EXPECT_AT(b[0].p[0], 10.625, 0);
  EXPECT_AT(b[0].p[1], 21.25, 0);
  const double diag = std::sqrt(200.0);
  EXPECT_AT(b[1].p[0], (diag + 0.625) * std::cos(kPi / 4), (diag + 0.625) * std::sin(kPi / 4));
  EXPECT_AT(b[2].p[0], 0, 0);
  EXPECT_ANGLE(b[2].startAngle, 2 * std::asin(1.25 / 20));
  // The arc point, then the lines' points as the entity lists them.
  EXPECT_AT(b[6].p[0], 20 * std::cos(kPi / 8), 20 * std::sin(kPi / 8));
  EXPECT_AT(b[7].p[0], 10, 0);
  EXPECT_AT(b[8].p[0], 5, 5);
  EXPECT_AT(b[9].p[0], 10, 10);
  EXPECT_AT(b[10].p[0], 5, 0);
  // The definition point stays the second line's start.
  EXPECT_AT(d->xLine2Start(), 5, 0);

  // On the other side of the diagonal the angle is its supplement.
  setPoint(*d, "AcDb2LineAngularDimension", 16, 20 * std::cos(kPi / 2), 20 * std::sin(kPi / 2));
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  EXPECT_DOUBLE_EQ(d->measurement().value_or(0), 3 * kPi / 4);
  b = primitives(d->dimBlockId());
  ASSERT_EQ(b[2].kind, "ARC");
  EXPECT_ANGLE(b[2].startAngle, kPi / 4 + 2 * std::asin(1.25 / 20));

  // Separate arrowheads: the first marks where the sector starts, here on the
  // second line. The arc 5 out is 3.93 long, too short for the text with the
  // open arrowhead and the tick; text moved away with a leader takes no room on
  // it, so the arrowheads (2.5, and half the tick's 2.5) stay inside. That text
  // reads horizontally.
  d->setDimsah(true);
  d->setDimblk1(OdDmUtil::getArrowId(L"_Integral", db.get()));
  d->setDimblk2(OdDmUtil::getArrowId(L"_Open90", db.get()));
  d->setDimatfit(3);
  d->setDimtih(false);
  d->setDimtoh(false);
  d->setDimtmove(1);
  setPoint(*d, "AcDb2LineAngularDimension", 16, 5 * std::cos(kPi / 8), 5 * std::sin(kPi / 8));
  d->setTextPosition({30, 30, 0});
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  b = primitives(d->dimBlockId());
  ASSERT_EQ(kinds(b), "LINE ARC INSERT INSERT MTEXT POINT POINT POINT POINT POINT") << "the x axis reaches the arc";
  EXPECT_ANGLE(b[1].startAngle, 0) << "up to the tick";
  EXPECT_ANGLE(b[1].endAngle, kPi / 4 - 2 * std::asin(1.25 / 5)) << "up to the open arrowhead's back";
  EXPECT_EQ(upper(b[2].block), "_INTEGRAL");
  EXPECT_AT(b[2].p[0], 5, 0);
  EXPECT_EQ(upper(b[3].block), "_OPEN90");
  EXPECT_AT(b[3].p[0], 5 * std::cos(kPi / 4), 5 * std::sin(kPi / 4));
  EXPECT_AT(b[4].p[0], 30, 30);
  EXPECT_ANGLE(b[4].angle, 0);
}

// An arc of radius 100 about the origin from 0 to 60 degrees, dimensioned 110
// out: under a right angle the extension lines run parallel, along the bisector.
TEST(DimGeometryAngular, ArcLengthExtensionLines) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__example_2000.dxf"));
  auto d = first<OdDbArcDimension>(*db);
  ASSERT_TRUE(d);
  aboutOrigin(*d, 100, kPi / 3, 110);
  d->setDimtofl(false);
  d->setDimarcsym(2);
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  auto b = primitives(d->dimBlockId());
  ASSERT_EQ(kinds(b).substr(0, 22), "LINE LINE ARC SOLID SO");
  EXPECT_NEAR(d->measurement().value_or(0), 100 * kPi / 3, 1e-9) << "measured on the arc";
  // From (100, 0) along the bisector: |(100, 0) + t (cos 30, sin 30)| = 110 at
  // t = sqrt(b^2 - 100^2 + 110^2) - b, b = 100 cos 30.
  const double c = std::cos(kPi / 6), s = std::sin(kPi / 6), bb = 100 * c;
  const double t = std::sqrt(bb * bb - 10000 + 12100) - bb;
  EXPECT_AT(b[0].p[0], 100 + 0.625 * c, 0.625 * s);
  EXPECT_AT(b[0].p[1], 100 + (t + 1.25) * c, (t + 1.25) * s);
  EXPECT_AT(b[1].p[0], 50 + 0.625 * c, 100 * std::sin(kPi / 3) + 0.625 * s);
  // The arc runs between the crossings, less the arrowheads.
  const double crossing = std::atan2(t * s, 100 + t * c), back = 2 * std::asin(1.25 / 110);
  EXPECT_DOUBLE_EQ(b[2].radius, 110);
  EXPECT_ANGLE(b[2].startAngle, crossing + back);
  EXPECT_ANGLE(b[2].endAngle, kPi / 3 - crossing - back);

  // Over a right angle they are radial: an arc of radius 10 from 0 to 90 degrees.
  setPoint(*d, "AcDbArcDimension", 13, 10, 0);
  setPoint(*d, "AcDbArcDimension", 14, 0, 10);
  setPoint(*d, "AcDbDimension", 10, 15 * std::cos(kPi / 4), 15 * std::sin(kPi / 4));
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  b = primitives(d->dimBlockId());
  EXPECT_NEAR(d->measurement().value_or(0), 5 * kPi, 1e-9);
  EXPECT_AT(b[0].p[0], 10.625, 0);
  EXPECT_AT(b[0].p[1], 16.25, 0);
  EXPECT_AT(b[1].p[1], 0, 16.25);
}

// Recomputed blocks of the angular dimensions of drawings CAD programs saved
// match the saved ones: every entity's kind, and the arcs and text within 1% of
// the text height. So do those of arc lengths with their symbol before the text
// (in the "txt" font and in Arial, framed and not, reading several ways).
TEST(DimGeometryAngular, AgreesWithSavedBlocks) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  const std::pair<const char*, bool> drawings[] = {
      {"DomCR__ACadSharp__sample_AC1015_ascii.dxf", false}, {"DomCR__ACadSharp__sample_AC1032_ascii.dxf", false},
      {"LibreDWG__libredwg__2018-TS1.dxf", false},          {"gdsestimating__dxf-parser__api-cw750-details.dxf", false},
      {"LibreDWG__libredwg__example_2000.dxf", true},       {"LibreDWG__libredwg__example_2018.dxf", true},
      {"mozman__ezdxf__examples_dxf-uncommon.dxf", true},   {"zamtmn__zcad__entities.dxf", true}};
  for (auto [file, arcLengths] : drawings) {
    SCOPED_TRACE(file);
    OdDbDatabasePtr saved = OdDbDatabase::readDxfFile(testsupport::corpus(file));
    OdDbDatabasePtr ours = OdDbDatabase::readDxfFile(testsupport::corpus(file));
    int compared = 0;
    for (const OdDbObjectId& id : odOpen<OdDbBlockTableRecord>(saved->getModelSpaceId())->entityIds()) {
      auto theirs = odOpen<OdDbDimension>(id);
      if (!theirs || (arcLengths ? !theirs->isKindOf(OdDbArcDimension::desc())
                                 : !(theirs->isKindOf(OdDb2LineAngularDimension::desc()) ||
                                     theirs->isKindOf(OdDb3PointAngularDimension::desc()))))
        continue;
      const double h = theirs->dimtxt() * (theirs->dimscale() > 0 ? theirs->dimscale() : 1.0);
      auto mine = odOpen<OdDbDimension>(ours->getOdDbObjectId(id.getHandle()), OdDb::kForWrite);
      ASSERT_EQ(recomputeDimBlock(*mine), eOk);
      const auto a = primitives(theirs->dimBlockId()), b = primitives(mine->dimBlockId());
      ASSERT_EQ(kinds(b), kinds(a)) << id.getHandle().ascii().toUtf8();
      for (size_t i = 0; i < a.size(); ++i) {
        for (size_t k = 0; k < a[i].p.size(); ++k) EXPECT_LT(dist(a[i].p[k], b[i].p[k]), 0.01 * h) << a[i].kind << " " << i;
        if (a[i].kind != "ARC") continue;
        EXPECT_NEAR(a[i].radius, b[i].radius, 0.01 * h);
        EXPECT_LT(std::fabs(std::remainder(a[i].startAngle - b[i].startAngle, 2 * kPi)) * a[i].radius, 0.01 * h);
        EXPECT_LT(std::fabs(std::remainder(a[i].endAngle - b[i].endAngle, 2 * kPi)) * a[i].radius, 0.01 * h);
      }
      ++compared;
    }
    EXPECT_GT(compared, 0);
  }
}

// The arc of radius 100 from 0 to 60 degrees dimensioned 110 out measures "105":
// digits of the "txt" font, whose ink is as high as the text, 2.5; the frame of
// a negative gap shows how wide the ink is. The symbol is a half circle of 0.8
// that height over the text's direction: before the text its centre is one
// height short of the ink and 0.4 of it below the middle, above it is centred
// 0.7 of it up; none with DIMARCSYM 2. Text on the arc breaks the arc around
// the symbol too.
TEST(DimGeometryAngular, ArcLengthSymbolBeforeAboveOrNone) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__example_2000.dxf"));
  auto d = first<OdDbArcDimension>(*db);
  ASSERT_TRUE(d);
  aboutOrigin(*d, 100, kPi / 3, 110);
  d->setDimdec(0);
  for (int tad : {1, 0})
    for (int16_t placement : {0, 1, 2}) {
      SCOPED_TRACE("DIMTAD " + std::to_string(tad) + ", DIMARCSYM " + std::to_string(placement));
      d->setDimtad(static_cast<int16_t>(tad));
      d->setDimgap(tad ? -0.625 : 0.625);
      d->setDimarcsym(placement);
      ASSERT_EQ(recomputeDimBlock(*d), eOk);
      const auto b = primitives(d->dimBlockId());
      const auto text = std::find_if(b.begin(), b.end(), [](const Prim& p) { return p.kind == "MTEXT"; });
      const auto sym = std::find_if(b.begin(), b.end(), [](const Prim& p) { return p.kind == "ARC" && p.radius < 100; });
      ASSERT_NE(text, b.end());
      if (placement == 2) {
        EXPECT_EQ(sym, b.end());
        continue;
      }
      ASSERT_NE(sym, b.end());
      EXPECT_NEAR(sym->radius, 2.0, 1e-9);
      EXPECT_ANGLE(sym->startAngle, text->angle);
      EXPECT_ANGLE(sym->endAngle, text->angle + kPi);
      const double dx = sym->p[0].x - text->p[0].x, dy = sym->p[0].y - text->p[0].y;
      const double c = std::cos(text->angle), s = std::sin(text->angle);
      if (tad) {
        const double halfInk = dist((text + 1)->p[0], (text + 1)->p[1]) / 2 - 0.625;
        EXPECT_NEAR(dx * c + dy * s, placement == 0 ? -(halfInk + 2.5) : 0.0, 1e-9);
        EXPECT_NEAR(dy * c - dx * s, placement == 0 ? -1.0 : 1.75, 1e-9);
        continue;
      }
      const double at = std::atan2(sym->p[0].y, sym->p[0].x);
      for (const Prim& p : b)
        if (p.kind == "ARC" && p.radius > 100) {
          EXPECT_FALSE(p.startAngle < at && at < p.endAngle) << p.startAngle;
        }
    }
}

// An arc of radius 2 over 2 radians measures "4", dimensioned 4.6 out: its 9.2
// hold the text and both arrowheads (5), but not with the symbol before the text
// (1.8 text heights more): then the arrowheads go outside, their backs off the arc.
TEST(DimGeometryAngular, ArcLengthSymbolTakesRoomForFit) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__example_2000.dxf"));
  auto d = first<OdDbArcDimension>(*db);
  ASSERT_TRUE(d);
  aboutOrigin(*d, 2, 2.0, 4.6);
  d->setDimdec(0);
  d->setDimatfit(3);
  d->setDimtix(false);
  for (int16_t placement : {2, 0, 1}) {
    d->setDimarcsym(placement);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    int arrowheads = 0;
    for (const Prim& p : primitives(d->dimBlockId()))
      if (p.kind == "SOLID") {
        const double back = std::atan2(p.p[0].y + p.p[1].y, p.p[0].x + p.p[1].x);
        EXPECT_EQ(back > 0 && back < 2, placement != 0) << "DIMARCSYM " << placement;
        ++arrowheads;
      }
    EXPECT_EQ(arrowheads, 2);
  }
}
