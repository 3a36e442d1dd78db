#include "HostTextStyleDialog.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <numbers>

#include "host/HostCommands.h"
#include "host/HostServices.h"
#include "hostgui/HostGuiServices.h"

namespace {
using Field = HostTextStyleValues::Field;
QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }
}  // namespace

HostTextStyleDialog::HostTextStyleDialog(OdDbDatabase* db, const QString& selected, QWidget* parent)
    : QDialog(parent), m_styles(db), m_canHoldTypeface(db->version() >= DxfVersion::R2000) {
  setWindowTitle(tr("Text Style"));
  askName = [this](const QString& title, const QString& label, const QString& suggestion) {
    bool ok = false;
    const QString name = QInputDialog::getText(this, title, label, QLineEdit::Normal, suggestion, &ok);
    return ok ? name : QString();
  };
  report = [this](const QString& text) { hostMessageBox(this, text); };
  confirm = [this](const QString& text) { return hostYesNoBox(this, text); };

  auto* stylesLabel = new QLabel(tr("&Styles:"), this);
  m_list = new QListWidget(this);
  stylesLabel->setBuddy(m_list);

  auto* fontBox = new QGroupBox(tr("Font"), this);
  auto* fontForm = new QFormLayout(fontBox);
  m_font = new QComboBox(fontBox);
  m_font->addItems(QFontDatabase::families());
  m_font->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  fontForm->addRow(tr("&Font name:"), m_font);

  auto* sizeBox = new QGroupBox(tr("Size and effects"), this);
  auto* sizeForm = new QFormLayout(sizeBox);
  m_height = new QLineEdit(sizeBox);
  m_height->setToolTip(tr("0 lets each text have its own height."));
  m_width = new QLineEdit(sizeBox);
  m_oblique = new QLineEdit(sizeBox);
  m_oblique->setToolTip(tr("Slant of the characters in degrees, from -85 to 85."));
  sizeForm->addRow(tr("&Height:"), m_height);
  sizeForm->addRow(tr("&Width factor:"), m_width);
  sizeForm->addRow(tr("&Oblique angle:"), m_oblique);

  m_sample = new QLabel(QStringLiteral("AaBbCc 123"), this);
  m_sample->setFrameShape(QFrame::StyledPanel);
  m_sample->setAlignment(Qt::AlignCenter);
  m_sample->setMinimumHeight(fontMetrics().height() * 3);
  m_sample->setAccessibleName(tr("Sample of the font"));

  m_new = new QPushButton(tr("&New..."), this);
  m_rename = new QPushButton(tr("&Rename..."), this);
  m_delete = new QPushButton(tr("&Delete"), this);
  m_apply = new QPushButton(tr("&Apply"), this);
  m_close = new QPushButton(tr("&Close"), this);
  m_close->setDefault(true);
  for (QPushButton* b : {m_new, m_rename, m_delete, m_apply}) b->setAutoDefault(false);

  auto* left = new QVBoxLayout;
  left->addWidget(stylesLabel);
  left->addWidget(m_list, 1);
  auto* middle = new QVBoxLayout;
  middle->addWidget(fontBox);
  middle->addWidget(sizeBox);
  middle->addWidget(m_sample);
  middle->addStretch();
  auto* right = new QVBoxLayout;
  for (QPushButton* b : {m_new, m_rename, m_delete}) right->addWidget(b);
  right->addStretch();
  right->addWidget(m_apply);
  right->addWidget(m_close);
  auto* layout = new QHBoxLayout(this);
  layout->addLayout(left, 1);
  layout->addLayout(middle, 2);
  layout->addLayout(right);

  connect(m_new, &QPushButton::clicked, this, &HostTextStyleDialog::newStyle);
  connect(m_rename, &QPushButton::clicked, this, &HostTextStyleDialog::renameStyle);
  connect(m_delete, &QPushButton::clicked, this, &HostTextStyleDialog::deleteStyle);
  connect(m_apply, &QPushButton::clicked, this, &HostTextStyleDialog::applyChanges);
  connect(m_close, &QPushButton::clicked, this, &QDialog::accept);
  connect(m_list, &QListWidget::currentTextChanged, this, [this](const QString& name) {
    if (name.isEmpty() || name == m_shown) return;
    // Edits of the style left behind are kept, as Apply would keep them; a bad
    // value keeps that style selected so it can be put right.
    if (!applyChanges()) {
      QSignalBlocker block(m_list);
      const auto items = m_list->findItems(m_shown, Qt::MatchExactly);
      if (!items.isEmpty()) m_list->setCurrentItem(items.front());
      return;
    }
    m_shown = name;
    showStyle();
  });
  for (QLineEdit* e : {m_height, m_width, m_oblique}) connect(e, &QLineEdit::textChanged, this, &HostTextStyleDialog::updateButtons);
  connect(m_font, &QComboBox::currentTextChanged, this, [this] {
    QFont f(m_font->currentText());
    f.setPointSizeF(font().pointSizeF() * 1.5);
    m_sample->setFont(f);
    updateButtons();
  });

  QString first = selected;
  if (first.isEmpty()) first = qs(db->headerString("$TEXTSTYLE", L"Standard"));
  fillStyles(first);
}

