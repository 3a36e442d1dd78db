// The host's trace log: one line per call, to a file (UTF-8) and/or a sink.
//
// Formats use printf conversions with the wide-string reading of the host's
// original platform: in a wide format "%s" and "%c" take wide arguments and
// "%S", "%C", "%hs", "%hc" take narrow ones. Code written for either platform
// therefore formats the same here. Narrow arguments must be ASCII unless the
// process has a UTF-8 C locale.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string>

// Appends every later line to the file at `path` (UTF-8, '\n' ended, flushed
// per line). nullptr or "" closes the file. Returns false if it cannot be opened.
bool hostTraceSetFile(const char* path);

// Receives every later line, without its line end; an empty function removes it.
// Called outside the trace lock, so a sink may trace itself.
void hostTraceSetSink(std::function<void(const std::wstring&)> sink);

void hostTrace(const wchar_t* fmt, ...);

// "ERROR '<text>'", "ERROR(<code in hex>) '<text>'", and the same with WARNING.
void hostTraceError(const wchar_t* text);
void hostTraceError(uint32_t code, const wchar_t* text);
void hostTraceWarning(const wchar_t* text);
void hostTraceWarning(uint32_t code, const wchar_t* text);

// The formatter behind hostTrace, shared with the module's string class so that
// both read a format alike. A format the C library cannot apply (a narrow
// argument that is not valid in the C locale) yields the format text itself, so
// a log line is never lost entirely.
std::wstring hostFormatV(const wchar_t* fmt, va_list args);
