// Text measurement: the TrueType reader against values read by an independent
// reader (fontTools 4.38 on the Debian font packages), the choice of font for a
// text style, and agreement with the text widths a CAD program left in real
// drawings.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <numbers>
#include <optional>
#include <sstream>

#include "TestSupport.h"
#include "TrueTypeFont.h"
#include "drawings/DimText.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbText.h"
#include "drawings/OdGiTextMetrics.h"

namespace fs = std::filesystem;

namespace {

const std::string kLiberation = "/usr/share/fonts/truetype/liberation2/";
const std::string kDejaVu = "/usr/share/fonts/truetype/dejavu/";

#define REQUIRE_FONTS()                                                                                  \
  if (!fs::exists(kLiberation + "LiberationSans-Regular.ttf") || !fs::exists(kDejaVu + "DejaVuSans.ttf")) \
  GTEST_SKIP() << "fonts-liberation2 and fonts-dejavu-core are not installed (scripts/setup)"

// Measuring with the fonts of the packages only, not whatever else is installed.
OdGiDefaultTextMetrics packagedFonts() { return OdGiDefaultTextMetrics({kLiberation, kDejaVu}); }

OdGiTextStyle styleOf(const wchar_t* fontFile, const wchar_t* typeface = L"", uint32_t flags = 0) {
  OdGiTextStyle s;
  s.fontFile = fontFile;
  s.typeface = typeface;
  s.italic = (flags & 0x01000000u) != 0;
  s.bold = (flags & 0x02000000u) != 0;
  s.pitchAndFamily = static_cast<int>(flags & 0xFF);
  return s;
}

}  // namespace

// Liberation Sans maps through format 4, DejaVu Sans through format 12 (and its
// OS/2 table is too old for a cap height, so its 'H' gives it); missing characters
// give glyph 0 with the .notdef advance.
TEST(TrueTypeFont, ReadsWhatAnIndependentReaderReads) {
  REQUIRE_FONTS();
  std::map<std::string, std::unique_ptr<TrueTypeFont>> fonts;
  for (const char* f : {"LiberationSans-Regular.ttf", "DejaVuSans.ttf"}) {
    std::string error;
    fonts[f] = TrueTypeFont::load((f[0] == 'D' ? kDejaVu : kLiberation) + f, &error);
    ASSERT_TRUE(fonts[f]) << error;
  }
  const TrueTypeFont &lib = *fonts["LiberationSans-Regular.ttf"], &dv = *fonts["DejaVuSans.ttf"];
  EXPECT_EQ(std::vector<int>({lib.unitsPerEm(), lib.capHeight(), lib.ascender(), lib.descender()}),
            std::vector<int>({2048, 1409, 1854, -434}));
  EXPECT_EQ(std::vector<int>({dv.unitsPerEm(), dv.capHeight(), dv.ascender(), dv.descender()}),
            std::vector<int>({2048, 1493, 1901, -483}));
  struct Row {
    const TrueTypeFont& font;
    char32_t c;
    uint32_t glyph;
    int advance, xMin, yMin, xMax, yMax;  // xMax < xMin: no outline
  };
  const Row rows[] = {
      {lib, U'M', 48, 1706, 168, 0, 1538, 1409},       {lib, U' ', 3, 569, 0, 0, -1, 0},
      {lib, U'o', 82, 1139, 86, -20, 1053, 1102},      {lib, U'\u0416', 967, 1891, 28, 0, 1863, 1409},
      {lib, U'\u044F', 1024, 1109, 17, 0, 967, 1082},  {lib, U'\u20AC', 2088, 1139, 16, -20, 1110, 1430},
      {lib, U'\u4E2D', 0, 1536, 205, 0, 1330, 1409},   {lib, U'\U0001F600', 0, 1536, 205, 0, 1330, 1409},
      {dv, U'M', 48, 1767, 201, 0, 1567, 1493},        {dv, U' ', 3, 651, 0, 0, -1, 0},
      {dv, U'\u0416', 939, 2206, 40, 0, 2166, 1493},   {dv, U'\u2205', 3216, 1784, 155, -20, 1629, 1454},
      {dv, U'\U0001F600', 5857, 2135, 170, -150, 1965, 1646}, {dv, U'\u4E2D', 0, 1229, 102, -362, 1126, 1444},
  };
  for (const Row& r : rows) {
    const std::string what = (&r.font == &lib ? "Liberation U+" : "DejaVu U+") + std::to_string(uint32_t(r.c));
    const uint32_t g = r.font.glyphIndex(r.c);
    EXPECT_EQ(g, r.glyph) << what;
    EXPECT_EQ(r.font.advance(g), r.advance) << what;
    const TrueTypeFont::Box b = r.font.bounds(g);
    EXPECT_EQ(b.empty, r.xMax < r.xMin) << what;
    if (!b.empty) {
      EXPECT_EQ(std::vector<int>({b.xMin, b.yMin, b.xMax, b.yMax}), std::vector<int>({r.xMin, r.yMin, r.xMax, r.yMax}))
          << what;
    }
  }
}

