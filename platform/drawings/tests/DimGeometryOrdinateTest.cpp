// The drawn geometry of ordinate dimensions: layouts worked out by hand from a
// dimension of a real drawing with its variables and points changed, and agreement
// with the blocks CAD programs saved (X and Y datums, long and short jogs, framed
// text).
#include <gtest/gtest.h>

#include "DimGeometryTestSupport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "drawings/DimGeometry.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbText.h"

namespace fs = std::filesystem;

namespace {
using namespace dimgeomtest;

std::vector<OdSmartPtr<OdDbOrdinateDimension>> ordinates(OdDbDatabase& db) {
  std::vector<OdSmartPtr<OdDbOrdinateDimension>> out;
  for (const OdDbObjectId& id : odOpen<OdDbBlockTableRecord>(db.getModelSpaceId())->entityIds())
    if (auto d = odOpen<OdDbOrdinateDimension>(id, OdDb::kForWrite)) out.push_back(d);
  return out;
}

void setType(OdDbDimension& d, int type) {
  for (DxfTag& tag : d.tagsForWrite())
    if (tag.code == 70) {
      tag.set(std::to_string(type));
      return;
    }
}

}  // namespace

// A Y datum dimension of a real drawing (style Standard: arrows 0.18, gap 0.09,
// extension line offset 0.0625, text 0.18 in txt): feature (24.49652, 50.21982),
// leader end 0.98422 to its right. "50.2198" is 33 font units of 6 wide: 0.99.
TEST(DimGeometryOrdinate, LeaderAndTextWorkedOutByHand) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(testsupport::corpus("LibreDWG__libredwg__2000-TS1.dxf"));
  auto all = ordinates(*db);
  ASSERT_EQ(all.size(), 1u);
  auto d = all[0];
  const double fx = 24.49652001549242, fy = 50.21982037777121, ex = 25.48073799992625;

  {
    SCOPED_TRACE("text on the line: the leader stops at the leader end");
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE MTEXT POINT POINT POINT");
    EXPECT_AT(b[0].p[0], fx + 0.0625, fy);
    EXPECT_AT(b[0].p[1], ex, fy);
    EXPECT_AT(b[1].p[0], ex + 0.09 + 0.495, fy);
    EXPECT_AT(b[2].p[0], fx, fy);
    EXPECT_AT(b[3].p[0], ex, fy);
    EXPECT_AT(b[4].p[0], 0, 0);
    EXPECT_AT(d->textPosition(), ex + 0.09 + 0.495, fy);
    EXPECT_DOUBLE_EQ(d->measurement().value_or(0), fy);
  }
  {
    SCOPED_TRACE("text above: the leader runs under it, the jog starts two arrowheads from the feature");
    d->setDimtad(1);
    setPoint(*d, 14, ex, fy + 1);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE LINE MTEXT POINT POINT POINT");
    EXPECT_AT(b[0].p[0], fx + 0.0625, fy);
    // Four arrowheads before the leader end would be nearer the feature than two.
    EXPECT_AT(b[0].p[1], fx + 0.36, fy);
    EXPECT_AT(b[1].p[1], ex - 0.36, fy + 1);
    EXPECT_AT(b[2].p[1], ex + 0.09 + 0.99, fy + 1);
    EXPECT_AT(b[3].p[0], ex + 0.09 + 0.495, fy + 1 + 0.09 + 0.09);
    EXPECT_NEAR(b[3].angle, 0.0, 1e-12);
  }
  {
    SCOPED_TRACE("X datum, leader end far below: text reads upwards, above it is to the left");
    setType(*d, 6 | 32 | 64);
    setPoint(*d, 13, 10, 50);
    setPoint(*d, 14, 12, 40);
    ASSERT_EQ(recomputeDimBlock(*d), eOk);
    const auto b = primitives(d->dimBlockId());
    ASSERT_EQ(kinds(b), "LINE LINE LINE MTEXT POINT POINT POINT");
    EXPECT_AT(b[0].p[0], 10, 50 - 0.0625);
    EXPECT_AT(b[0].p[1], 10, 40 + 0.72);
    EXPECT_AT(b[1].p[1], 12, 40 + 0.36);
    // "10.0000" is 29 units: 0.87.
    EXPECT_AT(b[2].p[1], 12, 40 - 0.09 - 0.87);
    EXPECT_AT(b[3].p[0], 12 - 0.18, 40 - 0.09 - 0.435);
    EXPECT_NEAR(b[3].angle, std::numbers::pi / 2, 1e-12);
    EXPECT_DOUBLE_EQ(d->measurement().value_or(0), 10.0);
  }
}

// Recomputed, the ordinate dimensions of drawings CAD programs saved get the blocks
// they were saved with, entity for entity.
TEST(DimGeometryOrdinate, AgreesWithSavedBlocks) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  int compared = 0;
  for (const char* file : {"DomCR__ACadSharp__sample_AC1015_ascii.dxf", "zamtmn__zcad__entities.dxf",
                           "DomCR__ACadSharp__sample_AC1032_ascii.dxf",
                           // "4177,65" in txt: the comma is 3 units wide
                           "LibreDWG__libredwg__example_2000.dxf"}) {
    SCOPED_TRACE(file);
    OdDbDatabasePtr saved = OdDbDatabase::readDxfFile(testsupport::corpus(file));
    OdDbDatabasePtr ours = OdDbDatabase::readDxfFile(testsupport::corpus(file));
    for (auto& mine : ordinates(*ours)) {
      auto theirs = odOpen<OdDbDimension>(saved->getOdDbObjectId(mine->getDbHandle()));
      const auto want = primitives(theirs->dimBlockId());
      ASSERT_EQ(recomputeDimBlock(*mine), eOk);
      const auto got = primitives(mine->dimBlockId());
      ASSERT_EQ(kinds(got), kinds(want));
      for (size_t i = 0; i < want.size(); ++i)
        for (size_t k = 0; k < want[i].p.size(); ++k)
          EXPECT_LT(dist(got[i].p[k], want[i].p[k]), 1e-6) << want[i].kind << " " << i << " point " << k;
      EXPECT_LT(dist(mine->textPosition(), theirs->textPosition()), 1e-6);
      ++compared;
    }
  }
  EXPECT_GE(compared, 9);
}
