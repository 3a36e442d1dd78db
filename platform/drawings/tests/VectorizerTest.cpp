// Drawings as primitives: geometry placed through block references, colours
// through layers and references, text made plain and laid out, and every sample
// drawing drawn without a fault.
#include <gtest/gtest.h>

#include "TestSupport.h"

#include <cmath>
#include <filesystem>
#include <numbers>
#include <set>

#include "drawings/NewDrawing.h"
#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbText.h"
#include "drawings/OdDbVectorizer.h"

namespace {

constexpr double kPi = std::numbers::pi;

// One unit of width per character and unit of height: boxes are easy to predict.
struct UnitMeasure : OdGiTextMeasure {
  double lineWidth(const OdString& line, double height) const override { return line.getLength() * height; }
};

struct Drawn { OdGiRecorder primitives; OdGiVectorizeStats stats; };

Drawn draw(const OdDbDatabase& db, OdDbObjectId block = OdDbObjectId()) {
  static const UnitMeasure measure;
  Drawn d;
  OdDbVectorizer v(d.primitives, &measure);
  v.drawBlock(db, block);
  d.stats = v.stats();
  return d;
}

OdDbBlockTableRecordPtr modelSpace(OdDbDatabase& db) {
  return odOpen<OdDbBlockTableRecord>(db.getModelSpaceId(), OdDb::kForWrite);
}

OdDbBlockTableRecordPtr openBlock(OdDbObjectId id) { return odOpen<OdDbBlockTableRecord>(id, OdDb::kForWrite); }

using testsupport::addLayer;

OdDbLinePtr newLine(OdDbDatabase& db, OdGePoint3d a, OdGePoint3d b) {
  auto l = OdDbLine::createFor(db);
  l->setStartPoint(a);
  l->setEndPoint(b);
  return l;
}

OdDbObjectId insert(OdDbDatabase& db, OdDbBlockTableRecord& into, OdDbObjectId block, OdGePoint3d at,
                    OdGeScale3d scale = {}, double rotation = 0) {
  auto ref = OdDbBlockReference::createFor(db);
  ref->setBlockTableRecord(block);
  ref->setPosition(at);
  ref->setScaleFactors(scale);
  ref->setRotation(rotation);
  return into.appendOdDbEntity(ref.get());
}

// Flattened curves are off the true curve by up to 0.06 % of the radius.
constexpr double kChordError = 1e-3;

void expectNear(const OdGePoint2d& p, double x, double y, const std::string& what, double tol = 1e-9) {
  EXPECT_NEAR(p.x, x, tol) << what;
  EXPECT_NEAR(p.y, y, tol) << what;
}

// An R12 drawing with extra DXF text spliced into its BLOCKS and ENTITIES sections.
OdDbDatabasePtr r12With(const std::string& blocks, const std::string& entities) {
  std::string s = newDrawingDxf(DxfVersion::R12, true);
  s.insert(s.find("ENTITIES\n") + 9, entities);
  s.insert(s.find("BLOCKS\n") + 7, blocks);
  return OdDbDatabase::readDxf(s);
}

}  // namespace

