// The room dimension text takes. The contents are laid out here as a dimension
// shows them (lines, stacks, height and width changes); each run of plain
// characters is measured by the text metrics in use, so that a measurer the host
// installs decides the fit of dimensions too.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "DimGeometryImpl.h"
#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbSymbolTable.h"

namespace dimgeom {

namespace {

// The ink of a piece of text laid out along a baseline.
struct Ink {
  double minX = 1e300, maxX = -1e300, minY = 1e300, maxY = -1e300;
  bool empty() const { return minX > maxX; }
  void add(double x0, double x1, double y0, double y1) {
    minX = std::min(minX, x0);
    maxX = std::max(maxX, x1);
    minY = std::min(minY, y0);
    maxY = std::max(maxY, y1);
  }
  void add(const Ink& o, double dx, double dy) {
    if (!o.empty()) add(o.minX + dx, o.maxX + dx, o.minY + dy, o.maxY + dy);
  }
  static Ink of(const OdGiTextExtents& e) {
    Ink ink;
    if (!e.empty()) ink.add(e.minX, e.maxX, e.minY, e.maxY);
    return ink;
  }
};

// Stacked text (\S): a diagonal fraction ("a#b") shows its parts at half the
// height, the denominator on the line and the numerator up to two heights, on
// either side of a slash; the other stacks keep their parts at the height around
// them, one above the other, two heights high together.
constexpr double kDiagonalScale = 0.5;
constexpr double kDiagonalSlash = 0.535;  // of the height, as real drawings measure it

// Lays out MTEXT contents: the ink of each line, lines 5/3 of the height apart.
class TextLayout {
public:
  TextLayout(const OdGiTextStyle& style, double height)
      : m_metrics(odTextMetrics()), m_style(style), m_height(height), m_run{height, style.widthFactor} {}

  TextExtents measure(std::wstring_view s) {
    run(s);
    endLine();
    TextExtents e;
    if (m_all.empty()) return e;
    e.width = m_all.maxX - m_all.minX;
    e.height = m_all.maxY - m_all.minY;
    return e;
  }

private:
  struct State {
    double height;
    double widthFactor;
    bool operator==(const State& o) const { return height == o.height && widthFactor == o.widthFactor; }
  };

  OdGiTextExtents extents(const OdString& text, const State& st) const {
    if (st.widthFactor == m_style.widthFactor) return m_metrics.extents(text, st.height, m_style);
    OdGiTextStyle style = m_style;
    style.widthFactor = st.widthFactor;
    return m_metrics.extents(text, st.height, style);
  }

  // Characters are gathered while the state stays and measured together.
  void put(wchar_t c, const State& st) {
    if (!(st == m_run)) flush();
    m_run = st;
    m_text += c;
  }

  void flush() {
    if (m_text.isEmpty()) return;
    const OdGiTextExtents e = extents(m_text, m_run);
    m_line.add(Ink::of(e), m_pen, 0.0);
    m_pen += e.advance;
    m_text = OdString();
  }

  void endLine() {
    flush();
    m_all.add(m_line, 0.0, -m_lineIndex * m_height * 5.0 / 3.0);
    m_line = Ink{};
    m_pen = 0.0;
    ++m_lineIndex;
  }

  // A stack part laid out on its own.
  Ink part(std::wstring_view s, const State& st, double& width) const {
    std::wstring plain;
    for (wchar_t c : s)
      if (c != L'\\') plain += c;
    const OdGiTextExtents e = extents(OdString(std::move(plain)), st);
    width = e.advance;
    return Ink::of(e);
  }

  void stack(std::wstring_view body, const State& st) {
    flush();
    const std::size_t at = body.find_first_of(L"^/#");
    std::wstring_view top = body.substr(0, at), bottom = at == std::wstring_view::npos ? L"" : body.substr(at + 1);
    const wchar_t kind = at == std::wstring_view::npos ? L'^' : body[at];
    if (!bottom.empty() && bottom.front() == L' ') bottom.remove_prefix(1);
    const double h = st.height;
    State part = st;
    if (kind == L'#') part.height *= kDiagonalScale;
    double wt = 0, wb = 0;
    const Ink it = this->part(top, part, wt), ib = this->part(bottom, part, wb);
    if (kind == L'#') {
      const double slash = h * kDiagonalSlash * st.widthFactor;
      m_line.add(it, m_pen, h * (2 - kDiagonalScale));
      m_line.add(ib, m_pen + wt + slash, 0.0);
      m_pen += wt + slash + wb;
    } else {
      // The wider part's ink and a margin of a fifteenth of the height.
      const double inkT = it.empty() ? 0.0 : it.maxX - it.minX, inkB = ib.empty() ? 0.0 : ib.maxX - ib.minX;
      const double w = std::max(inkT, inkB) + h / 15 * st.widthFactor;
      if (!it.empty()) m_line.add(it, m_pen + (w - inkT) / 2 - it.minX, h * 0.5);
      if (!ib.empty()) m_line.add(ib, m_pen + (w - inkB) / 2 - ib.minX, -h * 0.5);
      m_pen += w;
    }
  }

