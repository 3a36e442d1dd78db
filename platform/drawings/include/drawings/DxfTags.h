// DXF group tags: value types by group code, the tag scanner over a file's bytes,
// and the tag list an object is made of.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "drawings/DxfVersion.h"

// The fixed 22 bytes that open every binary DXF file (a format constant).
inline constexpr std::string_view kDxfBinarySentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

enum class DxfType : uint8_t { String, Double, Int16, Int32, Int64, Bool, Binary, Handle };

// The value type that the DXF code ranges give a group code.
DxfType dxfTypeOf(int code);
bool isHandleCode(int code);  // 5, 105, 320-369, 390-399, 480-481, 1005

// Bad input in a DXF file: the message names the line (or byte offset in binary
// files), the group code and what was expected.
struct DxfSyntaxError {
  std::string message;
};

// One tag as it sits in the file. `raw` spans the whole tag (code and value with
// their line endings, or the binary bytes); `value` is the value's own bytes:
// the text line without its line ending, or the binary payload.
struct DxfRawTag {
  int code = 0;
  std::string_view raw;
  std::string_view value;
  uint32_t line = 0;  // first line of the tag (ASCII) or its byte offset (binary)
};

class DxfTagScanner {
public:
  // `data` must outlive the scanner. Binary files: `shortCodes` selects the
  // one-byte group codes of R12 and older.
  DxfTagScanner(std::string_view data, DxfFormat format, bool shortCodes, size_t start, uint32_t firstLine);
  // False at the end of the data; throws DxfSyntaxError on malformed input.
  bool next(DxfRawTag& tag);
  size_t position() const { return m_pos; }
  uint32_t line() const { return m_line; }

private:
  bool nextAscii(DxfRawTag& tag);
  size_t findNewline(size_t from);
  bool nextBinary(DxfRawTag& tag);
  [[noreturn]] void fail(uint32_t where, int code, const std::string& expected) const;

  std::string_view m_data;
  DxfFormat m_format;
  bool m_shortCodes;
  size_t m_pos;
  uint32_t m_line;
  size_t m_maskBase = 0;  // the 64-byte block whose line breaks m_mask holds
  uint64_t m_mask = 0;
  bool m_maskValid = false;
};

// Checks that an ASCII value is well formed for its code; returns what was
// expected on failure, nullptr when fine.
const char* dxfCheckAsciiValue(int code, std::string_view value);

// One tag of a parsed object. While `changed` is false and `raw` is set, the tag is
// written back as `raw`. `text` always holds the value in ASCII DXF spelling (strings
// in the file's encoding); that is what typed access reads and writes.
struct DxfTag {
  int16_t code = 0;
  bool changed = false;
  uint16_t valueOffset = 0;  // where the value starts inside raw (the code part is reused)
  std::string_view raw;
  std::string text;

  DxfTag() = default;
  DxfTag(int c, std::string t) : code(static_cast<int16_t>(c)), changed(true), text(std::move(t)) {}

  double toDouble() const;
  int64_t toInt() const;
  bool toBool() const { return toInt() != 0; }
  uint64_t toHandle() const;  // 0 when empty or not hex
  void set(std::string t) {
    if (t != text || raw.empty()) {
      text = std::move(t);
      changed = true;
    }
  }
};

using DxfTagList = std::vector<DxfTag>;

// Value text of a raw tag in ASCII spelling (binary payloads are converted).
std::string dxfValueText(const DxfRawTag& t, DxfFormat format);

// Formatting of values as written into a DXF file.
std::string dxfFormatDouble(double v);
std::string dxfFormatHandle(uint64_t h);

// Names as files spell them, compared without regard to ASCII case (symbol names
// match that way; bytes of other characters must be equal).
bool dxfEqualNoCase(std::string_view a, std::string_view b);

struct DxfStyle {
  DxfFormat format = DxfFormat::Ascii;
  bool shortCodes = false;   // binary R12 one-byte codes
  bool padCodes = true;      // codes right-aligned to three columns
  std::string_view eol = "\n";
};

// Appends one tag to `out` in the given style: raw when unchanged, else freshly formatted.
void dxfWriteTag(std::string& out, const DxfTag& t, const DxfStyle& style);
void dxfWriteNewTag(std::string& out, int code, std::string_view text, const DxfStyle& style);
// A double value, spelled as dxfFormatDouble does.
void dxfWriteDouble(std::string& out, int code, double v, const DxfStyle& style);
// An integer value, as wide as its group code holds in binary files.
void dxfWriteInt(std::string& out, int code, int64_t v, const DxfStyle& style);
