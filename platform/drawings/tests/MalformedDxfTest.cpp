// Broken DXF input: every fault is reported as eBadDxfFile with the line (or byte
// offset) where it is, the group code and what was expected; the problems that
// real files have (duplicate handles, dangling owners) load with a warning and
// still write back byte for byte.
#include "drawings/OdDbDatabase.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const char* const kAscii2000 = CORPUS_DIR "/LibreDWG__libredwg__example_2000.dxf";  // CRLF, padded codes
const char* const kAsciiR12 = CORPUS_DIR "/LibreDWG__libredwg__example_r12.dxf";    // LF
const char* const kBinary2000 = CORPUS_DIR "/DomCR__ACadSharp__sample_AC1015_binary.dxf";

using testsupport::slurp;

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\r' || s.back() == '\n')) s.remove_suffix(1);
  return s;
}

// An ASCII file as its lines, each with its own line ending, so that a case can
// change a line and know its number (index + 1). Tags sit at even indices.
struct Lines {
  std::vector<std::string> l;
  std::string eol;

  explicit Lines(const std::string& bytes) {
    size_t pos = 0;
    while (pos < bytes.size()) {
      size_t nl = bytes.find('\n', pos);
      size_t end = nl == std::string::npos ? bytes.size() : nl + 1;
      l.push_back(bytes.substr(pos, end - pos));
      pos = end;
    }
    eol = l.at(0).size() > 1 && l[0][l[0].size() - 2] == '\r' ? "\r\n" : "\n";
  }
  std::string join(size_t upTo = SIZE_MAX) const {
    std::string s;
    for (size_t i = 0; i < l.size() && i < upTo; ++i) s += l[i];
    return s;
  }
  int code(size_t i) const { return std::stoi(std::string(trim(l.at(i)))); }
  std::string_view value(size_t i) const { return trim(l.at(i + 1)); }
  // Index of the first tag at or after `from` with this code (and value, when given).
  size_t find(int c, std::optional<std::string_view> v, size_t from = 0) const {
    for (size_t i = from + (from & 1); i + 1 < l.size(); i += 2)
      if (code(i) == c && (!v || value(i) == *v)) return i;
    throw std::logic_error("tag " + std::to_string(c) + " " + std::string(v.value_or("")) + " not in the file");
  }
  // Index of the last tag with this code and value before `before`.
  size_t findLast(int c, std::string_view v, size_t before) const {
    size_t found = SIZE_MAX;
    for (size_t i = 0; i + 1 < l.size() && i < before; i += 2)
      if (code(i) == c && value(i) == v) found = i;
    if (found == SIZE_MAX) throw std::logic_error("tag " + std::to_string(c) + " " + std::string(v) + " not in the file");
    return found;
  }
  // Index of a tag with this code in the chunk that starts at `chunk`.
  size_t inChunk(int c, size_t chunk) const {
    for (size_t i = chunk + 2; i + 1 < l.size() && code(i) != 0; i += 2)
      if (code(i) == c) return i;
    throw std::logic_error("group code " + std::to_string(c) + " not in the chunk at line " + std::to_string(chunk + 1));
  }
  // The 0 tag that starts the chunk after the one at `i`.
  size_t nextChunk(size_t i) const { return find(0, {}, i + 2); }
  void setValue(size_t i, const std::string& v) { l.at(i + 1) = v + eol; }
  void erase(size_t from, size_t to) { l.erase(l.begin() + from, l.begin() + to); }
  void insert(size_t at, const std::vector<const char*>& lines) {
    std::vector<std::string> add;
    for (const char* s : lines) add.push_back(s + eol);
    l.insert(l.begin() + at, add.begin(), add.end());
  }
  size_t section(const char* name) const { return find(2, name) - 2; }
};

// What a broken file must be rejected with.
struct Broken {
  std::string bytes;
  std::string where;  // "line 12" or "byte offset 40"
  std::vector<std::string> says;
};

std::string lineNo(size_t index) { return "line " + std::to_string(index + 1); }
std::string at(size_t offset) { return "byte offset " + std::to_string(offset); }

void expectRejected(const Broken& b) {
  try {
    OdDbDatabase::readDxf(b.bytes);
    ADD_FAILURE() << "accepted";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eBadDxfFile);
    std::string msg = e.what();
    SCOPED_TRACE(msg);
    // The place comes first and is not the prefix of a longer number.
    ASSERT_EQ(msg.compare(0, b.where.size(), b.where), 0);
    ASSERT_GT(msg.size(), b.where.size());
    EXPECT_TRUE(msg[b.where.size()] == ',' || msg[b.where.size()] == ':');
    for (const std::string& s : b.says) EXPECT_NE(msg.find(s), std::string::npos) << "missing: " << s;
  }
}

