// A reader of the few TrueType tables that text measurement needs: the character
// map, the advance widths, the glyph boxes and the vertical metrics. It does not
// draw, hint or kern. Every offset read from the file is checked, so a damaged
// font gives an error, never a read outside the data.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class TrueTypeFont {
public:
  // The ink box of a glyph in font units; empty for glyphs without outlines (space).
  struct Box {
    int16_t xMin = 0, yMin = 0, xMax = 0, yMax = 0;
    bool empty = true;
  };

  // Reads a .ttf or .otf file, or the first font of a .ttc collection. Null with a
  // reason in `error` when the file cannot be read or lacks a table measurement needs.
  static std::unique_ptr<TrueTypeFont> load(const std::string& path, std::string* error = nullptr);
  static std::unique_ptr<TrueTypeFont> fromBytes(std::string bytes, std::string* error = nullptr);

  // Only the family and style of a font file, for finding a family among many files
  // without reading them whole; false when the file is not a font.
  struct Face {
    std::string family;  // "DejaVu Sans"
    bool bold = false, italic = false;
  };
  static bool readFace(const std::string& path, Face& face);

  int unitsPerEm() const { return m_unitsPerEm; }
  const Face& face() const { return m_face; }
  // Glyph 0 (".notdef", drawn for missing characters) when the font has none.
  uint32_t glyphIndex(char32_t c) const;
  bool hasGlyph(char32_t c) const { return glyphIndex(c) != 0; }
  int advance(uint32_t glyph) const;
  Box bounds(uint32_t glyph) const;
  // Height of a capital: OS/2 sCapHeight where the table has it, else the top of "H";
  // 0 when neither is known.
  int capHeight() const { return m_capHeight; }
  // Line ascent and descent (descent negative), from 'hhea'.
  int ascender() const { return m_ascender; }
  int descender() const { return m_descender; }
  uint32_t numGlyphs() const { return m_numGlyphs; }

private:
  TrueTypeFont() = default;
  bool parse(std::string* error);
  uint32_t lookupFormat4(uint32_t c) const;
  uint32_t lookupFormat12(uint32_t c) const;

  std::string m_data;
  uint32_t m_fontOffset = 0;  // of the font's table directory inside a collection
  int m_unitsPerEm = 0;
  int m_ascender = 0, m_descender = 0, m_capHeight = 0;
  uint32_t m_numGlyphs = 0, m_numHMetrics = 0;
  uint32_t m_hmtx = 0, m_hmtxLength = 0;
  uint32_t m_loca = 0, m_locaLength = 0, m_glyf = 0, m_glyfLength = 0;
  bool m_longLoca = false;
  // The character map subtable in use, and how it is read.
  uint32_t m_cmap = 0, m_cmapLength = 0;
  int m_cmapFormat = 0;
  bool m_symbol = false;  // a symbol font: characters sit at U+F000 + the byte
  Face m_face;
};
