#include "drawings/DxfCodec.h"

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr DxfVersion kOld = DxfVersion::R2000;
constexpr DxfVersion kUtf8 = DxfVersion::R2013;

bool hasRawByte(const OdString& s) {
  for (wchar_t c : s.view())
    if (c >= 0xDC00 && c <= 0xDCFF) return true;
  return false;
}

// These bytes are what a CAD program writes for this text; escapes that are
// written back in the file's own form say so in `reencoded`, and near-escapes
// are plain text.
TEST(DxfCodec, KnownAnswersBothWays) {
  const struct {
    const char* codePage;
    DxfVersion version;
    std::string bytes;
    std::wstring text;
    const char* reencoded = nullptr;  // null: the bytes themselves
  } cases[] = {
      {"ANSI_1251", kOld, "\xD0\xE0\xE7\xEC\xE5\xF0", L"Размер"},
      {"ANSI_936", kOld, "\xB1\xEA\xD7\xBC", L"标准"},
      {"ANSI_949", kOld, "\xC1\xD6\xBC\xAE", L"주석"},
      {"ANSI_932", kOld, "\x82\xA0", L"あ"},
      {"ANSI_950", kOld, "\xB3\x5C", L"許"},  // trail byte 0x5C is not a backslash
      {"ANSI_950", kOld, "\xB3\x5CU+2205", L"許U+2205"},
      {"dos850", DxfVersion::R12, "\x82", L"é"},
      {"ANSI_1252", kOld, "Ma\xDF" "e", L"Maße"},
      {"ANSI_1252", kOld, "\\U+2205", L"∅"},
      {"ANSI_1252", kOld, "D\\U+220545,6", L"D∅45,6"},
      {"ANSI_1251", kOld, "a\\U+2205b", L"a∅b"},  // an existing escape for a character 1251 lacks stays
      {"ANSI_1252", kOld, "\\U+0416", L"Ж"},
      {"ANSI_1252", kOld, "\\U+D83D\\U+DE00", L"\U0001F600"},
      {"ASCII", kOld, "caf\\U+00E9", L"café"},
      {"ANSI_1252", kOld, "a\\U+000Ab\\U+000D", L"a\nb\r"},
      {"ANSI_1252", kUtf8, "a\\U+000Ab", L"a\nb"},
      {"ANSI_1252", kUtf8, "\xE2\x88\x85 \xD0\x96", L"∅ Ж"},
      {"ANSI_936", kUtf8, "\xE6\xA0\x87\xE5\x87\x86", L"标准"},
      {"ANSI_1252", kUtf8, "\xF0\x9F\x98\x80", L"\U0001F600"},
      {"ANSI_1252", kOld, "", L""},
      {"ANSI_1252", kOld, "C:\\temp\\x", L"C:\\temp\\x"},
      {"ANSI_1251", kOld, "\\U+0416", L"Ж", "\xC6"},
      {"ANSI_1252", kUtf8, "\\U+2205", L"∅", "\xE2\x88\x85"},
      {"ANSI_1252", kOld, "\\U+220a", L"∊", "\\U+220A"},
      {"ANSI_1252", kOld, "\\M+5B1EA", L"标", "\\U+6807"},
      {"ANSI_936", kOld, "\\M+5B1EA", L"标", "\xB1\xEA"},
      {"ANSI_1252", kOld, "\\M+182A0", L"あ", "\\U+3042"},
      {"ANSI_1252", kOld, "\\M+3C1D6", L"주", "\\U+C8FC"},
      {"ANSI_1252", kOld, "\\M+2B35C", L"許", "\\U+8A31"},
      // Not escapes: kept as the text they are.
      {"ANSI_1252", kOld, "\\U+220", L"\\U+220"},
      {"ANSI_1252", kOld, "\\U+22G5", L"\\U+22G5"},
      {"ANSI_1252", kOld, "\\u+2205", L"\\u+2205"},
      {"ANSI_1252", kOld, "\\M+9B1EA", L"\\M+9B1EA"},
      {"ANSI_1252", kOld, "\\M+5FFFF", L"\\M+5FFFF"},
      // A lone surrogate is not a character; decoding it would also collide with raw bytes.
      {"ANSI_1252", kOld, "\\U+D800x", L"\\U+D800x"},
      {"ANSI_1252", kUtf8, "\\U+DC80", L"\\U+DC80"},
      {"ANSI_1252", kOld, "\\U+D83D\\U+0041", L"\\U+D83DA", "\\U+D83DA"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.codePage) + " " + c.bytes);
    DxfCodec codec = DxfCodec::make(c.codePage, c.version);
    EXPECT_EQ(codec.decode(c.bytes).str(), c.text);
    EXPECT_EQ(codec.encode(c.text), c.reencoded ? std::string(c.reencoded) : c.bytes);
  }
}

