#include "drawings/OdCmColor.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <set>

using namespace OdCmEntityColor;

namespace {

struct Rgb {
  int r, g, b;
  bool operator==(const Rgb&) const = default;
};

Rgb split(uint32_t rgb) { return {int(rgb >> 16 & 0xFF), int(rgb >> 8 & 0xFF), int(rgb & 0xFF)}; }

Rgb rgbOf(const OdCmColor& c) { return {c.red(), c.green(), c.blue()}; }

// Indices 10..249: 24 hues 15 degrees apart, ten shades each. Even shades
// are fully saturated, odd ones pale (the lowest channel half the level);
// the levels are 100, 65, 50, 30 and 15 per cent of 255. Kept in integers
// (twentieths of 255, quarters of the ramp) so that truncation is exact.
Rgb hueRule(int aci) {
  const int hue = 15 * ((aci - 10) / 10);
  const int shade = (aci - 10) % 10;
  const int level = std::array{20, 13, 10, 6, 3}[shade / 2];
  const bool pale = shade % 2 == 1;
  auto channel = [&](int centre) {
    const int d = std::abs((hue - centre + 540) % 360 - 180);
    const int quarters = d <= 60 ? 4 : d >= 120 ? 0 : (120 - d) / 15;
    return pale ? 255 * level * (4 + quarters) / 160 : 255 * level * quarters / 80;
  };
  return {channel(0), channel(120), channel(240)};
}

std::string fromHex(std::string_view hex) {
  std::string out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2)
    out.push_back(static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  return out;
}

OdCmColor aci(int16_t index) {
  OdCmColor c;
  c.setColorIndex(index);
  return c;
}

OdCmColor rgb(uint8_t r, uint8_t g, uint8_t b) {
  OdCmColor c;
  c.setRGB(r, g, b);
  return c;
}

OdCmColor book(uint8_t r, uint8_t g, uint8_t b, const wchar_t* name, const wchar_t* bookName) {
  OdCmColor c = rgb(r, g, b);
  c.setNames(name, bookName);
  return c;
}

constexpr std::string_view kSampleBlob = "1800000001000000427536C2000000000000000000000000";

}  // namespace

TEST(ColorTest, AciTableFollowsHueRule) {
  for (int i = 10; i <= 249; ++i) EXPECT_EQ(split(OdCmColor::lookupRGB(i)), hueRule(i)) << "ACI " << i;
}

TEST(ColorTest, AciTableEntriesOutsideTheHueRule) {
  const std::pair<int, uint32_t> cases[] = {
      {0, 0x000000},   {1, 0xFF0000},   {2, 0xFFFF00},   {3, 0x00FF00},   {4, 0x00FFFF},
      {5, 0x0000FF},   {6, 0xFF00FF},   {7, 0xFFFFFF},   {8, 0x808080},   {9, 0xC0C0C0},
      {250, 0x333333}, {251, 0x505050}, {252, 0x696969}, {253, 0x828282}, {254, 0xBEBEBE},
      {255, 0xFFFFFF}, {-1, 0},         {256, 0},
  };
  for (auto [index, expected] : cases) EXPECT_EQ(OdCmColor::lookupRGB(index), expected) << "ACI " << index;
}

TEST(ColorTest, NearestAciOfEachPaletteColourIsItselfOrItsLowerTwin) {
  std::set<int> twins;
  for (int i = 1; i <= 255; ++i) {
    int first = 1;
    while (OdCmColor::lookupRGB(first) != OdCmColor::lookupRGB(i)) ++first;
    if (first != i) twins.insert(i);
    const Rgb c = split(OdCmColor::lookupRGB(i));
    EXPECT_EQ(OdCmColor::lookupACI(c.r, c.g, c.b), first) << "ACI " << i;
    // Through the class: a true colour reports the same nearest index.
    EXPECT_EQ(rgb(c.r, c.g, c.b).colorIndex(), first) << "ACI " << i;
  }
  // Only the hue ramps' full-intensity primaries and the last gray repeat 1..7.
  EXPECT_EQ(twins, (std::set<int>{10, 50, 90, 130, 170, 210, 255}));
  // Black is not an index colour (0 means by block): the darkest shades 18,
  // 98 and 178 (one channel at 38) tie and the first wins.
  EXPECT_EQ(OdCmColor::lookupACI(0, 0, 0), 18);
  EXPECT_EQ(OdCmColor::lookupACI(250, 5, 5), 1);
}

