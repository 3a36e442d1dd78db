// The drawn geometry of radius and diameter dimensions: layouts worked out by hand
// from the dimensions of a real drawing with their variables and points changed
// (text along the radial line or on a landing, inside or outside the circle,
// centre marks and lines), and agreement with the blocks CAD programs saved.
#include <gtest/gtest.h>

#include "DimGeometryTestSupport.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "drawings/DimGeometry.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbText.h"
#include "drawings/OdDmUtil.h"

namespace fs = std::filesystem;

namespace {
using namespace dimgeomtest;

constexpr double kPi = std::numbers::pi;

// Clears or sets bit 128 of code 70: text at its default place or where the user put it.
void setUserText(OdDbDimension& d, bool user) {
  for (DxfTag& tag : d.tagsForWrite())
    if (tag.code == 70) {
      tag.set(std::to_string(user ? (tag.toInt() | 128) : (tag.toInt() & ~128)));
      return;
    }
}

// A SOLID arrowhead's tip and the direction it points in.
OdGePoint3d tipOf(const Prim& s) { return s.p[2]; }
double pointing(const Prim& s) {
  const double bx = (s.p[0].x + s.p[1].x) / 2, by = (s.p[0].y + s.p[1].y) / 2;
  return std::atan2(s.p[2].y - by, s.p[2].x - bx);
}

double angleBetween(double a, double b) { return std::fabs(std::remainder(a - b, 2 * kPi)); }

}  // namespace

// The radius of a real drawing (style Standard: arrows 0.18, gap 0.09, text 0.18,
// centre mark 0.09) moved to centre (0, 0), chord point (10, 0), its text at the
// default place, along the line (DIMTOH off) and above it (DIMTAD 1).
TEST(DimGeometryRadial, TextAlongTheLineOutsideTheCircle) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__2018-TS1.dxf"));
  auto d = first<OdDbRadialDimension>(*db);
  ASSERT_TRUE(d);
  setPoint(*d, 10, 0, 0);
  setPoint(*d, 15, 10, 0);
  setUserText(*d, false);
  d->setDimtoh(false);
  d->setDimtad(1);
  {
    SCOPED_TRACE("a centre mark; the arrowhead points in, the line leads out a gap past the text");
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE MTEXT SOLID LINE LINE POINT POINT");
    EXPECT_AT(b[0].p[1], 10.18, 0);
    const double tx = b[1].p[0].x, end = b[0].p[0].x;
    // The text begins two arrowheads and a gap past the circle; the line ends a gap past it.
    EXPECT_NEAR(tx - (10 + 0.36 + 0.09), end - 0.09 - tx, 1e-9);
    EXPECT_GT(end, 10.45 + 0.5);
    EXPECT_GT(b[1].p[0].y, 0.09 + 0.05) << "above the line";
    EXPECT_NEAR(b[1].angle, 0.0, 1e-12);
    EXPECT_EQ(b[1].text.rfind("\\A1;R10", 0), 0u) << b[1].text;
    EXPECT_AT(tipOf(b[2]), 10, 0);
    EXPECT_NEAR(angleBetween(pointing(b[2]), kPi), 0.0, 1e-9);
    EXPECT_AT(b[3].p[0], -0.09, 0);
    EXPECT_AT(b[4].p[1], 0, 0.09);
    EXPECT_AT(d->textPosition(), tx, b[1].p[0].y);
    EXPECT_DOUBLE_EQ(d->measurement().value_or(0), 10.0);
  }
  {
    SCOPED_TRACE("negative DIMCEN: centre lines from twice its size to that far past the circle");
    d->setDimcen(-0.09);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE MTEXT SOLID LINE LINE LINE LINE LINE LINE POINT POINT");
    EXPECT_AT(b[5].p[0], 0.18, 0);
    EXPECT_AT(b[5].p[1], 10.09, 0);
    EXPECT_AT(b[8].p[0], 0, -0.18);
    EXPECT_AT(b[8].p[1], 0, -10.09);
  }
  {
    SCOPED_TRACE("DIMCEN 0: no mark");
    d->setDimcen(0);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    EXPECT_EQ(kinds(primitives(d->dimBlockId())), "LINE MTEXT SOLID POINT POINT");
  }
  {
    SCOPED_TRACE("DIMTOFL: the line from the centre instead of the mark");
    d->setDimcen(0.09);
    d->setDimtofl(true);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE MTEXT LINE SOLID POINT POINT");
    EXPECT_AT(b[2].p[0], 0, 0);
    EXPECT_AT(b[2].p[1], 10, 0);
  }
  {
    SCOPED_TRACE("chord point up and to the left: the text reads left to right, above is still to its left");
    d->setDimtofl(false);
    setPoint(*d, 15, 10 * std::cos(kPi * 5 / 6), 10 * std::sin(kPi * 5 / 6));
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE MTEXT SOLID LINE LINE POINT POINT");
    EXPECT_NEAR(angleBetween(b[1].angle, -kPi / 6), 0.0, 1e-9);
    const OdGePoint3d t = b[1].p[0];
    const double along = t.x * std::cos(kPi * 5 / 6) + t.y * std::sin(kPi * 5 / 6);
    const double across = -t.x * std::sin(-kPi / 6) + t.y * std::cos(-kPi / 6);
    EXPECT_GT(along, 10.45);
    EXPECT_GT(across, 0.09 + 0.05);
  }
}

