// Pictures as SVG: well-formed documents, the page fitted and flipped, strokes and
// colours for white paper, and the RENDER command.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <numbers>
#include <random>
#include <regex>
#include <sstream>

#include "host/HostCommandLine.h"
#include "host/HostSession.h"
#include "host/HostSvg.h"

namespace {

struct Element { std::string name; std::map<std::string, std::string> attributes; std::string text; };

// A strict reader of the XML the writer produces: nesting, quoting and character
// references checked; elements in document order. Throws on anything malformed.
std::vector<Element> parseXml(const std::string& s) {
  std::vector<Element> out;
  std::vector<size_t> open;  // indices into out
  auto fail = [&](size_t at, const std::string& why) {
    throw std::runtime_error(why + " at byte " + std::to_string(at));
  };
  auto checkText = [&](size_t from, size_t to) {
    for (size_t i = from; i < to; ++i) {
      if (s[i] == '<' || (static_cast<unsigned char>(s[i]) < 0x20 && s[i] != '\n' && s[i] != '\t')) fail(i, "bad character");
      if (s[i] != '&') continue;
      size_t semi = s.find(';', i);
      std::string ref = s.substr(i + 1, semi - i - 1);
      if (semi == std::string::npos || !(ref == "amp" || ref == "lt" || ref == "gt" || ref == "quot" || ref == "apos"))
        fail(i, "bad reference");
    }
  };
  size_t i = s.rfind("?>", 100);
  if (s.compare(0, 5, "<?xml") != 0 || i == std::string::npos) fail(0, "no declaration");
  for (i += 2; i < s.size();) {
    size_t lt = s.find('<', i);
    if (lt == std::string::npos) {
      if (s.find_first_not_of(" \n", i) != std::string::npos) fail(i, "text after the root");
      break;
    }
    if (!open.empty()) {
      checkText(i, lt);
      out[open.back()].text += s.substr(i, lt - i);
    }
    size_t gt = s.find('>', lt);
    if (gt == std::string::npos) fail(lt, "unclosed tag");
    std::string tag = s.substr(lt + 1, gt - lt - 1);
    i = gt + 1;
    if (tag[0] == '/') {
      if (open.empty() || out[open.back()].name != tag.substr(1)) fail(lt, "mismatched end tag " + tag);
      open.pop_back();
      continue;
    }
    if (open.empty() && !out.empty()) fail(lt, "second root");
    bool empty = tag.back() == '/';
    if (empty) tag.pop_back();
    Element e;
    size_t p = tag.find_first_of(" \n");
    e.name = tag.substr(0, p);
    while (p != std::string::npos && (p = tag.find_first_not_of(" \n", p)) != std::string::npos) {
      size_t eq = tag.find('=', p);
      if (eq == std::string::npos || eq + 1 >= tag.size() || tag[eq + 1] != '"') fail(lt + p, "bad attribute");
      size_t end = tag.find('"', eq + 2);
      if (end == std::string::npos) fail(lt + p, "unquoted attribute");
      std::string name = tag.substr(p, eq - p);
      if (e.attributes.count(name)) fail(lt + p, "repeated attribute " + name);
      checkText(lt + 1 + eq + 2, lt + 1 + end);
      e.attributes[name] = tag.substr(eq + 2, end - eq - 2);
      p = end + 1;
    }
    out.push_back(e);
    if (!empty) open.push_back(out.size() - 1);
  }
  if (!open.empty()) fail(s.size(), "unclosed " + out[open.back()].name);
  return out;
}

std::map<std::string, int> counts(const std::vector<Element>& elements) {
  std::map<std::string, int> n;
  for (const auto& e : elements) ++n[e.name];
  return n;
}

const Element& first(const std::vector<Element>& elements, const std::string& name) {
  for (const auto& e : elements)
    if (e.name == name) return e;
  throw std::runtime_error("no " + name);
}

double attr(const Element& e, const std::string& name) { return std::stod(e.attributes.at(name)); }

OdGiTraits traits(int aci, int lineWeight = 25) { return {OdGiColor::fromAci(aci), lineWeight}; }

std::string tempPath(const std::string& name) {
  return (std::filesystem::path(::testing::TempDir()) / (std::to_string(std::random_device()()) + name)).string();
}

}  // namespace

