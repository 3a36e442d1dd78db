// Typed entities (line to leader): their values against an independent reader on
// real drawings, new entities saved and reloaded in every kind of file, and edits
// that change nothing but the value edited.
#include <gtest/gtest.h>

#include "TestSupport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <numbers>
#include <set>
#include <sstream>

#include "drawings/OdDbBlockBuilder.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"

namespace fs = std::filesystem;

namespace {
using testsupport::haveEzdxf;
using namespace testsupport;

// An entity's values by name, as the dump script prints them: lists flattened to
// "key.index", numbers and text alike as written.
using Values = std::map<std::string, std::string>;

std::string get(const Values& v, const std::string& key) {
  auto it = v.find(key);
  return it == v.end() ? std::string() : it->second;
}

// ---- the independent reader ----

#define SKIP_WITHOUT_EZDXF() \
  if (!haveEzdxf()) GTEST_SKIP() << "/usr/bin/python3 with ezdxf is not available"

// Runs the dump over `files` (file -> handle -> values); `messages` gets what the audit said.
std::map<std::string, std::map<std::string, Values>> dump(const std::vector<std::string>& files, bool audit,
                                                          int* status = nullptr, std::string* messages = nullptr) {
  std::vector<std::string> args = files;
  if (audit) args.insert(args.begin(), "--audit");
  const ScriptRun run = runScript("dump_entities.py", args);
  if (status) *status = run.status;
  if (messages) *messages = run.err;
  std::map<std::string, std::map<std::string, Values>> out;
  std::string file;
  for (const std::string& line : lines(run.out)) {
    if (line.rfind("FILE ", 0) == 0) {
      file = line.substr(5);
      continue;
    }
    size_t k = line.find(' '), v = line.find(' ', k + 1);  // "handle key value"
    out[file][line.substr(0, k)][line.substr(k + 1, v - k - 1)] = v == std::string::npos ? "" : line.substr(v + 1);
  }
  return out;
}

// ---- our side, described in the dump's terms ----

double deg(double radians) { return radians * 180.0 / std::numbers::pi; }

// The name of the record `id` refers to; "<none>" for a null id.
std::string recordName(const OdDbObjectId& id) {
  auto rec = odOpen<OdDbSymbolTableRecord>(id);
  return rec ? rec->getName().toUtf8() : "<none>";
}

// Empty when the entity is not of a typed class.
Values describe(const OdDbEntity* e) {
  Values j;
  auto num = [&](const std::string& key, double x) {
    char b[32];
    std::snprintf(b, sizeof b, "%.17g", x);
    j[key] = b;
  };
  auto pt = [&](const std::string& key, const OdGePoint3d& p) {
    num(key + ".0", p.x), num(key + ".1", p.y), num(key + ".2", p.z);
  };
  if (auto l = OdDbLine::cast(e)) {
    j["type"] = "LINE", pt("start", l->startPoint()), pt("end", l->endPoint());
  } else if (auto c = OdDbCircle::cast(e)) {
    j["type"] = "CIRCLE", pt("center", c->center()), num("radius", c->radius());
  } else if (auto a = OdDbArc::cast(e)) {
    j["type"] = "ARC", pt("center", a->center()), num("radius", a->radius());
    num("start_angle", deg(a->startAngle())), num("end_angle", deg(a->endAngle()));
  } else if (auto p = OdDbPoint::cast(e)) {
    j["type"] = "POINT", pt("location", p->position());
  } else if (auto s = OdDbSolid::cast(e)) {
    j["type"] = "SOLID";
    for (int i = 0; i < 4; ++i) {
      OdGePoint3d q;
      s->getPointAt(i, q);
      pt("corners." + std::to_string(i), q);
    }
  } else if (auto pl = OdDbPolyline::cast(e)) {
    j["type"] = "LWPOLYLINE";
    for (unsigned i = 0; i < pl->numVerts(); ++i) {
      OdGePoint2d q;
      double sw, ew;
      pl->getPointAt(i, q);
      pl->getWidthsAt(i, sw, ew);
      const std::string v = "vertices." + std::to_string(i) + ".";
      num(v + "0", q.x), num(v + "1", q.y), num(v + "2", sw), num(v + "3", ew), num(v + "4", pl->getBulgeAt(i));
    }
    num("closed", pl->isClosed()), num("const_width", pl->getConstantWidth()), num("elevation", pl->elevation());
  } else if (auto b = OdDbBlockReference::cast(e)) {
    OdGeScale3d k = b->scaleFactors();
    j["type"] = "INSERT", j["name"] = recordName(b->blockTableRecord()), pt("insert", b->position());
    num("scale.0", k.sx), num("scale.1", k.sy), num("scale.2", k.sz), num("rotation", deg(b->rotation()));
  } else if (auto t = OdDbText::cast(e)) {
    j["type"] = "TEXT", pt("insert", t->position()), num("height", t->height()), j["text"] = t->textString().toUtf8();
    num("rotation", deg(t->rotation())), j["style"] = recordName(t->textStyle());
  } else if (auto m = OdDbMText::cast(e)) {
    j["type"] = "MTEXT", pt("insert", m->location()), num("height", m->textHeight()), num("width", m->width());
    num("attachment", m->attachment()), j["text"] = m->contents().toUtf8(), j["style"] = recordName(m->textStyle());
    num("rotation", deg(m->rotation()));
  } else if (auto ld = OdDbLeader::cast(e)) {
    j["type"] = "LEADER";
    for (int i = 0; i < ld->numVertices(); ++i) pt("vertices." + std::to_string(i), ld->vertexAt(i));
    OdDbHandle anno = ld->annotationObjId().getHandle();
    num("arrowhead", ld->hasArrowHead()), num("hookline", ld->hasHookLine()), num("annotation_type", ld->annoType());
    j["annotation"] = anno.isNull() ? std::string() : anno.ascii().toUtf8();
    j["dimstyle"] = recordName(ld->dimensionStyle());
  }
  return j;
}

// The same names on both sides; numbers agree to rounding (angles modulo a turn),
// names of records whatever their case, other text exactly.
void expectSame(const Values& ours, const Values& theirs, const std::string& where) {
  for (auto& [k, v] : theirs) {
    if (!ours.contains(k)) ADD_FAILURE() << where << ": only the other reader has " << k;
  }
  for (auto& [k, v] : ours) {
    auto it = theirs.find(k);
    if (it == theirs.end()) {
      ADD_FAILURE() << where << ": only we have " << k;
      continue;
    }
    const std::string name = k.substr(0, k.find('.'));
    if (name == "name" || name == "style" || name == "dimstyle") {
      EXPECT_EQ(OdString::fromUtf8(v).iCompare(OdString::fromUtf8(it->second)), 0) << where << "." << k << ": " << v
                                                                                   << " vs " << it->second;
    } else if (name == "type" || name == "text" || name == "annotation") {
      EXPECT_EQ(v, it->second) << where << "." << k;
    } else {
      const double a = std::stod(v), b = std::stod(it->second);
      double d = std::fabs(a - b);
      if (name == "rotation" || name == "start_angle" || name == "end_angle") d = std::fabs(std::remainder(d, 360.0));
      EXPECT_LE(d, 1e-9 * std::max(1.0, std::fabs(b))) << where << "." << k << ": " << v << " vs " << it->second;
    }
  }
}

OdDbEntityPtr entityByHandle(const OdDbDatabase& db, const std::string& hex) {
  return odOpen<OdDbEntity>(db.getOdDbObjectId(OdDbHandle(std::stoull(hex, nullptr, 16))));
}

}  // namespace

