// The database over real drawings: lossless round trips, edits that keep what is
// not modelled, tables, dictionaries, extended data, handles, purge and saving.
#include <gtest/gtest.h>

#include "TestSupport.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <fstream>
#include <sstream>

#include "drawings/OdDbDatabase.h"

namespace fs = std::filesystem;

namespace {
using namespace testsupport;


OdDbDatabasePtr load(const char* name) {
  if (!fs::exists(corpus(name))) return OdDbDatabasePtr();
  return OdDbDatabase::readDxfFile(corpus(name));
}

#define LOAD_OR_SKIP(var, name)                           \
  OdDbDatabasePtr var = load(name);                       \
  if (!var) GTEST_SKIP() << "corpus file missing: " << name



OdDbEntityPtr firstEntity(OdDbDatabase& db, const char* dxfName) {
  auto ms = odOpen<OdDbBlockTableRecord>(db.getModelSpaceId());
  for (auto& id : ms->entityIds()) {
    auto e = odOpen<OdDbEntity>(id, OdDb::kForWrite);
    if (e && e->dxfName() == dxfName) return e;
  }
  return OdDbEntityPtr();
}

}  // namespace

TEST(Database, EveryCorpusFileRoundTripsByteForByte) {
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  int files = 0;
  for (auto& entry : fs::directory_iterator(CORPUS_DIR)) {
    if (entry.path().extension() != ".dxf") continue;
    std::string bytes = slurp(entry.path().string());
    OdDbDatabasePtr db = OdDbDatabase::readDxf(bytes);
    EXPECT_TRUE(db->toDxf() == bytes) << entry.path().filename();
    ++files;
  }
  EXPECT_GT(files, 50);
}

TEST(Database, ChangedEntityKeepsEveryOtherTagInPlace) {
  // One ASCII file with CR LF line ends and one binary file.
  for (const char* name : {"LibreDWG__libredwg__example_2000.dxf", "DomCR__ACadSharp__sample_AC1015_binary.dxf"}) {
    OdDbDatabasePtr db = load(name);
    if (!db) GTEST_SKIP();
    std::string before = db->toDxf();
    OdDbEntityPtr line = firstEntity(*db, "LINE");
    ASSERT_TRUE(line) << name;
    OdString oldLayer = line->layer();
    line->setLayer(L"Changed");
    line->setColorIndex(3);
    std::string after = db->toDxf();
    OdDbDatabasePtr again = OdDbDatabase::readDxf(after);
    OdDbEntityPtr reread = odOpen<OdDbEntity>(again->getOdDbObjectId(line->getDbHandle()));
    ASSERT_TRUE(reread);
    EXPECT_EQ(reread->layer(), OdString(L"Changed"));
    EXPECT_EQ(reread->colorIndex(), 3);
    if (db->format() == DxfFormat::Ascii) {
      // Only the layer line changed and one colour tag (two lines) was added next to it.
      auto diff = changedRegion(before, after);
      ASSERT_LE(diff.size(), 5u) << name;
      ASSERT_GE(diff.size(), 3u) << name;
      EXPECT_EQ(diff.front(), "Changed\r");
      EXPECT_EQ(diff[diff.size() - 2], " 62\r");
      EXPECT_EQ(diff.back(), "3\r");
    }
    // Unchanged entities are still written exactly as they were read.
    EXPECT_EQ(OdDbDatabase::readDxf(after)->toDxf(), after);
  }
}

