#include "host/HostSysVarCommand.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string_view>

#include "drawings/DimVarDefaults.h"
#include "drawings/OdDmUtil.h"
#include "host/HostServices.h"
#include "host/HostSysVars.h"
#include "host/HostUnits.h"

namespace {

// How a value is shown, typed and checked.
enum class Edit : std::uint8_t {
  Switch,      // On/Off
  Int,         // lo..hi
  Char,        // one character, kept as its code
  Real,        // a plain number, checked against `bound`
  Distance,    // in the drawing's linear units, checked against `bound`
  Angle,       // in the drawing's angular units; lo..hi degrees unless both are 0
  Text,        // as typed, "." for none
  Color,       // BYBLOCK, BYLAYER or an index
  LineWeight,  // -3..-1 or a standard weight
  Arrow,       // arrow block by name, "." for closed filled
  Linetype,    // existing linetype, BYBLOCK for the empty setting
  TextStyle,   // existing text style
  DimStyle,    // existing dimension style; made current with its values
  ScaleName,   // annotation scale name
  ReadOnly,    // shown, never set
};

enum class Bound : std::uint8_t { Any, NonNegative, Positive, NonZero };

using Getter = OdDimVarValue (*)(OdDbDatabase*);
using Setter = void (*)(OdDbDatabase*, const OdDimVarValue&);

struct Var {
  std::string_view name;
  Edit edit;
  double lo = 0, hi = 0;
  Bound bound = Bound::Any;
  // Variables outside the dimension catalogue say where their value lives.
  Getter get = nullptr;
  Setter set = nullptr;
  bool needsDrawing = true;
};

constexpr Var of(std::string_view n, Edit e) { return {n, e}; }
constexpr Var ints(std::string_view n, int lo, int hi) { return {n, Edit::Int, double(lo), double(hi)}; }
constexpr Var real(std::string_view n, Bound b) { return {n, Edit::Real, 0, 0, b}; }
constexpr Var dist(std::string_view n, Bound b) { return {n, Edit::Distance, 0, 0, b}; }

OdDimVarValue number(double v) {
  OdDimVarValue r;
  r.number = v;
  return r;
}
int asInt(const OdDimVarValue& v) { return static_cast<int>(std::lround(v.number)); }

OdDimVarValue hostVar(const wchar_t* name) {
  HostVarValue v;
  if (hostGetVar(name, v) != kHostOk) return {};
  OdDimVarValue r;
  if (const int* i = std::get_if<int>(&v)) r.number = *i;
  else r.text = std::get<OdString>(v);
  return r;
}

OdString nameOf(const OdDbObjectId& id) {
  auto rec = odOpen<OdDbSymbolTableRecord>(id);
  return rec ? rec->getName() : OdString();
}

// Dimension variables in catalogue order, then the others. Ranges are those the
// variables' meanings allow: decimal places up to 8, the documented codes of each
// setting, bit sets of zero suppression up to 15; sizes and distances that make
// no sense below zero are refused there, and factors that would make text or
// measurements vanish are refused at zero.
const auto kVars = std::to_array<Var>({
    ints("DIMADEC", -1, 8),
    of("DIMALT", Edit::Switch),
    ints("DIMALTD", 0, 8),
    real("DIMALTF", Bound::Positive),
    real("DIMALTRND", Bound::NonNegative),  // in alternate units, so not a drawing distance
    ints("DIMALTTD", 0, 8),
    ints("DIMALTTZ", 0, 15),
    ints("DIMALTU", 1, 8),
    ints("DIMALTZ", 0, 15),
    of("DIMAPOST", Edit::Text),
    dist("DIMASZ", Bound::NonNegative),
    ints("DIMATFIT", 0, 3),
    ints("DIMAUNIT", 0, 4),
    ints("DIMAZIN", 0, 3),
    of("DIMBLK", Edit::Arrow),
    of("DIMBLK1", Edit::Arrow),
    of("DIMBLK2", Edit::Arrow),
    dist("DIMCEN", Bound::Any),  // negative draws centre lines
    of("DIMCLRD", Edit::Color),
    of("DIMCLRE", Edit::Color),
    of("DIMCLRT", Edit::Color),
    ints("DIMDEC", 0, 8),
    dist("DIMDLE", Bound::NonNegative),
    dist("DIMDLI", Bound::NonNegative),
    of("DIMDSEP", Edit::Char),
    dist("DIMEXE", Bound::NonNegative),
    dist("DIMEXO", Bound::NonNegative),
    ints("DIMFRAC", 0, 2),
    dist("DIMGAP", Bound::Any),  // negative frames the text
    ints("DIMJUST", 0, 4),
    of("DIMLDRBLK", Edit::Arrow),
    real("DIMLFAC", Bound::NonZero),  // negative: applies in paper space only
    of("DIMLIM", Edit::Switch),
    ints("DIMLUNIT", 1, 6),
    of("DIMLWD", Edit::LineWeight),
    of("DIMLWE", Edit::LineWeight),
    of("DIMPOST", Edit::Text),
    dist("DIMRND", Bound::NonNegative),
    of("DIMSAH", Edit::Switch),
    real("DIMSCALE", Bound::NonNegative),  // 0: scaled to the viewport
    of("DIMSD1", Edit::Switch),
    of("DIMSD2", Edit::Switch),
    of("DIMSE1", Edit::Switch),
    of("DIMSE2", Edit::Switch),
    of("DIMSOXD", Edit::Switch),
    ints("DIMTAD", 0, 4),
    ints("DIMTDEC", 0, 8),
    real("DIMTFAC", Bound::Positive),
    of("DIMTIH", Edit::Switch),
    of("DIMTIX", Edit::Switch),
    dist("DIMTM", Bound::Any),  // tolerances carry their own sign
    ints("DIMTMOVE", 0, 2),
    of("DIMTOFL", Edit::Switch),
    of("DIMTOH", Edit::Switch),
    of("DIMTOL", Edit::Switch),
    ints("DIMTOLJ", 0, 2),
    dist("DIMTP", Bound::Any),
    dist("DIMTSZ", Bound::NonNegative),
    real("DIMTVP", Bound::Any),
    of("DIMTXSTY", Edit::TextStyle),
    dist("DIMTXT", Bound::Positive),
    ints("DIMTZIN", 0, 15),
    of("DIMUPT", Edit::Switch),
    ints("DIMZIN", 0, 15),
    dist("DIMFXL", Bound::NonNegative),
    of("DIMFXLON", Edit::Switch),
    Var{"DIMJOGANG", Edit::Angle, 5, 90},
    ints("DIMTFILL", 0, 2),
    of("DIMTFILLCLR", Edit::Color),
    ints("DIMARCSYM", 0, 2),
    of("DIMLTYPE", Edit::Linetype),
    of("DIMLTEX1", Edit::Linetype),
    of("DIMLTEX2", Edit::Linetype),
    of("DIMTXTDIRECTION", Edit::Switch),
    real("DIMMZF", Bound::Positive),
    of("DIMMZS", Edit::Text),
    real("DIMALTMZF", Bound::Positive),
    of("DIMALTMZS", Edit::Text),

    Var{"LUNITS", Edit::Int, 1, 5, Bound::Any, [](OdDbDatabase* db) { return number(db->getLUNITS()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderInt("$LUNITS", 70, asInt(v)); }},
    Var{"LUPREC", Edit::Int, 0, 8, Bound::Any, [](OdDbDatabase* db) { return number(db->getLUPREC()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderInt("$LUPREC", 70, asInt(v)); }},
    Var{"AUNITS", Edit::Int, 0, 4, Bound::Any, [](OdDbDatabase* db) { return number(db->getAUNITS()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderInt("$AUNITS", 70, asInt(v)); }},
    Var{"AUPREC", Edit::Int, 0, 8, Bound::Any, [](OdDbDatabase* db) { return number(db->getAUPREC()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderInt("$AUPREC", 70, asInt(v)); }},
    Var{"ANGBASE", Edit::Angle, 0, 0, Bound::Any, [](OdDbDatabase* db) { return number(db->getANGBASE()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderDouble("$ANGBASE", 50, v.number); }},
    Var{"ANGDIR", Edit::Int, 0, 1, Bound::Any, [](OdDbDatabase* db) { return number(db->getANGDIR() ? 1 : 0); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderInt("$ANGDIR", 70, asInt(v)); }},
    Var{"DIMASO", Edit::Switch, 0, 0, Bound::Any, [](OdDbDatabase* db) { return number(db->getDIMASO()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setHeaderInt("$DIMASO", 70, asInt(v)); }},
    Var{"DIMASSOC", Edit::Int, 0, 2, Bound::Any, [](OdDbDatabase* db) { return number(db->getDIMASSOC()); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setDIMASSOC(asInt(v)); }},
    Var{"DIMSTYLE", Edit::DimStyle, 0, 0, Bound::Any, [](OdDbDatabase*) { return hostVar(L"DIMSTYLE"); },
        [](OdDbDatabase* db, const OdDimVarValue& v) { db->setDimstyleData(v.id); }},
    Var{"CMDACTIVE", Edit::ReadOnly, 0, 0, Bound::Any, [](OdDbDatabase*) { return hostVar(L"CMDACTIVE"); },
        nullptr, false},
    Var{"CANNOSCALE", Edit::ScaleName, 0, 0, Bound::Any, [](OdDbDatabase*) { return hostVar(L"CANNOSCALE"); },
        [](OdDbDatabase*, const OdDimVarValue& v) { hostSetVar(L"CANNOSCALE", v.text); }},
    Var{"LWUNITS", Edit::Int, 0, 1, Bound::Any, [](OdDbDatabase*) { return hostVar(L"LWUNITS"); },
        [](OdDbDatabase*, const OdDimVarValue& v) { hostSetVar(L"LWUNITS", asInt(v)); }, false},
    Var{"MEASUREMENT", Edit::Int, 0, 1, Bound::Any, [](OdDbDatabase*) { return hostVar(L"MEASUREMENT"); },
        [](OdDbDatabase*, const OdDimVarValue& v) { hostSetVar(L"MEASUREMENT", asInt(v)); }},
});

static_assert(kVars.size() == kDimVarCatalogueSize + 13);

std::string upper(std::string_view s) {
  std::string u(s);
  for (auto& c : u) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return u;
}

bool iequals(std::string_view a, std::string_view b) { return upper(a) == upper(b); }

const Var* findVar(const std::string& name) {
  for (const Var& v : kVars)
    if (iequals(v.name, name)) return &v;
  return nullptr;
}

// The catalogue row of a dimension variable, or -1.
int catalogueRow(const Var& var) {
  if (var.get) return -1;
  const DimVarDefault* row = findDimVar(var.name);
  assert(row);
  return static_cast<int>(row - kDimVarDefaults.data());
}

OdDimVarValue valueOf(const Var& var, OdDbDatabase* db) {
  const int row = catalogueRow(var);
  return row >= 0 ? db->dimVar(static_cast<std::size_t>(row)) : var.get(db);
}

void store(const Var& var, OdDbDatabase* db, const OdDimVarValue& v) {
  const int row = catalogueRow(var);
  if (row < 0) {
    var.set(db, v);
    return;
  }
  const auto index = static_cast<std::size_t>(row);
  // An unchanged value leaves the drawing untouched, and so no undo step.
  if (!OdDimVarValue::same(kDimVarDefaults[index].kind, v, db->dimVar(index))) db->setDimVar(index, v);
}

constexpr std::array<int, 27> kLineWeights = {-3, -2, -1, 0,  5,  9,  13, 15,  18,  20,  25,  30,  35, 40,
                                              50, 53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

std::string quoted(const OdString& s) { return "\"" + s.toUtf8() + "\""; }

std::string show(const Var& var, OdDbDatabase* db, const OdDimVarValue& v) {
  OdString s;
  switch (var.edit) {
    case Edit::Switch: return v.number != 0 ? "On" : "Off";
    case Edit::Int:
    case Edit::LineWeight:
    case Edit::ReadOnly: return std::to_string(asInt(v));
    case Edit::Char: return quoted(OdString(std::wstring(1, static_cast<wchar_t>(asInt(v)))));
    case Edit::Real: hostdbRToS(db, v.number, 2, 4, s); return s.toUtf8();
    case Edit::Distance: hostdbRToS(db, v.number, -1, -1, s); return s.toUtf8();
    case Edit::Angle: hostdbAngToS(db, v.number, -1, -1, s); return s.toUtf8();
    case Edit::Text:
    case Edit::DimStyle:
    case Edit::ScaleName: return quoted(v.text);
    case Edit::Color:
      if (v.color.isByBlock()) return "BYBLOCK";
      if (v.color.isByLayer()) return "BYLAYER";
      if (v.color.isByACI() || v.color.isForeground()) return std::to_string(v.color.colorIndex());
      return v.color.colorNameForDisplay().toUtf8();
    case Edit::Arrow: return quoted(OdDmUtil::arrowName(v.id));
    case Edit::Linetype: return quoted(v.id.isNull() ? OdString(L"ByBlock") : nameOf(v.id));
    case Edit::TextStyle: return quoted(nameOf(v.id));
  }
  return {};
}

std::string boundText(Bound b, const char* what) {
  switch (b) {
    case Bound::Any: return std::string("Requires ") + what + ".";
    case Bound::NonNegative: return std::string("Requires ") + what + " of 0 or more.";
    case Bound::Positive: return std::string("Requires ") + what + " greater than 0.";
    case Bound::NonZero: return std::string("Requires ") + what + " other than 0.";
  }
  return {};
}

std::string angleText(OdDbDatabase* db, double degrees) {
  OdString s;
  hostdbAngToS(db, degrees * std::numbers::pi / 180, -1, -1, s);
  return s.toUtf8();
}

// What the variable allows, as the refusal says it.
std::string allowed(const Var& var, OdDbDatabase* db) {
  switch (var.edit) {
    case Edit::Switch: return "Requires On, Off, 1 or 0.";
    case Edit::Int:
      if (var.lo == 0 && var.hi == 1) return "Requires 0 or 1.";
      return "Requires an integer between " + std::to_string(int(var.lo)) + " and " + std::to_string(int(var.hi)) + ".";
    case Edit::Char: return "Requires a single character.";
    case Edit::Real: return boundText(var.bound, "a number");
    case Edit::Distance: return boundText(var.bound, "a distance");
    case Edit::Angle:
      if (var.lo == 0 && var.hi == 0) return "Requires an angle.";
      return "Requires an angle between " + angleText(db, var.lo) + " and " + angleText(db, var.hi) + ".";
    case Edit::Color: return "Requires a colour: BYBLOCK, BYLAYER or a number 1 to 255.";
    case Edit::LineWeight: {
      std::string list;
      for (int w : kLineWeights)
        if (w >= 0) list += (list.empty() ? "" : ", ") + std::to_string(w);
      return "Requires a lineweight: -3 default, -2 BYBLOCK, -1 BYLAYER or one of " + list + ".";
    }
    case Edit::Arrow: return "Requires the name of a block or a standard arrow, or . for closed filled.";
    case Edit::Linetype: return "Requires the name of an existing linetype.";
    case Edit::TextStyle: return "Requires the name of an existing text style.";
    case Edit::DimStyle: return "Unknown dimension style.";
    case Edit::Text:
    case Edit::ScaleName:
    case Edit::ReadOnly: break;
  }
  return "Invalid value.";
}

std::optional<long> parseInt(std::string_view s) {
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  long v = 0;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  if (s.empty() || r.ec != std::errc() || r.ptr != s.data() + s.size()) return std::nullopt;
  return v;
}

std::optional<double> parseReal(std::string_view s) {
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  double v = 0;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  if (s.empty() || r.ec != std::errc() || r.ptr != s.data() + s.size() || !std::isfinite(v)) return std::nullopt;
  return v;
}

bool withinBound(Bound b, double v) {
  switch (b) {
    case Bound::Any: return true;
    case Bound::NonNegative: return v >= 0;
    case Bound::Positive: return v > 0;
    case Bound::NonZero: return v != 0;
  }
  return false;
}

OdDbObjectId recordIn(const OdDbObjectId& tableId, const OdString& name) {
  auto table = odOpen<OdDbSymbolTable>(tableId);
  return table ? table->getAt(name) : OdDbObjectId();
}

// The value that `text` stands for; false when the variable does not allow it.
bool parse(const Var& var, OdDbDatabase* db, const std::string& text, OdDimVarValue& out) {
  const OdString wide = OdString::fromUtf8(text);
  switch (var.edit) {
    case Edit::Switch:
      if (iequals(text, "ON") || text == "1") out.number = 1;
      else if (iequals(text, "OFF") || text == "0") out.number = 0;
      else return false;
      return true;
    case Edit::Int: {
      auto v = parseInt(text);
      if (!v || *v < var.lo || *v > var.hi) return false;
      out.number = static_cast<double>(*v);
      return true;
    }
    case Edit::Char:
      // The code must fit the variable's 16-bit slot.
      if (wide.getLength() != 1 || wide.getAt(0) > 0x7FFF) return false;
      out.number = wide.getAt(0);
      return true;
    case Edit::Real: {
      auto v = parseReal(text);
      if (!v || !withinBound(var.bound, *v)) return false;
      out.number = *v;
      return true;
    }
    case Edit::Distance: {
      double v = 0;
      if (!hostdbDisToF(db, wide, -1, v) || !std::isfinite(v) || !withinBound(var.bound, v)) return false;
      out.number = v;
      return true;
    }
    case Edit::Angle: {
      double v = 0;
      if (!hostdbAngToF(db, wide, -1, v) || !std::isfinite(v)) return false;
      // Bounds in degrees, with room for the rounding of a typed bound itself.
      const double degrees = v * 180 / std::numbers::pi;
      if ((var.lo != 0 || var.hi != 0) && (degrees < var.lo - 1e-9 || degrees > var.hi + 1e-9)) return false;
      out.number = v;
      return true;
    }
    case Edit::Text:
      out.text = text == "." ? OdString() : wide;
      return true;
    case Edit::ScaleName:
      out.text = wide;
      return !wide.isEmpty();
    case Edit::Color: {
      int index = -1;
      if (iequals(text, "BYBLOCK")) index = OdCmEntityColor::kACIbyBlock;
      else if (iequals(text, "BYLAYER")) index = OdCmEntityColor::kACIbyLayer;
      else if (auto v = parseInt(text); v && *v >= 0 && *v <= 256) index = static_cast<int>(*v);
      return index >= 0 && out.color.setColorIndex(static_cast<int16_t>(index));
    }
    case Edit::LineWeight: {
      std::optional<long> v;
      if (iequals(text, "BYLAYER")) v = -1;
      else if (iequals(text, "BYBLOCK")) v = -2;
      else if (iequals(text, "DEFAULT")) v = -3;
      else v = parseInt(text);
      if (!v || std::find(kLineWeights.begin(), kLineWeights.end(), *v) == kLineWeights.end()) return false;
      out.number = static_cast<double>(*v);
      return true;
    }
    case Edit::Arrow:
      if (text == ".") {
        out.id = OdDbObjectId();
        return true;
      }
      // Layout and anonymous blocks ("*Model_Space", "*D12") draw no arrow.
      if (wide.isEmpty() || wide.getAt(0) == L'*') return false;
      out.id = OdDmUtil::getArrowId(wide, db);
      return !out.id.isNull();
    case Edit::Linetype:
      // The empty setting draws with the dimension's own linetype.
      out.id = wide.iCompare(L"ByBlock") == 0 ? OdDbObjectId() : recordIn(db->getLinetypeTableId(), wide);
      return wide.iCompare(L"ByBlock") == 0 || !out.id.isNull();
    case Edit::TextStyle:
      out.id = recordIn(db->getTextStyleTableId(), wide);
      return !out.id.isNull();
    case Edit::DimStyle:
      out.id = recordIn(db->getDimStyleTableId(), wide);
      out.text = nameOf(out.id);
      return !out.id.isNull();
    case Edit::ReadOnly: break;
  }
  return false;
}

// The drawing a variable works on; null without one (fine for the host's own).
OdDbDatabase* drawingFor(const Var& var, bool& missing) {
  OdDbDatabase* db = hostActiveDatabase();
  missing = var.needsDrawing && !db;
  return db;
}

bool matches(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  if (pattern.front() == '*')
    return matches(pattern.substr(1), name) || (!name.empty() && matches(pattern, name.substr(1)));
  if (name.empty()) return false;
  if (pattern.front() != '?' && std::toupper(static_cast<unsigned char>(pattern.front())) != name.front())
    return false;
  return matches(pattern.substr(1), name.substr(1));
}

void listVars(HostCommandLine& cl) {
  std::string pattern = cl.getLine("Enter variable(s) to list <*>: ");
  if (pattern.empty()) pattern = "*";
  for (const std::string& name : hostCommandLineVarNames()) {
    if (!matches(pattern, name)) continue;
    auto text = hostVarText(name);
    if (!text) continue;  // a drawing variable with no drawing open
    std::string line = name;
    line.resize(std::max<std::size_t>(line.size() + 2, 18), ' ');
    cl.println(line + *text + (findVar(name)->edit == Edit::ReadOnly ? "  (read only)" : ""));
  }
}

}  // namespace

bool hostIsCommandLineVar(const std::string& name) { return findVar(name) != nullptr; }

std::vector<std::string> hostCommandLineVarNames() {
  std::vector<std::string> names;
  for (const Var& v : kVars) names.emplace_back(v.name);
  std::sort(names.begin(), names.end());
  return names;
}

std::optional<std::string> hostVarText(const std::string& name) {
  const Var* var = findVar(name);
  if (!var) return std::nullopt;
  bool missing = false;
  OdDbDatabase* db = drawingFor(*var, missing);
  if (missing) return std::nullopt;
  return show(*var, db, valueOf(*var, db));
}

std::string hostSetVarFromText(const std::string& name, const std::string& text) {
  const Var* var = findVar(name);
  if (!var) return "Unknown variable name.";
  if (var->edit == Edit::ReadOnly) return std::string(var->name) + " is read only.";
  bool missing = false;
  OdDbDatabase* db = drawingFor(*var, missing);
  if (missing) return "No drawing is open.";
  OdDimVarValue value;
  if (!parse(*var, db, text, value)) return allowed(*var, db);
  store(*var, db, value);
  return {};
}

void hostVarPrompt(HostCommandLine& cl, const std::string& name) {
  const Var* var = findVar(name);
  if (!var) {
    cl.println("Unknown variable name.");
    return;
  }
  const std::string shownName(var->name);
  auto text = hostVarText(shownName);
  if (!text) {
    cl.println("No drawing is open.");
    return;
  }
  if (var->edit == Edit::ReadOnly) {
    cl.println(shownName + " = " + *text + " (read only)");
    return;
  }
  const char* hint = var->edit == Edit::Text    ? ", or . for none"
                     : var->edit == Edit::Arrow ? ", or . for closed filled"
                                                : "";
  for (;;) {
    const std::string typed = cl.getLine("Enter new value for " + shownName + hint + " <" + *text + ">: ");
    if (typed.empty()) return;
    const std::string problem = hostSetVarFromText(shownName, typed);
    if (problem.empty()) return;
    cl.println(problem);
  }
}

void hostSetVarCommand(HostCommandLine& cl) {
  const std::string name = cl.getLine("Enter variable name or [?]: ");
  if (name.empty()) return;
  if (name == "?") listVars(cl);
  else if (!hostIsCommandLineVar(name)) cl.println("Unknown variable name.  Type SETVAR ? for a list of variables.");
  else hostVarPrompt(cl, name);
}
