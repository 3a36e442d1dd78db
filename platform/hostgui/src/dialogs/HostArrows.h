// Arrowhead samples: the primitives of an arrow block, and the dialog that picks
// a block of the drawing as a user arrowhead.
#pragma once

#include <QDialog>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdGiPrimitives.h"

class QListWidget;

struct HostArrowSample {
  OdGiRecorder primitives;  // world units: the arrow at size 1, tip at the origin pointing along +X
  OdGiExtents frame;        // what a sample shows: the same window for every standard arrow
  bool found = false;       // false: no such arrow
};

// The 20 standard names, "" (closed filled) first, in the order pickers list them.
const std::vector<OdString>& hostStandardArrowNames();
// A standard arrow (from a scratch drawing of the host's, kept once drawn) or a
// block of `db`. "_None" is found and has no primitives.
HostArrowSample hostArrowSample(const OdString& blockName, const OdDbDatabase* db);

class HostUsrArrowDialog : public QDialog {
  Q_OBJECT

public:
  HostUsrArrowDialog(const OdDbDatabase* db, const OdString& current, QWidget* parent = nullptr);
  OdString blockName() const;
  QListWidget* list() const { return m_list; }

private:
  QListWidget* m_list;
};