TEST(Vectorizer, CurvesKeepTheirDirection) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  auto ms = modelSpace(*db);
  ms->appendOdDbEntity(newLine(*db, {1, 2, 7}, {4, 6, 0}).get());
  for (auto [start, end] : {std::pair(0.5, 4.0), std::pair(5.5, 0.5)}) {
    auto arc = OdDbArc::createFor(*db);
    arc->setCenter({10, 0, 0});
    arc->setRadius(2);
    arc->setStartAngle(start);
    arc->setEndAngle(end);
    ms->appendOdDbEntity(arc.get());
  }
  auto circle = OdDbCircle::createFor(*db);
  circle->setCenter({-5, -5, 0});
  circle->setRadius(1.5);
  ms->appendOdDbEntity(circle.get());
  // A half circle from (0,0) to (2,0) turning counter-clockwise, so through (1,-1);
  // then a straight closing segment.
  auto pl = OdDbPolyline::createFor(*db);
  pl->addVertexAt(0, {0, 0}, 1.0);
  pl->addVertexAt(1, {2, 0});
  pl->setClosed(true);
  pl->setElevation(3);
  ms->appendOdDbEntity(pl.get());
  // A quarter turn: the centre sits off the chord, on its left.
  auto quarter = OdDbPolyline::createFor(*db);
  quarter->addVertexAt(0, {0, -20}, std::tan(kPi / 8));
  quarter->addVertexAt(1, {2, -20});
  ms->appendOdDbEntity(quarter.get());
  // With width: each segment becomes a filled outline.
  auto wide = OdDbPolyline::createFor(*db);
  wide->addVertexAt(0, {0, 10});
  wide->addVertexAt(1, {4, 10}, -1.0);
  wide->addVertexAt(2, {8, 10});
  wide->setConstantWidth(0.5);
  ms->appendOdDbEntity(wide.get());

  Drawn d = draw(*db);
  EXPECT_EQ(d.stats.drawn, 7u);
  auto lines = d.primitives.all<OdGiLine>();
  ASSERT_EQ(lines.size(), 1u);
  expectNear(lines[0].start, 1, 2, "z is dropped");
  expectNear(lines[0].end, 4, 6, "line end");
  auto arcs = d.primitives.all<OdGiArc>();
  ASSERT_EQ(arcs.size(), 2u);
  EXPECT_NEAR(arcs[0].startAngle, 0.5, 1e-12);
  EXPECT_NEAR(arcs[0].endAngle, 4.0, 1e-12);
  EXPECT_NEAR(arcs[1].startAngle, 5.5, 1e-12) << "an arc across angle 0 keeps its start";
  EXPECT_NEAR(arcs[1].endAngle, 0.5 + 2 * kPi, 1e-12);
  EXPECT_EQ(arcs[1].radius, 2);
  ASSERT_EQ(d.primitives.all<OdGiCircle>().size(), 1u);

  auto paths = d.primitives.all<OdGiPolyline>();
  ASSERT_EQ(paths.size(), 2u);
  EXPECT_TRUE(paths[0].closed);
  OdGiExtents q = odGiExtentsOf(paths[1]);
  expectNear(q.min, 0, -20 + 1 - std::sqrt(2), "quarter turn", kChordError);
  expectNear(q.max, 2, -20, "quarter turn ends", kChordError);
  OdGiExtents bulge = odGiExtentsOf(paths[0]);
  expectNear(bulge.min, 0, -1, "a positive bulge turns left, below a chord running +x", kChordError);
  expectNear(bulge.max, 2, 0, "nothing above the chord");
  for (const auto& p : paths[0].points)
    if (p.y < -1e-12) {
      EXPECT_NEAR(std::hypot(p.x - 1, p.y), 1, 1e-12) << "on the bulge's circle";
    }

  auto fills = d.primitives.all<OdGiPolygon>();
  ASSERT_EQ(fills.size(), 2u);
  EXPECT_EQ(fills[0].points.size(), 4u) << "a straight wide segment is a quadrilateral";
  OdGiExtents curved = odGiExtentsOf(fills[1]);
  // Clockwise half circle from (4,10) to (8,10) through (6,12), 0.25 either side.
  EXPECT_NEAR(curved.max.y, 12.25, 3 * kChordError);
  EXPECT_NEAR(curved.min.x, 3.75, 3 * kChordError);
  EXPECT_NEAR(curved.max.x, 8.25, 3 * kChordError);

  // Arc extents follow the sweep: 0.5 → 4.0 passes 90° and 180° but not 270° or 0°.
  OdGiExtents e = odGiExtentsOf(arcs[0]);
  EXPECT_NEAR(e.max.y, 2, 1e-12);
  EXPECT_NEAR(e.min.x, 8, 1e-12);
  EXPECT_NEAR(e.max.x, 10 + 2 * std::cos(0.5), 1e-12);
  EXPECT_NEAR(e.min.y, 2 * std::sin(4.0), 1e-12);
  OdGiExtents all = d.primitives.extents();
  expectNear(all.min, -6.5, -19 - std::sqrt(2), "circle's corner and the quarter turn", kChordError);
  expectNear(all.max, 12, 12.25, "arc and wide polyline", 3 * kChordError);
}

