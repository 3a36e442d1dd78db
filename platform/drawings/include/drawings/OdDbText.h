// Text entities typed over their DXF tags: single-line TEXT and paragraph MTEXT.
// Created like the geometric entities (see OdDbGeometry.h): createFor(db), set
// values, append. Angles are in radians.
#pragma once

#include <optional>

#include "drawings/OdDbGeometry.h"

class OdDbText : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbText)

public:
  // Height from the drawing's $TEXTSIZE.
  static OdSmartPtr<OdDbText> createFor(const OdDbDatabase& db);
  OdGePoint3d position() const;
  void setPosition(const OdGePoint3d& p);
  double height() const;
  void setHeight(double h);
  OdString textString() const;
  void setTextString(const OdString& text);
  double rotation() const;
  void setRotation(double radians);
  // The STYLE record named by the text; null when missing or in no drawing.
  OdDbObjectId textStyle() const;
  void setTextStyle(const OdDbObjectId& styleId);

private:
  std::optional<DxfCodec> m_madeFor;  // the target drawing's codec until appended
};
using OdDbTextPtr = OdSmartPtr<OdDbText>;

class OdDbMText : public OdDbEntity {
  ODRX_DECLARE_MEMBERS(OdDbMText)

public:
  enum AttachmentPoint {
    kTopLeft = 1, kTopCenter, kTopRight,
    kMiddleLeft, kMiddleCenter, kMiddleRight,
    kBottomLeft, kBottomCenter, kBottomRight
  };

  // Height from $TEXTSIZE, attached top left, no wrapping width. R13 and later.
  static OdSmartPtr<OdDbMText> createFor(const OdDbDatabase& db);
  OdGePoint3d location() const;
  void setLocation(const OdGePoint3d& p);
  double textHeight() const;
  void setTextHeight(double h);
  // Wrapping width; 0 for none.
  double width() const;
  void setWidth(double w);
  AttachmentPoint attachment() const;
  void setAttachment(AttachmentPoint a);
  // The whole text with its inline formatting codes; stored as 250-byte pieces.
  OdString contents() const;
  void setContents(const OdString& text);
  OdDbObjectId textStyle() const;
  void setTextStyle(const OdDbObjectId& styleId);
  // The text's x direction; it takes precedence over the rotation angle where the
  // entity has both, and setting either keeps the other in step.
  OdGeVector3d direction() const;
  void setDirection(const OdGeVector3d& v);
  double rotation() const;
  void setRotation(double radians);

private:
  std::optional<DxfCodec> m_madeFor;
};
using OdDbMTextPtr = OdSmartPtr<OdDbMText>;