struct AsciiCase {
  std::string what;
  std::function<Broken(Lines)> make;
};

// The first group code line after `section` starts replaced by `line`.
AsciiCase badCode(const char* section, int code, std::string line, std::vector<std::string> says) {
  return {"group code line \"" + line + "\" in " + section, [=](Lines f) {
            size_t i = f.find(code, {}, f.section(section));
            f.l[i] = line + f.eol;
            return Broken{f.join(), lineNo(i), says};
          }};
}

// The value of the first tag with `code` after `section` starts replaced by `value`.
AsciiCase badValue(const char* section, int code, std::string value, std::string expected) {
  return {"value \"" + value + "\" for code " + std::to_string(code) + " in " + section, [=](Lines f) {
            size_t i = f.find(code, {}, f.section(section));
            f.setValue(i, value);
            return Broken{f.join(), lineNo(i + 1),
                          {"group code " + std::to_string(code), "expected " + expected + ", found \"" + value + "\""}};
          }};
}

// The ENDSEC of `section` left out, so the next section's start or EOF is what follows.
AsciiCase noEndsec(const char* section, std::vector<std::string> says) {
  return {std::string("no ENDSEC after ") + section, [=](Lines f) {
            size_t i = f.find(0, "ENDSEC", f.section(section));
            f.erase(i, i + 2);
            return Broken{f.join(), lineNo(i), says};
          }};
}

// The file cut before its first 0/`end`: what that tag closes is still open.
AsciiCase cutBefore(const char* end) {
  return {std::string("file ends before ") + end, [=](Lines f) {
            size_t i = f.find(0, end);
            return Broken{f.join(i), lineNo(i), {std::string("expected 0/") + end, "end of the file"}};
          }};
}

// `lines` put in as the first thing in `section`.
AsciiCase misplaced(const char* section, std::vector<const char*> lines, std::vector<std::string> says) {
  return {std::string(lines[1]) + " in " + section, [=](Lines f) {
            size_t i = f.section(section) + 4;
            f.insert(i, lines);
            return Broken{f.join(), lineNo(i), says};
          }};
}