// The same radius with horizontal text (DIMTIH, DIMTOH, DIMTAD 0) placed by the
// user: a landing an arrowhead long, level with the text's middle, a gap from it.
TEST(DimGeometryRadial, HorizontalTextOnALanding) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__2018-TS1.dxf"));
  auto d = first<OdDbRadialDimension>(*db);
  ASSERT_TRUE(d);
  setPoint(*d, 10, 0, 0);
  setPoint(*d, 15, -6, -8);
  d->setDimtih(true);
  d->setDimtoh(true);
  d->setDimtad(0);
  auto leaderChecks = [](const std::vector<Prim>& b, size_t solid) {
    // The leader leaves the landing's end and stops at the back of the arrowhead,
    // which points along it to the chord point.
    const OdGePoint3d elbow = b[0].p[1];
    EXPECT_AT(b[1].p[0], elbow.x, elbow.y);
    const double dir = std::atan2(-8 - elbow.y, -6 - elbow.x);
    EXPECT_AT(b[1].p[1], -6 - 0.18 * std::cos(dir), -8 - 0.18 * std::sin(dir));
    EXPECT_AT(tipOf(b[solid]), -6, -8);
    EXPECT_NEAR(angleBetween(pointing(b[solid]), dir), 0.0, 1e-9);
  };
  {
    SCOPED_TRACE("inside: the landing on the chord point's side, no centre mark");
    d->setTextPosition({3, -1, 0});
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE MTEXT SOLID POINT POINT");
    EXPECT_AT(b[2].p[0], 3, -1);
    EXPECT_NEAR(b[2].angle, 0.0, 1e-12);
    EXPECT_NEAR(b[0].p[0].y, -1, 1e-12);
    EXPECT_NEAR(b[0].p[0].x - b[0].p[1].x, 0.18, 1e-12);
    EXPECT_LT(b[0].p[0].x, 3 - 0.09);
    leaderChecks(b, 3);
    EXPECT_AT(d->textPosition(), 3, -1);
  }
  {
    SCOPED_TRACE("DIMTMOVE 1: the user's point is where landing and leader meet, the text beyond");
    d->setDimtmove(1);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE MTEXT SOLID POINT POINT");
    EXPECT_AT(b[0].p[1], 3, -1);
    EXPECT_NEAR(b[0].p[0].x - 3, 0.18, 1e-12);
    EXPECT_GT(b[2].p[0].x, 3 + 0.18 + 0.09);
    leaderChecks(b, 3);
    EXPECT_AT(d->textPosition(), 3, -1);
    d->setDimtmove(0);
  }
  {
    SCOPED_TRACE("outside, left of the circle: the landing to the text's right, a centre mark");
    d->setTextPosition({-15, -12, 0});
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE MTEXT SOLID LINE LINE POINT POINT");
    EXPECT_NEAR(b[0].p[1].x - b[0].p[0].x, 0.18, 1e-12);
    EXPECT_GT(b[0].p[0].x, -15 + 0.09);
    leaderChecks(b, 3);
    EXPECT_AT(b[4].p[0], -0.09, 0);
  }
}

