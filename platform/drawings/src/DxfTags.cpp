#include "drawings/DxfTags.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

static DxfType typeByRange(int code) {
  if (code >= 0 && code <= 9) return code == 5 ? DxfType::Handle : DxfType::String;
  if (code >= 10 && code <= 59) return DxfType::Double;
  if (code >= 60 && code <= 79) return DxfType::Int16;
  if (code >= 90 && code <= 99) return DxfType::Int32;
  if (code == 105) return DxfType::Handle;
  if (code >= 100 && code <= 109) return DxfType::String;
  if (code >= 110 && code <= 149) return DxfType::Double;
  if (code >= 160 && code <= 169) return DxfType::Int64;
  if (code >= 170 && code <= 179) return DxfType::Int16;
  if (code >= 210 && code <= 239) return DxfType::Double;
  if (code >= 270 && code <= 289) return DxfType::Int16;
  if (code >= 290 && code <= 299) return DxfType::Bool;
  if (code >= 300 && code <= 309) return DxfType::String;
  if (code >= 310 && code <= 319) return DxfType::Binary;
  if (code >= 320 && code <= 369) return DxfType::Handle;
  if (code >= 370 && code <= 389) return DxfType::Int16;
  if (code >= 390 && code <= 399) return DxfType::Handle;
  if (code >= 400 && code <= 409) return DxfType::Int16;
  if (code >= 410 && code <= 419) return DxfType::String;
  if (code >= 420 && code <= 429) return DxfType::Int32;
  if (code >= 430 && code <= 439) return DxfType::String;
  if (code >= 440 && code <= 459) return DxfType::Int32;
  if (code >= 460 && code <= 469) return DxfType::Double;
  if (code >= 470 && code <= 479) return DxfType::String;
  if (code >= 480 && code <= 481) return DxfType::Handle;
  if (code == 999) return DxfType::String;
  if (code == 1004) return DxfType::Binary;
  if (code == 1005) return DxfType::Handle;
  if (code >= 1000 && code <= 1009) return DxfType::String;
  if (code >= 1010 && code <= 1059) return DxfType::Double;
  if (code >= 1060 && code <= 1070) return DxfType::Int16;
  if (code == 1071) return DxfType::Int32;
  return DxfType::String;  // codes outside the documented ranges are kept as text
}

DxfType dxfTypeOf(int code) {
  // Asked for every tag read: one lookup instead of a chain of range tests.
  static const auto table = [] {
    std::array<DxfType, 1072> t{};
    for (int c = 0; c < 1072; ++c) t[static_cast<size_t>(c)] = typeByRange(c);
    return t;
  }();
  return code >= 0 && code < 1072 ? table[static_cast<size_t>(code)] : DxfType::String;
}

bool isHandleCode(int code) { return dxfTypeOf(code) == DxfType::Handle; }

static std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

static bool parseDouble(std::string_view s, double& v) {
  s = trimmed(s);
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  if (s.empty()) return false;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  return r.ec == std::errc() && r.ptr == s.data() + s.size();
}

static bool parseInt(std::string_view s, int64_t& v) {
  s = trimmed(s);
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  if (s.empty()) return false;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  if (r.ec == std::errc() && r.ptr == s.data() + s.size()) return true;
  // Some writers put a decimal value into an integer code ("1.0"); it is readable.
  double d;
  if (parseDouble(s, d) && std::floor(d) == d && std::fabs(d) < 9.2e18) {
    v = static_cast<int64_t>(d);
    return true;
  }
  return false;
}

static bool parseHex(std::string_view s, uint64_t& v) {
  s = trimmed(s);
  if (s.empty() || s.size() > 16) return false;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v, 16);
  return r.ec == std::errc() && r.ptr == s.data() + s.size();
}

