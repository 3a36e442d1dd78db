// The catalogue of the 78 dimension variables that make up a dimension style:
// names, value kinds, descriptions, access on the two holders of a full set of
// values (a style record and the drawing's current settings), and the display
// text of every kind of value.
#pragma once

#include <array>
#include <cstddef>

#include "drawings/DimVarDefaults.h"
#include "drawings/OdDimVarSource.h"
#include "vexmap.h"
#include "vextypes.h"

namespace dds {

using ::DimVarKind;

inline constexpr std::size_t kDimVarCount = kDimVarCatalogueSize;  // 78

struct DimVarInfo {
  wchar_t fullName[16];  // "DIM" in capitals, then the short name in lower case: "DIMadec"
  DimVarKind kind;
  int descriptionId;     // string resource of the description
  std::size_t row;       // the variable's row on the holders (OdDimVarSource)

  const wchar_t* shortName() const { return fullName + 3; }  // "adec"
  // The name in the one case of listings and of the sorted-position map: "DIMADEC".
  CXStringW foldedName() const;
  CXStringW description() const;

  // The value as the kind's typed member hands it out (integers narrowed to
  // their type, booleans to 0 or 1), on a style record or the current database.
  OdDimVarValue get(const OdDimVarSource& holder) const;
  // Writes the value, narrowed the same way. A style record must be open for write.
  void set(OdDimVarSource& holder, const OdDimVarValue& value) const;
  // Exact comparison by kind: numbers by value (doubles to the last bit, a NaN
  // differs from everything), strings with regard to case, colours and ids as such.
  bool differ(const OdDimVarValue& a, const OdDimVarValue& b) const;
  // The display text of a value of this variable (the kind formatters below).
  CXStringW format(const OdDimVarValue& value) const;
};

namespace dimvartable_detail {
constexpr std::array<DimVarInfo, kDimVarCount> build() {
  // The five later variables have descriptions outside the consecutive run.
  constexpr int kLateIds[] = {1169, 1170, 1171, 1174, 1175};
  constexpr std::size_t kConsecutive = 73;
  std::array<DimVarInfo, kDimVarCount> t{};
  for (std::size_t i = 0; i < kDimVarCount; ++i) {
    const DimVarDefault& d = kDimVarDefaults[i];
    DimVarInfo& v = t[i];
    for (std::size_t c = 0; c < d.name.size(); ++c) {
      const char ch = d.name[c];
      v.fullName[c] = static_cast<wchar_t>(c >= 3 && ch >= 'A' && ch <= 'Z' ? ch - 'A' + 'a' : ch);
    }
    v.kind = d.kind;
    v.descriptionId = i < kConsecutive ? 1082 + static_cast<int>(i) : kLateIds[i - kConsecutive];
    v.row = i;
  }
  return t;
}
}  // namespace dimvartable_detail

// The catalogue, in its order: alphabetical for the first 64 rows, then the later
// additions. Every walk over all variables goes in this order.
inline constexpr std::array<DimVarInfo, kDimVarCount> DimVarTable = dimvartable_detail::build();

// The row of a variable by its full name in any case ("DIMASZ", "dimasz"), or null.
const DimVarInfo* FindDimVarInfo(const wchar_t* fullName);

// The folded full name of every variable mapped to its position (0..77) in the
// ascending order of the folded names. Built on first use and shared.
const VexMap<CXStringW, int>& DimVarSortedPositions();
// The position of a folded full name, -1 for a name that is not in the catalogue.
int DimVarSortedPosition(const CXStringW& foldedName);

// ---------------------------------------------------------------- formatters
// Each takes the value and the variable's short name; only the formatters with
// special cases look at the name (compared without regard to case).

// "Yes" / "No".
CXStringW DimVarFormatBool(bool value);
// Int16, UInt16, UInt8 and LineWeight widened: the number, except for "dsep",
// whose value is a character code shown as the character.
CXStringW DimVarFormatInteger(int value, const wchar_t* shortName);
// In the drawing's linear units; "jogang" (radians) in its angular units.
CXStringW DimVarFormatDouble(double value, const wchar_t* shortName);
CXStringW DimVarFormatString(const OdString& value);
// Arrowhead blocks by their arrowhead's display name, other records by their
// name; a null id by what it stands for.
CXStringW DimVarFormatId(const OdDbObjectId& id, const wchar_t* shortName);
CXStringW DimVarFormatColor(const OdCmColor& value);

}  // namespace dds
