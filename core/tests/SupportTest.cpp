#include "vexmap.h"
#include "vextempl.h"
#include "vextypes.h"

#include <gtest/gtest.h>

namespace {

struct Probe { std::wstring outcome; int line = 0; };

std::wstring hex(VxResult r) {
  CXStringW s;
  s.Format(L"%X", static_cast<uint32_t>(r));
  return s.str();
}

struct Entity {
  const void* db;
  const void* database() const { return db; }
};

// One function per macro; `line = __LINE__` shares the macro's line.
Probe retErr(bool fail) {
  int line = 0;
  auto f = [&](const void* pBase) -> VxResult { line = __LINE__; RETERRIF(!pBase, E_INVALIDARG); return S_OK; };
  return {hex(f(fail ? nullptr : &line)), line};
}
Probe retErr3(bool fail) {
  int line = 0;
  auto f = [&](const void* p) -> VxResult { line = __LINE__; RETERRIF3(p == NULL, E_FAIL); return S_FALSE; };
  return {hex(f(fail ? nullptr : &line)), line};
}
Probe retErr3Result(bool fail) {
  int line = 0;
  Entity e{fail ? nullptr : &line};
  auto f = [&](const Entity* p) -> bool { line = __LINE__; RETERRIF3(!p || !p->database(), E_ABORT, false); return true; };
  return {f(&e) ? L"true" : L"false", line};
}
Probe retVoid(bool fail) {
  Probe r;
  auto f = [&](const void* pStyle) { r.line = __LINE__; RETERRIF3VOID(!pStyle); r.outcome = L"listed"; };
  f(fail ? nullptr : &r);
  return r;
}
Probe loop(bool fail) {
  Probe r;
  int sum = 0;
  for (int v : {1, fail ? 0 : 2, 4, fail ? -1 : 8, 16}) { r.line = __LINE__; CONTINUEERRIF(v == 0); BREAKERRIF(v < 0); sum += v; }
  r.outcome = std::to_wstring(sum);
  return r;
}
#undef VEX_SRCFILE
#define VEX_SRCFILE "dlgnew"
Probe logs(bool fail) {
  if (!fail) return {L"0", 0};
  int line = __LINE__; VxResult r = LOGERR(E_ABORT, CXStringW(L"Cloning error")); pLOGWARN(L"%s, %d%%", L"Стиль", 5);
  return {hex(r), line};
}
#undef VEX_SRCFILE
#define VEX_SRCFILE __FILE__

class Traced : public ::testing::Test {
protected:
  void SetUp() override { hostTraceSetSink([this](const std::wstring& l) { lines.push_back(l); }); }
  void TearDown() override { hostTraceSetSink(nullptr); }
  std::vector<std::wstring> lines;
};

TEST_F(Traced, EachCheckMacroLogsAndActs) {
  struct Case {
    Probe (*run)(bool);
    const wchar_t* failOutcome;
    const wchar_t* passOutcome;
    std::vector<std::wstring> logs;  // "@" stands for the macro's line
  };
  const std::wstring e = L"ERROR(80004005) '";
  const Case cases[] = {
      {retErr, L"80070057", L"0", {L"ERROR(80070057) 'RETERRIF marco, expr: !pBase  [SupportTest:@]'"}},
      // NULL is logged as written, not macro-expanded.
      {retErr3, L"80004005", L"1", {e + L"RETERRIF3 marco, expr: p == NULL  [SupportTest:@]'"}},
      {retErr3Result, L"false", L"true",
       {L"ERROR(80004004) 'RETERRIF3 marco, expr: !p || !p->database()  [SupportTest:@]'"}},
      {retVoid, L"", L"listed", {e + L"RETERRIF3VOID marco, expr: !pStyle  [SupportTest:@]'"}},
      {loop, L"5", L"31",
       {e + L"CONTINUEERRIF marco, expr: v == 0  [SupportTest:@]'", e + L"BREAKERRIF marco, expr: v < 0  [SupportTest:@]'"}},
      {logs, L"80004004", L"0", {L"ERROR(80004004) 'Cloning error [dlgnew:@]'", L"WARNING 'Стиль, 5% [dlgnew:@]'"}},
  };
  for (const Case& c : cases) {
    lines.clear();
    EXPECT_EQ(c.run(false).outcome, c.passOutcome);
    EXPECT_TRUE(lines.empty()) << "a passing check logged: " << CXStringW(lines.at(0)).ToUtf8();
    lines.clear();
    const Probe p = c.run(true);
    EXPECT_EQ(p.outcome, c.failOutcome) << CXStringW(c.logs[0]).ToUtf8();
    std::vector<std::wstring> want = c.logs;
    for (auto& w : want) w.replace(w.find(L'@'), 1, std::to_wstring(p.line));
    EXPECT_EQ(lines, want);
  }
}

// Guards against a macro form that swallows or steals the `else` of the caller.
TEST_F(Traced, CheckInsideUnbracedIfElse) {
  auto f = [](bool check, bool fail) -> VxResult {
    if (check)
      RETERRIF(fail, E_FAIL);
    else
      return S_FALSE;
    return S_OK;
  };
  EXPECT_EQ(f(false, true), S_FALSE);
  EXPECT_EQ(f(true, false), S_OK);
  EXPECT_EQ(f(true, true), E_FAIL);
  EXPECT_EQ(lines.size(), 1u);
}

TEST(SupportSource, ShortNameOfSourceFile) {
  const std::pair<const char*, const wchar_t*> cases[] = {
      {"/src/dds/dds.cpp", L"dds"}, {"C:\\vex\\dlgnew.cpp", L"dlgnew"}, {"a.v2/wndpreview", L"wndpreview"}};
  for (const auto& [file, name] : cases) EXPECT_EQ(vex::detail::srcName(file), name) << file;
}

CXStringW fmt(const wchar_t* f, ...) {
  va_list a;
  va_start(a, f);
  CXStringW s;
  s.FormatV(f, a);
  va_end(a);
  return s;
}

TEST(CXStringW, FormatReadsWideStringsAsTheHostPlatformDoes) {
  const std::pair<CXStringW, const wchar_t*> cases[] = {
      {fmt(L"%s$%d", L"Standard", 2), L"Standard$2"},
      {fmt(L"%X|%x", 0x80004005u, 255), L"80004005|ff"},
      {fmt(L"%.4f|%g", 0.18, 2.5), L"0.1800|2.5"},
      {fmt(L"%ls|%s|%c%c", L"a", L"Стиль", L'Ж', L'x'), L"a|Стиль|Жx"},
      {fmt(L"%-6s|%5.2s|%*s|", L"ab", L"abc", 3, L"x"), L"ab    |   ab|  x|"},
      {fmt(L"%S/%hs/%C", "narrow", "too", 'c'), L"narrow/too/c"},
      {fmt(L"100%% %s %I64d", L"done", 1LL << 40), L"100% done 1099511627776"},
      {fmt(L"trailing %"), L"trailing %"},
  };
  for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}

TEST(CXStringW, FormatOutputLongerThanAnyFirstBuffer) {
  const std::wstring body(3000, L'ё');
  CXStringW s;
  s.Format(L"<%s>", body.c_str());
  s.AppendFormat(L"%d", 7);
  EXPECT_EQ(s.str(), L"<" + body + L">7");
}

TEST(CXStringW, CompareNoCaseFoldsCyrillicAndLatin) {
  const std::tuple<const wchar_t*, const wchar_t*, int> cases[] = {
      {L"Размер стрелки", L"РАЗМЕР СТРЕЛКИ", 0}, {L"ёлка", L"ЁЛКА", 0}, {L"Standard", L"sTANDARD", 0},
      {L"а", L"Б", -1}, {L"Я", L"ю", 1}, {L"abc", L"ABCD", -1}, {L"", nullptr, 0},
  };
  for (const auto& [a, b, r] : cases) EXPECT_EQ(CXStringW(a).CompareNoCase(b), r) << CXStringW(a).ToUtf8();
  EXPECT_EQ(CXStringW(L"a").Compare(L"A"), 1);
  EXPECT_EQ(CXStringW(L"Стиль Ё q").MakeUpper(), L"СТИЛЬ Ё Q");
  EXPECT_EQ(CXStringW(L"СТИЛЬ Ё Q").MakeLower(), L"стиль ё q");
}

TEST(CXStringW, EditingClampsPositionsAndDoesNotRescanInsertions) {
  const CXStringW s(L"Standard$2");
  CXStringW r(L"a.a.");
  const int replaced = r.Replace(L"a", L"aa") + r.Replace(L'.', L',') + r.Replace(L"", L"x");
  const std::pair<CXStringW, const wchar_t*> cases[] = {
      {s.Left(-1), L""}, {s.Left(99), s},     {s.Right(2), L"$2"}, {s.Right(99), s},
      {s.Mid(1, 3), L"tan"}, {s.Mid(99), L""}, {r, L"aa,aa,"},
      {CXStringW(L" \t Стиль 1 \r\n").Trim(), L"Стиль 1"}, {CXStringW(L"  ").Trim(), L""},
  };
  for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
  EXPECT_EQ(replaced, 4);
  EXPECT_EQ(std::vector<int>({s.Find(L'$'), s.Find(L"a", 3), s.Find(L"x"), s.ReverseFind(L'a')}),
            std::vector<int>({8, 5, -1, 5}));
}

TEST(CXStringW, Utf8RoundTripAndMapKey) {
  const std::string utf8 = "Стиль €\xF0\x9D\x84\x9E";
  const CXStringW s = CXStringW::FromUtf8(utf8);
  EXPECT_EQ(s.GetLength(), sizeof(wchar_t) == 4 ? 8 : 9);
  EXPECT_EQ(s.ToUtf8(), utf8);
  VexMap<CXStringW, VexArray<int>> m;
  m[s].push_back(1);
  m[CXStringW(L"Стиль ") + L"€" + CXStringW(std::wstring(s.Right(sizeof(wchar_t) == 4 ? 1 : 2)))].push_back(2);
  EXPECT_EQ(m.size(), 1u);
  EXPECT_EQ(m[s].size(), 2u);
}

}  // namespace
