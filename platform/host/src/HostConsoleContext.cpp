#include "host/HostConsoleContext.h"

#include <algorithm>
#include <unordered_set>

#include "host/HostCommands.h"
#include "host/HostServices.h"

IVxContext* gpVxContext = nullptr;

namespace {

std::vector<std::string> utf8(const std::vector<OdString>& words) {
  std::vector<std::string> out;
  out.reserve(words.size());
  for (const auto& w : words) out.push_back(w.toUtf8());
  return out;
}

std::vector<std::string> splitBlanks(const std::string& line) {
  std::vector<std::string> out;
  size_t i = 0;
  while ((i = line.find_first_not_of(" \t", i)) != std::string::npos) {
    size_t e = line.find_first_of(" \t", i);
    out.push_back(line.substr(i, e == std::string::npos ? std::string::npos : e - i));
    i = e;
  }
  return out;
}

bool isHandle(const std::string& text) {
  return !text.empty() && text.size() <= 16 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
}

}  // namespace

// ---------------------------------------------------------------- keyword lists

HostKeywordList HostKeywordList::parse(const OdString& text) {
  HostKeywordList list;
  const std::wstring& s = text.str();
  size_t i = 0;
  while ((i = s.find_first_not_of(L" \t", i)) != std::wstring::npos) {
    size_t e = s.find_first_of(L" \t", i);
    std::wstring word = s.substr(i, e == std::wstring::npos ? std::wstring::npos : e - i);
    if (word.size() > 1 && word[0] == L'*') list.global.emplace_back(word.substr(1));
    else list.local.emplace_back(word);
    i = e;
  }
  if (list.global.empty()) list.global = list.local;
  return list;
}

OdString HostKeywordList::match(const OdString& input) const {
  const std::string typed = input.toUtf8();
  const bool global = typed.size() > 1 && typed[0] == '_';
  const std::vector<OdString>& words = global ? this->global : local;
  auto found = HostCommandLine::matchKeyword(typed, utf8(words));
  if (!found) return OdString();
  const OdString word = OdString::fromUtf8(*found);
  size_t i = static_cast<size_t>(std::find(words.begin(), words.end(), word) - words.begin());
  return i < local.size() ? local[i] : OdString();
}

OdString HostKeywordList::display() const {
  OdString out;
  for (size_t i = 0; i < local.size(); ++i) {
    if (i) out += L'/';
    out += local[i];
  }
  return out;
}

// ---------------------------------------------------------------- the console context

HostConsoleContext::HostConsoleContext(HostCommandLine& cl, HostApDocManager& documents)
    : m_cl(cl), m_documents(documents) {}

HostResult HostConsoleContext::addCommand(const VxCommandDesc& desc) {
  return hostAddCommandLineCommand(desc.globalName, desc.flags, desc.handler);
}

void HostConsoleContext::print(const OdString& text) { m_cl.println(text.toUtf8()); }

std::string HostConsoleContext::promptText(const OdString& prompt, const HostKeywordList& keywords) {
  std::wstring s = prompt.str();
  size_t at = s.find(L"%s");
  if (at != std::wstring::npos) s.replace(at, 2, keywords.display().str());
  if (!s.empty() && s.back() == L':') s += L' ';
  else if (!s.empty() && s.back() != L' ') s += L": ";
  return odstr::narrow(s);
}

HostResult HostConsoleContext::getKeyword(const OdString& prompt, const OdString& keywords, OdString& result) {
  const HostKeywordList list = HostKeywordList::parse(keywords);
  const std::string shown = promptText(prompt, list);
  result = OdString();
  try {
    for (;;) {
      const std::string line = m_cl.getLine(shown);
      if (line.empty()) return kHostNone;
      OdString local = list.match(OdString::fromUtf8(line));
      if (!local.isEmpty()) {
        result = local;
        return kHostOk;
      }
      m_cl.println("Invalid option keyword.");
    }
  } catch (const HostCancel&) {
    return kHostAbort;
  }
}

HostResult HostConsoleContext::getString(const OdString& prompt, bool allowSpaces, OdString& result,
                                         const OdString& keywords) {
  const HostKeywordList list = HostKeywordList::parse(keywords);
  result = OdString();
  std::string line;
  try {
    line = m_cl.getLine(promptText(prompt, list));
  } catch (const HostCancel&) {
    return kHostAbort;
  }
  if (line.empty()) return kHostNone;
  // A blank ends the answer where blanks are not allowed, as it would end
  // typing on a command line.
  if (!allowSpaces) line = line.substr(0, line.find_first_of(" \t"));
  if (!list.empty()) {
    OdString local = list.match(OdString::fromUtf8(line));
    if (!local.isEmpty()) {
      result = local;
      return kHostKeyword;
    }
  }
  result = OdString::fromUtf8(line);
  return kHostOk;
}

