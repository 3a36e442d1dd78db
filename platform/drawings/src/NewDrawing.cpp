#include "drawings/NewDrawing.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "drawings/DimVarDefaults.h"
#include "drawings/DxfTags.h"

namespace {

using Handle = std::uint32_t;  // 0: no object (a null reference where a handle is written)

// An empty drawing has no extents; CAD programs write them inverted so that the
// first entity added sets both corners.
constexpr double kNoExtent = 1e20;

std::string formatReal(double value) {
  char buf[32];
  auto res = std::to_chars(buf, buf + sizeof buf, value);
  std::string text(buf, res.ptr);
  // A real keeps its point even when integral ("1.0", "1.0e+20"), as CAD programs
  // write them; some readers decide between integer and real by the text alone.
  if (text.find_first_of(".ni") == std::string::npos) {
    size_t exponent = text.find('e');
    if (exponent == std::string::npos)
      text += ".0";
    else
      text.insert(exponent, ".0");
  }
  return text;
}

class TagWriter {
public:
  void str(int code, std::string_view value) {
    codeLine(code);
    out_.append(value);
    out_ += '\n';
  }
  void integer(int code, long long value) {
    char buf[24];
    auto res = std::to_chars(buf, buf + sizeof buf, value);
    str(code, std::string_view(buf, static_cast<size_t>(res.ptr - buf)));
  }
  void real(int code, double value) { str(code, formatReal(value)); }
  void handle(int code, Handle h) {
    str(code, dxfFormatHandle(h));
  }
  // Coordinates go under code, code + 10 (and code + 20).
  void point(int code, double x, double y) {
    real(code, x);
    real(code + 10, y);
  }
  void point(int code, double x, double y, double z) {
    point(code, x, y);
    real(code + 20, z);
  }
  std::string take() { return std::move(out_); }

private:
  // Codes are right-aligned in three columns, the layout every DXF writer uses.
  void codeLine(int code) {
    char buf[12];
    auto res = std::to_chars(buf, buf + sizeof buf, code);
    size_t n = static_cast<size_t>(res.ptr - buf);
    if (n < 3) out_.append(3 - n, ' ');
    out_.append(buf, n);
    out_ += '\n';
  }

  std::string out_;
};

// What changes between an imperial and a metric drawing besides the dimension style.
struct UnitSetup {
  double limitsX, limitsY;  // drawing limits, also the initial view
  double textSize;
  double gridSpacing;
  std::string_view dimStyle;
  int insUnits;             // 1 inches, 4 millimetres
  std::string_view paperName;
  double paperWidth, paperHeight;  // always millimetres
  int plotPaperUnits;              // 0 inches, 1 millimetres
};

constexpr UnitSetup kImperial{12.0, 9.0, 0.2, 0.5, "Standard", 1, "ANSI_A_(8.50_x_11.00_Inches)", 215.9, 279.4, 0};
constexpr UnitSetup kMetric{420.0, 297.0, 2.5, 10.0, "ISO-25", 4, "ISO_A4_(210.00_x_297.00_MM)", 210.0, 297.0, 1};

// Order of the codes in a complete DIMSTYLE record before R2000, as CAD programs
// write it; other readers of those versions expect this order, not a sorted one.
constexpr std::array kLegacyStyleOrder{
    3,   4,   5,   6,   7,   40,  41,  42,  43,  44,  45,  46,  47,  48,  140, 141, 142, 143, 144,
    145, 146, 147, 71,  72,  73,  74,  75,  76,  77,  78,  170, 171, 172, 173, 174, 175, 176, 177,
    178, 270, 271, 272, 273, 274, 340, 275, 280, 281, 282, 283, 284, 285, 286, 287, 288};

// Every handle of the drawing, decided before anything is written so that
// forward references (block record to layout) and $HANDSEED are known up front.
struct Handles {
  Handle next = 1;
  Handle vportTable = 0, vportActive = 0;
  Handle ltypeTable = 0, ltByBlock = 0, ltByLayer = 0, ltContinuous = 0;
  Handle layerTable = 0, layer0 = 0;
  Handle styleTable = 0, styleStandard = 0;
  Handle viewTable = 0, ucsTable = 0;
  Handle appidTable = 0, appidAcad = 0;
  Handle dimstyleTable = 0, dimstyle = 0;
  Handle blockRecordTable = 0, brModel = 0, brPaper = 0;
  Handle blockModel = 0, endblkModel = 0, blockPaper = 0, endblkPaper = 0;
  Handle rootDict = 0, groupDict = 0, mlineDict = 0, mlineStandard = 0;
  Handle layoutDict = 0, layoutModel = 0, layoutPaper = 0;
  Handle plotStyleDict = 0, plotStyleNormal = 0;
  Handle scaleDict = 0, scaleOneToOne = 0;
  Handle varDict = 0, varCannoscale = 0, varDimassoc = 0;

