// Variables on the command line: shown and set as text in the drawing's units,
// refused with what they allow, each change one undo step.
#include "host/HostSysVarCommand.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <type_traits>

#include "drawings/OdDbDimStyleTableRecord.h"
#include "host/HostServices.h"
#include "host/HostSysVars.h"

namespace {

// Typed values as comparable text.
std::string describe(bool v) { return v ? "1" : "0"; }
std::string describe(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return buf;
}
template <class T>
  requires std::is_integral_v<T> || std::is_enum_v<T>
std::string describe(T v) {
  return std::to_string(static_cast<int>(v));
}
std::string describe(const OdString& s) { return s.toUtf8(); }
std::string describe(const OdCmColor& c) { return std::to_string(c.colorIndex()); }
std::string describe(const OdDbObjectId& id) {
  auto rec = odOpen<OdDbSymbolTableRecord>(id);
  return rec ? rec->getName().toUtf8() : "<null>";
}

// Each variable read back through its typed member, in catalogue order.
using ReadBack = std::string (*)(const OdDbDatabase&);
constexpr ReadBack kTyped[] = {
#define OD_READ_BACK(index, get, set, T) [](const OdDbDatabase& db) { return describe(db.get()); },
    OD_DIMVARS(OD_READ_BACK)
#undef OD_READ_BACK
};
static_assert(std::size(kTyped) == kDimVarCatalogueSize);

OdDbObjectId addTextStyle(OdDbDatabase& db, const OdString& name) {
  auto styles = odOpen<OdDbSymbolTable>(db.getTextStyleTableId(), OdDb::kForWrite);
  OdSmartPtr<OdDbTextStyleTableRecord> rec = OdDbTextStyleTableRecord::createObject();
  rec->setDxfName("STYLE");
  db.addOdDbObject(rec.get(), styles->objectId());
  DxfTagList& t = rec->tagsForWrite();
  t.emplace_back(100, "AcDbSymbolTableRecord");
  t.emplace_back(100, "AcDbTextStyleTableRecord");
  for (auto [code, text] : std::initializer_list<std::pair<int, const char*>>{
           {2, "x"}, {70, "0"}, {40, "0.0"}, {41, "1.0"}, {50, "0.0"}, {71, "0"}, {42, "2.5"}, {3, "txt"}, {4, ""}})
    t.emplace_back(code, text);
  rec->setName(name);
  return styles->add(rec.get());
}

// A dimension style with every variable at its built-in value but DIMASZ.
void addDimStyle(OdDbDatabase& db, const OdString& name, double dimasz) {
  auto styles = odOpen<OdDbSymbolTable>(db.getDimStyleTableId(), OdDb::kForWrite);
  OdSmartPtr<OdDbDimStyleTableRecord> rec = OdDbDimStyleTableRecord::createObject();
  rec->setDxfName("DIMSTYLE");
  db.addOdDbObject(rec.get(), styles->objectId());
  DxfTagList& t = rec->tagsForWrite();
  t.emplace_back(100, "AcDbSymbolTableRecord");
  t.emplace_back(100, "AcDbDimStyleTableRecord");
  t.emplace_back(2, "x");
  t.emplace_back(70, "0");
  rec->setName(name);
  styles->add(rec.get());
  rec->setDimasz(dimasz);
}

class HostSysVar : public ::testing::Test {
protected:
  void SetUp() override { open(true); }
  void TearDown() override {
    hostSetActiveDatabase(nullptr);
    hostSetVar(L"LWUNITS", 1);
  }
  void open(bool metric, DxfVersion version = DxfVersion::R2018) {
    db = OdDbDatabase::createNew(version, metric);
    hostSetActiveDatabase(db.get());
  }
  std::string shown(const char* name) { return hostVarText(name).value_or("<none>"); }
  OdDbDatabasePtr db;
};

TEST_F(HostSysVar, EveryDimensionVariableIsShownAndSet) {
  addTextStyle(*db, L"Narrow");
  struct Case {
    const char* name;
    const char* typed;
    const char* shown;     // the prompt's text afterwards
    const char* readBack;  // through the typed member
  };
  // Metric drawing: decimal units, 4 places; decimal degrees, 0 places.
  const Case cases[] = {
      {"DIMADEC", "-1", "-1", "-1"}, {"DIMALT", "on", "On", "1"}, {"DIMALTD", "5", "5", "5"},
      {"DIMALTF", "2.5", "2.5000", "2.5"}, {"DIMALTRND", "0.25", "0.2500", "0.25"}, {"DIMALTTD", "6", "6", "6"},
      {"DIMALTTZ", "12", "12", "12"}, {"DIMALTU", "8", "8", "8"}, {"DIMALTZ", "3", "3", "3"},
      {"DIMAPOST", "[ in ]", "\"[ in ]\"", "[ in ]"}, {"DIMASZ", "3.5", "3.5000", "3.5"}, {"DIMATFIT", "1", "1", "1"},
      {"DIMAUNIT", "4", "4", "4"}, {"DIMAZIN", "2", "2", "2"}, {"DIMBLK", "dot", "\"_Dot\"", "_Dot"},
      {"DIMBLK1", "_Oblique", "\"_Oblique\"", "_Oblique"}, {"DIMBLK2", "ARCHTICK", "\"_ArchTick\"", "_ArchTick"},
      {"DIMCEN", "-1.5", "-1.5000", "-1.5"}, {"DIMCLRD", "bylayer", "BYLAYER", "256"}, {"DIMCLRE", "3", "3", "3"},
      {"DIMCLRT", "255", "255", "255"}, {"DIMDEC", "8", "8", "8"}, {"DIMDLE", "1.25", "1.2500", "1.25"},
      {"DIMDLI", "7", "7.0000", "7"}, {"DIMDSEP", ".", "\".\"", "46"}, {"DIMEXE", "2", "2.0000", "2"},
      {"DIMEXO", "0", "0.0000", "0"}, {"DIMFRAC", "2", "2", "2"}, {"DIMGAP", "-1", "-1.0000", "-1"},
      {"DIMJUST", "4", "4", "4"}, {"DIMLDRBLK", "_Open30", "\"_Open30\"", "_Open30"},
      {"DIMLFAC", "-2", "-2.0000", "-2"}, {"DIMLIM", "1", "On", "1"}, {"DIMLUNIT", "6", "6", "6"},
      {"DIMLWD", "bylayer", "-1", "-1"}, {"DIMLWE", "211", "211", "211"}, {"DIMPOST", "<> mm", "\"<> mm\"", "<> mm"},
      {"DIMRND", "0.5", "0.5000", "0.5"}, {"DIMSAH", "ON", "On", "1"}, {"DIMSCALE", "0", "0.0000", "0"},
      {"DIMSD1", "on", "On", "1"}, {"DIMSD2", "on", "On", "1"}, {"DIMSE1", "on", "On", "1"},
      {"DIMSE2", "on", "On", "1"}, {"DIMSOXD", "on", "On", "1"}, {"DIMTAD", "4", "4", "4"},
      {"DIMTDEC", "0", "0", "0"}, {"DIMTFAC", "0.75", "0.7500", "0.75"}, {"DIMTIH", "on", "On", "1"},
      {"DIMTIX", "on", "On", "1"}, {"DIMTM", "0.1", "0.1000", "0.1"}, {"DIMTMOVE", "2", "2", "2"},
      {"DIMTOFL", "off", "Off", "0"}, {"DIMTOH", "on", "On", "1"}, {"DIMTOL", "on", "On", "1"},
      {"DIMTOLJ", "2", "2", "2"}, {"DIMTP", "0.2", "0.2000", "0.2"}, {"DIMTSZ", "0.5", "0.5000", "0.5"},
      {"DIMTVP", "-0.5", "-0.5000", "-0.5"}, {"DIMTXSTY", "narrow", "\"Narrow\"", "Narrow"},
      {"DIMTXT", "3.5", "3.5000", "3.5"}, {"DIMTZIN", "15", "15", "15"}, {"DIMUPT", "on", "On", "1"},
      {"DIMZIN", "0", "0", "0"}, {"DIMFXL", "2", "2.0000", "2"}, {"DIMFXLON", "on", "On", "1"},
      {"DIMJOGANG", "30", "30", "0.523599"}, {"DIMTFILL", "2", "2", "2"}, {"DIMTFILLCLR", "1", "1", "1"},
      {"DIMARCSYM", "2", "2", "2"}, {"DIMLTYPE", "continuous", "\"Continuous\"", "Continuous"},
      {"DIMLTEX1", "ByLayer", "\"ByLayer\"", "ByLayer"}, {"DIMLTEX2", "Continuous", "\"Continuous\"", "Continuous"},
      {"DIMTXTDIRECTION", "on", "On", "1"}, {"DIMMZF", "10", "10.0000", "10"}, {"DIMMZS", "cm", "\"cm\"", "cm"},
      {"DIMALTMZF", "12", "12.0000", "12"}, {"DIMALTMZS", "in", "\"in\"", "in"},
  };
  ASSERT_EQ(std::size(cases), kDimVarCatalogueSize);
  for (std::size_t i = 0; i < kDimVarCatalogueSize; ++i) {
    const Case& c = cases[i];
    SCOPED_TRACE(c.name);
    ASSERT_EQ(dimVarCatalogue()[i].name, c.name);  // the table follows the catalogue
    ASSERT_NE(kTyped[i](*db), c.readBack) << "the case must change the value";
    EXPECT_EQ(hostSetVarFromText(c.name, c.typed), "");
    EXPECT_EQ(kTyped[i](*db), c.readBack);
    EXPECT_EQ(shown(c.name), c.shown);
  }
}

TEST_F(HostSysVar, OtherVariablesAreShownAndSet) {
  addDimStyle(*db, L"Big", 5.0);
  struct Case { const char* name; const char* typed; const char* shown; };
  const Case cases[] = {
      {"LUPREC", "2", "2"},          {"AUPREC", "1", "1"},         {"LUNITS", "5", "5"},
      {"AUNITS", "2", "2"},          {"ANGBASE", "100", "100.0g"}, {"ANGDIR", "1", "1"},
      {"DIMASO", "off", "Off"},      {"DIMASSOC", "1", "1"},       {"CANNOSCALE", "1:2", "\"1:2\""},
      {"MEASUREMENT", "0", "0"},     {"LWUNITS", "0", "0"},        {"DIMSTYLE", "big", "\"Big\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(hostSetVarFromText(c.name, c.typed), "");
    EXPECT_EQ(shown(c.name), c.shown);
  }
  EXPECT_EQ(db->getLUNITS(), 5);
  EXPECT_NEAR(db->getANGBASE(), 1.5707963268, 1e-9);  // 100 grads, as AUNITS 2 reads a bare number
  EXPECT_TRUE(db->getANGDIR());
  EXPECT_EQ(db->getDIMASO(), 0);
  EXPECT_EQ(db->getDIMASSOC(), 1);
  EXPECT_EQ(db->getCANNOSCALE(), L"1:2");
  // The style's values come with it.
  EXPECT_EQ(db->dimasz(), 5.0);
  EXPECT_EQ(shown("CMDACTIVE"), "0");
}

TEST_F(HostSysVar, ValuesOutsideTheRangeAreRefusedAndChangeNothing) {
  const std::string lineweights =
      "Requires a lineweight: -3 default, -2 BYBLOCK, -1 BYLAYER or one of 0, 5, 9, 13, 15, 18, 20, 25, 30, 35, "
      "40, 50, 53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211.";
  struct Case {
    const char* name;
    const char* typed;
    std::string refusal;  // empty: accepted
    const char* shown = nullptr;  // after an accepted value
  };
  const Case cases[] = {
      // integers, at and past their bounds
      {"DIMADEC", "-1", "", "-1"}, {"DIMADEC", "-2", "Requires an integer between -1 and 8."},
      {"DIMDEC", "9", "Requires an integer between 0 and 8."},
      {"DIMDEC", "2.5", "Requires an integer between 0 and 8."},
      {"DIMDEC", "x", "Requires an integer between 0 and 8."}, {"DIMZIN", "15", "", "15"},
      {"DIMZIN", "16", "Requires an integer between 0 and 15."},
      {"DIMLUNIT", "0", "Requires an integer between 1 and 6."}, {"DIMLUNIT", "1", "", "1"},
      {"DIMALTU", "9", "Requires an integer between 1 and 8."},
      {"DIMTAD", "5", "Requires an integer between 0 and 4."},
      {"DIMATFIT", "4", "Requires an integer between 0 and 3."},
      {"DIMAZIN", "4", "Requires an integer between 0 and 3."},
      {"LUNITS", "6", "Requires an integer between 1 and 5."},
      {"AUNITS", "5", "Requires an integer between 0 and 4."},
      {"DIMASSOC", "3", "Requires an integer between 0 and 2."}, {"MEASUREMENT", "2", "Requires 0 or 1."},
      {"LWUNITS", "-1", "Requires 0 or 1."}, {"ANGDIR", "on", "Requires 0 or 1."},
      // switches
      {"DIMALT", "2", "Requires On, Off, 1 or 0."}, {"DIMALT", "yes", "Requires On, Off, 1 or 0."},
      {"DIMASO", "0", "", "Off"},
      // distances and factors
      {"DIMASZ", "-0.1", "Requires a distance of 0 or more."}, {"DIMASZ", "big", "Requires a distance of 0 or more."},
      {"DIMASZ", "0", "", "0.0000"}, {"DIMTXT", "0", "Requires a distance greater than 0."},
      {"DIMCEN", "1..5", "Requires a distance."}, {"DIMLFAC", "0", "Requires a number other than 0."},
      {"DIMTFAC", "-1", "Requires a number greater than 0."}, {"DIMSCALE", "-1", "Requires a number of 0 or more."},
      {"DIMSCALE", "1,5", "Requires a number of 0 or more."},
      {"DIMSCALE", "2'", "Requires a number of 0 or more."},  // a factor is no distance
      {"DIMTVP", "inf", "Requires a number."},
      // angles: 5 to 90 degrees for the jog
      {"DIMJOGANG", "4", "Requires an angle between 5 and 90."},
      {"DIMJOGANG", "91", "Requires an angle between 5 and 90."}, {"DIMJOGANG", "90", "", "90"},
      {"DIMJOGANG", "5d0'0\"", "", "5"}, {"ANGBASE", "north", "Requires an angle."},
      // characters, colours, lineweights
      {"DIMDSEP", "ab", "Requires a single character."}, {"DIMDSEP", "-", "", "\"-\""},
      {"DIMCLRD", "257", "Requires a colour: BYBLOCK, BYLAYER or a number 1 to 255."},
      {"DIMCLRD", "-1", "Requires a colour: BYBLOCK, BYLAYER or a number 1 to 255."},
      {"DIMCLRD", "red", "Requires a colour: BYBLOCK, BYLAYER or a number 1 to 255."},
      {"DIMCLRD", "0", "", "BYBLOCK"}, {"DIMCLRE", "256", "", "BYLAYER"}, {"DIMLWD", "7", lineweights},
      {"DIMLWD", "-4", lineweights}, {"DIMLWD", "212", lineweights}, {"DIMLWD", "default", "", "-3"},
      {"DIMLWE", "byblock", "", "-2"},
      // names
      {"DIMBLK", "NoSuchArrow", "Requires the name of a block or a standard arrow, or . for closed filled."},
      {"DIMBLK", "*Model_Space", "Requires the name of a block or a standard arrow, or . for closed filled."},
      {"DIMLTYPE", "Dashed", "Requires the name of an existing linetype."},
      {"DIMTXSTY", "Narrow", "Requires the name of an existing text style."},
      {"DIMSTYLE", "Nope", "Unknown dimension style."}, {"CMDACTIVE", "1", "CMDACTIVE is read only."},
      {"NOSUCHVAR", "1", "Unknown variable name."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " " + c.typed);
    const std::string before = shown(c.name);
    EXPECT_EQ(hostSetVarFromText(c.name, c.typed), c.refusal);
    EXPECT_EQ(shown(c.name), c.refusal.empty() ? c.shown : before);
  }
  // A refused arrow name leaves no block behind.
  EXPECT_FALSE(odOpen<OdDbSymbolTable>(db->getBlockTableId())->has(L"NoSuchArrow"));
}

TEST_F(HostSysVar, ResetsAndEmptySettings) {
  // "." clears a text and restores the closed filled arrow; BYBLOCK is the empty linetype.
  const char* const steps[][3] = {
      {"DIMPOST", "<> mm", "\"<> mm\""}, {"DIMPOST", ".", "\"\""},
      {"DIMBLK", "_Dot", "\"_Dot\""},    {"DIMBLK", ".", "\"\""},
      {"DIMLTYPE", "ByLayer", "\"ByLayer\""}, {"DIMLTYPE", "byblock", "\"ByBlock\""},
  };
  for (const auto& s : steps) {
    SCOPED_TRACE(std::string(s[0]) + " " + s[1]);
    EXPECT_EQ(hostSetVarFromText(s[0], s[1]), "");
    EXPECT_EQ(shown(s[0]), s[2]);
  }
  EXPECT_TRUE(db->dimblk().isNull());
  EXPECT_TRUE(db->dimltype().isNull());
}

TEST_F(HostSysVar, PromptsShowAndReadTheDrawingsUnits) {
  open(false);
  db->setHeaderInt("$LUNITS", 70, 4);  // architectural, 1/16"
  db->setHeaderInt("$LUPREC", 70, 4);
  db->setHeaderInt("$AUNITS", 70, 3);  // radians, 4 places
  db->setHeaderInt("$AUPREC", 70, 4);
  std::istringstream in("1'6\n\n0.05\n0.5r\n\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, true);
  hostVarPrompt(cl, "dimdli");
  hostVarPrompt(cl, "DIMASZ");
  hostVarPrompt(cl, "DIMJOGANG");
  hostVarPrompt(cl, "DIMBLK");
  EXPECT_EQ(out.str(),
            "Enter new value for DIMDLI <0'-0 3/8\">: 1'6\n"
            "Enter new value for DIMASZ <0'-0 3/16\">: \n"
            "Enter new value for DIMJOGANG <0.7854r>: 0.05\n"
            "Requires an angle between 0.0873r and 1.5708r.\n"
            "Enter new value for DIMJOGANG <0.7854r>: 0.5r\n"
            "Enter new value for DIMBLK, or . for closed filled <\"\">: \n");
  EXPECT_EQ(db->dimdli(), 18.0);
  EXPECT_EQ(db->dimasz(), 0.18);  // Enter keeps the value, not its rounded text
  EXPECT_EQ(db->dimjogang(), 0.5);
}

TEST_F(HostSysVar, DrawingVariablesNeedADrawing) {
  hostSetActiveDatabase(nullptr);
  EXPECT_EQ(hostVarText("DIMASZ"), std::nullopt);
  EXPECT_EQ(hostVarText("LUNITS"), std::nullopt);
  EXPECT_EQ(hostSetVarFromText("DIMSTYLE", "Standard"), "No drawing is open.");
  // The host's own work without one.
  EXPECT_EQ(hostSetVarFromText("LWUNITS", "0"), "");
  EXPECT_EQ(shown("LWUNITS"), "0");
}

}  // namespace
