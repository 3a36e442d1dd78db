#include "drawings/DxfCodec.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <map>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace dxfcodec {

// Entries of CodeTable::high and CodeTable::pairs that are not characters.
constexpr char32_t kNone = 0xFFFFFFFF;  // does not decode (or not to a character that encodes back)
constexpr char32_t kLead = 0xFFFFFFFE;  // first byte of a double-byte character

// Only characters that encode back to the exact bytes they came from are entered, so decoding
// through these tables is reversible; everything else is left to the raw-byte escape.
struct CodeTable {
  std::string name;                 // upper-case $DWGCODEPAGE name
  std::array<char32_t, 128> high{};  // byte 0x80 + i -> character, kNone or kLead
  std::vector<char32_t> pairs;       // (lead - 0x80) * 256 + trail -> character or kNone; empty for single-byte pages
  // Non-ASCII character -> its bytes: one byte (< 0x100) or lead << 8 | trail (lead >= 0x80).
  std::unordered_map<char32_t, std::uint16_t> reverse;

  char32_t pair(unsigned lead, unsigned trail) const {
    if (pairs.empty() || lead < 0x80 || high[lead - 0x80] != kLead) return kNone;
    return pairs[(lead - 0x80) * 256 + trail];
  }
};

}  // namespace dxfcodec

using dxfcodec::CodeTable;
using dxfcodec::kLead;
using dxfcodec::kNone;

namespace {

constexpr char32_t kRawByteBase = 0xDC00;  // undecodable byte b <-> U+DC00 + b

// Characters no DXF string can hold as they are: they would end the value.
bool mustEscape(char32_t cp) { return cp == 0 || cp == '\n' || cp == '\r'; }

bool isRawByte(char32_t cp) {
  return (cp >= kRawByteBase + 0x80 && cp <= kRawByteBase + 0xFF) ||
         (cp < kRawByteBase + 0x80 && cp >= kRawByteBase && mustEscape(cp - kRawByteBase));
}

struct CodePageInfo {
  std::string_view name;   // as written in $DWGCODEPAGE, upper case
  const char* iconvName;   // nullptr: 7-bit ASCII only
};

// The code pages a DXF header can name. GB2312 and KSC5601 are read through their Windows
// supersets so that files written by programs that went beyond the base sets still decode.
constexpr CodePageInfo kCodePages[] = {
    {"ANSI_1252", "CP1252"},      {"ANSI_1250", "CP1250"},      {"ANSI_1251", "CP1251"},
    {"ANSI_1253", "CP1253"},      {"ANSI_1254", "CP1254"},      {"ANSI_1255", "CP1255"},
    {"ANSI_1256", "CP1256"},      {"ANSI_1257", "CP1257"},      {"ANSI_1258", "CP1258"},
    {"ANSI_874", "CP874"},        {"ANSI_932", "CP932"},        {"ANSI_936", "CP936"},
    {"ANSI_949", "CP949"},        {"ANSI_950", "CP950"},        {"ANSI_1361", "JOHAB"},
    {"ASCII", nullptr},           {"ISO8859-1", "ISO-8859-1"},  {"ISO8859-2", "ISO-8859-2"},
    {"ISO8859-3", "ISO-8859-3"},  {"ISO8859-4", "ISO-8859-4"},  {"ISO8859-5", "ISO-8859-5"},
    {"ISO8859-6", "ISO-8859-6"},  {"ISO8859-7", "ISO-8859-7"},  {"ISO8859-8", "ISO-8859-8"},
    {"ISO8859-9", "ISO-8859-9"},  {"ISO8859-10", "ISO-8859-10"}, {"DOS437", "IBM437"},
    {"DOS850", "IBM850"},         {"DOS852", "IBM852"},         {"DOS855", "IBM855"},
    {"DOS857", "IBM857"},         {"DOS860", "IBM860"},         {"DOS861", "IBM861"},
    {"DOS863", "IBM863"},         {"DOS864", "IBM864"},         {"DOS865", "IBM865"},
    {"DOS866", "IBM866"},         {"DOS869", "IBM869"},         {"DOS932", "CP932"},
    {"MACINTOSH", "MACINTOSH"},   {"BIG5", "BIG5"},             {"KSC5601", "CP949"},
    {"JOHAB", "JOHAB"},           {"GB2312", "CP936"},
};

// Code pages of the \M+n escape, indexed by n.
constexpr std::string_view kMbcsPages[] = {"", "ANSI_932", "ANSI_950", "ANSI_949", "ANSI_1361", "ANSI_936"};

const CodePageInfo& findCodePage(std::string_view name) {
  while (!name.empty() && (name.front() == ' ' || name.front() == '\t')) name.remove_prefix(1);
  while (!name.empty() && (name.back() == ' ' || name.back() == '\t')) name.remove_suffix(1);
  std::string upper(name);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  for (const CodePageInfo& info : kCodePages)
    if (info.name == upper) return info;
  return kCodePages[0];  // absent, UNDEFINED or unknown
}

// One conversion descriptor, closed on scope exit.
class Iconv {
public:
  Iconv(const char* to, const char* from) : m_cd(iconv_open(to, from)) {}
  ~Iconv() {
    if (ok()) iconv_close(m_cd);
  }
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;
  bool ok() const { return m_cd != reinterpret_cast<iconv_t>(-1); }