// ---- real drawings ----

TEST(Entities, RealDrawingsReadAsAnIndependentReaderReadsThem) {
  SKIP_WITHOUT_EZDXF();
  const char* names[] = {"LibreDWG__libredwg__example_r12.dxf", "LibreDWG__libredwg__example_2000.dxf",
                         "qcad__qcad__examples-entities.dxf", "DomCR__ACadSharp__sample_AC1032_ascii.dxf"};
  std::vector<std::string> files;
  for (auto n : names)
    if (fs::exists(corpus(n))) files.push_back(corpus(n));
  if (files.empty()) GTEST_SKIP() << "corpus files missing";
  std::map<std::string, OdDbDatabasePtr> dbs;
  for (auto& f : files) dbs[f] = OdDbDatabase::readDxfFile(f);

  std::map<std::string, std::map<std::string, int>> seen;  // file -> type -> count
  int status = -1;
  std::string messages;
  for (auto& [file, entities] : dump(files, false, &status, &messages))
    for (auto& [handle, theirs] : entities) {
      const std::string where = fs::path(file).filename().string() + " " + get(theirs, "type") + " " + handle;
      OdDbEntityPtr e = entityByHandle(*dbs[file], handle);
      ASSERT_TRUE(e) << where;
      expectSame(describe(e.get()), theirs, where);
      ++seen[file][get(theirs, "type")];
    }
  EXPECT_EQ(status, 0) << messages;
  // Every kind turned up somewhere, and each file was read.
  std::set<std::string> kinds;
  for (auto& [file, types] : seen)
    for (auto& [type, n] : types) kinds.insert(type);
  EXPECT_EQ(kinds.size(), 10u);
  EXPECT_EQ(seen.size(), files.size());
}