TEST(Vectorizer, BlockReferencesPlaceTheirBlock) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  auto ms = modelSpace(*db);
  OdDbObjectId b = odCreateBlock(*db, L"B");
  {
    auto block = openBlock(b);
    block->appendOdDbEntity(newLine(*db, {0, 0, 0}, {1, 0, 0}).get());
    auto arc = OdDbArc::createFor(*db);
    arc->setRadius(1);
    arc->setStartAngle(0);
    arc->setEndAngle(kPi / 2);
    block->appendOdDbEntity(arc.get());
    auto circle = OdDbCircle::createFor(*db);
    circle->setCenter({1, 0, 0});
    circle->setRadius(0.5);
    block->appendOdDbEntity(circle.get());
  }
  struct Case {
    const char* what;
    OdGePoint3d at;
    OdGeScale3d scale;
    double rotation;
    OdGePoint2d lineStart, lineEnd;
    double arcStart, arcEnd;  // NaN: the arc is no longer circular
  };
  const double kNo = std::nan("");
  const Case cases[] = {
      {"scaled and turned", {10, 20, 0}, {2, 2, 1}, kPi / 2, {10, 20}, {10, 22}, kPi / 2, kPi},
      {"mirrored: arcs run the other way round", {0, 0, 0}, {-1, 1, 1}, 0, {0, 0}, {-1, 0}, kPi / 2, kPi},
      {"stretched: circles become ellipses", {0, 50, 0}, {2, 3, 1}, 0, {0, 50}, {2, 50}, kNo, kNo},
  };
  for (const Case& c : cases) {
    OdDbObjectId id = insert(*db, *ms, b, c.at, c.scale, c.rotation);
    Drawn d = draw(*db);
    odOpen<OdDbEntity>(id, OdDb::kForWrite)->erase();
    auto lines = d.primitives.all<OdGiLine>();
    ASSERT_EQ(lines.size(), 1u) << c.what;
    expectNear(lines[0].start, c.lineStart.x, c.lineStart.y, c.what);
    expectNear(lines[0].end, c.lineEnd.x, c.lineEnd.y, c.what);
    auto arcs = d.primitives.all<OdGiArc>();
    if (std::isnan(c.arcStart)) {
      EXPECT_TRUE(arcs.empty() && d.primitives.all<OdGiCircle>().empty()) << c.what;
      auto paths = d.primitives.all<OdGiPolyline>();
      ASSERT_EQ(paths.size(), 2u) << c.what;
      OdGiExtents ellipse = odGiExtentsOf(paths[1]);
      expectNear(ellipse.min, 1, 48.5, c.what, 3 * kChordError);
      expectNear(ellipse.max, 3, 51.5, c.what, 3 * kChordError);
      continue;
    }
    ASSERT_EQ(arcs.size(), 1u) << c.what;
    EXPECT_NEAR(arcs[0].startAngle, c.arcStart, 1e-12) << c.what;
    EXPECT_NEAR(arcs[0].endAngle, c.arcEnd, 1e-12) << c.what;
    EXPECT_NEAR(arcs[0].radius, c.scale.sy, 1e-12) << c.what;
  }

  // Nested: C holds B at (5,0); C turned half a turn at (0,100).
  OdDbObjectId cBlock = odCreateBlock(*db, L"C");
  insert(*db, *openBlock(cBlock), b, {5, 0, 0});
  insert(*db, *ms, cBlock, {0, 100, 0}, {}, kPi);
  // A block that holds itself stops at the nesting limit.
  OdDbObjectId loop = odCreateBlock(*db, L"LOOP");
  insert(*db, *openBlock(loop), loop, {1, 0, 0});
  openBlock(loop)->appendOdDbEntity(newLine(*db, {0, 0, 0}, {0, 1, 0}).get());
  insert(*db, *ms, loop, {0, -100, 0});
  Drawn d = draw(*db);
  auto lines = d.primitives.all<OdGiLine>();
  ASSERT_EQ(lines.size(), 1u + 16u);
  expectNear(lines[0].start, -5, 100, "nested start");
  expectNear(lines[0].end, -6, 100, "nested end");
  expectNear(lines[1].start, 15, -100, "the deepest copy, drawn first");
  expectNear(lines.back().start, 0, -100, "the outermost copy");
  EXPECT_EQ(d.stats.tooDeep, 1u);
}

