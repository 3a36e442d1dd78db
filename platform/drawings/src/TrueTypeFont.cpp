#include "TrueTypeFont.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

// Big-endian reads from a byte string; out of range reads give 0 and are caught by
// the range checks in front of them.
struct Bytes {
  std::string_view d;
  bool has(uint64_t at, uint64_t n) const { return at <= d.size() && n <= d.size() - at; }
  uint32_t u8(uint64_t at) const { return has(at, 1) ? static_cast<uint8_t>(d[at]) : 0; }
  uint32_t u16(uint64_t at) const { return has(at, 2) ? (u8(at) << 8) | u8(at + 1) : 0; }
  int32_t s16(uint64_t at) const { return static_cast<int16_t>(u16(at)); }
  uint32_t u32(uint64_t at) const { return has(at, 4) ? (u16(at) << 16) | u16(at + 2) : 0; }
};

constexpr uint32_t tag(const char (&s)[5]) {
  return (uint32_t(uint8_t(s[0])) << 24) | (uint32_t(uint8_t(s[1])) << 16) | (uint32_t(uint8_t(s[2])) << 8) |
         uint32_t(uint8_t(s[3]));
}

struct Table {
  uint32_t offset = 0, length = 0;
  bool found = false;
};

// The table directory of the font at `fontOffset` (0, or the first font of a collection).
bool fontOffsetOf(const Bytes& b, uint32_t& fontOffset, std::string* error) {
  if (b.u32(0) == tag("ttcf")) {
    if (b.u32(8) == 0) {
      if (error) *error = "font collection without fonts";
      return false;
    }
    fontOffset = b.u32(12);
  } else {
    fontOffset = 0;
  }
  const uint32_t version = b.u32(fontOffset);
  if (version != 0x00010000 && version != tag("true") && version != tag("OTTO")) {
    if (error) *error = "not a TrueType or OpenType font";
    return false;
  }
  if (!b.has(fontOffset, 12) || !b.has(fontOffset + 12, uint64_t(b.u16(fontOffset + 4)) * 16)) {
    if (error) *error = "table directory cut short";
    return false;
  }
  return true;
}

Table findTable(const Bytes& b, uint32_t fontOffset, uint32_t wanted) {
  const uint32_t n = b.u16(fontOffset + 4);
  for (uint32_t i = 0; i < n; ++i) {
    const uint64_t rec = fontOffset + 12 + uint64_t(i) * 16;
    if (b.u32(rec) != wanted) continue;
    Table t{b.u32(rec + 8), b.u32(rec + 12), true};
    // A table must lie inside the file; a damaged length is clipped, not trusted.
    if (!b.has(t.offset, 0)) return {};
    t.length = static_cast<uint32_t>(std::min<uint64_t>(t.length, b.d.size() - t.offset));
    return t;
  }
  return {};
}

// UTF-16BE (Windows names) or single-byte (Macintosh names; ASCII is all we compare).
std::string nameString(const Bytes& b, uint64_t at, uint32_t length, bool utf16) {
  std::string s;
  if (!b.has(at, length)) return s;
  if (!utf16) {
    for (uint32_t i = 0; i < length; ++i) s += static_cast<char>(b.u8(at + i));
    return s;
  }
  for (uint32_t i = 0; i + 1 < length; i += 2) {
    const uint32_t c = b.u16(at + i);
    if (c < 0x80) s += static_cast<char>(c);
    else if (c < 0x800) {
      s += static_cast<char>(0xC0 | (c >> 6));
      s += static_cast<char>(0x80 | (c & 0x3F));
    } else {  // surrogates are left as they are: family names that matter are ASCII
      s += static_cast<char>(0xE0 | (c >> 12));
      s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      s += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return s;
}

// The family name: the typographic family (name 16) where present, since name 1
// splits families into four-style groups ("DejaVu Sans Light"); Windows names in
// US English first.
std::string familyName(const Bytes& b, const Table& name) {
  if (!name.found || !b.has(name.offset, 6)) return {};
  const uint32_t count = b.u16(name.offset + 2);
  const uint64_t strings = uint64_t(name.offset) + b.u16(name.offset + 4);
  std::string best;
  int bestScore = -1;
  for (uint32_t i = 0; i < count; ++i) {
    const uint64_t rec = name.offset + 6 + uint64_t(i) * 12;
    if (!b.has(rec, 12)) break;
    const uint32_t platform = b.u16(rec), encoding = b.u16(rec + 2), language = b.u16(rec + 4), id = b.u16(rec + 6);
    if (id != 1 && id != 16) continue;
    const bool windows = platform == 3 && (encoding == 1 || encoding == 10);
    const bool unicode = platform == 0;
    const bool mac = platform == 1 && encoding == 0;
    if (!windows && !unicode && !mac) continue;
    const int score = (id == 16 ? 8 : 0) + (windows ? 4 : unicode ? 3 : 0) + (windows && language == 0x409 ? 2 : 0);
    if (score <= bestScore) continue;
    std::string s = nameString(b, strings + b.u16(rec + 10), b.u16(rec + 8), windows || unicode);
    if (s.empty()) continue;
    best = std::move(s);
    bestScore = score;
  }
  return best;
}

}  // namespace

std::unique_ptr<TrueTypeFont> TrueTypeFont::load(const std::string& path, std::string* error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    if (error) *error = "cannot open " + path;
    return nullptr;
  }
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::string why;
  auto font = fromBytes(std::move(bytes), &why);
  if (!font && error) *error = path + ": " + why;
  return font;
}

