#include "host/HostSampleDb.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "drawings/DimGeometry.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"
#include "drawings/OdDbVectorizer.h"
#include "drawings/OdGiPrimitives.h"

namespace {

// What kind of dimension an entity is, by the name users know it by; "" for others.
std::string kindOf(const OdDbEntity& e) {
  if (e.isKindOf(OdDbArcDimension::desc())) return "arc length";
  if (e.isKindOf(VxHugeRadius::desc())) return "jogged radius";
  if (e.isKindOf(OdDbRotatedDimension::desc())) return "rotated";
  if (e.isKindOf(OdDbAlignedDimension::desc())) return "aligned";
  if (e.isKindOf(OdDb2LineAngularDimension::desc())) return "angular 2-line";
  if (e.isKindOf(OdDb3PointAngularDimension::desc())) return "angular 3-point";
  if (e.isKindOf(OdDbDiametricDimension::desc())) return "diameter";
  if (e.isKindOf(OdDbRadialDimension::desc())) return "radius";
  if (e.isKindOf(OdDbOrdinateDimension::desc())) return "ordinate";
  if (e.isKindOf(OdDbLeader::desc())) return "leader";
  if (e.isKindOf(OdDbMText::desc())) return "mtext";
  return "";
}

std::map<std::string, int> census(const OdDbDatabase& db) {
  std::map<std::string, int> n;
  auto ms = odOpen<OdDbBlockTableRecord>(db.getModelSpaceId());
  for (const OdDbObjectId& id : ms->entityIds()) {
    auto e = odOpen<OdDbEntity>(id);
    if (e && !e->isErased()) ++n[kindOf(*e)];
  }
  return n;
}

OdGiRecorder picture(const OdDbDatabase& db) {
  OdGiRecorder rec;
  OdDbVectorizer(rec).drawBlock(db);
  return rec;
}

OdDbDatabasePtr source(bool metric, int lunits = 2, int luprec = 4) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018, metric);
  db->setHeaderInt("$LUNITS", 70, lunits);
  db->setHeaderInt("$LUPREC", 70, luprec);
  return db;
}

// Each source gets its own sample, forgotten at the end of the test.
struct Dropper {
  const OdDbDatabase* source;
  ~Dropper() { hostDropSampleDb(source); }
};

}  // namespace

TEST(HostSampleDb, HoldsEveryKindOfDimensionOnceAndALeaderWithText) {
  for (bool metric : {false, true}) {
    OdDbDatabasePtr src = source(metric);
    Dropper drop{src.get()};
    const auto n = census(*UpdateSampleDb(src.get()));
    for (const char* kind : {"rotated", "aligned", "angular 2-line", "angular 3-point", "arc length", "radius",
                             "jogged radius", "diameter", "ordinate", "leader", "mtext"})
      EXPECT_EQ(n.count(kind) ? n.at(kind) : 0, 1) << kind << (metric ? " (metric)" : " (imperial)");
  }
}

TEST(HostSampleDb, EveryDimensionUsesTheCurrentStyleAndRecomputes) {
  for (bool metric : {false, true}) {
    OdDbDatabasePtr src = source(metric);
    Dropper drop{src.get()};
    OdDbDatabase* sample = UpdateSampleDb(src.get());
    // What the preview does after copying a style in: recompute every block.
    auto ms = odOpen<OdDbBlockTableRecord>(sample->getModelSpaceId());
    int dims = 0;
    for (const OdDbObjectId& id : ms->entityIds()) {
      auto dim = odOpen<OdDbDimension>(id, OdDb::kForWrite);
      if (!dim) continue;
      ++dims;
      EXPECT_EQ(dim->dimensionStyle(), sample->dimstyle()) << kindOf(*dim);
      EXPECT_FALSE(dim->dimBlockId().isNull()) << kindOf(*dim) << " has no block yet";
      EXPECT_EQ(recomputeDimBlock(*dim), eOk) << kindOf(*dim);
    }
    EXPECT_EQ(dims, 9);
  }
}