  Handle take() { return next++; }
};

Handles planHandles(DxfVersion v) {
  Handles h;
  // R12 table records and blocks carry no handles; with no entities there is nothing to number.
  if (!dxfver::hasObjects(v)) return h;
  const bool r2000 = v >= DxfVersion::R2000;
  const bool r2007 = v >= DxfVersion::R2007;
  h.vportTable = h.take();
  h.vportActive = h.take();
  h.ltypeTable = h.take();
  h.ltByBlock = h.take();
  h.ltByLayer = h.take();
  h.ltContinuous = h.take();
  h.layerTable = h.take();
  h.layer0 = h.take();
  h.styleTable = h.take();
  h.styleStandard = h.take();
  h.viewTable = h.take();
  h.ucsTable = h.take();
  h.appidTable = h.take();
  h.appidAcad = h.take();
  h.dimstyleTable = h.take();
  h.dimstyle = h.take();
  h.blockRecordTable = h.take();
  h.brModel = h.take();
  h.brPaper = h.take();
  h.blockModel = h.take();
  h.endblkModel = h.take();
  h.blockPaper = h.take();
  h.endblkPaper = h.take();
  h.rootDict = h.take();
  h.groupDict = h.take();
  h.mlineDict = h.take();
  h.mlineStandard = h.take();
  if (r2000) {
    h.layoutDict = h.take();
    h.layoutModel = h.take();
    h.layoutPaper = h.take();
    h.plotStyleDict = h.take();
    h.plotStyleNormal = h.take();
  }
  if (r2007) {
    h.scaleDict = h.take();
    h.scaleOneToOne = h.take();
  }
  // R2000 keeps DIMASSOC in the variable dictionary; from R2004 on it is a header
  // variable, and R2007 adds the current annotation scale there.
  if (v == DxfVersion::R2000 || r2007) h.varDict = h.take();
  if (v == DxfVersion::R2000) h.varDimassoc = h.take();
  if (r2007) h.varCannoscale = h.take();
  return h;
}

class Generator {
public:
  Generator(DxfVersion v, bool metric)
      : v_(v), metric_(metric), units_(metric ? kMetric : kImperial), h_(planHandles(v)) {}

  std::string run() {
    header();
    classes();
    tables();
    blocks();
    section("ENTITIES");
    endSection();
    objects();
    w_.str(0, "EOF");
    return w_.take();
  }

private:
  bool atLeast(DxfVersion v) const { return v_ >= v; }
  bool hasObjects() const { return dxfver::hasObjects(v_); }

  // Before R2000 symbol names are upper case only; CAD programs of those versions
  // reject or rename mixed-case names, so the standard names are written that way.
  std::string sym(std::string_view name) const {
    std::string out(name);
    if (!atLeast(DxfVersion::R2000))
      for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
  }

  void section(std::string_view name) {
    w_.str(0, "SECTION");
    w_.str(2, name);
  }
  void endSection() { w_.str(0, "ENDSEC"); }

  // ---- HEADER -------------------------------------------------------------

  void var(std::string_view name) { w_.str(9, name); }

