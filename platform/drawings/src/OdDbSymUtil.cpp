#include "drawings/OdDbSymUtil.h"

#include <string_view>

#include "drawings/OdDbDatabase.h"

namespace {

constexpr size_t kMaxExtendedLength = 255;
constexpr size_t kMaxOldLength = 31;

bool isSpace(wchar_t c) { return c == L' ' || c == 0xA0; }
bool isControl(wchar_t c) { return c < 0x20 || (c >= 0x7F && c <= 0x9F); }

bool isForbiddenExtended(wchar_t c) {
  static constexpr std::wstring_view kForbidden = L"<>/\\\":;?*|,=`";
  return isControl(c) || kForbidden.find(c) != std::wstring_view::npos;
}

bool isAllowedOld(wchar_t c) {
  return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || (c >= L'0' && c <= L'9') || c == L'$' ||
         c == L'_' || c == L'-';
}

// Characters, not UTF-16 units: a pair of surrogates is one character where
// wchar_t is 16 bits.
size_t characterCount(std::wstring_view s) {
  size_t n = 0;
  for (wchar_t c : s)
    if (!(c >= 0xDC00 && c <= 0xDFFF)) ++n;
  return n;
}

}  // namespace

namespace OdDbSymUtil {

OdResult validateSymbolName(const OdString& name, bool allowVerticalBar, bool extendedNames) {
  const std::wstring_view s = name.view();
  if (s.empty() || isSpace(s.front()) || isSpace(s.back())) return eInvalidSymbolTableName;
  if (characterCount(s) > (extendedNames ? kMaxExtendedLength : kMaxOldLength)) return eInvalidSymbolTableName;
  for (size_t i = 0; i < s.size(); ++i) {
    const wchar_t c = s[i];
    if (c == L'|') {
      // Only between two non-empty parts of a dependent name.
      if (!allowVerticalBar || i == 0 || i + 1 == s.size() || s[i + 1] == L'|') return eInvalidSymbolTableName;
      continue;
    }
    if (extendedNames ? isForbiddenExtended(c) : !isAllowedOld(c)) return eInvalidSymbolTableName;
  }
  return eOk;
}

OdResult validateSymbolName(const OdString& name, bool allowVerticalBar) {
  return validateSymbolName(name, allowVerticalBar, true);
}

OdResult validateSymbolName(const OdString& name, bool allowVerticalBar, const OdDbDatabase* db) {
  return validateSymbolName(name, allowVerticalBar, db ? db->extendedNames() : true);
}

}  // namespace OdDbSymUtil
