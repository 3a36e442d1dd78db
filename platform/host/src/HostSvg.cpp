#include "host/HostSvg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <numbers>

#include "host/HostApDocManager.h"
#include "host/HostCommandLine.h"

namespace {

// An ordinary sans-serif font's capital letters are about 0.7 of its em size;
// drawing text heights are capital heights.
constexpr double kCapHeightPerEm = 0.7;

// Text as the picture's sans-serif font sets it: advances in em, by kind of character.
class SansSerifMeasure : public OdGiTextMeasure {
public:
  double lineWidth(const OdString& line, double height) const override {
    double em = 0;
    for (wchar_t c : line.view()) em += advance(c);
    return em * height / kCapHeightPerEm;
  }

private:
  static double advance(wchar_t c) {
    if (c > 126) return c == L'\u00B0' ? 0.5 : 0.7;
    if (std::wcschr(L" !',.:;Iijl|`", c)) return 0.32;
    if (std::wcschr(L"()[]{}frt/\\-\"", c)) return 0.4;
    if (std::wcschr(L"szcJ?*", c)) return 0.52;
    if (std::wcschr(L"mwM%@W", c)) return 0.95;
    if (std::wcschr(L"CDGHNOQU&+=<>", c)) return 0.8;
    if (c >= L'A' && c <= L'Z') return 0.68;
    return 0.62;
  }
};

std::string num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  std::string s = buf;
  s.erase(s.find_last_not_of('0') + 1);
  if (s.back() == '.') s.pop_back();
  return s == "-0" ? "0" : s;
}

std::string colorOf(const OdGiColor& c) {
  // The foreground colour is white on dark screens; on white paper it is black,
  // as is pure white, which would vanish.
  if (c.foreground || (c.r == 255 && c.g == 255 && c.b == 255)) return "#000000";
  char buf[8];
  std::snprintf(buf, sizeof buf, "#%02x%02x%02x", c.r, c.g, c.b);
  return buf;
}

std::string escaped(const OdString& text) {
  std::string out;
  for (char c : text.toUtf8()) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default:
        // XML allows no control characters but tab, line feed and carriage return.
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\t') out += c;
    }
  }
  return out;
}

class Page {
public:
  Page(const OdGiExtents& ext, const HostSvgOptions& o) : m_o(o) {
    if (ext.isValid()) m_ext = ext;
    else m_ext.min = m_ext.max = {0, 0};
    double w = m_ext.max.x - m_ext.min.x, h = m_ext.max.y - m_ext.min.y;
    m_scale = std::max(w, h) > 0 ? o.size / std::max(w, h) : 1.0;
    width = w * m_scale + 2 * o.margin;
    height = h * m_scale + 2 * o.margin;
  }
  double width, height;

  double x(double wx) const { return m_o.margin + (wx - m_ext.min.x) * m_scale; }
  double y(double wy) const { return m_o.margin + (m_ext.max.y - wy) * m_scale; }
  std::string at(const OdGePoint2d& p) const { return num(x(p.x)) + "," + num(y(p.y)); }
  double length(double l) const { return l * m_scale; }
  double stroke(int lineWeight) const { return std::max(m_o.minStroke, lineWeight / 100.0 * m_o.pixelsPerMm); }
  std::string stroked(const OdGiTraits& t) const {
    return " stroke=\"" + colorOf(t.color) + "\" stroke-width=\"" + num(stroke(t.lineWeight)) + "\"";
  }
  std::string points(const std::vector<OdGePoint2d>& pts) const {
    std::string s;
    for (const auto& p : pts) s += (s.empty() ? "" : " ") + at(p);
    return s;
  }

private:
  HostSvgOptions m_o;
  OdGiExtents m_ext;
  double m_scale = 1;
};