TEST(HostSampleDb, IsCompactAndNoTwoTextsOverlapAtDefaultSettings) {
  for (bool metric : {true, false}) {
    OdDbDatabasePtr src = source(metric);
    Dropper drop{src.get()};
    OdDbDatabase* sample = UpdateSampleDb(src.get());
    const OdGiRecorder rec = picture(*sample);
    const OdGiExtents ext = rec.extents();
    ASSERT_TRUE(ext.isValid());
    // In text heights: a picture that a small preview shows with readable text.
    const double txt = sample->dimtxt();
    const double w = (ext.max.x - ext.min.x) / txt, h = (ext.max.y - ext.min.y) / txt;
    EXPECT_TRUE(std::isfinite(w) && std::isfinite(h));
    EXPECT_GT(w, 30.0);
    EXPECT_LT(w, 70.0);
    EXPECT_GT(h, 15.0);
    EXPECT_LT(h, 40.0);

    const auto texts = rec.all<OdGiText>();
    EXPECT_EQ(texts.size(), 10u) << "one text per dimension and the note";
    for (std::size_t i = 0; i < texts.size(); ++i)
      for (std::size_t j = i + 1; j < texts.size(); ++j) {
        const OdGiExtents a = odGiExtentsOf(texts[i]), b = odGiExtentsOf(texts[j]);
        const bool apart = a.max.x < b.min.x || b.max.x < a.min.x || a.max.y < b.min.y || b.max.y < a.min.y;
        EXPECT_TRUE(apart) << texts[i].text.toUtf8() << " overlaps " << texts[j].text.toUtf8()
                           << (metric ? " (metric)" : " (imperial)");
      }
  }
}

TEST(HostSampleDb, OneSamplePerSourceRefreshedFromItsUnits) {
  OdDbDatabasePtr a = source(true, 2, 4), b = source(true, 4, 2);
  Dropper dropA{a.get()}, dropB{b.get()};
  OdDbDatabase* sampleA = UpdateSampleDb(a.get());
  OdDbDatabase* sampleB = UpdateSampleDb(b.get());
  EXPECT_NE(sampleA, sampleB);
  EXPECT_EQ(sampleA->getLUNITS(), 2);
  EXPECT_EQ(sampleB->getLUNITS(), 4);

  a->setHeaderInt("$LUNITS", 70, 3);
  a->setHeaderInt("$LUPREC", 70, 6);
  a->setHeaderInt("$AUNITS", 70, 1);
  a->setHeaderInt("$AUPREC", 70, 3);
  ASSERT_EQ(UpdateSampleDb(a.get()), sampleA);
  EXPECT_EQ(sampleA->getLUNITS(), 3);
  EXPECT_EQ(sampleA->getLUPREC(), 6);
  EXPECT_EQ(sampleA->getAUNITS(), 1);
  EXPECT_EQ(sampleA->getAUPREC(), 3);
  EXPECT_EQ(sampleA->getMEASUREMENT(), 1);
  EXPECT_EQ(sampleB->getLUNITS(), 4) << "another drawing's sample is left alone";

  // A change the caller made in the sample stays: it is the same drawing.
  sampleA->setHeaderInt("$USERI1", 70, 7);
  EXPECT_EQ(UpdateSampleDb(a.get())->headerInt("$USERI1", 0), 7);
}

TEST(HostSampleDb, DroppingForgetsTheSample) {
  OdDbDatabasePtr src = source(false);
  OdDbDatabase* first = UpdateSampleDb(src.get());
  first->setHeaderInt("$USERI1", 70, 7);
  hostDropSampleDb(src.get());
  OdDbDatabase* second = UpdateSampleDb(src.get());
  EXPECT_EQ(second->headerInt("$USERI1", 0), 0) << "a fresh sample after the drop";
  hostDropSampleDb(src.get());

  // Without a source: a sample of its own, kept like any other.
  OdDbDatabase* alone = UpdateSampleDb(nullptr);
  ASSERT_NE(alone, nullptr);
  EXPECT_EQ(UpdateSampleDb(nullptr), alone);
  EXPECT_EQ(census(*alone).at("rotated"), 1);
  hostDropSampleDb(nullptr);
}