// The diameter of the same drawing across (-10, 0)-(10, 0).
TEST(DimGeometryRadial, Diameter) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__2018-TS1.dxf"));
  auto d = first<OdDbDiametricDimension>(*db);
  ASSERT_TRUE(d);
  setPoint(*d, 10, -10, 0);
  setPoint(*d, 15, 10, 0);
  {
    SCOPED_TRACE("text along the line above the centre: one arrowhead, the line under all of the text");
    d->setDimtih(false);
    d->setDimtad(1);
    d->setTextPosition({0, 0, 0});
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE MTEXT SOLID POINT POINT");
    EXPECT_AT(b[0].p[0], 9.82, 0);
    EXPECT_LT(b[0].p[1].x, -0.5);
    EXPECT_NEAR(b[0].p[1].y, 0, 1e-12);
    EXPECT_NEAR(b[1].p[0].x, 0, 1e-12);
    EXPECT_GT(b[1].p[0].y, 0.09 + 0.05);
    EXPECT_EQ(b[1].text.rfind("\\A1;\u220520", 0), 0u) << b[1].text;
    EXPECT_AT(tipOf(b[2]), 10, 0);
    EXPECT_NEAR(angleBetween(pointing(b[2]), 0), 0.0, 1e-9);
    EXPECT_AT(d->textPosition(), 0, 0) << "the user's point stays on the line";
    EXPECT_DOUBLE_EQ(d->measurement().value_or(0), 20.0);
  }
  {
    SCOPED_TRACE("across (0, -10)-(0, 10), text outside without a centre mark: arrowheads at both ends");
    setPoint(*d, 10, 0, -10);
    setPoint(*d, 15, 0, 10);
    d->setDimtad(0);
    d->setDimtoh(true);
    d->setDimcen(0);
    d->setTextPosition({3, 14, 0});
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE LINE MTEXT SOLID SOLID POINT POINT");
    EXPECT_AT(b[0].p[0], 0, -9.82);
    EXPECT_AT(b[0].p[1], 0, 9.82);
    EXPECT_NEAR(b[1].p[0].x - b[1].p[1].x, 0.18, 1e-12) << "the landing on the text's left";
    EXPECT_AT(b[2].p[1], 0, 10) << "the leader starts at the tip";
    EXPECT_AT(tipOf(b[4]), 0, -10);
    EXPECT_NEAR(angleBetween(pointing(b[4]), -kPi / 2), 0.0, 1e-9);
    EXPECT_AT(tipOf(b[5]), 0, 10);
    EXPECT_NEAR(angleBetween(pointing(b[5]), kPi / 2), 0.0, 1e-9);
  }
  {
    SCOPED_TRACE("with a centre mark: one arrowhead, pointing in");
    d->setDimcen(0.09);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE MTEXT SOLID LINE LINE POINT POINT");
    EXPECT_AT(tipOf(b[3]), 0, 10);
    EXPECT_LT(std::sin(pointing(b[3])), 0.0) << "from the landing outside back to the circle";
    EXPECT_GT(b[1].p[1].y, 10.0);
    EXPECT_AT(b[4].p[0], -0.09, 0);
  }
  {
    SCOPED_TRACE("separate arrowheads: the circle's point gets the second, the far point the first");
    d->setDimsah(true);
    d->setDimblk1(OdDmUtil::getArrowId(L"_Open90", db.get()));
    d->setDimblk2(OdDmUtil::getArrowId(L"_ArchTick", db.get()));
    d->setDimcen(0);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE LINE INSERT INSERT MTEXT POINT POINT");
    EXPECT_EQ(upper(b[3].block), "_OPEN90");
    EXPECT_AT(b[3].p[0], 0, -10);
    EXPECT_EQ(upper(b[4].block), "_ARCHTICK");
    EXPECT_AT(b[4].p[0], 0, 10);
    EXPECT_AT(b[0].p[0], 0, -9.82);
    EXPECT_AT(b[0].p[1], 0, 10) << "a tick is drawn around its point: the line runs to it";
  }
}

// The jogged radius of a real drawing (style Standard) moved: centre (0, 0), chord
// point (10, 0), stand-in centre (2, -1), jog at (6, -0.5), text at its default place.
TEST(DimGeometryRadial, JoggedRadius) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("mozman__ezdxf__examples_dxf-uncommon.dxf"));
  auto d = first<VxHugeRadius>(*db);
  ASSERT_TRUE(d);
  setPoint(*d, 10, 0, 0);
  setPoint(*d, 15, 10, 0);
  setPoint(*d, 13, 2, -1);
  setPoint(*d, 14, 6, -0.5);
  setUserText(*d, false);
  d->setDimtad(0);
  d->setDimtih(true);
  d->setDimjogang(kPi / 4);
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  auto b = primitives(d->dimBlockId());
  ASSERT_EQ(kinds(b), "LINE LINE LINE LINE SOLID MTEXT POINT POINT POINT");
  // Parallel to the radial line, then the jog at 45 degrees through the jog point.
  EXPECT_AT(b[0].p[0], 2, -1);
  EXPECT_AT(b[0].p[1], 6.5, -1);
  EXPECT_AT(b[1].p[1], 5.5, 0);
  // The text midway between the jog and the arrowhead, the line cut around it.
  EXPECT_AT(b[5].p[0], (5.5 + 9.82) / 2, 0);
  EXPECT_AT(b[2].p[1], 5.5, 0);
  EXPECT_AT(b[3].p[0], 9.82, 0);
  EXPECT_NEAR(b[5].p[0].x - b[2].p[0].x, b[3].p[1].x - b[5].p[0].x, 1e-9);
  EXPECT_AT(tipOf(b[4]), 10, 0);
  EXPECT_NEAR(angleBetween(pointing(b[4]), 0), 0.0, 1e-9);
  EXPECT_AT(b[7].p[0], 2, -1);
  EXPECT_AT(b[8].p[0], 6, -0.5);
  EXPECT_DOUBLE_EQ(d->measurement().value_or(0), 10.0);

  d->setDimjogang(kPi / 2);
  ASSERT_EQ(recomputeDimBlock(*d), eOk);
  b = primitives(d->dimBlockId());
  ASSERT_EQ(kinds(b), "LINE LINE LINE LINE SOLID MTEXT POINT POINT POINT");
  EXPECT_AT(b[1].p[0], 6, -1) << "a jog across the line";
  EXPECT_AT(b[1].p[1], 6, 0);
}