// Bytes that are not text in the file's encoding must survive a read and a write unchanged.
TEST(DxfCodec, UndecodableBytesRoundTrip) {
  const std::pair<const char*, DxfVersion> codecs[] = {
      {"ANSI_1252", kOld}, {"ANSI_936", kOld}, {"ANSI_950", kOld}, {"ASCII", kOld}, {"ANSI_1252", kUtf8}};
  const std::string samples[] = {
      "\x81\x8D\x90",          // holes in 1252
      "\xFF", "A\xC3",         // not UTF-8 / truncated
      "\xC0\xAF",              // overlong
      "\xED\xA0\x80",          // encoded surrogate
      "\xF4\x90\x80\x80",      // above U+10FFFF
      "\xE2\x88" "A",          // truncated in the middle
      "\x81\x20\x81",          // lead byte without a trail, twice
      "\xB3",                  // lead byte at the end
      "\xE9\\x\xFF",           // raw bytes around a plain backslash
      std::string("a\0b\rc\n", 6),  // control bytes a value cannot hold as characters
  };
  for (const auto& [page, version] : codecs) {
    DxfCodec codec = DxfCodec::make(page, version);
    for (const std::string& s : samples) {
      SCOPED_TRACE(std::string(page) + (codec.isUtf8() ? " utf8 " : " ") + s);
      EXPECT_EQ(codec.encode(codec.decode(s).view()), s);
    }
  }
  // Raw bytes do not merge with their neighbours into other characters on the way back.
  DxfCodec utf8 = DxfCodec::make("", kUtf8);
  EXPECT_EQ(utf8.decode("\xC3" "A").getLength(), 2);
  EXPECT_TRUE(hasRawByte(utf8.decode("\xC3")));
  EXPECT_TRUE(hasRawByte(utf8.decode("a\rb")));
}

// Every one-byte string, every two-byte string starting with a high byte, and random longer
// ones read and written back unchanged; and the page really decodes (a missing converter would
// pass the round trip by keeping every byte raw).
TEST(DxfCodec, EveryCodePageIsLossless) {
  const std::pair<const char*, DxfVersion> codecs[] = {
      {"ANSI_1250", kOld}, {"ANSI_1251", kOld}, {"ANSI_1252", kOld}, {"ANSI_1253", kOld}, {"ANSI_1254", kOld},
      {"ANSI_1255", kOld}, {"ANSI_1256", kOld}, {"ANSI_1257", kOld}, {"ANSI_1258", kOld}, {"ANSI_874", kOld},
      {"ANSI_932", kOld},  {"ANSI_936", kOld},  {"ANSI_949", kOld},  {"ANSI_950", kOld},  {"ANSI_1361", kOld},
      {"DOS850", kOld},    {"DOS866", kOld},    {"MACINTOSH", kOld}, {"ISO8859-7", kOld}, {"BIG5", kOld},
      {"GB2312", kOld},    {"KSC5601", kOld},   {"ASCII", kOld},     {"ANSI_1252", kUtf8}};
  std::mt19937 random(12345);
  const char alphabet[] = "\\U+M1A\r\x80\x81\x9F\xA1\xB3\x5C\xC1\xE0\xED\xEF\xFE\xFF";
  for (const auto& [page, version] : codecs) {
    DxfCodec codec = DxfCodec::make(page, version);
    SCOPED_TRACE(std::string(page) + (codec.isUtf8() ? " utf8" : ""));
    int failures = 0;
    int decodable = 0;
    auto check = [&](const std::string& s) {
      OdString text = codec.decode(s);
      if (codec.encode(text.view()) != s && ++failures <= 5) ADD_FAILURE() << "bytes " << testing::PrintToString(s);
      return !hasRawByte(text);
    };
    for (int a = 0; a < 256; ++a) check(std::string(1, static_cast<char>(a)));
    for (int a = 0x80; a < 256; ++a)
      for (int b = 0; b < 256; ++b) decodable += check({static_cast<char>(a), static_cast<char>(b)});
    for (int n = 0; n < 2000; ++n) {
      std::string s(random() % 12, ' ');
      for (char& c : s) c = alphabet[random() % (sizeof alphabet - 1)];
      if (s.find("\\U+") == std::string::npos && s.find("\\M+") == std::string::npos) check(s);
    }
    if (codec.isUtf8())
      EXPECT_EQ(decodable, 30 * 64);  // exactly the pairs C2-DF, 80-BF
    else if (std::string_view(page) == "ASCII")
      EXPECT_EQ(decodable, 0);
    else
      EXPECT_GT(decodable, 10000);
  }
}

// Characters a code page holds are written directly, the others escaped, per page.
TEST(DxfCodec, EncodeEscapesOnlyWhatThePageLacks) {
  const std::wstring text = L"é€Ж标";
  const std::pair<const char*, std::string> cases[] = {
      {"ANSI_1252", "\xE9\x80\\U+0416\\U+6807"},
      {"ANSI_1251", "\\U+00E9\x88\xC6\\U+6807"},
      {"ANSI_936", "\xA8\xA6\x80\xA7\xA8\xB1\xEA"},
      {"ASCII", "\\U+00E9\\U+20AC\\U+0416\\U+6807"},
  };
  for (const auto& [page, bytes] : cases) {
    SCOPED_TRACE(page);
    DxfCodec codec = DxfCodec::make(page, kOld);
    EXPECT_EQ(codec.encode(text), bytes);
    EXPECT_EQ(codec.decode(bytes).str(), text);
  }
}

