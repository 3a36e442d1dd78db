// Basic types of the module: status values, the user-interface string and the
// check macros that log a failed precondition and leave the current step.
#pragma once

#include "drawings/OdString.h"
#include "host/HostTrace.h"

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// ---------------------------------------------------------------- status values

// Negative values are failures, so a caller can test the sign alone.
using VxResult = int32_t;

inline constexpr VxResult VX_OK = 0;
inline constexpr VxResult VX_FALSE = 1;  // nothing to do
inline constexpr VxResult VX_E_ABORT = static_cast<VxResult>(0x80004004u);  // cancelled by the user
inline constexpr VxResult VX_E_FAIL = static_cast<VxResult>(0x80004005u);
inline constexpr VxResult VX_E_INVALIDARG = static_cast<VxResult>(0x80070057u);

constexpr bool VX_SUCCEEDED(VxResult r) { return r >= 0; }
constexpr bool VX_FAILED(VxResult r) { return r < 0; }

// The customary names, which the module's code uses; left alone where a
// platform header already provides them with the same values.
#ifndef S_OK
#define S_OK VX_OK
#endif
#ifndef S_FALSE
#define S_FALSE VX_FALSE
#endif
#ifndef E_ABORT
#define E_ABORT VX_E_ABORT
#endif
#ifndef E_FAIL
#define E_FAIL VX_E_FAIL
#endif
#ifndef E_INVALIDARG
#define E_INVALIDARG VX_E_INVALIDARG
#endif
#ifndef SUCCEEDED
#define SUCCEEDED(r) VX_SUCCEEDED(r)
#endif
#ifndef FAILED
#define FAILED(r) VX_FAILED(r)
#endif

// ---------------------------------------------------------------- CXStringW

// The module's wide string. Positions and lengths are int, and out-of-range
// arguments are clamped rather than thrown on, as the dialog code expects of a
// user-interface string. Case rules do not depend on the C locale (Latin,
// Greek and Cyrillic letters fold), so names compare the same on every system.
// Formats follow hostFormatV: "%s" takes a wide string.
class CXStringW {
public:
  CXStringW() = default;
  CXStringW(const wchar_t* s) : m_s(s ? s : L"") {}
  CXStringW(std::wstring s) : m_s(std::move(s)) {}
  CXStringW(std::wstring_view s) : m_s(s) {}
  CXStringW(const OdString& s) : m_s(s.str()) {}
  CXStringW(wchar_t c, int repeat) : m_s(repeat > 0 ? static_cast<size_t>(repeat) : 0, c) {}

  static CXStringW FromUtf8(std::string_view utf8) { return CXStringW(odstr::widen(utf8)); }
  std::string ToUtf8() const { return odstr::narrow(m_s); }

  void Format(const wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    m_s = hostFormatV(fmt, args);
    va_end(args);
  }
  void FormatV(const wchar_t* fmt, va_list args) { m_s = hostFormatV(fmt, args); }
  void AppendFormat(const wchar_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    m_s += hostFormatV(fmt, args);
    va_end(args);
  }

  int GetLength() const { return static_cast<int>(m_s.size()); }
  bool IsEmpty() const { return m_s.empty(); }
  void Empty() { m_s.clear(); }
  wchar_t GetAt(int i) const { return m_s.at(static_cast<size_t>(i)); }
  const wchar_t* c_str() const { return m_s.c_str(); }
  operator const wchar_t*() const { return m_s.c_str(); }
  const std::wstring& str() const { return m_s; }

  // -1, 0 or 1 by code unit, as wcscmp orders.
  int Compare(const wchar_t* o) const { return sign(m_s.compare(o ? o : L"")); }
  int CompareNoCase(const wchar_t* o) const {
    const std::wstring_view b = o ? o : L"";
    const size_t n = m_s.size() < b.size() ? m_s.size() : b.size();
    for (size_t i = 0; i < n; ++i) {
      const wchar_t x = odstr::foldCase(m_s[i]), y = odstr::foldCase(b[i]);
      if (x != y) return x < y ? -1 : 1;
    }
    return m_s.size() == b.size() ? 0 : (m_s.size() < b.size() ? -1 : 1);
  }