  void run(std::wstring_view s) {
    std::vector<State> saved;
    State st{m_height, m_style.widthFactor};
    auto skipTo = [&](std::size_t i, wchar_t c) {
      const std::size_t at = s.find(c, i);
      return at == std::wstring_view::npos ? s.size() : at + 1;
    };
    auto number = [&](std::size_t from, std::size_t end, bool& relative) {
      std::wstring v(s.substr(from, end > from ? end - from - 1 : 0));
      relative = !v.empty() && (v.back() == L'x' || v.back() == L'X');
      if (relative) v.pop_back();
      try {
        return std::stod(v);
      } catch (...) {
        return 0.0;
      }
    };
    for (std::size_t i = 0; i < s.size();) {
      const wchar_t c = s[i];
      if (c == L'{') {
        saved.push_back(st);
        ++i;
        continue;
      }
      if (c == L'}') {
        if (!saved.empty()) {
          st = saved.back();
          saved.pop_back();
        }
        ++i;
        continue;
      }
      if (c != L'\\' || i + 1 >= s.size()) {
        put(c, st);
        ++i;
        continue;
      }
      const wchar_t k = s[i + 1];
      bool relative = false;
      switch (k) {
        case L'P':
        case L'X':
          endLine();
          i += 2;
          break;
        case L'~':
          put(L' ', st);
          i += 2;
          break;
        case L'\\':
        case L'{':
        case L'}':
          put(k, st);
          i += 2;
          break;
        case L'H': {
          const std::size_t end = skipTo(i + 2, L';');
          const double v = number(i + 2, end, relative);
          if (v > 0) st.height = relative ? st.height * v : v;
          i = end;
          break;
        }
        case L'W': {
          const std::size_t end = skipTo(i + 2, L';');
          const double v = number(i + 2, end, relative);
          if (v > 0) st.widthFactor = relative ? st.widthFactor * v : v;
          i = end;
          break;
        }
        case L'S': {
          const std::size_t end = skipTo(i + 2, L';');
          stack(s.substr(i + 2, end - i - 3), st);
          i = end;
          break;
        }
        case L'U':
          if (i + 6 < s.size() && s[i + 2] == L'+') {
            const auto cp = std::wcstol(std::wstring(s.substr(i + 3, 4)).c_str(), nullptr, 16);
            put(static_cast<wchar_t>(cp), st);
            i += 7;
          } else {
            i += 2;
          }
          break;
        case L'A': case L'C': case L'c': case L'F': case L'f': case L'Q': case L'T': case L'p':
          i = skipTo(i + 2, L';');
          break;
        default:  // \L \l \O \o \K \k and unknown switches
          i += 2;
      }
    }
  }

  const OdGiTextMetrics& m_metrics;
  const OdGiTextStyle& m_style;
  double m_height;
  OdString m_text;  // characters not yet measured, all in state m_run
  State m_run;
  double m_pen = 0.0;
  int m_lineIndex = 0;
  Ink m_line, m_all;
};

}  // namespace

OdGiTextStyle textStyleOf(const OdDbDatabase& db, const OdDbObjectId& textStyle) {
  OdDbObjectId id = textStyle;
  if (id.isNull()) {
    if (auto styles = odOpen<OdDbTextStyleTable>(db.getTextStyleTableId())) id = styles->getAt(L"Standard");
  }
  auto style = odOpen<OdDbTextStyleTableRecord>(id);
  if (!style) return OdGiTextStyle::fromId(OdDbObjectId());
  // The last style read, while it is unchanged: dimensions mostly share one.
  static thread_local const OdDbObject* lastStyle = nullptr;
  static thread_local uint64_t lastRevision = 0;
  static thread_local OdGiTextStyle last;
  if (style.get() != lastStyle || style->revision() != lastRevision) {
    last = OdGiTextStyle::fromRecord(*style);
    lastStyle = style.get();
    lastRevision = style->revision();
  }
  return last;
}

TextExtents measureText(const OdString& contents, double height, const OdGiTextStyle& style) {
  return TextLayout(style, height).measure(contents.view());
}

}  // namespace dimgeom
