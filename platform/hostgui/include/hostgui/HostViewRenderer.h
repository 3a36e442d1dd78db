// Painting a scene fast: its primitives grouped once, in world units, by colour
// and lineweight, so that each repaint sets a pen a handful of times and only
// sends the groups through the view's transform. Texts stay
// single, as their look depends on the zoom: readable ones are set in the font,
// smaller ones drawn as their boxes (grouped too) or left out.
#pragma once

#include <QPainterPath>
#include <QPen>
#include <QPolygonF>
#include <vector>

#include "hostgui/HostPaint.h"
#include "hostgui/HostViewScene.h"

class HostViewRenderer {
public:
  // Groups the primitives of the scene's entities at `indices` (all when null).
  // The scene must outlive the renderer or the next build.
  void build(const HostViewScene& scene, const std::vector<int>* indices = nullptr);
  void clear();
  bool isEmpty() const;

  // Paints through `worldToDevice`; `visible` (device) lets texts outside it be
  // skipped. With `highlight`, every stroke takes that pen's colour, width and
  // dashes, and fills and texts its colour: the look of selected entities.
  void paint(QPainter& painter, const QTransform& worldToDevice, const QRectF& visible,
             const HostPaintOptions& options, const QPen* highlight = nullptr) const;

private:
  // Qt strokes a long QPainterPath far slower than the same segments handed
  // over as one array (and dashes it slower still): lines go in arrays, chains
  // and curves one by one.
  struct Stroke {
    OdGiColor color;
    int lineWeight = 0;
    std::vector<QLineF> lines;
    std::vector<QPolygonF> chains, closedChains;
    std::vector<QPainterPath> curves;  // arcs and circles
  };
  struct Fill {
    OdGiColor color;
    std::vector<QPolygonF> polygons;  // largest first
    std::vector<double> sizes;        // each one's larger side, world units, for the split by zoom
  };
  // Texts of one colour whose heights lie within a factor of two: at any zoom
  // they are all readable, all boxes, or (rarely) some of each.
  struct TextGroup {
    OdGiColor color;
    int octave = 0;  // floor(log2(height))
    double minHeight = 0, maxHeight = 0;
    std::vector<const OdGiText*> texts;
    std::vector<QLineF> boxes;  // four sides a text
  };

  std::vector<Stroke> m_strokes;
  std::vector<Fill> m_fills;
  std::vector<TextGroup> m_texts;
  std::vector<const OdGiPoint*> m_points;
};
