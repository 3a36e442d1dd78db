#include <gtest/gtest.h>

#include "TestSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDmUtil.h"

namespace fs = std::filesystem;

namespace {
using testsupport::haveEzdxf;

// ---- Reading a block's geometry from its tags ----------------------------------

// One drawn shape, the same whatever the version wrote: LWPOLYLINE and
// POLYLINE/VERTEX are both "PLINE" with [closed, then x y bulge startWidth
// endWidth per vertex], widths resolved from the vertex, the polyline's default or
// its constant width; arc angles in [0, 360).
struct Shape { std::string kind; std::vector<double> v; };

double tagValue(const DxfTagList& t, int code, double dflt = 0.0) {
  for (const DxfTag& tag : t)
    if (tag.code == code) return tag.toDouble();
  return dflt;
}

double angle(double degrees) { return std::fmod(std::fmod(degrees, 360.0) + 360.0, 360.0); }

std::vector<Shape> shapesOf(OdDbBlockTableRecord& block) {
  std::vector<Shape> shapes;
  double defaultStart = 0.0, defaultEnd = 0.0;
  for (const OdDbObjectId& id : block.entities()) {
    OdDbObjectPtr e = id.openObject();
    if (!e) continue;
    const std::string kind(e->dxfName());
    const DxfTagList& t = e->tags();
    auto xy = [&](int code) {
      return std::vector<double>{tagValue(t, code), tagValue(t, code + 10)};
    };
    Shape s{kind, {}};
    if (kind == "LINE") {
      s.v = xy(10);
      for (double d : xy(11)) s.v.push_back(d);
    } else if (kind == "CIRCLE" || kind == "ARC") {
      s.v = xy(10);
      s.v.push_back(tagValue(t, 40));
      if (kind == "ARC") s.v.insert(s.v.end(), {angle(tagValue(t, 50)), angle(tagValue(t, 51))});
    } else if (kind == "SOLID") {
      for (int code = 10; code <= 13; ++code)
        for (double d : xy(code)) s.v.push_back(d);
    } else if (kind == "LWPOLYLINE") {
      s.kind = "PLINE";
      s.v.push_back(static_cast<double>(static_cast<int>(tagValue(t, 70)) & 1));
      const double width = tagValue(t, 43);
      for (const DxfTag& tag : t) {
        if (tag.code == 10) s.v.insert(s.v.end(), {tag.toDouble(), 0.0, 0.0, width, width});
        if (s.v.size() < 6) continue;
        const size_t at = s.v.size() - 5;
        if (tag.code == 20) s.v[at + 1] = tag.toDouble();
        if (tag.code == 42) s.v[at + 2] = tag.toDouble();
        if (tag.code == 40) s.v[at + 3] = tag.toDouble();
        if (tag.code == 41) s.v[at + 4] = tag.toDouble();
      }
    } else if (kind == "POLYLINE") {
      s.kind = "PLINE";
      s.v.push_back(static_cast<double>(static_cast<int>(tagValue(t, 70)) & 1));
      defaultStart = tagValue(t, 40);
      defaultEnd = tagValue(t, 41);
    } else if (kind == "VERTEX") {
      if (shapes.empty()) {
        ADD_FAILURE() << "VERTEX without POLYLINE";
        continue;
      }
      for (double d : {tagValue(t, 10), tagValue(t, 20), tagValue(t, 42), tagValue(t, 40, defaultStart),
                       tagValue(t, 41, defaultEnd)})
        shapes.back().v.push_back(d);
      continue;
    } else if (kind == "SEQEND") {
      continue;
    }
    shapes.push_back(std::move(s));
  }
  return shapes;
}

// The shapes of `expected` that `actual` lacks and the other way round (in any
// order, numbers within 1e-6), as text for a failure message; empty when equal.
std::string shapeDifference(const std::vector<Shape>& expected, std::vector<Shape> actual) {
  std::string missing;
  for (const Shape& e : expected) {
    auto it = std::find_if(actual.begin(), actual.end(), [&](const Shape& a) {
      if (a.kind != e.kind || a.v.size() != e.v.size()) return false;
      for (size_t k = 0; k < a.v.size(); ++k)
        if (std::abs(a.v[k] - e.v[k]) > 1e-6) return false;
      return true;
    });
    if (it != actual.end()) {
      actual.erase(it);
      continue;
    }
    missing += " missing " + e.kind + "(";
    for (double d : e.v) missing += std::to_string(d) + " ";
    missing += ")";
  }
  for (const Shape& a : actual) missing += " extra " + a.kind;
  return missing;
}

OdSmartPtr<OdDbBlockTableRecord> openBlock(const OdDbObjectId& id) { return odOpen<OdDbBlockTableRecord>(id); }

OdDbObjectId blockNamed(OdDbDatabase& db, const OdString& name) {
  return odOpen<OdDbBlockTable>(db.getBlockTableId())->getAt(name);
}

size_t blockCount(OdDbDatabase& db) { return odOpen<OdDbBlockTable>(db.getBlockTableId())->recordIds().size(); }

// ---- The independent reader ----------------------------------------------------

struct EzdxfView {
  std::vector<std::string> audit;                                    // findings
  std::map<std::string, std::vector<std::vector<std::string>>> blocks;  // name -> entity fields
  std::string output;
};

// Saves `db` and reads it back with ezdxf, listing the named blocks.
EzdxfView readWithEzdxf(const OdDbDatabase& db, const std::vector<std::string>& names) {
  std::vector<std::string> args{testsupport::tempPath("arrow_blocks.dxf")};
  db.writeDxfFile(args.front());
  args.insert(args.end(), names.begin(), names.end());
  const testsupport::ScriptRun run = testsupport::runScript("check_blocks.py", args);
  fs::remove(args.front());
  EzdxfView view{{}, {}, run.out + run.err};
  std::string current;
  for (const std::string& line : testsupport::lines(run.out)) {
    std::istringstream fields(line);
    std::string head;
    fields >> head;
    if (head == "AUDIT") view.audit.push_back(line);
    if (head == "BLOCK") view.blocks[current = line.substr(6)];
    if (head == "ENTITY") {
      std::vector<std::string> f;
      for (std::string w; fields >> w;) f.push_back(w);
      view.blocks[current].push_back(f);
    }
  }
  if (run.status != 0) view.audit.push_back("check_blocks.py failed");
  return view;
}

// ---- The standard arrows -------------------------------------------------------

// Canonical names and the entities each block holds at unit size ("PLINE" is a
// LWPOLYLINE, or a POLYLINE before R2000); closed filled, the default, has none.
struct StandardArrow { const wchar_t* name; std::vector<std::string> kinds; };
const std::vector<StandardArrow>& standardArrows() {
  static const std::vector<StandardArrow> arrows = {
      {L"_ClosedBlank", {"LINE", "LINE", "LINE"}}, {L"_Closed", {"LINE", "LINE", "LINE", "LINE"}},
      {L"_Dot", {"PLINE", "LINE"}}, {L"_ArchTick", {"PLINE"}}, {L"_Oblique", {"LINE"}},
      {L"_Open", {"LINE", "LINE", "LINE"}}, {L"_Origin", {"CIRCLE", "LINE"}},
      {L"_Origin2", {"CIRCLE", "CIRCLE", "LINE"}}, {L"_Open90", {"LINE", "LINE", "LINE"}},
      {L"_Open30", {"LINE", "LINE", "LINE"}}, {L"_DotSmall", {"PLINE"}}, {L"_DotBlank", {"CIRCLE", "LINE"}},
      {L"_Small", {"CIRCLE"}}, {L"_BoxBlank", {"LINE", "LINE", "LINE", "LINE", "LINE"}},
      {L"_BoxFilled", {"SOLID", "LINE"}}, {L"_DatumBlank", {"LINE", "LINE", "LINE"}}, {L"_DatumFilled", {"SOLID"}},
      {L"_Integral", {"ARC", "ARC"}}, {L"_None", {}},
  };
  return arrows;
}

std::vector<std::string> sorted(std::vector<std::string> v) {
  std::sort(v.begin(), v.end());
  return v;
}

std::string storedName(const OdString& canonical, DxfVersion v) {
  OdString s = canonical;
  if (v < DxfVersion::R2000) s.makeUpper();  // names as R12-R14 store them
  return s.toUtf8();
}

class ArrowBlocks : public ::testing::TestWithParam<DxfVersion> {};

TEST_P(ArrowBlocks, EveryStandardArrowIsMadeOnceAndSurvivesSaving) {
  const DxfVersion version = GetParam();
  OdDbDatabasePtr db = OdDbDatabase::createNew(version);
  EXPECT_TRUE(OdDmUtil::getArrowId(L"", db.get()).isNull());
  EXPECT_TRUE(OdDmUtil::getArrowId(L".", db.get()).isNull());
  EXPECT_EQ(OdDmUtil::arrowName(OdDbObjectId()), OdString());
  const size_t before = blockCount(*db);
  EXPECT_TRUE(OdDmUtil::getArrowId(L"_NoSuchArrow", db.get()).isNull());
  EXPECT_EQ(blockCount(*db), before) << "an unknown name creates nothing";

  std::map<std::string, std::vector<Shape>> made;
  std::vector<std::string> names;
  for (const StandardArrow& a : standardArrows()) {
    const OdString name(a.name);
    SCOPED_TRACE(name.toUtf8());
    const OdDbObjectId id = OdDmUtil::getArrowId(name, db.get());
    ASSERT_FALSE(id.isNull());
    OdString upperWithoutBar = name.mid(1);
    upperWithoutBar.makeUpper();
    EXPECT_EQ(OdDmUtil::getArrowId(name, db.get()), id);
    EXPECT_EQ(OdDmUtil::getArrowId(upperWithoutBar, db.get()), id);
    EXPECT_EQ(OdDmUtil::arrowName(id), name);
    EXPECT_EQ(openBlock(id)->getName().toUtf8(), storedName(name, version));

    std::vector<Shape> shapes = shapesOf(*openBlock(id));
    std::vector<std::string> kinds;
    for (const Shape& s : shapes) kinds.push_back(s.kind);
    EXPECT_EQ(sorted(kinds), sorted(a.kinds));
    made[name.toUtf8()] = shapes;
    names.push_back(storedName(name, version));
  }
  EXPECT_EQ(blockCount(*db), before + standardArrows().size());

  OdDbDatabasePtr back = OdDbDatabase::readDxf(db->toDxf());
  EXPECT_TRUE(back->loadWarnings().empty()) << back->loadWarnings().front();
  for (const StandardArrow& a : standardArrows()) {
    SCOPED_TRACE(OdString(a.name).toUtf8());
    const OdDbObjectId id = blockNamed(*back, a.name);
    ASSERT_FALSE(id.isNull());
    EXPECT_EQ(OdDmUtil::getArrowId(a.name, back.get()), id);
    EXPECT_EQ(OdDmUtil::arrowName(id), OdString(a.name));
    EXPECT_EQ(shapeDifference(made[OdString(a.name).toUtf8()], shapesOf(*openBlock(id))), "");
  }
  EXPECT_EQ(blockCount(*back), before + standardArrows().size());

  if (!haveEzdxf()) GTEST_SKIP() << "/usr/bin/python3 with ezdxf is not available";
  const EzdxfView view = readWithEzdxf(*db, names);
  EXPECT_TRUE(view.audit.empty()) << view.output;
  for (const StandardArrow& a : standardArrows()) {
    const std::string name = storedName(a.name, version);
    SCOPED_TRACE(name);
    auto it = view.blocks.find(name);
    ASSERT_NE(it, view.blocks.end()) << view.output;
    std::vector<std::string> kinds;
    for (const auto& f : it->second) {
      ASSERT_EQ(f.size(), 5u);
      kinds.push_back(f[0] == "LWPOLYLINE" || f[0] == "POLYLINE" ? "PLINE" : f[0]);
      EXPECT_EQ(f[1], "0") << "layer";
      EXPECT_EQ(f[2], "0") << "colour ByBlock";
      EXPECT_EQ(f[3], "BYBLOCK") << "linetype";
      EXPECT_EQ(f[4], version >= DxfVersion::R2000 ? "-2" : "-") << "lineweight";
    }
    EXPECT_EQ(sorted(kinds), sorted(a.kinds));
  }
}

INSTANTIATE_TEST_SUITE_P(NewDrawings, ArrowBlocks, ::testing::Values(DxfVersion::R12, DxfVersion::R2018),
                         [](const auto& info) { return std::string(dxfver::keyword(info.param)); });

// A closed two-vertex polyline with bulges of 1 is a ring; its width fills the disc
// only when it equals the ring's diameter: less leaves a hole, more overlaps.
TEST_P(ArrowBlocks, DotsAreFilledDiscs) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(GetParam());
  for (const wchar_t* name : {L"_Dot", L"_DotSmall"}) {
    std::vector<Shape> shapes = shapesOf(*openBlock(OdDmUtil::getArrowId(name, db.get())));
    auto ring = std::find_if(shapes.begin(), shapes.end(), [](const Shape& s) { return s.kind == "PLINE"; });
    ASSERT_NE(ring, shapes.end());
    ASSERT_EQ(ring->v.size(), 11u);
    const double* a = &ring->v[1];
    const double* b = &ring->v[6];
    EXPECT_EQ(ring->v[0], 1.0) << "closed";
    EXPECT_EQ(a[2], 1.0);
    EXPECT_EQ(b[2], 1.0);
    const double diameter = std::hypot(a[0] - b[0], a[1] - b[1]);
    for (double w : {a[3], a[4], b[3], b[4]}) EXPECT_NEAR(w, diameter, 1e-12) << OdString(name).toUtf8();
  }
}

