// How long recomputing dimension blocks takes: a new drawing with N rotated and
// aligned dimensions (points, angles and a few variable sets varied), every block
// recomputed three times; prints the best time per dimension and in total, and the
// memory the drawing takes before and after.
//
//   dim_recompute_bench [N]      (100000 by default)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "drawings/DimGeometry.h"
#include "drawings/OdDbDatabase.h"

namespace {

// Resident and peak resident memory of this process, in MiB.
std::pair<double, double> memoryMiB() {
  std::ifstream in("/proc/self/status");
  double rss = 0, peak = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("VmRSS:", 0) == 0) rss = std::atof(line.c_str() + 6) / 1024;
    if (line.rfind("VmHWM:", 0) == 0) peak = std::atof(line.c_str() + 6) / 1024;
  }
  return {rss, peak};
}

double seconds(std::chrono::steady_clock::duration d) { return std::chrono::duration<double>(d).count(); }

}  // namespace

int main(int argc, char** argv) {
  const int n = argc > 1 ? std::atoi(argv[1]) : 100000;
  if (n <= 0) {
    std::fprintf(stderr, "usage: dim_recompute_bench [N]\n");
    return 2;
  }
  const auto [rss0, peak0] = memoryMiB();
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018);
  std::vector<OdDbObjectId> ids;
  ids.reserve(static_cast<size_t>(n));
  {
    auto ms = odOpen<OdDbBlockTableRecord>(db->getModelSpaceId(), OdDb::kForWrite);
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> coord(-1000.0, 1000.0), len(0.5, 200.0), off(-50.0, 50.0);
    for (int i = 0; i < n; ++i) {
      auto d = OdDbRotatedDimension::createFor(*db);
      ms->appendOdDbEntity(d.get());
      const OdGePoint3d p1{coord(rng), coord(rng), 0};
      const double a = (i % 8) * 0.4;
      const double l = (i % 10 == 0) ? 0.3 : len(rng);  // some too short for text and arrowheads
      const OdGePoint3d p2{p1.x + l * std::cos(a + 0.1 * (i % 3)), p1.y + l * std::sin(a + 0.1 * (i % 3)), 0};
      const double o = off(rng);
      d->setXLine1Point(p1);
      d->setXLine2Point(p2);
      d->setDimLinePoint({p1.x - o * std::sin(a), p1.y + o * std::cos(a), 0});
      d->setRotation(a);
      // A few variable sets: text above, scaled, ticks, text inside.
      switch (i % 4) {
        case 1: d->setDimtad(1); break;
        case 2:
          d->setDimscale(2.5);
          d->setDimtih(false);
          break;
        case 3:
          d->setDimtad(1);
          d->setDimtix(true);
          d->setDimasz(0.25);
          break;
        default: break;
      }
      ids.push_back(d->objectId());
    }
  }
  const auto [rss1, peak1] = memoryMiB();

  double best = 1e300;
  int failures = 0;
  for (int round = 0; round < 3; ++round) {
    const auto start = std::chrono::steady_clock::now();
    for (const OdDbObjectId& id : ids) {
      auto d = odOpen<OdDbDimension>(id, OdDb::kForWrite);
      if (recomputeDimBlock(*d) != eOk) ++failures;
    }
    const double s = seconds(std::chrono::steady_clock::now() - start);
    std::printf("round %d: %.3f s\n", round + 1, s);
    best = std::min(best, s);
  }
  const auto [rss2, peak2] = memoryMiB();

  std::printf("%d dimensions, best of 3: %.3f s in total, %.2f us per dimension%s\n", n, best, best / n * 1e6,
              failures ? " (some failed)" : "");
  std::printf("memory: %.0f MiB at start, %.0f MiB with the dimensions (%.2f KiB each), %.0f MiB after recomputing "
              "(peak %.0f MiB)\n",
              rss0, rss1, (rss1 - rss0) * 1024 / n, rss2, std::max({peak0, peak1, peak2}));
  return failures ? 1 : 0;
}
