#include "host/HostCommandLine.h"

#include <algorithm>
#include <sstream>

#include "drawings/OdString.h"

HostCommandLine::HostCommandLine(std::istream& in, std::ostream& out, bool echo) : m_in(in), m_out(out), m_echo(echo) {}

namespace {
std::istringstream g_noInput;
std::ostringstream g_noOutput;
}  // namespace

HostCommandLine::HostCommandLine() : m_in(g_noInput), m_out(g_noOutput), m_echo(false) {}

void HostCommandLine::write(const std::string& text) {
  m_out << text;
  m_out.flush();
}

bool HostCommandLine::readLine(std::string& line) {
  if (!std::getline(m_in, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

std::string HostCommandLine::getLine(const std::string& prompt) {
  print(prompt);
  std::string line;
  if (!readLine(line)) {
    print("\n");
    throw HostCancel{true};
  }
  if (m_echo) print(line + "\n");
  if (line == "\x1b") {
    println("*Cancel*");
    throw HostCancel{false};
  }
  // Leading and trailing blanks are never meant.
  size_t b = line.find_first_not_of(" \t"), e = line.find_last_not_of(" \t");
  return b == std::string::npos ? std::string() : line.substr(b, e - b + 1);
}

// A keyword's short form is its leading capitals: letters of any script that
// have a lower-case form, and digits.
static bool isCapital(wchar_t c) {
  if (c >= L'0' && c <= L'9') return true;
  if (odstr::foldCase(c) != c) return false;  // a lower-case letter
  return OdString(std::wstring(1, c)).makeLower().str()[0] != c;
}

std::optional<std::string> HostCommandLine::matchKeyword(const std::string& input, const std::vector<std::string>& keywords) {
  if (input.empty()) return std::nullopt;
  std::wstring in = odstr::folded(odstr::widen(input));
  if (in.size() > 1 && in[0] == L'_') in.erase(0, 1);  // the language-independent form
  for (const auto& k : keywords)
    if (odstr::folded(odstr::widen(k)) == in) return k;
  // The short form: the keyword's leading capital letters (and digits), or any
  // longer prefix of the keyword.
  for (const auto& k : keywords) {
    const std::wstring w = odstr::widen(k);
    size_t caps = 0;
    while (caps < w.size() && isCapital(w[caps])) ++caps;
    if (caps == 0) caps = w.size();
    if (in.size() >= caps && in.size() <= w.size() && odstr::folded(w).compare(0, in.size(), in) == 0) return k;
  }
  return std::nullopt;
}

std::string HostCommandLine::getKeywordOrText(const std::string& prompt, const std::vector<std::string>& keywords,
                                              const std::string& dflt, bool allowArbitrary, bool* isKeyword) {
  std::string full = prompt;
  if (!keywords.empty()) {
    full += " [";
    for (size_t i = 0; i < keywords.size(); ++i) full += (i ? "/" : "") + keywords[i];
    full += "]";
  }
  if (!dflt.empty()) full += " <" + dflt + ">";
  full += ": ";
  for (;;) {
    std::string line = getLine(full);
    if (line.empty()) {
      if (isKeyword) *isKeyword = std::find(keywords.begin(), keywords.end(), dflt) != keywords.end();
      if (!dflt.empty()) return dflt;
      if (allowArbitrary) return line;
      continue;
    }
    if (auto k = matchKeyword(line, keywords)) {
      if (isKeyword) *isKeyword = true;
      return *k;
    }
    if (allowArbitrary) {
      if (isKeyword) *isKeyword = false;
      return line;
    }
    println("Invalid option keyword.");
  }
}

bool HostCommandLine::getYesNo(const std::string& question, bool dflt) {
  return getKeywordOrText(question, {"Yes", "No"}, dflt ? "Yes" : "No", false) == "Yes";
}
