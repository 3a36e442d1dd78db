#include "drawings/OdCmColor.h"

#include <array>

using namespace OdCmEntityColor;

namespace {

// The ACI rendering palette, 0x00RRGGBB by index. Index 0 (by block) has no
// colour of its own and is kept black; 7 shows white on the usual dark canvas.
// Indices 10..249 are 24 hue ramps, so the primaries of 1..6 and the white of
// 7 come back at 10, 50, 90, 130, 170, 210 and 255.
constexpr std::array<uint32_t, 256> kAciRgb = {
    0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF, 0x0000FF, 0xFF00FF, 0xFFFFFF,
    0x808080, 0xC0C0C0, 0xFF0000, 0xFF7F7F, 0xA50000, 0xA55252, 0x7F0000, 0x7F3F3F,
    0x4C0000, 0x4C2626, 0x260000, 0x261313, 0xFF3F00, 0xFF9F7F, 0xA52900, 0xA56752,
    0x7F1F00, 0x7F4F3F, 0x4C1300, 0x4C2F26, 0x260900, 0x261713, 0xFF7F00, 0xFFBF7F,
    0xA55200, 0xA57C52, 0x7F3F00, 0x7F5F3F, 0x4C2600, 0x4C3926, 0x261300, 0x261C13,
    0xFFBF00, 0xFFDF7F, 0xA57C00, 0xA59152, 0x7F5F00, 0x7F6F3F, 0x4C3900, 0x4C4226,
    0x261C00, 0x262113, 0xFFFF00, 0xFFFF7F, 0xA5A500, 0xA5A552, 0x7F7F00, 0x7F7F3F,
    0x4C4C00, 0x4C4C26, 0x262600, 0x262613, 0xBFFF00, 0xDFFF7F, 0x7CA500, 0x91A552,
    0x5F7F00, 0x6F7F3F, 0x394C00, 0x424C26, 0x1C2600, 0x212613, 0x7FFF00, 0xBFFF7F,
    0x52A500, 0x7CA552, 0x3F7F00, 0x5F7F3F, 0x264C00, 0x394C26, 0x132600, 0x1C2613,
    0x3FFF00, 0x9FFF7F, 0x29A500, 0x67A552, 0x1F7F00, 0x4F7F3F, 0x134C00, 0x2F4C26,
    0x092600, 0x172613, 0x00FF00, 0x7FFF7F, 0x00A500, 0x52A552, 0x007F00, 0x3F7F3F,
    0x004C00, 0x264C26, 0x002600, 0x132613, 0x00FF3F, 0x7FFF9F, 0x00A529, 0x52A567,
    0x007F1F, 0x3F7F4F, 0x004C13, 0x264C2F, 0x002609, 0x132617, 0x00FF7F, 0x7FFFBF,
    0x00A552, 0x52A57C, 0x007F3F, 0x3F7F5F, 0x004C26, 0x264C39, 0x002613, 0x13261C,
    0x00FFBF, 0x7FFFDF, 0x00A57C, 0x52A591, 0x007F5F, 0x3F7F6F, 0x004C39, 0x264C42,
    0x00261C, 0x132621, 0x00FFFF, 0x7FFFFF, 0x00A5A5, 0x52A5A5, 0x007F7F, 0x3F7F7F,
    0x004C4C, 0x264C4C, 0x002626, 0x132626, 0x00BFFF, 0x7FDFFF, 0x007CA5, 0x5291A5,
    0x005F7F, 0x3F6F7F, 0x00394C, 0x26424C, 0x001C26, 0x132126, 0x007FFF, 0x7FBFFF,
    0x0052A5, 0x527CA5, 0x003F7F, 0x3F5F7F, 0x00264C, 0x26394C, 0x001326, 0x131C26,
    0x003FFF, 0x7F9FFF, 0x0029A5, 0x5267A5, 0x001F7F, 0x3F4F7F, 0x00134C, 0x262F4C,
    0x000926, 0x131726, 0x0000FF, 0x7F7FFF, 0x0000A5, 0x5252A5, 0x00007F, 0x3F3F7F,
    0x00004C, 0x26264C, 0x000026, 0x131326, 0x3F00FF, 0x9F7FFF, 0x2900A5, 0x6752A5,
    0x1F007F, 0x4F3F7F, 0x13004C, 0x2F264C, 0x090026, 0x171326, 0x7F00FF, 0xBF7FFF,
    0x5200A5, 0x7C52A5, 0x3F007F, 0x5F3F7F, 0x26004C, 0x39264C, 0x130026, 0x1C1326,
    0xBF00FF, 0xDF7FFF, 0x7C00A5, 0x9152A5, 0x5F007F, 0x6F3F7F, 0x39004C, 0x42264C,
    0x1C0026, 0x211326, 0xFF00FF, 0xFF7FFF, 0xA500A5, 0xA552A5, 0x7F007F, 0x7F3F7F,
    0x4C004C, 0x4C264C, 0x260026, 0x261326, 0xFF00BF, 0xFF7FDF, 0xA5007C, 0xA55291,
    0x7F005F, 0x7F3F6F, 0x4C0039, 0x4C2642, 0x26001C, 0x261321, 0xFF007F, 0xFF7FBF,
    0xA50052, 0xA5527C, 0x7F003F, 0x7F3F5F, 0x4C0026, 0x4C2639, 0x260013, 0x26131C,
    0xFF003F, 0xFF7F9F, 0xA50029, 0xA55267, 0x7F001F, 0x7F3F4F, 0x4C0013, 0x4C262F,
    0x260009, 0x261317, 0x333333, 0x505050, 0x696969, 0x828282, 0xBEBEBE, 0xFFFFFF,
};

constexpr uint32_t kMethodShift = 24;
constexpr uint32_t kRgbMask = 0x00FFFFFF;
constexpr uint32_t kIndexMask = 0x0000FFFF;

constexpr uint32_t raw(ColorMethod method, uint32_t low = 0) {
  return (uint32_t{method} << kMethodShift) | low;
}

constexpr bool isKnownMethod(uint32_t byte) {
  return byte >= kByLayer && byte <= kNone;
}

constexpr bool isColorIndex(int aci) {
  return aci >= kACIminimum && aci <= kACImaximum;
}

constexpr uint8_t component(uint32_t rgb, int shift) {
  return static_cast<uint8_t>((rgb >> shift) & 0xFF);
}

constexpr size_t kBlobSize = 24;

void putLe32(std::string& out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

uint32_t getLe32(std::string_view in, size_t at) {
  uint32_t v = 0;
  for (int i = 0; i < 4; ++i) v |= uint32_t{static_cast<uint8_t>(in[at + i])} << (8 * i);
  return v;
}

}  // namespace

bool OdCmColor::setColorMethod(ColorMethod method) {
  if (!isKnownMethod(method)) return false;
  if (method == colorMethod()) return true;
  // The index or RGB the colour has now; logical colours fall back to the
  // standard index so that the result is always a usable colour.
  const int16_t current = colorIndex();
  const bool hasIndex = isColorIndex(current) && !isByPen();
  const int16_t index = hasIndex ? current : int16_t{kACIstandard};
  switch (method) {
    case kByColor: {
      const uint32_t rgb = isByColor() ? (m_rgbm & kRgbMask) : lookupRGB(index);
      m_rgbm = raw(kByColor, rgb);
      break;
    }
    case kByACI:
    case kByPen:
    case kLayerOff:
    case kLayerFrozen:
      m_rgbm = raw(method, static_cast<uint32_t>(index));
      break;
    default:  // logical methods carry no value
      m_rgbm = raw(method);
      break;
  }
  m_colorName = OdString();
  m_bookName = OdString();
  return true;
}

bool OdCmColor::setColorIndex(int16_t aci) {
  uint32_t next;
  if (aci == kACIbyBlock) {
    next = raw(kByBlock);
  } else if (aci == kACIbyLayer) {
    next = raw(kByLayer);
  } else if (aci == kACInone) {
    next = raw(kNone);
  } else if (isColorIndex(aci)) {
    next = raw(kByACI, static_cast<uint32_t>(aci));
  } else {
    return false;
  }
  m_rgbm = next;
  m_colorName = OdString();
  m_bookName = OdString();
  return true;
}

int16_t OdCmColor::colorIndex() const {
  switch (colorMethod()) {
    case kByLayer: return kACIbyLayer;
    case kByBlock: return kACIbyBlock;
    case kForeground: return kACIforeground;
    case kNone: return kACInone;
    case kByColor: return static_cast<int16_t>(lookupACI(red(), green(), blue()));
    default: return static_cast<int16_t>(m_rgbm & kIndexMask);
  }
}

void OdCmColor::setRGB(uint8_t r, uint8_t g, uint8_t b) {
  m_rgbm = raw(kByColor, (uint32_t{r} << 16) | (uint32_t{g} << 8) | b);
  m_colorName = OdString();
  m_bookName = OdString();
}

// An index colour's RGB comes from the palette, so that index and true
// colours can be drawn and compared alike.
static uint32_t rgbOf(const OdCmColor& c) {
  switch (c.colorMethod()) {
    case kByColor: return c.color() & kRgbMask;
    case kByACI:
    case kLayerOff:
    case kLayerFrozen:
    case kForeground: return OdCmColor::lookupRGB(c.colorIndex());
    default: return 0;
  }
}

uint8_t OdCmColor::red() const { return component(rgbOf(*this), 16); }
uint8_t OdCmColor::green() const { return component(rgbOf(*this), 8); }
uint8_t OdCmColor::blue() const { return component(rgbOf(*this), 0); }

bool OdCmColor::setColor(uint32_t rawColor) {
  const uint32_t methodByte = rawColor >> kMethodShift;
  if (!isKnownMethod(methodByte)) return false;
  const auto method = static_cast<ColorMethod>(methodByte);
  const uint32_t index = rawColor & kIndexMask;
  uint32_t next;
  switch (method) {
    case kByColor:
      next = rawColor;
      break;
    case kByACI: {
      // Writers put the logical indices here too; read them as their methods.
      OdCmColor c;
      if (index > uint32_t{kACInone} || !c.setColorIndex(static_cast<int16_t>(index))) return false;
      next = c.m_rgbm;
      break;
    }
    case kLayerOff:
    case kLayerFrozen:
      if (!isColorIndex(static_cast<int>(index))) return false;
      next = raw(method, index);
      break;
    case kByPen:
      next = raw(method, index);
      break;
    default:
      next = raw(method);
      break;
  }
  m_rgbm = next;
  m_colorName = OdString();
  m_bookName = OdString();
  return true;
}

bool OdCmColor::setNames(const OdString& colorName, const OdString& bookName) {
  if (!isByColor()) return false;
  m_colorName = colorName;
  m_bookName = bookName;
  return true;
}

OdString OdCmColor::colorNameForDisplay() const {
  static const wchar_t* const kNamed[] = {L"red", L"yellow", L"green", L"cyan",
                                          L"blue", L"magenta", L"white"};
  switch (colorMethod()) {
    case kByLayer: return OdString(L"ByLayer");
    case kByBlock: return OdString(L"ByBlock");
    case kForeground: return OdString(L"Foreground");
    case kNone: return OdString(L"None");
    case kByColor:
      if (hasColorName()) return hasBookName() ? m_bookName + OdString(L"$") + m_colorName : m_colorName;
      return OdString::format(L"%u,%u,%u", unsigned{red()}, unsigned{green()}, unsigned{blue()});
    default: {
      const int16_t index = colorIndex();
      if (colorMethod() != kByPen && index >= 1 && index <= 7) return OdString(kNamed[index - 1]);
      return OdString::format(L"%d", int{index});
    }
  }
}

uint32_t OdCmColor::lookupRGB(int aci) {
  if (aci < 0 || aci >= static_cast<int>(kAciRgb.size())) return 0;
  return kAciRgb[static_cast<size_t>(aci)];
}

int OdCmColor::lookupACI(uint8_t r, uint8_t g, uint8_t b) {
  int best = kACIminimum;
  long bestDistance = -1;
  for (int aci = kACIminimum; aci <= kACImaximum; ++aci) {
    const uint32_t rgb = kAciRgb[static_cast<size_t>(aci)];
    const long dr = long{component(rgb, 16)} - r;
    const long dg = long{component(rgb, 8)} - g;
    const long db = long{component(rgb, 0)} - b;
    const long distance = dr * dr + dg * dg + db * db;
    if (bestDistance < 0 || distance < bestDistance) {
      best = aci;
      bestDistance = distance;
      if (distance == 0) break;
    }
  }
  return best;
}

OdCmColor OdCmColor::fromDxf(int16_t code62, std::optional<int32_t> code420,
                             std::optional<std::string_view> code430) {
  OdCmColor c;
  if (code420) {
    const auto rgb = static_cast<uint32_t>(*code420) & kRgbMask;
    c.setRGB(component(rgb, 16), component(rgb, 8), component(rgb, 0));
    if (code430 && !code430->empty()) {
      const size_t dollar = code430->find('$');
      if (dollar == std::string_view::npos) {
        c.setNames(OdString::fromUtf8(*code430));
      } else {
        c.setNames(OdString::fromUtf8(code430->substr(dollar + 1)),
                   OdString::fromUtf8(code430->substr(0, dollar)));
      }
    }
    return c;
  }
  if (code62 < 0 && isColorIndex(-code62)) {
    c.m_rgbm = raw(kLayerOff, static_cast<uint32_t>(-code62));
    return c;
  }
  if (!c.setColorIndex(code62)) c = OdCmColor();
  return c;
}

int16_t OdCmColor::dxfAci() const {
  const int16_t index = colorIndex();
  return isLayerOff() ? static_cast<int16_t>(-index) : index;
}

std::optional<int32_t> OdCmColor::dxfTrueColor() const {
  if (!isByColor()) return std::nullopt;
  return static_cast<int32_t>(m_rgbm & kRgbMask);
}

std::optional<std::string> OdCmColor::dxfColorName() const {
  if (!hasColorName()) return std::nullopt;
  return colorNameForDisplay().toUtf8();
}

std::string OdCmColor::toBlob() const {
  std::string out;
  out.reserve(kBlobSize);
  putLe32(out, kBlobSize);
  putLe32(out, 1);
  putLe32(out, m_rgbm);
  out.append(kBlobSize - out.size(), '\0');
  return out;
}

std::optional<OdCmColor> OdCmColor::fromBlob(std::string_view bytes) {
  if (bytes.size() != kBlobSize || getLe32(bytes, 0) != kBlobSize) return std::nullopt;
  OdCmColor c;
  if (!c.setColor(getLe32(bytes, 8))) return std::nullopt;
  return c;
}
