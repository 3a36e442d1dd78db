// Painting drawing primitives (OdGiPrimitives.h) with QPainter: the one painter
// behind the drawing view, previews, arrowhead and block samples.
#pragma once

#include <QColor>
#include <QRectF>
#include <QString>
#include <QTransform>

#include "drawings/OdDbVectorizer.h"
#include "drawings/OdGiPrimitives.h"

class QFont;
class QPainter;

struct HostPaintOptions {
  QColor background = QColor(33, 40, 48);  // decides what the foreground colour (ACI 7) is
  bool lineWeights = false;                // draw lineweights at their width, else hairlines
  double pixelsPerMm = 96 / 25.4;          // for lineweights, which are in millimetres at any zoom
  // Paints everything in this colour when valid (selection highlight, samples in a
  // list that follow the list's text colour).
  QColor override;
  // Texts whose capital height on the device is below this many pixels are drawn
  // as their box outline (and skipped below a quarter of it): unreadable anyway,
  // and setting thousands of them is what makes a zoomed-out drawing slow.
  double minTextPixels = 2;
};

// The colour a primitive paints in over `background`.
QColor hostPrimitiveColor(const OdGiColor& color, const QColor& background);

// Whether `background` counts as dark, so that the foreground colour is white.
bool hostIsDarkBackground(const QColor& background);

// The transform that fits `extents` into `target` with `margin` pixels around,
// y up as in the drawing, centred; identity scale 1 for empty extents.
QTransform hostFitTransform(const OdGiExtents& extents, const QRectF& target, double margin);

// The pen width in device pixels for a lineweight (hundredths of a millimetre).
double hostPenWidth(int lineWeight, const HostPaintOptions& options);

// Paints `primitives` (world units) through `worldToDevice`, antialiased.
void hostPaintPrimitives(QPainter& painter, const OdGiRecorder& primitives, const QTransform& worldToDevice,
                         const HostPaintOptions& options = {});
// One primitive, as above; for painters that keep their own lists.
void hostPaintPrimitive(QPainter& painter, const OdGiRecorder::Primitive& primitive, const QTransform& worldToDevice,
                        const HostPaintOptions& options = {});

// The font texts are set in (a sans-serif: DejaVu Sans, else Liberation Sans).
QFont hostTextFont();
QString hostQString(const OdString& text);

// Text widths as hostPaintPrimitives sets them: give it to OdDbVectorizer so that
// text boxes, extents and hit tests match what is painted.
const OdGiTextMeasure& hostTextMeasure();

// The transform from a text's glyph space (x along the baseline, y up, one unit =
// capital height; x = 0 where the aligned line starts) to world coordinates:
// position, rotation, width factor (or fit length), oblique and mirroring.
QTransform hostTextGlyphToWorld(const OdGiText& text);