// Syntax checks run on every tag of every file read, so they avoid the C library's
// locale-aware classification and full number conversion.
static bool looksLikeNumber(std::string_view s, bool allowFraction) {
  size_t i = 0, n = s.size();
  while (i < n && (s[i] == ' ' || s[i] == '\t')) ++i;
  while (n > i && (s[n - 1] == ' ' || s[n - 1] == '\t' || s[n - 1] == '\r')) --n;
  if (i < n && (s[i] == '-' || s[i] == '+')) ++i;
  size_t digits = 0;
  while (i < n && static_cast<unsigned>(s[i] - '0') < 10) ++i, ++digits;
  if (i < n && s[i] == '.') {
    ++i;
    while (i < n && static_cast<unsigned>(s[i] - '0') < 10) ++i, ++digits;
    if (!allowFraction) {
      // Integers written as "1.0" are accepted when the fraction is zero.
      double d;
      return digits > 0 && i == n && parseDouble(s, d) && std::floor(d) == d;
    }
  }
  if (digits == 0) {
    if (!allowFraction) return false;
    // inf and nan spellings that from_chars accepts
    double d;
    return parseDouble(s, d);
  }
  if (!allowFraction && digits > 18) {
    int64_t v;  // an integer that does not fit in 64 bits is no integer we can keep
    return parseInt(s, v);
  }
  if (i < n && (s[i] == 'e' || s[i] == 'E')) {
    if (!allowFraction) {
      double d;
      return parseDouble(s, d) && std::floor(d) == d;
    }
    ++i;
    if (i < n && (s[i] == '-' || s[i] == '+')) ++i;
    size_t e = 0;
    while (i < n && static_cast<unsigned>(s[i] - '0') < 10) ++i, ++e;
    if (e == 0) return false;
  }
  return i == n;
}

static bool isHexText(std::string_view s) {
  size_t n = s.size();
  while (n > 0 && (s[n - 1] == ' ' || s[n - 1] == '\r')) --n;
  if (n % 2) return false;
  // Byte arithmetic only, so that the loop runs sixteen or more bytes at a time.
  uint8_t bad = 0;
  const auto* p = reinterpret_cast<const uint8_t*>(s.data());
  for (size_t i = 0; i < n; ++i) {
    uint8_t digit = static_cast<uint8_t>(p[i] - '0');
    uint8_t letter = static_cast<uint8_t>((p[i] | 0x20) - 'a');
    bad |= static_cast<uint8_t>((digit > 9) & (letter > 5));
  }
  return bad == 0;
}

const char* dxfCheckAsciiValue(int code, std::string_view value) {
  switch (dxfTypeOf(code)) {
    case DxfType::Double:
      return looksLikeNumber(value, true) ? nullptr : "a floating point number";
    case DxfType::Int16:
    case DxfType::Int32:
    case DxfType::Int64:
    case DxfType::Bool:
      return looksLikeNumber(value, false) ? nullptr : "an integer";
    case DxfType::Binary:
      return isHexText(value) ? nullptr : "hexadecimal bytes";
    default:
      return nullptr;  // handles are kept as text: some writers use odd spellings
  }
}

DxfTagScanner::DxfTagScanner(std::string_view data, DxfFormat format, bool shortCodes, size_t start,
                             uint32_t firstLine)
    : m_data(data), m_format(format), m_shortCodes(shortCodes), m_pos(start), m_line(firstLine) {}

void DxfTagScanner::fail(uint32_t where, int code, const std::string& expected) const {
  std::string msg = m_format == DxfFormat::Ascii ? "line " + std::to_string(where) : "byte offset " + std::to_string(where);
  if (code != INT32_MIN) msg += ", group code " + std::to_string(code);
  msg += ": expected " + expected;
  throw DxfSyntaxError{msg};
}

bool DxfTagScanner::next(DxfRawTag& tag) {
  return m_format == DxfFormat::Ascii ? nextAscii(tag) : nextBinary(tag);
}

// Lines are short (a few bytes each), so a library search per line costs more
// than the search itself: the line breaks of 64 bytes at a time are found at once
// and kept as a bit mask.
size_t DxfTagScanner::findNewline(size_t from) {
  const size_t n = m_data.size();
  while (from < n) {
    const size_t block = from & ~size_t(63);
    if (block != m_maskBase || !m_maskValid) {
      m_maskBase = block;
      m_maskValid = true;
      m_mask = 0;
      const char* p = m_data.data() + block;
      if (block + 64 <= n) {
#if defined(__SSE2__)
        const __m128i lf = _mm_set1_epi8('\n');
        for (int k = 0; k < 4; ++k) {
          __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * k));
          m_mask |= static_cast<uint64_t>(static_cast<uint16_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, lf)))) << (16 * k);
        }
#else
        for (int k = 0; k < 64; ++k) m_mask |= static_cast<uint64_t>(p[k] == '\n') << k;
