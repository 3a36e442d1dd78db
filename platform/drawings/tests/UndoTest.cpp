// Undo and redo: random edits made in steps over real drawings, taken back and
// brought back in any order, must save exactly the bytes of their time; and the
// rules of groups, blocking and forgetting.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "TestSupport.h"
#include "drawings/OdDbDatabase.h"

namespace {

using testsupport::loadCorpus;

OdDbObjectId addLayer(OdDbDatabase& db, const OdString& name) { return testsupport::addLayer(db, name, 3); }

OdDbObjectId addPoint(OdDbDatabase& db, double x) {
  auto ms = odOpen<OdDbBlockTableRecord>(db.getModelSpaceId(), OdDb::kForWrite);
  OdDbEntityPtr point = OdDbEntity::createObject();
  point->setDxfName("POINT");
  OdDbObjectId id = ms->appendOdDbEntity(point.get());
  DxfTagList& t = point->tagsForWrite();
  if (dxfver::hasObjects(db.version())) t.emplace_back(100, "AcDbEntity");
  t.emplace_back(8, "0");
  if (dxfver::hasObjects(db.version())) t.emplace_back(100, "AcDbPoint");
  t.emplace_back(10, dxfFormatDouble(x));
  t.emplace_back(20, "0.0");
  t.emplace_back(30, "0.0");
  return id;
}

OdDbObjectId addXrecord(OdDbDatabase& db, const OdString& key, int value) {
  auto nod = odOpen<OdDbDictionary>(db.getNamedObjectsDictionaryId(), OdDb::kForWrite);
  OdSmartPtr<OdDbXrecord> xr = OdDbXrecord::createObject();
  xr->setDxfName("XRECORD");
  OdDbObjectId id = nod->setAt(key, xr.get());
  xr->tagsForWrite().emplace_back(100, "AcDbXrecord");
  xr->setFromRbChain(OdResBuf::newRb(70, int32_t(value)).get());
  return id;
}

// One random edit of the kinds that commands make.
void randomEdit(OdDbDatabase& db, std::mt19937& rng, int serial) {
  auto pick = [&](const OdDbObjectIdArray& ids) { return ids.empty() ? OdDbObjectId() : ids[rng() % ids.size()]; };
  auto entity = [&] {
    return odOpen<OdDbEntity>(pick(odOpen<OdDbBlockTableRecord>(db.getModelSpaceId())->entityIds()), OdDb::kForWrite);
  };
  const OdString tag = OdString::fromUtf8("U" + std::to_string(serial));
  OdDbEntityPtr e = entity();
  switch (rng() % 9) {
    case 0:
      if (e) {
        OdDbObjectId layer = pick(odOpen<OdDbSymbolTable>(db.getLayerTableId())->recordIds());
        e->setLayer(odOpen<OdDbSymbolTableRecord>(layer)->getName());
        return;
      }
      break;
    case 1:
      if (e) return e->setColorIndex(static_cast<int16_t>(1 + rng() % 255));
      break;
    case 2:
      if (e) return void(e->erase());
      break;
    case 3:
      return void(addLayer(db, L"Слой " + tag));
    case 4:
      if (e) {
        OdResBufPtr x = OdResBuf::newRb(1001, OdString(L"UNDOTEST"));
        x->setNext(OdResBuf::newRb(1000, tag));
        return e->setXData(x.get());
      }
      break;
    case 5:
      // Same keys come back, so entries get replaced as well as added.
      if (!db.getNamedObjectsDictionaryId().isNull())
        return void(addXrecord(db, OdString::fromUtf8("UNDO_" + std::to_string(rng() % 3)), serial));
      break;
    case 6:
      return void(addPoint(db, serial));
    case 7: {
      // Renames move a record in the table's name index.
      auto layer = odOpen<OdDbSymbolTableRecord>(pick(odOpen<OdDbSymbolTable>(db.getLayerTableId())->recordIds()),
                                                OdDb::kForWrite);
      if (layer->getName() != L"0") return layer->setName(L"Renamed " + tag);
      break;
    }
  }
  db.setHeaderInt(rng() % 2 ? "$USERI1" : "$UNDOTESTVAR", 70, serial);
}

}  // namespace

