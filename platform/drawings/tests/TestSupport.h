// Helpers shared by the drawing database's tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "drawings/OdDbDatabase.h"

namespace testsupport {

// Whether the independent reader (ezdxf, with the system interpreter) is there.
inline bool haveEzdxf() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

inline std::string corpus(const char* name) { return std::string(CORPUS_DIR) + "/" + name; }

inline std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

// A drawing of the corpus; null when the corpus does not hold it.
inline OdDbDatabasePtr loadCorpus(const char* name) {
  const std::string path = corpus(name);
  return std::filesystem::exists(path) ? OdDbDatabase::readDxfFile(path) : OdDbDatabasePtr();
}

// A path in the test's temporary folder that no other run uses, ending in `suffix`.
inline std::string tempPath(const std::string& suffix) {
  return (std::filesystem::path(::testing::TempDir()) / (std::to_string(std::random_device()()) + suffix)).string();
}

// Runs one of the tests' checker scripts with the system interpreter.
struct ScriptRun {
  int status;
  std::string out, err;  // what it printed, and what it complained of
};
inline ScriptRun runScript(const char* script, const std::vector<std::string>& args) {
  const std::string out = tempPath("script.out"), err = tempPath("script.err");
  std::string command = std::string("/usr/bin/python3 '" TESTS_DIR "/") + script + "'";
  for (const std::string& a : args) command += " '" + a + "'";
  const int status = std::system((command + " >'" + out + "' 2>'" + err + "'").c_str());
  ScriptRun run{status, slurp(out), slurp(err)};
  std::filesystem::remove(out);
  std::filesystem::remove(err);
  return run;
}

// A layer record with its tags as a file of db's version spells them.
inline OdDbObjectId addLayer(OdDbDatabase& db, const OdString& name, int color) {
  auto layers = odOpen<OdDbSymbolTable>(db.getLayerTableId(), OdDb::kForWrite);
  OdSmartPtr<OdDbLayerTableRecord> rec = OdDbLayerTableRecord::createObject();
  rec->setDxfName("LAYER");
  db.addOdDbObject(rec.get(), layers->objectId());
  DxfTagList& t = rec->tagsForWrite();
  if (db.version() > DxfVersion::R12) {
    t.emplace_back(100, "AcDbSymbolTableRecord");
    t.emplace_back(100, "AcDbLayerTableRecord");
  }
  t.emplace_back(2, rec->encodeText(name));
  t.emplace_back(70, "0");
  t.emplace_back(62, std::to_string(color));
  t.emplace_back(6, "CONTINUOUS");
  return layers->add(rec.get());
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

// Corpus files a CAD program wrote (MANIFEST.tsv): the producer names a maintenance
// version and is none of the libraries and programs that write dimension blocks
// of their own. `withDimensions`: only those holding dimensions.
inline std::vector<std::string> referenceFiles(bool withDimensions = false) {
  std::ifstream in(std::string(CORPUS_DIR) + "/MANIFEST.tsv");
  auto split = [](const std::string& line) {
    std::vector<std::string> f;
    std::istringstream ls(line);
    for (std::string cell; std::getline(ls, cell, '\t');) f.push_back(cell);
    return f;
  };
  std::string line;
  std::getline(in, line);
  const std::vector<std::string> header = split(line);
  auto col = [&](const char* name) { return static_cast<size_t>(std::find(header.begin(), header.end(), name) - header.begin()); };
  const size_t fileCol = col("file"), hintCol = col("producer_hint"), dimsCol = col("dimension_total");
  std::vector<std::string> files;
  while (std::getline(in, line)) {
    const std::vector<std::string> f = split(line);
    if (f.size() <= std::max({fileCol, hintCol, dimsCol})) continue;
    std::string hint = f[hintCol];
    for (char& c : hint) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    bool other = false;
    for (const char* p : {"DXFRW", "DXFLIB", "QCAD", "REVIT", "EZDXF", "NETDXF"}) other |= hint.find(p) != hint.npos;
    const bool hasDims = !f[dimsCol].empty() && f[dimsCol] != "0";
    if (hint.find("$ACADMAINTVER") != hint.npos && !other && (hasDims || !withDimensions)) files.push_back(f[fileCol]);
  }
  return files;
}

}  // namespace testsupport