  enum class Result { Ok, Incomplete, Invalid };
  // Converts all of in into out, which must then hold exactly outSize bytes.
  Result convert(const char* in, size_t inSize, char* out, size_t outSize) {
    iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
    char buf[16];
    char* ip = const_cast<char*>(in);
    char* op = buf;
    size_t inLeft = inSize, outLeft = sizeof buf;
    size_t r = iconv(m_cd, &ip, &inLeft, &op, &outLeft);
    if (r == static_cast<size_t>(-1)) return errno == EINVAL ? Result::Incomplete : Result::Invalid;
    // Converters that compose combining marks hold the last character back until flushed.
    if (iconv(m_cd, nullptr, nullptr, &op, &outLeft) == static_cast<size_t>(-1)) return Result::Invalid;
    // r > 0 counts irreversible conversions: not a mapping we can write back.
    if (r != 0 || inLeft != 0 || sizeof buf - outLeft != outSize) return Result::Invalid;
    std::copy(buf, buf + outSize, out);
    return Result::Ok;
  }

private:
  iconv_t m_cd;
};

char32_t fromLe32(const char* b) {
  auto u = [&](int i) { return static_cast<char32_t>(static_cast<unsigned char>(b[i])); };
  return u(0) | u(1) << 8 | u(2) << 16 | u(3) << 24;
}

bool isScalar(char32_t cp) { return cp < 0x110000 && (cp < 0xD800 || cp > 0xDFFF); }

// Asks iconv once per byte and byte pair; done once per code page and process.
std::shared_ptr<CodeTable> buildTable(const CodePageInfo& info) {
  auto table = std::make_shared<CodeTable>();
  table->name = info.name;
  table->high.fill(kNone);
  if (!info.iconvName) return table;
  Iconv dec("UTF-32LE", info.iconvName);
  // Without the converter every high byte stays undecodable: text survives unchanged, if unreadable.
  if (!dec.ok()) return table;

  auto decodeOne = [&](const char* bytes, size_t n, char32_t& cp) {
    char out[4];
    Iconv::Result r = dec.convert(bytes, n, out, 4);
    if (r != Iconv::Result::Ok) return r;
    cp = fromLe32(out);
    // A high byte that decodes to ASCII would break the ASCII identity the format relies on.
    return isScalar(cp) && cp >= 0x80 ? r : Iconv::Result::Invalid;
  };

  for (unsigned b = 0x80; b < 0x100; ++b) {
    char bytes[2] = {static_cast<char>(b), 0};
    char32_t cp = 0;
    Iconv::Result r = decodeOne(bytes, 1, cp);
    if (r == Iconv::Result::Ok) {
      table->high[b - 0x80] = cp;
    } else if (r == Iconv::Result::Incomplete) {
      table->high[b - 0x80] = kLead;
      if (table->pairs.empty()) table->pairs.assign(128 * 256, kNone);
      for (unsigned t = 0; t < 0x100; ++t) {
        bytes[1] = static_cast<char>(t);
        if (decodeOne(bytes, 2, cp) == Iconv::Result::Ok) table->pairs[(b - 0x80) * 256 + t] = cp;
      }
    }
  }

  // Several byte forms can decode to one character (vendor duplicates in the East-Asian pages).
  // Writing keeps the form the code page prefers; the others must not decode, or they would not
  // survive a round trip.
  std::unordered_map<char32_t, std::vector<std::uint16_t>> forms;
  for (unsigned b = 0x80; b < 0x100; ++b) {
    char32_t cp = table->high[b - 0x80];
    if (cp == kLead) {
      for (unsigned t = 0; t < 0x100; ++t)
        if (char32_t c = table->pairs[(b - 0x80) * 256 + t]; c != kNone)
          forms[c].push_back(static_cast<std::uint16_t>(b << 8 | t));
    } else if (cp != kNone) {
      forms[cp].push_back(static_cast<std::uint16_t>(b));
    }
  }
  Iconv enc(info.iconvName, "UTF-32LE");
  for (auto& [cp, list] : forms) {
    std::uint16_t chosen = list.front();
    if (list.size() > 1 && enc.ok()) {
      const char in[4] = {static_cast<char>(cp & 0xFF), static_cast<char>(cp >> 8 & 0xFF),
                          static_cast<char>(cp >> 16 & 0xFF), 0};
      char out[2];
      if (enc.convert(in, 4, out, 1) == Iconv::Result::Ok) {
        chosen = static_cast<unsigned char>(out[0]);
      } else if (enc.convert(in, 4, out, 2) == Iconv::Result::Ok) {
        chosen = static_cast<std::uint16_t>(static_cast<unsigned char>(out[0]) << 8 |
                                            static_cast<unsigned char>(out[1]));
      }
      if (std::find(list.begin(), list.end(), chosen) == list.end()) chosen = list.front();
    }
    table->reverse.emplace(cp, chosen);
    for (std::uint16_t form : list) {
      if (form == chosen) continue;
      if (form < 0x100)
        table->high[form - 0x80] = kNone;
      else
        table->pairs[((form >> 8) - 0x80) * 256 + (form & 0xFF)] = kNone;
    }
  }
  return table;
}

std::shared_ptr<const CodeTable> tableFor(const CodePageInfo& info) {
  static std::mutex mutex;
  static std::map<std::string_view, std::shared_ptr<const CodeTable>> tables;
  std::lock_guard lock(mutex);
  auto& slot = tables[info.name];
  if (!slot) slot = buildTable(info);
  return slot;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool hex4(std::string_view s, size_t pos, char32_t& value) {
  if (pos + 4 > s.size()) return false;
  value = 0;
  for (size_t k = 0; k < 4; ++k) {
    int d = hexDigit(s[pos + k]);
    if (d < 0) return false;
    value = value << 4 | static_cast<char32_t>(d);
  }
  return true;
}

bool startsWith(std::string_view s, size_t pos, std::string_view prefix) {
  return s.substr(pos, prefix.size()) == prefix;
}

// The escape starting at the backslash s[pos]: its length and character, or 0 when the
// backslash is ordinary text (including escapes we would not be able to write back).
size_t parseEscape(std::string_view s, size_t pos, char32_t& cp) {
  char32_t v = 0;
  if (startsWith(s, pos, "\\U+") && hex4(s, pos + 3, v)) {
    if (v >= 0xD800 && v < 0xDC00) {
      char32_t low = 0;
      if (startsWith(s, pos + 7, "\\U+") && hex4(s, pos + 10, low) && low >= 0xDC00 && low < 0xE000) {
        cp = 0x10000 + ((v - 0xD800) << 10) + (low - 0xDC00);
        return 14;
      }
      return 0;
    }
    if (v >= 0xDC00 && v < 0xE000) return 0;  // a lone low surrogate could read as a raw byte
    cp = v;
    return 7;
  }
  if (startsWith(s, pos, "\\M+") && pos + 3 < s.size() && s[pos + 3] >= '1' && s[pos + 3] <= '5' &&
      hex4(s, pos + 4, v)) {
    auto table = tableFor(findCodePage(kMbcsPages[s[pos + 3] - '0']));
    // Only double-byte characters are written this way.
    char32_t c = table->pair(v >> 8, v & 0xFF);
    if (c == kNone) return 0;
    cp = c;
    return 8;
  }
  return 0;
}

// Length of the well-formed UTF-8 sequence at s[pos] (a byte >= 0x80), 0 if there is none.
// Strict: overlong forms, surrogates and values above U+10FFFF do not decode, so that every
// decoded character encodes back to the bytes it came from.
size_t utf8Sequence(std::string_view s, size_t pos, char32_t& cp) {
  auto byte = [&](size_t k) { return static_cast<unsigned char>(s[pos + k]); };
  unsigned c = byte(0);
  size_t len = 0;
  unsigned lo = 0x80, hi = 0xBF;  // range of the second byte
  if (c >= 0xC2 && c <= 0xDF) {
    len = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    len = 3;
    if (c == 0xE0) lo = 0xA0;
    if (c == 0xED) hi = 0x9F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    len = 4;
    if (c == 0xF0) lo = 0x90;
    if (c == 0xF4) hi = 0x8F;
  } else {
    return 0;
  }
  if (pos + len > s.size()) return 0;
  if (byte(1) < lo || byte(1) > hi) return 0;
  cp = c & (0xFF >> (len + 1));
  for (size_t k = 1; k < len; ++k) {
    if ((byte(k) & 0xC0) != 0x80) return 0;
    cp = cp << 6 | (byte(k) & 0x3F);
  }
  return len;
}

void appendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x800) {
    out += static_cast<char>(0xC0 | cp >> 6);
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | cp >> 12);
    out += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | cp >> 18);
    out += static_cast<char>(0x80 | (cp >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
  }
  out += static_cast<char>(0x80 | (cp & 0x3F));
}

