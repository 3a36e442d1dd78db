// Colour of a drawing object: logical (by layer, by block, foreground, none),
// an indexed (ACI) colour, a true RGB colour, or a colour-book colour.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "drawings/OdString.h"

namespace OdCmEntityColor {

// The top byte of a raw 32-bit colour. These byte values are what DWG colour
// values, MLEADER colour codes and the XDATA colour blob store, so they are fixed.
enum ColorMethod : uint8_t {
  kByLayer = 0xC0,
  kByBlock = 0xC1,
  kByColor = 0xC2,  // true colour, 0x00RRGGBB in the low bits
  kByACI = 0xC3,    // index 1..255 in the low bits
  kByPen = 0xC4,
  kForeground = 0xC5,
  kLayerOff = 0xC6,
  kLayerFrozen = 0xC7,
  kNone = 0xC8,
};

// Index values with a fixed meaning in DXF group code 62 and in colorIndex().
enum ACIcolorMethod : int16_t {
  kACIbyBlock = 0,
  kACIclear = 0,
  kACIminimum = 1,
  kACIforeground = 7,
  kACIstandard = 7,
  kACImaximum = 255,
  kACIbyLayer = 256,
  kACInone = 257,
};

}  // namespace OdCmEntityColor

class OdCmColor {
public:
  // A new colour follows its layer, as a new entity does.
  OdCmColor() = default;
  explicit OdCmColor(OdCmEntityColor::ColorMethod method) { setColorMethod(method); }

  OdCmEntityColor::ColorMethod colorMethod() const {
    return static_cast<OdCmEntityColor::ColorMethod>(m_rgbm >> 24);
  }
  // Switching method keeps as much of the colour as the new method can hold:
  // to ByColor the current RGB, to an index method the current (nearest) index.
  // A colour with no value of its own (ByLayer, ByBlock, None) becomes ACI 7.
  // Returns false, leaving the colour unchanged, for a byte that is no method.
  bool setColorMethod(OdCmEntityColor::ColorMethod method);

  bool isByLayer() const { return colorMethod() == OdCmEntityColor::kByLayer; }
  bool isByBlock() const { return colorMethod() == OdCmEntityColor::kByBlock; }
  bool isByColor() const { return colorMethod() == OdCmEntityColor::kByColor; }
  bool isByACI() const { return colorMethod() == OdCmEntityColor::kByACI; }
  bool isByPen() const { return colorMethod() == OdCmEntityColor::kByPen; }
  bool isForeground() const { return colorMethod() == OdCmEntityColor::kForeground; }
  bool isLayerOff() const { return colorMethod() == OdCmEntityColor::kLayerOff; }
  bool isLayerFrozen() const { return colorMethod() == OdCmEntityColor::kLayerFrozen; }
  bool isNone() const { return colorMethod() == OdCmEntityColor::kNone; }

  // 0 → ByBlock, 256 → ByLayer, 257 → None, 1..255 → ByACI (7 stays ACI 7;
  // foreground is a method of its own). Returns false for any other value.
  bool setColorIndex(int16_t aci);
  // 0 ByBlock, 256 ByLayer, 7 foreground, 257 none; a true colour gives its
  // nearest index; ByPen gives the pen number.
  int16_t colorIndex() const;

  void setRGB(uint8_t red, uint8_t green, uint8_t blue);
  // The colour's RGB: a true colour's own, an index colour's from the ACI
  // table (foreground as ACI 7). Colours without one (ByLayer, ByBlock, None,
  // ByPen) read as 0.
  uint8_t red() const;
  uint8_t green() const;
  uint8_t blue() const;

  // Raw form: method in the top byte, then 0x00RRGGBB or the index. Always
  // canonical (logical methods carry zero low bits, as DXF files write them),
  // so equal colours have equal raw values.
  uint32_t color() const { return m_rgbm; }
  // Returns false, leaving the colour unchanged, for an unknown method byte or
  // an index the method cannot hold.
  bool setColor(uint32_t raw);

  // Colour-book colours: a true colour that also carries its book and name.
  // Only a true colour can be named; returns false otherwise. Any later change
  // of the colour's value drops the names, since they would no longer match.
  bool setNames(const OdString& colorName, const OdString& bookName = OdString());
  const OdString& colorName() const { return m_colorName; }
  const OdString& bookName() const { return m_bookName; }
  bool hasColorName() const { return !m_colorName.isEmpty(); }
  bool hasBookName() const { return !m_bookName.isEmpty(); }

  // "ByLayer", "ByBlock", "red" … "white" for ACI 1..7, the decimal index for
  // other indices, "R,G,B" for a true colour, "BOOK$NAME" for a book colour,
  // "Foreground", "None".
  OdString colorNameForDisplay() const;

  friend bool operator==(const OdCmColor& a, const OdCmColor& b) {
    return a.m_rgbm == b.m_rgbm && a.m_colorName == b.m_colorName && a.m_bookName == b.m_bookName;
  }
  friend bool operator!=(const OdCmColor& a, const OdCmColor& b) { return !(a == b); }

  // 0x00RRGGBB of an index 0..255 (0 for anything else).
  static uint32_t lookupRGB(int aci);
  // The index 1..255 nearest to an RGB by squared distance; on a tie the
  // lowest index wins, so pure red gives 1 rather than its twin 10.
  static int lookupACI(uint8_t red, uint8_t green, uint8_t blue);

  // From an object's DXF codes: 62 (index; negative = layer off), 420 (true
  // colour, which wins over 62 because 62 then only holds an approximation)
  // and 430 ("BOOK$NAME", meaningful only with 420). A 62 value that is no
  // index reads as ByLayer, the colour an object without one gets.
  static OdCmColor fromDxf(int16_t code62, std::optional<int32_t> code420 = std::nullopt,
                           std::optional<std::string_view> code430 = std::nullopt);
  // The code 62 value: the nearest index for a true colour, negative for a
  // layer that is off, 257 for None (which has no code 62 meaning).
  int16_t dxfAci() const;
  // The code 420 value, for true colours only.
  std::optional<int32_t> dxfTrueColor() const;
  // The code 430 value (UTF-8), for named colours only.
  std::optional<std::string> dxfColorName() const;

  // The 24-byte colour value of XDATA 1004 groups: int32 size (24), int32 1,
  // int32 raw colour, 12 zero bytes; integers little-endian. Names do not fit
  // in it and are not written.
  std::string toBlob() const;
  // nullopt unless the bytes have that size and hold a valid raw colour. The
  // second word and the tail are not checked: their meaning is not known.
  static std::optional<OdCmColor> fromBlob(std::string_view bytes);

private:
  uint32_t m_rgbm = uint32_t{OdCmEntityColor::kByLayer} << 24;
  OdString m_colorName;
  OdString m_bookName;
};
