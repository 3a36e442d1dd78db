// Load and save throughput of the drawing database on real DXF files, the peak heap
// while loading, and (optionally) the same load and save timed in ezdxf for comparison.
//
// Usage: dxf_bench [--peer "COMMAND"] FILE...
// COMMAND is run through the shell with the files appended; it must print the JSON that
// bench/ezdxf_peer.py prints. Without --peer the peer columns stay empty.
#include <malloc.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"

// ---------------------------------------------------------------------------
// Heap accounting. Every operator new/delete of the program comes here, so the
// figures include the standard library's containers and strings. Sizes are the
// allocator's usable sizes, which is what the blocks really occupy. The program is
// single-threaded, so plain counters do.
namespace {
size_t g_heapNow = 0;
size_t g_heapPeak = 0;

void* countedAlloc(size_t n) {
  void* p = std::malloc(n ? n : 1);
  if (!p) throw std::bad_alloc();
  g_heapNow += malloc_usable_size(p);
  if (g_heapNow > g_heapPeak) g_heapPeak = g_heapNow;
  return p;
}

void* countedAlignedAlloc(size_t n, std::align_val_t al) {
  size_t align = std::max(static_cast<size_t>(al), sizeof(void*));
  void* p = nullptr;
  if (posix_memalign(&p, align, n ? n : 1) != 0) throw std::bad_alloc();
  g_heapNow += malloc_usable_size(p);
  if (g_heapNow > g_heapPeak) g_heapPeak = g_heapNow;
  return p;
}

void countedFree(void* p) noexcept {
  if (!p) return;
  g_heapNow -= malloc_usable_size(p);
  std::free(p);
}
}  // namespace

void* operator new(size_t n) { return countedAlloc(n); }
void* operator new[](size_t n) { return countedAlloc(n); }
void* operator new(size_t n, const std::nothrow_t&) noexcept {
  try { return countedAlloc(n); } catch (...) { return nullptr; }
}
void* operator new[](size_t n, const std::nothrow_t&) noexcept {
  try { return countedAlloc(n); } catch (...) { return nullptr; }
}
void* operator new(size_t n, std::align_val_t al) { return countedAlignedAlloc(n, al); }
void* operator new[](size_t n, std::align_val_t al) { return countedAlignedAlloc(n, al); }
void operator delete(void* p) noexcept { countedFree(p); }
void operator delete[](void* p) noexcept { countedFree(p); }
void operator delete(void* p, size_t) noexcept { countedFree(p); }
void operator delete[](void* p, size_t) noexcept { countedFree(p); }
void operator delete(void* p, std::align_val_t) noexcept { countedFree(p); }
void operator delete[](void* p, std::align_val_t) noexcept { countedFree(p); }
void operator delete(void* p, size_t, std::align_val_t) noexcept { countedFree(p); }
void operator delete[](void* p, size_t, std::align_val_t) noexcept { countedFree(p); }

namespace {

using Clock = std::chrono::steady_clock;

// Each figure is the best of at least this many runs, and of as many more as it
// takes for the measured runs to add up to kMinTotalSeconds, so that short runs are
// not at the mercy of one timer tick or one preemption.
constexpr int kMinRuns = 3;
constexpr double kMinTotalSeconds = 0.3;

struct Timing {
  double best = 0;  // seconds
  int runs = 0;
};

// `once` returns the seconds of the part it wants timed, so that setup (copying the
// input) and teardown (freeing the drawing) stay outside the figure.
template <class F>
Timing bestOf(F once) {
  Timing t;
  t.best = INFINITY;
  double total = 0;
  while (t.runs < kMinRuns || total < kMinTotalSeconds) {
    double s = once();
    t.best = std::min(t.best, s);
    total += s;
    ++t.runs;
  }
  return t;
}

double secondsSince(Clock::time_point t0) {
  return std::chrono::duration<double>(Clock::now() - t0).count();
}

struct Result {
  std::string path;
  size_t size = 0;
  std::string error;  // ours failed to load: no figures
  Timing load, save;
  bool identical = false;
  size_t peakHeap = 0;  // above what was in use before the input was copied
  size_t heldHeap = 0;  // still in use once the load returned: the drawing itself
  // Peer, seconds; negative when not measured.
  double peerLoad = -1, peerSave = -1;
  std::string peerError;
};

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot open " + path);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void measure(Result& r) {
  std::string bytes;
  try {
    bytes = readFile(r.path);
  } catch (const std::exception& e) {
    r.error = e.what();
    return;
  }
  r.size = bytes.size();

  // Peak heap: one load, counted from before its input copy, because the drawing
  // keeps the bytes it was read from.
  try {
    size_t before = g_heapNow;
    std::string copy = bytes;
    g_heapPeak = g_heapNow;
    OdDbDatabasePtr db = OdDbDatabase::readDxf(std::move(copy));
    r.peakHeap = g_heapPeak - before;
    r.heldHeap = g_heapNow - before;
  } catch (const std::exception& e) {
    r.error = e.what();
    return;
  }

