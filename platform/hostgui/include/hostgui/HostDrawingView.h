// The drawing view of the window host: one layout of a drawing, zoomed and
// panned with the mouse and keys, with selection by pick box, window and
// crossing window. It paints from a scene built once per drawing change and a
// cached image of the current view, so that repaints cost a copy.
#pragma once

#include <QImage>
#include <QPen>
#include <QWidget>
#include <unordered_set>

#include "drawings/OdDbDatabase.h"
#include "hostgui/HostViewRenderer.h"
#include "hostgui/HostViewScene.h"

class HostDrawingView : public QWidget {
  Q_OBJECT

public:
  explicit HostDrawingView(QWidget* parent = nullptr);
  ~HostDrawingView() override;

  // The drawing shown (not owned; null shows nothing); shows its model space and
  // zooms to its extents.
  void setDatabase(OdDbDatabase* db);
  OdDbDatabase* database() const { return m_db; }
  // The layout shown: a block record from hostViewLayouts(), null for model space.
  void setLayout(OdDbObjectId layout);
  using QWidget::setLayout;  // the widget's own, for a QLayout
  OdDbObjectId layout() const { return m_layout; }
  // The drawing changed: builds the scene again, keeping the view and the
  // selected entities that are still shown.
  void drawingChanged();

  OdDbObjectIdArray selection() const { return m_selection; }
  // Entities that the view does not show (other layouts, hidden layers) are left out.
  void setSelection(const OdDbObjectIdArray& ids);
  void clearSelection();
  void selectAll();  // every entity shown

  void zoomExtents();
  void setBackgroundDark(bool dark);
  bool isBackgroundDark() const { return m_dark; }
  void setShowLineweights(bool show);
  bool showsLineweights() const { return m_lineWeights; }

  // World to widget coordinates (y up in the world).
  QTransform viewTransform() const { return m_view; }
  void setViewTransform(const QTransform& t);
  QPointF toWorld(const QPointF& widgetPoint) const;
  const HostViewScene& scene() const { return m_scene; }
  // How near, in pixels, a click must come to an entity's ink to pick it.
  static constexpr int kPickBox = 5;

signals:
  void selectionChanged();
  void cursorMoved(double x, double y);
  // A click that found an entity; a window that was drawn (what it found).
  void picked(OdDbObjectId id);
  void windowSelected(OdDbObjectIdArray ids);

protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

private:
  HostPaintOptions paintOptions() const;
  QPen highlightPen() const;
  void viewChanged();  // the drawing's image must be rendered again
  void selectionUpdated();
  void zoomAbout(const QPointF& at, double factor);
  void pan(const QPointF& byPixels);
  void changeSelection(const OdDbObjectIdArray& ids, bool remove);
  void updateAccessibleDescription();

  OdDbDatabase* m_db = nullptr;
  OdDbObjectId m_layout;
  HostViewScene m_scene;
  HostViewRenderer m_renderer;           // the whole layout
  HostViewRenderer m_selectedRenderer;   // the selected entities, painted over it
  OdDbObjectIdArray m_selection;         // in the order selected
  std::unordered_set<OdDbObjectId> m_selected;

  QTransform m_view;
  bool m_zoomExtentsPending = true;  // until the widget has a size
  bool m_atExtents = false;          // zoomed to the extents and not moved since
  bool m_dark = true;
  bool m_lineWeights = false;

  // The drawing rendered for the current view, and it with the selection over it
  // (while there is one).
  QImage m_base, m_composite;
  bool m_baseValid = false, m_compositeValid = false;

  // Mouse: middle-button pan, left-button pick or window.
  QPointF m_panFrom;
  bool m_panning = false;
  QPointF m_pressAt, m_dragTo;
  bool m_leftDown = false, m_dragging = false;
};
