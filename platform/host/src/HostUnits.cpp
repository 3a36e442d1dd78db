#include "host/HostUnits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>

#include "host/HostServices.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr int kMaxPrec = 8;
// Past this a scaled value no longer fits the integer arithmetic below.
constexpr double kMaxScaled = 9.0e15;
constexpr double kVxDefaultBase = -777.7777;

int clampPrec(int prec) { return prec < 0 ? 0 : (prec > kMaxPrec ? kMaxPrec : prec); }

int64_t pow10i(int k) {
  int64_t r = 1;
  while (k-- > 0) r *= 10;
  return r;
}

// Rounds a non-negative `a * scale` half away from zero into `n`. The small
// allowance lets a value whose binary form lies just under a tie (2.675 is stored
// as 2.67499999...) round as it was written. False when the result is too large.
bool roundScaled(double a, double scale, int64_t& n) {
  const double x = a * scale;
  if (!(x < kMaxScaled)) return false;
  const double fuzz = std::min(1e-6, 1e-9 + x * 1e-15);
  n = static_cast<int64_t>(std::floor(x + 0.5 + fuzz));
  return true;
}

// `n` units of 10^-prec as "int.frac".
std::wstring fixedText(int64_t n, int prec) {
  const int64_t p = pow10i(prec);
  std::wstring s = std::to_wstring(n / p);
  if (prec > 0) {
    std::wstring frac = std::to_wstring(n % p);
    s += L'.';
    s.append(static_cast<size_t>(prec) - frac.size(), L'0');
    s += frac;
  }
  return s;
}

// Locale-independent fixed text for values too large for the integer path.
std::wstring bigFixedText(double v, int prec) {
  char buf[400];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, prec);
  return std::wstring(buf, r.ptr);
}

std::wstring decimalText(double v, int prec) {
  int64_t n;
  if (!roundScaled(std::fabs(v), static_cast<double>(pow10i(prec)), n)) return bigFixedText(v, prec);
  return (v < 0 && n != 0 ? L"-" : L"") + fixedText(n, prec);
}

std::wstring scientificText(double v, int prec) {
  const double a = std::fabs(v);
  const int64_t lo = pow10i(prec), hi = pow10i(prec + 1);
  int64_t n = 0;
  int e = 0;
  if (a != 0) {
    e = static_cast<int>(std::floor(std::log10(a)));
    // log10 may miss by one near powers of ten, and rounding may carry to 10.0.
    for (int tries = 0; tries < 3; ++tries) {
      const int k = prec - e;
      const double x = k >= 0 ? a * std::pow(10.0, k) : a / std::pow(10.0, -k);
      if (!std::isfinite(x) || !roundScaled(x, 1.0, n)) {
        char buf[64];
        auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::scientific, prec);
        std::wstring s(buf, r.ptr);
        for (auto& c : s) c = c == L'e' ? L'E' : c;
        return s;
      }
      if (n >= hi) ++e;
      else if (n < lo) --e;
      else break;
    }
  }
  std::wstring s = v < 0 && n != 0 ? L"-" : L"";
  s += fixedText(n, prec);
  s += e < 0 ? L"E-" : L"E+";
  std::wstring exp = std::to_wstring(std::abs(e));
  if (exp.size() < 2) exp.insert(0, 1, L'0');
  return s + exp;
}

// " num/den" reduced, or "" for no fraction.
std::wstring fractionText(int64_t num, int64_t den) {
  if (num == 0) return L"";
  const int64_t g = std::gcd(num, den);
  return std::to_wstring(num / g) + L'/' + std::to_wstring(den / g);
}

std::wstring engineeringText(double v, int prec) {
  int64_t n;
  if (!roundScaled(std::fabs(v), static_cast<double>(pow10i(prec)), n)) return decimalText(v, prec);
  const int64_t perFoot = 12 * pow10i(prec);
  std::wstring s = v < 0 && n != 0 ? L"-" : L"";
  return s + std::to_wstring(n / perFoot) + L"'-" + fixedText(n % perFoot, prec) + L'"';
}

std::wstring architecturalText(double v, int prec) {
  const int64_t den = int64_t{1} << prec;
  int64_t n;
  if (!roundScaled(std::fabs(v), static_cast<double>(den), n)) return decimalText(v, prec);
  const int64_t perFoot = 12 * den;
  const int64_t inches = n % perFoot;
  std::wstring s = v < 0 && n != 0 ? L"-" : L"";
  s += std::to_wstring(n / perFoot) + L"'-" + std::to_wstring(inches / den);
  const std::wstring frac = fractionText(inches % den, den);
  if (!frac.empty()) s += L' ' + frac;
  return s + L'"';
}