  r.load = bestOf([&] {
    std::string copy = bytes;
    auto t0 = Clock::now();
    OdDbDatabasePtr db = OdDbDatabase::readDxf(std::move(copy));
    double s = secondsSince(t0);
    return s;  // the drawing is freed after the clock stopped
  });

  OdDbDatabasePtr db = OdDbDatabase::readDxf(bytes);
  r.identical = db->toDxf() == bytes;
  r.save = bestOf([&] {
    auto t0 = Clock::now();
    std::string out = db->toDxf();
    double s = secondsSince(t0);
    return s;
  });
}

// ---------------------------------------------------------------------------
// The peer's JSON: just enough of a reader for what ezdxf_peer.py prints (objects,
// strings, numbers).
struct Json {
  enum Kind { Null, Number, String, Object } kind = Null;
  double number = 0;
  std::string string;
  std::map<std::string, Json> object;

  const Json* get(const std::string& key) const {
    auto it = object.find(key);
    return it == object.end() ? nullptr : &it->second;
  }
};

class JsonReader {
public:
  explicit JsonReader(const std::string& text) : m_s(text) {}
  Json parse() {
    Json v = value();
    skipSpace();
    if (m_i != m_s.size()) fail("trailing characters");
    return v;
  }

private:
  [[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string("peer output: ") + what + " at offset " + std::to_string(m_i));
  }
  void skipSpace() {
    while (m_i < m_s.size() && std::isspace(static_cast<unsigned char>(m_s[m_i]))) ++m_i;
  }
  bool eat(char c) {
    skipSpace();
    if (m_i < m_s.size() && m_s[m_i] == c) {
      ++m_i;
      return true;
    }
    return false;
  }
  std::string str() {
    if (!eat('"')) fail("expected a string");
    std::string out;
    while (m_i < m_s.size() && m_s[m_i] != '"') {
      char c = m_s[m_i++];
      if (c != '\\') {
        out += c;
        continue;
      }
      if (m_i >= m_s.size()) fail("unfinished escape");
      char e = m_s[m_i++];
      switch (e) {
        case 'n': out += '\n'; break;
        case 't': out += '\t'; break;
        case 'r': out += '\r'; break;
        case 'b': out += '\b'; break;
        case 'f': out += '\f'; break;
        case 'u': {
          if (m_i + 4 > m_s.size()) fail("short \\u escape");
          unsigned cp = std::stoul(m_s.substr(m_i, 4), nullptr, 16);
          m_i += 4;
          // Paths and messages only: a code point is written as UTF-8, surrogate
          // pairs are not joined.
          if (cp < 0x80) {
            out += static_cast<char>(cp);
          } else if (cp < 0x800) {
            out += static_cast<char>(0xC0 | (cp >> 6));
            out += static_cast<char>(0x80 | (cp & 0x3F));
          } else {
            out += static_cast<char>(0xE0 | (cp >> 12));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
          }
          break;
        }
        default: out += e; break;  // \" \\ \/
      }
    }
    if (m_i >= m_s.size()) fail("unterminated string");
    ++m_i;
    return out;
  }
  Json value() {
    skipSpace();
    if (m_i >= m_s.size()) fail("unexpected end");
    Json v;
    char c = m_s[m_i];
    if (c == '{') {
      ++m_i;
      v.kind = Json::Object;
      if (eat('}')) return v;
      do {
        std::string key = str();
        if (!eat(':')) fail("expected ':'");
        v.object[key] = value();
      } while (eat(','));
      if (!eat('}')) fail("expected '}'");
    } else if (c == '"') {
      v.kind = Json::String;
      v.string = str();
    } else if (m_s.compare(m_i, 4, "null") == 0) {
      m_i += 4;
    } else {
      const char* begin = m_s.c_str() + m_i;
      char* end = nullptr;
      v.number = std::strtod(begin, &end);
      if (end == begin) fail("expected a value");
      v.kind = Json::Number;
      m_i += static_cast<size_t>(end - begin);
    }
    return v;
  }

  const std::string& m_s;
  size_t m_i = 0;
};

std::string shellQuote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// Runs the peer on every file and fills in its figures. Returns its version, or
// an empty string when it could not be run.
std::string runPeer(const std::string& command, std::vector<Result>& results) {
  std::string cmd = command;
  for (const Result& r : results) cmd += " " + shellQuote(r.path);
  FILE* pipe = popen(cmd.c_str(), "r");
  if (!pipe) {
    std::fprintf(stderr, "cannot run the peer: %s\n", cmd.c_str());
    return {};
  }
  std::string out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, pipe)) > 0) out.append(buf, n);
  int status = pclose(pipe);
  if (status != 0) {
    std::fprintf(stderr, "the peer exited with status %d\n", status);
    return {};
  }
  try {
    Json doc = JsonReader(out).parse();
    const Json* files = doc.get("files");
    if (!files) throw std::runtime_error("peer output: no \"files\"");
    for (Result& r : results) {
      const Json* f = files->get(r.path);
      if (!f) {
        r.peerError = "not measured";
      } else if (const Json* err = f->get("error")) {
        r.peerError = err->string;
      } else {
        const Json* load = f->get("load_s");
        const Json* save = f->get("save_s");
        if (load && load->kind == Json::Number) r.peerLoad = load->number;
        if (save && save->kind == Json::Number) r.peerSave = save->number;
      }
    }
    const Json* version = doc.get("ezdxf");
    return version ? "ezdxf " + version->string : "peer";
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return {};
  }
}