HostResult HostConsoleContext::getEntity(const OdString& prompt, OdDbObjectId& id) {
  id = OdDbObjectId();
  HostApDocument* doc = m_documents.curDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return kHostFail;
  }
  const OdDbDatabase& db = *doc->database();
  const std::string shown = promptText(prompt, HostKeywordList());
  try {
    for (;;) {
      const std::string line = m_cl.getLine(shown);
      if (line.empty()) return kHostNone;
      OdGePoint2d p;
      OdDbObjectId found = hostParsePoint(line, p) ? hostPickNearest(db, p) : hostEntityByHandle(db, line);
      if (!found.isNull()) {
        id = found;
        return kHostOk;
      }
      m_cl.println("Nothing found.");
    }
  } catch (const HostCancel&) {
    return kHostAbort;
  }
}

bool HostConsoleContext::corner(const std::string& prompt, const std::vector<std::string>& tokens, size_t& next,
                                OdGePoint2d& p) {
  if (next < tokens.size()) return hostParsePoint(tokens[next++], p);
  for (;;) {
    if (hostParsePoint(m_cl.getLine(prompt), p)) return true;
    m_cl.println("Requires a point x,y.");
  }
}

HostResult HostConsoleContext::selectObjects(const OdString& prompt, OdDbObjectIdArray& ids) {
  ids.clear();
  HostApDocument* doc = m_documents.curDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return kHostFail;
  }
  const OdDbDatabase& db = *doc->database();
  const std::vector<std::string> keywords = {"Window", "Last", "Crossing", "ALL", "Previous"};
  std::unordered_set<OdDbObjectId> chosen;
  auto add = [&](const OdDbObjectIdArray& found) {
    const size_t before = ids.size();
    size_t duplicates = 0;
    for (const auto& id : found) {
      if (chosen.insert(id).second) ids.push_back(id);
      else ++duplicates;
    }
    std::string text = std::to_string(found.size()) + " found";
    if (duplicates) text += " (" + std::to_string(duplicates) + " duplicate)";
    if (before) text += ", " + std::to_string(ids.size()) + " total";
    m_cl.println(text);
  };
  const std::string shown = promptText(prompt, HostKeywordList());
  try {
    for (;;) {
      const std::vector<std::string> tokens = splitBlanks(m_cl.getLine(shown));
      if (tokens.empty()) break;
      for (size_t i = 0; i < tokens.size();) {
        const std::string& t = tokens[i++];
        const std::string k = HostCommandLine::matchKeyword(t, keywords).value_or("");
        OdGePoint2d p, q;
        OdDbObjectId id;
        OdDbObjectIdArray picked;
        if (selectionWord(t, picked)) {
          add(picked);
        } else if (k == "ALL") {
          add(hostSelectableEntities(db));
        } else if (k == "Last") {
          OdDbObjectIdArray all = hostSelectableEntities(db);
          add(all.empty() ? all : OdDbObjectIdArray{all.back()});
        } else if (k == "Previous") {
          add(doc->selectionSetManager()->previous());
        } else if (k == "Window" || k == "Crossing") {
          if (!corner("Specify first corner: ", tokens, i, p) || !corner("Specify opposite corner: ", tokens, i, q)) {
            m_cl.println("Requires a point x,y.");
            break;
          }
          add(hostSelectWindow(db, p, q, k == "Crossing"));
        } else if (hostParsePoint(t, p)) {
          id = hostPickNearest(db, p);
          add(id.isNull() ? OdDbObjectIdArray{} : OdDbObjectIdArray{id});
        } else if (isHandle(t)) {
          id = hostEntityByHandle(db, t);
          add(id.isNull() ? OdDbObjectIdArray{} : OdDbObjectIdArray{id});
        } else {
          m_cl.println("*Invalid selection*");
          m_cl.println("Expects a point, a handle or Window/Last/Crossing/ALL/Previous");
          break;
        }
      }
    }
  } catch (const HostCancel&) {
    ids.clear();
    return kHostAbort;
  }
  if (ids.empty()) return kHostNone;
  doc->selectionSetManager()->setPrevious(ids);
  return kHostOk;
}

bool HostConsoleContext::askYesNo(const OdString& question) { return hostAskYesNo(question.str()); }
