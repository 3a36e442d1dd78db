// What the dimension geometry tests read back from a dimension's block.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbText.h"

namespace dimgeomtest {

// One entity of a dimension block, as a reader sees it.
struct Prim {
  std::string kind;
  std::vector<OdGePoint3d> p;
  std::string block, layer;
  double scale = 0, angle = 0, height = 0;
  double radius = 0, startAngle = 0, endAngle = 0;
  std::string text;   // as stored (MTEXT codes included)
  std::string plain;  // as a reader sees it
};

inline std::vector<Prim> primitives(const OdDbObjectId& blockId) {
  std::vector<Prim> out;
  auto block = odOpen<OdDbBlockTableRecord>(blockId);
  if (!block) return out;
  for (const OdDbObjectId& id : block->entityIds()) {
    OdDbObjectPtr o = id.openObject();
    Prim pr;
    pr.kind = std::string(o->dxfName());
    pr.layer = OdDbEntity::cast(o.get())->layer().toUtf8();
    if (auto l = OdDbLine::cast(o.get())) pr.p = {l->startPoint(), l->endPoint()};
    if (auto a = OdDbArc::cast(o.get())) {
      pr.p = {a->center()};
      pr.radius = a->radius();
      pr.startAngle = a->startAngle();
      pr.endAngle = a->endAngle();
    }
    if (auto s = OdDbSolid::cast(o.get())) {
      pr.p.resize(4);
      for (int i = 0; i < 4; ++i) s->getPointAt(i, pr.p[static_cast<size_t>(i)]);
    }
    if (auto r = OdDbBlockReference::cast(o.get())) {
      pr.p = {r->position()};
      pr.scale = r->scaleFactors().sx;
      pr.angle = r->rotation();
      pr.block = odOpen<OdDbBlockTableRecord>(r->blockTableRecord())->getName().toUtf8();
    }
    if (auto m = OdDbMText::cast(o.get())) {
      pr.p = {m->location()};
      pr.angle = m->rotation();
      pr.height = m->textHeight();
      pr.text = m->contents().toUtf8();
      pr.plain = odMTextPlainText(m->contents()).toUtf8();
    }
    if (auto t = OdDbText::cast(o.get())) {
      pr.p = {t->position()};
      pr.angle = t->rotation();
      pr.height = t->height();
      pr.text = pr.plain = t->textString().toUtf8();
    }
    if (auto pt = OdDbPoint::cast(o.get())) pr.p = {pt->position()};
    out.push_back(pr);
  }
  return out;
}

inline std::string kinds(const std::vector<Prim>& v) {
  std::string s;
  for (const Prim& p : v) s += (s.empty() ? "" : " ") + p.kind;
  return s;
}

inline double dist(const OdGePoint3d& a, const OdGePoint3d& b) { return std::hypot(a.x - b.x, a.y - b.y); }

// Block names compare without regard to case.
inline std::string upper(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

// A double spelled so that it reads back exactly.
inline std::string exact(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

// Sets the first tag with `code` (and the one after it, its y).
inline void setPoint(OdDbDimension& d, int code, double x, double y) {
  DxfTagList& t = d.tagsForWrite();
  for (size_t i = 0; i + 1 < t.size(); ++i)
    if (t[i].code == code) {
      t[i].set(exact(x));
      t[i + 1].set(exact(y));
      return;
    }
}

// The first entity of class T in model space, opened for write.
template <class T>
OdSmartPtr<T> first(OdDbDatabase& db) {
  for (const OdDbObjectId& id : odOpen<OdDbBlockTableRecord>(db.getModelSpaceId())->entityIds())
    if (auto d = odOpen<T>(id, OdDb::kForWrite)) return d;
  return {};
}

}  // namespace dimgeomtest

#define EXPECT_AT(actual, x_, y_)                                                    \
  EXPECT_LT(dimgeomtest::dist((actual), OdGePoint3d{(x_), (y_), 0}), 1e-9)           \
      << "at (" << (actual).x << ", " << (actual).y << ")"