TEST(HostSvg, PrimitivesBecomeElementsOnAFlippedPage) {
  HostSvgWriter w;
  w.line({traits(7), {0, 0}, {10, 10}});
  w.arc({traits(1, 100), {5, 5}, 5, 0, std::numbers::pi / 2});
  w.arc({traits(1), {5, 5}, 1, 0, 2 * std::numbers::pi});  // a full turn is a circle
  w.polyline({traits(3, 0), {{0, 10}, {10, 10}, {10, 0}}, false});
  w.polyline({traits(3), {{1, 1}, {2, 1}, {2, 2}}, true});
  w.polygon({traits(5), {{0, 0}, {1, 0}, {0, 1}}});
  w.point({traits(2), {3, 4}});
  OdGiText t;
  t.traits = {{255, 255, 255, false}, 25};
  t.position = {2, 3};
  t.height = 1;
  t.rotation = std::numbers::pi / 6;
  t.align = OdGiText::kCenter;
  t.text = L"a<b & \"c\" \u00D8\x01";
  t.box[0] = t.box[1] = t.box[2] = t.box[3] = {2, 3};
  w.text(t);

  HostSvgOptions o;
  o.size = 100;
  o.margin = 20;
  const std::vector<Element> svg = parseXml(w.svg(o));
  std::map<std::string, int> want = {{"svg", 1}, {"rect", 1}, {"g", 1}, {"line", 1}, {"path", 1}, {"circle", 2},
                                     {"polyline", 1}, {"polygon", 2}, {"text", 1}};
  EXPECT_EQ(counts(svg), want);
  const Element& root = svg.front();
  EXPECT_EQ(attr(root, "width"), 140);
  EXPECT_EQ(attr(root, "height"), 140);
  EXPECT_EQ(first(svg, "rect").attributes.at("fill"), "#ffffff");

  // Drawing y up, page y down: (0,0) is the bottom left corner inside the margin.
  const Element& line = first(svg, "line");
  for (auto [name, value] : {std::pair{"x1", 20}, {"y1", 120}, {"x2", 120}, {"y2", 20}}) EXPECT_EQ(attr(line, name), value);
  EXPECT_EQ(line.attributes.at("stroke"), "#000000") << "colour 7 on white paper";
  EXPECT_EQ(attr(line, "stroke-width"), 0.94) << "0.25 mm";

  // A quarter from (10,5) to (5,10): counter-clockwise, which SVG's y-down page
  // calls the negative direction, sweep flag 0.
  const Element& arc = first(svg, "path");
  EXPECT_EQ(arc.attributes.at("d"), "M120,70 A50,50 0 0 0 70,20");
  EXPECT_EQ(arc.attributes.at("stroke"), "#ff0000");
  EXPECT_EQ(attr(arc, "stroke-width"), 3.78) << "1 mm";
  EXPECT_EQ(first(svg, "polyline").attributes.at("stroke-width"), "0.75") << "the thinnest line still shows";
  EXPECT_EQ(first(svg, "polygon").attributes.count("fill"), 0u) << "a closed polyline is an outline, unfilled as the group";
  EXPECT_EQ(svg[svg.size() - 3].attributes.at("fill"), "#0000ff") << "a polygon is filled";

  const Element& text = first(svg, "text");
  EXPECT_EQ(text.attributes.at("transform"), "translate(40,90) rotate(-30)");
  EXPECT_EQ(text.attributes.at("text-anchor"), "middle");
  EXPECT_EQ(text.attributes.at("fill"), "#000000") << "pure white would vanish";
  EXPECT_NEAR(attr(text, "font-size"), 10 / 0.7, 0.01) << "text height is capital height";
  EXPECT_EQ(text.text, "a&lt;b &amp; &quot;c&quot; \u00D8") << "control characters dropped";
}

TEST(HostSvg, EmptyDrawingAndSampleDrawingAreWellFormed) {
  OdDbDatabasePtr empty = OdDbDatabase::createNew();
  OdGiVectorizeStats stats;
  auto svg = parseXml(hostDrawingSvg(*empty, {}, &stats));
  EXPECT_EQ(counts(svg).count("g"), 1u);
  EXPECT_EQ(stats.drawn, 0u);

  const auto sample = std::filesystem::path(__FILE__).parent_path() / "../../../samples/dimstyles.dxf";
  if (!std::filesystem::exists(sample)) GTEST_SKIP() << "sample drawing missing";
  OdDbDatabasePtr db = OdDbDatabase::readDxfFile(sample.string());
  svg = parseXml(hostDrawingSvg(*db, {}, &stats));
  std::map<std::string, int> n = counts(svg);
  EXPECT_GT(n["line"], 50);
  EXPECT_GT(n["text"], 20);
  EXPECT_GT(n["polygon"], 10) << "arrowheads";
  EXPECT_TRUE(stats.skipped.empty()) << hostRenderSummary(stats);
  // Everything on the page: no coordinate outside the picture.
  const Element& root = svg.front();
  for (const auto& e : svg)
    if (e.name == "line")
      for (const char* a : {"x1", "x2"}) {
        EXPECT_GE(attr(e, a), 0);
        EXPECT_LE(attr(e, a), attr(root, "width"));
      }
}

TEST(HostSvg, RenderCommandWritesTheActiveDrawing) {
  const std::string path = tempPath("picture.svg");
  const std::string bad = tempPath("no/such/folder/x.svg");
  const std::string saved = tempPath("drawing.dxf");
  const std::string beside = std::filesystem::path(saved).replace_extension(".svg").string();
  std::istringstream in("RENDER\nNEW\nIMP\nRENDER\n" + path + "\nRENDER\n" + bad + "\nSAVEAS\n" + saved +
                        "\nRENDER\n\nQUIT\n");
  std::ostringstream out;
  HostCommandLine cl(in, out, true);
  HostSession session(cl);
  session.run();
  const std::string transcript = out.str();
  EXPECT_NE(transcript.find("Command: RENDER\nNo drawing is open.\n"), std::string::npos) << transcript;
  EXPECT_NE(transcript.find("Enter file name for the picture <Drawing.svg>: " + path + "\nWrote " + path +
                            ": 0 entities drawn, 0 hidden.\n"),
            std::string::npos)
      << transcript;
  EXPECT_NE(transcript.find("Cannot write the picture: cannot write " + bad + ".\n"), std::string::npos) << transcript;
  std::stringstream bytes;
  bytes << std::ifstream(path).rdbuf();
  EXPECT_NO_THROW(parseXml(bytes.str()));
  std::filesystem::remove(path);
  // Enter takes the default: the drawing's name, ending in .svg.
  EXPECT_NE(transcript.find("<" + beside + ">: \nWrote " + beside), std::string::npos) << transcript;
  EXPECT_TRUE(std::filesystem::exists(beside));
  std::filesystem::remove(beside);
  std::filesystem::remove(saved);
}