  void header() {
    section("HEADER");
    var("$ACADVER");
    w_.str(1, dxfver::acadVer(v_));
    if (atLeast(DxfVersion::R14)) {
      var("$ACADMAINTVER");
      w_.integer(atLeast(DxfVersion::R2018) ? 90 : 70, maintenanceVersion());
    }
    var("$DWGCODEPAGE");
    w_.str(3, "ANSI_1252");
    var("$INSBASE");
    w_.point(10, 0.0, 0.0, 0.0);
    var("$EXTMIN");
    w_.point(10, kNoExtent, kNoExtent, kNoExtent);
    var("$EXTMAX");
    w_.point(10, -kNoExtent, -kNoExtent, -kNoExtent);
    var("$LIMMIN");
    w_.point(10, 0.0, 0.0);
    var("$LIMMAX");
    w_.point(10, units_.limitsX, units_.limitsY);
    var("$LTSCALE");
    w_.real(40, 1.0);
    var("$TEXTSIZE");
    w_.real(40, units_.textSize);
    var("$TEXTSTYLE");
    w_.str(7, sym("Standard"));
    var("$CLAYER");
    w_.str(8, "0");
    var("$CELTYPE");
    w_.str(6, sym("ByLayer"));
    var("$CECOLOR");
    w_.integer(62, 256);
    var("$DIMASO");
    w_.integer(70, 1);
    var("$DIMSHO");
    w_.integer(70, 1);
    var("$DIMSTYLE");
    w_.str(2, sym(units_.dimStyle));
    // The header mirrors the current dimension style.
    for (const DimVarDefault& row : kDimVarDefaults) {
      if (!row.inHeader(v_)) continue;
      w_.str(9, std::string("$").append(row.name));
      headerValue(row);
    }
    var("$LUNITS");
    w_.integer(70, 2);
    var("$LUPREC");
    w_.integer(70, 4);
    var("$AUNITS");
    w_.integer(70, 0);
    var("$AUPREC");
    w_.integer(70, 0);
    var("$ANGBASE");
    w_.real(50, 0.0);
    var("$ANGDIR");
    w_.integer(70, 0);
    if (!atLeast(DxfVersion::R2000)) {
      var("$HANDLING");
      w_.integer(70, 1);
    }
    var("$HANDSEED");
    w_.handle(5, h_.next);
    var("$TILEMODE");
    w_.integer(70, 1);
    if (hasObjects()) {
      var("$CMLSTYLE");
      w_.str(2, sym("Standard"));
    }
    if (atLeast(DxfVersion::R14)) {
      var("$MEASUREMENT");
      w_.integer(70, metric_ ? 1 : 0);
    }
    if (atLeast(DxfVersion::R2000)) {
      var("$CELWEIGHT");
      w_.integer(370, -1);
      var("$LWDISPLAY");
      w_.integer(290, 0);
      var("$INSUNITS");
      w_.integer(70, units_.insUnits);
      var("$PSTYLEMODE");
      w_.integer(290, 1);
      var("$EXTNAMES");
      w_.integer(290, 1);
    }
    if (atLeast(DxfVersion::R2004)) {
      var("$DIMASSOC");
      w_.integer(280, 2);
    }
    endSection();
  }

  // Maintenance release numbers that CAD programs write for each version.
  int maintenanceVersion() const {
    switch (v_) {
      case DxfVersion::R14: return 9;
      case DxfVersion::R2000: return 20;
      case DxfVersion::R2004: return 104;
      case DxfVersion::R2007: return 50;
      case DxfVersion::R2010: return 226;
      case DxfVersion::R2013: return 125;
      case DxfVersion::R2018: return 29;
      default: return 0;
    }
  }

  void headerValue(const DimVarDefault& row) {
    const DimVarValue& value = row.defaultValue(metric_);
    switch (row.kind) {
      case DimVarKind::Double: w_.real(row.headerCode, value.number); break;
      case DimVarKind::String: w_.str(row.headerCode, value.text); break;
      case DimVarKind::Block:
      case DimVarKind::Linetype:
      case DimVarKind::TextStyle: w_.str(row.headerCode, sym(value.text)); break;
      default: w_.integer(row.headerCode, static_cast<long long>(value.number)); break;
    }
  }

