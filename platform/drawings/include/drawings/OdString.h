// Wide string at the drawing-database boundary.
#pragma once

#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>

class OdString {
public:
  OdString() = default;
  OdString(const wchar_t* s) : m_s(s ? s : L"") {}
  OdString(std::wstring s) : m_s(std::move(s)) {}
  OdString(std::wstring_view s) : m_s(s) {}
  OdString(const wchar_t* s, size_t n) : m_s(s, n) {}

  // From UTF-8 (the encoding of every narrow literal and file name here).
  static OdString fromUtf8(std::string_view utf8);
  std::string toUtf8() const;

  static OdString format(const wchar_t* fmt, ...);
  static OdString formatV(const wchar_t* fmt, va_list args);

  const wchar_t* c_str() const { return m_s.c_str(); }
  operator const wchar_t*() const { return m_s.c_str(); }
  const std::wstring& str() const { return m_s; }
  std::wstring_view view() const { return m_s; }
  int getLength() const { return static_cast<int>(m_s.size()); }
  bool isEmpty() const { return m_s.empty(); }
  wchar_t getAt(int i) const { return m_s[static_cast<size_t>(i)]; }

  int compare(const OdString& o) const { return m_s.compare(o.m_s); }
  // Case-insensitive comparison as symbol names are compared (simple case folding).
  int iCompare(const OdString& o) const;
  OdString& makeUpper();
  OdString& makeLower();
  OdString left(int n) const { return OdString(m_s.substr(0, static_cast<size_t>(n))); }
  OdString mid(int i, int n = -1) const;
  int find(wchar_t c, int start = 0) const;
  int reverseFind(wchar_t c) const;

  OdString& operator+=(const OdString& o) { m_s += o.m_s; return *this; }
  OdString& operator+=(wchar_t c) { m_s += c; return *this; }
  friend OdString operator+(OdString a, const OdString& b) { return a += b; }
  friend bool operator==(const OdString& a, const OdString& b) { return a.m_s == b.m_s; }
  friend bool operator==(const OdString& a, const wchar_t* b) { return a.m_s == (b ? b : L""); }
  friend bool operator<(const OdString& a, const OdString& b) { return a.m_s < b.m_s; }

private:
  std::wstring m_s;
};

namespace odstr {
// Case folding used for symbol-name lookups; covers Latin, Greek and Cyrillic.
wchar_t foldCase(wchar_t c);
std::wstring folded(std::wstring_view s);
std::wstring widen(std::string_view utf8);
std::string narrow(std::wstring_view wide);
// Appends a code point, as a surrogate pair where wchar_t is 16 bits.
void appendCodePoint(std::wstring& out, char32_t cp);
}  // namespace odstr

template <>
struct std::hash<OdString> {
  size_t operator()(const OdString& s) const noexcept { return std::hash<std::wstring>()(s.str()); }
};
