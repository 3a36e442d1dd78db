// DXF file versions ($ACADVER) and what each can hold.
#pragma once

#include <optional>
#include <string_view>

enum class DxfVersion : int {
  AC1003 = 1003,  // older than R12: read and kept, never chosen for a new file
  AC1004 = 1004,
  AC1006 = 1006,
  R12 = 1009,     // AC1009
  R13 = 1012,     // AC1012
  R14 = 1014,     // AC1014
  R2000 = 1015,   // AC1015
  R2004 = 1018,   // AC1018
  R2007 = 1021,   // AC1021
  R2010 = 1024,   // AC1024
  R2013 = 1027,   // AC1027
  R2018 = 1032,   // AC1032
};

enum class DxfFormat { Ascii, Binary };

namespace dxfver {
// "AC1015" -> R2000; nullopt for an unknown string.
std::optional<DxfVersion> fromAcadVer(std::string_view acadver);
// R2000 -> "AC1015".
std::string_view acadVer(DxfVersion v);
// "R2000" (the keyword users type) -> R2000; nullopt if not a version keyword.
std::optional<DxfVersion> fromKeyword(std::string_view keyword);
// R2000 -> "R2000".
std::string_view keyword(DxfVersion v);

// Text is UTF-8 from R2007 on, the $DWGCODEPAGE code page before.
inline bool isUtf8(DxfVersion v) { return v >= DxfVersion::R2007; }
// Handles, subclass markers, owners and the OBJECTS section exist from R13 on.
inline bool hasObjects(DxfVersion v) { return v >= DxfVersion::R13; }
// Binary group codes are one byte (with a 255 escape) up to R12, two bytes after.
inline bool binaryShortCodes(DxfVersion v) { return v <= DxfVersion::R12; }
}  // namespace dxfver