TEST(Undo, RandomStepsSaveTheBytesOfTheirTime) {
  for (const char* name : {"LibreDWG__libredwg__example_2000.dxf", "LibreDWG__libredwg__example_r12.dxf",
                           "DomCR__ACadSharp__sample_AC1015_binary.dxf"}) {
    for (uint32_t seed : {1u, 7u, 2024u}) {
      OdDbDatabasePtr db = loadCorpus(name);
      if (!db) GTEST_SKIP() << "corpus file missing: " << name;
      std::mt19937 rng(seed);
      // states[k]: the bytes after k steps; `at` is where undo and redo stand.
      std::vector<std::string> states{db->toDxf()};
      size_t at = 0;
      for (int op = 0; op < 40; ++op) {
        unsigned r = rng() % 10;
        if (r < 6) {
          db->beginUndoGroup(OdString::fromUtf8("step " + std::to_string(op)));
          for (unsigned n = 1 + rng() % 4; n > 0; --n) randomEdit(*db, rng, op);
          db->endUndoGroup();
          states.resize(++at);
          states.push_back(db->toDxf());
        } else if (r < 8 && at > 0) {
          db->undo();
          --at;
        } else if (at + 1 < states.size()) {
          db->redo();
          ++at;
        }
        ASSERT_EQ(db->hasUndo(), at > 0) << name << " seed " << seed << " op " << op;
        ASSERT_EQ(db->hasRedo(), at + 1 < states.size()) << name << " seed " << seed << " op " << op;
        ASSERT_TRUE(db->toDxf() == states[at]) << name << " seed " << seed << " op " << op;
      }
      for (; at > 0; --at) {
        db->undo();
        ASSERT_TRUE(db->toDxf() == states[at - 1]) << name << " seed " << seed << " undo to " << at - 1;
      }
      EXPECT_FALSE(db->hasUndo());
      for (; at + 1 < states.size(); ++at) {
        db->redo();
        ASSERT_TRUE(db->toDxf() == states[at + 1]) << name << " seed " << seed << " redo to " << at + 1;
      }
      EXPECT_FALSE(db->hasRedo());
    }
  }
}

TEST(Undo, AddedObjectsDisappearAndComeBack) {
  OdDbDatabasePtr db = loadCorpus("LibreDWG__libredwg__example_2000.dxf");
  if (!db) GTEST_SKIP();
  auto layers = odOpen<OdDbSymbolTable>(db->getLayerTableId());
  OdDbObjectId renamed = layers->getAt(L"0");
  db->beginUndoGroup(L"ADD");
  OdDbObjectId layer = addLayer(*db, L"Added");
  OdDbObjectId point = addPoint(*db, 1.5);
  OdDbObjectId xrec = addXrecord(*db, L"UNDO_KEY", 1);
  odOpen<OdDbSymbolTableRecord>(renamed, OdDb::kForWrite)->setName(L"Zero");
  db->endUndoGroup();
  auto present = [&](bool yes) {
    EXPECT_EQ(layers->getAt(L"added") == layer, yes) << "the name index must follow undo and redo";
    EXPECT_EQ(layers->getAt(L"0") == renamed, !yes);
    EXPECT_EQ(layers->getAt(L"zero") == renamed, yes);
    EXPECT_EQ(odOpen<OdDbDictionary>(db->getNamedObjectsDictionaryId())->getAt(L"UNDO_KEY") == xrec, yes);
    for (OdDbObjectId id : {layer, point, xrec}) {
      EXPECT_EQ(db->getOdDbObjectId(id.getHandle()).openObject().isNull(), !yes) << "handle of a taken-out object";
      EXPECT_EQ(id.isValid(), yes);
    }
    auto ids = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId())->entityIds(true);
    EXPECT_EQ(std::count(ids.begin(), ids.end(), point), yes ? 1 : 0);
  };
  db->undo();
  present(false);
  OdDbObjectIdArray unused = {layer, point, xrec};
  db->purge(unused);  // objects taken out must not hold on to anything either
  db->redo();
  present(true);
  db->undo();
  // A new step ends the redo history; the same name can be added again.
  db->beginUndoGroup(L"AGAIN");
  OdDbObjectId again = addLayer(*db, L"Added");
  db->endUndoGroup();
  EXPECT_FALSE(db->hasRedo());
  EXPECT_EQ(layers->getAt(L"ADDED"), again);
  EXPECT_NE(again.getHandle(), layer.getHandle());
  OdDbDatabasePtr reread = OdDbDatabase::readDxf(db->toDxf());
  EXPECT_FALSE(odOpen<OdDbSymbolTable>(reread->getLayerTableId())->getAt(L"Added").isNull());
}

