#include "host/HostServices.h"

namespace {
OdDbDatabase* g_active = nullptr;
std::string g_language = "en";
std::function<bool(const std::wstring&)> g_yesNo;
std::function<void(const char*, std::size_t, std::size_t)> g_progress;
}  // namespace

OdDbDatabase* hostActiveDatabase() { return g_active; }
void hostSetActiveDatabase(OdDbDatabase* db) { g_active = db; }

const std::string& hostLanguage() { return g_language; }
void hostSetLanguage(const std::string& language) { g_language = language; }

bool hostAskYesNo(const std::wstring& question) { return g_yesNo ? g_yesNo(question) : false; }
void hostSetYesNoHandler(std::function<bool(const std::wstring&)> handler) { g_yesNo = std::move(handler); }

void hostProgress(const char* what, std::size_t done, std::size_t total) {
  if (g_progress) g_progress(what, done, total);
}
void hostSetProgressHandler(std::function<void(const char*, std::size_t, std::size_t)> handler) {
  g_progress = std::move(handler);
}
