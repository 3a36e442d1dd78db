#include "host/HostSession.h"

#include "host/HostCommands.h"
#include "host/HostDimRegen.h"
#include "host/HostEditorReactor.h"
#include "host/HostServices.h"
#include "host/HostSvg.h"
#include "host/HostSysVarCommand.h"
#include "host/HostSysVars.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

// Versions a drawing can be saved as; new drawings can also be R13 or R14.
static const std::vector<std::string> kVersionKeywords = {"R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"};

HostSession::HostSession(HostCommandLine& cl) : m_cl(cl), m_context(cl, m_docManager) {
  hostSetDocManager(&m_docManager);
  gpVxContext = &m_context;
  hostSetYesNoHandler([this](const std::wstring& question) { return askYesNo(question); });
  addCommand("OPEN", [this] { cmdOpen(); }, false);
  addCommand("NEW", [this] { cmdNew(); }, false);
  addCommand("SAVE", [this] { cmdSave(); }, false);
  addCommand("SAVEAS", [this] { cmdSaveAs(); }, false);
  addCommand("CLOSE", [this] { cmdClose(); }, false);
  addCommand("QUIT", [this] { m_quit = true; }, false);
  addCommand("EXIT", [this] { m_quit = true; }, false);
  addCommand("UNDO", [this] { cmdUndo(); }, false);
  addCommand("REDO", [this] { cmdRedo(); }, false);
  addCommand("HELP", [this] { cmdHelp(); }, false);
  addCommand("?", [this] { cmdHelp(); }, false);
  addCommand("RENDER", [this] { hostRenderCommand(m_cl, activeDocument()); }, false);
  addCommand("SETVAR", [this] { hostSetVarCommand(m_cl); });
  addCommand("DIMREGEN", [] { hostDimRegenCommand(); });
}

bool HostSession::askYesNo(const std::wstring& question) {
  std::string text = odstr::narrow(question);
  size_t last = text.find_last_of('\n');
  if (last != std::string::npos) m_cl.println(text.substr(0, last));
  return m_cl.getYesNo(last == std::string::npos ? text : text.substr(last + 1), false);
}

void HostSession::cmdHelp() {
  std::vector<std::string> words = hostCommandWords();
  for (const auto& [name, entry] : m_commands)
    if (name != "?") words.push_back(name);
  std::sort(words.begin(), words.end());
  std::string list;
  for (const auto& w : words) list += (list.empty() ? "" : " ") + w;
  m_cl.println("Commands: " + list);
}

void HostSession::addCommand(const std::string& name, Command handler, bool undoable) {
  std::string n = name;
  for (auto& c : n) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  m_commands[n] = CommandEntry{std::move(handler), undoable};
}

void HostSession::activeChanged() {
  HostApDocument* doc = activeDocument();
  hostSetActiveDatabase(doc ? doc->database() : nullptr);
}

HostSession::~HostSession() {
  closeAllDocuments();
  if (gpVxContext == &m_context) gpVxContext = nullptr;
  if (hostDocManager() == &m_docManager) hostSetDocManager(nullptr);
  hostSetYesNoHandler(nullptr);
}

void HostSession::closeAllDocuments() {
  m_docManager.closeAll();
  activeChanged();
}

HostApDocument* HostSession::adopt(OdDbDatabasePtr db, const std::string& path) {
  for (const auto& w : db->loadWarnings()) m_cl.println("Warning: " + w);
  HostApDocument* doc = m_docManager.addDocument(std::make_unique<HostApDocument>(db, path));
  activeChanged();
  m_cl.println("Opened " + path + " (" + std::string(dxfver::keyword(db->version())) +
               (db->format() == DxfFormat::Binary ? ", binary" : "") + ").");
  return doc;
}

HostApDocument* HostSession::newDrawing(DxfVersion version, bool metric) {
  HostApDocument* doc =
      m_docManager.addDocument(std::make_unique<HostApDocument>(OdDbDatabase::createNew(version, metric)));
  activeChanged();
  m_cl.println(std::string("New ") + (metric ? "Metric" : "Imperial") + " drawing (" +
               std::string(dxfver::keyword(version)) + ").");
  return doc;
}