  // ---- CLASSES ------------------------------------------------------------

  void classRecord(std::string_view dxfName, std::string_view cppName, int proxyFlags, int instances) {
    w_.str(0, "CLASS");
    w_.str(1, dxfName);
    w_.str(2, cppName);
    w_.str(3, "ObjectDBX Classes");
    w_.integer(90, proxyFlags);
    if (atLeast(DxfVersion::R2004)) w_.integer(91, instances);
    w_.integer(280, 0);
    w_.integer(281, 0);
  }

  void classes() {
    if (!hasObjects()) return;
    section("CLASSES");
    // R13/R14 objects used here are all built-in types; from R2000 the layout and
    // plot-style objects, and later scales and dictionary variables, are classes.
    if (atLeast(DxfVersion::R2000)) {
      classRecord("ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", 0, 1);
      classRecord("ACDBPLACEHOLDER", "AcDbPlaceHolder", 0, 1);
      classRecord("LAYOUT", "AcDbLayout", 0, 2);
      int vars = (h_.varDimassoc ? 1 : 0) + (h_.varCannoscale ? 1 : 0);
      if (vars > 0) classRecord("DICTIONARYVAR", "AcDbDictionaryVar", 0, vars);
      if (h_.scaleOneToOne) classRecord("SCALE", "AcDbScale", 1153, 1);
    }
    endSection();
  }

  // ---- TABLES -------------------------------------------------------------

  void tableHead(std::string_view name, Handle table, int count) {
    w_.str(0, "TABLE");
    w_.str(2, name);
    if (hasObjects()) {
      w_.handle(5, table);
      w_.handle(330, 0);
      w_.str(100, "AcDbSymbolTable");
    }
    w_.integer(70, count);
  }
  void endTable() { w_.str(0, "ENDTAB"); }

  void recordHead(std::string_view type, Handle record, Handle table, std::string_view subclass) {
    w_.str(0, type);
    if (!hasObjects()) return;
    // DIMSTYLE takes its handle under 105 because 5 is DIMBLK there.
    w_.handle(type == "DIMSTYLE" ? 105 : 5, record);
    w_.handle(330, table);
    w_.str(100, "AcDbSymbolTableRecord");
    w_.str(100, subclass);
  }

  void tables() {
    section("TABLES");
    vportTable();
    ltypeTable();
    layerTable();
    styleTable();
    tableHead("VIEW", h_.viewTable, 0);
    endTable();
    tableHead("UCS", h_.ucsTable, 0);
    endTable();
    appidTable();
    dimstyleTable();
    if (hasObjects()) blockRecordTable();
    endSection();
  }

  void vportTable() {
    tableHead("VPORT", h_.vportTable, 1);
    recordHead("VPORT", h_.vportActive, h_.vportTable, "AcDbViewportTableRecord");
    w_.str(2, sym("*Active"));
    w_.integer(70, 0);
    w_.point(10, 0.0, 0.0);
    w_.point(11, 1.0, 1.0);
    w_.point(12, units_.limitsX / 2, units_.limitsY / 2);
    w_.point(13, 0.0, 0.0);
    w_.point(14, units_.gridSpacing, units_.gridSpacing);
    w_.point(15, units_.gridSpacing, units_.gridSpacing);
    w_.point(16, 0.0, 0.0, 1.0);
    w_.point(17, 0.0, 0.0, 0.0);
    w_.real(40, units_.limitsY);
    w_.real(41, units_.limitsX / units_.limitsY);
    w_.real(42, 50.0);
    w_.real(43, 0.0);
    w_.real(44, 0.0);
    w_.real(50, 0.0);
    w_.real(51, 0.0);
    w_.integer(71, 0);
    w_.integer(72, 1000);
    w_.integer(73, 1);
    w_.integer(74, 3);
    w_.integer(75, 0);
    w_.integer(76, 0);
    w_.integer(77, 0);
    w_.integer(78, 0);
    if (atLeast(DxfVersion::R2000)) {
      w_.integer(281, 0);
      w_.integer(65, 1);
      w_.point(110, 0.0, 0.0, 0.0);
      w_.point(111, 1.0, 0.0, 0.0);
      w_.point(112, 0.0, 1.0, 0.0);
      w_.integer(79, 0);
      w_.real(146, 0.0);
    }
    endTable();
  }