TEST(Vectorizer, ColoursComeFromLayersAndReferences) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  auto ms = modelSpace(*db);
  addLayer(*db, L"Red", 1);
  addLayer(*db, L"Off", -3);
  OdDbObjectId k = odCreateBlock(*db, L"K");
  {
    auto block = openBlock(k);
    auto byBlock = newLine(*db, {0, 0, 0}, {1, 0, 0});
    byBlock->setColorIndex(0);
    byBlock->setLineWeight(OdDb::kLnWtByBlock);
    block->appendOdDbEntity(byBlock.get());
    block->appendOdDbEntity(newLine(*db, {0, 1, 0}, {1, 1, 0}).get());  // layer 0, ByLayer
    auto blue = newLine(*db, {0, 2, 0}, {1, 2, 0});
    blue->setColorIndex(5);
    blue->setLayer(L"Red");
    block->appendOdDbEntity(blue.get());
  }
  auto ref = [&](double x, const wchar_t* layer, int color) {
    OdDbObjectId id = insert(*db, *ms, k, {x, 0, 0});
    auto e = odOpen<OdDbEntity>(id, OdDb::kForWrite);
    e->setLayer(layer);
    e->setColorIndex(static_cast<int16_t>(color));
    e->setLineWeight(OdDb::kLnWt050);
  };
  ref(0, L"Red", 3);
  ref(10, L"Red", 256);
  ref(20, L"Off", 3);  // its layer-0 lines go with it; the others stay
  auto top = newLine(*db, {0, -5, 0}, {1, -5, 0});
  top->setColorIndex(0);
  ms->appendOdDbEntity(top.get());
  auto hidden = newLine(*db, {0, -6, 0}, {1, -6, 0});
  hidden->setLayer(L"Off");
  ms->appendOdDbEntity(hidden.get());

  Drawn d = draw(*db);
  const OdGiColor red = OdGiColor::fromAci(1), green = OdGiColor::fromAci(3), blue = OdGiColor::fromAci(5);
  std::map<std::pair<double, double>, OdGiTraits> at;  // by start point
  for (const auto& l : d.primitives.all<OdGiLine>()) at[{l.start.x, l.start.y}] = l.traits;
  struct Want { double x, y; OdGiColor color; int lineWeight; const char* what; };
  const Want wants[] = {
      {0, 0, green, 50, "ByBlock takes the reference's colour and lineweight"},
      {0, 1, red, 25, "layer 0 inside a reference takes the reference's layer"},
      {0, 2, blue, 25, "its own colour"},
      {10, 0, red, 50, "ByBlock of a ByLayer reference: the reference's layer"},
      {10, 1, red, 25, "layer 0 again"},
      {10, 2, blue, 25, "its own colour again"},
      {20, 2, blue, 25, "a reference on a layer that is off still shows its entities on other layers"},
      {0, -5, OdGiColor::fromAci(7), 25, "ByBlock outside any block is the foreground colour"},
  };
  for (const Want& w : wants) {
    auto it = at.find({w.x, w.y});
    ASSERT_NE(it, at.end()) << w.what;
    EXPECT_EQ(it->second.color, w.color) << w.what;
    EXPECT_EQ(it->second.lineWeight, w.lineWeight) << w.what;
  }
  EXPECT_TRUE((at[{0, -5}].color.foreground));
  EXPECT_EQ(at.count({20, 0}) + at.count({20, 1}), 0u) << "layer 0 in a reference on a layer that is off";
  EXPECT_EQ(at.count({0, -6}), 0u) << "on a layer that is off";
  EXPECT_EQ(at.size(), std::size(wants));
  EXPECT_EQ(d.stats.hidden, 3u);
}