std::wstring fractionalText(double v, int prec) {
  const int64_t den = int64_t{1} << prec;
  int64_t n;
  if (!roundScaled(std::fabs(v), static_cast<double>(den), n)) return decimalText(v, prec);
  std::wstring s = v < 0 && n != 0 ? L"-" : L"";
  const std::wstring frac = fractionText(n % den, den);
  if (n / den != 0 || frac.empty()) {
    s += std::to_wstring(n / den);
    if (!frac.empty()) s += L' ';
  }
  return s + frac;
}

// Units of the smallest part shown per degree for degrees/minutes/seconds.
int64_t dmsUnitsPerDegree(int prec) {
  if (prec == 0) return 1;
  if (prec <= 2) return 60;
  return 3600 * pow10i(prec > 4 ? prec - 4 : 0);
}

std::wstring dmsText(int64_t n, int prec) {
  const int64_t perDeg = dmsUnitsPerDegree(prec);
  std::wstring s = std::to_wstring(n / perDeg) + L'd';
  const int64_t rem = n % perDeg;
  if (prec == 0) return s;
  if (prec <= 2) return s + std::to_wstring(rem) + L'\'';
  const int secPrec = prec > 4 ? prec - 4 : 0;
  const int64_t perMin = 60 * pow10i(secPrec);
  return s + std::to_wstring(rem / perMin) + L'\'' + fixedText(rem % perMin, secPrec) + L'"';
}

// `turn` units make a full turn; the value is wrapped into [0, turn) and written
// with `prec` decimals. A value that rounds to the full turn, or lies nearer to it
// than to its rounded text (radians: 6.2831853 at 3 places), reads as zero.
std::wstring turnText(double value, double turn, int prec) {
  double w = std::fmod(value, turn);
  if (w < 0) w += turn;
  const double scale = static_cast<double>(pow10i(prec));
  int64_t n;
  if (!roundScaled(w, scale, n)) return bigFixedText(w, prec);
  const double shown = static_cast<double>(n);
  if (shown >= turn * scale || (turn - w) * scale < std::fabs(shown - w * scale)) n = 0;
  return fixedText(n, prec);
}

std::wstring angleText(double radians, int unit, int prec) {
  switch (unit) {
  case 0: return turnText(radians * 180.0 / kPi, 360.0, prec);
  case 2: return turnText(radians * 200.0 / kPi, 400.0, prec) + L'g';
  case 3: return turnText(radians, 2 * kPi, prec) + L'r';
  default: break;
  }
  double deg = std::fmod(radians * 180.0 / kPi, 360.0);
  if (deg < 0) deg += 360.0;
  const int64_t perDeg = dmsUnitsPerDegree(prec);
  int64_t n = 0;
  roundScaled(deg, static_cast<double>(perDeg), n);  // at most 360 * 3.6e7: always fits
  const int64_t q = 90 * perDeg;
  if (n >= 4 * q) n = 0;
  if (unit == 1) return dmsText(n, prec);
  if (n == 0) return L"E";
  if (n == q) return L"N";
  if (n == 2 * q) return L"W";
  if (n == 3 * q) return L"S";
  if (n < q) return L"N " + dmsText(q - n, prec) + L" E";
  if (n < 2 * q) return L"N " + dmsText(n - q, prec) + L" W";
  if (n < 3 * q) return L"S " + dmsText(3 * q - n, prec) + L" W";
  return L"S " + dmsText(n - 3 * q, prec) + L" E";
}

// ---- Reading -------------------------------------------------------------

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool isSpace(wchar_t c) { return c == L' ' || c == L'\t'; }
wchar_t upper(wchar_t c) { return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c; }

// A cursor over typed text; each scan either consumes what it read or leaves the
// position where it was.
struct Cursor {
  std::wstring_view s;
  size_t i = 0;

  bool atEnd() const { return i >= s.size(); }
  wchar_t peek(size_t ahead = 0) const { return i + ahead < s.size() ? s[i + ahead] : L'\0'; }
  bool take(wchar_t c) {
    if (peek() != c) return false;
    ++i;
    return true;
  }
  bool takeUpper(wchar_t c) {
    if (upper(peek()) != c) return false;
    ++i;
    return true;
  }
  void skipSpaces() {
    while (isSpace(peek())) ++i;
  }

  bool digits(std::string& out) {
    const size_t from = out.size();
    while (isDigit(peek())) out += static_cast<char>(s[i++]);
    return out.size() > from;
  }

