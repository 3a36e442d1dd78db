#include "host/HostTranslation.h"

#include <vector>

#include "host/HostServices.h"

namespace {

struct Table {
  const void* module;
  HostStringLookup lookup;  // null until registered
  std::string language;     // empty until the module is switched
};

std::vector<Table>& tables() {
  static std::vector<Table> all;
  return all;
}

Table& tableOf(const void* module) {
  for (auto& t : tables())
    if (t.module == module) return t;
  return tables().emplace_back(Table{module, nullptr, std::string()});
}

}  // namespace

HostResult hostRegisterStringTable(const void* module, HostStringLookup lookup) {
  if (!module || !lookup) return kHostInvalidArg;
  tableOf(module).lookup = std::move(lookup);
  return kHostOk;
}

HostResult Supp_InitResTranslation(void* moduleHandle) {
  if (!moduleHandle) return kHostInvalidArg;
  tableOf(moduleHandle).language = hostLanguage();
  return kHostOk;
}

OdString Supp_Translate(const wchar_t* context, const wchar_t* text) {
  if (!text) return OdString();
  std::wstring out;
  for (const auto& t : tables())
    if (t.lookup && !t.language.empty() && t.lookup(context, text, t.language, out)) return OdString(out);
  return OdString(text);
}

void hostDropStringTables(const void* module) {
  std::erase_if(tables(), [module](const Table& t) { return t.module == module; });
}