TEST(Database, TablesLookUpNamesCaseInsensitivelyInFileOrder) {
  LOAD_OR_SKIP(db, "zamtmn__zcad___OPS.dxf");  // Cyrillic dimension style names in code page 1251
  auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
  ASSERT_TRUE(styles);
  auto ids = styles->recordIds();
  ASSERT_GE(ids.size(), 2u);
  // Iteration follows the file; every name is found again, whatever its case.
  for (auto& id : ids) {
    OdString name = odOpen<OdDbSymbolTableRecord>(id)->getName();
    OdString other = name;
    other.makeLower();
    EXPECT_EQ(styles->getAt(other), id) << name.toUtf8();
    other.makeUpper();
    EXPECT_EQ(styles->getAt(other), id) << name.toUtf8();
    // By the file's spelling too, asked twice: the second answer is the remembered one.
    const std::string spelled = db->codec().encode(other.view());
    EXPECT_EQ(styles->getAtSpelled(spelled, *styles), id) << name.toUtf8();
    EXPECT_EQ(styles->getAtSpelled(spelled, *styles), id) << name.toUtf8();
  }
  bool sawCyrillic = false;
  for (auto& id : ids) {
    OdString name = odOpen<OdDbSymbolTableRecord>(id)->getName();
    for (wchar_t c : name.str()) sawCyrillic |= c >= 0x410 && c <= 0x44F;
  }
  EXPECT_TRUE(sawCyrillic);
  EXPECT_TRUE(styles->getAt(L"no such style").isNull());
  // A remembered spelling goes with a rename or an erase.
  auto rec = odOpen<OdDbSymbolTableRecord>(ids.back(), OdDb::kForWrite);
  const std::string old = rec->firstValue(2).value_or("");
  ASSERT_EQ(styles->getAtSpelled(old, *styles), ids.back());
  rec->setName(L"Renamed");
  EXPECT_TRUE(styles->getAtSpelled(old, *styles).isNull());
  EXPECT_EQ(styles->getAtSpelled("RENAMED", *styles), ids.back());
  rec->erase();
  EXPECT_TRUE(styles->getAtSpelled("RENAMED", *styles).isNull());
}

TEST(Database, AddedAndErasedRecordsSurviveSaving) {
  for (const char* name : {"LibreDWG__libredwg__example_2018.dxf", "LibreDWG__libredwg__example_r12.dxf"}) {
    OdDbDatabasePtr db = load(name);
    if (!db) GTEST_SKIP();
    auto layers = odOpen<OdDbSymbolTable>(db->getLayerTableId(), OdDb::kForWrite);
    OdSmartPtr<OdDbLayerTableRecord> rec = OdDbLayerTableRecord::createObject();
    rec->setDxfName("LAYER");
    db->addOdDbObject(rec.get(), layers->objectId());
    DxfTagList& t = rec->tagsForWrite();
    if (db->version() > DxfVersion::R12) {
      t.emplace_back(100, "AcDbSymbolTableRecord");
      t.emplace_back(100, "AcDbLayerTableRecord");
    }
    t.emplace_back(2, "0");
    t.emplace_back(70, "0");
    t.emplace_back(62, "1");
    t.emplace_back(6, "CONTINUOUS");
    EXPECT_THROW(layers->add(rec.get()), OdError) << "a name that exists must be refused";
    rec->setName(L"Новый слой");
    OdDbObjectId added = layers->add(rec.get());
    EXPECT_EQ(layers->getAt(L"НОВЫЙ СЛОЙ"), added);
    // Erase another, unused layer.
    OdDbObjectId victim;
    for (auto& id : layers->recordIds())
      if (odOpen<OdDbSymbolTableRecord>(id)->getName() != L"0" && id != added) victim = id;
    ASSERT_FALSE(victim.isNull());
    OdString victimName = odOpen<OdDbSymbolTableRecord>(victim)->getName();
    victim.openObject(OdDb::kForWrite)->erase();
    EXPECT_TRUE(layers->getAt(victimName).isNull());

    OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
    auto layers2 = odOpen<OdDbSymbolTable>(again->getLayerTableId());
    EXPECT_FALSE(layers2->getAt(L"новый слой").isNull()) << name;
    EXPECT_TRUE(layers2->getAt(victimName).isNull()) << name;
    EXPECT_EQ(layers2->recordIds().size(), layers->recordIds().size());
    if (db->version() > DxfVersion::R12) {
      // The new record is owned by the table, and the handle seed moved past it.
      EXPECT_EQ(odOpen<OdDbObject>(again->getOdDbObjectId(added.getHandle()))->ownerId(), layers2->objectId());
      EXPECT_GT(again->handseed().value(), added.getHandle().value());
    }
  }
}