TEST(HostSampleDb, FollowsTheSourceFromImperialToMetric) {
  OdDbDatabasePtr src = source(false);
  Dropper drop{src.get()};
  const OdGiExtents inch = picture(*UpdateSampleDb(src.get())).extents();
  src->setHeaderInt("$MEASUREMENT", 70, 1);
  OdDbDatabase* sample = UpdateSampleDb(src.get());
  const OdGiExtents mm = picture(*sample).extents();
  // Drawn for 2.5 text instead of 0.18: about ten times as large (inches take
  // a little more room for their four decimals).
  const double ratio = (mm.max.x - mm.min.x) / (inch.max.x - inch.min.x);
  EXPECT_GT(ratio, 7.0);
  EXPECT_LT(ratio, 14.0);
  EXPECT_EQ(sample->getMEASUREMENT(), 1);
}

TEST(HostSampleDb, WrittenSampleReadsBackHereAndInTheIndependentReader) {
  OdDbDatabasePtr src = source(true);
  Dropper drop{src.get()};
  OdDbDatabase* sample = UpdateSampleDb(src.get());
  const std::string bytes = sample->toDxf();
  OdDbDatabasePtr back = OdDbDatabase::readDxf(bytes);
  EXPECT_EQ(census(*back), census(*sample));
  EXPECT_TRUE(back->loadWarnings().empty());

  if (std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") != 0) GTEST_SKIP() << "no ezdxf";
  namespace fs = std::filesystem;
  const fs::path dir = fs::path(::testing::TempDir()) / ("sample-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  const fs::path dxf = dir / "sample.dxf", out = dir / "out.txt", py = dir / "check.py";
  std::ofstream(dxf, std::ios::binary) << bytes;
  // Counts the dimensions by kind (type code & 15, and the class names of the
  // others) and leaders, and what ezdxf's audit says.
  std::ofstream(py) << "import sys, ezdxf\n"
                       "doc = ezdxf.readfile(sys.argv[1])\n"
                       "a = doc.audit()\n"
                       "n = {}\n"
                       "for e in doc.modelspace():\n"
                       "    t = e.dxftype()\n"
                       "    k = t + ('%d' % (e.dxf.dimtype & 15) if t == 'DIMENSION' else '')\n"
                       "    n[k] = n.get(k, 0) + 1\n"
                       "    if t.endswith('DIMENSION') and e.dxf.hasattr('geometry'):\n"
                       "        assert doc.blocks.get(e.dxf.geometry) is not None, e.dxf.geometry\n"
                       "print(' '.join('%s=%d' % kv for kv in sorted(n.items())))\n"
                       "print('errors=%d' % len(a.errors))\n";
  const std::string cmd = "/usr/bin/python3 '" + py.string() + "' '" + dxf.string() + "' >'" + out.string() + "' 2>&1";
  const int status = std::system(cmd.c_str());
  std::stringstream got;
  got << std::ifstream(out).rdbuf();
  ASSERT_EQ(status, 0) << got.str();
  EXPECT_EQ(got.str(),
            "ARC=3 ARC_DIMENSION=1 CIRCLE=2 DIMENSION0=1 DIMENSION1=1 DIMENSION2=1 DIMENSION3=1 DIMENSION4=1 "
            "DIMENSION5=1 DIMENSION6=1 LARGE_RADIAL_DIMENSION=1 LEADER=1 LINE=10 MTEXT=1\nerrors=0\n");
  fs::remove_all(dir);
}
