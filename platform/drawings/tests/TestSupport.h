// Helpers shared by the drawing database's tests.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace testsupport {

inline std::string corpus(const char* name) { return std::string(CORPUS_DIR) + "/" + name; }

inline std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

inline std::vector<std::string> lines(const std::string& s) {
  std::vector<std::string> out;
  std::istringstream in(s);
  for (std::string l; std::getline(in, l);) out.push_back(l);
  return out;
}

// The lines of `b` between the longest common start and end with `a`: what an
// edit in one place changed or added.
inline std::vector<std::string> changedRegion(const std::string& a, const std::string& b) {
  auto la = lines(a), lb = lines(b);
  size_t p = 0;
  while (p < la.size() && p < lb.size() && la[p] == lb[p]) ++p;
  size_t q = 0;
  while (q < la.size() - p && q < lb.size() - p && la[la.size() - 1 - q] == lb[lb.size() - 1 - q]) ++q;
  return std::vector<std::string>(lb.begin() + static_cast<long>(p), lb.end() - static_cast<long>(q));
}

}  // namespace testsupport
