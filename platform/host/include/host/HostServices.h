// Services of the host that the module reaches without a window: the active
// drawing, the user-interface language and Yes/No questions. The program (console
// or window) installs the implementations; tests install their own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "drawings/OdDbDatabase.h"

// The active document's drawing; null when no drawing is open.
OdDbDatabase* hostActiveDatabase();
void hostSetActiveDatabase(OdDbDatabase* db);

// The user-interface language: "en" or "ru".
const std::string& hostLanguage();
void hostSetLanguage(const std::string& language);

// Asks the user a Yes/No question (the text may span lines); true for Yes. Without
// an installed handler every question is answered No, so nothing is changed unasked.
bool hostAskYesNo(const std::wstring& question);
void hostSetYesNoHandler(std::function<bool(const std::wstring&)> handler);

// Long work reports how far it got: `done` of `total` steps of `what` (a short
// text such as "DIMREGEN"); done == total ends it. The window shows it in its
// status bar and keeps painting; the console shows nothing.
void hostProgress(const char* what, std::size_t done, std::size_t total);
void hostSetProgressHandler(std::function<void(const char* what, std::size_t done, std::size_t total)> handler);
