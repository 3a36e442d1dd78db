// Commands that modules give the host: command-line commands handed to the
// host context, and commands registered by group and identifier, which the host
// offers under a word of its own ("DimStylesCmd" as DIMSTYLE). Each remembers
// the module that gave it, so that the host drops it when that module unloads.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "drawings/OdString.h"
#include "host/HostResult.h"

// Parameters that a caller hands a registered command, by key: "HWND" the
// caller's window (a QWidget*), "CMDDIA" a switch, a drawing for "RefreshProperties".
using HostCommandParam = std::variant<int64_t, void*, OdString>;
using HostCommandParams = std::map<std::string, HostCommandParam>;

struct HostCommand {
  std::string word;            // what is typed at "Command: ", upper-case
  OdString group, identifier;  // of a registered command; empty for a command-line one
  uint32_t flags = 0;          // as given
  std::function<void()> handler;
  const void* module = nullptr;  // the module whose initialisation gave it
  // Registered commands run by hostExecuteCommand may take parameters.
  std::function<void(const HostCommandParams&)> paramHandler;
  bool isRegistered() const { return !identifier.isEmpty(); }
};

// Registers a command of a module; fails when the group already has the
// identifier or when the handler or a name is missing.
HostResult hostRegisterCommand(const OdString& group, const OdString& identifier, uint32_t flags,
                               std::function<void()> handler);
// The same for a command that takes parameters when a caller runs it; typed at
// "Command: " it runs with none.
HostResult hostRegisterCommandWithParams(const OdString& group, const OdString& identifier, uint32_t flags,
                                         std::function<void(const HostCommandParams&)> handler);
// Runs the registered command of `identifier` (of any group) now, with `params`;
// kHostInvalidArg when there is none.
HostResult hostExecuteCommand(const OdString& identifier, const HostCommandParams& params = {});
// Runs it once the current user action is done: the window host queues it on its
// event loop; without a poster installed (the console) it runs at once.
HostResult hostPostCommand(const OdString& identifier, const HostCommandParams& params = {});
// The host's side: how posted commands are queued.
void hostSetCommandPoster(std::function<void(std::function<void()>)> poster);
// Null when not registered.
const HostCommand* hostFindRegisteredCommand(const OdString& group, const OdString& identifier);

// The host's side.

// The word under which the host offers a registered command: its own name for
// the identifiers it knows, otherwise the identifier upper-cased without a
// trailing "Cmd".
std::string hostCommandWord(const OdString& identifier);
// What IVxContext::addCommand does; fails when the word is taken.
HostResult hostAddCommandLineCommand(const OdString& globalName, uint32_t flags, std::function<void()> handler);
// Any kind, by the word typed (case-insensitive); null when none.
const HostCommand* hostFindCommand(std::string_view word);
// Every word, sorted.
std::vector<std::string> hostCommandWords();
void hostDropModuleCommands(const void* module);
