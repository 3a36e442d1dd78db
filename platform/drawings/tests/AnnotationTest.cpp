// Annotation scales and associativity as real drawings store them.
#include <gtest/gtest.h>

#include <set>

#include "TestSupport.h"
#include "drawings/OdDbAnnotation.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"

using testsupport::loadCorpus;

TEST(Annotation, AnnotativeLeadersReachTheirScalesThroughTheContextData) {
  for (const char* name : {"LibreDWG__libredwg__2000-Leader.dxf", "LibreDWG__libredwg__2018-Leader.dxf"}) {
    OdDbDatabasePtr db = loadCorpus(name);
    if (!db) GTEST_SKIP();
    // Every scale of the drawing has a name, and one of them is the current scale.
    std::set<std::wstring> scaleNames;
    for (auto& id : OdDbAnnotation::scaleIds(*db)) {
      auto scale = odOpen<OdDbScale>(id);
      ASSERT_TRUE(scale) << name;
      EXPECT_FALSE(scale->scaleName().isEmpty());
      EXPECT_GT(scale->drawingUnits(), 0.0);
      scaleNames.insert(scale->scaleName().str());
    }
    EXPECT_TRUE(scaleNames.count(db->getCANNOSCALE().str())) << name << " CANNOSCALE " << db->getCANNOSCALE().toUtf8();
    int annotative = 0;
    auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
    for (auto& id : ms->entityIds()) {
      auto e = odOpen<OdDbEntity>(id);
      if (e->dxfName() != "LEADER" || !OdDbAnnotation::isAnnotative(*e)) continue;
      ++annotative;
      auto contexts = OdDbAnnotation::contextDataIds(*e);
      ASSERT_FALSE(contexts.empty()) << name;
      int defaults = 0;
      for (auto& cid : contexts) {
        auto c = odOpen<OdDbAnnotScaleObjectContextData>(cid);
        ASSERT_TRUE(c) << name;
        EXPECT_TRUE(scaleNames.count(c->scaleName().str())) << c->scaleName().toUtf8();
        defaults += c->isDefaultContextData();
      }
      EXPECT_EQ(defaults, 1) << "one scale is the entity's default";
    }
    EXPECT_GT(annotative, 0) << name;
  }
}

TEST(Annotation, ChangingTheDefaultScaleAndCurrentScaleSurvivesSaving) {
  OdDbDatabasePtr db = loadCorpus("LibreDWG__libredwg__2018-Leader.dxf");
  if (!db) GTEST_SKIP();
  db->setCANNOSCALE(L"1:2");
  OdDbObjectId contextId;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
  for (auto& id : ms->entityIds())
    for (auto& cid : OdDbAnnotation::contextDataIds(*odOpen<OdDbEntity>(id))) contextId = cid;
  ASSERT_FALSE(contextId.isNull());
  auto c = odOpen<OdDbAnnotScaleObjectContextData>(contextId, OdDb::kForWrite);
  bool was = c->isDefaultContextData();
  c->setIsDefaultContextData(!was);
  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  EXPECT_EQ(again->getCANNOSCALE(), OdString(L"1:2"));
  EXPECT_EQ(odOpen<OdDbAnnotScaleObjectContextData>(again->getOdDbObjectId(contextId.getHandle()))->isDefaultContextData(), !was);
}

TEST(Annotation, DimensionsFindTheirAssociativityObject) {
  OdDbDatabasePtr db = loadCorpus("DomCR__ACadSharp__sample_AC1015_ascii.dxf");
  if (!db) GTEST_SKIP();
  int associative = 0, dims = 0;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
  for (auto& id : ms->entityIds()) {
    auto d = odOpen<OdDbDimension>(id);
    if (!d) continue;
    ++dims;
    if (!d->isAssociative()) continue;
    ++associative;
    // The association points back at its dimension.
    auto assoc = odOpen<OdDbObject>(d->dimAssocId());
    ASSERT_TRUE(assoc);
    EXPECT_EQ(assoc->dxfName(), "DIMASSOC");
    auto owner = assoc->firstValue(330);
    ASSERT_TRUE(owner);
  }
  EXPECT_GT(dims, 0);
  EXPECT_GT(associative, 0);
}
