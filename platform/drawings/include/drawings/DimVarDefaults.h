// The dimension variables: where each one lives in a DXF file and what a new
// drawing starts with. One table drives the writer of new drawings, the typed
// dimension-style access and the reading of DIMSTYLE records, so that no code
// or default is repeated at a call site.
#pragma once

#include <array>
#include <cstdint>
#include <numbers>
#include <optional>
#include <span>
#include <string_view>

#include "drawings/DxfVersion.h"

// Value kind of a variable as the database hands it out.
enum class DimVarKind : std::uint8_t {
  Bool,
  Int16,
  UInt16,
  UInt8,
  Double,
  String,
  Color,       // colour index: 0 by block, 256 by layer
  Block,       // arrowhead block: a name in the header, a handle (or a name before R2000) in DIMSTYLE
  Linetype,    // linetype: a name in the header, a handle in DIMSTYLE
  TextStyle,   // text style: a name in the header, a handle in DIMSTYLE
  LineWeight,  // lineweight enumeration: -3 default, -2 by block, -1 by layer
};

// A default value. Numbers (integers too, exactly) sit in `number`, strings and
// referenced names in `text`; the kind of the row says which one counts.
struct DimVarValue {
  double number = 0.0;
  std::string_view text;

  constexpr DimVarValue(int v) : number(v) {}
  constexpr DimVarValue(double v) : number(v) {}
  constexpr DimVarValue(const char* s) : text(s) {}

  constexpr bool operator==(const DimVarValue&) const = default;
};

namespace dimvar {
// Row flags.
inline constexpr std::uint8_t kStyleDegrees = 1;   // DIMSTYLE stores degrees; header and overrides radians
inline constexpr std::uint8_t kAlwaysInStyle = 2;  // written in every DIMSTYLE record, even when default
inline constexpr std::uint8_t kUnconfirmed = 4;    // DIMSTYLE code not yet seen in files from CAD programs
}  // namespace dimvar

struct DimVarDefault {
  std::string_view name;  // "DIMASZ"; the header variable is "$" + name
  DimVarKind kind;
  int styleCode;          // DIMSTYLE group code from styleSince on; 0: never in DIMSTYLE
  DxfVersion styleSince;
  int headerCode;         // group code of the header variable; 0: not a header variable
  DxfVersion headerSince;
  DimVarValue imperial;   // built-in value; DIMSTYLE codes missing from a record mean this
  DimVarValue metric;     // value of the metric default style ("ISO-25")
  int nameCode = 0;       // arrowheads before styleSince: stored by name under this code
  std::optional<DxfVersion> lastVersion = {};  // obsolete variables: the last version holding them
  std::uint8_t flags = 0;

  constexpr bool existsIn(DxfVersion v) const { return !lastVersion || v <= *lastVersion; }

  // The DIMSTYLE group code of this variable in version v, 0 when that version has no slot for it.
  constexpr int styleCodeIn(DxfVersion v) const {
    if (!existsIn(v)) return 0;
    if (styleCode != 0 && v >= styleSince) return styleCode;
    if (nameCode != 0 && v < styleSince) return nameCode;
    return 0;
  }

  // Before R2000 the arrowheads are names, from then on handles.
  constexpr bool styleCodeIsHandle(DxfVersion v) const {
    int code = styleCodeIn(v);
    return code >= 330 && code <= 369;
  }

  constexpr bool inHeader(DxfVersion v) const {
    return headerCode != 0 && v >= headerSince && existsIn(v);
  }

  constexpr const DimVarValue& defaultValue(bool isMetric) const { return isMetric ? metric : imperial; }
  constexpr bool has(std::uint8_t flag) const { return (flags & flag) != 0; }
};

namespace dimvar_detail {
using K = DimVarKind;
using V = DxfVersion;
inline constexpr double kQuarterPi = std::numbers::pi / 4;
}  // namespace dimvar_detail