  // [digits][.digits][(e|E)[+-]digits] with at least one mantissa digit. The
  // exponent is taken only when complete, so "45E" leaves the 'E' for a bearing.
  bool number(double& v, bool* isInteger = nullptr) {
    const size_t start = i;
    std::string t;
    bool any = digits(t);
    bool integer = true;
    if (peek() == L'.') {
      ++i;
      t += '.';
      integer = false;
      any = digits(t) || any;
    }
    if (!any) {
      i = start;
      return false;
    }
    if (upper(peek()) == L'E') {
      const size_t signAt = (peek(1) == L'+' || peek(1) == L'-') ? 2 : 1;
      if (isDigit(peek(signAt))) {
        t += 'e';
        if (signAt == 2) t += static_cast<char>(peek(1));
        i += signAt;
        digits(t);
        integer = false;
      }
    }
    auto r = std::from_chars(t.data(), t.data() + t.size(), v);
    if (r.ec != std::errc() || !std::isfinite(v)) {
      i = start;
      return false;
    }
    if (isInteger) *isInteger = integer;
    return true;
  }

  bool unsignedInt(double& v) {
    const size_t start = i;
    std::string t;
    if (!digits(t)) return false;
    auto r = std::from_chars(t.data(), t.data() + t.size(), v);
    if (r.ec != std::errc()) {
      i = start;
      return false;
    }
    return true;
  }

  // "num/den" after a whole number has been read.
  bool fractionTail(double numerator, double& v) {
    const size_t start = i;
    double den;
    if (!take(L'/') || !unsignedInt(den) || den == 0) {
      i = start;
      return false;
    }
    v = numerator / den;
    return true;
  }

  // A number, a fraction "3/4", or a mixed number "15 1/2" / "15-1/2".
  bool quantity(double& v) {
    bool integer = false;
    if (!number(v, &integer)) return false;
    if (!integer) return true;
    double f;
    if (fractionTail(v, f)) {
      v = f;
      return true;
    }
    const size_t afterWhole = i;
    if (isSpace(peek()) || peek() == L'-') {
      if (peek() == L'-') ++i;
      else skipSpaces();
      double num;
      if (unsignedInt(num) && fractionTail(num, f)) {
        v += f;
        return true;
      }
      i = afterWhole;
    }
    return true;
  }

  // -1 for a leading '-', 1 otherwise ('+' is consumed too).
  double sign() {
    if (take(L'-')) return -1.0;
    take(L'+');
    return 1.0;
  }
};

std::wstring_view trimmed(const OdString& text) {
  std::wstring_view s = text.view();
  while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
  while (!s.empty() && isSpace(s.back())) s.remove_suffix(1);
  return s;
}

bool parseDistance(std::wstring_view s, double& out) {
  Cursor c{s};
  const double sign = c.sign();
  double v;
  if (!c.quantity(v)) return false;
  if (c.take(L'\'')) {
    double inches = 0;
    c.skipSpaces();
    if (!c.atEnd()) {
      if (c.take(L'-')) c.skipSpaces();
      if (!c.quantity(inches)) return false;
      c.skipSpaces();
      c.take(L'"');
    }
    v = v * 12.0 + inches;
  } else {
    c.take(L'"');
  }
  if (!c.atEnd()) return false;
  out = sign * v;
  return true;
}

// Degrees per unit of a number written without a unit mark.
double bareScale(int unit) {
  switch (unit) {
  case 2: return 0.9;
  case 3: return 180.0 / kPi;
  default: return 1.0;
  }
}

// An unsigned angle in degrees: "45.5", "45d30'15\"", "50g", "0.7854r", or a
// number without a mark, counted with `bare` degrees per unit.
bool angleMagnitude(Cursor& c, double bare, double& deg) {
  double v;
  if (!c.number(v)) return false;
  if (c.takeUpper(L'D') || c.take(L'\u00B0')) {
    deg = v;
    c.skipSpaces();
    double m;
    if (c.number(m)) {
      if (!c.take(L'\'')) return false;
      deg += m / 60.0;
      c.skipSpaces();
      double sec;
      if (c.number(sec)) {
        c.take(L'"');
        deg += sec / 3600.0;
      }
    }
    return true;
  }
  if (c.takeUpper(L'G')) deg = v * 0.9;
  else if (c.takeUpper(L'R')) deg = v * 180.0 / kPi;
  else deg = v * bare;
  return true;
}

