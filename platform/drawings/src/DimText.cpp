#include "drawings/DimText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cwctype>
#include <numbers>
#include <numeric>
#include <string>

#include "drawings/OdDbDatabase.h"
#include "drawings/OdDbDimension.h"
#include "drawings/OdDbSymbolTable.h"
#include "drawings/OdDimVarSource.h"

namespace {

constexpr wchar_t kDiameterSign = 0x2205;
constexpr wchar_t kDegreeSign = 0x00B0;
constexpr wchar_t kPlusMinusSign = 0x00B1;

// Zero suppression as the DIMZIN family encodes it.
struct Zeros {
  int feetInches = 0;     // 0 drop zero feet and zero inches, 1 keep both, 2 keep feet, 3 keep inches
  bool leading = false;   // 0.5 -> .5
  bool trailing = false;  // 12.50 -> 12.5
};

Zeros linearZeros(int zin) { return {zin & 3, (zin & 4) != 0, (zin & 8) != 0}; }
// DIMAZIN counts its bits from 1 where DIMZIN starts at 4.
Zeros angularZeros(int azin) { return {0, (azin & 1) != 0, (azin & 2) != 0}; }

// How a length is spelled.
struct LengthFormat {
  int units = 2;           // DIMLUNIT: 1 scientific, 2 decimal, 3 engineering, 4 architectural, 5 fractional, 6 desktop
  int precision = 4;       // decimal places, or the power of two of the smallest fraction
  Zeros zeros;
  wchar_t separator = L'.';
  int fractionStyle = 0;   // DIMFRAC: 0 horizontal stack, 1 diagonal stack, 2 not stacked
  double fractionHeight = 1.0;  // DIMTFAC: stacked fractions relative to the text
};

std::wstring widen(const std::string& s) { return std::wstring(s.begin(), s.end()); }

// |v| scaled by 10^places and rounded half away from zero. A value a hair below a
// tie counts as the tie: measurements carry the residue of the geometry they come
// from (2.4999999999997 is a measured 2.5). False when the result would not fit.
bool scaledDigits(double v, int places, std::uint64_t& n) {
  double scaled = std::fabs(v) * std::pow(10.0, places);
  if (!(scaled < 1e15)) return false;
  n = static_cast<std::uint64_t>(std::floor(scaled + 0.5 + 1e-9 + scaled * 1e-12));
  return true;
}

std::wstring decimalText(double v, int places, const Zeros& zeros, wchar_t separator) {
  places = std::clamp(places, 0, 8);
  std::uint64_t n = 0;
  std::string digits;
  if (scaledDigits(v, places, n)) {
    digits = std::to_string(n);
  } else {  // too large for the integer path; the exact digits no longer matter
    char buf[400];
    std::snprintf(buf, sizeof buf, "%.*f", places, std::fabs(v));
    digits = buf;
    digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
    n = 1;
  }
  if (digits.size() <= static_cast<size_t>(places)) digits.insert(0, places + 1 - digits.size(), '0');
  std::string whole = digits.substr(0, digits.size() - places);
  std::string fraction = digits.substr(digits.size() - places);
  if (zeros.trailing)
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  if (zeros.leading && whole == "0" && !fraction.empty()) whole.clear();
  std::wstring out = v < 0 && n != 0 ? L"-" : L"";
  out += widen(whole);
  if (!fraction.empty()) {
    out += separator;
    out += widen(fraction);
  }
  return out;
}

std::wstring scientificText(double v, const LengthFormat& f) {
  int places = std::clamp(f.precision, 0, 8);
  double a = std::fabs(v);
  int exponent = 0;
  double mantissa = 0.0;
  if (a > 0) {
    exponent = static_cast<int>(std::floor(std::log10(a)));
    mantissa = a / std::pow(10.0, exponent);
    if (mantissa < 1.0) {  // log10 a hair above a power of ten
      --exponent;
      mantissa *= 10.0;
    }
    std::uint64_t n = 0;
    // Rounding can carry the mantissa to 10 (9.99996 -> 10.0000).
    if (scaledDigits(mantissa, places, n) && n >= static_cast<std::uint64_t>(std::pow(10.0, places + 1))) {
      ++exponent;
      mantissa /= 10.0;
    }
  }
  std::wstring e = std::to_wstring(std::abs(exponent));
  if (e.size() < 2) e.insert(0, 1, L'0');
  return (v < 0 ? L"-" : L"") + decimalText(mantissa, places, Zeros{0, false, f.zeros.trailing}, f.separator) +
         (exponent < 0 ? L"E-" : L"E+") + e;
}

// "0.750000": the relative height of a stacked fraction as real drawings spell it.
std::wstring fixedSix(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%f", v);
  return widen(buf);
}

// A height as short as it can be written: "7.0104", "2.5".
std::wstring shortNumber(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return widen(buf);
}

std::wstring fractionText(std::uint64_t num, std::uint64_t den, const LengthFormat& f) {
  if (f.fractionStyle == 2) return std::to_wstring(num) + L"/" + std::to_wstring(den);
  return L"{\\H" + fixedSix(f.fractionHeight) + L"x;\\S" + std::to_wstring(num) +
         (f.fractionStyle == 1 ? L"#" : L"/") + std::to_wstring(den) + L";}";
}

// A whole number and a fraction: stacked fractions sit right after the number,
// written-out ones after a space; a zero whole number is left out.
std::wstring mixedNumber(std::uint64_t whole, std::uint64_t num, std::uint64_t den, const LengthFormat& f,
                         bool keepZeroWhole) {
  if (num == 0) return std::to_wstring(whole);
  std::wstring w = whole != 0 || keepZeroWhole ? std::to_wstring(whole) : L"";
  if (f.fractionStyle == 2 && !w.empty()) w += L' ';
  return w + fractionText(num, den, f);
}

// |v| in units of 1/den, rounded, split into whole units and a reduced fraction.
struct Fraction {
  std::uint64_t whole = 0, num = 0, den = 1;
};
Fraction toFraction(double v, int precision) {
  std::uint64_t den = std::uint64_t(1) << std::clamp(precision, 0, 8);
  double scaled = std::fabs(v) * static_cast<double>(den);
  auto n = static_cast<std::uint64_t>(std::floor(std::min(scaled, 1e15) + 0.5 + 1e-9));
  Fraction fr{n / den, n % den, den};
  if (fr.num != 0) {
    std::uint64_t g = std::gcd(fr.num, fr.den);
    fr.num /= g;
    fr.den /= g;
  }
  return fr;
}

std::wstring fractionalText(double v, const LengthFormat& f) {
  Fraction fr = toFraction(v, f.precision);
  bool negative = v < 0 && (fr.whole != 0 || fr.num != 0);
  return (negative ? L"-" : L"") + mixedNumber(fr.whole, fr.num, fr.den, f, false);
}

// Feet and inches: which parts show follows the feet/inches rule of the zero
// suppression. Something always shows, the inches of a zero length at least.
std::wstring feetInchesText(bool negative, std::uint64_t feet, bool zeroInches, const std::wstring& inches,
                            int rule) {
  bool showFeet = feet != 0 || rule == 1 || rule == 2;
  bool showInches = !zeroInches || rule == 1 || rule == 3 || !showFeet;
  std::wstring out = negative ? L"-" : L"";
  if (showFeet) out += std::to_wstring(feet) + L"'";
  if (showFeet && showInches) out += L'-';
  if (showInches) out += inches + L"\"";
  return out;
}

std::wstring architecturalText(double v, const LengthFormat& f) {
  Fraction fr = toFraction(v, f.precision);
  std::uint64_t feet = fr.whole / 12, inches = fr.whole % 12;
  bool showFeet = feet != 0 || f.zeros.feetInches == 1 || f.zeros.feetInches == 2;
  // "4'-0 1/4"" keeps the zero before a fraction; "1/4"" alone does not.
  std::wstring inchText = mixedNumber(inches, fr.num, fr.den, f, showFeet);
  bool negative = v < 0 && (fr.whole != 0 || fr.num != 0);
  return feetInchesText(negative, feet, inches == 0 && fr.num == 0, inchText, f.zeros.feetInches);
}

std::wstring engineeringText(double v, const LengthFormat& f) {
  int places = std::clamp(f.precision, 0, 8);
  std::uint64_t n = 0;
  if (!scaledDigits(v, places, n)) return decimalText(v, places, f.zeros, f.separator);
  auto unit = static_cast<std::uint64_t>(std::pow(10.0, places));
  std::uint64_t feet = n / (12 * unit), rest = n % (12 * unit);
  std::wstring inches = decimalText(static_cast<double>(rest) / static_cast<double>(unit), places,
                                    Zeros{0, false, f.zeros.trailing}, f.separator);
  return feetInchesText(v < 0 && n != 0, feet, rest == 0, inches, f.zeros.feetInches);
}

std::wstring lengthText(double v, const LengthFormat& f) {
  switch (f.units) {
    case 1: return scientificText(v, f);
    case 3: return engineeringText(v, f);
    case 4: return architecturalText(v, f);
    case 5: return fractionalText(v, f);
    default: return decimalText(v, f.precision, f.zeros, f.separator);  // 2 decimal, 6 desktop
  }
}

// Degrees, minutes and seconds: the precision counts the parts after the degrees,
// then the decimals of the seconds.
std::wstring dmsText(double degrees, int precision) {
  precision = std::clamp(precision, 0, 8);
  std::wstring sign = degrees < 0 ? L"-" : L"";
  double a = std::fabs(degrees);
  if (precision == 0)
    return sign + std::to_wstring(static_cast<std::uint64_t>(std::floor(a + 0.5 + 1e-9))) + kDegreeSign;
  if (precision == 1) {
    auto m = static_cast<std::uint64_t>(std::floor(a * 60 + 0.5 + 1e-9));
    return sign + std::to_wstring(m / 60) + kDegreeSign + std::to_wstring(m % 60) + L"'";
  }
  int places = precision - 2;
  std::uint64_t n = 0;
  scaledDigits(a * 3600, places, n);
  auto unit = static_cast<std::uint64_t>(std::pow(10.0, places));
  std::uint64_t d = n / (3600 * unit), m = n / (60 * unit) % 60, s = n % (60 * unit);
  return sign + std::to_wstring(d) + kDegreeSign + std::to_wstring(m) + L"'" +
         decimalText(static_cast<double>(s) / static_cast<double>(unit), places, Zeros{}, L'.') + L"\"";
}

// DIMAUNIT: 0 decimal degrees, 1 degrees/minutes/seconds, 2 grads, 3 radians,
// 4 surveyor's units (shown as degrees/minutes/seconds: an angle between two
// lines has no bearing).
std::wstring angleText(double radians, int aunit, int precision, const Zeros& zeros, wchar_t separator) {
  double degrees = radians * 180.0 / std::numbers::pi;
  switch (aunit) {
    case 1:
    case 4: return dmsText(degrees, precision);
    case 2: return decimalText(degrees * 400.0 / 360.0, precision, zeros, separator) + L"g";
    case 3: return decimalText(radians, precision, zeros, separator) + L"r";
    default: return decimalText(degrees, precision, zeros, separator) + kDegreeSign;
  }
}

double roundTo(double v, double step) {
  if (!(step > 0)) return v;
  double q = std::floor(std::fabs(v) / step + 0.5 + 1e-9) * step;
  return v < 0 ? -q : q;
}

// A prefix/suffix template: "<>" (or "[]" for alternate units) marks the value;
// without it the whole template is a suffix.
struct Affixes {
  std::wstring prefix, suffix;
  bool below = false;  // the suffix ended in \X: alternate units go on a line of their own
};
Affixes splitTemplate(const std::wstring& t, std::wstring_view mark) {
  Affixes a;
  size_t at = t.find(mark);
  if (at == std::wstring::npos) a.suffix = t;
  else {
    a.prefix = t.substr(0, at);
    a.suffix = t.substr(at + mark.size());
  }
  if (a.suffix.size() >= 2 && a.suffix.compare(a.suffix.size() - 2, 2, L"\\X") == 0) {
    a.below = true;
    a.suffix.resize(a.suffix.size() - 2);
  }
  return a;
}

// %%c, %%d, %%p, %%% and %%nnn as the characters they stand for.
std::wstring resolvePercentCodes(std::wstring_view s) {
  std::wstring out;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == L'%' && i + 2 < s.size() && s[i + 1] == L'%') {
      wchar_t c = s[i + 2];
      switch (c) {
        case L'c': case L'C': out += kDiameterSign; i += 2; continue;
        case L'd': case L'D': out += kDegreeSign; i += 2; continue;
        case L'p': case L'P': out += kPlusMinusSign; i += 2; continue;
        case L'%': out += L'%'; i += 2; continue;
        default: break;
      }
      if (i + 4 < s.size() && std::iswdigit(c) && std::iswdigit(s[i + 3]) && std::iswdigit(s[i + 4])) {
        out += static_cast<wchar_t>((c - L'0') * 100 + (s[i + 3] - L'0') * 10 + (s[i + 4] - L'0'));
        i += 4;
        continue;
      }
    }
    out += s[i];
  }
  return out;
}