void appendEscape(std::string& out, char32_t cp) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  auto one = [&](char32_t v) {
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4) out += kHex[v >> shift & 0xF];
  };
  if (cp >= 0x10000) {
    one(0xD800 + ((cp - 0x10000) >> 10));
    one(0xDC00 + ((cp - 0x10000) & 0x3FF));
  } else {
    one(cp);
  }
}

}  // namespace

DxfCodec DxfCodec::make(std::string_view codePage, DxfVersion version) {
  return DxfCodec(tableFor(findCodePage(codePage)), dxfver::isUtf8(version));
}

std::string_view DxfCodec::codePageName() const { return m_table->name; }

OdString DxfCodec::decode(std::string_view bytes) const {
  std::wstring out;
  out.reserve(bytes.size());
  size_t plain = 0;  // most strings are plain ASCII: copy them without looking up anything
  while (plain < bytes.size() && static_cast<unsigned char>(bytes[plain]) < 0x80 && bytes[plain] != '\\' &&
         !mustEscape(static_cast<unsigned char>(bytes[plain])))
    ++plain;
  out.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(plain));

  const CodeTable& table = *m_table;
  for (size_t i = plain; i < bytes.size();) {
    unsigned c = static_cast<unsigned char>(bytes[i]);
    char32_t cp = 0;
    size_t len = 0;
    if (c < 0x80) {
      len = c == '\\' ? parseEscape(bytes, i, cp) : 0;
      // A NUL, CR or LF inside a value is kept as a raw byte: as a character it would be
      // written back as an escape.
      if (len == 0 && !mustEscape(c)) {
        cp = c;
        len = 1;
      }
    } else if (m_utf8) {
      len = utf8Sequence(bytes, i, cp);
    } else if (char32_t h = table.high[c - 0x80]; h == kLead) {
      if (i + 1 < bytes.size()) {
        cp = table.pair(c, static_cast<unsigned char>(bytes[i + 1]));
        len = cp == kNone ? 0 : 2;
      }
    } else if (h != kNone) {
      cp = h;
      len = 1;
    }
    if (len == 0) {
      cp = kRawByteBase + c;
      len = 1;
    }
    odstr::appendCodePoint(out, cp);
    i += len;
  }
  return OdString(std::move(out));
}

std::string DxfCodec::encode(std::wstring_view text) const {
  std::string out;
  out.reserve(text.size());
  const CodeTable& table = *m_table;
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t cp = static_cast<char32_t>(text[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
        cp = 0x10000 + ((cp - 0xD800) << 10) + (static_cast<char32_t>(text[i + 1]) - 0xDC00);
        ++i;
      }
    }
    if (cp < 0x80) {
      if (mustEscape(cp))
        appendEscape(out, cp);
      else
        out += static_cast<char>(cp);
    } else if (isRawByte(cp)) {
      out += static_cast<char>(cp - kRawByteBase);
    } else if (cp > 0x10FFFF) {
      appendEscape(out, 0xFFFD);  // not a character at all; nothing better to write
    } else if (!isScalar(cp)) {
      appendEscape(out, cp);  // a lone surrogate; reads back as literal text
    } else if (m_utf8) {
      appendUtf8(out, cp);
    } else if (auto it = table.reverse.find(cp); it != table.reverse.end()) {
      std::uint16_t form = it->second;
      if (form >= 0x100) out += static_cast<char>(form >> 8);
      out += static_cast<char>(form & 0xFF);
    } else {
      appendEscape(out, cp);
    }
  }
  return out;
}
