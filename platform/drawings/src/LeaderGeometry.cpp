#include "drawings/LeaderGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "drawings/DimText.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbText.h"
#include "drawings/OdGiTextMetrics.h"

namespace {

// MTEXT lines are 5/3 of the text height apart at line spacing factor 1.
constexpr double kLineSpacing = 5.0 / 3.0;

OdGeVector3d operator*(const OdGeVector3d& v, double s) { return {v.x * s, v.y * s, v.z * s}; }
OdGePoint3d operator+(const OdGePoint3d& p, const OdGeVector3d& v) { return {p.x + v.x, p.y + v.y, p.z + v.z}; }
OdGePoint3d operator-(const OdGePoint3d& p, const OdGeVector3d& v) { return {p.x - v.x, p.y - v.y, p.z - v.z}; }
OdGeVector3d operator-(const OdGePoint3d& a, const OdGePoint3d& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double dot(const OdGeVector3d& a, const OdGeVector3d& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
OdGeVector3d cross(const OdGeVector3d& u, const OdGeVector3d& v) {
  return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}
OdGeVector3d unit(const OdGeVector3d& v, const OdGeVector3d& fallback) {
  const double l = std::sqrt(dot(v, v));
  return l > 0 ? v * (1 / l) : fallback;
}

// The MTEXT's extrusion direction (210), +Z when absent.
OdGeVector3d normalOf(const OdDbMText& m) {
  auto coord = [&](int code, double dflt) {
    auto v = m.firstValue(code);
    return v ? std::strtod(v->c_str(), nullptr) : dflt;
  };
  return {coord(210, 0.0), coord(220, 0.0), coord(230, 1.0)};
}

struct Box {
  double height = 0, width = 0;
};

// The annotation's lines as set (paragraph breaks only; no wrapping), measured
// from the top of the first line (its capitals, or its ink where that is
// higher) to the lowest ink of the last.
Box measure(const OdDbMText& m) {
  Box box;
  const double h = m.textHeight();
  if (!(h > 0)) return box;
  const OdGiTextStyle style = OdGiTextStyle::fromId(m.textStyle());
  const OdGiTextMetrics& metrics = odTextMetrics();
  double factor = 1.0;
  if (auto f = m.firstValue(44)) factor = std::strtod(f->c_str(), nullptr);
  if (!(factor > 0)) factor = 1.0;
  const double pitch = kLineSpacing * h * factor;
  std::vector<OdString> lines;
  const OdString text = odMTextPlainText(m.contents());
  const std::wstring_view plain = text.view();
  for (size_t start = 0;;) {
    const size_t end = plain.find(L'\n', start);
    lines.emplace_back(std::wstring(plain.substr(start, end == plain.npos ? plain.npos : end - start)));
    if (end == plain.npos) break;
    start = end + 1;
  }
  double top = h, bottom = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    const OdGiTextExtents e = metrics.extents(lines[i], h, style);
    const double baseline = -pitch * static_cast<double>(i);
    if (i == 0 && !e.empty()) top = std::max(top, e.maxY);
    bottom = baseline + (e.empty() ? 0.0 : std::min(0.0, e.minY));
    box.width = std::max(box.width, e.width());
  }
  box.height = top - bottom;
  return box;
}

// The side of the annotation, seen from the vertex the leader's arm ends at (the
// one before the hook line, or before the last vertex without one): along the
// horizontal `u` towards the annotation's insertion point `at`; level with it,
// the stored side stays.
bool annotationOnXDir(const OdDbLeader& leader, const OdGePoint3d& at, const OdGeVector3d& u, bool hooked, double tiny) {
  const OdGePoint3d armEnd = leader.vertexAt(leader.numVertices() - (hooked ? 3 : 2));
  const double across = dot(at - armEnd, u);
  if (std::fabs(across) > tiny) return across > 0;
  return leader.annotationOnXDir() == (dot(leader.horizontalDirection(), u) >= 0);
}

// The last vertex at `last`, the hook line (DIMASZ x DIMSCALE) before it against
// the annotation's side, and the horizontal and side stored.
void placeEnd(OdDbLeader& leader, const OdGePoint3d& last, const OdGeVector3d& u, bool onXDir, bool hooked) {
  const double scale = leader.dimscale() > 0 ? leader.dimscale() : 1.0;
  const int n = leader.numVertices();
  leader.setVertexAt(n - 1, last);
  if (hooked) leader.setVertexAt(n - 2, last - u * ((onXDir ? 1.0 : -1.0) * leader.dimasz() * scale));
  leader.setHorizontalDirection(u);
  leader.setAnnotationOnXDir(onXDir);
}

OdResult placeOnText(OdDbLeader& leader, const OdDbMText& mtext) {
  const OdGeVector3d normal = unit(normalOf(mtext), {0, 0, 1});
  const OdGeVector3d u = unit(mtext.direction(), {1, 0, 0});
  const OdGeVector3d v = unit(cross(normal, u), {0, 1, 0});
  const OdGePoint3d at = mtext.location();
  const double scale = leader.dimscale() > 0 ? leader.dimscale() : 1.0;
  const double gap = std::fabs(leader.dimgap()) * scale;
  const bool hooked = leader.hasHookLine() && leader.numVertices() >= 3;
  const bool onXDir = annotationOnXDir(leader, at, u, hooked, 1e-9 * std::max(1.0, mtext.textHeight()));

  const Box box = measure(mtext);
  OdGePoint3d anchor = at - u * ((onXDir ? 1.0 : -1.0) * gap);
  if (leader.dimtad() != 0) {
    // Under the text: from the attachment's row down to the box's bottom, then the gap.
    const int row = (static_cast<int>(mtext.attachment()) - 1) / 3;
    const double down = row == 0 ? box.height : row == 1 ? box.height / 2 : 0.0;
    anchor = anchor - v * (down + gap);
  }
  placeEnd(leader, anchor + leader.annotationOffset(), u, onXDir, hooked);
  leader.setAnnotationSize(box.height, box.width);
  return eOk;
}

// A block or a tolerance frame has no text line to run under: the leader keeps
// the offset of its last vertex from the annotation's insertion point (212 for a
// block, 213 for a tolerance), so that it follows the annotation when that moves.
OdResult placeOnInsertionPoint(OdDbLeader& leader, const OdDbEntity& anno, bool block) {
  OdGePoint3d at;
  OdGeVector3d u{1, 0, 0};
  if (block) {
    auto insert = OdDbBlockReference::cast(&anno);
    if (insert.isNull()) return eNotImplementedYet;
    at = insert->position();
    u = {std::cos(insert->rotation()), std::sin(insert->rotation()), 0};
  } else {
    auto coord = [&](int code, double dflt) {
      auto v = anno.firstValue(code);
      return v ? std::strtod(v->c_str(), nullptr) : dflt;
    };
    at = {coord(10, 0.0), coord(20, 0.0), coord(30, 0.0)};
    u = unit({coord(11, 1.0), coord(21, 0.0), coord(31, 0.0)}, {1, 0, 0});  // the frame's x direction
  }
  const bool hooked = leader.hasHookLine() && leader.numVertices() >= 3;
  const bool onXDir = annotationOnXDir(leader, at, u, hooked, 1e-9);
  placeEnd(leader, at + (block ? leader.blockOffset() : leader.annotationOffset()), u, onXDir, hooked);
  return eOk;
}

}  // namespace

OdResult recomputeLeader(OdDbLeader& leader) {
  OdDbDatabase* db = leader.database();
  if (!db) return eNotInDatabase;
  if (!leader.isWriteEnabled()) return eNotOpenForWrite;
  const OdDbLeader::AnnoType type = leader.annoType();
  if (type == OdDbLeader::kNoAnno) return eOk;
  // A leader whose annotation is gone (erased, or never saved with it) keeps its end.
  const OdDbObjectId annoId = leader.annotationObjId();
  if (annoId.isNull() || !annoId.openObject()) return eOk;
  if (leader.numVertices() < 2) return eOk;
  if (type == OdDbLeader::kMText) {
    auto mtext = odOpen<OdDbMText>(annoId);
    return mtext ? placeOnText(leader, *mtext) : eNotImplementedYet;
  }
  auto anno = odOpen<OdDbEntity>(annoId);
  return anno ? placeOnInsertionPoint(leader, *anno, type == OdDbLeader::kBlockRef) : eNotImplementedYet;
}