std::unique_ptr<TrueTypeFont> TrueTypeFont::fromBytes(std::string bytes, std::string* error) {
  std::unique_ptr<TrueTypeFont> font(new TrueTypeFont());
  font->m_data = std::move(bytes);
  if (!font->parse(error)) return nullptr;
  return font;
}

bool TrueTypeFont::readFace(const std::string& path, Face& face) {
  // Reads the directory, then only 'head' and 'name': font folders can hold
  // collections tens of megabytes large.
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  auto readAt = [&](uint64_t at, uint64_t n) {
    std::string out(static_cast<size_t>(n), '\0');
    in.clear();
    in.seekg(static_cast<std::streamoff>(at));
    in.read(out.data(), static_cast<std::streamsize>(n));
    out.resize(static_cast<size_t>(in.gcount()));
    return out;
  };
  const std::string start = readAt(0, 16);
  const uint64_t fontOffset = Bytes{start}.u32(0) == tag("ttcf") ? Bytes{start}.u32(12) : 0;
  const std::string top = readAt(fontOffset, 12);
  const uint32_t version = Bytes{top}.u32(0);
  if (version != 0x00010000 && version != tag("true") && version != tag("OTTO")) return false;
  const uint32_t numTables = Bytes{top}.u16(4);
  const std::string dir = readAt(fontOffset + 12, uint64_t(numTables) * 16);
  const Bytes d{dir};
  Table headT, nameT;
  for (uint32_t i = 0; i < numTables && d.has(uint64_t(i) * 16, 16); ++i) {
    const Table t{d.u32(i * 16 + 8), d.u32(i * 16 + 12), true};
    if (d.u32(i * 16) == tag("head")) headT = t;
    if (d.u32(i * 16) == tag("name")) nameT = t;
  }
  if (!headT.found || !nameT.found) return false;
  const std::string headData = readAt(headT.offset, 54);
  const std::string nameData = readAt(nameT.offset, std::min<uint32_t>(nameT.length, 1u << 20));
  const uint32_t macStyle = Bytes{headData}.u16(44);
  face.family = familyName(Bytes{nameData}, Table{0, static_cast<uint32_t>(nameData.size()), true});
  face.bold = (macStyle & 1) != 0;
  face.italic = (macStyle & 2) != 0;
  return !face.family.empty();
}

