// The host's command line: prompts that read one line at a time, as CAD command
// lines do, from a terminal, a script or standard input.
#pragma once

#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

// Thrown when the user cancels (a line holding only Escape) or the input ends.
struct HostCancel {
  bool endOfInput = false;
};

class HostCommandLine {
public:
  HostCommandLine(std::istream& in, std::ostream& out, bool echo);
  virtual ~HostCommandLine() = default;

  void print(const std::string& text) { write(text); }  // as is
  void println(const std::string& text) { print(text + "\n"); }

  // A line of input after `prompt`; throws HostCancel.
  std::string getLine(const std::string& prompt);
  // A keyword of `keywords` (written as CAD users know them, e.g. "Imperial",
  // "R2018"); the capital letters are the short form, matched case-insensitively.
  // An empty line gives `dflt` (when set). Any other text is returned as typed
  // when `allowArbitrary`, otherwise the prompt repeats. The prompt shows the list:
  // "prompt [A/B] <dflt>: ".
  std::string getKeywordOrText(const std::string& prompt, const std::vector<std::string>& keywords,
                               const std::string& dflt, bool allowArbitrary, bool* isKeyword = nullptr);
  // Yes/No question; Enter answers `dflt`.
  bool getYesNo(const std::string& question, bool dflt);

  // The keyword that `input` names, if any.
  static std::optional<std::string> matchKeyword(const std::string& input, const std::vector<std::string>& keywords);

protected:
  // A command line without a stream of its own (the window's) overrides both.
  HostCommandLine();
  // Shows `text` (UTF-8) as it is.
  virtual void write(const std::string& text);
  // The next line the user enters after the prompt just written, without its line
  // end; false at the end of input. A line holding only Escape cancels.
  virtual bool readLine(std::string& line);
  // Whether lines read are shown after the prompt as if typed.
  bool echo() const { return m_echo; }

private:
  std::istream& m_in;
  std::ostream& m_out;
  bool m_echo;  // scripts: show what was read after the prompt, as if typed
};
