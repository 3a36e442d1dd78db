// Typed reading and writing of the codes of one entity class, shared by the
// entity classes (line, circle, text, leader, ...).
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drawings/OdDbEntity.h"

class OdDbDatabase;

// One class's part of an entity: the subclass marker its codes follow in R13+
// files, and the order in which they are written, used to place a missing code.
struct DxfSubclass {
  std::string_view marker;
  std::span<const int> order;
};

namespace entitytags {

using Range = OdDbObject::Range;

// The class's codes: from its marker to the next marker or embedded object (101).
// R12 entities have no markers: their codes follow the common ones, so the whole
// common part is searched. found is false when an R13+ entity lacks the marker.
Range range(const OdDbObject& o, const DxfSubclass& s);
long find(const OdDbObject& o, const DxfSubclass& s, int code);
// Where `code` goes inside r when it is missing: after the last tag written before it.
size_t insertPosition(const OdDbObject& o, Range r, const DxfSubclass& s, int code);
// The range to write into, adding the marker (before the extended data) if missing.
Range writableRange(OdDbObject& o, const DxfSubclass& s);

double getDouble(const OdDbObject& o, const DxfSubclass& s, int code, double dflt);
int64_t getInt(const OdDbObject& o, const DxfSubclass& s, int code, int64_t dflt);
// The value as the file spells it (strings in the drawing's encoding).
std::optional<std::string> getText(const OdDbObject& o, const DxfSubclass& s, int code);
// x, y, z at code, code + 10, code + 20; a missing coordinate is 0.
OdGePoint3d getPoint(const OdDbObject& o, const DxfSubclass& s, int code);
// The point whose x tag is at index i (y and z follow it within [i, end)).
OdGePoint3d pointAt(const DxfTagList& t, size_t i, size_t end);

// Setters keep a tag's original spelling when its value does not change, and add
// no tag for a default value that was absent (dflt), so unchanged lines stay as read.
void setDouble(OdDbObject& o, const DxfSubclass& s, int code, double v, std::optional<double> dflt = {});
void setInt(OdDbObject& o, const DxfSubclass& s, int code, int64_t v, std::optional<int64_t> dflt = {});
void setText(OdDbObject& o, const DxfSubclass& s, int code, std::string text);
// A missing z tag is added only for a non-zero z (2D files leave it out).
void setPoint(OdDbObject& o, const DxfSubclass& s, int code, const OdGePoint3d& p);
void remove(OdDbObject& o, const DxfSubclass& s, int code);
// Sets the tag at index i (keeping its spelling when the value is the same).
void setDoubleAt(DxfTag& t, double v);

// The codec of an entity's strings: its drawing's, or while it is in none, that of
// the drawing it was made for (so text set before appending is encoded right).
const DxfCodec& codecOf(const OdDbObject& o, const std::optional<DxfCodec>& madeFor);

// MTEXT contents cut into the pieces its tags hold (3, ..., 3, 1), in the file's spelling.
std::vector<std::string> mtextPieces(const DxfCodec& codec, const OdString& text);

double toRadians(double degrees);
double toDegrees(double radians);

// Gives a new entity the tags a drawing of db's version expects: the name, the
// common part (layer 0) and each class section with its initial values.
// Throws eNotApplicable when the version cannot hold the entity.
struct NewSection {
  const DxfSubclass* subclass;
  DxfTagList tags;
};
void frame(OdDbEntity& e, const OdDbDatabase& db, std::string_view dxfName, DxfVersion firstVersion,
           std::initializer_list<NewSection> sections);
DxfTagList pointTags(int code, const OdGePoint3d& p);

// A table record referred to by name: the id of the record that `nameInFile` (the
// file's spelling) names in the table, null when there is none or e is in no drawing.
OdDbObjectId recordId(const OdDbObject& e, OdDbObjectId (OdDbDatabase::*table)() const, std::string_view nameInFile);
// The name of record `id` as its drawing spells it. Throws eInvalidInput unless the
// record is in that table of e's drawing (or of its own drawing while e is in none).
std::string recordName(const OdDbObject& e, const OdDbObjectId& id, OdDbObjectId (OdDbDatabase::*table)() const);

}  // namespace entitytags