#endif
      } else {
        for (size_t k = 0; block + k < n; ++k) m_mask |= static_cast<uint64_t>(p[k] == '\n') << k;
      }
    }
    uint64_t m = m_mask >> (from - block);
    if (m) return from + static_cast<size_t>(__builtin_ctzll(m));
    from = block + 64;
  }
  return std::string_view::npos;
}

bool DxfTagScanner::nextAscii(DxfRawTag& tag) {
  const size_t n = m_data.size();
  if (m_pos >= n) return false;
  const size_t start = m_pos;
  const char* base = m_data.data();
  size_t codeEnd = findNewline(m_pos);
  if (codeEnd == std::string_view::npos) fail(m_line, INT32_MIN, "a group code line ended by a line break");
  // Group codes are short: read the digits directly (blanks may pad either side).
  size_t p = m_pos, e = codeEnd;
  while (p < e && base[p] == ' ') ++p;
  while (e > p && (base[e - 1] == ' ' || base[e - 1] == '\r' || base[e - 1] == '\t')) --e;
  bool negative = p < e && base[p] == '-';
  size_t d = negative ? p + 1 : p;
  int code = 0;
  bool digitsOnly = d < e && e - d <= 6;
  for (size_t k = d; digitsOnly && k < e; ++k) {
    unsigned digit = static_cast<unsigned>(base[k] - '0');
    if (digit > 9) digitsOnly = false;
    else code = code * 10 + static_cast<int>(digit);
  }
  if (!digitsOnly)
    fail(m_line, INT32_MIN, "a group code (an integer), found \"" + std::string(m_data.substr(p, std::min<size_t>(e - p, 40))) + "\"");
  if (negative) code = -code;
  if (code < 0 || code > 1071) fail(m_line, code, "a group code between 0 and 1071");
  size_t vStart = codeEnd + 1;
  if (vStart >= n) fail(m_line + 1, code, "a value line");
  size_t vEnd = findNewline(vStart);
  const bool nl = vEnd != std::string_view::npos;
  if (!nl) vEnd = n;
  if (!nl && code != 0) fail(m_line + 1, code, "a value line ended by a line break");
  std::string_view value = m_data.substr(vStart, vEnd - vStart);
  if (!value.empty() && value.back() == '\r') value.remove_suffix(1);
  if (const char* expected = dxfCheckAsciiValue(code, value))
    fail(m_line + 1, code, std::string(expected) + ", found \"" + std::string(value.substr(0, 40)) + "\"");
  m_pos = nl ? vEnd + 1 : n;
  tag.code = code;
  tag.raw = m_data.substr(start, m_pos - start);
  tag.value = value;
  tag.line = m_line;
  m_line += 2;
  return true;
}

bool DxfTagScanner::nextBinary(DxfRawTag& tag) {
  const size_t n = m_data.size();
  if (m_pos >= n) return false;
  const size_t start = m_pos;
  const auto* p = reinterpret_cast<const unsigned char*>(m_data.data());
  int code;
  if (m_shortCodes) {
    code = p[m_pos++];
    if (code == 255) {
      if (m_pos + 2 > n) fail(static_cast<uint32_t>(start), INT32_MIN, "a two-byte group code after 255");
      code = p[m_pos] | (p[m_pos + 1] << 8);
      m_pos += 2;
    }
  } else {
    if (m_pos + 2 > n) fail(static_cast<uint32_t>(start), INT32_MIN, "a two-byte group code");
    code = p[m_pos] | (p[m_pos + 1] << 8);
    m_pos += 2;
  }
  if (code > 1071) fail(static_cast<uint32_t>(start), code, "a group code between 0 and 1071");
  size_t vStart = m_pos;
  size_t size = 0;
  switch (dxfTypeOf(code)) {
    case DxfType::String:
    case DxfType::Handle: {
      const void* z = std::memchr(p + m_pos, 0, n - m_pos);
      if (!z) fail(static_cast<uint32_t>(vStart), code, "a zero-terminated string");
      size = static_cast<size_t>(static_cast<const unsigned char*>(z) - p) - m_pos;
      m_pos += size + 1;
      break;
    }
    case DxfType::Double: size = 8; break;
    case DxfType::Int16: size = 2; break;
    case DxfType::Int32: size = 4; break;
    case DxfType::Int64: size = 8; break;
    case DxfType::Bool: size = 1; break;
    case DxfType::Binary:
      if (m_pos >= n) fail(static_cast<uint32_t>(vStart), code, "a length byte");
      size = p[m_pos];
      vStart = ++m_pos;
      break;
  }
  if (dxfTypeOf(code) != DxfType::String && dxfTypeOf(code) != DxfType::Handle) {
    if (m_pos + size > n) fail(static_cast<uint32_t>(vStart), code, std::to_string(size) + " value bytes");
    m_pos += size;
  }
  tag.code = code;
  tag.raw = m_data.substr(start, m_pos - start);
  tag.value = m_data.substr(vStart, size);
  tag.line = static_cast<uint32_t>(start);
  return true;
}