  void linetype(Handle record, std::string_view name, std::string_view description) {
    recordHead("LTYPE", record, h_.ltypeTable, "AcDbLinetypeTableRecord");
    w_.str(2, sym(name));
    w_.integer(70, 0);
    w_.str(3, description);
    w_.integer(72, 65);
    w_.integer(73, 0);
    w_.real(40, 0.0);
  }

  void ltypeTable() {
    // R12 files list only real linetypes; BYBLOCK and BYLAYER became records in R13.
    tableHead("LTYPE", h_.ltypeTable, hasObjects() ? 3 : 1);
    if (hasObjects()) {
      linetype(h_.ltByBlock, "ByBlock", "");
      linetype(h_.ltByLayer, "ByLayer", "");
    }
    linetype(h_.ltContinuous, "Continuous", "Solid line");
    endTable();
  }

  void layerTable() {
    tableHead("LAYER", h_.layerTable, 1);
    recordHead("LAYER", h_.layer0, h_.layerTable, "AcDbLayerTableRecord");
    w_.str(2, "0");
    w_.integer(70, 0);
    w_.integer(62, 7);
    w_.str(6, sym("Continuous"));
    if (atLeast(DxfVersion::R2000)) {
      w_.integer(370, -3);
      w_.handle(390, h_.plotStyleNormal);
    }
    endTable();
  }

  void styleTable() {
    tableHead("STYLE", h_.styleTable, 1);
    recordHead("STYLE", h_.styleStandard, h_.styleTable, "AcDbTextStyleTableRecord");
    w_.str(2, sym("Standard"));
    w_.integer(70, 0);
    w_.real(40, 0.0);
    w_.real(41, 1.0);
    w_.real(50, 0.0);
    w_.integer(71, 0);
    w_.real(42, units_.textSize);
    w_.str(3, "txt");
    w_.str(4, "");
    endTable();
  }

  void appidTable() {
    tableHead("APPID", h_.appidTable, 1);
    recordHead("APPID", h_.appidAcad, h_.appidTable, "AcDbRegAppTableRecord");
    w_.str(2, "ACAD");
    w_.integer(70, 0);
    endTable();
  }

  void dimstyleTable() {
    tableHead("DIMSTYLE", h_.dimstyleTable, 1);
    if (atLeast(DxfVersion::R2000)) {
      w_.str(100, "AcDbDimStyleTable");
      w_.integer(71, 1);
      w_.handle(340, h_.dimstyle);
    }
    recordHead("DIMSTYLE", h_.dimstyle, h_.dimstyleTable, "AcDbDimStyleTableRecord");
    w_.str(2, sym(units_.dimStyle));
    w_.integer(70, 0);
    if (atLeast(DxfVersion::R2000))
      modernStyleValues();
    else
      legacyStyleValues();
    endTable();
  }

  // Before R2000 a record lists every variable of its version.
  void legacyStyleValues() {
    size_t written = 0;
    for (int code : kLegacyStyleOrder) {
      for (const DimVarDefault& row : kDimVarDefaults) {
        if (row.styleCodeIn(v_) != code) continue;
        styleValue(row, code);
        ++written;
      }
    }
    assert(written == static_cast<size_t>(std::count_if(kDimVarDefaults.begin(), kDimVarDefaults.end(),
                                                        [&](const DimVarDefault& r) { return r.styleCodeIn(v_) != 0; })) &&
           "a DIMSTYLE code of this version is missing from kLegacyStyleOrder");
    (void)written;
  }

