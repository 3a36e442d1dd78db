// Conversions between numbers and text in a drawing's units, as the host's
// command line and edit fields show and read them.
//
// Linear units (LUNITS): 1 scientific "1.5500E+01", 2 decimal "15.5000",
// 3 engineering "1'-3.50\"", 4 architectural "1'-3 1/2\"", 5 fractional "15 1/2".
// Precision (LUPREC) is the number of decimal places, or for units 4 and 5 the
// fraction's denominator 2^prec (reduced: 2/4 shows as 1/2).
//
// Angular units (AUNITS): 0 decimal degrees "45", 1 degrees/minutes/seconds
// "45d30'15\"", 2 grads "50.0000g", 3 radians "0.7854r", 4 surveyor's units
// "N 45d0'0\" E". Precision (AUPREC) is the number of decimal places; for units 1
// and 4 it picks the smallest part shown: 0 degrees, 1-2 minutes, 3-4 seconds,
// 5-8 seconds with prec-4 decimal places.
//
// Choices, kept alike in every function here:
// - Trailing zeros are kept and zero feet or inches are written out ("0'-6\"",
//   "1'-0\"", "45d0'0\""): the conventional output of a drawing whose zero
//   suppression is off. Rounding goes half away from zero, carrying into the
//   larger parts (11.999 at 1/4" is 1'-0"); a value that rounds to zero has no sign.
// - Angles are turned into text as given: the drawing's ANGBASE and ANGDIR are not
//   applied, and the parsers do not apply them either, so a text read back gives
//   the value it was made from. Angle text is always within [0, 360) degrees (or
//   the same turn in grads or radians), as CAD programs write angles; parsed
//   angles are not wrapped, so "-10" stays a negative angle for a range check.
// - Precision is clamped to 0..8; unit or precision -1 means the drawing's
//   setting. Out-of-range unit settings in a drawing fall back to decimal units
//   and decimal degrees. Without a drawing: LUNITS 2, LUPREC 4, AUNITS 0, AUPREC 0.
// - Numbers are written and read with '.' whatever the process locale.
#pragma once

#include "drawings/OdDbDatabase.h"
#include "drawings/OdString.h"

// The drawing's unit settings, or the defaults for a null drawing.
struct HostUnitSettings {
  int lunits = 2;
  int luprec = 4;
  int aunits = 0;
  int auprec = 0;
  static HostUnitSettings of(const OdDbDatabase* db);
};

// Distance to text. False (and `out` unchanged) for a unit outside -1, 1..5 or a
// value that is not finite. The overloads without a drawing use the active one.
bool hostdbRToS(const OdDbDatabase* db, double value, int unit, int prec, OdString& out);
bool hostdbRToS(double value, int unit, int prec, OdString& out);

// Angle in radians to text. False (and `out` unchanged) for a unit outside
// -1, 0..4 or a value that is not finite.
bool hostdbAngToS(const OdDbDatabase* db, double radians, int unit, int prec, OdString& out);
bool hostdbAngToS(double radians, int unit, int prec, OdString& out);

// Text to distance. Every form hostdbRToS writes is read, whatever `unit` is, as a
// command line reads a typed distance: "15.5", "1.55E+01", "1'3.5\"", "1'-3 1/2\"",
// "15 1/2", "15-1/2", "3/4", "-2'", "1.5'", "6\"". A plain number is in drawing
// units (inches where feet are shown). `unit` only has to be -1 or 1..5. Bad text
// returns false and leaves `out` unchanged.
bool hostdbDisToF(const OdDbDatabase* db, const OdString& text, int unit, double& out);
bool hostdbDisToF(const OdString& text, int unit, double& out);

// Text to angle in radians. Reads every form hostdbAngToS writes in any unit:
// "45.5", "45d30'15\"", "45d30'", "50g", "0.7854r", "N 45d E", "N45d30'E", "E".
// A number without a unit mark is in `unit`'s measure (degrees for 0, 1 and 4,
// grads for 2, radians for 3), as a command line reads a typed angle. A bearing's
// angle must lie within 0..90 degrees. Bad text returns false, `out` unchanged.
bool hostdbAngToF(const OdDbDatabase* db, const OdString& text, int unit, double& out);
bool hostdbAngToF(const OdString& text, int unit, double& out);

// The host's typing-library forms of the two conversions, with the active drawing.
// unit/prec 255 or -1 mean the drawing's LUNITS/LUPREC; other values are used as
// given. The last four arguments select options this host does not have; they are
// accepted and ignored. Returns false as hostdbRToS does.
bool VxLin2Str(double value, OdString& out, int unit = 255, int prec = 255, int reserved1 = -1,
               int reserved2 = -1, int reserved3 = -1, int reserved4 = -1);

// `degrees` is in DEGREES. unit/prec 255 or -1 mean AUNITS/AUPREC. A base of
// -777.7777 formats the value as given; any other base (degrees) is subtracted
// first, so the text measures from that base. `flags` (31 from the module) and the
// last three arguments select options this host does not have and are ignored.
bool VxAng2Str(double degrees, OdString& out, double base = -777.7777, int unit = -1,
               int prec = -1, int flags = 31, int reserved1 = -1, int reserved2 = -1,
               int reserved3 = -1);