// Every radius, diameter and jogged radius of the reference drawings, recomputed, against the
// block saved with it: the same entities, each within 1% of the text height of
// the saved one.
TEST(DimGeometryRadial, AgreesWithTheBlocksOfRealDrawings) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  int compared = 0, agreed = 0;
  std::string failures;
  for (const char* file : {"DomCR__ACadSharp__sample_AC1018_ascii.dxf", "DomCR__ACadSharp__sample_AC1032_ascii.dxf",
                           "LibreDWG__libredwg__2000-TS1.dxf", "LibreDWG__libredwg__2018-TS1.dxf",
                           "mozman__ezdxf__examples_dxf-uncommon.dxf", "gdsestimating__dxf-parser__api-cw750-details.dxf",
                           "zamtmn__zcad__entities.dxf"}) {
    OdDbDatabasePtr saved = OdDbDatabase::readDxfFile(testsupport::corpus(file));
    OdDbDatabasePtr ours = OdDbDatabase::readDxfFile(testsupport::corpus(file));
    auto blocks = odOpen<OdDbBlockTable>(saved->getBlockTableId());
    for (const OdDbObjectId& btrId : blocks->recordIds()) {
      for (const OdDbObjectId& id : odOpen<OdDbBlockTableRecord>(btrId)->entityIds()) {
        auto dim = odOpen<OdDbDimension>(id);
        if (!dim || (dim->dimensionType() != 3 && dim->dimensionType() != 4 && !dim->isKindOf(VxHugeRadius::desc())))
          continue;
        const std::vector<Prim> theirs = primitives(dim->dimBlockId());
        if (theirs.empty()) continue;
        auto mine = odOpen<OdDbDimension>(ours->getOdDbObjectId(id.getHandle()), OdDb::kForWrite);
        ASSERT_EQ(recomputeDimBlock(*mine), eOk);
        const std::vector<Prim> oursPrims = primitives(mine->dimBlockId());
        const double h = dim->dimtxt() * (dim->dimscale() > 0 ? dim->dimscale() : 1.0);
        // Each saved entity has a partner of its kind in ours within the tolerance.
        std::map<std::string, std::vector<const Prim*>> left;
        for (const Prim& p : oursPrims) left[p.kind].push_back(&p);
        bool same = theirs.size() == oursPrims.size();
        for (const Prim& t : theirs) {
          auto& cands = left[t.kind];
          // Lines either way round; a SOLID's corners 1, 0, 3, 2 fill what 0, 1, 2, 3 do.
          auto near = [&](const Prim* o) {
            const size_t n = t.p.size();
            if (o->p.size() != n) return false;
            double d = 0, swapped = 0;
            for (size_t i = 0; i < n; ++i) {
              d = std::max(d, dist(t.p[i], o->p[i]));
              swapped = std::max(swapped, dist(t.p[i], o->p[n == 4 ? i ^ 1 : n - 1 - i]));
            }
            return std::min(d, swapped) <= 0.01 * h;
          };
          auto at = std::find_if(cands.begin(), cands.end(), near);
          if (at == cands.end()) same = false;
          else cands.erase(at);
        }
        ++compared;
        if (same) ++agreed;
        else failures += std::string(file) + " " + id.getHandle().ascii().toUtf8() + "\n";
      }
    }
  }
  EXPECT_GE(compared, 60);
  // Two of the drawing's dimensions show texts whose width the font tables miss by
  // a little; every other one agrees.
  EXPECT_GE(agreed, compared - 2) << failures;
}
