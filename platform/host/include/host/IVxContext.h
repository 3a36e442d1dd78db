// The host context: what a module uses to talk to the user on the command line
// (commands, printed lines, prompts, picking and selecting, Yes/No questions).
// The console and the window host each install their own (gpVxContext).
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "drawings/OdDbObjectId.h"
#include "drawings/OdString.h"
#include "host/HostResult.h"

// A command-line command as a module hands it to the host.
struct VxCommandDesc {
  OdString globalName;            // what is typed, such as "-dimstyle"
  std::function<void()> handler;
  uint32_t flags = 0;             // the host's flag word, kept as given
};

// A keyword list as modules write it: the local keywords, then the same
// keywords' global forms marked with '*' ("Yes No *Yes *No"). The i-th global
// form names the i-th local keyword; a list without global forms uses the
// local ones for both.
struct HostKeywordList {
  std::vector<OdString> local, global;

  static HostKeywordList parse(const OdString& text);
  // The local keyword that `input` names: a local keyword by its capitals or a
  // longer prefix, or with a leading '_' a global one. Empty when none.
  OdString match(const OdString& input) const;
  // "ANnotative/Save/?": what a prompt shows in place of its "%s".
  OdString display() const;
  bool empty() const { return local.empty(); }
};

class IVxContext {
public:
  virtual ~IVxContext() = default;

  // The command runs when its name is typed at "Command: ", inside one undo
  // group. Fails when a command of that name exists.
  virtual HostResult addCommand(const VxCommandDesc& desc) = 0;
  // One line of text.
  virtual void print(const OdString& text) = 0;

  // Prompts show the keyword list where the prompt text has "%s"
  // ("Enter a dimension style option [%s]<Restore>:"). Each of them returns
  // kHostOk with the answer, kHostNone (result empty) for Enter on an empty
  // line, and kHostAbort when the user cancels or the input ends.

  // A keyword of `keywords`; anything else is refused and the prompt repeats.
  // `result` is the local keyword, also when its global form was typed.
  virtual HostResult getKeyword(const OdString& prompt, const OdString& keywords, OdString& result) = 0;
  // A text. Without `allowSpaces` the text ends at the first blank. An answer
  // that names one of `keywords` gives kHostKeyword and the local keyword.
  virtual HostResult getString(const OdString& prompt, bool allowSpaces, OdString& result,
                               const OdString& keywords = OdString()) = 0;
  // One entity of the active drawing, by its handle or by a point near it.
  // kHostFail when no drawing is open.
  virtual HostResult getEntity(const OdString& prompt, OdDbObjectId& id) = 0;
  // Entities of the active drawing, gathered over repeated prompts until Enter;
  // kHostNone when nothing was selected, kHostFail when no drawing is open.
  // `ids` is in selection order.
  virtual HostResult selectObjects(const OdString& prompt, OdDbObjectIdArray& ids) = 0;
  // True for Yes.
  virtual bool askYesNo(const OdString& question) = 0;
};

// The installed context; null before the host has started.
extern IVxContext* gpVxContext;