// Arrow blocks that drawings written by other programs hold, compared with ours.
// (Blocks written by a Python library with its own shapes, upper-case in R2000
// files, are left out: they are not a reference.)
TEST(ArrowBlocksTest, GeometryMatchesArrowBlocksOfRealDrawings) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  const std::pair<const char*, std::vector<const wchar_t*>> references[] = {
      {"qcad__qcad__acad_arrows.dxf", {L"_ArchTick", L"_Oblique", L"_Small", L"_Dot"}},
      {"DomCR__ACadSharp__sample_AC1009_ascii.dxf", {L"_ARCHTICK", L"_CLOSEDBLANK", L"_BOXBLANK"}},
      {"DomCR__ACadSharp__sample_AC1032_ascii.dxf", {L"_ArchTick", L"_ClosedBlank", L"_BoxBlank"}},
      {"LibreDWG__libredwg__2018-Leader.dxf", {L"_Open30"}},
      {"VoronDesign__Voron-2__VORON_Design_-_2.4Build_Plate_250mm.dxf", {L"_Closed"}},
      {"qcad__qcad__leader_overrides.dxf", {L"_DatumFilled"}},
      {"zamtmn__zcad__entities.dxf", {L"_Open90", L"_Integral"}},
      {"zamtmn__zcad___OPS.dxf", {L"_None"}},
      {"gdsestimating__dxf-parser__api-cw750-details.dxf", {L"_OPEN"}},
  };
  for (const auto& [file, blocks] : references) {
    OdDbDatabasePtr real = OdDbDatabase::readDxfFile(std::string(CORPUS_DIR) + "/" + file);
    const bool r12 = real->version() <= DxfVersion::R12;
    OdDbDatabasePtr ours = OdDbDatabase::createNew(r12 ? DxfVersion::R12 : DxfVersion::R2018);
    for (const wchar_t* name : blocks) {
      SCOPED_TRACE(std::string(file) + " " + OdString(name).toUtf8());
      const OdDbObjectId theirs = blockNamed(*real, name);
      ASSERT_FALSE(theirs.isNull());
      // The drawing's own block is found under any spelling, not made again.
      const size_t count = blockCount(*real);
      OdString canonical = OdDmUtil::arrowName(theirs);
      EXPECT_EQ(canonical.iCompare(name), 0);
      EXPECT_EQ(OdDmUtil::getArrowId(canonical, real.get()), theirs);
      EXPECT_EQ(blockCount(*real), count);

      const OdDbObjectId mine = OdDmUtil::getArrowId(canonical, ours.get());
      ASSERT_FALSE(mine.isNull());
      EXPECT_EQ(shapeDifference(shapesOf(*openBlock(theirs)), shapesOf(*openBlock(mine))), "");
    }
  }
}