QString HostTextStyleDialog::currentStyle() const { return m_shown; }

void HostTextStyleDialog::fillStyles(const QString& select) {
  QSignalBlocker block(m_list);
  m_list->clear();
  m_list->addItems(m_styles.names());
  QList<QListWidgetItem*> items = m_list->findItems(select, Qt::MatchFixedString);
  if (items.isEmpty() && m_list->count() > 0) items << m_list->item(0);
  if (!items.isEmpty()) m_list->setCurrentItem(items.front());
  m_shown = items.isEmpty() ? QString() : items.front()->text();
  showStyle();
}

void HostTextStyleDialog::showStyle() {
  const OdDbTextStyleData d = m_styles.data(m_shown);
  const QString font = HostFontFiles::displayName(d);
  {
    QSignalBlocker block(m_font);
    if (m_font->findText(font, Qt::MatchFixedString) < 0) m_font->addItem(font);  // shape fonts, fonts not installed here
    m_font->setCurrentIndex(m_font->findText(font, Qt::MatchFixedString));
  }
  QFont f(m_font->currentText());
  f.setPointSizeF(font.isEmpty() ? 12 : QWidget::font().pointSizeF() * 1.5);
  m_sample->setFont(f);
  m_height->setText(HostTextStyleValues::format(Field::Height, d.textSize));
  m_width->setText(HostTextStyleValues::format(Field::WidthFactor, d.widthFactor));
  m_oblique->setText(HostTextStyleValues::format(Field::ObliqueDegrees, d.oblique * 180.0 / std::numbers::pi));
  updateButtons();
}

bool HostTextStyleDialog::isDirty() const {
  if (m_shown.isEmpty() || m_styles.idOf(m_shown).isNull()) return false;
  const OdDbTextStyleData d = m_styles.data(m_shown);
  return m_font->currentText() != HostFontFiles::displayName(d) ||
         m_height->text() != HostTextStyleValues::format(Field::Height, d.textSize) ||
         m_width->text() != HostTextStyleValues::format(Field::WidthFactor, d.widthFactor) ||
         m_oblique->text() != HostTextStyleValues::format(Field::ObliqueDegrees, d.oblique * 180.0 / std::numbers::pi);
}

void HostTextStyleDialog::updateButtons() {
  const bool standard = m_shown.compare(QLatin1String("Standard"), Qt::CaseInsensitive) == 0;
  m_apply->setEnabled(isDirty());
  m_rename->setEnabled(!m_shown.isEmpty() && !standard);
  m_delete->setEnabled(!m_shown.isEmpty() && !standard);
}