  // From R2000 on, a record holds only what differs from the built-in imperial
  // values; readers apply those for every absent code, whatever the units.
  void modernStyleValues() {
    std::vector<std::pair<int, const DimVarDefault*>> present;
    for (const DimVarDefault& row : kDimVarDefaults) {
      int code = row.styleCodeIn(v_);
      if (code == 0) continue;
      if (row.has(dimvar::kAlwaysInStyle) || row.defaultValue(metric_) != row.imperial) present.emplace_back(code, &row);
    }
    std::stable_sort(present.begin(), present.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [code, row] : present) styleValue(*row, code);
  }

  void styleValue(const DimVarDefault& row, int code) {
    const DimVarValue& value = row.defaultValue(metric_);
    switch (row.kind) {
      case DimVarKind::Double:
        w_.real(code, row.has(dimvar::kStyleDegrees) ? value.number * 180.0 / std::numbers::pi : value.number);
        break;
      case DimVarKind::String: w_.str(code, value.text); break;
      case DimVarKind::Block:
      case DimVarKind::Linetype:
      case DimVarKind::TextStyle:
        if (row.styleCodeIsHandle(v_)) {
          // An absent reference is the default (closed filled arrow, linetype by block).
          if (Handle ref = referenced(row.kind, value.text)) w_.handle(code, ref);
        } else {
          w_.str(code, sym(value.text));
        }
        break;
      default: w_.integer(code, static_cast<long long>(value.number)); break;
    }
  }

  Handle referenced(DimVarKind kind, std::string_view name) const {
    if (name.empty()) return 0;
    Handle h = 0;
    if (kind == DimVarKind::TextStyle && dxfEqualNoCase(name, "Standard")) h = h_.styleStandard;
    if (kind == DimVarKind::Linetype) {
      if (dxfEqualNoCase(name, "ByBlock")) h = h_.ltByBlock;
      if (dxfEqualNoCase(name, "ByLayer")) h = h_.ltByLayer;
      if (dxfEqualNoCase(name, "Continuous")) h = h_.ltContinuous;
    }
    assert(h != 0 && "a default names a record that a new drawing does not have");
    return h;
  }

  void blockRecord(Handle record, std::string_view name, Handle layout) {
    recordHead("BLOCK_RECORD", record, h_.blockRecordTable, "AcDbBlockTableRecord");
    w_.str(2, sym(name));
    if (atLeast(DxfVersion::R2000)) w_.handle(340, layout);
    if (atLeast(DxfVersion::R2007)) {
      w_.integer(70, 0);
      w_.integer(280, 1);
      w_.integer(281, 0);
    }
  }

  void blockRecordTable() {
    tableHead("BLOCK_RECORD", h_.blockRecordTable, 2);
    blockRecord(h_.brModel, "*Model_Space", h_.layoutModel);
    blockRecord(h_.brPaper, "*Paper_Space", h_.layoutPaper);
    endTable();
  }

  // ---- BLOCKS -------------------------------------------------------------

  void block(Handle begin, Handle end, Handle record, std::string_view name, bool paper) {
    w_.str(0, "BLOCK");
    w_.handle(5, begin);
    w_.handle(330, record);
    w_.str(100, "AcDbEntity");
    if (paper) w_.integer(67, 1);
    w_.str(8, "0");
    w_.str(100, "AcDbBlockBegin");
    w_.str(2, sym(name));
    w_.integer(70, 0);
    w_.point(10, 0.0, 0.0, 0.0);
    w_.str(3, sym(name));
    w_.str(1, "");
    w_.str(0, "ENDBLK");
    w_.handle(5, end);
    w_.handle(330, record);
    w_.str(100, "AcDbEntity");
    if (paper) w_.integer(67, 1);
    w_.str(8, "0");
    w_.str(100, "AcDbBlockEnd");
  }