template <class T>
static T readLE(std::string_view v) {
  T x{};
  std::memcpy(&x, v.data(), std::min(sizeof(T), v.size()));
  return x;  // DXF binary is little-endian, as is every machine we build for
}

std::string dxfFormatDouble(double v) {
  char buf[40];
  auto r = std::to_chars(buf, buf + sizeof buf, v);
  std::string s(buf, r.ptr);
  if (std::isfinite(v) && s.find_first_of(".eE") == std::string::npos) s += ".0";
  return s;
}

std::string dxfFormatHandle(uint64_t h) {
  char buf[20];
  auto r = std::to_chars(buf, buf + sizeof buf, h, 16);
  for (char* c = buf; c != r.ptr; ++c)
    if (*c >= 'a') *c = static_cast<char>(*c - 'a' + 'A');  // hexadecimal digits only
  return std::string(buf, r.ptr);
}

bool dxfEqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
         });
}

std::string dxfValueText(const DxfRawTag& t, DxfFormat format) {
  if (format == DxfFormat::Ascii) return std::string(t.value);
  static const char* hex = "0123456789ABCDEF";
  switch (dxfTypeOf(t.code)) {
    case DxfType::Double: return dxfFormatDouble(readLE<double>(t.value));
    case DxfType::Int16: return std::to_string(readLE<int16_t>(t.value));
    case DxfType::Int32: return std::to_string(readLE<int32_t>(t.value));
    case DxfType::Int64: return std::to_string(readLE<int64_t>(t.value));
    case DxfType::Bool: return std::to_string(readLE<uint8_t>(t.value));
    case DxfType::Binary: {
      std::string s;
      for (unsigned char c : t.value) {
        s += hex[c >> 4];
        s += hex[c & 15];
      }
      return s;
    }
    default: {
      // ASCII files cannot hold control characters in a value: they are spelled
      // "^" + (char + 64), and a caret itself as "^ ".
      std::string s;
      s.reserve(t.value.size());
      for (char c : t.value) {
        unsigned char u = static_cast<unsigned char>(c);
        if (u < 32) { s += '^'; s += static_cast<char>(u + 64); }
        else if (c == '^') s += "^ ";
        else s += c;
      }
      return s;
    }
  }
}

// The bytes a binary file holds for a value in ASCII spelling (carets undone).
static std::string binaryString(std::string_view text) {
  std::string s;
  s.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '^' && i + 1 < text.size()) {
      char n = text[++i];
      s += n == ' ' ? '^' : static_cast<char>(n - 64);
    } else {
      s += text[i];
    }
  }
  return s;
}

double DxfTag::toDouble() const {
  double d = 0;
  return parseDouble(text, d) ? d : 0.0;
}

int64_t DxfTag::toInt() const {
  int64_t i = 0;
  return parseInt(text, i) ? i : 0;
}

uint64_t DxfTag::toHandle() const {
  uint64_t h = 0;
  return parseHex(text, h) ? h : 0;
}

// A binary group code into b (room for 3): two bytes, or with R12's one-byte codes
// one byte, 255 and two bytes above 254. Returns its length.
static size_t binaryCode(char* b, int code, bool shortCodes) {
  if (shortCodes && code < 255) {
    b[0] = static_cast<char>(code);
    return 1;
  }
  size_t n = 0;
  if (shortCodes) b[n++] = static_cast<char>(255);
  b[n++] = static_cast<char>(code & 0xFF);
  b[n++] = static_cast<char>((code >> 8) & 0xFF);
  return n;
}

