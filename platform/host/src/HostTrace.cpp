#include "host/HostTrace.h"

#include "drawings/OdString.h"

#include <cerrno>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <mutex>
#include <vector>

namespace {

using Sink = std::function<void(const std::wstring&)>;

struct TraceState {
  std::mutex lock;
  std::FILE* file = nullptr;
  // Shared so a line can be delivered after the lock is released.
  std::shared_ptr<const Sink> sink;
};

TraceState& state() {
  static TraceState s;
  return s;
}

void emit(const std::wstring& line) {
  TraceState& s = state();
  std::shared_ptr<const Sink> sink;
  {
    std::lock_guard<std::mutex> guard(s.lock);
    if (s.file) {
      std::string bytes = odstr::narrow(line);
      bytes += '\n';
      std::fwrite(bytes.data(), 1, bytes.size(), s.file);
      // A crash right after a failed check is when the log matters most.
      std::fflush(s.file);
    }
    sink = s.sink;
  }
  if (sink) (*sink)(line);
}

bool isFlag(wchar_t c) { return c == L'-' || c == L'+' || c == L' ' || c == L'#' || c == L'0' || c == L'\''; }
bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Rewrites the conversions whose argument width differs between the wide
// printf family of the original platform and the C library's (see header).
std::wstring portableFormat(const wchar_t* fmt) {
  std::wstring out;
  out.reserve(std::wcslen(fmt) + 8);
  for (const wchar_t* p = fmt; *p;) {
    if (*p != L'%') { out += *p++; continue; }
    out += *p++;
    if (*p == L'%') { out += *p++; continue; }
    while (isFlag(*p)) out += *p++;
    while (isDigit(*p) || *p == L'*') out += *p++;
    if (*p == L'.') {
      out += *p++;
      while (isDigit(*p) || *p == L'*') out += *p++;
    }
    std::wstring len;
    if (p[0] == L'I' && p[1] == L'6' && p[2] == L'4') { len = L"ll"; p += 3; }
    else if (p[0] == L'I' && p[1] == L'3' && p[2] == L'2') { p += 3; }
    else if (*p == L'I') { len = L"z"; ++p; }
    else if (*p == L'w') { len = L"l"; ++p; }
    else while (*p && std::wcschr(L"hlLqjzt", *p)) len += *p++;
    const wchar_t conv = *p;
    if (!conv) {
      // A '%' left dangling at the end prints as itself rather than failing
      // the whole line.
      out += out.back() == L'%' ? L"%" : len;
      break;
    }
    ++p;
    if (conv == L's' || conv == L'c') {
      out += len == L"h" ? std::wstring() : std::wstring(L"l");
      out += conv;
    } else if (conv == L'S' || conv == L'C') {
      out += len == L"l" ? std::wstring(L"l") : std::wstring();
      out += static_cast<wchar_t>(conv == L'S' ? L's' : L'c');
    } else {
      out += len;
      out += conv;
    }
  }
  return out;
}

std::wstring tagged(const wchar_t* kind, const uint32_t* code, const wchar_t* text) {
  std::wstring line = kind;
  if (code) {
    wchar_t hex[16];
    std::swprintf(hex, 16, L"(%X)", static_cast<unsigned>(*code));
    line += hex;
  }
  line += L" '";
  line += text ? text : L"";
  line += L'\'';
  return line;
}

}  // namespace

std::wstring hostFormatV(const wchar_t* fmt, va_list args) {
  if (!fmt) return std::wstring();
  const std::wstring f = portableFormat(fmt);
  std::vector<wchar_t> buf(512);
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    errno = 0;
    const int n = std::vswprintf(buf.data(), buf.size(), f.c_str(), copy);
    va_end(copy);
    if (n >= 0) return std::wstring(buf.data(), static_cast<size_t>(n));
    // -1 means either "too small" or a failed conversion or format; only the
    // first is worth a bigger buffer.
    if (errno == EILSEQ || errno == EINVAL || buf.size() >= (1u << 24)) return fmt;
    buf.resize(buf.size() * 4);
  }
}

bool hostTraceSetFile(const char* path) {
  TraceState& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  if (s.file) {
    std::fclose(s.file);
    s.file = nullptr;
  }
  if (!path || !*path) return true;
  s.file = std::fopen(path, "ab");
  return s.file != nullptr;
}

void hostTraceSetSink(std::function<void(const std::wstring&)> sink) {
  TraceState& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.sink = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
}

void hostTrace(const wchar_t* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  std::wstring line = hostFormatV(fmt, args);
  va_end(args);
  emit(line);
}

void hostTraceError(const wchar_t* text) { emit(tagged(L"ERROR", nullptr, text)); }
void hostTraceError(uint32_t code, const wchar_t* text) { emit(tagged(L"ERROR", &code, text)); }
void hostTraceWarning(const wchar_t* text) { emit(tagged(L"WARNING", nullptr, text)); }
void hostTraceWarning(uint32_t code, const wchar_t* text) { emit(tagged(L"WARNING", &code, text)); }