TEST(Entities, EditingOneValueRewritesOnlyItsLine) {
  struct Case {
    const char* file;
    const char* type;
    std::function<double(OdDbEntity&)> edit;  // returns the value the new line must hold
  };
  const Case cases[] = {
      {"LibreDWG__libredwg__example_2000.dxf", "CIRCLE",
       [](OdDbEntity& e) { auto c = OdDbCircle::cast(&e); c->setRadius(c->radius() + 1.5); return c->radius(); }},
      {"LibreDWG__libredwg__example_r12.dxf", "ARC",
       [](OdDbEntity& e) { auto a = OdDbArc::cast(&e); a->setEndAngle(a->endAngle() + 0.25); return deg(a->endAngle()); }},
      // R12 coordinates carry twenty digits: x must keep them when only y changes.
      {"LibreDWG__libredwg__example_r12.dxf", "TEXT",
       [](OdDbEntity& e) { auto t = OdDbText::cast(&e); auto p = t->position(); p.y += 1; t->setPosition(p); return p.y; }},
      {"LibreDWG__libredwg__example_2000.dxf", "LINE",
       [](OdDbEntity& e) { auto l = OdDbLine::cast(&e); auto p = l->endPoint(); p.y -= 3; l->setEndPoint(p); return p.y; }},
      {"LibreDWG__libredwg__example_2000.dxf", "LWPOLYLINE",
       [](OdDbEntity& e) { auto pl = OdDbPolyline::cast(&e); OdGePoint2d p; pl->getPointAt(2, p); p.x += 10;
                           pl->setPointAt(2, p); return p.x; }},
      {"LibreDWG__libredwg__example_2000.dxf", "MTEXT",
       [](OdDbEntity& e) { auto m = OdDbMText::cast(&e); m->setTextHeight(m->textHeight() * 2); return m->textHeight(); }},
      {"LibreDWG__libredwg__example_2000.dxf", "SOLID",
       [](OdDbEntity& e) { auto s = OdDbSolid::cast(&e); OdGePoint3d p; s->getPointAt(1, p); p.x = -4.5;
                           s->setPointAt(1, p); return -4.5; }},
      {"qcad__qcad__leader_overrides.dxf", "LEADER",
       [](OdDbEntity& e) { auto l = OdDbLeader::cast(&e); auto p = l->vertexAt(1); p.y += 2; l->setVertexAt(1, p);
                           return p.y; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " " + c.type);
    if (!fs::exists(corpus(c.file))) continue;
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(corpus(c.file));
    const std::string before = db->toDxf();
    OdDbEntityPtr target;
    for (uint64_t h = 1; h < db->handseed().value() && !target; ++h)
      if (auto e = odOpen<OdDbEntity>(db->getOdDbObjectId(OdDbHandle(h)), OdDb::kForWrite); e && e->dxfName() == c.type)
        target = e;
    ASSERT_TRUE(target);
    double expected = c.edit(*target);
    const std::string after = db->toDxf();
    auto diff = changedRegion(before, after);
    ASSERT_EQ(diff.size(), 1u) << (diff.empty() ? "" : diff.front());
    EXPECT_NEAR(std::stod(diff.front()), expected, 1e-9 * std::max(1.0, std::fabs(expected)));
    // And it reads back as the value set, with everything else as before.
    OdDbDatabasePtr again = OdDbDatabase::readDxf(after);
    OdDbEntityPtr reread = entityByHandle(*again, target->getDbHandle().ascii().toUtf8());
    expectSame(describe(reread.get()), describe(target.get()), "reread");
  }
}

TEST(Entities, StructuralEditsReadBackIndependently) {
  SKIP_WITHOUT_EZDXF();
  OdDbDatabasePtr db = loadCorpus("LibreDWG__libredwg__example_2000.dxf");
  if (!db) GTEST_SKIP() << "corpus file missing";
  OdDbPolylinePtr pl;
  OdDbMTextPtr turned;  // one whose direction vector sets its rotation
  for (uint64_t h = 1; h < db->handseed().value(); ++h) {
    OdDbObjectPtr o = db->getOdDbObjectId(OdDbHandle(h)).openObject(OdDb::kForWrite);
    if (auto p = OdDbPolyline::cast(o.get()); p && !pl && p->numVerts() >= 5) pl = p;
    if (auto m = OdDbMText::cast(o.get()); m && !turned && m->rotation() != 0.0) turned = m;
  }
  ASSERT_TRUE(pl && turned);

  // Vertices are removed and inserted whole; a constant width replaces the vertices' own.
  std::vector<OdGePoint2d> expected(pl->numVerts());
  for (unsigned i = 0; i < expected.size(); ++i) pl->getPointAt(i, expected[i]);
  pl->removeVertexAt(0);
  expected.erase(expected.begin());
  pl->addVertexAt(2, {-1, -2}, 0.5);
  expected.insert(expected.begin() + 2, OdGePoint2d{-1, -2});
  pl->setWidthsAt(0, 1.0, 2.0);
  pl->setConstantWidth(0.5);
  turned->setRotation(1.0);

  const std::string file = tempPath("edited.dxf");
  db->writeDxfFile(file);
  const OdDbEntity* edited[] = {pl.get(), turned.get()};
  size_t found = 0;
  auto dumped = dump({file}, false);
  for (auto& [handle, theirs] : dumped[file])
    for (const OdDbEntity* e : edited)
      if (handle == e->getDbHandle().ascii().toUtf8()) {
        expectSame(describe(e), theirs, "ezdxf " + get(theirs, "type"));
        ++found;
      }
  EXPECT_EQ(found, 2u);
  fs::remove(file);

  ASSERT_EQ(pl->numVerts(), expected.size());
  for (unsigned i = 0; i < expected.size(); ++i) {
    OdGePoint2d p;
    double sw, ew;
    pl->getPointAt(i, p);
    pl->getWidthsAt(i, sw, ew);
    EXPECT_EQ(p, expected[i]) << i;
    EXPECT_EQ(sw, 0.5);
    EXPECT_EQ(ew, 0.5);
    EXPECT_EQ(pl->getBulgeAt(i), i == 2 ? 0.5 : 0.0);
  }
  EXPECT_NEAR(turned->rotation(), 1.0, 1e-12);
}

TEST(Entities, TriangleSolidRepeatsItsThirdCorner) {
  // Found in no sample drawing, so written out here: a SOLID without its fourth corner.
  OdDbDatabasePtr db = OdDbDatabase::readDxf(
      "  0\nSECTION\n  2\nENTITIES\n  0\nSOLID\n  8\n0\n 10\n0.0\n 20\n0.0\n 11\n4.0\n 21\n0.0\n"
      " 12\n0.0\n 22\n3.0\n  0\nENDSEC\n  0\nEOF\n");
  OdDbSolidPtr solid = OdDbSolid::cast(db->section("ENTITIES")->items.front().get());
  ASSERT_TRUE(solid);
  OdGePoint3d p;
  solid->getPointAt(3, p);
  EXPECT_EQ(p, (OdGePoint3d{0, 3, 0}));
  solid->setOpenMode(OdDb::kForWrite);
  solid->setPointAt(3, {1, 1, 0});
  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  auto reread = OdDbSolid::cast(again->section("ENTITIES")->items.front().get());
  reread->getPointAt(3, p);
  EXPECT_EQ(p, (OdGePoint3d{1, 1, 0}));
  reread->getPointAt(2, p);
  EXPECT_EQ(p, (OdGePoint3d{0, 3, 0}));
  EXPECT_THROW(reread->getPointAt(4, p), OdError);
}

// ---- new drawings ----

class NewEntities : public ::testing::TestWithParam<DxfVersion> {};

TEST_P(NewEntities, SaveReloadAndReadIndependentlyAsSet) {
  const DxfVersion version = GetParam();
  OdDbDatabasePtr db = OdDbDatabase::createNew(version, true);
  const bool r12 = version == DxfVersion::R12;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite);
  ASSERT_TRUE(ms);
  OdDbObjectId block = odCreateBlock(*db, L"MARK");
  OdDbObjectId style = odOpen<OdDbSymbolTable>(db->getTextStyleTableId())->recordIds().front();
  std::vector<OdDbObjectId> made;
  // Ø and ° are in ANSI_1252; ≈ is not, and is escaped in files that use it.
  const wchar_t* kText = L"\u00D8 20\u00B0 \u2248 %%c";
  // Long enough for three pieces, with characters of one to three bytes where pieces end.
  std::wstring contents;
  for (int i = 0; i < 90; ++i) contents += L"\u00E4b\u4E2D{\\Px}";

  // Values are set before appending, as programs usually do.
  auto line = OdDbLine::createFor(*db);
  line->setStartPoint({1, 2, 3});
  line->setEndPoint({4.5, -6, 0});
  made.push_back(ms->appendOdDbEntity(line.get()));
  auto circle = OdDbCircle::createFor(*db);
  circle->setCenter({10, 10, 0});
  circle->setRadius(2.5);
  odOpen<OdDbBlockTableRecord>(block, OdDb::kForWrite)->appendOdDbEntity(circle.get());
  made.push_back(circle->objectId());
  auto arc = OdDbArc::createFor(*db);
  arc->setCenter({-1, -2, 0});
  arc->setRadius(4);
  arc->setStartAngle(0.5);
  arc->setEndAngle(4.0);
  made.push_back(ms->appendOdDbEntity(arc.get()));
  auto point = OdDbPoint::createFor(*db);
  point->setPosition({7, 8, 9});
  made.push_back(ms->appendOdDbEntity(point.get()));
  auto solid = OdDbSolid::createFor(*db);
  for (int i = 0; i < 4; ++i) solid->setPointAt(i, {double(i % 2), double(i / 2), 0});
  made.push_back(ms->appendOdDbEntity(solid.get()));
  auto insert = OdDbBlockReference::createFor(*db);
  insert->setBlockTableRecord(block);
  insert->setPosition({20, 30, 0});
  insert->setScaleFactors({2, 3, 1});
  insert->setRotation(0.25);
  made.push_back(ms->appendOdDbEntity(insert.get()));
  auto text = OdDbText::createFor(*db);
  text->setPosition({0, -10, 0});
  text->setHeight(2.5);
  text->setTextString(kText);
  text->setRotation(0.3);
  text->setTextStyle(style);
  made.push_back(ms->appendOdDbEntity(text.get()));
  EXPECT_THROW(text->setTextStyle(db->getLayerTableId()), OdError);
  // Without createFor there is no telling which tags the entity needs.
  EXPECT_THROW(OdDbLine::createObject()->setStartPoint({1, 1, 1}), OdError);

  if (r12) {
    EXPECT_THROW(OdDbPolyline::createFor(*db), OdError);
    EXPECT_THROW(OdDbMText::createFor(*db), OdError);
    EXPECT_THROW(OdDbLeader::createFor(*db), OdError);
  } else {
    auto pl = OdDbPolyline::createFor(*db);
    pl->addVertexAt(0, {0, 0});
    pl->addVertexAt(5, {10, 0}, 0.5);
    pl->addVertexAt(1, {5, -5}, 0, 0.25, 0.75);  // between the two
    pl->setClosed(true);
    pl->setElevation(1.5);
    made.push_back(ms->appendOdDbEntity(pl.get()));
    auto mtext = OdDbMText::createFor(*db);
    mtext->setLocation({3, 4, 0});
    mtext->setTextHeight(3.5);
    mtext->setWidth(40);
    mtext->setAttachment(OdDbMText::kMiddleCenter);
    mtext->setRotation(0.4);
    mtext->setContents(contents);
    made.push_back(ms->appendOdDbEntity(mtext.get()));
    auto leader = OdDbLeader::createFor(*db);
    leader->appendVertex({0, 0, 0});
    leader->appendVertex({5, 5, 0});
    leader->appendVertex({9, 5, 0});
    leader->disableArrowHead();
    made.push_back(ms->appendOdDbEntity(leader.get()));
    leader->attachAnnotation(mtext->objectId());
    EXPECT_EQ(leader->annoType(), OdDbLeader::kMText);
    EXPECT_FALSE(leader->dimensionStyle().isNull());
    EXPECT_THROW(leader->attachAnnotation(line->objectId()), OdError);
  }

  const std::string bytes = db->toDxf();
  OdDbDatabasePtr again = OdDbDatabase::readDxf(bytes);
  std::map<std::string, Values> set;  // handle -> values as set
  for (auto& id : made) {
    const std::string h = id.getHandle().ascii().toUtf8();
    set[h] = describe(odOpen<OdDbEntity>(id).get());
    OdDbEntityPtr e = entityByHandle(*again, h);
    ASSERT_TRUE(e) << h;
    expectSame(describe(e.get()), set[h], "reloaded " + set[h]["type"]);
    // Text goes through the drawing's encoding, set before the entity was in it.
    if (auto t = OdDbText::cast(e.get())) {
      EXPECT_EQ(t->textString(), OdString(kText));
    }
    if (auto m = OdDbMText::cast(e.get())) {
      EXPECT_EQ(m->contents(), OdString(contents));
      int pieces = 0;
      for (const DxfTag& t : m->tags())
        if (t.code == 3 || t.code == 1) {
          ++pieces;
          EXPECT_LE(t.text.size(), 250u);
        }
      EXPECT_GE(pieces, 3);
    }
  }

  if (!haveEzdxf()) GTEST_SKIP() << "/usr/bin/python3 with ezdxf is not available";
  const std::string file = tempPath("new_entities.dxf");
  std::ofstream(file, std::ios::binary) << bytes;
  int status = -1;
  std::string messages;
  size_t found = 0;
  auto dumped = dump({file}, true, &status, &messages);
  for (auto& [handle, theirs] : dumped[file]) {
    auto it = set.find(handle);
    if (it == set.end()) continue;
    ++found;
    expectSame(it->second, theirs, "ezdxf " + get(theirs, "type"));
  }
  EXPECT_EQ(status, 0) << messages;
  EXPECT_EQ(found, made.size());
  fs::remove(file);
}

INSTANTIATE_TEST_SUITE_P(Versions, NewEntities, ::testing::Values(DxfVersion::R12, DxfVersion::R2000, DxfVersion::R2018),
                         [](const auto& info) { return std::string(dxfver::keyword(info.param)); });
