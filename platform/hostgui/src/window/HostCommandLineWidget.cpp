#include "hostgui/HostCommandLineWidget.h"

#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QVBoxLayout>


namespace {
const QString kCommandPrompt = QStringLiteral("Command: ");
}

HostCommandLineWidget::HostCommandLineWidget(QWidget* parent) : QWidget(parent) {
  m_history = new QPlainTextEdit(this);
  m_history->setReadOnly(true);
  m_history->setMaximumBlockCount(5000);
  m_history->setObjectName("commandHistory");
  m_history->setAccessibleName(tr("Command history"));
  m_history->setFocusPolicy(Qt::ClickFocus);
  m_history->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  QFont mono = font();
  mono.setStyleHint(QFont::TypeWriter);
  mono.setFamily("DejaVu Sans Mono");
  m_history->setFont(mono);

  m_promptLabel = new QLabel(this);
  m_promptLabel->setObjectName("commandPrompt");
  m_promptLabel->setTextFormat(Qt::RichText);
  m_promptLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  m_promptLabel->setFont(mono);
  m_promptLabel->setWordWrap(true);
  // A keyword of the prompt clicked (or chosen with Tab and Enter) is entered as typed.
  connect(m_promptLabel, &QLabel::linkActivated, this, [this](const QString& link) {
    if (link.startsWith("kw:")) submit(link.mid(3));
  });

  m_input = new QLineEdit(this);
  m_input->setObjectName("commandInput");
  m_input->setFont(mono);
  m_input->setAccessibleName(tr("Command line"));
  m_input->installEventFilter(this);
  m_promptLabel->setBuddy(m_input);
  connect(m_input, &QLineEdit::returnPressed, this, [this] { submit(m_input->text()); });

  auto* row = new QHBoxLayout;
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_promptLabel, 0);
  row->addWidget(m_input, 1);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->setSpacing(2);
  layout->addWidget(m_history, 1);
  layout->addLayout(row);
  setFocusProxy(m_input);
}

HostCommandLineWidget::~HostCommandLineWidget() { endInput(); }

QString HostCommandLineWidget::historyText() const { return m_history->toPlainText(); }

void HostCommandLineWidget::write(const std::string& text) {
  if (m_idle) {
    // Lines printed while nothing runs (a drawing opened from the menu) go above
    // the waiting "Command: ".
    m_idle = false;
    m_pending.clear();
    write(text);
    showCommandPrompt();
    return;
  }
  QString all = m_pending + QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  const qsizetype cut = all.lastIndexOf('\n');
  if (cut >= 0) {
    // appendPlainText adds a line end of its own.
    m_history->appendPlainText(all.left(cut));
    m_history->verticalScrollBar()->setValue(m_history->verticalScrollBar()->maximum());
    all = all.mid(cut + 1);
  }
  m_pending = all;
  showPrompt();
}

void HostCommandLineWidget::showPrompt() {
  // Keywords in "[A/B/C]" become links; the rest shows as printed.
  QString html;
  static const QRegularExpression bracket(R"(\[([^\[\]]+)\])");
  QRegularExpressionMatch m = bracket.match(m_pending);
  if (m.hasMatch() && m.captured(1).contains('/')) {
    html = m_pending.left(m.capturedStart()).toHtmlEscaped() + "[";
    const QStringList words = m.captured(1).split('/');
    for (int i = 0; i < words.size(); ++i) {
      if (i) html += "/";
      html += QString("<a href=\"kw:%1\">%2</a>").arg(words[i].toHtmlEscaped(), words[i].toHtmlEscaped());
    }
    html += "]" + m_pending.mid(m.capturedEnd()).toHtmlEscaped();
  } else {
    html = m_pending.toHtmlEscaped();
  }
  m_promptLabel->setText(html.replace(' ', "&nbsp;"));
  m_promptLabel->setAccessibleName(m_pending.trimmed());
  m_input->setAccessibleDescription(m_pending.trimmed());
}

void HostCommandLineWidget::showCommandPrompt() {
  if (m_idle) return;
  write((m_pending.isEmpty() ? "" : "\n") + kCommandPrompt.toStdString());
  m_idle = true;
}

void HostCommandLineWidget::submit(const QString& typed) {
  QString line = typed;
  if (line == "\x1b" && !m_loop) {
    cancel();
    return;
  }
  m_input->clear();
  m_walk = -1;
  if (!line.isEmpty() && line != "\x1b" && (m_entered.isEmpty() || m_entered.back() != line)) m_entered.push_back(line);
  if (m_loop) {
    m_answer = line;
    m_answered = true;
    m_loop->quit();
    return;
  }
  // At "Command: ": Enter on an empty line repeats the last command.
  if (line.trimmed().isEmpty()) line = m_lastCommand;
  m_idle = false;
  write(line.toStdString() + "\n");
  if (line.trimmed().isEmpty()) {
    showCommandPrompt();
    return;
  }
  m_lastCommand = line.trimmed();
  emit commandEntered(m_lastCommand);
}

void HostCommandLineWidget::submitUnshown(const QString& line) {
  if (!m_loop) return;
  m_unshown = true;
  m_answer = line;
  m_answered = true;
  m_loop->quit();
}

void HostCommandLineWidget::cancel() {
  if (m_loop) {
    submit(QStringLiteral("\x1b"));
    return;
  }
  m_input->clear();
  if (m_idle) {
    // As a cancelled prompt shows it: the line ends, then the word.
    m_idle = false;
    write("\n*Cancel*\n");
    showCommandPrompt();
  }
}

void HostCommandLineWidget::endInput() {
  m_ended = true;
  if (m_loop) m_loop->quit();
}

bool HostCommandLineWidget::readLine(std::string& line) {
  if (m_ended) return false;
  QEventLoop loop;
  m_loop = &loop;
  m_answered = false;
  loop.exec();
  m_loop = nullptr;
  if (!m_answered) return false;
  m_answered = false;
  // The line shows after its prompt as typed; Escape shows as the cancel does.
  if (m_unshown) m_unshown = false;
  else if (m_answer != "\x1b") write(m_answer.toStdString() + "\n");
  else write("\n");
  line = m_answer.toStdString();
  return true;
}

void HostCommandLineWidget::walkHistory(int step) {
  if (m_entered.isEmpty()) return;
  if (m_walk < 0) m_walk = static_cast<int>(m_entered.size());
  m_walk = std::clamp(m_walk + step, 0, static_cast<int>(m_entered.size()));
  m_input->setText(m_walk < m_entered.size() ? m_entered[m_walk] : QString());
}

bool HostCommandLineWidget::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_input && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
      case Qt::Key_Escape: cancel(); return true;
      case Qt::Key_Up: walkHistory(-1); return true;
      case Qt::Key_Down: walkHistory(+1); return true;
      default: break;
    }
  }
  return QWidget::eventFilter(watched, event);
}
