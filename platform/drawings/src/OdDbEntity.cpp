#include "drawings/OdDbEntity.h"

#include "drawings/OdDbDatabase.h"

ODRX_DEFINE_MEMBERS(OdDbEntity, OdDbObject, L"")
ODRX_DEFINE_MEMBERS(OdDbBlockBegin, OdDbEntity, L"BLOCK")
ODRX_DEFINE_MEMBERS(OdDbBlockEnd, OdDbEntity, L"ENDBLK")
ODRX_DEFINE_MEMBERS(OdDbSequenceEnd, OdDbEntity, L"SEQEND")

// The order in which the common entity codes are written, used to place a code
// that the entity did not have yet.
static const std::initializer_list<int> kEntityOrder = {5, 102, 330, 67, 410, 8, 6, 347, 62, 420, 430, 370, 48, 60, 440, 390, 284};

OdDbObject::Range OdDbEntity::entityRange() const {
  Range r = subclassRange("AcDbEntity");
  if (r.found) return r;
  // R12 files have no subclass markers: the common codes follow the entity name.
  Range c = commonRange();
  return c;
}

OdString OdDbEntity::layer() const {
  long i = findTag(8, entityRange());
  return i < 0 ? OdString(L"0") : decodeText(tags()[static_cast<size_t>(i)].text);
}

void OdDbEntity::setLayer(const OdString& name) {
  assertWriteEnabled();
  setTagText(8, encodeText(name), entityRange(), kEntityOrder);
}

OdCmColor OdDbEntity::color() const {
  Range r = entityRange();
  long aci = findTag(62, r), rgb = findTag(420, r), name = findTag(430, r);
  const auto& t = tags();
  std::optional<int32_t> tc;
  std::optional<std::string_view> book;
  if (rgb >= 0) tc = static_cast<int32_t>(t[static_cast<size_t>(rgb)].toInt());
  if (name >= 0) book = t[static_cast<size_t>(name)].text;
  return OdCmColor::fromDxf(aci < 0 ? int16_t(256) : static_cast<int16_t>(t[static_cast<size_t>(aci)].toInt()), tc, book);
}

void OdDbEntity::setColor(const OdCmColor& c) {
  assertWriteEnabled();
  Range r = entityRange();
  if (c.isByLayer()) {
    removeTag(420, r);
    removeTag(430, entityRange());
    removeTag(62, entityRange());
    return;
  }
  setTagText(62, std::to_string(c.dxfAci()), r, kEntityOrder);
  if (auto tc = c.dxfTrueColor())
    setTagText(420, std::to_string(*tc), entityRange(), kEntityOrder);
  else
    removeTag(420, entityRange());
  if (!c.colorName().isEmpty())
    setTagText(430, encodeText(c.bookName() + OdString(L"$") + c.colorName()), entityRange(), kEntityOrder);
  else
    removeTag(430, entityRange());
}

void OdDbEntity::setColorIndex(int16_t aci) {
  OdCmColor c;
  c.setColorIndex(aci);
  setColor(c);
}

OdString OdDbEntity::linetype() const {
  long i = findTag(6, entityRange());
  return i < 0 ? OdString(L"ByLayer") : decodeText(tags()[static_cast<size_t>(i)].text);
}

void OdDbEntity::setLinetype(const OdString& name) {
  assertWriteEnabled();
  if (name.iCompare(L"ByLayer") == 0)
    removeTag(6, entityRange());
  else
    setTagText(6, encodeText(name), entityRange(), kEntityOrder);
}

OdDb::LineWeight OdDbEntity::lineWeight() const {
  long i = findTag(370, entityRange());
  return i < 0 ? OdDb::kLnWtByLayer : static_cast<OdDb::LineWeight>(tags()[static_cast<size_t>(i)].toInt());
}

void OdDbEntity::setLineWeight(OdDb::LineWeight lw) {
  assertWriteEnabled();
  if (database() && database()->version() < DxfVersion::R2000 && lw == OdDb::kLnWtByLayer) {
    removeTag(370, entityRange());
    return;
  }
  setTagText(370, std::to_string(static_cast<int>(lw)), entityRange(), kEntityOrder);
}

double OdDbEntity::linetypeScale() const {
  long i = findTag(48, entityRange());
  return i < 0 ? 1.0 : tags()[static_cast<size_t>(i)].toDouble();
}

void OdDbEntity::setLinetypeScale(double s) {
  assertWriteEnabled();
  setTagText(48, dxfFormatDouble(s), entityRange(), kEntityOrder);
}

OdDb::Visibility OdDbEntity::visibility() const {
  long i = findTag(60, entityRange());
  return i >= 0 && tags()[static_cast<size_t>(i)].toInt() != 0 ? OdDb::kInvisible : OdDb::kVisible;
}

void OdDbEntity::setVisibility(OdDb::Visibility v) {
  assertWriteEnabled();
  if (v == OdDb::kVisible)
    removeTag(60, entityRange());
  else
    setTagText(60, "1", entityRange(), kEntityOrder);
}

bool OdDbEntity::isInPaperSpace() const {
  long i = findTag(67, entityRange());
  return i >= 0 && tags()[static_cast<size_t>(i)].toInt() != 0;
}