  CXStringW& MakeUpper() {
    for (auto& c : m_s) c = odstr::foldCase(c);
    return *this;
  }
  CXStringW& MakeLower() {
    OdString s(m_s);
    m_s = s.makeLower().str();
    return *this;
  }

  CXStringW Left(int n) const { return m_s.substr(0, clamp(n)); }
  CXStringW Right(int n) const { return m_s.substr(m_s.size() - clamp(n)); }
  CXStringW Mid(int first, int count = -1) const {
    const size_t f = clamp(first);
    return m_s.substr(f, count < 0 ? std::wstring::npos : static_cast<size_t>(count));
  }

  int Find(wchar_t c, int start = 0) const { return pos(m_s.find(c, clamp(start))); }
  int Find(const wchar_t* sub, int start = 0) const { return sub ? pos(m_s.find(sub, clamp(start))) : -1; }
  int ReverseFind(wchar_t c) const { return pos(m_s.rfind(c)); }

  // Returns the number of replacements; the text put in is not searched again.
  int Replace(const wchar_t* from, const wchar_t* to) {
    const std::wstring_view f = from ? from : L"", t = to ? to : L"";
    if (f.empty()) return 0;
    int count = 0;
    for (size_t p = m_s.find(f); p != std::wstring::npos; p = m_s.find(f, p + t.size())) {
      m_s.replace(p, f.size(), t);
      ++count;
    }
    return count;
  }
  int Replace(wchar_t from, wchar_t to) {
    int count = 0;
    for (auto& c : m_s) {
      if (c == from) {
        c = to;
        ++count;
      }
    }
    return count;
  }

  CXStringW& TrimLeft() {
    m_s.erase(0, m_s.find_first_not_of(kSpace));
    return *this;
  }
  CXStringW& TrimRight() {
    const size_t last = m_s.find_last_not_of(kSpace);
    m_s.erase(last == std::wstring::npos ? 0 : last + 1);
    return *this;
  }
  CXStringW& Trim() { return TrimRight().TrimLeft(); }

  CXStringW& operator+=(const CXStringW& o) { m_s += o.m_s; return *this; }
  CXStringW& operator+=(const wchar_t* o) { m_s += o ? o : L""; return *this; }
  CXStringW& operator+=(wchar_t c) { m_s += c; return *this; }
  friend CXStringW operator+(CXStringW a, const CXStringW& b) { return a += b; }
  friend CXStringW operator+(CXStringW a, const wchar_t* b) { return a += b; }
  friend CXStringW operator+(CXStringW a, wchar_t b) { return a += b; }
  friend CXStringW operator+(const wchar_t* a, const CXStringW& b) { return CXStringW(a) += b; }

  bool operator==(const CXStringW& o) const { return m_s == o.m_s; }
  bool operator==(const wchar_t* o) const { return m_s == (o ? o : L""); }
  bool operator<(const CXStringW& o) const { return m_s < o.m_s; }

private:
  static constexpr const wchar_t* kSpace = L" \t\r\n\v\f\u00A0\u3000";
  static int sign(int v) { return v < 0 ? -1 : v > 0 ? 1 : 0; }
  static int pos(size_t p) { return p == std::wstring::npos ? -1 : static_cast<int>(p); }
  size_t clamp(int n) const {
    return n <= 0 ? 0 : static_cast<size_t>(n) > m_s.size() ? m_s.size() : static_cast<size_t>(n);
  }

  std::wstring m_s;
};

template <>
struct std::hash<CXStringW> {
  size_t operator()(const CXStringW& s) const noexcept { return std::hash<std::wstring>()(s.str()); }
};

// ---------------------------------------------------------------- check macros

// The source name a log line carries. The default is the file's own name
// without directory and extension; a file whose log name differs defines it
// before its first #include.
#ifndef VEX_SRCFILE
#define VEX_SRCFILE __FILE__
#endif