// A damaged file is refused with a reason, or read without any lookup going astray.
TEST(TrueTypeFont, SurvivesDamagedFiles) {
  REQUIRE_FONTS();
  const std::string good = testsupport::slurp(kLiberation + "LiberationSans-Regular.ttf");
  std::string error;
  EXPECT_FALSE(TrueTypeFont::fromBytes(good.substr(0, 11), &error));
  EXPECT_FALSE(TrueTypeFont::fromBytes("X" + good.substr(1), &error));
  EXPECT_EQ(error, "not a TrueType or OpenType font");
  std::vector<std::string> damaged;
  for (size_t cut : {100ul, 400ul, 5000ul, good.size() / 3, good.size() / 2, good.size() - 100})
    damaged.push_back(good.substr(0, cut));
  for (size_t at : {16ul, 28ul, 40ul, 200ul, 300ul})  // offsets and lengths in the table directory
    damaged.push_back(good.substr(0, at) + "\xFF\xFF\xFF\xFF" + good.substr(at + 4));
  for (const std::string& bytes : damaged) {
    auto font = TrueTypeFont::fromBytes(bytes, &error);
    if (!font) {
      EXPECT_FALSE(error.empty());
    }
    for (char32_t c = 0; font && c < 0x500; ++c) {
      const uint32_t g = font->glyphIndex(c);
      ASSERT_LT(g, font->numGlyphs());
      EXPECT_GE(font->advance(g), 0);
      font->bounds(g);
    }
  }
}

// Every field of a STYLE record, and the family with its flags from the "ACAD"
// extended data even when another application's data comes first.
TEST(TextStyle, IsReadFromStyleRecords) {
  OdDbDatabasePtr db = OdDbDatabase::createNew(DxfVersion::R2018);
  db->registerApp(L"OTHER");
  auto styles = odOpen<OdDbSymbolTable>(db->getTextStyleTableId(), OdDb::kForWrite);
  OdSmartPtr<OdDbTextStyleTableRecord> rec = OdDbTextStyleTableRecord::createObject();
  rec->setDxfName("STYLE");
  db->addOdDbObject(rec.get(), styles->objectId());
  DxfTagList& t = rec->tagsForWrite();
  for (auto [code, text] : std::initializer_list<std::pair<int, const char*>>{
           {100, "AcDbSymbolTableRecord"}, {100, "AcDbTextStyleTableRecord"}, {2, "x"}, {70, "4"}, {40, "3.5"},
           {41, "0.7"}, {50, "15.0"}, {71, "0"}, {3, "isocp.shx"}, {4, "gbcbig.shx"}})
    t.emplace_back(code, text);
  rec->setName(L"Tall");
  OdResBufPtr x = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(L"OTHER"));
  x->setNext(OdResBuf::newRb(OdResBuf::kDxfXdAsciiString, OdString(L"not a family")))
      ->setNext(OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(L"ACAD")))
      ->setNext(OdResBuf::newRb(OdResBuf::kDxfXdAsciiString, OdString(L"Arial")))
      ->setNext(OdResBuf::newRb(OdResBuf::kDxfXdInteger32, int32_t(0x03000022)));
  rec->setXData(x.get());

  const OdGiTextStyle s = OdGiTextStyle::fromId(styles->add(rec.get()));
  EXPECT_EQ(s.fontFile, L"isocp.shx");
  EXPECT_EQ(s.bigFontFile, L"gbcbig.shx");
  EXPECT_EQ(std::vector<double>({s.fixedHeight, s.widthFactor, s.oblique}),
            std::vector<double>({3.5, 0.7, 15.0 * std::numbers::pi / 180.0}));
  EXPECT_TRUE(s.vertical);
  EXPECT_EQ(s.typeface, L"Arial");
  EXPECT_TRUE(s.bold && s.italic);
  EXPECT_EQ(s.pitchAndFamily, 0x22);
  const OdGiTextStyle standard = OdGiTextStyle::fromId(styles->getAt(L"Standard"));
  EXPECT_EQ(standard.fontFile, L"txt");
  EXPECT_TRUE(standard.typeface.isEmpty() && !standard.vertical && !standard.bold);
  EXPECT_EQ(OdGiTextStyle::fromId(OdDbObjectId()).fontFile, L"txt");
}

