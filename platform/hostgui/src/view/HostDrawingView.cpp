#include "hostgui/HostDrawingView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "drawings/OdResult.h"

namespace {

constexpr double kMargin = 12;         // pixels around the drawing at zoom extents
constexpr double kWheelStep = 1.2;     // zoom per wheel notch
constexpr double kKeyStep = 1.25;      // zoom per + or - key
constexpr int kDragThreshold = 4;      // pixels the mouse moves before a click becomes a window

double scaleOf(const QTransform& t) { return std::sqrt(std::abs(t.m11() * t.m22() - t.m12() * t.m21())); }

}  // namespace

HostDrawingView::HostDrawingView(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName(tr("Drawing"));
  updateAccessibleDescription();
}

HostDrawingView::~HostDrawingView() = default;

void HostDrawingView::setDatabase(OdDbDatabase* db) {
  m_db = db;
  m_layout = OdDbObjectId();
  m_selection.clear();
  m_selected.clear();
  drawingChanged();
  zoomExtents();
}

void HostDrawingView::setLayout(OdDbObjectId layout) {
  m_layout = layout;
  m_selection.clear();
  m_selected.clear();
  drawingChanged();
  zoomExtents();
}

void HostDrawingView::drawingChanged() {
  m_selectedRenderer.clear();
  m_renderer.clear();  // holds pointers into the scene about to be replaced
  if (!m_db) {
    m_scene.clear();
  } else {
    try {
      m_scene.build(*m_db, m_layout);
    } catch (const OdError&) {
      // The layout was deleted with the change: model space is always there.
      m_layout = OdDbObjectId();
      m_scene.build(*m_db, m_layout);
    }
  }
  m_renderer.build(m_scene);
  // Entities erased or hidden by the change leave the selection.
  OdDbObjectIdArray kept;
  for (const OdDbObjectId& id : m_selection)
    if (m_scene.indexOf(id) >= 0) kept.push_back(id);
  bool changed = kept.size() != m_selection.size();
  m_selection = std::move(kept);
  m_selected = {m_selection.begin(), m_selection.end()};
  viewChanged();
  selectionUpdated();
  if (changed) emit selectionChanged();
}

void HostDrawingView::setSelection(const OdDbObjectIdArray& ids) {
  OdDbObjectIdArray shown;
  std::unordered_set<OdDbObjectId> seen;
  for (const OdDbObjectId& id : ids)
    if (m_scene.indexOf(id) >= 0 && seen.insert(id).second) shown.push_back(id);
  if (shown == m_selection) return;
  m_selection = std::move(shown);
  m_selected = std::move(seen);
  selectionUpdated();
  emit selectionChanged();
}

void HostDrawingView::clearSelection() { setSelection({}); }

void HostDrawingView::selectAll() { setSelection(m_scene.all()); }

void HostDrawingView::changeSelection(const OdDbObjectIdArray& ids, bool remove) {
  OdDbObjectIdArray next;
  if (remove) {
    std::unordered_set<OdDbObjectId> removed(ids.begin(), ids.end());
    for (const OdDbObjectId& id : m_selection)
      if (!removed.count(id)) next.push_back(id);
  } else {
    next = m_selection;
    for (const OdDbObjectId& id : ids)
      if (!m_selected.count(id)) next.push_back(id);
  }
  setSelection(next);
}

void HostDrawingView::selectionUpdated() {
  std::vector<int> indices;
  indices.reserve(m_selection.size());
  for (const OdDbObjectId& id : m_selection) indices.push_back(m_scene.indexOf(id));
  m_selectedRenderer.build(m_scene, &indices);
  m_compositeValid = false;
  updateAccessibleDescription();
  update();
}

void HostDrawingView::updateAccessibleDescription() {
  // Worded so that one form fits every count, in English and in Russian.
  setAccessibleDescription(tr("Entities selected: %1").arg(m_selection.size()));
}

void HostDrawingView::zoomExtents() {
  if (width() <= 0 || height() <= 0 || (!isVisible() && !testAttribute(Qt::WA_Resized))) {
    m_zoomExtentsPending = true;
    return;
  }
  m_zoomExtentsPending = false;
  m_atExtents = true;
  m_view = hostFitTransform(m_scene.extents(), QRectF(rect()), kMargin);
  viewChanged();
}