bool HostSession::open(const std::string& path) {
  try {
    adopt(OdDbDatabase::readDxfFile(path), path);
    return true;
  } catch (const OdError& e) {
    m_cl.println(std::string("Cannot open drawing: ") + e.what());
    m_fileError = true;
    return false;
  }
}

bool HostSession::runCommand(const std::string& name) {
  std::string n = name;
  for (auto& c : n) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  if (!n.empty() && n[0] == '_') n.erase(0, 1);
  // CMDACTIVE, and the editor reactors told of the start and the end, however
  // the command ends.
  struct Active {
    OdString name;
    explicit Active(const std::string& n) : name(OdString::fromUtf8(n)) {
      hostEditorCommandWillStart(name);
      hostCommandStarted();
    }
    ~Active() {
      hostCommandEnded();
      hostEditorCommandEnded(name);
    }
  };
  auto it = m_commands.find(n);
  if (it != m_commands.end()) {
    Active active(n);
    if (it->second.undoable) runUndoable(n, it->second.handler);
    else it->second.handler();
    return true;
  }
  const HostCommand* command = hostFindCommand(n);
  if (!command) {
    // A variable's name asks for its value, as SETVAR does; a command of the same name wins.
    if (!hostIsCommandLineVar(n)) return false;
    Active active(n);
    runUndoable(n, [this, &n] { hostVarPrompt(m_cl, n); });
    return true;
  }
  if (command->isRegistered() && !m_dialogs) {
    m_cl.println("The " + command->word + " command opens a dialog, which needs the window host.");
    return true;
  }
  // A copy, so that the handler lives through the command whatever the table does meanwhile.
  const Command handler = command->handler;
  Active active(n);
  runUndoable(n, handler);
  return true;
}

void HostSession::runUndoable(const std::string& name, const Command& handler) {
  HostApDocument* doc = activeDocument();
  if (!doc) {
    handler();
    return;
  }
  // The group closes however the command ends, so a failed command is one step too.
  struct Group {
    OdDbDatabasePtr db;
    ~Group() { db->endUndoGroup(); }
  } group{doc->database()};
  group.db->beginUndoGroup(OdString::fromUtf8(name));
  handler();
}

void HostSession::run() {
  while (!m_quit) {
    std::string line;
    try {
      line = m_cl.getLine("Command: ");
    } catch (const HostCancel& c) {
      if (c.endOfInput) return;  // as QUIT: nothing is saved unasked
      continue;
    }
    if (line.empty()) continue;
    try {
      if (!runCommand(line)) m_cl.println("Unknown command \"" + line + "\".");
    } catch (const HostCancel& c) {
      if (c.endOfInput) return;
    } catch (const OdError& e) {
      m_cl.println(std::string("Error: ") + e.what());
    }
  }
}

void HostSession::cmdOpen() {
  std::string path = m_cl.getLine("Enter name of drawing to open: ");
  if (!path.empty()) open(path);
}

void HostSession::cmdNew() {
  DxfVersion version = DxfVersion::R2018;
  std::vector<std::string> keywords = {"Imperial", "Metric", "R12", "R13", "R14"};
  keywords.insert(keywords.end(), kVersionKeywords.begin() + 1, kVersionKeywords.end());
  for (;;) {
    std::string k = m_cl.getKeywordOrText("Units of the new drawing (" + std::string(dxfver::keyword(version)) + ")",
                                         keywords, "Imperial", false);
    if (auto v = dxfver::fromKeyword(k)) {
      version = *v;
      continue;
    }
    newDrawing(version, k == "Metric");
    return;
  }
}