TEST(Database, ExtendedDataIsReadReplacedAndRemovedPerApplication) {
  LOAD_OR_SKIP(db, "qcad__qcad__leader_overrides.dxf");
  OdDbEntityPtr leader;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
  for (auto& id : ms->entityIds()) {
    auto e = odOpen<OdDbEntity>(id, OdDb::kForWrite);
    if (e->dxfName() == "LEADER" && e->xData(L"ACAD")) leader = e;
  }
  ASSERT_TRUE(leader);
  OdResBufPtr acad = leader->xData(L"ACAD");
  ASSERT_TRUE(acad);
  EXPECT_EQ(acad->restype(), 1001);
  EXPECT_EQ(acad->next()->getString(), OdString(L"DSTYLE"));
  // Replace the ACAD group with one override pair and add a group of our own.
  OdResBufPtr mine = OdResBuf::newRb(1001, OdString(L"VEXTEST"));
  mine->setNext(OdResBuf::newRb(1000, OdString(L"hello")))->setNext(OdResBuf::newRb(1040, 2.5));
  leader->setXData(mine.get());
  OdResBufPtr acadNew = OdResBuf::newRb(1001, OdString(L"ACAD"));
  acadNew->setNext(OdResBuf::newRb(1000, OdString(L"DSTYLE")))
      ->setNext(OdResBuf::newRb(1002, OdString(L"{")))
      ->setNext(OdResBuf::newRb(1070, int32_t(41)))
      ->setNext(OdResBuf::newRb(1040, 0.25))
      ->setNext(OdResBuf::newRb(1002, OdString(L"}")));
  leader->setXData(acadNew.get());

  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  auto reread = odOpen<OdDbEntity>(again->getOdDbObjectId(leader->getDbHandle()));
  OdResBufPtr a = reread->xData(L"acad");
  ASSERT_TRUE(a);
  int n = 0;
  for (OdResBufPtr p = a; p; p = p->next()) ++n;
  EXPECT_EQ(n, 6);
  EXPECT_DOUBLE_EQ(a->next()->next()->next()->next()->getDouble(), 0.25);
  OdResBufPtr v = reread->xData(L"VEXTEST");
  ASSERT_TRUE(v);
  EXPECT_EQ(v->next()->getString(), OdString(L"hello"));
  // The application got registered so that the file stays valid.
  EXPECT_FALSE(odOpen<OdDbSymbolTable>(again->getRegAppTableId())->getAt(L"VEXTEST").isNull());

  // A group of only its name removes the application's data.
  auto w = odOpen<OdDbEntity>(reread->objectId(), OdDb::kForWrite);
  w->setXData(OdResBuf::newRb(1001, OdString(L"VEXTEST")).get());
  EXPECT_FALSE(w->xData(L"VEXTEST"));
  EXPECT_TRUE(w->xData(L"ACAD"));
}

TEST(Database, DictionariesXrecordsAndExtensionDictionaries) {
  LOAD_OR_SKIP(db, "LibreDWG__libredwg__example_2013.dxf");
  auto nod = odOpen<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
  ASSERT_TRUE(nod);
  EXPECT_FALSE(nod->getAt(L"acad_group").isNull()) << "names compare case-insensitively";
  OdSmartPtr<OdDbXrecord> xr = OdDbXrecord::createObject();
  xr->setDxfName("XRECORD");
  OdDbObjectId xid = nod->setAt(L"VEX_SETTINGS", xr.get());
  {
    DxfTagList& t = xr->tagsForWrite();
    t.emplace_back(100, "AcDbXrecord");
    t.emplace_back(280, "1");
  }
  OdResBufPtr data = OdResBuf::newRb(1, OdString(L"метрика"));
  data->setNext(OdResBuf::newRb(40, 0.125))->setNext(OdResBuf::newRb(70, int32_t(7)));
  xr->setFromRbChain(data.get());

  OdDbEntityPtr line = firstEntity(*db, "LINE");
  ASSERT_TRUE(line);
  EXPECT_TRUE(line->createExtensionDictionary());
  EXPECT_FALSE(line->createExtensionDictionary()) << "only one extension dictionary";
  OdDbObjectId extId = line->extensionDictionary();

  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  auto nod2 = odOpen<OdDbDictionary>(again->getNamedObjectsDictionaryId());
  auto xr2 = odOpen<OdDbXrecord>(nod2->getAt(L"VEX_SETTINGS"));
  ASSERT_TRUE(xr2);
  EXPECT_EQ(xr2->objectId().getHandle(), xid.getHandle());
  OdResBufPtr r = xr2->rbChain();
  ASSERT_TRUE(r);
  EXPECT_EQ(r->getString(), OdString(L"метрика"));
  EXPECT_DOUBLE_EQ(r->next()->getDouble(), 0.125);
  EXPECT_EQ(r->next()->next()->getInt16(), 7);
  auto line2 = odOpen<OdDbEntity>(again->getOdDbObjectId(line->getDbHandle()));
  EXPECT_EQ(line2->extensionDictionary().getHandle(), extId.getHandle());
  auto ext = odOpen<OdDbDictionary>(line2->extensionDictionary());
  ASSERT_TRUE(ext);
  EXPECT_EQ(ext->ownerId(), line2->objectId());
}