TEST(Undo, AStepThatAddsASectionTakesItOutAgain) {
  // As the first block of a drawing that has no BLOCKS section does.
  OdDbDatabasePtr db = OdDbDatabase::readDxf("0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
  const std::string before = db->toDxf();
  db->beginUndoGroup(L"BLOCK");
  addPoint(*db, 2.0);
  DxfSection blocks;
  blocks.name = "BLOCKS";
  blocks.head = OdDbProxyObject::createObject();
  blocks.head->tagsForWrite() = {DxfTag(0, "SECTION"), DxfTag(2, "BLOCKS")};
  blocks.endsec = OdDbProxyObject::createObject();
  blocks.endsec->tagsForWrite() = {DxfTag(0, "ENDSEC")};
  db->sections().insert(db->sections().begin(), std::move(blocks));
  db->endUndoGroup();
  const std::string after = db->toDxf();
  db->undo();
  EXPECT_TRUE(db->toDxf() == before);
  EXPECT_EQ(db->section("BLOCKS"), nullptr);
  db->redo();
  EXPECT_TRUE(db->toDxf() == after);
}

TEST(Undo, GroupsNestBlockAndForget) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018);
  const std::string original = db->toDxf();
  auto setVar = [&](int v) { db->setHeaderInt("$USERI1", 70, v); };

  db->beginUndoGroup(L"EMPTY");
  db->endUndoGroup();
  EXPECT_FALSE(db->hasUndo()) << "a group that changed nothing is no step";

  db->beginUndoGroup(L"OUTER");
  setVar(1);
  db->beginUndoGroup(L"INNER");
  addLayer(*db, L"Inner");
  db->endUndoGroup();
  EXPECT_THROW(db->undo(), OdError) << "no undo inside an open group";
  setVar(2);
  db->endUndoGroup();
  EXPECT_EQ(db->undoGroupName(), OdString(L"OUTER"));
  db->undo();
  EXPECT_FALSE(db->hasUndo()) << "nested groups make one step";
  EXPECT_TRUE(db->toDxf() == original);
  EXPECT_EQ(db->redoGroupName(), OdString(L"OUTER"));

  // A change that is not recorded forgets the history both ways.
  db->redo();
  db->undo();
  setVar(3);
  EXPECT_FALSE(db->hasUndo());
  EXPECT_FALSE(db->hasRedo());

  db->blockUndoRecording(true);
  EXPECT_TRUE(db->isUndoBlocked());
  db->beginUndoGroup(L"BLOCKED");
  setVar(4);
  addLayer(*db, L"Blocked");
  db->endUndoGroup();
  EXPECT_FALSE(db->hasUndo()) << "nothing is recorded while blocked";

  // Recording again; a block in the middle of a group loses the whole group.
  db->blockUndoRecording(false);
  db->beginUndoGroup(L"HALF");
  setVar(5);
  db->blockUndoRecording(true);
  setVar(6);
  db->blockUndoRecording(false);
  setVar(7);
  db->endUndoGroup();
  EXPECT_FALSE(db->hasUndo());
  db->beginUndoGroup(L"LAST");
  setVar(8);
  db->endUndoGroup();
  EXPECT_EQ(db->undoGroupName(), OdString(L"LAST"));
}