bool TrueTypeFont::parse(std::string* error) {
  const Bytes b{m_data};
  auto fail = [&](const char* why) {
    if (error) *error = why;
    return false;
  };
  if (!fontOffsetOf(b, m_fontOffset, error)) return false;

  const Table head = findTable(b, m_fontOffset, tag("head"));
  if (!head.found || head.length < 54) return fail("no complete 'head' table");
  m_unitsPerEm = static_cast<int>(b.u16(head.offset + 18));
  if (m_unitsPerEm < 16 || m_unitsPerEm > 16384) return fail("units per em out of range");
  m_longLoca = b.s16(head.offset + 50) != 0;
  const uint32_t macStyle = b.u16(head.offset + 44);
  m_face.bold = (macStyle & 1) != 0;
  m_face.italic = (macStyle & 2) != 0;

  const Table maxp = findTable(b, m_fontOffset, tag("maxp"));
  if (!maxp.found || maxp.length < 6) return fail("no 'maxp' table");
  m_numGlyphs = b.u16(maxp.offset + 4);
  if (m_numGlyphs == 0) return fail("font without glyphs");

  const Table hhea = findTable(b, m_fontOffset, tag("hhea"));
  if (!hhea.found || hhea.length < 36) return fail("no complete 'hhea' table");
  m_ascender = b.s16(hhea.offset + 4);
  m_descender = b.s16(hhea.offset + 6);
  m_numHMetrics = b.u16(hhea.offset + 34);

  const Table hmtx = findTable(b, m_fontOffset, tag("hmtx"));
  if (!hmtx.found || m_numHMetrics == 0 || hmtx.length < uint64_t(m_numHMetrics) * 4)
    return fail("no complete 'hmtx' table");
  m_hmtx = hmtx.offset;
  m_hmtxLength = hmtx.length;

  // Outlines are optional (a CFF font has none we read): without them a glyph's
  // ink is taken as its advance.
  const Table loca = findTable(b, m_fontOffset, tag("loca"));
  const Table glyf = findTable(b, m_fontOffset, tag("glyf"));
  if (loca.found && glyf.found) {
    m_loca = loca.offset;
    m_locaLength = loca.length;
    m_glyf = glyf.offset;
    m_glyfLength = glyf.length;
  }

  // The character map: full Unicode (format 12) where the font has it, else the
  // Basic Multilingual Plane (format 4); a symbol font's map as the last resort.
  const Table cmap = findTable(b, m_fontOffset, tag("cmap"));
  if (!cmap.found || cmap.length < 4) return fail("no 'cmap' table");
  int bestRank = 0;
  const uint32_t n = b.u16(cmap.offset + 2);
  for (uint32_t i = 0; i < n; ++i) {
    const uint64_t rec = cmap.offset + 4 + uint64_t(i) * 8;
    if (!b.has(rec, 8)) break;
    const uint32_t platform = b.u16(rec), encoding = b.u16(rec + 2), sub = b.u32(rec + 4);
    if (sub >= cmap.length) continue;
    const uint32_t at = cmap.offset + sub;
    const uint32_t format = b.u16(at);
    const bool unicode = platform == 0 || (platform == 3 && (encoding == 1 || encoding == 10));
    int rank = 0;
    if (format == 12 && unicode) rank = 4;
    else if (format == 4 && unicode) rank = 3;
    else if (format == 4 && platform == 3 && encoding == 0) rank = 1;
    if (rank <= bestRank) continue;
    const uint32_t length = format == 12 ? b.u32(at + 4) : b.u16(at + 2);
    if (!b.has(at, length) || length < (format == 12 ? 16u : 14u)) continue;
    bestRank = rank;
    m_cmap = at;
    m_cmapLength = length;
    m_cmapFormat = static_cast<int>(format);
    m_symbol = rank == 1;
  }
  if (bestRank == 0) return fail("no Unicode character map of format 4 or 12");

  const Table os2 = findTable(b, m_fontOffset, tag("OS/2"));
  if (os2.found && os2.length >= 90 && b.u16(os2.offset) >= 2) m_capHeight = b.s16(os2.offset + 88);
  if (m_capHeight <= 0) {
    const Box h = bounds(glyphIndex(U'H'));
    m_capHeight = h.empty || glyphIndex(U'H') == 0 ? 0 : h.yMax;
  }
  m_face.family = familyName(b, findTable(b, m_fontOffset, tag("name")));
  return true;
}

uint32_t TrueTypeFont::glyphIndex(char32_t c) const {
  uint32_t code = static_cast<uint32_t>(c);
  if (m_symbol) {
    // Symbol fonts map their characters into the private use area U+F000-F0FF.
    if (code < 0x100) code |= 0xF000;
  }
  const uint32_t g = m_cmapFormat == 12 ? lookupFormat12(code) : lookupFormat4(code);
  return g < m_numGlyphs ? g : 0;
}