std::wstring replaceFirst(std::wstring s, std::wstring_view what, const std::wstring& with) {
  size_t at = s.find(what);
  if (at != std::wstring::npos) s.replace(at, what.size(), with);
  return s;
}

wchar_t separatorOf(int dsep) { return dsep > 0 && dsep < 0xD800 ? static_cast<wchar_t>(dsep) : L'.'; }

// A tolerance as shown in its stack: its sign always written, except for zero.
std::wstring signedText(double v, const std::wstring& magnitude) {
  if (magnitude.find_first_not_of(L"0.,") == std::wstring::npos) return magnitude;
  return (v < 0 ? L"-" : L"+") + magnitude;
}

// The measured part of the text for one unit system (primary or alternate): the
// spelled value with its symbol or prefix and suffix, then the tolerances; with
// limits, the stack of value + DIMTP over value - DIMTM instead. Tolerances and
// limits are spelled by `tolerance` (DIMTDEC precision), from primary values.
template <class ToleranceFn>
std::wstring valueWithTolerances(const std::wstring& valueText, double value, const OdDimVarSource& v,
                                 const Affixes& affixes, const std::wstring& symbol, ToleranceFn tolerance) {
  const bool limits = v.dimlim();
  std::wstring lead = affixes.prefix.empty() ? symbol : affixes.prefix;
  if (!limits && !v.dimtol()) return lead + valueText + affixes.suffix;  // most dimensions: no stack to spell
  double plus = v.dimtp(), minus = v.dimtm();
  // Tolerance and limit stacks are written at DIMTFAC times the text height.
  double scale = v.dimscale() > 0 ? v.dimscale() : 1.0;
  std::wstring stackHeight = L"{\\H" + shortNumber(v.dimtxt() * scale * v.dimtfac()) + L";\\S";
  if (limits)
    return lead + stackHeight + tolerance(value + plus) + L"^ " + tolerance(value - minus) + L";}" +
           affixes.suffix;
  std::wstring out = lead + valueText + affixes.suffix;
  if (plus == minus) return out + kPlusMinusSign + tolerance(plus) + affixes.suffix;
  return out + stackHeight + signedText(plus, tolerance(std::fabs(plus))) + affixes.suffix + L"^ " +
         signedText(-minus, tolerance(std::fabs(minus))) + affixes.suffix + L";}";
}