// The font measured for each kind of style found in real drawings.
TEST(TextMetrics, ChoosesAFontForEveryStyle) {
  REQUIRE_FONTS();
  const OdGiDefaultTextMetrics m = packagedFonts();
  constexpr auto TT = OdGiFontMatch::Kind::TrueType, SH = OdGiFontMatch::Kind::Shape;
  const double arial = 1466.0 / 2048.0;
  struct Row {
    OdGiTextStyle style;
    OdGiFontMatch::Kind kind;
    const char* used;  // file name (and "+" a table measuring what it lists), or shape table
    bool substitute;
    double capPerEm = 0;  // 0: not checked
    double widthScale = 1.0;
  };
  const Row rows[] = {
      {styleOf(L"arial.ttf"), TT, "LiberationSans-Regular.ttf+arial", true, arial},
      {styleOf(L"C:\\Windows\\Fonts\\ARIALBD.TTF"), TT, "LiberationSans-Bold.ttf", true, arial},
      {styleOf(L"Arial"), TT, "LiberationSans-Regular.ttf+arial", true, arial},
      {styleOf(L"", L"Arial", 0x22), TT, "LiberationSans-Regular.ttf+arial", true, arial},
      {styleOf(L"", L"Arial", 0x02000022), TT, "LiberationSans-Bold.ttf", true, arial},
      {styleOf(L"ARIALN.TTF", L"Arial Narrow", 34), TT, "LiberationSans-Regular.ttf", true, arial, 0.82},
      {styleOf(L"times.ttf"), TT, "LiberationSerif-Regular.ttf", true, 1341.0 / 2048},
      {styleOf(L"couri.ttf"), TT, "LiberationMono-Italic.ttf", true},
      {styleOf(L"DejaVuSans.ttf"), TT, "DejaVuSans.ttf", false, 1493.0 / 2048},
      {styleOf(L"dejavusansmono.TTF"), TT, "DejaVuSansMono.ttf", false},
      {styleOf(L"", L"DejaVu Serif", 0x01000012), TT, "DejaVuSerif-Italic.ttf", false},
      // Not installed: a font of the kind the flags give (any, fixed pitch, roman).
      {styleOf(L"Play-Regular.ttf", L"Play", 256), TT, "LiberationSans-Regular.ttf+play", true},
      {styleOf(L"consola.ttf", L"Consolas", 49), TT, "LiberationMono-Regular.ttf", true},
      {styleOf(L"GARA.TTF", L"Garamond", 18), TT, "LiberationSerif-Regular.ttf", true},
      {styleOf(L"txt"), SH, "txt", false},
      {styleOf(L"TXT.SHX"), SH, "txt", false},
      {styleOf(L""), SH, "txt", false},
      {styleOf(L"romans.shx"), SH, "simplex", false},
      {styleOf(L"SIMPLEX"), SH, "simplex", false},
      {styleOf(L"isocp.shx"), SH, "simplex", true},
  };
  for (const Row& r : rows) {
    const std::string what = r.style.fontFile.toUtf8() + " / " + r.style.typeface.toUtf8();
    const OdGiFontMatch got = m.match(r.style);
    EXPECT_EQ(got.kind, r.kind) << what;
    const std::string table = got.table.empty() ? "" : "+" + got.table;
    EXPECT_EQ(r.kind == TT ? fs::path(got.path).filename().string() + table : got.table, r.used) << what;
    EXPECT_EQ(got.substitute, r.substitute) << what;
    if (r.capPerEm > 0) {
      EXPECT_NEAR(got.capHeightPerEm, r.capPerEm, 1e-12) << what;
    }
    EXPECT_EQ(got.widthScale, r.widthScale) << what;
  }
}

