// Text codec for DXF string values: file bytes <-> wide text.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "drawings/DxfVersion.h"
#include "drawings/OdString.h"

namespace dxfcodec {
// Byte <-> character tables of one code page, built once per process and shared.
struct CodeTable;
}  // namespace dxfcodec

// Files older than R2007 store strings as bytes in the code page named by $DWGCODEPAGE and
// write characters outside it as \U+XXXX; East-Asian characters may also appear as \M+nXXXX
// (n = 1 cp932, 2 cp950, 3 cp949, 4 Johab, 5 cp936). From R2007 on the file is UTF-8, but
// \U+XXXX escapes still turn up and are decoded as well.
//
// Reading and writing back must not change a drawing, so decode is lossless: a byte that does
// not decode to a character which encodes back to the same byte(s) -- invalid UTF-8, a hole in
// a code page, a half double-byte character, or a duplicate mapping whose preferred form is a
// different byte pair -- becomes the lone low surrogate U+DC00 + byte, and encode writes such
// a surrogate back as that raw byte. So do NUL, CR and LF, which encode would otherwise escape. Lone surrogates never result from
// decoding real text, so the two cannot be confused; a \U+ escape naming a lone surrogate is
// therefore kept as literal text rather than decoded.
//
// encode(decode(s)) == s for every byte string s, except where s holds \U+ or \M+ escapes that
// encode writes differently: escapes of characters the code page holds (written directly),
// lowercase hex digits (written uppercase) and \M+ forms (written directly or as \U+).
//
// Bytes 0x00-0x7F are always ASCII: the DXF structure is ASCII and a backslash must stay a
// backslash even in code pages that map 0x5C elsewhere.
//
// A codec is immutable and cheap to copy; tables are shared, so copies may be used from any
// number of threads.
class DxfCodec {
public:
  // codePage is the $DWGCODEPAGE value, compared case-insensitively; "" (absent), UNDEFINED and
  // names this codec does not know mean ANSI_1252. version decides UTF-8 against the code page.
  static DxfCodec make(std::string_view codePage, DxfVersion version);

  bool isUtf8() const { return m_utf8; }
  // The code page in use, in upper case ("ANSI_1251"); for UTF-8 files, the one the header names,
  // which is what saving to an older version would use.
  std::string_view codePageName() const;

  // Never fails; see the class comment for bytes that do not decode.
  OdString decode(std::string_view bytes) const;
  // Characters the file cannot hold become \U+XXXX (a surrogate pair of escapes above U+FFFF).
  // UTF-8 files hold everything except what no DXF string can hold: NUL, CR and LF are escaped
  // in every file, since they would end the value.
  std::string encode(std::wstring_view text) const;

private:
  DxfCodec(std::shared_ptr<const dxfcodec::CodeTable> table, bool utf8)
      : m_table(std::move(table)), m_utf8(utf8) {}

  std::shared_ptr<const dxfcodec::CodeTable> m_table;  // never null
  bool m_utf8 = false;
};
