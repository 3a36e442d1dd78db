// Entities: the common entity data (AcDbEntity) typed over the entity's tags.
#pragma once

#include "drawings/OdCmColor.h"
#include "drawings/OdDbObject.h"

namespace OdDb {
enum LineWeight : int16_t {
  kLnWt000 = 0, kLnWt005 = 5, kLnWt009 = 9, kLnWt013 = 13, kLnWt015 = 15, kLnWt018 = 18, kLnWt020 = 20,
  kLnWt025 = 25, kLnWt030 = 30, kLnWt035 = 35, kLnWt040 = 40, kLnWt050 = 50, kLnWt053 = 53, kLnWt060 = 60,
  kLnWt070 = 70, kLnWt080 = 80, kLnWt090 = 90, kLnWt100 = 100, kLnWt106 = 106, kLnWt120 = 120,
  kLnWt140 = 140, kLnWt158 = 158, kLnWt200 = 200, kLnWt211 = 211,
  kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3
};
enum Visibility { kVisible = 0, kInvisible = 1 };
}  // namespace OdDb

class OdDbEntity : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbEntity)

public:
  OdString layer() const;
  void setLayer(const OdString& name);
  OdCmColor color() const;
  void setColor(const OdCmColor& c);
  int16_t colorIndex() const { return color().colorIndex(); }
  void setColorIndex(int16_t aci);
  OdString linetype() const;  // "ByLayer" when not set
  void setLinetype(const OdString& name);
  OdDb::LineWeight lineWeight() const;  // ByLayer when not set
  void setLineWeight(OdDb::LineWeight lw);
  double linetypeScale() const;
  void setLinetypeScale(double s);
  OdDb::Visibility visibility() const;
  void setVisibility(OdDb::Visibility v);
  bool isInPaperSpace() const;  // code 67
  OdDbObjectId blockId() const { return ownerId(); }

protected:
  Range entityRange() const;
};
using OdDbEntityPtr = OdSmartPtr<OdDbEntity>;

// The framing entities of a block definition (BLOCK, ENDBLK) and of complex
// entities (SEQEND). They belong to their block and are written with it.
class OdDbBlockBegin : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbBlockBegin)
};
class OdDbBlockEnd : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbBlockEnd)
};
class OdDbSequenceEnd : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbSequenceEnd)
};