TEST(Vectorizer, TextIsPlainAndAligned) {
  // TEXT: left on the baseline, centred, right, middle, top; ATTDEF in a block is not
  // shown, the attributes of the reference are (but not invisible ones).
  OdDbDatabasePtr db = r12With(
      "  0\nBLOCK\n  8\n0\n  2\nTAG\n 70\n2\n 10\n0\n 20\n0\n 30\n0\n  3\nTAG\n"
      "  0\nATTDEF\n  8\n0\n 10\n0\n 20\n0\n 40\n1\n  1\nx\n  3\nP\n  2\nA\n 70\n0\n"
      "  0\nENDBLK\n  8\n0\n",
      "  0\nTEXT\n  8\n0\n 10\n1\n 20\n1\n 40\n2\n  1\n%%c10 %%uA%%u\n"
      "  0\nTEXT\n  8\n0\n 10\n0\n 20\n0\n 40\n1\n  1\nmid\n 72\n1\n 11\n5\n 21\n5\n"
      "  0\nTEXT\n  8\n0\n 10\n0\n 20\n0\n 40\n1\n  1\nrgt\n 72\n2\n 11\n5\n 21\n10\n 73\n3\n"
      "  0\nTEXT\n  8\n0\n 10\n0\n 20\n0\n 40\n1\n  1\nfit\n 72\n5\n 11\n6\n 21\n0\n"
      "  0\nTEXT\n  8\n0\n 10\n0\n 20\n0\n 40\n3\n  1\nlow\n 73\n2\n 11\n7\n 21\n7\n"
      "  0\nINSERT\n  8\n0\n 66\n1\n  2\nTAG\n 10\n50\n 20\n0\n 41\n-1\n"
      "  0\nATTRIB\n  8\n0\n 10\n50\n 20\n0\n 40\n1\n  1\nvalue\n  2\nA\n 70\n0\n 50\n90\n"
      "  0\nATTRIB\n  8\n0\n 10\n50\n 20\n0\n 40\n1\n  1\nsecret\n  2\nB\n 70\n1\n"
      "  0\nSEQEND\n  8\n0\n");
  Drawn d = draw(*db);
  auto texts = d.primitives.all<OdGiText>();
  ASSERT_EQ(texts.size(), 6u);
  EXPECT_EQ(texts[0].text, OdString(L"\u220510 A"));
  expectNear(texts[0].box[0], 1, 1, "left baseline");
  expectNear(texts[0].box[2], 1 + 5 * 2, 3, "five characters of height 2");
  EXPECT_EQ(texts[1].align, OdGiText::kCenter);
  expectNear(texts[1].position, 5, 5, "centred on the alignment point");
  expectNear(texts[1].box[0], 3.5, 5, "centred box");
  EXPECT_EQ(texts[2].align, OdGiText::kRight);
  expectNear(texts[2].position, 5, 9, "top alignment: the baseline one height lower");
  EXPECT_EQ(texts[3].fitLength, 6);
  expectNear(texts[3].position, 3, 0, "fitted between its points");
  expectNear(texts[4].position, 7, 5.5, "left middle: at the alignment point, half a height lower");
  EXPECT_EQ(texts[5].text, OdString(L"value"));
  EXPECT_NEAR(texts[5].rotation, kPi / 2, 1e-12) << "attributes stand as placed, not through the reference";
  EXPECT_FALSE(texts[5].upsideDown);
  EXPECT_EQ(d.stats.hidden, 1u);
}

