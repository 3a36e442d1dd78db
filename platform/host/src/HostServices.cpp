#include "host/HostServices.h"

namespace {
OdDbDatabase* g_active = nullptr;
std::string g_language = "en";
std::function<bool(const std::wstring&)> g_yesNo;
}  // namespace

OdDbDatabase* hostActiveDatabase() { return g_active; }
void hostSetActiveDatabase(OdDbDatabase* db) { g_active = db; }

const std::string& hostLanguage() { return g_language; }
void hostSetLanguage(const std::string& language) { g_language = language; }

bool hostAskYesNo(const std::wstring& question) { return g_yesNo ? g_yesNo(question) : false; }
void hostSetYesNoHandler(std::function<bool(const std::wstring&)> handler) { g_yesNo = std::move(handler); }
