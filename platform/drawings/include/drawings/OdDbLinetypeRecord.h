// Typed access to linetype (LTYPE) and text style (STYLE) records, which the
// symbol tables keep as their tags: what linetype samples, the linetype loader,
// the text style dialog and the sample drawing of previews read and change.
#pragma once

#include <optional>
#include <vector>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbSymbolTable.h"

// One element of a dash pattern: a dash (> 0), a gap (< 0) or a dot (0),
// optionally with a shape or a text drawn at its start.
struct OdDbLinetypeDash {
  double length = 0.0;     // 49
  int complexType = 0;     // 74: 0 none; 2 text, 4 shape; 1 rotation absolute (not along the line)
  int shapeNumber = 0;     // 75, or 0 for a text
  OdDbObjectId style;      // 340: the text style of a text or the shape file's style
  double scale = 1.0;      // 46
  double rotation = 0.0;   // 50, radians
  double xOffset = 0.0;    // 44
  double yOffset = 0.0;    // 45
  OdString text;           // 9
  friend bool operator==(const OdDbLinetypeDash&, const OdDbLinetypeDash&) = default;
};

// What a linetype record says, apart from its name and flags.
struct OdDbLinetypeData {
  OdString description;                 // 3
  double patternLength = 0.0;           // 40: the sum of the absolute dash lengths
  std::vector<OdDbLinetypeDash> dashes; // 73 of them

  // The record's values; a record without a pattern is continuous.
  static OdDbLinetypeData fromRecord(const OdDbLinetypeTableRecord& record);
  // Replaces the description and pattern of an open-for-write record, keeping
  // its name, flags, extended data and whatever else it holds.
  void applyTo(OdDbLinetypeTableRecord& record) const;
  // A new linetype `name` in `db`; throws OdError(eDuplicateKey) when the name is
  // taken. The caller groups it into an undo step.
  OdDbObjectId addTo(OdDbDatabase& db, const OdString& name) const;
  friend bool operator==(const OdDbLinetypeData&, const OdDbLinetypeData&) = default;
};

// What a text style record says, apart from its name.
struct OdDbTextStyleData {
  OdString fontFile;           // 3: "txt", "romans.shx", "DejaVuSans.ttf"; may be empty with a typeface
  OdString bigFontFile;        // 4
  OdString typeface;           // "ACAD" extended data 1000, R2000 on: the family of a TrueType font
  int32_t typefaceFlags = 0;   // its 1071: italic 0x01000000, bold 0x02000000, pitch and family
  double textSize = 0.0;       // 40: fixed height, 0 when each text gives its own
  double widthFactor = 1.0;    // 41
  double oblique = 0.0;        // 50, radians in memory (degrees in the file)
  double priorSize = 0.0;      // 42: the height last used
  int generation = 0;          // 71: 2 backwards, 4 upside down
  int flags = 0;               // 70: 1 shape file, 4 vertical (16, 32, 64 are the table's own)

  static OdDbTextStyleData fromRecord(const OdDbTextStyleTableRecord& record);
  // Writes every field into an open-for-write record; the typeface goes into the
  // "ACAD" extended data from R2000 on (registered when missing), and is removed
  // from there when empty.
  void applyTo(OdDbTextStyleTableRecord& record) const;
  // A new text style `name` in `db`; throws OdError(eDuplicateKey) when taken.
  OdDbObjectId addTo(OdDbDatabase& db, const OdString& name) const;
  friend bool operator==(const OdDbTextStyleData&, const OdDbTextStyleData&) = default;
};