bool HostSession::save(HostApDocument& doc, const std::string& path, const DxfSaveOptions& options) {
  try {
    std::vector<std::string> leftOut;
    doc.database()->writeDxfFile(path, options, &leftOut);
    if (!leftOut.empty()) {
      m_cl.println("R12 cannot hold these; they were left out:");
      for (const auto& s : leftOut) m_cl.println("  " + s);
    }
    m_cl.println("Saved " + path + ".");
    return true;
  } catch (const OdError& e) {
    m_cl.println(std::string("Cannot save drawing: ") + e.what());
    m_fileError = true;
    return false;
  }
}

void HostSession::cmdSave() {
  HostApDocument* doc = activeDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return;
  }
  if (doc->path.empty()) {
    cmdSaveAs();
    return;
  }
  save(*doc, doc->path, doc->saveAs);
}

void HostSession::cmdSaveAs() {
  HostApDocument* doc = activeDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return;
  }
  DxfSaveOptions options = doc->saveAs;
  if (!options.version) options.version = doc->database()->version();
  if (!options.format) options.format = doc->database()->format();
  std::vector<std::string> keywords = kVersionKeywords;
  keywords.push_back("Ascii");
  keywords.push_back("Binary");
  for (;;) {
    bool isKeyword = false;
    std::string what = std::string(dxfver::keyword(*options.version)) +
                       (*options.format == DxfFormat::Binary ? " binary" : "");
    std::string answer = m_cl.getKeywordOrText("Save drawing as (" + what + ")", keywords, doc->path, true, &isKeyword);
    if (isKeyword && answer != doc->path) {
      if (answer == "Ascii") options.format = DxfFormat::Ascii;
      else if (answer == "Binary") options.format = DxfFormat::Binary;
      else options.version = dxfver::fromKeyword(answer);
      continue;
    }
    if (answer.empty()) return;
    if (save(*doc, answer, options)) {
      doc->path = answer;
      doc->saveAs = options;
    }
    return;
  }
}

void HostSession::activate(HostApDocument* doc) {
  if (doc == activeDocument()) return;
  m_docManager.activateDocument(doc);
  activeChanged();
}

void HostSession::cmdClose() {
  HostApDocument* closing = activeDocument();
  if (!closing) {
    m_cl.println("No drawing is open.");
    return;
  }
  close(closing);
}

void HostSession::close(HostApDocument* closing) {
  const std::string title = closing->title();
  m_docManager.closeDocument(closing);
  activeChanged();
  m_cl.println("Closed " + title + ".");
  if (HostApDocument* doc = activeDocument()) m_cl.println("Active drawing: " + doc->title() + ".");
}

void HostSession::cmdUndo() {
  HostApDocument* doc = activeDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return;
  }
  if (!doc->database()->hasUndo()) {
    m_cl.println("Nothing to undo.");
    return;
  }
  long count = 1;
  for (;;) {
    std::string answer = m_cl.getLine("Enter the number of operations to undo <1>: ");
    if (answer.empty()) break;
    char* end = nullptr;
    count = std::strtol(answer.c_str(), &end, 10);
    if (*end == '\0' && count > 0) break;
    m_cl.println("Requires a positive integer.");
  }
  undoSteps(count);
}

bool HostSession::undoSteps(long count) {
  HostApDocument* doc = activeDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return false;
  }
  OdDbDatabase& db = *doc->database();
  if (!db.hasUndo()) {
    m_cl.println("Nothing to undo.");
    return false;
  }
  for (long i = 0; i < count; ++i) {
    if (!db.hasUndo()) {
      m_cl.println("Everything has been undone.");
      return true;
    }
    m_cl.println("UNDO: " + db.undoGroupName().toUtf8());
    db.undo();
  }
  return true;
}

void HostSession::cmdRedo() {
  HostApDocument* doc = activeDocument();
  if (!doc) {
    m_cl.println("No drawing is open.");
    return;
  }
  OdDbDatabase& db = *doc->database();
  if (!db.hasRedo()) {
    m_cl.println("Nothing to redo.");
    return;
  }
  m_cl.println("REDO: " + db.redoGroupName().toUtf8());
  db.redo();
}