// A file of the style's font name is used as it is, whatever its case, before any
// substitute; an unreadable one is passed over; with no fonts the stroke font measures,
// or the table of the named font where there is one.
TEST(TextMetrics, PrefersTheNamedFileAndDegradesWithoutFonts) {
  REQUIRE_FONTS();
  const fs::path dir = fs::temp_directory_path() / ("textmetrics-" + std::to_string(::getpid()));
  fs::create_directories(dir / "sub");
  fs::copy_file(kDejaVu + "DejaVuSans.ttf", dir / "sub" / "Arial.TTF", fs::copy_options::overwrite_existing);
  std::ofstream(dir / "times.ttf") << "not a font";
  const OdGiDefaultTextMetrics own({dir.string()});
  const OdGiFontMatch arial = own.match(styleOf(L"arial.ttf")), times = own.match(styleOf(L"times.ttf"));
  EXPECT_EQ(arial.path, (dir / "sub" / "Arial.TTF").string());
  EXPECT_FALSE(arial.substitute);
  EXPECT_NEAR(arial.capHeightPerEm, 1493.0 / 2048, 1e-12);  // the file's own capital
  EXPECT_EQ(times.path, arial.path);
  EXPECT_TRUE(times.substitute);
  const OdGiDefaultTextMetrics none({(dir / "missing").string()});
  EXPECT_EQ(none.match(styleOf(L"times.ttf")).table, "simplex");
  EXPECT_EQ(none.match(styleOf(L"arial.ttf")).table, "arial");
  EXPECT_GT(none.width(L"12.5", 2.5, styleOf(L"arial.ttf")), 0.0);
  fs::remove_all(dir);
}

// Without the Play font file its table measures digits, period and parentheses:
// the widths are the breaks in the dimension lines of a drawing set in Play (the
// Voron build plate: text height 5.5, DIMGAP 0.762 x DIMSCALE 2 at either side).
TEST(TextMetrics, PlayTableAgreesWithTheDrawingItWasTakenFrom) {
  REQUIRE_FONTS();
  const OdGiDefaultTextMetrics m = packagedFonts();
  const OdGiTextStyle play = styleOf(L"Play-Regular.ttf", L"Play");
  ASSERT_EQ(m.match(play).table, "play");
  const std::pair<const wchar_t*, double> breaks[] = {{L"164.5", 23.107322}, {L"240.0", 23.751390}, {L"89.5", 18.725966},
                                                      {L"52.0", 18.709017}, {L"(150.0)", 29.149695}, {L"(75.0)", 24.234441}};
  for (const auto& [text, gapLength] : breaks)
    EXPECT_NEAR(m.width(text, 5.5, play), gapLength - 4 * 0.762, 0.001 * gapLength) << OdString(text).toUtf8();
}