// Each case breaks a valid file in one place; it works on any ASCII file with
// tables, blocks and entities, whatever their version.
const std::vector<AsciiCase>& asciiCases() {
  static const std::vector<AsciiCase> cases = {
      {"value line cut short at the end",
       [](Lines f) {
         size_t i = f.find(10, {}, f.section("ENTITIES"));
         return Broken{f.join(i + 1) + f.l[i + 1].substr(0, 2), lineNo(i + 1),
                       {"group code 10", "expected a value line ended by a line break"}};
       }},
      {"code line cut short at the end",
       [](Lines f) {
         size_t i = f.find(10, {}, f.section("ENTITIES"));
         return Broken{f.join(i) + std::string(trim(f.l[i]).substr(0, 1)), lineNo(i),
                       {"expected a group code line ended by a line break"}};
       }},
      {"file ends after a code line",
       [](Lines f) {
         size_t i = f.find(10, {}, f.section("ENTITIES"));
         return Broken{f.join(i + 1), lineNo(i + 1), {"group code 10", "expected a value line"}};
       }},
      {"file ends inside an entity",
       [](Lines f) {
         size_t i = f.find(10, {}, f.section("ENTITIES"));
         return Broken{f.join(i + 2), lineNo(i + 2), {"expected 0/ENDSEC", "end of the file"}};
       }},
      cutBefore("ENDTAB"), cutBefore("ENDBLK"), cutBefore("EOF"),
      badCode("ENTITIES", 10, "1O", {"expected a group code (an integer), found \"1O\""}),
      badCode("ENTITIES", 8, "", {"expected a group code (an integer), found \"\""}),
      badCode("BLOCKS", 8, "8 x", {"found \"8 x\""}),
      badCode("ENTITIES", 10, "1072", {"group code 1072", "expected a group code between 0 and 1071"}),
      badCode("TABLES", 70, "-1", {"group code -1", "between 0 and 1071"}),
      badValue("ENTITIES", 10, "abc", "a floating point number"),
      badValue("BLOCKS", 20, "1,5", "a floating point number"),
      badValue("ENTITIES", 40, "", "a floating point number"),
      badValue("TABLES", 70, "x", "an integer"),
      badValue("BLOCKS", 70, "1.5", "an integer"),
      badValue("ENTITIES", 70, "0x1F", "an integer"),
      badValue("TABLES", 70, "123456789012345678901", "an integer"),
      noEndsec("HEADER", {"group code 0 (\"SECTION\")", "expected 0/ENDSEC to close section HEADER"}),
      noEndsec("TABLES", {"group code 0 (\"SECTION\")", "expected 0/TABLE or 0/ENDSEC"}),
      noEndsec("BLOCKS", {"group code 0 (\"SECTION\")", "expected 0/BLOCK or 0/ENDSEC"}),
      noEndsec("ENTITIES", {"group code 0", "0/ENDSEC to close section ENTITIES"}),
      {"no ENDTAB after the first table",
       [](Lines f) {
         size_t t = f.find(0, "TABLE");
         std::string name(f.value(t + 2));
         size_t i = f.find(0, "ENDTAB");
         f.erase(i, i + 2);
         return Broken{f.join(), lineNo(i), {"group code 0 (\"TABLE\")", "expected 0/ENDTAB to close table " + name}};
       }},
      {"no ENDTAB after the last table",
       [](Lines f) {
         size_t i = f.find(0, "ENDSEC", f.section("TABLES")) - 2;
         f.erase(i, i + 2);
         return Broken{f.join(), lineNo(i), {"group code 0 (\"ENDSEC\")", "expected 0/ENDTAB"}};
       }},
      {"no ENDBLK",
       [](Lines f) {
         size_t b = f.find(0, "BLOCK");
         std::string name(f.value(f.inChunk(2, b)));
         size_t i = f.find(0, "ENDBLK");
         f.erase(i, f.nextChunk(i));
         return Broken{f.join(), lineNo(i), {"group code 0 (\"BLOCK\")", "expected 0/ENDBLK to close block " + name}};
       }},
      {"TABLE between sections",
       [](Lines f) {
         size_t i = f.find(0, "ENDSEC", f.section("TABLES")) + 2;
         f.insert(i, {"0", "TABLE", "2", "LAYER", "70", "0", "0", "ENDTAB"});
         return Broken{f.join(), lineNo(i), {"group code 0 (\"TABLE\")", "expected 0/SECTION or 0/EOF"}};
       }},
      misplaced("BLOCKS", {"0", "TABLE", "2", "LAYER", "70", "0", "0", "ENDTAB"},
                {"group code 0 (\"TABLE\")", "expected 0/BLOCK or 0/ENDSEC"}),
      misplaced("ENTITIES", {"0", "TABLE", "2", "LAYER", "70", "0", "0", "ENDTAB"},
                {"group code 0 (\"TABLE\")", "section ENTITIES"}),
      misplaced("ENTITIES", {"0", "ENDBLK", "8", "0"}, {"group code 0 (\"ENDBLK\")", "section ENTITIES"}),
      misplaced("TABLES", {"0", "LINE", "8", "0"}, {"group code 0 (\"LINE\")", "expected 0/TABLE or 0/ENDSEC"}),
      {"section without a name",
       [](Lines f) {
         size_t i = f.section("ENTITIES");
         f.l[i + 2] = "3" + f.eol;
         return Broken{f.join(), lineNo(i), {"group code 0 (\"SECTION\")", "expected a section name (group code 2)"}};
       }},
      {"text before the first SECTION",
       [](Lines f) {
         f.insert(0, {"garbage"});
         return Broken{f.join(), lineNo(0), {"expected a group code (an integer), found \"garbage\""}};
       }},
      {"a tag before the first SECTION",
       [](Lines f) {
         f.insert(0, {"1", "hello"});
         return Broken{f.join(), lineNo(0), {"group code 1", "expected 0/SECTION"}};
       }},
      {"an entity before the first SECTION",
       [](Lines f) {
         f.insert(0, {"0", "LINE", "8", "0"});
         return Broken{f.join(), lineNo(0), {"group code 0 (\"LINE\")", "expected 0/SECTION"}};
       }},
      {"unknown version",
       [](Lines f) {
         size_t i = f.find(9, "$ACADVER");
         f.setValue(i + 2, "AC9999");
         return Broken{f.join(), lineNo(i + 3), {"group code 1", "AC9999"}};
       }},
  };
  return cases;
}

TEST(MalformedDxf, AsciiBrokenManyWays) {
  for (const char* path : {kAscii2000, kAsciiR12}) {
    const std::string bytes = slurp(path);
    const Lines file(bytes);
    // The cases must break a file that is fine as it is.
    ASSERT_NO_THROW(OdDbDatabase::readDxf(bytes)) << path;
    for (const AsciiCase& c : asciiCases()) {
      SCOPED_TRACE(path + (": " + c.what));
      expectRejected(c.make(file));
    }
  }
}