  void blocks() {
    section("BLOCKS");
    // R12 needs no layout blocks: its model and paper space entities live in ENTITIES.
    if (hasObjects()) {
      block(h_.blockModel, h_.endblkModel, h_.brModel, "*Model_Space", false);
      block(h_.blockPaper, h_.endblkPaper, h_.brPaper, "*Paper_Space", true);
    }
    endSection();
  }

  // ---- OBJECTS ------------------------------------------------------------

  // An object owned by a dictionary names it twice: as owner and as reactor, so
  // that erasing the dictionary notifies it.
  void objectHead(std::string_view type, Handle object, Handle owner) {
    w_.str(0, type);
    w_.handle(5, object);
    w_.str(102, "{ACAD_REACTORS");
    w_.handle(330, owner);
    w_.str(102, "}");
    w_.handle(330, owner);
  }

  using Entries = std::vector<std::pair<std::string_view, Handle>>;

  void dictionaryBody(const Entries& entries) {
    w_.str(100, "AcDbDictionary");
    if (atLeast(DxfVersion::R2000)) w_.integer(281, 1);
    for (const auto& [key, value] : entries) {
      w_.str(3, key);
      w_.handle(350, value);
    }
  }

  void dictionary(Handle object, const Entries& entries) {
    objectHead("DICTIONARY", object, h_.rootDict);
    dictionaryBody(entries);
  }

  void objects() {
    if (!hasObjects()) return;
    section("OBJECTS");
    // Keys in ordinal order, as CAD programs keep them.
    Entries root{{"ACAD_GROUP", h_.groupDict}};
    if (h_.layoutDict) root.emplace_back("ACAD_LAYOUT", h_.layoutDict);
    root.emplace_back("ACAD_MLINESTYLE", h_.mlineDict);
    if (h_.plotStyleDict) root.emplace_back("ACAD_PLOTSTYLENAME", h_.plotStyleDict);
    if (h_.scaleDict) root.emplace_back("ACAD_SCALELIST", h_.scaleDict);
    if (h_.varDict) root.emplace_back("AcDbVariableDictionary", h_.varDict);

    w_.str(0, "DICTIONARY");
    w_.handle(5, h_.rootDict);
    w_.handle(330, 0);
    dictionaryBody(root);

    dictionary(h_.groupDict, {});
    if (h_.layoutDict) dictionary(h_.layoutDict, {{"Layout1", h_.layoutPaper}, {"Model", h_.layoutModel}});
    dictionary(h_.mlineDict, {{sym("Standard"), h_.mlineStandard}});
    if (h_.plotStyleDict) plotStyles();
    if (h_.scaleDict) dictionary(h_.scaleDict, {{"A0", h_.scaleOneToOne}});
    if (h_.varDict) {
      Entries vars;
      if (h_.varCannoscale) vars.emplace_back("CANNOSCALE", h_.varCannoscale);
      if (h_.varDimassoc) vars.emplace_back("DIMASSOC", h_.varDimassoc);
      dictionary(h_.varDict, vars);
    }

    if (h_.layoutDict) {
      layout(h_.layoutModel, "Model", 0, h_.brModel, true);
      layout(h_.layoutPaper, "Layout1", 1, h_.brPaper, false);
    }
    mlineStyle();
    if (h_.scaleOneToOne) {
      objectHead("SCALE", h_.scaleOneToOne, h_.scaleDict);
      w_.str(100, "AcDbScale");
      w_.integer(70, 0);
      w_.str(300, "1:1");
      w_.real(140, 1.0);
      w_.real(141, 1.0);
      w_.integer(290, 1);
    }
    if (h_.varCannoscale) dictionaryVar(h_.varCannoscale, "1:1");
    if (h_.varDimassoc) dictionaryVar(h_.varDimassoc, "2");
    endSection();
  }