TEST(Database, PurgeKeepsOnlyWhatNothingReferences) {
  LOAD_OR_SKIP(db, "LibreDWG__libredwg__example_2000.dxf");
  auto layers = odOpen<OdDbSymbolTable>(db->getLayerTableId());
  OdDbObjectIdArray all = layers->recordIds();
  OdDbObjectIdArray ids = all;
  db->purge(ids);
  // Layer 0 and every layer an entity is on must stay; a fresh layer must go.
  std::set<std::wstring> used;
  auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId());
  for (auto& id : ms->entityIds()) used.insert(odstr::folded(odOpen<OdDbEntity>(id)->layer().view()));
  for (auto& id : ids) {
    OdString n = odOpen<OdDbSymbolTableRecord>(id)->getName();
    EXPECT_FALSE(used.count(odstr::folded(n.view()))) << n.toUtf8() << " is used but would be purged";
    EXPECT_NE(n, OdString(L"0"));
  }
  EXPECT_LT(ids.size(), all.size());
  // Styles: the current dimension style is never purgeable.
  auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
  OdDbObjectIdArray sids = styles->recordIds();
  db->purge(sids);
  OdDbObjectId current = styles->getAt(db->headerString("$DIMSTYLE"));
  EXPECT_EQ(std::count(sids.begin(), sids.end(), current), 0);
}

TEST(Database, FailedSaveLeavesTheOldFileAndNoTemporary) {
  LOAD_OR_SKIP(db, "LibreDWG__libredwg__dim.dxf");
  fs::path dir = fs::temp_directory_path() / "vex_save_test";
  fs::remove_all(dir);
  fs::create_directories(dir / "target.dxf");  // a folder where the file should go: rename must fail
  try {
    db->writeDxfFile((dir / "target.dxf").string());
    ADD_FAILURE() << "saving over a folder must fail";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eFileWriteError);
    EXPECT_NE(std::string(e.what()).find("target.dxf"), std::string::npos);
  }
  EXPECT_TRUE(fs::is_directory(dir / "target.dxf"));
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1) << "the temporary file is left";
  // A good save replaces an existing file completely.
  std::ofstream(dir / "ok.dxf") << "old contents that are longer than nothing";
  db->writeDxfFile((dir / "ok.dxf").string());
  EXPECT_EQ(slurp((dir / "ok.dxf").string()), slurp(corpus("LibreDWG__libredwg__dim.dxf")));
  fs::remove_all(dir);
}