void HostDrawingView::setViewTransform(const QTransform& t) {
  m_view = t;
  m_zoomExtentsPending = false;
  m_atExtents = false;
  viewChanged();
}

QPointF HostDrawingView::toWorld(const QPointF& widgetPoint) const { return m_view.inverted().map(widgetPoint); }

void HostDrawingView::setBackgroundDark(bool dark) {
  if (dark == m_dark) return;
  m_dark = dark;
  viewChanged();
}

void HostDrawingView::setShowLineweights(bool show) {
  if (show == m_lineWeights) return;
  m_lineWeights = show;
  viewChanged();
}

void HostDrawingView::viewChanged() {
  m_baseValid = m_compositeValid = false;
  update();
}

HostPaintOptions HostDrawingView::paintOptions() const {
  HostPaintOptions o;
  o.background = m_dark ? QColor(33, 40, 48) : QColor(255, 255, 255);
  o.lineWeights = m_lineWeights;
  o.pixelsPerMm = logicalDpiX() / 25.4;
  return o;
}

QPen HostDrawingView::highlightPen() const {
  // Dashed over the entity's own line, which shows between the dashes. One pixel
  // wide: Qt's fast path for lines takes no wider pens, and selecting a whole
  // drawing then repaints three times faster.
  QPen pen(m_dark ? QColor(90, 170, 255) : QColor(0, 95, 220), 1, Qt::DashLine, Qt::FlatCap, Qt::RoundJoin);
  pen.setCosmetic(true);
  return pen;
}

void HostDrawingView::paintEvent(QPaintEvent*) {
  const qreal dpr = devicePixelRatioF();
  const QSize pixels = (QSizeF(size()) * dpr).toSize();
  HostPaintOptions options = paintOptions();
  // The images are reused while the size stays: a new 1920 x 1080 image costs
  // the kernel 8 MB of fresh pages, a tenth of a frame.
  if (!m_baseValid || m_base.size() != pixels) {
    if (m_base.size() != pixels) {
      m_base = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
      m_base.setDevicePixelRatio(dpr);
    }
    m_base.fill(options.background);
    QPainter p(&m_base);
    m_renderer.paint(p, m_view, QRectF(rect()), options);
    m_baseValid = true;
    m_compositeValid = false;
  }
  const bool selected = !m_selectedRenderer.isEmpty();
  if (selected && !m_compositeValid) {
    if (m_composite.size() != pixels) {
      m_composite = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
      m_composite.setDevicePixelRatio(dpr);
    }
    QPainter p(&m_composite);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.drawImage(0, 0, m_base);
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    QPen pen = highlightPen();
    m_selectedRenderer.paint(p, m_view, QRectF(rect()), options, &pen);
    m_compositeValid = true;
  }
  QPainter p(this);
  p.drawImage(0, 0, selected ? m_composite : m_base);
  if (m_dragging) {
    // Left to right: a window (solid blue) takes what lies inside; right to left:
    // a crossing window (dashed green) also takes what it touches.
    bool window = m_dragTo.x() >= m_pressAt.x();
    QColor c = window ? QColor(40, 110, 255) : QColor(40, 200, 80);
    QColor fill = c;
    fill.setAlpha(50);
    QPen pen(c, 1, window ? Qt::SolidLine : Qt::DashLine);
    p.setPen(pen);
    p.setBrush(fill);
    p.drawRect(QRectF(m_pressAt, m_dragTo).normalized());
  }
}

void HostDrawingView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  // A view at its extents stays there while the window settles (docks, tabs),
  // until the user zooms or pans.
  if (m_zoomExtentsPending || m_atExtents) {
    zoomExtents();
    return;
  }
  // The world point at the centre stays there.
  QSizeF d = QSizeF(event->size() - event->oldSize()) / 2;
  if (event->oldSize().isValid()) m_view *= QTransform::fromTranslate(d.width(), d.height());
  viewChanged();
}

void HostDrawingView::zoomAbout(const QPointF& at, double factor) {
  double scale = scaleOf(m_view) * factor;
  // Past these the coordinates lose their precision or the drawing vanishes.
  if (!(scale > 1e-12 && scale < 1e12)) return;
  m_view = m_view * QTransform::fromTranslate(-at.x(), -at.y()) * QTransform::fromScale(factor, factor) *
           QTransform::fromTranslate(at.x(), at.y());
  m_zoomExtentsPending = false;
  m_atExtents = false;
  viewChanged();
}

