#include "host/HostCommands.h"

#include <algorithm>
#include <list>

#include "host/HostModules.h"

namespace {

// A list, so that a command found stays in place while others come and go.
std::list<HostCommand>& commands() {
  static std::list<HostCommand> all;
  return all;
}

std::string upper(std::string_view word) {
  std::string w(word);
  for (auto& c : w)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return w;
}

std::function<void(std::function<void()>)>& poster() {
  static std::function<void(std::function<void()>)> p;
  return p;
}

const HostCommand* findByIdentifier(const OdString& identifier) {
  for (const auto& c : commands())
    if (c.isRegistered() && c.identifier.iCompare(identifier) == 0) return &c;
  return nullptr;
}

HostResult add(HostCommand command) {
  if (command.word.empty() || (!command.handler && !command.paramHandler)) return kHostInvalidArg;
  if (!command.handler) command.handler = [h = command.paramHandler] { h(HostCommandParams{}); };
  if (hostFindCommand(command.word)) return kHostFail;
  command.module = hostLoadingModule();
  commands().push_back(std::move(command));
  return kHostOk;
}

}  // namespace

HostResult hostRegisterCommand(const OdString& group, const OdString& identifier, uint32_t flags,
                               std::function<void()> handler) {
  if (group.isEmpty() || identifier.isEmpty()) return kHostInvalidArg;
  if (hostFindRegisteredCommand(group, identifier)) return kHostFail;
  return add(HostCommand{hostCommandWord(identifier), group, identifier, flags, std::move(handler), nullptr});
}

HostResult hostRegisterCommandWithParams(const OdString& group, const OdString& identifier, uint32_t flags,
                                         std::function<void(const HostCommandParams&)> handler) {
  if (group.isEmpty() || identifier.isEmpty() || !handler) return kHostInvalidArg;
  if (hostFindRegisteredCommand(group, identifier)) return kHostFail;
  HostCommand c{hostCommandWord(identifier), group, identifier, flags, nullptr, nullptr};
  c.paramHandler = std::move(handler);
  return add(std::move(c));
}

HostResult hostExecuteCommand(const OdString& identifier, const HostCommandParams& params) {
  const HostCommand* c = findByIdentifier(identifier);
  if (!c) return kHostInvalidArg;
  if (c->paramHandler) {
    auto handler = c->paramHandler;  // the command may unload its module's table meanwhile
    handler(params);
  } else {
    auto handler = c->handler;
    handler();
  }
  return kHostOk;
}

HostResult hostPostCommand(const OdString& identifier, const HostCommandParams& params) {
  if (!findByIdentifier(identifier)) return kHostInvalidArg;
  if (!poster()) return hostExecuteCommand(identifier, params);
  poster()([identifier, params] { hostExecuteCommand(identifier, params); });
  return kHostOk;
}

void hostSetCommandPoster(std::function<void(std::function<void()>)> p) { poster() = std::move(p); }

const HostCommand* hostFindRegisteredCommand(const OdString& group, const OdString& identifier) {
  for (const auto& c : commands())
    if (c.isRegistered() && c.group.iCompare(group) == 0 && c.identifier.iCompare(identifier) == 0) return &c;
  return nullptr;
}

std::string hostCommandWord(const OdString& identifier) {
  static const struct {
    const wchar_t* identifier;
    const char* word;
  } known[] = {{L"DimStylesCmd", "DIMSTYLE"}, {L"TextPropsCmd", "STYLE"}, {L"RefreshProperties", "REFRESHPROPERTIES"}};
  for (const auto& k : known)
    if (identifier.iCompare(k.identifier) == 0) return k.word;
  std::string word = upper(identifier.toUtf8());
  if (word.size() > 3 && word.compare(word.size() - 3, 3, "CMD") == 0) word.resize(word.size() - 3);
  return word;
}

HostResult hostAddCommandLineCommand(const OdString& globalName, uint32_t flags, std::function<void()> handler) {
  return add(HostCommand{upper(globalName.toUtf8()), OdString(), OdString(), flags, std::move(handler), nullptr});
}

const HostCommand* hostFindCommand(std::string_view word) {
  std::string w = upper(word);
  // Older names that users still type.
  if (w == "DDIM") w = "DIMSTYLE";
  for (const auto& c : commands())
    if (c.word == w) return &c;
  return nullptr;
}

std::vector<std::string> hostCommandWords() {
  std::vector<std::string> words;
  for (const auto& c : commands()) words.push_back(c.word);
  std::sort(words.begin(), words.end());
  return words;
}

void hostDropModuleCommands(const void* module) {
  commands().remove_if([module](const HostCommand& c) { return c.module == module; });
}