// The 78 variables of the style catalogue in its order (alphabetical for the first
// 64, then the later additions), followed by the two that R13/R14 still carry.
// Values per the defaults of an imperial "Standard" and a metric "ISO-25" style.
// DIMFXL, DIMFXLON, DIMJOGANG, DIMTFILL, DIMTFILLCLR, DIMARCSYM and the DIMLTYPE
// family have no DIMSTYLE slot before R2007: R2000/R2004 keep them as XDATA.
inline constexpr std::array<DimVarDefault, 80> kDimVarDefaults = [] {
  using namespace dimvar_detail;
  using namespace dimvar;
  return std::array<DimVarDefault, 80>{{
      {"DIMADEC", K::Int16, 179, V::R2000, 70, V::R2000, 0, 0},
      {"DIMALT", K::Bool, 170, V::R12, 70, V::R12, 0, 0},
      {"DIMALTD", K::UInt16, 171, V::R12, 70, V::R12, 2, 3},
      {"DIMALTF", K::Double, 143, V::R12, 40, V::R12, 25.4, 0.03937007874016},
      {"DIMALTRND", K::Double, 148, V::R2000, 40, V::R2000, 0.0, 0.0},
      {"DIMALTTD", K::Int16, 274, V::R13, 70, V::R13, 2, 3},
      {"DIMALTTZ", K::UInt8, 286, V::R13, 70, V::R13, 0, 0},
      {"DIMALTU", K::Int16, 273, V::R13, 70, V::R13, 2, 2},
      {"DIMALTZ", K::UInt8, 285, V::R13, 70, V::R13, 0, 0},
      {"DIMAPOST", K::String, 4, V::R12, 1, V::R12, "", ""},
      {"DIMASZ", K::Double, 41, V::R12, 40, V::R12, 0.18, 2.5},
      {"DIMATFIT", K::Int16, 289, V::R2000, 70, V::R2000, 3, 3},
      {"DIMAUNIT", K::Int16, 275, V::R13, 70, V::R13, 0, 0},
      {"DIMAZIN", K::Int16, 79, V::R2000, 70, V::R2000, 0, 0},
      {"DIMBLK", K::Block, 342, V::R2000, 1, V::R12, "", "", 5},
      {"DIMBLK1", K::Block, 343, V::R2000, 1, V::R12, "", "", 6},
      {"DIMBLK2", K::Block, 344, V::R2000, 1, V::R12, "", "", 7},
      {"DIMCEN", K::Double, 141, V::R12, 40, V::R12, 0.09, 2.5},
      {"DIMCLRD", K::Color, 176, V::R12, 70, V::R12, 0, 0},
      {"DIMCLRE", K::Color, 177, V::R12, 70, V::R12, 0, 0},
      {"DIMCLRT", K::Color, 178, V::R12, 70, V::R12, 0, 0},
      {"DIMDEC", K::Int16, 271, V::R13, 70, V::R13, 4, 2},
      {"DIMDLE", K::Double, 46, V::R12, 40, V::R12, 0.0, 0.0},
      {"DIMDLI", K::Double, 43, V::R12, 40, V::R12, 0.38, 3.75},
      {"DIMDSEP", K::Int16, 278, V::R2000, 70, V::R2000, '.', ','},
      {"DIMEXE", K::Double, 44, V::R12, 40, V::R12, 0.18, 1.25},
      {"DIMEXO", K::Double, 42, V::R12, 40, V::R12, 0.0625, 0.625},
      {"DIMFRAC", K::Int16, 276, V::R2000, 70, V::R2000, 0, 0},
      {"DIMGAP", K::Double, 147, V::R12, 40, V::R12, 0.09, 0.625},
      {"DIMJUST", K::UInt16, 280, V::R13, 70, V::R13, 0, 0},
      {"DIMLDRBLK", K::Block, 341, V::R2000, 1, V::R2000, "", ""},
      {"DIMLFAC", K::Double, 144, V::R12, 40, V::R12, 1.0, 1.0},
      {"DIMLIM", K::Bool, 72, V::R12, 70, V::R12, 0, 0},
      {"DIMLUNIT", K::Int16, 277, V::R2000, 70, V::R2000, 2, 2},
      {"DIMLWD", K::LineWeight, 371, V::R2000, 70, V::R2000, -2, -2},
      {"DIMLWE", K::LineWeight, 372, V::R2000, 70, V::R2000, -2, -2},
      {"DIMPOST", K::String, 3, V::R12, 1, V::R12, "", ""},
      {"DIMRND", K::Double, 45, V::R12, 40, V::R12, 0.0, 0.0},
      {"DIMSAH", K::Bool, 173, V::R12, 70, V::R12, 0, 0},
      {"DIMSCALE", K::Double, 40, V::R12, 40, V::R12, 1.0, 1.0},
      {"DIMSD1", K::Bool, 281, V::R13, 70, V::R13, 0, 0},
      {"DIMSD2", K::Bool, 282, V::R13, 70, V::R13, 0, 0},
      {"DIMSE1", K::Bool, 75, V::R12, 70, V::R12, 0, 0},
      {"DIMSE2", K::Bool, 76, V::R12, 70, V::R12, 0, 0},
      {"DIMSOXD", K::Bool, 175, V::R12, 70, V::R12, 0, 0},
      {"DIMTAD", K::Int16, 77, V::R12, 70, V::R12, 0, 1},
      {"DIMTDEC", K::Int16, 272, V::R13, 70, V::R13, 4, 2},
      {"DIMTFAC", K::Double, 146, V::R12, 40, V::R12, 1.0, 1.0},
      {"DIMTIH", K::Bool, 73, V::R12, 70, V::R12, 1, 0},
      {"DIMTIX", K::Bool, 174, V::R12, 70, V::R12, 0, 0},
      {"DIMTM", K::Double, 48, V::R12, 40, V::R12, 0.0, 0.0},
      {"DIMTMOVE", K::Int16, 279, V::R2000, 70, V::R2000, 0, 0},
      {"DIMTOFL", K::Bool, 172, V::R12, 70, V::R12, 0, 1},
      {"DIMTOH", K::Bool, 74, V::R12, 70, V::R12, 1, 0},
      {"DIMTOL", K::Bool, 71, V::R12, 70, V::R12, 0, 0},
      {"DIMTOLJ", K::UInt8, 283, V::R13, 70, V::R13, 1, 0},
      {"DIMTP", K::Double, 47, V::R12, 40, V::R12, 0.0, 0.0},
      {"DIMTSZ", K::Double, 142, V::R12, 40, V::R12, 0.0, 0.0},
      {"DIMTVP", K::Double, 145, V::R12, 40, V::R12, 0.0, 0.0},
      {"DIMTXSTY", K::TextStyle, 340, V::R13, 7, V::R13, "Standard", "Standard", 0, {}, kAlwaysInStyle},
      {"DIMTXT", K::Double, 140, V::R12, 40, V::R12, 0.18, 2.5},
      {"DIMTZIN", K::UInt8, 284, V::R13, 70, V::R13, 0, 8},
      {"DIMUPT", K::Bool, 288, V::R13, 70, V::R13, 0, 0},
      {"DIMZIN", K::UInt8, 78, V::R12, 70, V::R12, 0, 8},
      {"DIMFXL", K::Double, 49, V::R2007, 40, V::R2007, 1.0, 1.0},
      // Code 290 lies in the boolean range: the value is written as 0/1 either way.
      {"DIMFXLON", K::Bool, 290, V::R2007, 70, V::R2007, 0, 0},
      {"DIMJOGANG", K::Double, 50, V::R2007, 40, V::R2007, kQuarterPi, kQuarterPi, 0, {}, kStyleDegrees},
      {"DIMTFILL", K::Int16, 69, V::R2007, 70, V::R2007, 0, 0},
      // The second 70 of a record: the first one, right after the name, is the flag word.
      {"DIMTFILLCLR", K::Color, 70, V::R2007, 70, V::R2007, 0, 0},
      {"DIMARCSYM", K::Int16, 90, V::R2007, 70, V::R2007, 0, 0},
      {"DIMLTYPE", K::Linetype, 345, V::R2007, 6, V::R2007, "", ""},
      {"DIMLTEX1", K::Linetype, 346, V::R2007, 6, V::R2007, "", ""},
      {"DIMLTEX2", K::Linetype, 347, V::R2007, 6, V::R2007, "", ""},
      {"DIMTXTDIRECTION", K::Bool, 294, V::R2010, 70, V::R2010, 0, 0, 0, {}, kUnconfirmed},
      // The sub-unit variables have no header variable; their DIMSTYLE codes are
      // known only from libraries, so a record keeps whatever it was read with.
      {"DIMMZF", K::Double, 297, V::R2010, 0, V::R2010, 100.0, 100.0, 0, {}, kUnconfirmed},
      {"DIMMZS", K::String, 298, V::R2010, 0, V::R2010, "", "", 0, {}, kUnconfirmed},
      {"DIMALTMZF", K::Double, 295, V::R2010, 0, V::R2010, 100.0, 100.0, 0, {}, kUnconfirmed},
      {"DIMALTMZS", K::String, 296, V::R2010, 0, V::R2010, "", "", 0, {}, kUnconfirmed},
      // Superseded in R2000 by DIMLUNIT + DIMFRAC and by DIMATFIT + DIMTMOVE.
      {"DIMUNIT", K::Int16, 270, V::R13, 70, V::R13, 2, 2, 0, DxfVersion::R14},
      {"DIMFIT", K::Int16, 287, V::R13, 70, V::R13, 3, 3, 0, DxfVersion::R14},
  }};
}();

// Rows of the style catalogue proper, without the obsolete R13/R14 ones.
inline constexpr std::size_t kDimVarCatalogueSize = 78;

inline constexpr std::span<const DimVarDefault> dimVarCatalogue() {
  return std::span<const DimVarDefault>(kDimVarDefaults).first(kDimVarCatalogueSize);
}

// Case-insensitive lookup by name, with or without the leading "$".
inline constexpr const DimVarDefault* findDimVar(std::string_view name) {
  if (!name.empty() && name.front() == '$') name.remove_prefix(1);
  auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
  for (const DimVarDefault& row : kDimVarDefaults) {
    if (row.name.size() != name.size()) continue;
    bool same = true;
    for (std::size_t i = 0; i < name.size() && same; ++i) same = upper(name[i]) == row.name[i];
    if (same) return &row;
  }
  return nullptr;
}