namespace vex::detail {

inline std::wstring srcName(const char* file) {
  std::string_view f = file ? file : "";
  const size_t slash = f.find_last_of("/\\");
  if (slash != std::string_view::npos) f.remove_prefix(slash + 1);
  const size_t dot = f.rfind('.');
  if (dot != std::string_view::npos && dot > 0) f.remove_suffix(f.size() - dot);
  return odstr::widen(f);
}

// "<text> [<source>:<line>]": the source and line are what lead back to the
// check, the text says what failed.
inline std::wstring located(std::wstring_view text, const char* file, int line) {
  std::wstring s(text);
  s += L" [";
  s += srcName(file);
  s += L':';
  s += std::to_wstring(line);
  s += L']';
  return s;
}

inline VxResult logError(VxResult status, const wchar_t* text, const char* file, int line) {
  hostTraceError(static_cast<uint32_t>(status), located(text ? text : L"", file, line).c_str());
  return status;
}

inline void logWarning(const char* file, int line, const wchar_t* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  const std::wstring text = hostFormatV(fmt, args);
  va_end(args);
  hostTraceWarning(located(text, file, line).c_str());
}

}  // namespace vex::detail

#define VEX_ARG1(a, ...) a
#define VEX_ARG2(a, b, ...) b
#define VEX_LOG_CHECK(status, text) ::vex::detail::logError((status), (text), VEX_SRCFILE, __LINE__)

// The expression is quoted with # on the macro's own parameter, so that it is
// logged as written (NULL stays NULL), not macro-expanded.
// Each macro is one statement ending in `else (void)0`: it needs its semicolon
// and is safe inside an unbraced if/else. do/while(0) would not do, because it
// would capture the jump of BREAKERRIF and CONTINUEERRIF.

// Logs `status` and returns it.
#define RETERRIF(expr, status)                                          \
  if (expr) {                                                           \
    return VEX_LOG_CHECK(status, L"RETERRIF marco, expr: " #expr L" "); \
  } else (void)0

// RETERRIF3(expr, status) logs and returns `status`; RETERRIF3(expr, status,
// result) logs `status` and returns `result`, for functions that do not
// return a status (a bool, a pointer, a count).
#define RETERRIF3(expr, ...)                                          \
  if (expr) {                                                         \
    const VxResult vexStatus_ = (VEX_ARG1(__VA_ARGS__, ~));           \
    VEX_LOG_CHECK(vexStatus_, L"RETERRIF3 marco, expr: " #expr L" "); \
    return VEX_ARG2(__VA_ARGS__, vexStatus_, ~);                      \
  } else (void)0

// The jumping checks log VX_E_FAIL: they have no status of their own.
#define RETERRIF3VOID(expr)                                              \
  if (expr) {                                                            \
    VEX_LOG_CHECK(VX_E_FAIL, L"RETERRIF3VOID marco, expr: " #expr L" "); \
    return;                                                              \
  } else (void)0

#define BREAKERRIF(expr)                                              \
  if (expr) {                                                         \
    VEX_LOG_CHECK(VX_E_FAIL, L"BREAKERRIF marco, expr: " #expr L" "); \
    break;                                                            \
  } else (void)0

#define CONTINUEERRIF(expr)                                              \
  if (expr) {                                                            \
    VEX_LOG_CHECK(VX_E_FAIL, L"CONTINUEERRIF marco, expr: " #expr L" "); \
    continue;                                                            \
  } else (void)0

// An expression: logs "ERROR(<status>) '<text> [<source>:<line>]'" and yields
// the status, so that `return LOGERR(E_FAIL, L"...");` reads naturally.
#define LOGERR(status, text) VEX_LOG_CHECK(status, text)

// printf-style: logs "WARNING '<text> [<source>:<line>]'".
#define pLOGWARN(...) ::vex::detail::logWarning(VEX_SRCFILE, __LINE__, __VA_ARGS__)