TEST(MalformedDxf, BinaryBrokenManyWays) {
  const std::string b = slurp(kBinary2000);
  ASSERT_NO_THROW(OdDbDatabase::readDxf(b));
  const size_t n = b.size();
  // Two-byte group codes: $INSBASE is followed by code 10 and eight bytes of double,
  // $ACADMAINTVER by code 70 and two bytes.
  const size_t p10 = b.find(std::string("$INSBASE\0", 9)) + 9;
  ASSERT_EQ(b.substr(p10, 2), std::string("\x0a\x00", 2));
  const size_t p70 = b.find(std::string("$ACADMAINTVER\0", 14)) + 14;
  ASSERT_EQ(b.substr(p70, 2), std::string("\x46\x00", 2));
  const size_t acadver = b.find("$ACADVER");
  const size_t version = b.find("AC1015");
  ASSERT_EQ(b.substr(n - 15), std::string("\0\0ENDSEC\0\0\0EOF\0", 15));

  auto with = [&](size_t pos, std::string_view bytes) {
    std::string s = b;
    s.replace(pos, bytes.size(), bytes);
    return s;
  };
  const Broken cases[] = {
      {b.substr(0, p10 + 2 + 3), at(p10 + 2), {"group code 10", "expected 8 value bytes"}},
      {b.substr(0, p70 + 2 + 1), at(p70 + 2), {"group code 70", "expected 2 value bytes"}},
      {b.substr(0, p10 + 1), at(p10), {"expected a two-byte group code"}},
      {with(p10, std::string("\x30\x04", 2)), at(p10), {"group code 1072", "expected a group code between 0 and 1071"}},
      {b.substr(0, acadver + 4), at(acadver), {"group code 9", "expected a zero-terminated string"}},
      {b.substr(0, n - 1), at(n - 4), {"group code 0", "expected a zero-terminated string"}},
      {b.substr(0, n - 6), at(n - 6), {"expected 0/EOF", "end of the file"}},
      {b.substr(0, n - 15) + b.substr(n - 6), at(n - 15), {"(\"EOF\")", "0/ENDSEC to close section OBJECTS"}},
      {b.substr(0, 22) + std::string("\x01\x00hello\0", 8) + b.substr(22), at(22), {"group code 1", "expected 0/SECTION"}},
      {with(version, "AC9999"), at(version), {"group code 1", "AC9999"}},
  };
  for (const Broken& c : cases) {
    SCOPED_TRACE(c.where + " " + c.says.front());
    expectRejected(c);
  }
}

// Files with no drawing in them, and line endings the reader does not take.
TEST(MalformedDxf, EmptyAndDegenerateFiles) {
  const std::string sentinel = slurp(kBinary2000).substr(0, 22);  // what marks a binary file
  std::string crOnly = slurp(kAsciiR12);
  std::replace(crOnly.begin(), crOnly.end(), '\n', '\r');
  const Broken cases[] = {
      {"", "line 1", {"expected 0/SECTION", "end of the file"}},
      {"\n\n", "line 1", {"expected a group code (an integer), found \"\""}},
      {"0\nEOF\n", "line 1", {"group code 0 (\"EOF\")", "expected 0/SECTION"}},
      {"999\nnothing here\n0\nEOF\n", "line 3", {"group code 0 (\"EOF\")", "expected 0/SECTION"}},
      {"999\nnothing here\n", "line 3", {"expected 0/SECTION", "end of the file"}},
      {crOnly, "line 1", {"line break"}},
      {sentinel, "byte offset 22", {"expected 0/SECTION", "end of the file"}},
      {sentinel + std::string("\0\0EOF\0", 6), "byte offset 22", {"(\"EOF\")", "expected 0/SECTION"}},
  };
  for (const Broken& c : cases) {
    SCOPED_TRACE(c.bytes.substr(0, 30));
    expectRejected(c);
  }
  // The smallest drawing there is still loads: one empty section is enough.
  for (std::string ok : {"0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n", "0\r\nSECTION\r\n2\r\nENTITIES\r\n0\r\nENDSEC\r\n0\r\nEOF"}) {
    OdDbDatabasePtr db = OdDbDatabase::readDxf(ok);
    EXPECT_EQ(db->toDxf(), ok);
  }
}

struct ToleratedCase {
  const char* what;
  // Changes the file and returns the line the new warning must name ("" when no warning) and
  // a text it must contain.
  std::function<std::pair<std::string, std::string>(Lines&)> change;
};