TEST(Vectorizer, MTextLinesAndMirroredText) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, true);
  auto ms = modelSpace(*db);
  auto m = OdDbMText::createFor(*db);
  m->setLocation({0, 0, 0});
  m->setTextHeight(1);
  m->setAttachment(OdDbMText::kMiddleCenter);
  m->setContents(L"{\\fArial|b1;One}\\PTwo \\S1/2; \\U+00B0");
  ms->appendOdDbEntity(m.get());
  auto wrapped = OdDbMText::createFor(*db);
  wrapped->setLocation({0, 20, 0});
  wrapped->setTextHeight(1);
  wrapped->setWidth(7.5);
  wrapped->setContents(L"aaa bbb ccc");
  ms->appendOdDbEntity(wrapped.get());
  OdDbObjectId b = odCreateBlock(*db, L"T");
  auto t = OdDbText::createFor(*db);
  t->setTextString(L"ab");
  t->setHeight(1);
  openBlock(b)->appendOdDbEntity(t.get());
  insert(*db, *ms, b, {100, 0, 0}, {-2, 2, 1});

  Drawn d = draw(*db);
  auto texts = d.primitives.all<OdGiText>();
  ASSERT_EQ(texts.size(), 5u);
  EXPECT_EQ(texts[0].text, OdString(L"One"));
  EXPECT_EQ(texts[1].text, OdString(L"Two 1/2 \u00B0"));
  // Two lines 5/3 apart, the block of them centred on the location.
  const double total = 1 + 5.0 / 3;
  expectNear(texts[0].position, 0, total / 2 - 1, "first baseline");
  expectNear(texts[1].position, 0, total / 2 - 1 - 5.0 / 3, "second baseline");
  EXPECT_EQ(texts[0].align, OdGiText::kCenter);
  EXPECT_EQ(texts[2].text, OdString(L"aaa bbb")) << "seven characters fit the width of 7.5";
  EXPECT_EQ(texts[3].text, OdString(L"ccc"));
  // Mirrored by the reference: the baseline runs to -x, the glyphs flipped.
  EXPECT_NEAR(std::abs(texts[4].rotation), kPi, 1e-12);
  EXPECT_TRUE(texts[4].upsideDown);
  EXPECT_NEAR(texts[4].height, 2, 1e-12);
  expectNear(texts[4].box[1], 96, 0, "the box mirrored too");
}

TEST(Vectorizer, OldPolylinesAndOtherCurves) {
  OdDbDatabasePtr db = r12With(
      "",
      // A 2D polyline with a bulge, a polyface square with one hidden edge, an ellipse
      // quarter and a degree 1 spline through three points.
      "  0\nPOLYLINE\n  8\n0\n 66\n1\n 10\n0\n 20\n0\n 30\n0\n 70\n0\n"
      "  0\nVERTEX\n  8\n0\n 10\n0\n 20\n0\n 42\n1\n  0\nVERTEX\n  8\n0\n 10\n2\n 20\n0\n"
      "  0\nVERTEX\n  8\n0\n 10\n2\n 20\n5\n  0\nSEQEND\n  8\n0\n"
      "  0\nPOLYLINE\n  8\n0\n 66\n1\n 10\n0\n 20\n0\n 30\n0\n 70\n64\n 71\n4\n 72\n1\n"
      "  0\nVERTEX\n  8\n0\n 10\n10\n 20\n0\n 70\n192\n  0\nVERTEX\n  8\n0\n 10\n11\n 20\n0\n 70\n192\n"
      "  0\nVERTEX\n  8\n0\n 10\n11\n 20\n1\n 70\n192\n  0\nVERTEX\n  8\n0\n 10\n10\n 20\n1\n 70\n192\n"
      "  0\nVERTEX\n  8\n0\n 10\n0\n 20\n0\n 70\n128\n 71\n1\n 72\n2\n 73\n-3\n 74\n4\n"
      "  0\nSEQEND\n  8\n0\n");
  Drawn d = draw(*db);
  auto paths = d.primitives.all<OdGiPolyline>();
  ASSERT_EQ(paths.size(), 1u);
  OdGiExtents e = odGiExtentsOf(paths[0]);
  expectNear(e.min, 0, -1, "the bulge", kChordError);
  expectNear(e.max, 2, 5, "the straight part");
  auto edges = d.primitives.all<OdGiLine>();
  EXPECT_EQ(edges.size(), 3u) << "the edge from vertex 3 is invisible";

  OdDbDatabasePtr db2 = OdDbDatabase::createNew(DxfVersion::R2018, true);
  std::string s = db2->toDxf();
  s.insert(s.find("ENTITIES\n") + 9,
           "  0\nELLIPSE\n  8\n0\n100\nAcDbEntity\n100\nAcDbEllipse\n 10\n0\n 20\n0\n 30\n0\n 11\n4\n 21\n0\n 31\n0\n"
           "210\n0\n220\n0\n230\n1\n 40\n0.5\n 41\n0\n 42\n1.5707963267948966\n"
           "  0\nSPLINE\n  8\n0\n100\nAcDbEntity\n100\nAcDbSpline\n 70\n8\n 71\n1\n 72\n5\n 73\n3\n"
           " 40\n0\n 40\n0\n 40\n1\n 40\n2\n 40\n2\n 10\n0\n 20\n0\n 30\n0\n 10\n1\n 20\n1\n 30\n0\n 10\n2\n 20\n0\n 30\n0\n");
  Drawn curves = draw(*OdDbDatabase::readDxf(s));
  paths = curves.primitives.all<OdGiPolyline>();
  ASSERT_EQ(paths.size(), 2u);
  expectNear(paths[0].points.front(), 4, 0, "ellipse start on its major axis");
  expectNear(paths[0].points.back(), 0, 2, "a quarter on: the minor axis, half as long");
  EXPECT_FALSE(paths[0].closed);
  OdGiExtents spline = odGiExtentsOf(paths[1]);
  expectNear(spline.min, 0, 0, "spline start");
  expectNear(spline.max, 2, 1, "a degree 1 spline passes its control points");
}

