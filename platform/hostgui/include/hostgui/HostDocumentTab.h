// One open drawing in the main window: its drawing view and, below it, the model
// and layout tabs.
#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

#include "drawings/OdDbObjectId.h"

class QTabBar;
class HostApDocument;
class HostDrawingView;

class HostDocumentTab : public QWidget {
  Q_OBJECT

public:
  HostDocumentTab(HostApDocument* doc, QWidget* parent = nullptr);

  HostApDocument* document() const { return m_doc; }
  HostDrawingView* view() const { return m_view; }
  QTabBar* layoutTabs() const { return m_layouts; }
  // Re-reads the layouts and redraws when the drawing changed since the last
  // time; true when it did. Rebuilding a view costs a pass over every entity,
  // so drawings that a command left alone are not drawn again.
  bool refreshIfChanged();

private:
  void fillLayouts();

  HostApDocument* m_doc;
  HostDrawingView* m_view;
  QTabBar* m_layouts;
  std::vector<OdDbObjectId> m_layoutIds;  // per layout tab; null for model space
  uint64_t m_shownChange;                  // the drawing's change count when last drawn
};