TEST(ArrowBlocksTest, UserBlocksRoundTripByTheirOwnNames) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018);
  // "Dot" without the underscore is a user's block, not the standard dot.
  for (const wchar_t* name : {L"MyArrow", L"Dot"}) {
    const OdDbObjectId id = odCreateBlock(*db, name);
    EXPECT_EQ(OdDmUtil::arrowName(id), OdString(name));
    EXPECT_EQ(OdDmUtil::getArrowId(name, db.get()), id);
  }
  EXPECT_TRUE(blockNamed(*db, L"_Dot").isNull());
  EXPECT_EQ(OdDmUtil::arrowName(db->getLayerTableId()), OdString()) << "not a block";
}

// Guards against block parts kept where undo does not look (records, sections).
TEST_P(ArrowBlocks, MakingArrowsIsOneUndoStep) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(GetParam());
  const std::string before = db->toDxf();
  db->beginUndoGroup(L"arrows");
  OdDmUtil::getArrowId(L"_Dot", db.get());
  OdDmUtil::getArrowId(L"_ArchTick", db.get());
  db->endUndoGroup();
  const std::string with = db->toDxf();
  db->undo();
  EXPECT_TRUE(db->toDxf() == before);
  EXPECT_TRUE(blockNamed(*db, L"_Dot").isNull());
  db->redo();
  EXPECT_TRUE(db->toDxf() == with);
  EXPECT_FALSE(blockNamed(*db, L"_ArchTick").isNull());
}

