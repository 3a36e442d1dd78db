// Turns the entities of a drawing into drawing primitives (OdGiPrimitives.h),
// seen from above: z is dropped after each entity's own plane (its extrusion
// direction) is taken into account.
//
// Drawn: LINE, ARC, CIRCLE, POINT, SOLID, TRACE, 3DFACE (its visible edges),
// LWPOLYLINE and POLYLINE (2D, 3D, polyface and polygon meshes), ELLIPSE, SPLINE,
// TEXT, MTEXT, ATTRIB, ATTDEF (outside blocks only, showing its tag), INSERT and
// MINSERT (their block, recursively), every dimension (its block) and LEADER (its
// vertices joined straight or, when splined, by a smooth curve through them; the
// arrowhead its DIMLDRBLK names, DIMASZ x DIMSCALE large, left out when the first
// segment is shorter than that; colour and lineweight from DIMCLRD and DIMLWD).
// Anything else is skipped and counted.
//
// Polyline bulges are flattened into chords (as are ellipses and splines), so
// sinks see straight segments only; widths > 0 become filled outlines, one per
// segment.
//
// Visibility: entities on a layer that is off or frozen are left out, as are
// invisible entities, paper-space entities (when drawing model space) and
// invisible attributes. A block's entities on layer 0 take the layer of the
// reference that shows them, for visibility and for ByLayer colour and lineweight;
// ByBlock takes the reference's resolved colour and lineweight (ACI 7 at top level).
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdGiPrimitives.h"

// How wide a line of text is, for text boxes (extents) and the wrapping of MTEXT.
// The default estimate is 0.6 × height per character, which suits the usual CAD
// fonts well enough; a sink that sets text in a font of its own measures as that
// font does.
class OdGiTextMeasure {
public:
  virtual ~OdGiTextMeasure() = default;
  // The advance of `line` at capital height `height` and width factor 1.
  virtual double lineWidth(const OdString& line, double height) const;
};

struct OdGiVectorizeStats {
  std::size_t drawn = 0;   // entities that gave primitives (block contents included)
  std::size_t hidden = 0;  // left out by layer, visibility or space
  std::size_t tooDeep = 0; // block references past the nesting limit (a block that contains itself)
  std::map<std::string, std::size_t> skipped;  // entity types not drawn, by DXF name
};

class OdDbVectorizer {
public:
  // `measure` must outlive the vectorizer; null uses the default estimate.
  explicit OdDbVectorizer(OdGiSink& sink, const OdGiTextMeasure* measure = nullptr);
  ~OdDbVectorizer();

  // Nesting of block references drawn; deeper ones are counted in tooDeep.
  void setMaxDepth(int depth);

  // The entities of a block record (model space when null). Throws
  // OdError(eInvalidInput) when the id is no block record of the drawing.
  void drawBlock(const OdDbDatabase& db, OdDbObjectId block = OdDbObjectId());
  // One entity, in world coordinates, as if it were in model space.
  void drawEntity(const OdDbEntity& entity);

  // Told each entity of the block that drawBlock draws, before its primitives go
  // to the sink (none when it is hidden): a sink can so keep every entity's
  // primitives apart under the same visibility rules, with the vertices and
  // attributes that follow polylines and references in the block.
  void setEntityObserver(std::function<void(OdDbObjectId)> observer);

  const OdGiVectorizeStats& stats() const;

  struct State;  // the drawing work, defined where it is done

private:
  std::unique_ptr<State> m_state;
};

// TEXT and ATTRIB strings as shown: %%c, %%d, %%p, %%% and %%nnn resolved
// (127, 128 and 129 are the degree, plus-minus and diameter signs, as in CAD
// shape fonts), the %%u, %%o and %%k switches dropped.
OdString odTextPlainText(const OdString& text);