// ---------------------------------------------------------------------------
// Report.

std::string baseName(const std::string& path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string fmt(const char* f, double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, f, v);
  return buf;
}

std::string mbps(size_t size, double seconds) {
  return seconds > 0 ? fmt("%.1f", size / 1e6 / seconds) : "-";
}

// How many times the peer's time ours is; "-" when either is missing.
std::string ratio(double ours, double peer) {
  return ours > 0 && peer > 0 ? fmt("%.0fx", peer / ours) : "-";
}

void printTable(const std::vector<Result>& results, const std::string& peerName) {
  std::vector<std::vector<std::string>> rows;
  rows.push_back({"file", "size MB", "load MB/s", "peer load MB/s", "load ratio", "save MB/s",
                  "peer save MB/s", "save ratio", "peak mem/size", "identical"});
  for (const Result& r : results) {
    std::string name = baseName(r.path);
    if (name.size() > 44) name = name.substr(0, 41) + "...";
    if (!r.error.empty()) {
      rows.push_back({name, fmt("%.2f", r.size / 1e6), "error", "", "", "", "", "", "", ""});
      continue;
    }
    rows.push_back({name, fmt("%.2f", r.size / 1e6), mbps(r.size, r.load.best), mbps(r.size, r.peerLoad),
                    ratio(r.load.best, r.peerLoad), mbps(r.size, r.save.best), mbps(r.size, r.peerSave),
                    ratio(r.save.best, r.peerSave), fmt("%.2f", double(r.peakHeap) / double(r.size)),
                    r.identical ? "yes" : "no"});
  }
  std::vector<size_t> width(rows[0].size(), 0);
  for (const auto& row : rows)
    for (size_t c = 0; c < row.size(); ++c) width[c] = std::max(width[c], row[c].size());
  std::printf("\nPeer: %s. MB = 10^6 bytes. Ratio = ezdxf time / our time (goal >= 100x).\n"
              "Peak mem = heap in use at the peak of one load, input bytes included (goal < 4).\n\n",
              peerName.empty() ? "none" : peerName.c_str());
  for (size_t i = 0; i < rows.size(); ++i) {
    std::string line;
    for (size_t c = 0; c < rows[i].size(); ++c) {
      const std::string& cell = rows[i][c];
      std::string pad(width[c] - cell.size(), ' ');
      line += c == 0 ? cell + pad : "  " + pad + cell;  // names left, figures right
    }
    std::printf("%s\n", line.c_str());
    if (i == 0) std::printf("%s\n", std::string(line.size(), '-').c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string peer;
  std::vector<Result> results;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--peer" && i + 1 < argc) {
      peer = argv[++i];
    } else if (a.rfind("--", 0) == 0) {
      std::fprintf(stderr, "usage: dxf_bench [--peer \"COMMAND\"] FILE...\n");
      return 2;
    } else {
      results.push_back({});
      results.back().path = a;
    }
  }
  if (results.empty()) {
    std::fprintf(stderr, "usage: dxf_bench [--peer \"COMMAND\"] FILE...\n");
    return 2;
  }

  for (Result& r : results) {
    measure(r);
    if (!r.error.empty()) {
      std::printf("%s: %s\n", baseName(r.path).c_str(), r.error.c_str());
      continue;
    }
    std::printf("%s: %zu bytes; load best %.3f ms of %d; save best %.3f ms of %d; identical: %s; "
                "peak heap %.2f MB, held after load %.2f MB\n",
                baseName(r.path).c_str(), r.size, r.load.best * 1e3, r.load.runs, r.save.best * 1e3,
                r.save.runs, r.identical ? "yes" : "no", r.peakHeap / 1e6, r.heldHeap / 1e6);
    std::fflush(stdout);
  }

  std::string peerName;
  if (!peer.empty()) {
    std::printf("running the peer (%s) ...\n", peer.c_str());
    std::fflush(stdout);
    peerName = runPeer(peer, results);
    for (const Result& r : results) {
      if (!r.peerError.empty()) std::printf("peer on %s: %s\n", baseName(r.path).c_str(), r.peerError.c_str());
      else if (r.peerLoad > 0)
        std::printf("peer on %s: load best %.3f ms, save best %.3f ms (of 3)\n", baseName(r.path).c_str(),
                    r.peerLoad * 1e3, r.peerSave * 1e3);
    }
  }

  printTable(results, peerName);
  bool allIdentical = std::all_of(results.begin(), results.end(),
                                  [](const Result& r) { return r.error.empty() && r.identical; });
  return allIdentical ? 0 : 1;
}
