// Leaders: re-placed on their MTEXT as CAD programs saved them (side, gap, text
// above the line, the user's offset), and drawn with the arrowhead, size, colour
// and path their dimension variables give.
#include <gtest/gtest.h>

#include "TestSupport.h"

#include <cmath>
#include <numbers>
#include <string>
#include <tuple>
#include <vector>

#include "drawings/LeaderGeometry.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"
#include "drawings/OdDbVectorizer.h"
#include "drawings/OdDmUtil.h"

namespace {

using testsupport::corpus;

double dist(const OdGePoint3d& a, const OdGePoint3d& b) { return std::hypot(a.x - b.x, a.y - b.y); }
double dist2(const OdGePoint2d& a, const OdGePoint2d& b) { return std::hypot(a.x - b.x, a.y - b.y); }

std::vector<OdDbLeaderPtr> leadersOf(OdDbDatabase& db) {
  std::vector<OdDbLeaderPtr> out;
  auto blocks = odOpen<OdDbBlockTable>(db.getBlockTableId());
  for (const OdDbObjectId& btrId : blocks->recordIds())
    for (const OdDbObjectId& id : odOpen<OdDbBlockTableRecord>(btrId)->entityIds())
      if (auto l = odOpen<OdDbLeader>(id, OdDb::kForWrite)) out.push_back(l);
  return out;
}

// A drawing with an MTEXT and a leader pointing at it.
struct Scene {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018);
  OdDbMTextPtr text;
  OdDbLeaderPtr leader;

  Scene(const std::vector<OdGePoint3d>& vertices, OdGePoint3d at, OdDbMText::AttachmentPoint attachment) {
    auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite);
    text = OdDbMText::createFor(*db);
    text->setLocation(at);
    text->setTextHeight(2.5);
    text->setAttachment(attachment);
    text->setContents(L"NOTE");
    ms->appendOdDbEntity(text.get());
    leader = OdDbLeader::createFor(*db);
    for (const auto& v : vertices) leader->appendVertex(v);
    ms->appendOdDbEntity(leader.get());
    leader->attachAnnotation(text->objectId());
  }
};

// The extents of the primitives after the first (the path): the arrowhead.
OdGiExtents headExtents(const OdGiRecorder& r) {
  OdGiExtents e;
  for (size_t i = 1; i < r.items().size(); ++i) std::visit([&](const auto& p) { e.add(odGiExtentsOf(p)); }, r.items()[i]);
  return e;
}

OdGiRecorder drawOne(const OdDbEntity& e) {
  OdGiRecorder rec;
  OdDbVectorizer v(rec);
  v.drawEntity(e);
  return rec;
}

}  // namespace

// Every leader with an MTEXT in the drawings a CAD program saved: its hook and
// last vertex are first thrown onto the arm's end, then recomputed; they must
// come back where the program left them, within 1% of the text height. The
// drawings cover annotations on both sides, middle-attached text (gap only), text
// above the line (DIMTAD 1, bottom attached), top-attached text whose leader
// ends half a line lower (kept as the user's offset), DIMSCALE overrides of 0.5
// and 32 and leaders inside blocks. Leaders whose text sits above the line but is
// attached by its top or middle hang from the bottom of the text's box, whose
// height comes from font metrics (TrueType fonts with inline formatting here):
// they are left to the fidelity measure.
TEST(LeaderGeometry, PutsReferenceLeadersBackWhereTheyWereSaved) {
  int checked = 0;
  for (const char* name : {"gdsestimating__dxf-parser__api-cw750-details.dxf", "DomCR__ACadSharp__sample_AC1015_ascii.dxf",
                           "LibreDWG__libredwg__2000-Leader.dxf", "LibreDWG__libredwg__2018-Leader.dxf",
                           "VoronDesign__Voron-2__VORON_Design_-_2.4Build_Plate_250mm.dxf",
                           "bjnortier__dxf__floorplan.dxf"}) {
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(corpus(name));
    for (const OdDbLeaderPtr& leader : leadersOf(*db)) {
      auto text = odOpen<OdDbMText>(leader->annotationObjId());
      if (leader->annoType() != OdDbLeader::kMText || !text) continue;
      if (leader->dimtad() != 0 && text->attachment() < OdDbMText::kBottomLeft) continue;
      const std::string what = std::string(name) + " leader " + leader->getDbHandle().ascii().toUtf8();
      const int n = leader->numVertices();
      std::vector<OdGePoint3d> saved;
      for (int i = 0; i < n; ++i) saved.push_back(leader->vertexAt(i));
      const bool hooked = leader->hasHookLine() && n >= 3;
      const OdGePoint3d armEnd = saved[static_cast<size_t>(n - (hooked ? 3 : 2))];
      leader->setVertexAt(n - 1, armEnd);
      if (hooked) leader->setVertexAt(n - 2, armEnd);

      ASSERT_EQ(recomputeLeader(*leader), eOk) << what;
      const double tol = 0.01 * text->textHeight();
      for (int i = 0; i < n; ++i)
        EXPECT_LE(dist(leader->vertexAt(i), saved[static_cast<size_t>(i)]), tol) << what << " vertex " << i;
      ++checked;
    }
  }
  EXPECT_EQ(checked, 12);
}

