// How long recomputing dimension blocks takes: a new drawing with N rotated
// dimensions (points, angles and a few variable sets varied), every block computed
// three ways: made for the first time, recomputed with nothing changed, and
// recomputed after the dimension style changed (every block respelled). Prints the
// time per dimension of each, the memory the drawing takes, and with --peer the
// time a peer command reports for the same number of blocks and the ratio.
//
//   dim_recompute_bench [N] [--peer "COMMAND"]      (N = 100000 by default)
//
// The peer command is run with the number of blocks as its last argument and must
// print a JSON object with "per_dim_us" (bench/ezdxf_dim_peer.py).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "drawings/DimGeometry.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimStyleTableRecord.h"

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

// The "per_dim_us" the peer printed; negative when it failed.
double runPeer(const std::string& command, int n) {
  const std::string line = command + " " + std::to_string(n);
  FILE* p = popen(line.c_str(), "r");
  if (!p) return -1;
  std::string out;
  char buf[512];
  while (size_t got = fread(buf, 1, sizeof buf, p)) out.append(buf, got);
  if (pclose(p) != 0) return -1;
  const size_t at = out.find("\"per_dim_us\":");
  return at == std::string::npos ? -1 : std::atof(out.c_str() + at + 13);
}

}  // namespace

int main(int argc, char** argv) {
  int n = 100000;
  std::string peer;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--peer") == 0 && i + 1 < argc) peer = argv[++i];
    else n = std::atoi(argv[i]);
  }
  if (n <= 0) {
    std::fprintf(stderr, "usage: dim_recompute_bench [N] [--peer \"COMMAND\"]\n");
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

  int failures = 0;
  auto recomputeAll = [&] {
    const auto start = std::chrono::steady_clock::now();
    for (const OdDbObjectId& id : ids) {
      auto d = odOpen<OdDbDimension>(id, OdDb::kForWrite);
      if (recomputeDimBlock(*d) != eOk) ++failures;
    }
    return seconds(std::chrono::steady_clock::now() - start);
  };
  const double first = recomputeAll();
  double unchanged = 1e300, restyled = 1e300;
  auto standard = odOpen<OdDbDimStyleTableRecord>(db->dimstyle(), OdDb::kForWrite);
  for (int round = 0; round < 3; ++round) {
    unchanged = std::min(unchanged, recomputeAll());
    standard->setDimasz(round % 2 ? 0.18 : 0.2);  // every arrowhead, line end and fit changes
    restyled = std::min(restyled, recomputeAll());
  }
  const auto [rss2, peak2] = memoryMiB();

  auto line = [&](const char* what, double s) {
    std::printf("%-44s %8.3f s  %8.2f us per dimension\n", what, s, s / n * 1e6);
  };
  std::printf("%d rotated dimensions%s\n", n, failures ? " (some failed to compute)" : "");
  line("blocks made", first);
  line("recomputed, nothing changed (best of 3)", unchanged);
  line("recomputed after a style change (best of 3)", restyled);
  std::printf("memory: %.0f MiB at start, %.0f MiB with the dimensions (%.2f KiB each), %.0f MiB after recomputing "
              "(peak %.0f MiB)\n",
              rss0, rss1, (rss1 - rss0) * 1024 / n, rss2, std::max({peak0, peak1, peak2}));
  if (!peer.empty()) {
    const int peerN = std::min(n, 2000);  // the peer is slow: a sample of blocks is enough for a per-block time
    const double peerUs = runPeer(peer, peerN);
    if (peerUs <= 0) {
      std::printf("peer: failed (%s)\n", peer.c_str());
    } else {
      const double oursUs = restyled / n * 1e6;
      std::printf("peer: %.2f us per block for making the same entities (%d blocks); our recompute after a style "
                  "change is %.1fx %s\n",
                  peerUs, peerN, oursUs < peerUs ? peerUs / oursUs : oursUs / peerUs,
                  oursUs < peerUs ? "faster" : "slower");
    }
  }
  return failures ? 1 : 0;
}
