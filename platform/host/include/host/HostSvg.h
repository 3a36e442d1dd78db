// Pictures of drawings as SVG: the primitives of a drawing on a white page,
// scaled to fit with a margin, y up as in the drawing.
#pragma once

#include <string>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbVectorizer.h"
#include "drawings/OdGiPrimitives.h"

class HostApDocument;
class HostCommandLine;

struct HostSvgOptions {
  double size = 1200;       // pixels along the longer side of the drawing
  double margin = 20;       // pixels around it
  double minStroke = 0.75;  // pixels: the thinnest line still visible
  double pixelsPerMm = 96 / 25.4;  // for lineweights, which are in millimetres on any zoom
};

// Collects primitives; svg() lays them out once their extents are known.
class HostSvgWriter : public OdGiRecorder {
public:
  std::string svg(const HostSvgOptions& options = {}) const;
};

// The model space of `db` as an SVG document, its text measured as the picture's
// sans-serif font sets it.
std::string hostDrawingSvg(const OdDbDatabase& db, const HostSvgOptions& options = {},
                           OdGiVectorizeStats* stats = nullptr);

// Writes the picture of `db`'s model space; false with *error saying why when the
// file cannot be written.
bool hostWriteDrawingSvg(const OdDbDatabase& db, const std::string& path, std::string* error,
                         OdGiVectorizeStats* stats = nullptr);

// "1234 entities drawn, 5 hidden; skipped: HATCH 3, IMAGE 1".
std::string hostRenderSummary(const OdGiVectorizeStats& stats);

// RENDER: asks for a file name (the drawing's, ending in .svg, by default) and
// writes the picture of the active drawing.
void hostRenderCommand(HostCommandLine& cl, HostApDocument* doc);