// The hook line and the last vertex on either side of the annotation, and how
// DIMGAP and DIMSCALE move them, on a saved leader (DIMGAP 0.04, DIMASZ 0.118,
// text middle-left on the right of the arm).
TEST(LeaderGeometry, HookLineFollowsTheAnnotationsSideAndTheStyle) {
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(corpus("gdsestimating__dxf-parser__api-cw750-details.dxf"));
  auto leader = odOpen<OdDbLeader>(db->getOdDbObjectId(OdDbHandle(0x3584)), OdDb::kForWrite);
  ASSERT_TRUE(leader);
  auto text = odOpen<OdDbMText>(leader->annotationObjId(), OdDb::kForWrite);
  ASSERT_TRUE(text && leader->hasHookLine() && leader->numVertices() == 3);
  const OdGePoint3d at = text->location(), arrow = leader->vertexAt(0);
  auto expectAt = [&](int i, double x, double y, const char* what) {
    EXPECT_NEAR(leader->vertexAt(i).x, x, 1e-9) << what;
    EXPECT_NEAR(leader->vertexAt(i).y, y, 1e-9) << what;
  };
  EXPECT_TRUE(leader->annotationOnXDir());

  leader->setDimgap(0.2);
  ASSERT_EQ(recomputeLeader(*leader), eOk);
  expectAt(2, at.x - 0.2, at.y, "a larger gap: the last vertex moves away from the text");
  expectAt(1, at.x - 0.2 - 0.118, at.y, "the hook keeps its length");
  expectAt(0, arrow.x, arrow.y, "the arrow stays");

  // The text moved to the left of the arrow, attached by its right: the hook turns round.
  text->setLocation({arrow.x - 1, arrow.y + 0.5, 0});
  text->setAttachment(OdDbMText::kMiddleRight);
  ASSERT_EQ(recomputeLeader(*leader), eOk);
  expectAt(2, arrow.x - 1 + 0.2, arrow.y + 0.5, "text on the left");
  expectAt(1, arrow.x - 1 + 0.2 + 0.118, arrow.y + 0.5, "hook towards the arm");
  EXPECT_FALSE(leader->annotationOnXDir());

  leader->setDimscale(2.0);
  ASSERT_EQ(recomputeLeader(*leader), eOk);
  expectAt(2, arrow.x - 1 + 0.4, arrow.y + 0.5, "DIMSCALE scales the gap");
  expectAt(1, arrow.x - 1 + 0.4 + 0.236, arrow.y + 0.5, "and the hook");
  // Saved as such: the side (74) and the vertices come back from the file.
  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  auto reread = odOpen<OdDbLeader>(again->getOdDbObjectId(OdDbHandle(0x3584)));
  ASSERT_TRUE(reread);
  EXPECT_FALSE(reread->annotationOnXDir());
  EXPECT_NEAR(reread->vertexAt(2).x, arrow.x - 1 + 0.4, 1e-9);
}