bool finite(const OdGePoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

class SvgOut : public OdGiSink {
public:
  SvgOut(const Page& page, std::string& out) : m_p(page), m_out(out) {}

  void line(const OdGiLine& l) override {
    if (!finite(l.start) || !finite(l.end)) return;
    m_out += "<line x1=\"" + num(m_p.x(l.start.x)) + "\" y1=\"" + num(m_p.y(l.start.y)) + "\" x2=\"" +
             num(m_p.x(l.end.x)) + "\" y2=\"" + num(m_p.y(l.end.y)) + "\"" + m_p.stroked(l.traits) + "/>\n";
  }
  void arc(const OdGiArc& a) override {
    double sweep = a.endAngle - a.startAngle;
    if (sweep >= 2 * std::numbers::pi - 1e-9) return circle({a.traits, a.center, a.radius});
    OdGePoint2d s{a.center.x + a.radius * std::cos(a.startAngle), a.center.y + a.radius * std::sin(a.startAngle)};
    OdGePoint2d e{a.center.x + a.radius * std::cos(a.endAngle), a.center.y + a.radius * std::sin(a.endAngle)};
    if (!finite(s) || !finite(e)) return;
    std::string r = num(m_p.length(a.radius));
    // Counter-clockwise on the page too; with y pointing down that is SVG's
    // negative angle direction, sweep flag 0.
    m_out += "<path d=\"M" + m_p.at(s) + " A" + r + "," + r + " 0 " + (sweep > std::numbers::pi ? "1" : "0") + " 0 " +
             m_p.at(e) + "\"" + m_p.stroked(a.traits) + "/>\n";
  }
  void circle(const OdGiCircle& c) override {
    if (!finite(c.center)) return;
    m_out += "<circle cx=\"" + num(m_p.x(c.center.x)) + "\" cy=\"" + num(m_p.y(c.center.y)) + "\" r=\"" +
             num(m_p.length(c.radius)) + "\"" + m_p.stroked(c.traits) + "/>\n";
  }
  void polyline(const OdGiPolyline& pl) override {
    if (!std::all_of(pl.points.begin(), pl.points.end(), finite)) return;
    m_out += std::string(pl.closed ? "<polygon" : "<polyline") + " points=\"" + m_p.points(pl.points) + "\"" +
             m_p.stroked(pl.traits) + "/>\n";
  }
  void polygon(const OdGiPolygon& pg) override {
    if (!std::all_of(pg.points.begin(), pg.points.end(), finite)) return;
    // Outlined in the fill colour too, so that thin fills (arrowheads far out) still show.
    OdGiTraits thin = pg.traits;
    thin.lineWeight = 0;
    m_out += "<polygon points=\"" + m_p.points(pg.points) + "\" fill=\"" + colorOf(pg.traits.color) + "\"" +
             m_p.stroked(thin) + "/>\n";
  }
  void point(const OdGiPoint& p) override {
    if (!finite(p.position)) return;
    m_out += "<circle cx=\"" + num(m_p.x(p.position.x)) + "\" cy=\"" + num(m_p.y(p.position.y)) + "\" r=\"" +
             num(std::max(1.0, m_p.stroke(p.traits.lineWeight))) + "\" fill=\"" + colorOf(p.traits.color) +
             "\" stroke=\"none\"/>\n";
  }
  void text(const OdGiText& t) override {
    if (!finite(t.position) || t.text.isEmpty()) return;
    const double degrees = 180 / std::numbers::pi;
    double sx = t.widthFactor * (t.backward ? -1 : 1), sy = t.upsideDown ? -1 : 1;
    std::string transform = "translate(" + m_p.at(t.position) + ")";
    if (t.rotation != 0) transform += " rotate(" + num(-t.rotation * degrees) + ")";
    if (sx != 1 || sy != 1) transform += " scale(" + num(sx) + "," + num(sy) + ")";
    // Slanting to the right in the drawing's y-up glyph space is a negative skew in SVG's.
    if (t.oblique != 0) transform += " skewX(" + num(-t.oblique * degrees) + ")";
    const char* anchor = t.align == OdGiText::kLeft ? "start" : t.align == OdGiText::kCenter ? "middle" : "end";
    m_out += "<text transform=\"" + transform + "\" font-size=\"" + num(m_p.length(t.height) / kCapHeightPerEm) +
             "\" text-anchor=\"" + anchor + "\" fill=\"" + colorOf(t.traits.color) + "\" stroke=\"none\"";
    if (t.fitLength > 0 && sx != 0)
      m_out += " textLength=\"" + num(m_p.length(t.fitLength) / std::abs(sx)) + "\" lengthAdjust=\"spacingAndGlyphs\"";
    m_out += ">" + escaped(t.text) + "</text>\n";
  }

private:
  const Page& m_p;
  std::string& m_out;
};

}  // namespace

std::string HostSvgWriter::svg(const HostSvgOptions& options) const {
  Page page(extents(), options);
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                    num(page.width) + "\" height=\"" + num(page.height) + "\" viewBox=\"0 0 " + num(page.width) + " " +
                    num(page.height) + "\">\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n" +
                    "<g fill=\"none\" stroke-linecap=\"round\" stroke-linejoin=\"round\" font-family=\"sans-serif\">\n";
  SvgOut sink(page, out);
  replay(sink);
  out += "</g>\n</svg>\n";
  return out;
}

std::string hostDrawingSvg(const OdDbDatabase& db, const HostSvgOptions& options, OdGiVectorizeStats* stats) {
  HostSvgWriter writer;
  static const SansSerifMeasure kMeasure;
  OdDbVectorizer vectorizer(writer, &kMeasure);
  vectorizer.drawBlock(db);
  if (stats) *stats = vectorizer.stats();
  return writer.svg(options);
}

bool hostWriteDrawingSvg(const OdDbDatabase& db, const std::string& path, std::string* error, OdGiVectorizeStats* stats) {
  std::string svg = hostDrawingSvg(db, {}, stats);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (out) out << svg;
  if (out.flush()) return true;
  if (error) *error = "cannot write " + path;
  return false;
}

std::string hostRenderSummary(const OdGiVectorizeStats& stats) {
  std::string s = std::to_string(stats.drawn) + " entities drawn, " + std::to_string(stats.hidden) + " hidden";
  if (stats.tooDeep) s += ", " + std::to_string(stats.tooDeep) + " block references nested too deep";
  std::string skipped;
  for (const auto& [name, count] : stats.skipped) skipped += (skipped.empty() ? "" : ", ") + name + " " + std::to_string(count);
  if (!skipped.empty()) s += "; skipped: " + skipped;
  return s;
}

void hostRenderCommand(HostCommandLine& cl, HostApDocument* doc) {
  if (!doc) {
    cl.println("No drawing is open.");
    return;
  }
  std::string dflt = doc->path.empty() ? std::string("Drawing.svg")
                                       : std::filesystem::path(doc->path).replace_extension(".svg").string();
  std::string path = cl.getLine("Enter file name for the picture <" + dflt + ">: ");
  if (path.empty()) path = dflt;
  OdGiVectorizeStats stats;
  std::string error;
  if (!hostWriteDrawingSvg(*doc->database(), path, &error, &stats)) {
    cl.println("Cannot write the picture: " + error + ".");
    return;
  }
  cl.println("Wrote " + path + ": " + hostRenderSummary(stats) + ".");
}
