// One open drawing in the main window: its drawing view and, below it, the model
// and layout tabs.
#pragma once

#include <QWidget>

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
  // Re-reads the layouts and redraws: the drawing changed.
  void drawingChanged();

private:
  void fillLayouts();

  HostApDocument* m_doc;
  HostDrawingView* m_view;
  QTabBar* m_layouts;
  std::vector<OdDbObjectId> m_layoutIds;  // per layout tab; null for model space
};