// A binary tag of a fixed-width value, appended at once.
template <class T>
static void writeBinary(std::string& out, int code, T v, bool shortCodes) {
  char b[3 + sizeof(T)];
  const size_t n = binaryCode(b, code, shortCodes);
  std::memcpy(b + n, &v, sizeof(T));
  out.append(b, n + sizeof(T));
}

static void writeCode(std::string& out, int code, const DxfStyle& st) {
  if (st.format == DxfFormat::Binary) {
    char b[3];
    out.append(b, binaryCode(b, code, st.shortCodes));
    return;
  }
  char buf[12];
  auto r = std::to_chars(buf, buf + sizeof buf, code);
  size_t len = static_cast<size_t>(r.ptr - buf);
  if (st.padCodes && len < 3) out.append(3 - len, ' ');
  out.append(buf, len);
  out += st.eol;
}

template <class T>
static void appendLE(std::string& out, T v) {
  char b[sizeof(T)];
  std::memcpy(b, &v, sizeof(T));
  out.append(b, sizeof(T));
}

static void writeValue(std::string& out, int code, std::string_view text, const DxfStyle& st) {
  if (st.format == DxfFormat::Ascii) {
    out += text;
    out += st.eol;
    return;
  }
  // Numbers are parsed from the spelling (0 when it is none); strings go out as they are.
  double d = 0;
  int64_t i = 0;
  switch (dxfTypeOf(code)) {
    case DxfType::Double: appendLE(out, parseDouble(text, d) ? d : 0.0); break;
    case DxfType::Int16: appendLE(out, static_cast<int16_t>(parseInt(text, i) ? i : 0)); break;
    case DxfType::Int32: appendLE(out, static_cast<int32_t>(parseInt(text, i) ? i : 0)); break;
    case DxfType::Int64: appendLE(out, static_cast<int64_t>(parseInt(text, i) ? i : 0)); break;
    case DxfType::Bool: appendLE(out, static_cast<uint8_t>(parseInt(text, i) ? i : 0)); break;
    case DxfType::Binary: {
      std::string bytes;
      for (size_t k = 0; k + 1 < text.size(); k += 2)
        bytes += static_cast<char>(std::stoi(std::string(text.substr(k, 2)), nullptr, 16));
      out += static_cast<char>(bytes.size());
      out += bytes;
      break;
    }
    default:
      if (text.find('^') == std::string_view::npos) out += text;  // the common case, without a copy
      else out += binaryString(text);
      out += '\0';
  }
}

void dxfWriteNewTag(std::string& out, int code, std::string_view text, const DxfStyle& style) {
  writeCode(out, code, style);
  writeValue(out, code, text, style);
}

void dxfWriteDouble(std::string& out, int code, double v, const DxfStyle& style) {
  if (style.format == DxfFormat::Binary) {
    writeBinary(out, code, v, style.shortCodes);
    return;
  }
  writeCode(out, code, style);
  // As dxfFormatDouble spells it, without a string of its own.
  char buf[40];
  auto r = std::to_chars(buf, buf + sizeof buf, v);
  out.append(buf, r.ptr);
  if (std::isfinite(v) && std::find_if(buf, r.ptr, [](char c) { return c == '.' || c == 'e' || c == 'E'; }) == r.ptr)
    out += ".0";
  out += style.eol;
}

void dxfWriteInt(std::string& out, int code, int64_t v, const DxfStyle& style) {
  if (style.format == DxfFormat::Ascii) {
    char buf[24];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    dxfWriteNewTag(out, code, std::string_view(buf, static_cast<size_t>(r.ptr - buf)), style);
    return;
  }
  switch (dxfTypeOf(code)) {
    case DxfType::Int16: writeBinary(out, code, static_cast<int16_t>(v), style.shortCodes); break;
    case DxfType::Int32: writeBinary(out, code, static_cast<int32_t>(v), style.shortCodes); break;
    case DxfType::Bool: writeBinary(out, code, static_cast<uint8_t>(v), style.shortCodes); break;
    default: writeBinary(out, code, v, style.shortCodes);
  }
}

void dxfWriteTag(std::string& out, const DxfTag& t, const DxfStyle& style) {
  if (!t.raw.empty() && !t.changed) {
    out += t.raw;
    return;
  }
  if (!t.raw.empty()) {
    out += t.raw.substr(0, t.valueOffset);  // keep the code's own spelling
    writeValue(out, t.code, t.text, style);
    return;
  }
  dxfWriteNewTag(out, t.code, t.text, style);
}