TEST(TextMetrics, MeasuresInkScaledByHeightWidthFactorAndObliquing) {
  REQUIRE_FONTS();
  const OdGiDefaultTextMetrics m = packagedFonts();
  const OdGiTextStyle dejavu = styleOf(L"DejaVuSans.ttf");
  const double k = 2.5 / 1493;
  // The height is the capital's: 'H' stands exactly that high. Ink runs from the
  // first glyph's left edge to the last one's right edge.
  const OdGiTextExtents h = m.extents(L"H", 2.5, dejavu);
  EXPECT_NEAR(h.minY, 0.0, 1e-12);
  EXPECT_NEAR(h.maxY, 2.5, 1e-12);
  EXPECT_NEAR(h.advance, 1540 * k, 1e-12);
  EXPECT_NEAR(m.width(L"HM", 2.5, dejavu), (1540 - 201 + 1567) * k, 1e-12);
  EXPECT_NEAR(m.width(L"HM", 5.0, dejavu), 2 * m.width(L"HM", 2.5, dejavu), 1e-12);
  OdGiTextStyle changed = dejavu;
  changed.widthFactor = 0.7;
  EXPECT_NEAR(m.width(L"HM", 2.5, changed), 0.7 * m.width(L"HM", 2.5, dejavu), 1e-12);
  changed = dejavu;
  changed.oblique = 15.0 * std::numbers::pi / 180.0;
  EXPECT_NEAR(m.width(L"H", 2.5, changed), h.width() + 2.5 * std::tan(changed.oblique), 1e-12);
  // Spaces advance without ink.
  const OdGiTextExtents spaces = m.extents(L"   ", 2.5, dejavu);
  EXPECT_TRUE(spaces.empty() && spaces.width() == 0.0 && m.extents(L"", 2.5, dejavu).empty());
  EXPECT_NEAR(spaces.advance, 3 * 651 * k, 1e-12);

  // A missing character takes the .notdef glyph, a missing diameter sign the 'Ø';
  // line metrics come in the same scale.
  const OdGiTextStyle arial = styleOf(L"arial.ttf");
  const double ka = 2.5 / 1466;
  EXPECT_NEAR(m.extents(L"\u4E2D", 2.5, arial).advance, 1536 * ka, 1e-12);
  EXPECT_DOUBLE_EQ(m.width(L"\u22055", 2.5, arial), m.width(L"\u00D85", 2.5, arial));
  EXPECT_NEAR(m.ascent(2.5, arial), 1854 * ka, 1e-12);
  EXPECT_NEAR(m.descent(2.5, arial), 434 * ka, 1e-12);

  // Shape fonts: a big font's characters are square, others come from the table.
  OdGiTextStyle big = styleOf(L"simplex.shx");
  EXPECT_NEAR(m.extents(L"\u4E2D\u6587", 2.1, big).advance, 2 * 2.0, 1e-12);
  big.bigFontFile = L"gbcbig.shx";
  EXPECT_NEAR(m.extents(L"\u4E2D\u6587", 2.1, big).advance, 2 * 2.1, 1e-12);
}

TEST(TextMetrics, HostMayReplaceTheMeasurer) {
  struct Fixed : OdGiTextMetrics {
    OdGiTextExtents extents(const OdString& s, double height, const OdGiTextStyle&) const override {
      return {0.0, s.getLength() * height, 0.0, height, s.getLength() * height};
    }
    double ascent(double h, const OdGiTextStyle&) const override { return h; }
    double descent(double, const OdGiTextStyle&) const override { return 0.0; }
  };
  const OdGiTextMetrics& before = odTextMetrics();
  EXPECT_NE(dynamic_cast<const OdGiDefaultTextMetrics*>(&before), nullptr);
  odSetTextMetrics(std::make_shared<Fixed>());
  const OdGiTextMetrics& host = odTextMetrics();
  EXPECT_EQ(host.width(L"abc", 2.0, OdGiTextStyle()), 6.0);
  odSetTextMetrics(std::make_shared<Fixed>());
  EXPECT_EQ(host.width(L"ab", 1.0, OdGiTextStyle()), 2.0);  // still alive after being replaced
  odSetTextMetrics(nullptr);
  EXPECT_EQ(&odTextMetrics(), &before);
}

// ---- agreement with real drawings ------------------------------------------------------

