// How close our dimension blocks come to the ones CAD programs saved.
//
// For every rotated and aligned dimension whose saved "*D" block holds entities,
// the block's entities are taken as primitives (line ends, solid corners, insert
// position/scale/rotation, text contents/position, points); the dimension's block
// is then recomputed in a second copy of the drawing read from the same bytes, and
// the two are compared: the text exactly and as a reader sees it, the text
// position (of its middle, whichever point the MTEXT is attached at), and every
// line, arrowhead and point within 1% of the text height (DIMTXT x DIMSCALE).
// "geom+pos" counts blocks whose geometry and text position both match.
// "structure" counts blocks whose entities come in the same order with the same
// layer, colour, linetype and lineweight.
//
// The "leader" row takes every leader that points at an MTEXT, recomputes it in
// the second copy and compares its vertices with the saved ones within 1% of the
// annotation's text height; it also counts how often the annotation height and
// width (codes 40, 41) come within 5% of the saved ones.
//
// Usage: dim_fidelity [-v N] FILE...
//        dim_fidelity [-v N] --corpus DIR reference|others
// With --corpus the files come from DIR/MANIFEST.tsv: "reference" are those a
// CAD program wrote (the producer hint names a maintenance version and none of
// the libraries and programs that write blocks of their own), "others" the rest.
// -v N prints the first N failures in detail.
// --text-gaps prints instead, for every saved dimension line split around its
// text, what the gap tells about the text's width: font file, width factor, text
// height, DIMGAP x DIMSCALE, the text's angle to the line, half the gap, contents;
// the data from which font widths are worked out.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "drawings/DimGeometry.h"
#include "drawings/DimText.h"
#include "drawings/LeaderGeometry.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbLeader.h"
#include "drawings/OdDbText.h"
#include "drawings/OdGiTextMetrics.h"