TEST(Vectorizer, TextStringsAsShown) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"%%c20", L"\u220520"},
      {L"45%%d %%p0.1", L"45\u00B0 \u00B10.1"},
      {L"%%uunder%%u %%oover%%O %%kstruck", L"under over struck"},
      {L"100%%% %%065", L"100% A"},
      {L"90%%127 %%1280.1 %%1292", L"90\u00B0 \u00B10.1 \u22052"},
      {L"50% off, %%x stays", L"50% off, %%x stays"},
      {L"ends in %%", L"ends in %%"},
  };
  for (auto [in, out] : cases) EXPECT_EQ(odTextPlainText(in), OdString(out)) << odstr::narrow(in);
}

TEST(Vectorizer, EverySampleDrawingDraws) {
  namespace fs = std::filesystem;
  // Types the vectorizer draws; a dimension is skipped only when it has no block.
  const std::set<std::string> drawnTypes = {"LINE", "ARC", "CIRCLE", "POINT", "SOLID", "TRACE", "3DFACE",
                                            "LWPOLYLINE", "POLYLINE", "ELLIPSE", "SPLINE", "TEXT", "MTEXT",
                                            "ATTDEF", "INSERT", "LEADER"};
  int files = 0;
  for (const auto& entry : fs::directory_iterator(CORPUS_DIR)) {
    if (entry.path().extension() != ".dxf") continue;
    ++files;
    const std::string name = entry.path().filename().string();
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(entry.path().string());
    Drawn d = draw(*db);
    for (const auto& [type, count] : d.stats.skipped)
      EXPECT_FALSE(drawnTypes.count(type) || type.ends_with("(unreadable)")) << name << ": " << type;
    bool finite = true;
    for (const auto& item : d.primitives.items())
      std::visit([&](const auto& p) {
        OdGiExtents e = odGiExtentsOf(p);
        finite = finite && std::isfinite(e.min.x) && std::isfinite(e.max.y) && e.isValid();
      }, item);
    EXPECT_TRUE(finite) << name << ": a primitive with no finite extents";
    EXPECT_EQ(d.primitives.extents().isValid(), !d.primitives.items().empty()) << name;
  }
  if (files == 0) GTEST_SKIP() << "corpus files missing";
}