// Text above the line: the hook runs under the annotation's box, DIMGAP below it.
TEST(LeaderGeometry, TextAboveTheLineLowersTheEndUnderTheBox) {
  Scene s({{0, 0, 0}, {10, 10, 0}}, {20, 10, 0}, OdDbMText::kTopLeft);
  s.leader->setDimgap(0.5);
  s.leader->setDimtad(1);
  ASSERT_EQ(recomputeLeader(*s.leader), eOk);
  const double box = s.leader->annotationHeight();
  EXPECT_NEAR(box, 2.5, 0.25);  // capitals only
  EXPECT_NEAR(dist(s.leader->vertexAt(1), {19.5, 10 - box - 0.5, 0}), 0, 1e-9);
  // Two lines: a line pitch (5/3 of the height) lower.
  s.text->setContents(L"NOTE\\PNOTE");
  ASSERT_EQ(recomputeLeader(*s.leader), eOk);
  EXPECT_NEAR(s.leader->vertexAt(1).y, 10 - box - 2.5 * 5.0 / 3.0 - 0.5, 1e-6);
}

// ---- drawing ----

// Every standard arrow at a leader's tip is the arrow block
// as a dimension's INSERT would show it: at the tip, DIMASZ x DIMSCALE large,
// turned to point back along the first segment.
TEST(LeaderDrawing, ArrowheadsAreTheirBlocksAtTheTip) {
  const wchar_t* names[] = {L"",        L"_DOT",     L"_DOTSMALL",   L"_DOTBLANK",  L"_ORIGIN",      L"_ORIGIN2", L"_OPEN",
                            L"_OPEN90", L"_OPEN30",  L"_CLOSED",     L"_SMALL",     L"_NONE",        L"_OBLIQUE", L"_BOXFILLED",
                            L"_BOXBLANK", L"_CLOSEDBLANK", L"_DATUMFILLED", L"_DATUMBLANK", L"_INTEGRAL", L"_ARCHTICK"};
  const double angle = 2.4;  // of the first segment, tip to the next vertex
  const OdGePoint3d tip{3, 4, 0};
  const OdGePoint3d next{tip.x + 30 * std::cos(angle), tip.y + 30 * std::sin(angle), 0};
  for (const wchar_t* name : names) {
    const std::string what = OdString(name).toUtf8();
    OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018);
    auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite);
    auto leader = OdDbLeader::createFor(*db);
    leader->appendVertex(tip);
    leader->appendVertex(next);
    ms->appendOdDbEntity(leader.get());
    leader->setDimasz(1.5);
    leader->setDimscale(2.0);
    const OdDbObjectId arrow = OdDmUtil::getArrowId(name, db.get());
    leader->setDimldrblk(arrow);
    const OdGiRecorder drawn = drawOne(*leader);
    ASSERT_FALSE(drawn.items().empty()) << what;
    ASSERT_TRUE(std::holds_alternative<OdGiPolyline>(drawn.items()[0])) << what;  // the path comes first
    std::vector<OdGiRecorder::Primitive> head(drawn.items().begin() + 1, drawn.items().end());

    if (arrow.isNull()) {  // closed filled: a triangle, tip and base a third of the size wide
      ASSERT_EQ(head.size(), 1u) << what;
      const auto& tri = std::get<OdGiPolygon>(head[0]).points;
      ASSERT_EQ(tri.size(), 3u);
      const OdGePoint2d base{tip.x + 3 * std::cos(angle), tip.y + 3 * std::sin(angle)};
      EXPECT_NEAR(dist2(tri[0], {tip.x, tip.y}), 0, 1e-9);
      EXPECT_NEAR(dist2(tri[1], base), 0.5, 1e-9);
      EXPECT_NEAR(dist2(tri[2], base), 0.5, 1e-9);
      continue;
    }
    // The same block through a reference: pointing along +X at the tip means
    // turned by the first segment's angle plus half a turn.
    auto ref = OdDbBlockReference::createFor(*db);
    ref->setBlockTableRecord(arrow);
    ref->setPosition(tip);
    ref->setScaleFactors({3, 3, 3});
    ref->setRotation(angle + std::numbers::pi);
    ms->appendOdDbEntity(ref.get());
    const OdGiRecorder expected = drawOne(*ref);
    ASSERT_EQ(head.size(), expected.items().size()) << what;
    EXPECT_EQ(head.empty(), OdString(name) == L"_NONE") << what;
    const OdGiExtents a = headExtents(drawn), b = expected.extents();
    EXPECT_NEAR(dist2(a.min, b.min), 0, 1e-9) << what;
    EXPECT_NEAR(dist2(a.max, b.max), 0, 1e-9) << what;
  }
}

