// The window's command line: the history of what was printed and typed above, the
// prompt and the input below. It is a HostCommandLine, so every console command
// runs here with the same engine and texts: a command that asks for input waits
// in a nested event loop while the window goes on painting and taking clicks.
#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>

#include "host/HostCommandLine.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QEventLoop;

class HostCommandLineWidget : public QWidget, public HostCommandLine {
  Q_OBJECT

public:
  explicit HostCommandLineWidget(QWidget* parent = nullptr);
  ~HostCommandLineWidget() override;

  // True while a command waits for a line.
  bool waiting() const { return m_loop != nullptr; }
  // True while "Command: " waits for the next command.
  bool idle() const { return m_idle; }
  // Enters `line` as if typed and Enter pressed: the answer of a waiting prompt,
  // or a command at "Command: ".
  void submit(const QString& line);
  // Answers a waiting prompt with `line` without showing it after the prompt:
  // what the view picked, which the command's own reply describes.
  void submitUnshown(const QString& line);
  // Escape: cancels a waiting prompt (the command unwinds), or clears the input.
  void cancel();
  // Ends every waiting prompt as the end of input does (the window closes).
  void endInput();
  // Shows "Command: " for the next command.
  void showCommandPrompt();

  // The text shown before the input: the last line printed that has no line end yet.
  QString prompt() const { return m_pending; }
  QString historyText() const;
  QLineEdit* input() const { return m_input; }
  // Lines entered, oldest first (what Up and Down walk).
  const QStringList& entered() const { return m_entered; }

signals:
  // A line entered at "Command: " (Enter on an empty line repeats the last command).
  void commandEntered(const QString& command);

protected:
  void write(const std::string& text) override;
  bool readLine(std::string& line) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void showPrompt();
  void walkHistory(int step);

  QPlainTextEdit* m_history;
  QLabel* m_promptLabel;
  QLineEdit* m_input;
  QString m_pending;       // printed text after the last line end: the prompt
  QStringList m_entered;   // lines entered, for Up and Down
  int m_walk = -1;         // where Up/Down stand in m_entered; -1 = not walking
  QString m_lastCommand;   // what Enter repeats at "Command: "
  QEventLoop* m_loop = nullptr;
  QString m_answer;
  bool m_answered = false, m_ended = false;
  bool m_idle = false;     // "Command: " waits for the next command
  bool m_unshown = false;  // the answer is not shown after its prompt
};
