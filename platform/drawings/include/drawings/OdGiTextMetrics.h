// How wide and how high a piece of text is in a text style, as the geometry of
// dimensions needs it: whether the text fits between the extension lines, where
// the dimension line breaks around it, how large its frame is.
//
// The measure is the ink of the text, as CAD programs take it for those
// decisions: from the left edge of the first glyph to the right edge of the last,
// and from the lowest to the highest glyph. Text height is the height of a
// capital letter, for TrueType fonts too (the em is larger by the font's em to
// cap-height ratio).
//
// The host may install its own measurer (real font rendering) with
// odSetTextMetrics(); the default one reads the TrueType files installed here and
// carries tables for fonts whose files are not available (shape fonts, and
// TrueType fonts that drawings often name).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "drawings/OdString.h"

class OdDbObjectId;
class OdDbTextStyleTableRecord;

// What a text style (STYLE record) says about the font of its text.
struct OdGiTextStyle {
  OdString fontFile;     // code 3: "arial.ttf", "txt", "romans.shx"; empty when only typeface names the font
  OdString bigFontFile;  // code 4: shape font for Asian characters
  // TrueType styles from R2000 on also name the family in the "ACAD" extended data
  // (1000), with LOGFONT-like flags (1071): italic 0x01000000, bold 0x02000000,
  // low byte pitch (1 fixed, 2 variable) | family (0x10 roman, 0x20 swiss, 0x30 modern).
  OdString typeface;
  bool bold = false;
  bool italic = false;
  int pitchAndFamily = 0;
  double widthFactor = 1.0;  // code 41
  double oblique = 0.0;      // code 50, radians
  double fixedHeight = 0.0;  // code 40; 0 when each text gives its own height
  bool vertical = false;     // bit 4 of code 70

  static OdGiTextStyle fromRecord(const OdDbTextStyleTableRecord& record);
  // The style of a STYLE record id; the default style ("txt") for a null id.
  static OdGiTextStyle fromId(const OdDbObjectId& styleId);
};

// Extents of one line of text laid out from the origin along the baseline, before
// any rotation, in drawing units.
struct OdGiTextExtents {
  double minX = 0.0, maxX = 0.0;  // ink; maxX < minX when nothing is inked
  double minY = 0.0, maxY = 0.0;  // ink, up from the baseline
  double advance = 0.0;           // where the next character would start
  bool empty() const { return maxX < minX; }
  double width() const { return empty() ? 0.0 : maxX - minX; }
  double height() const { return empty() ? 0.0 : maxY - minY; }
};

class OdGiTextMetrics {
public:
  virtual ~OdGiTextMetrics() = default;
  // `plainText` is one line of characters, without MTEXT formatting codes;
  // `height` the text height (of a capital), a style's fixed height already
  // applied by the caller. The style's width factor and obliquing apply.
  virtual OdGiTextExtents extents(const OdString& plainText, double height, const OdGiTextStyle& style) const = 0;
  // The font's line ascent above and descent below the baseline, both positive.
  virtual double ascent(double height, const OdGiTextStyle& style) const = 0;
  virtual double descent(double height, const OdGiTextStyle& style) const = 0;

  // The width of the ink: what dimension geometry compares and frames.
  double width(const OdString& plainText, double height, const OdGiTextStyle& style) const {
    return extents(plainText, height, style).width();
  }
};

// Which font the default measurer uses for a style, and how.
struct OdGiFontMatch {
  enum class Kind { TrueType, Shape };
  Kind kind = Kind::Shape;
  std::string path;          // TrueType: the file measured
  std::string table;         // the built-in table ("txt", "simplex"; "arial": for the characters it lists)
  double capHeightPerEm = 0; // TrueType: the capital's height in ems of the font the style names
  double widthScale = 1.0;   // a condensed face measured as its regular one, narrowed
  bool substitute = false;   // not the font the style names (that one is not installed)
};

// The default measurer.
//
// TrueType: a file of the style's name in the font folders (any letter case) is
// used as it is. Otherwise a metric-compatible substitute (Liberation fonts for
// Arial, Times New Roman and Courier New: the same advance widths), then the
// style's family, then a font of the same kind (serif, sans, fixed pitch). Arial
// and Play, when not installed, have built-in tables of the glyphs dimension text
// uses most (Arial's ASCII, Play's digits and signs): those measure the characters
// they list, the substitute the rest.
//
// Shape fonts (.shx) are measured with built-in tables: "txt" from the gaps that a
// CAD program left in the dimension lines of real drawings; "simplex" and
// "romans" from the Hershey simplex Roman font they derive from; other shape fonts
// as simplex. Characters of a big font are taken as square. Vertical styles are
// measured as horizontal text.
//
// Fonts are found and read on first use; it may be used from several threads.
class OdGiDefaultTextMetrics : public OdGiTextMetrics {
public:
  explicit OdGiDefaultTextMetrics(std::vector<std::string> fontDirs = {"/usr/share/fonts", "/usr/local/share/fonts"});
  ~OdGiDefaultTextMetrics() override;

  OdGiTextExtents extents(const OdString& plainText, double height, const OdGiTextStyle& style) const override;
  double ascent(double height, const OdGiTextStyle& style) const override;
  double descent(double height, const OdGiTextStyle& style) const override;

  OdGiFontMatch match(const OdGiTextStyle& style) const;

private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// The measurer in use: the host's, or the default one (made on first use).
const OdGiTextMetrics& odTextMetrics();
// Installs the host's measurer; null goes back to the default. Meant for start-up:
// a reference handed out before stays valid, but measures with the old one.
void odSetTextMetrics(std::shared_ptr<const OdGiTextMetrics> metrics);