TEST(LeaderDrawing, NoArrowheadWhenOffOrTooShort) {
  Scene s({{0, 0, 0}, {1, 0, 0}, {5, 3, 0}}, {20, 10, 0}, OdDbMText::kMiddleLeft);
  // Path and arrowhead, unless DIMASZ x DIMSCALE (0 counting as 1) outgrows the first segment.
  for (auto [asz, scale, items] : {std::tuple{0.9, 1.0, 2u}, {1.1, 1.0, 1u}, {0.9, 2.0, 1u}, {0.9, 0.0, 2u}}) {
    s.leader->setDimasz(asz);
    s.leader->setDimscale(scale);
    EXPECT_EQ(drawOne(*s.leader).items().size(), items) << asz << " x " << scale;
  }
  s.leader->disableArrowHead();
  EXPECT_EQ(drawOne(*s.leader).items().size(), 1u);

  // A saved leader with its arrowhead off (71 = 0) while its style names _Open30.
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(corpus("LibreDWG__libredwg__2018-Leader.dxf"));
  for (const OdDbLeaderPtr& leader : leadersOf(*db)) {
    EXPECT_FALSE(leader->dimldrblk().isNull());
    EXPECT_EQ(drawOne(*leader).items().size(), 1u);
  }
}

TEST(LeaderDrawing, ColourAndLineweightFromTheStyle) {
  Scene s({{0, 0, 0}, {10, 0, 0}}, {20, 10, 0}, OdDbMText::kMiddleLeft);
  s.leader->setColorIndex(3);
  s.leader->setLineWeight(OdDb::kLnWt050);
  auto traitsOf = [&](size_t i) {
    const OdGiRecorder r = drawOne(*s.leader);
    return std::visit([](const auto& p) { return p.traits; }, r.items().at(i));
  };
  auto expectTraits = [&](int aci, int lineWeight) {
    for (size_t i : {0, 1}) {  // the path and the arrowhead
      EXPECT_EQ(traitsOf(i).color, OdGiColor::fromAci(aci)) << i;
      EXPECT_EQ(traitsOf(i).lineWeight, lineWeight) << i;
    }
  };
  expectTraits(3, 50);  // ByBlock, the default, shows the leader's own
  s.leader->setDimclrd(OdCmColor::fromDxf(1));
  s.leader->setDimlwd(OdDb::kLnWt030);
  expectTraits(1, 30);
  // Arrow blocks draw ByBlock: the style's colour reaches their entities.
  s.leader->setDimldrblk(OdDmUtil::getArrowId(L"_Open", s.db.get()));
  const OdGiRecorder r = drawOne(*s.leader);
  ASSERT_EQ(r.all<OdGiLine>().size(), 3u);
  for (const OdGiLine& l : r.all<OdGiLine>()) EXPECT_EQ(l.traits.color, OdGiColor::fromAci(1));
}

// The splined leader a CAD program saved: one smooth curve through its three
// vertices, where the straight path has a corner of 43 degrees.
TEST(LeaderDrawing, SplinedPathIsASmoothCurveThroughTheVertices) {
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(corpus("LibreDWG__libredwg__2000-Leader.dxf"));
  auto leaders = leadersOf(*db);
  ASSERT_EQ(leaders.size(), 1u);
  const OdDbLeaderPtr& leader = leaders[0];
  ASSERT_TRUE(leader->isSplined());
  auto curve = drawOne(*leader).all<OdGiPolyline>();
  ASSERT_EQ(curve.size(), 1u);
  const auto& pts = curve[0].points;
  ASSERT_GT(pts.size(), 10u);
  for (int i = 0; i < leader->numVertices(); ++i) {
    const OdGePoint2d v{leader->vertexAt(i).x, leader->vertexAt(i).y};
    double nearest = 1e300;
    for (const auto& p : pts) nearest = std::min(nearest, dist2(p, v));
    EXPECT_LT(nearest, 1e-9) << "vertex " << i;
  }
  double sharpest = 0;
  for (size_t i = 1; i + 1 < pts.size(); ++i) {
    const double a = std::atan2(pts[i].y - pts[i - 1].y, pts[i].x - pts[i - 1].x);
    const double b = std::atan2(pts[i + 1].y - pts[i].y, pts[i + 1].x - pts[i].x);
    sharpest = std::max(sharpest, std::fabs(std::remainder(b - a, 2 * std::numbers::pi)));
  }
  EXPECT_LT(sharpest, 6 * std::numbers::pi / 180);
  // It leaves the tip along the first segment, which the arrowhead follows.
  const OdGePoint2d v0{leader->vertexAt(0).x, leader->vertexAt(0).y}, v1{leader->vertexAt(1).x, leader->vertexAt(1).y};
  const double start = std::atan2(pts[1].y - pts[0].y, pts[1].x - pts[0].x);
  EXPECT_NEAR(std::remainder(start - std::atan2(v1.y - v0.y, v1.x - v0.x), 2 * std::numbers::pi), 0, 3 * std::numbers::pi / 180);
  leader->setToStraightLeader();
  EXPECT_EQ(drawOne(*leader).all<OdGiPolyline>().at(0).points.size(), 3u);
}