// Real files have these problems: the drawing loads, says where, and writes back unchanged.
TEST(MalformedDxf, ToleratedProblemsWarnAndRoundTrip) {
  const ToleratedCase cases[] = {
      {"entity reuses the handle of the one before it",
       [](Lines& f) {
         size_t e1 = f.section("ENTITIES") + 4;
         size_t e2 = f.nextChunk(e1);
         std::string h(f.value(f.inChunk(5, e1)));
         f.setValue(f.inChunk(5, e2), h);
         return std::pair(lineNo(e2) + ":", "handle " + h + " of " + std::string(f.value(e2)) +
                                               " is already used by " + std::string(f.value(e1)) + " at " + lineNo(e1));
       }},
      {"first block reuses the handle of a layer",
       [](Lines& f) {
         size_t layer = f.find(0, "LAYER", f.find(2, "LAYER"));
         std::string h(f.value(f.inChunk(5, layer)));
         size_t blk = f.find(0, "BLOCK");
         f.setValue(f.inChunk(5, blk), h);
         return std::pair(lineNo(blk) + ":", "handle " + h + " of BLOCK is already used by LAYER at " + lineNo(layer));
       }},
      {"entity owned by a handle nothing has",
       [](Lines& f) {
         size_t e = f.section("ENTITIES") + 4;
         f.setValue(f.inChunk(330, e), "FFFFFF");
         return std::pair(lineNo(e) + ":", "owner FFFFFF of " + std::string(f.value(e)) + " does not exist");
       }},
      {"block record missing",
       [](Lines& f) {
         size_t blk = f.findLast(0, "BLOCK", f.section("ENTITIES"));
         size_t owner = f.inChunk(330, blk);
         f.erase(owner, owner + 2);
         f.setValue(f.inChunk(2, blk), "NO_RECORD");
         return std::pair(lineNo(blk) + ":", std::string("block NO_RECORD has no block record"));
       }},
      {"block defined twice",
       [](Lines& f) {
         size_t blk = f.findLast(0, "BLOCK", f.section("ENTITIES"));
         std::string name(f.value(f.inChunk(2, blk)));
         size_t end = f.nextChunk(f.find(0, "ENDBLK", blk));
         // The copy has no handles, so that they do not add warnings of their own.
         std::vector<std::string> copy;
         for (size_t i = blk; i < end; i += 2)
           if (f.code(i) != 5) copy.insert(copy.end(), {f.l[i], f.l[i + 1]});
         f.l.insert(f.l.begin() + end, copy.begin(), copy.end());
         return std::pair(lineNo(end) + ":", "block " + name + " is defined a second time");
       }},
      {"comment before the first SECTION",
       [](Lines& f) {
         f.insert(0, {"999", "written by hand"});
         return std::pair(std::string(), std::string());
       }},
  };
  for (const char* path : {kAscii2000, kAsciiR12}) {
    const std::string bytes = slurp(path);
    const Lines file(bytes);
    const std::vector<std::string> before = OdDbDatabase::readDxf(bytes)->loadWarnings();
    for (const ToleratedCase& c : cases) {
      SCOPED_TRACE(std::string(path) + ": " + c.what);
      Lines f = file;
      std::pair<std::string, std::string> expected;
      try {
        expected = c.change(f);
      } catch (const std::logic_error& e) {
        // R12 files have no owners; every case applies to the R2000 file.
        if (path == kAscii2000) ADD_FAILURE() << e.what();
        continue;
      }
      const std::string changed = f.join();
      OdDbDatabasePtr db;
      ASSERT_NO_THROW(db = OdDbDatabase::readDxf(changed));
      std::vector<std::string> added;
      for (const std::string& w : db->loadWarnings())
        if (std::find(before.begin(), before.end(), w) == before.end()) added.push_back(w);
      // Every new warning is about the changed place, and one says what is wrong there.
      EXPECT_EQ(added.empty(), expected.first.empty()) << ::testing::PrintToString(added);
      for (const std::string& w : added) EXPECT_EQ(w.rfind(expected.first, 0), 0u) << w;
      if (!expected.first.empty()) {
        EXPECT_TRUE(std::any_of(added.begin(), added.end(),
                                [&](const std::string& w) { return w.find(expected.second) != std::string::npos; }))
            << ::testing::PrintToString(added) << "\nwanted: " << expected.second;
      }
      EXPECT_TRUE(db->toDxf() == changed);
    }
  }
}

}  // namespace