namespace {


// A width that a CAD program worked out for a text.
struct Sample {
  std::string how;
  OdString text;
  OdGiTextStyle style;
  double height = 0, width = 0;
};

// One line of plain text without font, height or stacking changes; empty otherwise.
OdString simpleText(const OdString& contents) {
  std::wstring w = contents.str();
  if (w.rfind(L"\\A1;", 0) == 0) w.erase(0, 4);
  for (size_t i = 0; i < w.size(); ++i)
    if (w[i] == L'{' || w[i] == L'}' || w[i] == L'^' || (w[i] == L'\\' && (i + 1 >= w.size() || w[i + 1] != L'U')))
      return OdString();
  return odMTextPlainText(OdString(w));
}

std::optional<Sample> sampleOf(const OdDbMText& text, std::string how, double width) {
  Sample s{std::move(how), simpleText(text.contents()), OdGiTextStyle::fromId(text.textStyle()), text.textHeight(),
           width};
  if (s.text.isEmpty() || !(s.height > 0)) return std::nullopt;
  return s;
}

// A dimension block's text whose lines show its width: a dimension line broken
// around the text midway (by the width and DIMGAP on each side), or the leader of a
// radius or diameter ending DIMGAP before the text.
std::optional<Sample> fromDimension(const OdDbDimension& dim) {
  auto block = odOpen<OdDbBlockTableRecord>(dim.dimBlockId());
  if (!block || block->getName().left(2) != L"*D") return std::nullopt;
  OdDbMTextPtr text;
  std::vector<std::pair<OdGePoint3d, OdGePoint3d>> lines;
  for (const OdDbObjectId& id : block->entityIds()) {
    if (auto t = odOpen<OdDbMText>(id)) {
      if (text) return std::nullopt;
      text = t;
    } else if (auto l = odOpen<OdDbLine>(id)) {
      lines.emplace_back(l->startPoint(), l->endPoint());
    }
  }
  if (!text || text->attachment() != OdDbMText::kMiddleCenter) return std::nullopt;
  const OdGePoint3d o = text->location();
  const OdGeVector3d d = text->direction();
  const double n = std::hypot(d.x, d.y), tol = 1e-6 * std::max(1.0, text->textHeight());
  const auto along = [&](const OdGePoint3d& p) { return ((p.x - o.x) * d.x + (p.y - o.y) * d.y) / n; };
  const auto across = [&](const OdGePoint3d& p) { return std::abs((p.y - o.y) * d.x - (p.x - o.x) * d.y) / n; };
  std::optional<double> left, right;
  for (const auto& [a, b] : lines) {
    const double lo = std::min(along(a), along(b)), hi = std::max(along(a), along(b));
    if (across(a) > tol || across(b) > tol || hi - lo < tol) continue;
    if (lo < -tol && hi > tol) return std::nullopt;  // a line through the text
    if (hi <= tol) left = std::max(left.value_or(-1e300), hi);
    if (lo >= -tol) right = std::min(right.value_or(1e300), lo);
  }
  const double gap = std::abs(dim.dimgap()) * (dim.dimscale() > 0 ? dim.dimscale() : 1.0);
  if (left && right && std::abs(*left + *right) <= tol) {
    // Past the extension lines the line was not broken for the text but left out.
    if (auto aligned = OdDbAlignedDimension::cast(&dim)) {
      const double e1 = along(aligned->xLine1Point()), e2 = along(aligned->xLine2Point());
      if (!(std::min(e1, e2) + tol < *left && *right < std::max(e1, e2) - tol)) return std::nullopt;
    }
    return sampleOf(*text, "gap", *right - *left - 2 * gap);
  }
  if ((dim.dimensionType() == 3 || dim.dimensionType() == 4) && !(left && right) && (left || right))
    return sampleOf(*text, "leader", 2 * (std::abs(left ? *left : *right) - gap));
  return std::nullopt;
}

// Newer MTEXT keeps its extents in an embedded object, whose 42 is the width.
std::optional<Sample> fromMText(const OdDbMText& text) {
  bool embedded = false;
  std::optional<double> width;
  text.forEachTag([&](int code, std::string_view value) {
    embedded |= code == 101;
    if (embedded && code == 42 && !width) width = std::stod(std::string(value));
  });
  return width ? sampleOf(text, "mtext", *width) : std::nullopt;
}

double quantile(std::vector<double> v, double q) {
  std::sort(v.begin(), v.end());
  return v.empty() ? 0.0 : v[std::min(v.size() - 1, static_cast<size_t>(q * v.size()))];
}

}  // namespace