namespace {

// One entity of a block, reduced to what is compared.
struct Prim {
  std::string kind;            // LINE, SOLID, INSERT, MTEXT, TEXT, POINT or the DXF name of anything else
  std::vector<OdGePoint3d> p;  // LINE 2, SOLID 4, INSERT/MTEXT/TEXT/POINT 1
  std::string name;            // INSERT: block (upper case)
  double scale = 0, angle = 0, height = 0;  // INSERT: x scale, rotation; MTEXT/TEXT: rotation, height
  double radius = 0, startAngle = 0, endAngle = 0;  // ARC (p: the centre)
  OdString text;
  std::string props;  // layer, colour, linetype, lineweight
};

double dist(const OdGePoint3d& a, const OdGePoint3d& b) { return std::hypot(a.x - b.x, a.y - b.y); }

// Angle difference in (-pi, pi].
double angleDiff(double a, double b) { return std::fabs(std::remainder(a - b, 2 * std::numbers::pi)); }

std::string upper(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

// Where an MTEXT's middle is. Dimension text is attached at its middle, but some
// programs attach it at another point of its box (the top left), which shows the
// text in the same place; the box is taken as the ink of the text as measured here.
OdGePoint3d middleOf(const OdDbMText& m) {
  const OdGePoint3d at = m.location();
  const int a = static_cast<int>(m.attachment());
  if (a < 1 || a > 9 || a == OdDbMText::kMiddleCenter) return at;
  const OdGiTextStyle style = OdGiTextStyle::fromId(m.textStyle());
  const OdString plain = odMTextPlainText(m.contents());
  const double h = m.textHeight(), pitch = h * 5.0 / 3.0;
  double width = 0, top = 0, bottom = 0;
  std::wstring_view rest = plain.view();
  for (int line = 0;; ++line) {
    const std::size_t end = rest.find(L'\n');
    const OdGiTextExtents e = odTextMetrics().extents(OdString(std::wstring(rest.substr(0, end))), h, style);
    if (!e.empty()) {
      width = std::max(width, e.width());
      if (line == 0) top = e.maxY;
      bottom = e.minY - line * pitch;
    }
    if (end == std::wstring_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  const int row = (a - 1) / 3, col = (a - 1) % 3;  // row 0 top, col 0 left
  const double along = (1 - col) * width / 2, up = (row - 1) * (top - bottom) / 2;
  const double c = std::cos(m.rotation()), s = std::sin(m.rotation());
  return OdGePoint3d{at.x + along * c - up * s, at.y + along * s + up * c, at.z};
}

std::vector<Prim> primitivesOf(const OdDbObjectId& blockId) {
  std::vector<Prim> out;
  auto block = odOpen<OdDbBlockTableRecord>(blockId);
  if (!block) return out;
  for (const OdDbObjectId& id : block->entityIds()) {
    OdDbObjectPtr o = id.openObject();
    if (!o) continue;
    Prim pr;
    pr.kind = std::string(o->dxfName());
    if (auto e = OdDbEntity::cast(o.get()))
      pr.props = upper(e->layer().toUtf8()) + "/" + std::to_string(e->color().colorIndex()) + "/" +
                 upper(e->linetype().toUtf8()) + "/" + std::to_string(static_cast<int>(e->lineWeight()));
    if (auto l = OdDbLine::cast(o.get())) {
      pr.p = {l->startPoint(), l->endPoint()};
    } else if (auto s = OdDbSolid::cast(o.get())) {
      pr.p.resize(4);
      for (int i = 0; i < 4; ++i) s->getPointAt(i, pr.p[static_cast<size_t>(i)]);
    } else if (auto r = OdDbBlockReference::cast(o.get())) {
      pr.p = {r->position()};
      pr.scale = r->scaleFactors().sx;
      pr.angle = r->rotation();
      auto b = odOpen<OdDbBlockTableRecord>(r->blockTableRecord());
      pr.name = b ? upper(b->getName().toUtf8()) : std::string("?");
    } else if (auto m = OdDbMText::cast(o.get())) {
      pr.p = {middleOf(*m)};
      pr.angle = m->rotation();
      pr.height = m->textHeight();
      pr.text = m->contents();
    } else if (auto t = OdDbText::cast(o.get())) {
      pr.p = {t->position()};
      pr.angle = t->rotation();
      pr.height = t->height();
      pr.text = t->textString();
    } else if (auto pt = OdDbPoint::cast(o.get())) {
      pr.p = {pt->position()};
    } else if (auto arc = OdDbArc::cast(o.get())) {
      pr.p = {arc->center()};
      pr.radius = arc->radius();
      pr.startAngle = arc->startAngle();
      pr.endAngle = arc->endAngle();
    }
    out.push_back(pr);
  }
  return out;
}

// How far apart two primitives of one kind are: the largest distance between
// corresponding points (lines either way round), rotations and scales turned
// into distances at the primitive's size.
double apart(const Prim& a, const Prim& b) {
  double d = 0;
  if (a.kind == "LINE") {
    const double same = std::max(dist(a.p[0], b.p[0]), dist(a.p[1], b.p[1]));
    const double swapped = std::max(dist(a.p[0], b.p[1]), dist(a.p[1], b.p[0]));
    return std::min(same, swapped);
  }
  if (a.kind == "SOLID") {
    // Corners 1, 0, 3, 2 fill the same shape as 0, 1, 2, 3 (the outline reversed).
    double same = 0, reversed = 0;
    const int other[4] = {1, 0, 3, 2};
    for (size_t i = 0; i < 4; ++i) {
      same = std::max(same, dist(a.p[i], b.p[i]));
      reversed = std::max(reversed, dist(a.p[i], b.p[static_cast<size_t>(other[i])]));
    }
    return std::min(same, reversed);
  }
  for (size_t i = 0; i < std::min(a.p.size(), b.p.size()); ++i) d = std::max(d, dist(a.p[i], b.p[i]));
  if (a.kind == "ARC") {
    // The centre, the radius and where each end lies on the circle.
    const double r = std::max(a.radius, b.radius);
    d = std::max({d, std::fabs(a.radius - b.radius), angleDiff(a.startAngle, b.startAngle) * r,
                  angleDiff(a.endAngle, b.endAngle) * r});
  }
  if (a.kind == "INSERT") {
    if (a.name != b.name) return 1e300;
    d = std::max({d, angleDiff(a.angle, b.angle) * std::fabs(a.scale), std::fabs(a.scale - b.scale)});
  }
  return d;
}

struct Outcome {
  bool textExact = false, textPlain = false, textPlace = false, geometry = false;
  bool structure = false;  // the same entities in the same order with the same properties
  std::string reason;  // of the geometry's failure
  std::string textReason;  // of the text position's
  std::string structureReason;
  std::string detail;
};

std::string fmtHeights(double d, double h) {
  char buf[64];
  if (h <= 0) h = 1;
  std::snprintf(buf, sizeof buf, "%.3g h", d / h);
  return buf;
}

// Sizes in text heights, rounded to a coarse scale, so that reasons group.
std::string bucket(double d, double h) {
  const double r = d / (h > 0 ? h : 1);
  if (r < 0.05) return "<0.05h";
  if (r < 0.2) return "<0.2h";
  if (r < 1) return "<1h";
  if (r < 5) return "<5h";
  return ">=5h";
}

Outcome compare(const std::vector<Prim>& theirs, const std::vector<Prim>& ours, double h) {
  Outcome out;
  const double tol = 0.01 * h;
  auto texts = [](const std::vector<Prim>& v) {
    std::vector<const Prim*> t;
    for (const Prim& p : v)
      if (p.kind == "MTEXT" || p.kind == "TEXT") t.push_back(&p);
    return t;
  };
  auto tt = texts(theirs), to = texts(ours);
  std::ostringstream detail;
  if (tt.size() == to.size()) {
    out.textExact = out.textPlain = out.textPlace = true;
    for (size_t i = 0; i < tt.size(); ++i) {
      out.textExact &= tt[i]->text == to[i]->text;
      out.textPlain &= odMTextPlainText(tt[i]->text) == odMTextPlainText(to[i]->text);
      const double off = dist(tt[i]->p[0], to[i]->p[0]);
      if (off <= tol) continue;
      out.textPlace = false;
      out.textReason = "off by " + bucket(off, h);
      detail << "  text off by " << fmtHeights(off, h) << "\n";
    }
  } else {
    out.textReason = tt.size() < to.size() ? "extra text" : "missing text";
  }

  // Geometry: the same number of each kind, each matched to its nearest partner.
  std::map<std::string, std::vector<const Prim*>> byKindT, byKindO;
  // (Text is compared above: geometry is lines, arrowheads and points.)
  for (const Prim& p : theirs)
    if (p.kind != "MTEXT" && p.kind != "TEXT") byKindT[p.kind].push_back(&p);
  for (const Prim& p : ours)
    if (p.kind != "MTEXT" && p.kind != "TEXT") byKindO[p.kind].push_back(&p);
  out.structure = theirs.size() == ours.size();
  for (size_t i = 0; out.structure && i < theirs.size(); ++i) {
    out.structure = theirs[i].kind == ours[i].kind && theirs[i].props == ours[i].props;
    if (!out.structure)
      out.structureReason = theirs[i].kind + " " + theirs[i].props + " where ours has " + ours[i].kind + " " + ours[i].props;
  }
  if (theirs.size() != ours.size()) out.structureReason = "another number of entities";
  std::vector<std::string> missing, extra;
  for (auto& [kind, v] : byKindT) {
    const size_t n = byKindO.count(kind) ? byKindO[kind].size() : 0;
    for (size_t i = n; i < v.size(); ++i) missing.push_back(kind);
  }
  for (auto& [kind, v] : byKindO) {
    const size_t n = byKindT.count(kind) ? byKindT[kind].size() : 0;
    for (size_t i = n; i < v.size(); ++i) extra.push_back(kind);
  }
  if (!missing.empty() || !extra.empty()) {
    std::string r;
    if (!missing.empty()) {
      r += "missing";
      for (auto& k : missing) r += " " + k;
    }
    if (!extra.empty()) {
      r += r.empty() ? "extra" : ", extra";
      for (auto& k : extra) r += " " + k;
    }
    out.reason = r;
  } else {
    double worst = 0;
    std::string worstKind;
    for (auto& [kind, v] : byKindT) {
      std::vector<const Prim*> rest = byKindO[kind];
      for (const Prim* t : v) {
        size_t best = 0;
        double bd = 1e301;
        for (size_t i = 0; i < rest.size(); ++i) {
          const double d = apart(*t, *rest[i]);
          if (d < bd) bd = d, best = i;
        }
        if (bd > worst) worst = bd, worstKind = kind;
        rest.erase(rest.begin() + static_cast<long>(best));
      }
    }
    out.geometry = worst <= tol;
    if (!out.geometry) {
      if (worst >= 1e300) out.reason = "INSERT of another arrow block";
      else out.reason = worstKind + " off by " + bucket(worst, h);
      detail << "  worst " << worstKind << " off by " << fmtHeights(worst, h) << "\n";
    }
  }
  out.detail = detail.str();
  return out;
}

std::string describe(const std::vector<Prim>& v) {
  std::ostringstream s;
  s.precision(10);
  for (const Prim& p : v) {
    s << "    " << p.kind;
    for (const auto& q : p.p) s << " (" << q.x << "," << q.y << ")";
    if (p.kind == "ARC")
      s << " r=" << p.radius << " " << p.startAngle * 180 / std::numbers::pi << ".." << p.endAngle * 180 / std::numbers::pi;
    if (p.kind == "INSERT") s << " " << p.name << " sc=" << p.scale << " rot=" << p.angle * 180 / std::numbers::pi;
    if (!p.text.isEmpty()) s << " h=" << p.height << " rot=" << p.angle * 180 / std::numbers::pi << " \"" << p.text.toUtf8() << "\"";
    s << "\n";
  }
  return s.str();
}

// The variables that decide a linear dimension's layout, for the failure report.
std::string variables(const OdDbDimension& d) {
  char buf[400];
  std::snprintf(buf, sizeof buf,
                "  %s text; TAD %d JUST %d TIH %d TOH %d ATFIT %d TIX %d TOFL %d TMOVE %d SOXD %d; ASZ %g GAP %g "
                "EXO %g EXE %g DLE %g TVP %g SCALE %g; user text \"%s\"\n",
                d.isUsingDefaultTextPosition() ? "default" : "user-placed", d.dimtad(), d.dimjust(), d.dimtih(),
                d.dimtoh(), d.dimatfit(), d.dimtix(), d.dimtofl(), d.dimtmove(), d.dimsoxd(), d.dimasz(), d.dimgap(),
                d.dimexo(), d.dimexe(), d.dimdle(), d.dimtvp(), d.dimscale(), d.dimensionText().toUtf8().c_str());
  return buf;
}

// Where the saved block has its arrowheads and text: inside or outside the
// extension lines (for the failure report).
std::string savedLayout(const OdDbAlignedDimension& d, const std::vector<Prim>& prims) {
  const OdGePoint3d p1 = d.xLine1Point(), p2 = d.xLine2Point(), dp = d.dimLinePoint();
  double ux = p2.x - p1.x, uy = p2.y - p1.y;
  if (auto r = OdDbRotatedDimension::cast(&d)) ux = std::cos(r->rotation()), uy = std::sin(r->rotation());
  const double ul = std::hypot(ux, uy);
  if (ul == 0) return "";
  ux /= ul, uy /= ul;
  auto along = [&](const OdGePoint3d& p) { return (p.x - dp.x) * ux + (p.y - dp.y) * uy; };
  const double a1 = along(p1), a2 = along(p2), lo = std::min(a1, a2), hi = std::max(a1, a2);
  std::string out = "  saved layout:";
  for (const Prim& p : prims) {
    if (p.kind != "INSERT" && p.kind != "SOLID") continue;
    const double at = along(p.kind == "INSERT" ? p.p[0] : p.p[2]);
    double dx, dy;
    if (p.kind == "INSERT") dx = std::cos(p.angle), dy = std::sin(p.angle);
    else dx = p.p[2].x - (p.p[0].x + p.p[1].x) / 2, dy = p.p[2].y - (p.p[0].y + p.p[1].y) / 2;
    const double dir = dx * ux + dy * uy;
    const bool atLow = std::fabs(at - lo) < std::fabs(at - hi);
    out += (atLow ? dir < 0 : dir > 0) ? " arrow in" : " arrow out";
  }
  for (const Prim& p : prims)
    if (p.kind == "MTEXT" || p.kind == "TEXT") {
      char buf[80];
      std::snprintf(buf, sizeof buf, " text at %.3f of the span", hi > lo ? (along(p.p[0]) - lo) / (hi - lo) : 0.0);
      out += buf;
    }
  return out + "\n";
}

struct Tally {
  int compared = 0, textExact = 0, textPlain = 0, textPlace = 0, geometry = 0, geomAndPlace = 0, structure = 0;
  std::map<std::string, int> reasons, textReasons, structureReasons;
};

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::vector<std::string> manifestFiles(const std::string& dir, bool reference) {
  std::ifstream in(dir + "/MANIFEST.tsv");
  auto split = [](const std::string& line) {
    std::vector<std::string> f;
    std::istringstream ls(line);
    for (std::string cell; std::getline(ls, cell, '\t');) f.push_back(cell);
    return f;
  };
  std::string line;
  std::getline(in, line);
  const std::vector<std::string> header = split(line);
  auto col = [&](const char* name) {
    return static_cast<size_t>(std::find(header.begin(), header.end(), name) - header.begin());
  };
  const size_t fileCol = col("file"), hintCol = col("producer_hint");
  std::vector<std::string> files;
  while (std::getline(in, line)) {
    auto f = split(line);
    if (f.size() <= fileCol) continue;
    const std::string hint = upper(f.size() > hintCol ? f[hintCol] : "");
    bool other = false;
    for (const char* p : {"DXFRW", "DXFLIB", "QCAD", "REVIT", "EZDXF", "NETDXF"}) other |= hint.find(p) != hint.npos;
    const bool isReference = hint.find("$ACADMAINTVER") != hint.npos && !other;
    if (isReference == reference) files.push_back(dir + "/" + f[fileCol]);
  }
  return files;
}

// The text's gap in a saved dimension line: the two pieces of line that point at
// the text's middle from either side, and how far from it they stop.
void printTextGap(OdDbDatabase& db, const OdDbDimension& dim, const std::vector<Prim>& prims, double scale) {
  const Prim* text = nullptr;
  for (const Prim& p : prims)
    if (p.kind == "MTEXT") text = &p;
  if (!text || dim.dimgap() < 0) return;
  // The text's middle is the dimension's text position (the MTEXT may be attached
  // at another of its points).
  const OdGePoint3d c = dim.textPosition();
  std::vector<double> stops;
  double lineAngle = 0;
  for (const Prim& p : prims) {
    if (p.kind != "LINE") continue;
    const double dx = p.p[1].x - p.p[0].x, dy = p.p[1].y - p.p[0].y, len = std::hypot(dx, dy);
    if (len <= 0) continue;
    const double off = std::fabs((c.x - p.p[0].x) * dy - (c.y - p.p[0].y) * dx) / len;
    if (off > 1e-6 * std::max(1.0, text->height)) continue;
    const double t0 = ((p.p[0].x - c.x) * dx + (p.p[0].y - c.y) * dy) / len;
    const double t1 = ((p.p[1].x - c.x) * dx + (p.p[1].y - c.y) * dy) / len;
    if (t0 * t1 <= 0) continue;  // runs under the text
    stops.push_back(std::min(std::fabs(t0), std::fabs(t1)));
    lineAngle = std::atan2(dy, dx);
  }
  if (stops.size() != 2 || std::fabs(stops[0] - stops[1]) > 1e-6 * std::max(1.0, stops[0])) return;
  auto style = odOpen<OdDbTextStyleTableRecord>(dim.dimtxsty().isNull()
                                                    ? odOpen<OdDbTextStyleTable>(db.getTextStyleTableId())->getAt(L"Standard")
                                                    : dim.dimtxsty());
  std::string font = style ? style->decodeText(style->firstValue(3).value_or("")).toUtf8() : "?";
  double widthFactor = 1.0;
  if (style && style->firstValue(41)) widthFactor = std::atof(style->firstValue(41)->c_str());
  const double rel = std::remainder(text->angle - lineAngle, std::numbers::pi) * 180 / std::numbers::pi;
  std::printf("%s\t%.6g\t%.9g\t%.9g\t%.4g\t%.9g\t%s\n", font.c_str(), widthFactor, text->height,
              dim.dimgap() * scale, rel, (stops[0] + stops[1]) / 2, text->text.toUtf8().c_str());
}

struct LeaderTally {
  int compared = 0, vertices = 0, size = 0;
  std::map<std::string, int> reasons;
};

// Recomputes the copy of `saved` in `ours` and compares the vertices.
void compareLeader(const OdDbLeader& saved, OdDbDatabase& ours, LeaderTally& t, std::map<std::string, int>& skipped,
                   const std::string& file, int verbose, int& shown) {
  auto anno = odOpen<OdDbMText>(saved.annotationObjId());
  if (saved.annoType() != OdDbLeader::kMText || !anno) {
    ++skipped["leader: no MTEXT annotation"];
    return;
  }
  auto mine = odOpen<OdDbLeader>(ours.getOdDbObjectId(saved.getDbHandle()), OdDb::kForWrite);
  const OdResult r = mine ? recomputeLeader(*mine) : eKeyNotFound;
  if (r != eOk) {
    ++skipped[std::string("leader: recompute failed: ") + odResultText(r)];
    return;
  }
  const double h = anno->textHeight();
  ++t.compared;
  double worst = 0;
  int worstAt = -1;
  for (int i = 0; i < saved.numVertices() && i < mine->numVertices(); ++i) {
    const double d = dist(saved.vertexAt(i), mine->vertexAt(i));
    if (d > worst) worst = d, worstAt = i;
  }
  const bool ok = worst <= 0.01 * h && saved.numVertices() == mine->numVertices();
  t.vertices += ok;
  auto near = [](double a, double b) { return std::fabs(a - b) <= 0.05 * std::max(std::fabs(a), std::fabs(b)); };
  const bool sized = near(saved.annotationHeight(), mine->annotationHeight()) && near(saved.annotationWidth(), mine->annotationWidth());
  t.size += sized;
  if (ok && sized) return;
  const int n = saved.numVertices();
  const std::string which = ok ? "vertices" : worstAt == n - 1 ? "last vertex" : worstAt == n - 2 && saved.hasHookLine() ? "hook start" : "arm vertex";
  if (!ok) ++t.reasons[which + " off by " + bucket(worst, h)];
  if (shown >= verbose) return;
  ++shown;
  std::printf("--- %s leader %s h=%g: %s off by %s%s; TAD %d GAP %g ASZ %g SCALE %g attachment %d\n",
              file.substr(file.find_last_of('/') + 1).c_str(), saved.getDbHandle().ascii().toUtf8().c_str(), h,
              which.c_str(), fmtHeights(worst, h).c_str(), sized ? "" : ", annotation size differs", saved.dimtad(), saved.dimgap(), saved.dimasz(),
              saved.dimscale(), static_cast<int>(anno->attachment()));
  for (int i = 0; i < n; ++i) {
    const OdGePoint3d a = saved.vertexAt(i), b = mine->vertexAt(i);
    std::printf("    saved (%.6f, %.6f)  ours (%.6f, %.6f)\n", a.x, a.y, b.x, b.y);
  }
  std::printf("    40/41 saved %g/%g ours %g/%g\n", saved.annotationHeight(), saved.annotationWidth(),
              mine->annotationHeight(), mine->annotationWidth());
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> files;
  int verbose = 0;
  bool textGaps = false;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--text-gaps") {
      textGaps = true;
    } else if (a == "-v" && i + 1 < argc) {
      verbose = std::atoi(argv[++i]);
    } else if (a == "--corpus" && i + 2 < argc) {
      const std::string dir = argv[++i], set = argv[++i];
      if (set != "reference" && set != "others") {
        std::cerr << "the set is \"reference\" or \"others\", not \"" << set << "\"\n";
        return 2;
      }
      for (auto& f : manifestFiles(dir, set == "reference")) files.push_back(f);
    } else {
      files.push_back(a);
    }
  }
  if (files.empty()) {
    std::cerr << "usage: dim_fidelity [-v N] FILE... | dim_fidelity [-v N] --corpus DIR reference|others\n";
    return 2;
  }

  std::map<std::string, Tally> byKind;
  LeaderTally leaders;
  std::map<std::string, int> skipped;
  int shown = 0;
  for (const std::string& file : files) {
    const std::string bytes = slurp(file);
    OdDbDatabasePtr saved, ours;
    try {
      saved = OdDbDatabase::readDxf(bytes);
      ours = OdDbDatabase::readDxf(bytes);
    } catch (const OdError& e) {
      std::cerr << file << ": " << e.what() << "\n";
      continue;
    }
    auto blocks = odOpen<OdDbBlockTable>(saved->getBlockTableId());
    for (const OdDbObjectId& btrId : blocks->recordIds()) {
      auto btr = odOpen<OdDbBlockTableRecord>(btrId);
      for (const OdDbObjectId& id : btr->entityIds()) {
        if (auto leader = odOpen<OdDbLeader>(id)) {
          if (!textGaps) compareLeader(*leader, *ours, leaders, skipped, file, verbose, shown);
          continue;
        }
        auto dim = odOpen<OdDbDimension>(id);
        if (!dim) continue;
        const int type = dim->dimensionType();
        std::string kind;
        if (dim->isKindOf(OdDbArcDimension::desc())) kind = "arc";
        else if (dim->isKindOf(OdDbAlignedDimension::desc()) && (type == 0 || type == 1))
          kind = type == 0 ? "rotated" : "aligned";
        else if (dim->isKindOf(OdDb2LineAngularDimension::desc()) && type == 2) kind = "angular2";
        else if (dim->isKindOf(OdDb3PointAngularDimension::desc()) && type == 5) kind = "angular3";
        else if (dim->isKindOf(OdDbOrdinateDimension::desc()) && type == 6) kind = "ordinate";
        else if (dim->isKindOf(OdDbRadialDimension::desc()) && type == 4) kind = "radius";
        else if (dim->isKindOf(OdDbDiametricDimension::desc()) && type == 3) kind = "diameter";
        else if (dim->isKindOf(VxHugeRadius::desc())) kind = "jogged";
        else continue;
        auto block = odOpen<OdDbBlockTableRecord>(dim->dimBlockId());
        if (!block || block->entityIds().empty()) {
          ++skipped[kind + ": no saved block"];
          continue;
        }
        if (block->getName().left(2).iCompare(L"*D") != 0) {
          ++skipped[kind + ": block not named *D (another program's)"];
          continue;
        }
        const std::vector<Prim> theirs = primitivesOf(block->objectId());
        const double scale = dim->dimscale() > 0 ? dim->dimscale() : 1.0;
        const double h = dim->dimtxt() * scale;
        // The saved block marks the points it was computed from; where they are not
        // the dimension's (the dimension was moved or edited by a program that left
        // the block alone) the block shows another dimension.
        auto aligned = OdDbAlignedDimension::cast(dim.get());
        std::vector<OdGePoint3d> defining;
        if (aligned) defining = {aligned->xLine1Point(), aligned->xLine2Point(), aligned->dimLinePoint()};
        else if (auto a2 = OdDb2LineAngularDimension::cast(dim.get()))
          defining = {a2->xLine1Start(), a2->xLine1End(), a2->xLine2Start(), a2->xLine2End(), a2->arcPoint()};
        else if (auto a3 = OdDb3PointAngularDimension::cast(dim.get()))
          defining = {a3->xLine1Point(), a3->xLine2Point(), a3->centerPoint(), a3->arcPoint()};
        else if (auto al = OdDbArcDimension::cast(dim.get()))
          defining = {al->xLine1Point(), al->xLine2Point(), al->centerPoint(), al->arcPoint()};
        else if (auto o = OdDbOrdinateDimension::cast(dim.get()))
          defining = {o->definingPoint(), o->leaderEndPoint(), o->origin()};
        else if (auto rd = OdDbRadialDimension::cast(dim.get())) defining = {rd->chordPoint(), rd->center()};
        else if (auto dd = OdDbDiametricDimension::cast(dim.get())) defining = {dd->chordPoint(), dd->farChordPoint()};
        else if (auto j = VxHugeRadius::cast(dim.get()))
          defining = {j->chordPoint(), j->center(), j->overrideCenter(), j->jogPoint()};
        bool stale = false;
        for (const Prim& p : theirs)
          if (p.kind == "POINT")
            stale |= std::none_of(defining.begin(), defining.end(),
                                  [&](const OdGePoint3d& q) { return dist(p.p[0], q) <= 0.01 * h; });
        if (stale) {
          ++skipped[kind + ": saved block computed from other points"];
          continue;
        }

        if (textGaps) {
          printTextGap(*saved, *dim, theirs, scale);
          continue;
        }
        auto mine = odOpen<OdDbDimension>(ours->getOdDbObjectId(id.getHandle()), OdDb::kForWrite);
        const OdResult r = mine ? recomputeDimBlock(*mine) : eKeyNotFound;
        if (r != eOk) {
          ++skipped[kind + ": recompute failed: " + odResultText(r)];
          continue;
        }
        const std::vector<Prim> oursPrims = primitivesOf(mine->dimBlockId());
        const Outcome o = compare(theirs, oursPrims, h);
        Tally& t = byKind[kind];
        ++t.compared;
        t.textExact += o.textExact;
        t.textPlain += o.textPlain;
        t.textPlace += o.textPlace;
        t.geometry += o.geometry;
        t.geomAndPlace += o.geometry && o.textPlace;
        t.structure += o.structure;
        if (!o.geometry) ++t.reasons[o.reason];
        if (!o.textPlace) ++t.textReasons[o.textReason];
        if (!o.structure) ++t.structureReasons[o.structureReason];
        if ((!o.geometry || !o.textPlace || !o.textPlain) && shown < verbose) {
          ++shown;
          std::cout << "--- " << file.substr(file.find_last_of('/') + 1) << " " << kind << " "
                    << id.getHandle().ascii().toUtf8() << " " << block->getName().toUtf8() << " h=" << h << ": "
                    << (o.geometry ? std::string("geometry ok") : o.reason)
                    << (o.textPlace ? "" : ", text position off") << (o.textPlain ? "" : ", text differs") << "\n"
                    << variables(*dim) << (aligned ? savedLayout(*aligned, theirs) : std::string()) << o.detail << "  saved:\n"
                    << describe(theirs) << "  ours:\n"
                    << describe(oursPrims);
        }
      }
    }
  }

  if (textGaps) return 0;
  // Rounded down, so that a goal such as 95 % never reads as met when it is not.
  auto pct = [](int n, int of) { return of ? std::floor(1000.0 * n / of + 1e-9) / 10 : 0.0; };
  std::printf("%-8s %9s %11s %11s %10s %10s %10s %10s\n", "kind", "compared", "text-exact", "text-plain", "text-pos",
              "geometry", "geom+pos", "structure");
  Tally all;
  for (auto& [kind, t] : byKind) {
    std::printf("%-8s %9d %10.1f%% %10.1f%% %9.1f%% %9.1f%% %9.1f%% %9.1f%%\n", kind.c_str(), t.compared,
                pct(t.textExact, t.compared), pct(t.textPlain, t.compared), pct(t.textPlace, t.compared),
                pct(t.geometry, t.compared), pct(t.geomAndPlace, t.compared), pct(t.structure, t.compared));
    all.compared += t.compared;
    all.textExact += t.textExact;
    all.textPlain += t.textPlain;
    all.textPlace += t.textPlace;
    all.geometry += t.geometry;
    all.geomAndPlace += t.geomAndPlace;
    all.structure += t.structure;
  }
  std::printf("%-8s %9d %10.1f%% %10.1f%% %9.1f%% %9.1f%% %9.1f%% %9.1f%%\n", "all", all.compared,
              pct(all.textExact, all.compared), pct(all.textPlain, all.compared), pct(all.textPlace, all.compared),
              pct(all.geometry, all.compared), pct(all.geomAndPlace, all.compared), pct(all.structure, all.compared));
  if (leaders.compared)
    std::printf("%-8s %9d %11s %11s %10s %9.1f%% %10s %10s   (annotation size within 5%%: %.1f%%)\n", "leader",
                leaders.compared, "-", "-", "-", pct(leaders.vertices, leaders.compared), "-", "-",
                pct(leaders.size, leaders.compared));
  for (auto& [kind, t] : byKind) {
    std::vector<std::pair<int, std::string>> r;
    for (auto& [why, n] : t.reasons) r.emplace_back(n, why);
    std::sort(r.rbegin(), r.rend());
    if (!r.empty()) std::printf("%s, differences:\n", kind.c_str());
    for (size_t i = 0; i < r.size() && i < 8; ++i) std::printf("  %5d  %s\n", r[i].first, r[i].second.c_str());
    r.clear();
    for (auto& [why, n] : t.textReasons) r.emplace_back(n, why);
    std::sort(r.rbegin(), r.rend());
    if (!r.empty()) std::printf("%s, text position differences:\n", kind.c_str());
    for (size_t i = 0; i < r.size() && i < 6; ++i) std::printf("  %5d  %s\n", r[i].first, r[i].second.c_str());
    r.clear();
    for (auto& [why, n] : t.structureReasons) r.emplace_back(n, why);
    std::sort(r.rbegin(), r.rend());
    if (!r.empty()) std::printf("%s, structure differences (first entity that differs):\n", kind.c_str());
    for (size_t i = 0; i < r.size() && i < 6; ++i) std::printf("  %5d  %s\n", r[i].first, r[i].second.c_str());
  }
  if (!leaders.reasons.empty()) std::printf("leader, differences:\n");
  for (auto& [why, n] : leaders.reasons) std::printf("  %5d  %s\n", n, why.c_str());
  for (auto& [why, n] : skipped) std::printf("skipped %s: %d\n", why.c_str(), n);
  return 0;
}
