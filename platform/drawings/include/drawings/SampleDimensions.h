// Adding geometry, notes and dimensions to a drawing's model space, for programs
// that make drawings of their own (the project's sample drawings, the preview
// sample that dimension style dialogs show).
#pragma once

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbText.h"

class ModelSpaceBuilder {
public:
  // The model space stays open for write as long as the builder lives.
  explicit ModelSpaceBuilder(OdDbDatabase& db);

  OdDbDatabase& db() { return *m_db; }

  // Appends `e` to model space on `layer`; the entity is returned for its settings.
  template <class T>
  OdSmartPtr<T> add(OdSmartPtr<T> e, const OdString& layer) {
    m_ms->appendOdDbEntity(e.get());
    e->setLayer(layer);
    return e;
  }

  void line(const OdGePoint3d& a, const OdGePoint3d& b, const OdString& layer);
  void circle(const OdGePoint3d& c, double r, const OdString& layer);
  // Angles in degrees, counter-clockwise from start to end.
  void arc(const OdGePoint3d& c, double r, double startDeg, double endDeg, const OdString& layer);
  void text(const OdString& s, const OdGePoint3d& at, double height, const OdString& layer);
  OdSmartPtr<OdDbMText> mtext(const OdString& s, const OdGePoint3d& at, double height,
                              OdDbMText::AttachmentPoint attach, const OdString& layer);

  // The dimension style of that name; null when there is none.
  OdDbObjectId style(const OdString& name);

  // Computes the dimension's block. A style may have a child for this kind of
  // dimension ("ISO-25$0" for linear ones): the block then shows the child's
  // values while the dimension keeps naming its style, as a drawing made
  // interactively holds it. Throws OdError when the block cannot be computed.
  void makeBlock(OdDbDimension& dim, const char* childSuffix = nullptr);

private:
  OdDbDatabase* m_db;
  OdDbBlockTableRecordPtr m_ms;
};