uint32_t TrueTypeFont::lookupFormat4(uint32_t c) const {
  if (c > 0xFFFF) return 0;
  const Bytes b{m_data};
  const uint32_t segCount = b.u16(m_cmap + 6) / 2;
  const uint64_t ends = m_cmap + 14, starts = ends + uint64_t(segCount) * 2 + 2;
  const uint64_t deltas = starts + uint64_t(segCount) * 2, rangeOffsets = deltas + uint64_t(segCount) * 2;
  if (segCount == 0 || rangeOffsets + uint64_t(segCount) * 2 > uint64_t(m_cmap) + m_cmapLength) return 0;
  // The first segment whose end is at or past c.
  uint32_t lo = 0, hi = segCount;
  while (lo < hi) {
    const uint32_t mid = (lo + hi) / 2;
    if (b.u16(ends + uint64_t(mid) * 2) < c) lo = mid + 1;
    else hi = mid;
  }
  if (lo == segCount) return 0;
  const uint32_t start = b.u16(starts + uint64_t(lo) * 2);
  if (start > c) return 0;
  const uint32_t delta = b.u16(deltas + uint64_t(lo) * 2);
  const uint64_t rangeAt = rangeOffsets + uint64_t(lo) * 2;
  const uint32_t rangeOffset = b.u16(rangeAt);
  if (rangeOffset == 0) return (c + delta) & 0xFFFF;
  // The offset counts from the idRangeOffset entry itself into the glyph id array.
  const uint64_t at = rangeAt + rangeOffset + uint64_t(c - start) * 2;
  if (at + 2 > uint64_t(m_cmap) + m_cmapLength) return 0;
  const uint32_t g = b.u16(at);
  return g == 0 ? 0 : (g + delta) & 0xFFFF;
}

uint32_t TrueTypeFont::lookupFormat12(uint32_t c) const {
  const Bytes b{m_data};
  const uint32_t numGroups = b.u32(m_cmap + 12);
  const uint64_t groups = m_cmap + 16;
  if (uint64_t(numGroups) * 12 > m_cmapLength - 16) return 0;
  uint32_t lo = 0, hi = numGroups;
  while (lo < hi) {
    const uint32_t mid = lo + (hi - lo) / 2;
    if (b.u32(groups + uint64_t(mid) * 12 + 4) < c) lo = mid + 1;
    else hi = mid;
  }
  if (lo == numGroups) return 0;
  const uint64_t g = groups + uint64_t(lo) * 12;
  const uint32_t start = b.u32(g);
  if (start > c) return 0;
  return b.u32(g + 8) + (c - start);
}

int TrueTypeFont::advance(uint32_t glyph) const {
  const Bytes b{m_data};
  // Glyphs past the last full metric share its advance (monospaced tails).
  const uint32_t i = std::min(glyph, m_numHMetrics - 1);
  return static_cast<int>(b.u16(m_hmtx + uint64_t(i) * 4));
}

TrueTypeFont::Box TrueTypeFont::bounds(uint32_t glyph) const {
  const Bytes b{m_data};
  Box box;
  if (glyph >= m_numGlyphs) return box;
  if (m_glyfLength == 0) {
    // No outlines we can read: the advance from the left bearing, capital high.
    const uint64_t lsbAt = glyph < m_numHMetrics
                               ? m_hmtx + uint64_t(glyph) * 4 + 2
                               : m_hmtx + uint64_t(m_numHMetrics) * 4 + uint64_t(glyph - m_numHMetrics) * 2;
    const int adv = advance(glyph);
    if (adv <= 0 || lsbAt + 2 > uint64_t(m_hmtx) + m_hmtxLength) return box;
    const int lsb = b.s16(lsbAt);
    box = Box{static_cast<int16_t>(lsb), 0, static_cast<int16_t>(std::max(lsb, adv - lsb)),
              static_cast<int16_t>(m_capHeight > 0 ? m_capHeight : m_unitsPerEm * 7 / 10), false};
    return box;
  }
  uint64_t from, to;
  if (m_longLoca) {
    if (uint64_t(glyph + 1) * 4 + 4 > m_locaLength) return box;
    from = b.u32(m_loca + uint64_t(glyph) * 4);
    to = b.u32(m_loca + uint64_t(glyph) * 4 + 4);
  } else {
    if (uint64_t(glyph + 1) * 2 + 2 > m_locaLength) return box;
    from = uint64_t(b.u16(m_loca + uint64_t(glyph) * 2)) * 2;
    to = uint64_t(b.u16(m_loca + uint64_t(glyph) * 2 + 2)) * 2;
  }
  if (to <= from || from + 10 > m_glyfLength) return box;  // no outline
  const uint64_t at = m_glyf + from;
  box.xMin = static_cast<int16_t>(b.s16(at + 2));
  box.yMin = static_cast<int16_t>(b.s16(at + 4));
  box.xMax = static_cast<int16_t>(b.s16(at + 6));
  box.yMax = static_cast<int16_t>(b.s16(at + 8));
  box.empty = box.xMax < box.xMin || box.yMax < box.yMin;
  return box;
}
