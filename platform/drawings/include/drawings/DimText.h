// The measurement text of a dimension: the MTEXT contents that the dimension's
// block shows, built from the measured value, the user's text and the dimension
// variables (units, precision, zero suppression, rounding, scale factor,
// separators, prefixes and suffixes, tolerances, limits, alternate units).
#pragma once

#include "drawings/DxfVersion.h"
#include "drawings/OdString.h"

class OdDimVarSource;
class OdDbDimension;

enum class DimTextKind {
  Linear,    // rotated, horizontal, vertical and aligned
  Angular,   // two-line and three-point; the measurement is in radians
  Radius,    // radius and jogged large radius
  Diameter,
  Ordinate,
  ArcLength,
};

struct DimTextInput {
  DimTextKind kind = DimTextKind::Linear;
  // The measured geometry: a length in drawing units before DIMLFAC, or an angle
  // in radians. (A file's code 42 holds lengths after DIMLFAC.)
  double measurement = 0.0;
  // Code 1: "" or "<>" the measured text, " " no text, anything else is shown as
  // written with "<>" standing for the measured text and "[]" for the alternate one.
  OdString userText;
  // R2000 and later prefix the contents with "\A1;" (text centred vertically).
  DxfVersion version = DxfVersion::R2018;
  // Where DIMLFAC < 0 applies (its magnitude): dimensions in a paper-space layout.
  bool inPaperSpace = false;
  const OdDimVarSource* vars = nullptr;  // must be set
};

// The MTEXT contents, with %%c, %%d, %%p and %%nnn resolved to the characters
// themselves as the block holds them; "" when the dimension shows no text.
OdString odFormatDimText(const DimTextInput& input);

// The same for a dimension of a drawing, its variables read with its overrides;
// `measurement` as in DimTextInput.
OdString odDimensionText(const OdDbDimension& dim, double measurement);

// The kind of text a dimension entity shows.
DimTextKind odDimTextKind(const OdDbDimension& dim);

// MTEXT contents as a reader sees them: formatting codes and grouping braces
// dropped, stacks shown as "a/b", paragraph and line breaks as '\n', \U+XXXX
// and %% codes resolved to their characters.
OdString odMTextPlainText(const OdString& contents);