// Widths a CAD program worked out for texts in real drawings against ours: the breaks
// it left in dimension lines and leaders, and the extents it stored with MTEXT; the
// median and 90th percentile of the relative error per kind of font are printed.
// Arial's advances are the font's, and the ink boxes of its digits and signs were
// checked against these same drawings; the "txt" table was fitted to them (six
// advances from some forty different texts): for those two this shows consistency.
// No simple text here measures simplex or romans.
TEST(TextMetrics, AgreesWithWidthsInRealDrawings) {
  REQUIRE_FONTS();
  if (!fs::exists(CORPUS_DIR)) GTEST_SKIP() << "no corpus";
  const OdGiDefaultTextMetrics m = packagedFonts();
  std::map<std::string, std::vector<double>> errors;  // by kind of font
  std::vector<std::pair<double, std::string>> worst;
  for (const std::string& file : testsupport::referenceFiles()) {
    OdDbDatabasePtr db = OdDbDatabase::readDxfFile(std::string(CORPUS_DIR) + "/" + file);
    for (const OdDbObjectId& btr : odOpen<OdDbBlockTable>(db->getBlockTableId())->recordIds()) {
      for (const OdDbObjectId& id : odOpen<OdDbBlockTableRecord>(btr)->entityIds()) {
        std::optional<Sample> s;
        if (auto dim = odOpen<OdDbDimension>(id)) s = fromDimension(*dim);
        else if (auto text = odOpen<OdDbMText>(id)) s = fromMText(*text);
        if (!s) continue;
        const OdGiFontMatch f = m.match(s->style);
        const double ours = m.width(s->text, s->height, s->style), error = (ours - s->width) / s->width;
        const std::string table = f.table.empty() ? "" : " + " + f.table;
        errors[f.kind == OdGiFontMatch::Kind::TrueType ? "TrueType (" + fs::path(f.path).filename().string() + table + ")"
                                                         : "shape (" + f.table + ")"]
            .push_back(std::abs(error));
        std::ostringstream line;
        line.precision(4);
        line << 100 * error << "% \"" << s->text.toUtf8() << "\" height " << s->height << ": theirs " << s->width
             << ", ours " << ours << " (" << file << ", " << s->how << ")";
        worst.emplace_back(std::abs(error), line.str());
      }
    }
  }
  std::cout << "text widths against those in real drawings, relative error:\n";
  for (const auto& [kind, e] : errors)
    std::cout << "  " << kind << ": " << e.size() << " texts, median " << 100 * quantile(e, 0.5)
              << "%, 90th percentile " << 100 * quantile(e, 0.9) << "%, largest " << 100 * quantile(e, 1.0) << "%\n";
  std::sort(worst.rbegin(), worst.rend());
  for (size_t i = 0; i < worst.size() && i < 5; ++i) std::cout << "  " << worst[i].second << "\n";

  const auto& tt = errors["TrueType (LiberationSans-Regular.ttf + arial)"];
  const auto& txt = errors["shape (txt)"];
  // Fewer means samples were lost on the way, which would hide disagreement.
  ASSERT_GE(tt.size(), 80u);
  ASSERT_GE(txt.size(), 80u);
  EXPECT_LE(quantile(tt, 0.5), 0.002);
  EXPECT_LE(quantile(tt, 0.9), 0.002);
  EXPECT_LE(quantile(tt, 1.0), 0.005);
  EXPECT_LE(quantile(txt, 1.0), 1e-6);
}