// ---- Blocks in general ---------------------------------------------------------

// A LINE made of tags, as a drawing of db's version spells it.
OdDbObjectId appendLine(OdDbDatabase& db, const OdDbObjectId& blockId) {
  const bool objects = dxfver::hasObjects(db.version());
  OdSmartPtr<OdDbEntity> line = OdDbEntity::createObject();
  line->setDxfName("LINE");
  DxfTagList& t = line->tagsForWrite();
  t.emplace_back(0, "LINE");
  if (objects) t.emplace_back(100, "AcDbEntity");
  t.emplace_back(8, "0");
  if (objects) t.emplace_back(100, "AcDbLine");
  for (int code : {10, 20, 30, 11, 21, 31}) t.emplace_back(code, code == 11 ? "5.0" : "0.0");
  return odOpen<OdDbBlockTableRecord>(blockId, OdDb::kForWrite)->appendOdDbEntity(line.get());
}

class NewBlocks : public ::testing::TestWithParam<DxfVersion> {};

TEST_P(NewBlocks, ABlockWithAnEntitySavesAndReloads) {
  const DxfVersion version = GetParam();
  OdDbDatabasePtr db = OdDbDatabase::createNew(version);
  const OdDbObjectId id = odCreateBlock(*db, L"Widget");
  appendLine(*db, id);
  const OdDbObjectId anonymous1 = odCreateBlock(*db, L"*U");
  const OdDbObjectId anonymous2 = odCreateBlock(*db, L"*U");
  EXPECT_NE(openBlock(anonymous1)->getName(), openBlock(anonymous2)->getName());
  EXPECT_TRUE(openBlock(anonymous1)->isAnonymous());
  const std::string widget = storedName(L"Widget", version);
  EXPECT_EQ(openBlock(id)->getName().toUtf8(), widget);

  // Nothing changes when a block cannot be made.
  const size_t objects = db->numObjects(), blocks = db->section("BLOCKS")->items.size();
  const std::pair<const wchar_t*, OdResult> refused[] = {
      {L"widget", eDuplicateKey}, {L"", eInvalidSymbolTableName}, {L"a<b", eInvalidSymbolTableName},
      {L"*", eInvalidSymbolTableName}, {L"*Model_Space", eInvalidSymbolTableName},
      {L"*Paper_Space0", eInvalidSymbolTableName}};
  for (const auto& [name, code] : refused) {
    try {
      odCreateBlock(*db, name);
      ADD_FAILURE() << OdString(name).toUtf8() << " was accepted";
    } catch (const OdError& e) {
      EXPECT_EQ(e.code(), code) << OdString(name).toUtf8();
    }
  }
  EXPECT_EQ(db->numObjects(), objects);
  EXPECT_EQ(db->section("BLOCKS")->items.size(), blocks);

  // Read back, the line must be inside the block and not in model space.
  OdDbDatabasePtr back = OdDbDatabase::readDxf(db->toDxf());
  EXPECT_TRUE(back->loadWarnings().empty()) << back->loadWarnings().front();
  const OdDbObjectId again = blockNamed(*back, OdString::fromUtf8(widget));
  ASSERT_FALSE(again.isNull());
  const OdDbObjectIdArray inside = openBlock(again)->entityIds();
  ASSERT_EQ(inside.size(), 1u);
  EXPECT_EQ(inside[0].openObject()->dxfName(), "LINE");
  EXPECT_TRUE(openBlock(back->getModelSpaceId())->entityIds().empty());
  EXPECT_FALSE(blockNamed(*back, openBlock(anonymous2)->getName()).isNull());

  if (!haveEzdxf()) GTEST_SKIP() << "/usr/bin/python3 with ezdxf is not available";
  const EzdxfView view = readWithEzdxf(*db, {widget});
  EXPECT_TRUE(view.audit.empty()) << view.output;
  ASSERT_EQ(view.blocks.count(widget), 1u) << view.output;
  ASSERT_EQ(view.blocks.at(widget).size(), 1u) << view.output;
  EXPECT_EQ(view.blocks.at(widget)[0][0], "LINE");
}

INSTANTIATE_TEST_SUITE_P(AllVersions, NewBlocks,
                         ::testing::Values(DxfVersion::R12, DxfVersion::R13, DxfVersion::R14, DxfVersion::R2000,
                                           DxfVersion::R2007, DxfVersion::R2018),
                         [](const auto& info) { return std::string(dxfver::keyword(info.param)); });

}  // namespace
