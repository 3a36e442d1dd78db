// Translation of a module's texts into the user-interface language. A module
// registers a lookup over its string table; Supp_InitResTranslation switches
// that module to the host's language (hostLanguage()) as it is at that moment;
// from then on Supp_Translate answers with its table's texts.
#pragma once

#include <functional>
#include <string>

#include "drawings/OdString.h"
#include "host/HostResult.h"

// Sets `out` to the text for (context, text) in `language` and returns true, or
// returns false when the table has none. `context` may be null.
using HostStringLookup =
    std::function<bool(const wchar_t* context, const wchar_t* text, const std::string& language, std::wstring& out)>;

// A module's table, replacing any earlier one of the same module.
HostResult hostRegisterStringTable(const void* module, HostStringLookup lookup);
// `moduleHandle` is the module's own dlopen handle; kHostInvalidArg for null.
HostResult Supp_InitResTranslation(void* moduleHandle);
// The first switched module table that knows the text, in registration order;
// otherwise the text as given.
OdString Supp_Translate(const wchar_t* context, const wchar_t* text);

// The host's side: forgets the module's table and language.
void hostDropStringTables(const void* module);