// A block or a tolerance frame: the leader's end keeps its offset from the
// annotation's insertion point and follows it, the horizontal turning with it.
TEST(LeaderGeometry, BlockAndToleranceAnnotationsCarryTheEndWithThem) {
  OdDbDatabasePtr made = OdDbDatabase::createNew(DxfVersion::R2018);
  // A tolerance frame at (5, 6) whose x axis is the world's y axis (no typed class: read from a file).
  std::string dxf = made->toDxf();
  const std::string tail = "ENTITIES\n  0\nENDSEC";
  const size_t at = dxf.find(tail);
  ASSERT_NE(at, std::string::npos);
  dxf.replace(at, tail.size(),
              "ENTITIES\n  0\nTOLERANCE\n  5\nABC\n100\nAcDbEntity\n  8\n0\n100\nAcDbFcf\n  3\nStandard\n"
              " 10\n5.0\n 20\n6.0\n 30\n0.0\n  1\n{\\Fgdt;j}%%v0.1\n 11\n0.0\n 21\n1.0\n 31\n0.0\n  0\nENDSEC");
  OdDbDatabasePtr db = OdDbDatabase::readDxf(dxf);
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite);
  const OdDbObjectId frame = db->getOdDbObjectId(OdDbHandle(0xABC));
  ASSERT_FALSE(frame.isNull());
  auto block = OdDbBlockReference::createFor(*db);
  block->setBlockTableRecord(OdDmUtil::getArrowId(L"_Dot", db.get()));
  block->setPosition({20, 10, 0});
  ms->appendOdDbEntity(block.get());

  auto leaderTo = [&](const OdDbObjectId& anno) {
    auto leader = OdDbLeader::createFor(*db);
    leader->appendVertex({0, 0, 0});
    leader->appendVertex({1, 1, 0});
    ms->appendOdDbEntity(leader.get());
    leader->attachAnnotation(anno);
    return leader;
  };
  auto expectEnd = [](const OdDbLeader& l, double x, double y, const char* what) {
    EXPECT_NEAR(l.vertexAt(1).x, x, 1e-9) << what;
    EXPECT_NEAR(l.vertexAt(1).y, y, 1e-9) << what;
    EXPECT_NEAR(l.vertexAt(0).x, 0, 1e-12) << what << ": the arrow stays";
  };

  auto toBlock = leaderTo(block->objectId());
  toBlock->setBlockOffset({-2, 0, 0});
  ASSERT_EQ(recomputeLeader(*toBlock), eOk);
  expectEnd(*toBlock, 18, 10, "the block's offset");
  EXPECT_TRUE(toBlock->annotationOnXDir());
  block->setPosition({-30, -5, 0});
  block->setRotation(std::numbers::pi / 2);
  ASSERT_EQ(recomputeLeader(*toBlock), eOk);
  expectEnd(*toBlock, -32, -5, "moved with the block");
  EXPECT_NEAR(toBlock->horizontalDirection().y, 1, 1e-12) << "turned with the block";
  EXPECT_FALSE(toBlock->annotationOnXDir()) << "below the arm along the block's x axis (world y)";

  auto toFrame = leaderTo(frame);
  toFrame->setAnnotationOffset({0, -1, 0});
  toFrame->setBlockOffset({7, 7, 0});  // not the frame's: ignored
  ASSERT_EQ(recomputeLeader(*toFrame), eOk);
  expectEnd(*toFrame, 5, 5, "the frame's insertion point and its offset");
  EXPECT_NEAR(toFrame->horizontalDirection().y, 1, 1e-12) << "the frame's x direction";
}