bool parseAngle(std::wstring_view s, int unit, double& outRadians) {
  Cursor c{s};
  double deg = 0;
  const wchar_t first = upper(c.peek());
  if (first == L'N' || first == L'S') {
    ++c.i;
    c.skipSpaces();
    if (c.atEnd()) {
      deg = first == L'N' ? 90.0 : 270.0;
    } else {
      double b;
      if (!angleMagnitude(c, 1.0, b) || b < 0 || b > 90) return false;
      c.skipSpaces();
      const wchar_t ew = upper(c.peek());
      if (ew != L'E' && ew != L'W') return false;
      ++c.i;
      if (first == L'N') deg = ew == L'E' ? 90.0 - b : 90.0 + b;
      else deg = ew == L'W' ? 270.0 - b : 270.0 + b;
    }
  } else if ((first == L'E' || first == L'W') && s.size() == 1) {
    ++c.i;
    deg = first == L'E' ? 0.0 : 180.0;
  } else {
    const double sign = c.sign();
    if (!angleMagnitude(c, bareScale(unit), deg)) return false;
    deg *= sign;
  }
  if (!c.atEnd()) return false;
  outRadians = deg * kPi / 180.0;
  return true;
}

// Resolves a linear unit; false for one that is neither -1 nor 1..5.
bool linearUnit(const OdDbDatabase* db, int unit, int prec, int& u, int& p) {
  const HostUnitSettings set = HostUnitSettings::of(db);
  u = unit == -1 ? set.lunits : unit;
  p = prec == -1 ? set.luprec : clampPrec(prec);
  return u >= 1 && u <= 5;
}

bool angularUnit(const OdDbDatabase* db, int unit, int prec, int& u, int& p) {
  const HostUnitSettings set = HostUnitSettings::of(db);
  u = unit == -1 ? set.aunits : unit;
  p = prec == -1 ? set.auprec : clampPrec(prec);
  return u >= 0 && u <= 4;
}

}  // namespace

HostUnitSettings HostUnitSettings::of(const OdDbDatabase* db) {
  HostUnitSettings s;
  if (!db) return s;
  s.lunits = db->getLUNITS();
  if (s.lunits < 1 || s.lunits > 5) s.lunits = 2;
  s.luprec = clampPrec(db->getLUPREC());
  s.aunits = db->getAUNITS();
  if (s.aunits < 0 || s.aunits > 4) s.aunits = 0;
  s.auprec = clampPrec(db->getAUPREC());
  return s;
}

bool hostdbRToS(const OdDbDatabase* db, double value, int unit, int prec, OdString& out) {
  int u, p;
  if (!linearUnit(db, unit, prec, u, p) || !std::isfinite(value)) return false;
  switch (u) {
  case 1: out = scientificText(value, p); break;
  case 3: out = engineeringText(value, p); break;
  case 4: out = architecturalText(value, p); break;
  case 5: out = fractionalText(value, p); break;
  default: out = decimalText(value, p); break;
  }
  return true;
}

bool hostdbRToS(double value, int unit, int prec, OdString& out) {
  return hostdbRToS(hostActiveDatabase(), value, unit, prec, out);
}

bool hostdbAngToS(const OdDbDatabase* db, double radians, int unit, int prec, OdString& out) {
  int u, p;
  if (!angularUnit(db, unit, prec, u, p) || !std::isfinite(radians)) return false;
  out = angleText(radians, u, p);
  return true;
}

bool hostdbAngToS(double radians, int unit, int prec, OdString& out) {
  return hostdbAngToS(hostActiveDatabase(), radians, unit, prec, out);
}

bool hostdbDisToF(const OdDbDatabase* db, const OdString& text, int unit, double& out) {
  int u, p;
  if (!linearUnit(db, unit, -1, u, p)) return false;
  return parseDistance(trimmed(text), out);
}

bool hostdbDisToF(const OdString& text, int unit, double& out) {
  return hostdbDisToF(hostActiveDatabase(), text, unit, out);
}

bool hostdbAngToF(const OdDbDatabase* db, const OdString& text, int unit, double& out) {
  int u, p;
  if (!angularUnit(db, unit, -1, u, p)) return false;
  return parseAngle(trimmed(text), u, out);
}

bool hostdbAngToF(const OdString& text, int unit, double& out) {
  return hostdbAngToF(hostActiveDatabase(), text, unit, out);
}

bool VxLin2Str(double value, OdString& out, int unit, int prec, int, int, int, int) {
  return hostdbRToS(value, unit == 255 ? -1 : unit, prec == 255 ? -1 : prec, out);
}

bool VxAng2Str(double degrees, OdString& out, double base, int unit, int prec, int, int, int, int) {
  if (std::fabs(base - kVxDefaultBase) > 1e-6) degrees -= base;
  return hostdbAngToS(degrees * kPi / 180.0, unit == 255 ? -1 : unit, prec == 255 ? -1 : prec, out);
}