// A decimal length below one unit of a linear kind is shown in sub-units (0.5 m as
// 50 cm) when a sub-unit suffix is set and leading zeros are suppressed. Not with
// tolerances or limits, whose values would have to change units with it.
bool usesSubUnits(DimTextKind k, const OdDimVarSource& v, const LengthFormat& f, const OdString& suffix,
                  double rounded) {
  bool linear = k == DimTextKind::Linear || k == DimTextKind::Ordinate || k == DimTextKind::ArcLength;
  return linear && !v.dimtol() && !v.dimlim() && (f.units == 2 || f.units == 6) && f.zeros.leading &&
         !suffix.isEmpty() && rounded > 0 && rounded < 1.0;
}

// The sub-unit factor moves the decimal separator: 0.53 at two places is 53 at none.
LengthFormat subUnitFormat(LengthFormat f, double factor) {
  int shift = factor > 0 ? static_cast<int>(std::lround(std::log10(factor))) : 0;
  f.precision = std::max(0, f.precision - shift);
  f.zeros.leading = false;
  return f;
}

}  // namespace

OdString odFormatDimText(const DimTextInput& in) {
  const OdDimVarSource& v = *in.vars;
  if (in.userText == L" ") return OdString();

  std::wstring primary, alternate, altBreak;  // alternate: without its brackets
  wchar_t separator = separatorOf(v.dimdsep());
  Affixes post = splitTemplate(v.dimpost().str(), L"<>");
  if (in.kind == DimTextKind::Angular) {
    int places = v.dimadec() < 0 ? v.dimdec() : v.dimadec();
    double angle = std::fabs(in.measurement);
    auto tol = [&](double a) { return angleText(a, v.dimaunit(), v.dimtdec(), linearZeros(v.dimtzin()), separator); };
    primary = valueWithTolerances(angleText(angle, v.dimaunit(), places, angularZeros(v.dimazin()), separator), angle,
                                  v, post, L"", tol);
  } else {
    // DIMLFAC < 0 applies in paper space only; model space then measures 1:1.
    double lfac = v.dimlfac();
    if (lfac < 0) lfac = in.inPaperSpace ? -lfac : 1.0;
    double value = std::fabs(in.measurement) * lfac;
    std::wstring symbol = in.kind == DimTextKind::Radius     ? L"R"
                          : in.kind == DimTextKind::Diameter ? std::wstring(1, kDiameterSign)
                                                             : L"";
    LengthFormat f{v.dimlunit(), v.dimdec(), linearZeros(v.dimzin()), separator, v.dimfrac(), v.dimtfac()};
    LengthFormat tf = f;
    tf.precision = v.dimtdec();
    tf.zeros = linearZeros(v.dimtzin());
    double rounded = roundTo(value, v.dimrnd());
    if (usesSubUnits(in.kind, v, f, v.dimmzs(), rounded)) {
      f = subUnitFormat(f, v.dimmzf());
      rounded *= v.dimmzf();
      post.suffix = v.dimmzs().str();
    }
    auto tol = [&](double x) { return lengthText(x, tf); };
    primary = valueWithTolerances(lengthText(rounded, f), rounded, v, post, symbol, tol);

    if (v.dimalt()) {
      // DIMALTU: 1 scientific, 2 decimal, 3 engineering, 4/6 architectural
      // stacked/not, 5/7 fractional stacked/not, 8 desktop.
      int altu = v.dimaltu();
      int units = altu == 6 ? 4 : altu == 7 ? 5 : altu == 8 ? 2 : altu;
      int stacking = altu == 6 || altu == 7 ? 2 : (v.dimfrac() == 2 ? 0 : v.dimfrac());
      LengthFormat af{units, v.dimaltd(), linearZeros(v.dimaltz()), separator, stacking, v.dimtfac()};
      LengthFormat atf = af;
      atf.precision = v.dimalttd();
      atf.zeros = linearZeros(v.dimalttz());
      double altf = v.dimaltf();
      double altRounded = roundTo(value * altf, v.dimaltrnd());
      Affixes apost = splitTemplate(v.dimapost().str(), L"[]");
      if (usesSubUnits(in.kind, v, af, v.dimaltmzs(), altRounded)) {
        af = subUnitFormat(af, v.dimaltmzf());
        altRounded *= v.dimaltmzf();
        apost.suffix = v.dimaltmzs().str();
      }
      auto altTol = [&](double x) { return lengthText(x * altf, atf); };
      alternate = valueWithTolerances(lengthText(altRounded, af), value, v, apost, L"", altTol);
      altBreak = post.below ? L"\\X" : L" ";
    }
  }

  std::wstring user = in.userText.str();
  std::wstring text;
  std::wstring bracketed = alternate.empty() ? L"" : altBreak + L"[" + alternate + L"]";
  if (user.empty() || user == L"<>") {
    text = primary + bracketed;
  } else if (!alternate.empty() && user.find(L"[]") != std::wstring::npos) {
    // "[]" stands for the alternate value itself, without brackets or separator.
    text = replaceFirst(replaceFirst(user, L"<>", primary), L"[]", alternate);
  } else {
    text = replaceFirst(user, L"<>", primary + bracketed);
  }
  text = resolvePercentCodes(text);
  if (text.empty()) return OdString();
  if (in.version >= DxfVersion::R2000) text = L"\\A1;" + text;
  return OdString(std::move(text));
}