TEST(ColorTest, SetColorIndexMapsLogicalIndices) {
  const struct { int16_t index; bool ok; ColorMethod method; int16_t back; } cases[] = {
      {0, true, kByBlock, 0},     {256, true, kByLayer, 256}, {257, true, kNone, 257},
      {1, true, kByACI, 1},       {7, true, kByACI, 7},       {255, true, kByACI, 255},
      {-1, false, kByLayer, 256}, {258, false, kByLayer, 256},
  };
  for (const auto& t : cases) {
    OdCmColor c;
    EXPECT_EQ(c.setColorIndex(t.index), t.ok) << t.index;
    EXPECT_EQ(c.colorMethod(), t.method) << t.index;
    EXPECT_EQ(c.colorIndex(), t.back) << t.index;
  }
}

TEST(ColorTest, SetColorMethodKeepsWhatTheNewMethodCanHold) {
  const struct { OdCmColor from; ColorMethod to; Rgb rgb; int16_t index; } cases[] = {
      {aci(30), kByColor, split(OdCmColor::lookupRGB(30)), 30},
      {rgb(250, 5, 5), kByACI, {255, 0, 0}, 1},
      {OdCmColor(), kByACI, {255, 255, 255}, 7},
      {OdCmColor(), kByColor, {255, 255, 255}, 7},
      {aci(3), kForeground, {255, 255, 255}, 7},
      {aci(3), kByBlock, {0, 0, 0}, 0},
      {aci(3), kNone, {0, 0, 0}, 257},
      {aci(3), kLayerOff, {0, 255, 0}, 3},
  };
  for (const auto& t : cases) {
    OdCmColor c = t.from;
    ASSERT_TRUE(c.setColorMethod(t.to));
    EXPECT_EQ(c.colorMethod(), t.to) << c.colorNameForDisplay().toUtf8();
    EXPECT_EQ(rgbOf(c), t.rgb) << c.colorNameForDisplay().toUtf8();
    EXPECT_EQ(c.colorIndex(), t.index) << c.colorNameForDisplay().toUtf8();
  }
  OdCmColor named = book(1, 2, 3, L"N", L"B");
  EXPECT_FALSE(named.setColorMethod(static_cast<ColorMethod>(0x42)));
  EXPECT_TRUE(named.hasBookName());
  named.setColorMethod(kByACI);
  EXPECT_FALSE(named.hasColorName());
}

TEST(ColorTest, RawValuesAreReadAndWrittenCanonically) {
  const struct { uint32_t in; bool ok; uint32_t out; } cases[] = {
      {0xC0000000, true, 0xC0000000}, {0xC0000100, true, 0xC0000000},  // by layer
      {0xC1000000, true, 0xC1000000}, {0xC2C8C8C8, true, 0xC2C8C8C8},
      {0xC3000005, true, 0xC3000005}, {0xC3000000, true, 0xC1000000},  // index 0 is by block
      {0xC3000100, true, 0xC0000000}, {0xC5000007, true, 0xC5000000},
      {0xC8000000, true, 0xC8000000}, {0xC6000003, true, 0xC6000003},
      {0xC3000102, false, 0},         {0xC6000000, false, 0},
      {0xFFFFFFFE, false, 0},         {0x00FF0000, false, 0},
  };
  for (const auto& t : cases) {
    OdCmColor c = aci(42);
    EXPECT_EQ(c.setColor(t.in), t.ok) << std::hex << t.in;
    EXPECT_EQ(c.color(), t.ok ? t.out : aci(42).color()) << std::hex << t.in;
  }
}

TEST(ColorTest, DisplayNames) {
  OdCmColor off;
  off.setColor(0xC6000002);
  const struct { OdCmColor c; const wchar_t* text; } cases[] = {
      {OdCmColor(), L"ByLayer"}, {aci(0), L"ByBlock"}, {aci(1), L"red"}, {aci(6), L"magenta"}, {aci(7), L"white"},
      {aci(8), L"8"}, {aci(10), L"10"} /* red's RGB, not named red */, {aci(255), L"255"},
      {rgb(54, 117, 66), L"54,117,66"}, {rgb(255, 0, 0), L"255,0,0"},
      {book(54, 117, 66, L"GREEN 12", L"MYBOOK"), L"MYBOOK$GREEN 12"}, {book(54, 117, 66, L"GREEN 12", L""), L"GREEN 12"},
      {OdCmColor(kForeground), L"Foreground"}, {OdCmColor(kNone), L"None"}, {off, L"yellow"},
  };
  for (const auto& t : cases) EXPECT_EQ(t.c.colorNameForDisplay().str(), t.text);
}