  // Layer 0 points at the "Normal" plot style name, the default of this dictionary.
  void plotStyles() {
    objectHead("ACDBDICTIONARYWDFLT", h_.plotStyleDict, h_.rootDict);
    dictionaryBody({{"Normal", h_.plotStyleNormal}});
    w_.str(100, "AcDbDictionaryWithDefault");
    w_.handle(340, h_.plotStyleNormal);
    objectHead("ACDBPLACEHOLDER", h_.plotStyleNormal, h_.plotStyleDict);
  }

  void dictionaryVar(Handle object, std::string_view value) {
    objectHead("DICTIONARYVAR", object, h_.varDict);
    w_.str(100, "DictionaryVariables");
    w_.integer(280, 0);
    w_.str(1, value);
  }

  void mlineStyle() {
    objectHead("MLINESTYLE", h_.mlineStandard, h_.mlineDict);
    w_.str(100, "AcDbMlineStyle");
    w_.str(2, sym("Standard"));
    w_.integer(70, 0);
    w_.str(3, "");
    w_.integer(62, 256);
    w_.real(51, 90.0);
    w_.real(52, 90.0);
    w_.integer(71, 2);
    for (double offset : {0.5, -0.5}) {
      w_.real(49, offset);
      w_.integer(62, 256);
      w_.str(6, sym("ByLayer"));
    }
  }

  void layout(Handle object, std::string_view name, int tabOrder, Handle blockRecord, bool model) {
    objectHead("LAYOUT", object, h_.layoutDict);
    w_.str(100, "AcDbPlotSettings");
    w_.str(1, "");
    w_.str(2, "none_device");
    w_.str(4, units_.paperName);
    w_.str(6, "");
    for (int code : {40, 41, 42, 43}) w_.real(code, 6.35);  // quarter-inch unprintable margins
    w_.real(44, units_.paperWidth);
    w_.real(45, units_.paperHeight);
    for (int code : {46, 47, 48, 49, 140, 141}) w_.real(code, 0.0);
    w_.real(142, 1.0);
    w_.real(143, 1.0);
    // Plot flags: scale lineweights off, print lineweights, plot styles, standard
    // scale, viewports first; the model layout adds its own bit (1024).
    w_.integer(70, model ? 1712 : 688);
    w_.integer(72, units_.plotPaperUnits);
    w_.integer(73, 1);             // landscape on a portrait-defined sheet
    w_.integer(74, model ? 0 : 5);  // what to plot: display, or the layout
    w_.str(7, "");
    w_.integer(75, model ? 0 : 16);  // scaled to fit, or 1:1
    w_.real(147, 1.0);
    if (atLeast(DxfVersion::R2004)) {
      w_.integer(76, 0);
      w_.integer(77, 2);
      w_.integer(78, 300);
    }
    w_.real(148, 0.0);
    w_.real(149, 0.0);
    w_.str(100, "AcDbLayout");
    w_.str(1, name);
    w_.integer(70, 1);
    w_.integer(71, tabOrder);
    w_.point(10, 0.0, 0.0);
    w_.point(11, units_.limitsX, units_.limitsY);
    w_.point(12, 0.0, 0.0, 0.0);
    w_.point(14, kNoExtent, kNoExtent, kNoExtent);
    w_.point(15, -kNoExtent, -kNoExtent, -kNoExtent);
    w_.real(146, 0.0);
    w_.point(13, 0.0, 0.0, 0.0);
    w_.point(16, 1.0, 0.0, 0.0);
    w_.point(17, 0.0, 1.0, 0.0);
    w_.integer(76, 0);
    w_.handle(330, blockRecord);
    // The model layout's last active viewport is the *Active table entry; a paper
    // layout that was never opened has no viewport yet.
    if (model) w_.handle(331, h_.vportActive);
  }

  DxfVersion v_;
  bool metric_;
  const UnitSetup& units_;
  Handles h_;
  TagWriter w_;
};

}  // namespace

std::string newDrawingDxf(DxfVersion version, bool metric) {
  if (version < DxfVersion::R12)
    throw std::invalid_argument("new drawings are written as R12 or later, not " +
                                std::string(dxfver::keyword(version)));
  return Generator(version, metric).run();
}