bool HostTextStyleDialog::applyChanges() {
  if (!isDirty()) return true;
  OdDbTextStyleData d = m_styles.data(m_shown);
  const OdDbTextStyleData before = d;
  struct Edit {
    QLineEdit* edit;
    Field field;
    double* target;
  };
  double oblique = 0;
  oblique = d.oblique * 180.0 / std::numbers::pi;
  const Edit edits[] = {{m_height, Field::Height, &d.textSize},
                        {m_width, Field::WidthFactor, &d.widthFactor},
                        {m_oblique, Field::ObliqueDegrees, &oblique}};
  for (const Edit& e : edits) {
    const double shown = *e.target;
    if (e.edit->text() == HostTextStyleValues::format(e.field, shown)) continue;  // untouched: keep the exact value
    const auto r = HostTextStyleValues::parse(e.field, e.edit->text());
    if (!r.value) {
      report(r.error);
      // The old value comes back, so the field never shows what the style does not hold.
      e.edit->setText(HostTextStyleValues::format(e.field, shown));
      e.edit->setFocus();
      updateButtons();
      return false;
    }
    *e.target = *r.value;
  }
  if (oblique != before.oblique * 180.0 / std::numbers::pi) d.oblique = oblique * std::numbers::pi / 180.0;
  HostFontFiles::setFont(d, m_font->currentText(), m_canHoldTypeface);
  if (const QString error = m_styles.apply(m_shown, d); !error.isEmpty()) {
    report(error);
    return false;
  }
  showStyle();
  return true;
}

void HostTextStyleDialog::newStyle() {
  if (!applyChanges()) return;
  QString suggestion;
  for (int n = 1; suggestion.isEmpty() || !m_styles.idOf(suggestion).isNull(); ++n) suggestion = tr("Style%1").arg(n);
  const QString name = askName(tr("New Text Style"), tr("Style name:"), suggestion).trimmed();
  if (name.isEmpty()) return;
  if (const QString error = m_styles.create(name, m_shown); !error.isEmpty()) {
    report(error);
    return;
  }
  fillStyles(name);
}

void HostTextStyleDialog::renameStyle() {
  if (m_shown.isEmpty() || !applyChanges()) return;
  const QString name = askName(tr("Rename Text Style"), tr("New name:"), m_shown).trimmed();
  if (name.isEmpty() || name == m_shown) return;
  if (const QString error = m_styles.rename(m_shown, name); !error.isEmpty()) {
    report(error);
    return;
  }
  fillStyles(name);
}

void HostTextStyleDialog::deleteStyle() {
  if (m_shown.isEmpty()) return;
  if (const QString why = m_styles.whyNotDelete(m_shown); !why.isEmpty()) {
    report(why);
    return;
  }
  if (!confirm(tr("Delete the text style \"%1\"?").arg(m_shown))) return;
  if (const QString error = m_styles.remove(m_shown); !error.isEmpty()) {
    report(error);
    return;
  }
  fillStyles(QStringLiteral("Standard"));
}

void HostTextStyleDialog::done(int result) {
  // Closing keeps what was typed, as Apply would; a bad value keeps the dialog open.
  if (!applyChanges()) return;
  QDialog::done(result);
}

void hostTextStyleDialog(QWidget* parent, OdDbDatabase* db, OdString* selected) {
  if (!db) return;
  HostTextStyleDialog dialog(db, selected ? QString::fromStdWString(selected->str()) : QString(), parent);
  dialog.exec();
  if (selected) *selected = OdString(dialog.currentStyle().toStdWString());
}

void hostGuiRegisterCommands() {
  hostRegisterCommandWithParams(L"HOST", L"TextPropsCmd", 0, [](const HostCommandParams& params) {
    QWidget* parent = nullptr;
    if (auto it = params.find("HWND"); it != params.end())
      if (auto p = std::get_if<void*>(&it->second)) parent = static_cast<QWidget*>(*p);
    hostTextStyleDialog(parent, hostActiveDatabase(), nullptr);
  });
}
