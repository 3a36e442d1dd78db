// Painting drawing primitives (OdGiPrimitives.h) with QPainter: the one painter
// behind the drawing view, previews, arrowhead and block samples.
#pragma once

#include <QColor>
#include <QRectF>
#include <QTransform>

#include "drawings/OdGiPrimitives.h"

class QPainter;

struct HostPaintOptions {
  QColor background = QColor(33, 40, 48);  // decides what the foreground colour (ACI 7) is
  bool lineWeights = false;                // draw lineweights at their width, else hairlines
  double pixelsPerMm = 96 / 25.4;          // for lineweights, which are in millimetres at any zoom
  // Paints everything in this colour when valid (selection highlight, samples in a
  // list that follow the list's text colour).
  QColor override;
};

// The colour a primitive paints in over `background`.
QColor hostPrimitiveColor(const OdGiColor& color, const QColor& background);

// The transform that fits `extents` into `target` with `margin` pixels around,
// y up as in the drawing, centred; identity scale 1 for empty extents.
QTransform hostFitTransform(const OdGiExtents& extents, const QRectF& target, double margin);

// Paints `primitives` (world units) through `worldToDevice`, antialiased.
void hostPaintPrimitives(QPainter& painter, const OdGiRecorder& primitives, const QTransform& worldToDevice,
                         const HostPaintOptions& options = {});