TEST(ColorTest, Equality) {
  OdCmColor legacyByLayer;
  legacyByLayer.setColor(0xC0000100);
  OdCmColor renamedThenRecoloured = book(1, 2, 3, L"N", L"B");
  renamedThenRecoloured.setRGB(1, 2, 3);
  const struct { OdCmColor a, b; bool equal; } cases[] = {
      {OdCmColor(), legacyByLayer, true},
      {OdCmColor(), aci(256), true},
      {OdCmColor(), aci(0), false},
      {aci(1), rgb(255, 0, 0), false},  // index and true colour differ even with one RGB
      {aci(1), aci(10), false},
      {aci(7), OdCmColor(kForeground), false},
      {rgb(1, 2, 3), rgb(1, 2, 3), true},
      {rgb(1, 2, 3), rgb(1, 2, 4), false},
      {book(1, 2, 3, L"N", L"B"), book(1, 2, 3, L"N", L"B"), true},
      {book(1, 2, 3, L"N", L"B"), book(1, 2, 3, L"N", L"C"), false},
      {book(1, 2, 3, L"N", L"B"), rgb(1, 2, 3), false},
      {renamedThenRecoloured, rgb(1, 2, 3), true},
  };
  for (const auto& t : cases) {
    EXPECT_EQ(t.a == t.b, t.equal) << t.a.colorNameForDisplay().toUtf8() << " vs " << t.b.colorNameForDisplay().toUtf8();
    EXPECT_EQ(t.a != t.b, !t.equal);
  }
  OdCmColor c = aci(5);
  EXPECT_FALSE(c.setNames(L"N", L"B"));  // only true colours carry names
}

TEST(ColorTest, DxfCodesRoundTrip) {
  using S = std::optional<std::string_view>;
  const struct {
    int16_t c62; std::optional<int32_t> c420; S c430;
    ColorMethod method; const wchar_t* text; int16_t aci62;
  } cases[] = {
      {256, {}, {}, kByLayer, L"ByLayer", 256},
      {0, {}, {}, kByBlock, L"ByBlock", 0},
      {7, {}, {}, kByACI, L"white", 7},
      {-3, {}, {}, kLayerOff, L"green", -3},
      // With 420, 62 is written again as the nearest index to the RGB.
      {1, 0x00FF0000, {}, kByColor, L"255,0,0", -1},
      {193, 10175212, {}, kByColor, L"155,66,236", -1},
      {3, 0x367542, S("MYBOOK$GREEN 12"), kByColor, L"MYBOOK$GREEN 12", -1},
      {3, 0x367542, S("GREEN 12"), kByColor, L"GREEN 12", -1},
      {3, {}, S("MYBOOK$GREEN 12"), kByACI, L"green", 3},  // a name needs its RGB
      {300, {}, {}, kByLayer, L"ByLayer", 256},
      {-300, {}, {}, kByLayer, L"ByLayer", 256},
  };
  for (const auto& t : cases) {
    const OdCmColor c = OdCmColor::fromDxf(t.c62, t.c420, t.c430);
    SCOPED_TRACE(testing::Message() << "62=" << t.c62);
    EXPECT_EQ(c.colorMethod(), t.method);
    EXPECT_EQ(c.colorNameForDisplay().str(), t.text);
    EXPECT_EQ(c.dxfTrueColor(), t.c420);
    const Rgb trueRgb = split(static_cast<uint32_t>(t.c420.value_or(0)));
    const int aci62 = t.c420 ? OdCmColor::lookupACI(trueRgb.r, trueRgb.g, trueRgb.b) : t.aci62;
    EXPECT_EQ(c.dxfAci(), aci62);
    const auto name = c.dxfColorName();
    EXPECT_EQ(name, t.c420 && t.c430 ? std::optional<std::string>(*t.c430) : std::nullopt);
    const std::optional<std::string_view> nameView = name ? S(*name) : S();
    EXPECT_EQ(OdCmColor::fromDxf(c.dxfAci(), c.dxfTrueColor(), nameView), c);
  }
}

TEST(ColorTest, BlobRoundTrip) {
  const auto sample = OdCmColor::fromBlob(fromHex(kSampleBlob));
  ASSERT_TRUE(sample.has_value());
  EXPECT_EQ(*sample, rgb(54, 117, 66));
  EXPECT_EQ(sample->toBlob(), fromHex(kSampleBlob));

  for (const OdCmColor& c : {OdCmColor(), aci(0), aci(7), aci(200), rgb(0, 0, 0), OdCmColor(kNone)}) {
    const auto back = OdCmColor::fromBlob(c.toBlob());
    ASSERT_TRUE(back.has_value()) << c.colorNameForDisplay().toUtf8();
    EXPECT_EQ(*back, c);
  }
}

TEST(ColorTest, MalformedBlobsAreRejected) {
  const std::string good = fromHex(kSampleBlob);
  std::string wrongSize = good;
  wrongSize[0] = 0x14;
  std::string noMethod = good;
  noMethod[11] = 0x12;
  const std::string badIndex = fromHex("18000000" "01000000" "020100C3" "000000000000000000000000");
  const std::string cases[] = {"", good.substr(0, 12), good.substr(0, 23), good + '\0', wrongSize, noMethod, badIndex};
  for (const auto& bytes : cases) EXPECT_FALSE(OdCmColor::fromBlob(bytes).has_value()) << bytes.size();
}