TEST(DxfCodec, CodePageNameAndEncodingChoice) {
  struct Case { const char* header; DxfVersion version; const char* name; bool utf8; };
  const Case cases[] = {
      {"", kOld, "ANSI_1252", false},
      {"ansi_1251", DxfVersion::R14, "ANSI_1251", false},
      {" ANSI_1250 ", kOld, "ANSI_1250", false},
      {"dos850", DxfVersion::R12, "DOS850", false},
      {"UNDEFINED", DxfVersion::R12, "ANSI_1252", false},
      {"no-such-page", kOld, "ANSI_1252", false},
      {"ANSI_1252", DxfVersion::R2004, "ANSI_1252", false},
      {"ANSI_1252", DxfVersion::R2007, "ANSI_1252", true},
      {"ANSI_936", kUtf8, "ANSI_936", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.header);
    DxfCodec codec = DxfCodec::make(c.header, c.version);
    EXPECT_EQ(codec.codePageName(), c.name);
    EXPECT_EQ(codec.isUtf8(), c.utf8);
  }
}

// ---- Real files ----

struct Pair { int code; std::string value; };

// DXF ASCII is lines of group code and value; CR LF or LF.
std::vector<Pair> readPairs(const std::string& path) {
  std::vector<std::string> l = testsupport::lines(testsupport::slurp(path));
  for (std::string& s : l)
    if (!s.empty() && s.back() == '\r') s.pop_back();
  std::vector<Pair> pairs;
  for (size_t i = 0; i + 1 < l.size(); i += 2) pairs.push_back({std::stoi(l[i]), l[i + 1]});
  return pairs;
}

std::string headerValue(const std::vector<Pair>& pairs, std::string_view name) {
  for (size_t i = 0; i + 1 < pairs.size(); ++i)
    if (pairs[i].code == 9 && pairs[i].value == name) return pairs[i + 1].value;
  return {};
}

struct CorpusFile {
  const char* file;
  const wchar_t* someName;  // a non-ASCII name the file holds, or nullptr
};

class DxfCodecCorpus : public testing::TestWithParam<CorpusFile> {};

// Names read from real files are written back byte for byte, and read as the right characters.
TEST_P(DxfCodecCorpus, HeaderAndTableStringsRoundTrip) {
  const std::string path = testsupport::corpus(GetParam().file);
  if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " not found";
  std::vector<Pair> pairs = readPairs(path);
  ASSERT_FALSE(pairs.empty());
  // "AC1015" -> 1015, the enum's value; keeps this test independent of the version parser.
  std::string acadver = headerValue(pairs, "$ACADVER");
  ASSERT_EQ(acadver.rfind("AC", 0), 0u) << acadver;
  auto version = static_cast<DxfVersion>(std::stoi(acadver.substr(2)));
  DxfCodec codec = DxfCodec::make(headerValue(pairs, "$DWGCODEPAGE"), version);

  std::string section;
  int checked = 0;
  bool sawName = false;
  for (size_t i = 0; i < pairs.size(); ++i) {
    const Pair& p = pairs[i];
    if (p.code == 2 && i > 0 && pairs[i - 1].code == 0 && pairs[i - 1].value == "SECTION") section = p.value;
    if (section != "HEADER" && section != "TABLES") continue;
    if (p.code < 1 || p.code > 3) continue;
    OdString text = codec.decode(p.value);
    EXPECT_EQ(codec.encode(text.view()), p.value) << "line pair " << i;
    EXPECT_FALSE(hasRawByte(text)) << "undecoded byte in pair " << i << ": " << p.value;
    if (GetParam().someName && text == GetParam().someName) sawName = true;
    ++checked;
  }
  EXPECT_GT(checked, 20);
  if (GetParam().someName) {
    EXPECT_TRUE(sawName) << "name not decoded: " << OdString(GetParam().someName).toUtf8();
  }
}

INSTANTIATE_TEST_SUITE_P(Files, DxfCodecCorpus,
                         testing::Values(CorpusFile{"zamtmn__zcad___OPS.dxf", L"Оповещение"},            // ANSI_1251
                                         CorpusFile{"egghunters__dxf-viewer-examples__dxf_3.dxf", L"标准"},  // UTF-8, says 936
                                         CorpusFile{"dotoritos-kim__dxf-json__tc0-tc.dxf", L"주석"},       // UTF-8, says 949
                                         CorpusFile{"LibreDWG__libredwg__2000-entities-2d.dxf", nullptr}));  // ANSI_1250

}  // namespace