void HostDrawingView::pan(const QPointF& byPixels) {
  m_view *= QTransform::fromTranslate(byPixels.x(), byPixels.y());
  m_zoomExtentsPending = false;
  m_atExtents = false;
  viewChanged();
}

void HostDrawingView::wheelEvent(QWheelEvent* event) {
  double notches = event->angleDelta().y() / 120.0;
  if (notches == 0) return event->ignore();
  zoomAbout(event->position(), std::pow(kWheelStep, notches));
  event->accept();
}

void HostDrawingView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) {
    m_panning = true;
    m_panFrom = event->position();
    setCursor(Qt::ClosedHandCursor);
  } else if (event->button() == Qt::LeftButton) {
    m_leftDown = true;
    m_dragging = false;
    m_pressAt = m_dragTo = event->position();
  }
  event->accept();
}

void HostDrawingView::mouseMoveEvent(QMouseEvent* event) {
  QPointF at = event->position();
  QPointF world = toWorld(at);
  emit cursorMoved(world.x(), world.y());
  if (m_panning) {
    pan(at - m_panFrom);
    m_panFrom = at;
  }
  if (m_leftDown) {
    m_dragTo = at;
    if (!m_dragging && (at - m_pressAt).manhattanLength() >= kDragThreshold) m_dragging = true;
    if (m_dragging) update();
  }
}

void HostDrawingView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) {
    m_panning = false;
    unsetCursor();
    return;
  }
  if (event->button() != Qt::LeftButton || !m_leftDown) return;
  m_leftDown = false;
  bool remove = event->modifiers() & Qt::ShiftModifier;
  if (m_dragging) {
    m_dragging = false;
    m_dragTo = event->position();
    QPointF a = toWorld(m_pressAt), b = toWorld(m_dragTo);
    OdDbObjectIdArray ids = m_dragTo.x() >= m_pressAt.x() ? m_scene.window({a.x(), a.y()}, {b.x(), b.y()})
                                                          : m_scene.crossing({a.x(), a.y()}, {b.x(), b.y()});
    update();
    changeSelection(ids, remove);
    emit windowSelected(ids);
    return;
  }
  QPointF w = toWorld(event->position());
  OdDbObjectId id = m_scene.pick({w.x(), w.y()}, kPickBox / scaleOf(m_view));
  if (id.isNull()) return;
  changeSelection({id}, remove);
  emit picked(id);
}

void HostDrawingView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) {
    zoomExtents();
    event->accept();
    return;
  }
  // The second click of a double click picks like the first.
  mousePressEvent(event);
}

bool HostDrawingView::event(QEvent* event) {
  // The view takes its own keys before the window's shortcuts do, while it has focus.
  if (event->type() == QEvent::ShortcutOverride) {
    auto key = static_cast<QKeyEvent*>(event);
    if (key->matches(QKeySequence::SelectAll) || key->key() == Qt::Key_Escape) {
      event->accept();
      return true;
    }
  }
  return QWidget::event(event);
}

void HostDrawingView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::SelectAll)) {
    selectAll();
    return;
  }
  const QPointF centre = QRectF(rect()).center();
  const double step = std::max(1, std::min(width(), height()) / 8);
  switch (event->key()) {
    case Qt::Key_Escape:
      if (m_dragging || m_leftDown) {
        m_dragging = m_leftDown = false;
        update();
      } else {
        clearSelection();
      }
      return;
    // Arrows move the view over the drawing: the drawing moves the other way.
    case Qt::Key_Left: return pan({step, 0});
    case Qt::Key_Right: return pan({-step, 0});
    case Qt::Key_Up: return pan({0, step});
    case Qt::Key_Down: return pan({0, -step});
    case Qt::Key_Plus:
    case Qt::Key_Equal: return zoomAbout(centre, kKeyStep);
    case Qt::Key_Minus: return zoomAbout(centre, 1 / kKeyStep);
    case Qt::Key_Home: return zoomExtents();
    default: QWidget::keyPressEvent(event);
  }
}
