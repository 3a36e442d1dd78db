#include "drawings/OdString.h"

#include <cwchar>
#include <algorithm>
#include <vector>

namespace odstr {

void appendCodePoint(std::wstring& out, char32_t cp) {
  if constexpr (sizeof(wchar_t) == 2) {
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out += static_cast<wchar_t>(0xD800 + (cp >> 10));
      out += static_cast<wchar_t>(0xDC00 + (cp & 0x3FF));
      return;
    }
  }
  out += static_cast<wchar_t>(cp);
}

std::wstring widen(std::string_view s) {
  std::wstring out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
    if (extra < 0 || i + static_cast<size_t>(extra) >= s.size() + (extra == 0 ? 1 : 0)) {
      // Not UTF-8: keep the byte as the code point of the same value (Latin-1),
      // so that nothing is lost on the way back.
      out += static_cast<wchar_t>(c);
      ++i;
      continue;
    }
    char32_t cp = extra == 0 ? c : extra == 1 ? (c & 0x1F) : extra == 2 ? (c & 0x0F) : (c & 0x07);
    bool ok = true;
    for (int k = 1; k <= extra; ++k) {
      unsigned char cc = static_cast<unsigned char>(s[i + static_cast<size_t>(k)]);
      if ((cc & 0xC0) != 0x80) { ok = false; break; }
      cp = (cp << 6) | (cc & 0x3F);
    }
    if (!ok) {
      out += static_cast<wchar_t>(c);
      ++i;
      continue;
    }
    appendCodePoint(out, cp);
    i += static_cast<size_t>(extra) + 1;
  }
  return out;
}

std::string narrow(std::wstring_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    char32_t cp = static_cast<char32_t>(s[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < s.size()) {
        cp = 0x10000 + ((cp - 0xD800) << 10) + (static_cast<char32_t>(s[i + 1]) - 0xDC00);
        ++i;
      }
    }
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (cp >> 18));
      out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

wchar_t foldCase(wchar_t c) {
  // Independent of the C locale, so that lookups behave the same everywhere.
  if (c < 0x80) return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
  if ((c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x430 && c <= 0x44F) ||
      (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) || (c >= 0xFF41 && c <= 0xFF5A))
    return static_cast<wchar_t>(c - 0x20);
  if (c >= 0x450 && c <= 0x45F) return static_cast<wchar_t>(c - 0x50);
  if (((c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177) || (c >= 0x460 && c <= 0x4BF)) && (c & 1))
    return static_cast<wchar_t>(c - 1);
  if (((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) && !(c & 1)) return static_cast<wchar_t>(c - 1);
  return c;
}

std::wstring folded(std::wstring_view s) {
  std::wstring r(s);
  for (auto& c : r) c = foldCase(c);
  return r;
}

}  // namespace odstr

OdString OdString::fromUtf8(std::string_view utf8) { return OdString(odstr::widen(utf8)); }

std::string OdString::toUtf8() const { return odstr::narrow(m_s); }

OdString OdString::format(const wchar_t* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  OdString r = formatV(fmt, args);
  va_end(args);
  return r;
}

OdString OdString::formatV(const wchar_t* fmt, va_list args) {
  std::vector<wchar_t> buf(256);
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    int n = std::vswprintf(buf.data(), buf.size(), fmt, copy);
    va_end(copy);
    if (n >= 0 && static_cast<size_t>(n) < buf.size()) return OdString(buf.data(), static_cast<size_t>(n));
    if (buf.size() > (1u << 24)) return OdString();  // a malformed format string
    buf.resize(buf.size() * 4);
  }
}

int OdString::iCompare(const OdString& o) const {
  size_t n = std::min(m_s.size(), o.m_s.size());
  for (size_t i = 0; i < n; ++i) {
    wchar_t a = odstr::foldCase(m_s[i]), b = odstr::foldCase(o.m_s[i]);
    if (a != b) return a < b ? -1 : 1;
  }
  return m_s.size() == o.m_s.size() ? 0 : (m_s.size() < o.m_s.size() ? -1 : 1);
}

OdString& OdString::makeUpper() {
  for (auto& c : m_s) c = odstr::foldCase(c);
  return *this;
}

OdString& OdString::makeLower() {
  for (auto& c : m_s) {
    wchar_t u = c;
    if (u < 0x80) { if (u >= L'A' && u <= L'Z') c = static_cast<wchar_t>(u + 32); continue; }
    // The inverse of foldCase over the same ranges.
    for (wchar_t cand : {static_cast<wchar_t>(u + 0x20), static_cast<wchar_t>(u + 0x50), static_cast<wchar_t>(u + 1)})
      if (cand != u && odstr::foldCase(cand) == u) { c = cand; break; }
  }
  return *this;
}

OdString OdString::mid(int i, int n) const {
  if (i < 0 || static_cast<size_t>(i) >= m_s.size()) return OdString();
  return OdString(m_s.substr(static_cast<size_t>(i), n < 0 ? std::wstring::npos : static_cast<size_t>(n)));
}

int OdString::find(wchar_t c, int start) const {
  size_t p = m_s.find(c, static_cast<size_t>(start < 0 ? 0 : start));
  return p == std::wstring::npos ? -1 : static_cast<int>(p);
}

int OdString::reverseFind(wchar_t c) const {
  size_t p = m_s.rfind(c);
  return p == std::wstring::npos ? -1 : static_cast<int>(p);
}