DimTextKind odDimTextKind(const OdDbDimension& dim) {
  if (dim.isKindOf(OdDbArcDimension::desc())) return DimTextKind::ArcLength;
  if (dim.isKindOf(VxHugeRadius::desc())) return DimTextKind::Radius;
  switch (dim.dimensionType()) {
    case 2:
    case 5: return DimTextKind::Angular;
    case 3: return DimTextKind::Diameter;
    case 4: return DimTextKind::Radius;
    case 6: return DimTextKind::Ordinate;
    default: return DimTextKind::Linear;
  }
}

OdString odDimensionText(const OdDbDimension& dim, double measurement) {
  DimTextInput in;
  in.kind = odDimTextKind(dim);
  in.measurement = measurement;
  in.userText = dim.dimensionText();
  in.vars = &dim;
  if (const OdDbDatabase* db = dim.database()) in.version = db->version();
  if (auto owner = odOpen<OdDbBlockTableRecord>(dim.ownerId()))
    in.inPaperSpace = owner->isLayout() && owner->getName().left(12).iCompare(L"*Paper_Space") == 0;
  return odFormatDimText(in);
}

OdString odMTextPlainText(const OdString& contents) {
  std::wstring_view s = contents.view();
  std::wstring out;
  auto skipPast = [&](size_t i, wchar_t c) {
    size_t at = s.find(c, i);
    return at == std::wstring_view::npos ? s.size() : at + 1;
  };
  for (size_t i = 0; i < s.size();) {
    wchar_t c = s[i];
    if (c == L'{' || c == L'}') {
      ++i;
      continue;
    }
    // Control characters spelled with a caret in the file: ^I tab, ^J line break, "^ " a caret.
    if (c == L'^' && i + 1 < s.size()) {
      const wchar_t n = s[i + 1];
      if (n == L'I' || n == L'J' || n == L' ') {
        out += n == L'I' ? L' ' : n == L'J' ? L'\n' : L'^';
        i += 2;
        continue;
      }
    }
    if (c != L'\\' || i + 1 >= s.size()) {
      out += c;
      ++i;
      continue;
    }
    wchar_t code = s[i + 1];
    switch (code) {
      case L'P':
      case L'X': out += L'\n'; i += 2; break;
      case L'~': out += L' '; i += 2; break;
      case L'\\': case L'{': case L'}': out += code; i += 2; break;
      case L'L': case L'l': case L'O': case L'o': case L'K': case L'k': i += 2; break;
      case L'S': {
        // \Sa^b; \Sa/b; \Sa#b; -- the first unescaped ';' ends the stack.
        size_t end = i + 2;
        std::wstring top, bottom;
        bool inBottom = false;
        bool fraction = false;
        for (; end < s.size() && s[end] != L';'; ++end) {
          wchar_t d = s[end];
          if (d == L'\\' && end + 1 < s.size()) d = s[++end];
          else if (!inBottom && (d == L'^' || d == L'/' || d == L'#')) {
            inBottom = true;
            fraction = d != L'^';
            continue;
          }
          (inBottom ? bottom : top) += d;
        }
        size_t lead = bottom.find_first_not_of(L' ');
        bottom = lead == std::wstring::npos ? L"" : bottom.substr(lead);
        // A fraction after a whole number reads "2 3/8", not "23/8".
        if (fraction && !out.empty() && std::iswdigit(out.back())) out += L' ';
        out += inBottom ? top + L"/" + bottom : top;
        i = end < s.size() ? end + 1 : end;
        break;
      }
      case L'U':
        if (i + 6 < s.size() && s[i + 2] == L'+') {
          std::wstring hex(s.substr(i + 3, 4));
          if (hex.size() == 4 && hex.find_first_not_of(L"0123456789abcdefABCDEF") == std::wstring::npos) {
            odstr::appendCodePoint(out, static_cast<char32_t>(std::stoul(hex, nullptr, 16)));
            i += 7;
            break;
          }
        }
        out += c;
        ++i;
        break;
      default:
        // \A, \H, \f, \F, \C, \c, \Q, \W, \T, \p and others carry an argument up to ';'.
        if (std::iswalpha(code)) i = skipPast(i + 2, L';');
        else {
          out += code;
          i += 2;
        }
    }
  }
  return OdString(resolvePercentCodes(out));
}