TEST(Database, NewDrawingsAreCompleteForEveryVersion) {
  for (DxfVersion v : {DxfVersion::R12, DxfVersion::R2000, DxfVersion::R2004, DxfVersion::R2007, DxfVersion::R2010,
                       DxfVersion::R2013, DxfVersion::R2018}) {
    for (bool metric : {false, true}) {
      OdDbDatabasePtr db = OdDbDatabase::createNew(v, metric);
      EXPECT_EQ(db->version(), v);
      if (v > DxfVersion::R12) {
        EXPECT_EQ(db->getMEASUREMENT(), metric ? 1 : 0);
      }
      EXPECT_FALSE(db->getModelSpaceId().isNull());
      auto layers = odOpen<OdDbSymbolTable>(db->getLayerTableId());
      EXPECT_FALSE(layers->getAt(L"0").isNull());
      auto styles = odOpen<OdDbSymbolTable>(db->getDimStyleTableId());
      OdDbObjectId cur = styles->getAt(db->headerString("$DIMSTYLE"));
      EXPECT_FALSE(cur.isNull()) << dxfver::keyword(v);
      EXPECT_EQ(odOpen<OdDbSymbolTableRecord>(cur)->getName().iCompare(metric ? L"ISO-25" : L"Standard"), 0);
      EXPECT_FALSE(odOpen<OdDbSymbolTable>(db->getTextStyleTableId())->getAt(L"Standard").isNull());
      if (v >= DxfVersion::R2000) {
        EXPECT_FALSE(db->getNamedObjectsDictionaryId().isNull());
      }
      EXPECT_TRUE(db->loadWarnings().empty());
    }
  }
}

TEST(Database, NamesSurviveConversionBetweenCodePagesAndUtf8) {
  // Chinese in a UTF-8 file with code page 936, Cyrillic in code page 1251, Korean with 949.
  for (const char* name : {"egghunters__dxf-viewer-examples__dxf_3.dxf", "zamtmn__zcad___OPS.dxf",
                           "dotoritos-kim__dxf-json__tc0-tc.dxf"}) {
    OdDbDatabasePtr db = load(name);
    if (!db) GTEST_SKIP();
    auto names = [](OdDbDatabase& d) {
      std::vector<std::wstring> out;
      for (OdDbObjectId tid : {d.getDimStyleTableId(), d.getLayerTableId(), d.getTextStyleTableId()})
        for (auto& id : odOpen<OdDbSymbolTable>(tid)->recordIds()) out.push_back(odOpen<OdDbSymbolTableRecord>(id)->getName().str());
      return out;
    };
    auto original = names(*db);
    bool nonAscii = false;
    for (auto& n : original)
      for (wchar_t c : n) nonAscii |= c > 127;
    EXPECT_TRUE(nonAscii) << name;
    for (DxfVersion v : {DxfVersion::R2004, DxfVersion::R2018, DxfVersion::R2000}) {
      DxfSaveOptions o;
      o.version = v;
      std::string bytes = db->toDxf(o);
      OdDbDatabasePtr again = OdDbDatabase::readDxf(bytes);
      EXPECT_EQ(names(*again), original) << name << " as " << dxfver::keyword(v);
      // Text before R2007 is in the code page: no UTF-8 sequences may appear in it.
      if (v < DxfVersion::R2007 && again->codec().codePageName() != "ANSI_1252") {
        EXPECT_EQ(bytes.find("\xE4\xB8"), std::string::npos) << name;
      }
    }
  }
}

TEST(Database, ErasingAnObjectErasesWhatItOwns) {
  LOAD_OR_SKIP(db, "LibreDWG__libredwg__example_2013.dxf");
  OdDbEntityPtr line = firstEntity(*db, "LINE");
  ASSERT_TRUE(line);
  line->createExtensionDictionary();
  auto ext = odOpen<OdDbDictionary>(line->extensionDictionary(), OdDb::kForWrite);
  OdSmartPtr<OdDbXrecord> xr = OdDbXrecord::createObject();
  xr->setDxfName("XRECORD");
  OdDbObjectId xid = ext->setAt(L"NOTE", xr.get());
  xr->tagsForWrite().emplace_back(100, "AcDbXrecord");
  const OdDbObjectId extId = ext->objectId();
  line->erase();
  EXPECT_TRUE(extId.isErased());
  EXPECT_TRUE(xid.isErased());
  // Unerasing brings them back.
  line->erase(false);
  EXPECT_FALSE(extId.isErased());
  EXPECT_FALSE(xid.isErased());
  line->erase();
  OdDbDatabasePtr again = OdDbDatabase::readDxf(db->toDxf());
  EXPECT_TRUE(again->getOdDbObjectId(extId.getHandle()).isNull());
  EXPECT_TRUE(again->getOdDbObjectId(xid.getHandle()).isNull());
}
