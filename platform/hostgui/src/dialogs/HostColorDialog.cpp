#include "HostColorDialog.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>
#include <QVBoxLayout>
#include <cmath>
#include <limits>

#include "HostColorText.h"
#include "hostgui/HostGuiServices.h"

namespace {
QColor qcolorOfAci(int aci) {
  const uint32_t rgb = OdCmColor::lookupRGB(aci);
  return QColor((rgb >> 16) & 0xFF, (rgb >> 8) & 0xFF, rgb & 0xFF);
}
}  // namespace

// ---- the grid

HostAciGrid::HostAciGrid(QWidget* parent) : QWidget(parent), m_cells(256) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAccessibleName(tr("Index colours"));
  setAccessibleDescription(tr("Use the arrow keys to move between colours and Enter to choose one."));
  layoutCells();
}

int HostAciGrid::cell() const { return std::max(12, fontMetrics().height()); }

void HostAciGrid::layoutCells() {
  const int c = cell(), gap = c / 2;
  // 24 hues (10, 20, ... 240) across; even shades on top, odd ones below.
  for (int hue = 0; hue < 24; ++hue)
    for (int shade = 0; shade < 10; ++shade) {
      const int aci = 10 * (hue + 1) + shade;
      const int row = shade % 2 == 0 ? shade / 2 : 5 + shade / 2;
      const int y = row * c + (row >= 5 ? gap / 2 : 0);
      m_cells[aci] = QRect(hue * c, y, c, c);
    }
  const int standardY = 10 * c + gap / 2 + gap;
  const int big = c + c / 2;
  for (int aci = 1; aci <= 9; ++aci) m_cells[aci] = QRect((aci - 1) * (big + 2), standardY, big, big);
  const int greyX = 24 * c - 6 * (big + 2) + 2;
  for (int aci = 250; aci <= 255; ++aci) m_cells[aci] = QRect(greyX + (aci - 250) * (big + 2), standardY, big, big);
  updateGeometry();
}

QSize HostAciGrid::sizeHint() const {
  QRect all;
  for (int aci = 1; aci <= 255; ++aci) all |= m_cells[aci];
  return all.size() + QSize(2, 2);
}

QRect HostAciGrid::cellRect(int aci) const { return aci >= 1 && aci <= 255 ? m_cells[aci] : QRect(); }

int HostAciGrid::indexAt(const QPoint& pos) const {
  for (int aci = 1; aci <= 255; ++aci)
    if (m_cells[aci].contains(pos)) return aci;
  return 0;
}

void HostAciGrid::setSelected(int aci) {
  if (aci < 0 || aci > 255 || aci == m_selected) return;
  m_selected = aci;
  update();
}

void HostAciGrid::paintEvent(QPaintEvent*) {
  QPainter p(this);
  for (int aci = 1; aci <= 255; ++aci) {
    p.fillRect(m_cells[aci].adjusted(1, 1, -1, -1), qcolorOfAci(aci));
    p.setPen(palette().color(QPalette::Mid));
    p.drawRect(m_cells[aci].adjusted(1, 1, -2, -2));
  }
  auto frame = [&](int aci, const QColor& outer, const QColor& inner) {
    if (aci <= 0) return;
    p.setPen(QPen(outer, 2));
    p.drawRect(m_cells[aci].adjusted(1, 1, -1, -1));
    p.setPen(QPen(inner, 1));
    p.drawRect(m_cells[aci].adjusted(2, 2, -3, -3));
  };
  frame(m_hover, palette().color(QPalette::Highlight), Qt::white);
  frame(m_selected, palette().color(QPalette::WindowText), Qt::white);
  if (hasFocus() && m_selected > 0) {
    p.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
    p.drawRect(m_cells[m_selected].adjusted(0, 0, -1, -1));
  }
}

void HostAciGrid::mouseMoveEvent(QMouseEvent* e) {
  const int aci = indexAt(e->position().toPoint());
  if (aci != m_hover) {
    m_hover = aci;
    update();
    emit hovered(aci);
  }
}

void HostAciGrid::leaveEvent(QEvent*) {
  m_hover = 0;
  update();
  emit hovered(0);
}

void HostAciGrid::mousePressEvent(QMouseEvent* e) {
  if (const int aci = indexAt(e->position().toPoint())) {
    setSelected(aci);
    emit picked(aci);
  }
}

void HostAciGrid::mouseDoubleClickEvent(QMouseEvent* e) {
  if (const int aci = indexAt(e->position().toPoint())) emit accepted(aci);
}

void HostAciGrid::keyPressEvent(QKeyEvent* e) {
  int dx = 0, dy = 0;
  switch (e->key()) {
    case Qt::Key_Left: dx = -1; break;
    case Qt::Key_Right: dx = 1; break;
    case Qt::Key_Up: dy = -1; break;
    case Qt::Key_Down: dy = 1; break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (m_selected > 0) {
        emit accepted(m_selected);
        return;
      }
      break;
    default: QWidget::keyPressEvent(e); return;
  }
  if (!dx && !dy) {
    QWidget::keyPressEvent(e);
    return;
  }
  if (m_selected == 0) {
    setSelected(10);
    emit picked(10);
    return;
  }
  // The nearest cell whose centre lies that way, preferring cells in line.
  const QPoint from = m_cells[m_selected].center();
  int best = 0;
  double bestCost = std::numeric_limits<double>::max();
  for (int aci = 1; aci <= 255; ++aci) {
    const QPoint d = m_cells[aci].center() - from;
    const int along = dx ? d.x() * dx : d.y() * dy;
    const int across = std::abs(dx ? d.y() : d.x());
    if (along <= 0) continue;
    const double cost = along + 3.0 * across;
    if (cost < bestCost) {
      bestCost = cost;
      best = aci;
    }
  }
  if (best) {
    setSelected(best);
    emit picked(best);
  }
}

void HostAciGrid::changeEvent(QEvent* e) {
  if (e->type() == QEvent::FontChange) layoutCells();
  QWidget::changeEvent(e);
}

// ---- swatch

HostColorSwatch::HostColorSwatch(QWidget* parent) : QWidget(parent) {}

void HostColorSwatch::setColor(const OdCmColor& c) {
  m_color = c;
  update();
}

QSize HostColorSwatch::sizeHint() const {
  const int h = fontMetrics().height() * 2;
  return QSize(h * 2, h);
}

void HostColorSwatch::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const QRect r = rect().adjusted(0, 0, -1, -1);
  if (m_color.isByLayer() || m_color.isByBlock()) {
    p.fillRect(r, palette().color(QPalette::Base));
    p.setPen(palette().color(QPalette::Text));
    p.drawText(r, Qt::AlignCenter, m_color.isByLayer() ? QStringLiteral("BYLAYER") : QStringLiteral("BYBLOCK"));
  } else {
    p.fillRect(r, QColor(m_color.red(), m_color.green(), m_color.blue()));
  }
  p.setPen(palette().color(QPalette::Mid));
  p.drawRect(r);
}

// ---- the dialog

HostColorDialog::HostColorDialog(const OdCmColor& color, bool allowLogical, QWidget* parent)
    : QDialog(parent), m_color(color), m_allowLogical(allowLogical) {
  setWindowTitle(tr("Select Color"));
  m_tabs = new QTabWidget(this);

  auto* indexPage = new QWidget;
  auto* indexLayout = new QVBoxLayout(indexPage);
  auto* gridLabel = new QLabel(tr("&Index colors:"), indexPage);
  m_grid = new HostAciGrid(indexPage);
  gridLabel->setBuddy(m_grid);
  indexLayout->addWidget(gridLabel);
  indexLayout->addWidget(m_grid, 0, Qt::AlignLeft);
  m_indexInfo = new QLabel(indexPage);
  m_rgbInfo = new QLabel(indexPage);
  auto* info = new QHBoxLayout;
  info->addWidget(m_indexInfo);
  info->addStretch();
  info->addWidget(m_rgbInfo);
  indexLayout->addLayout(info);
  if (allowLogical) {
    auto* logical = new QHBoxLayout;
    m_byLayer = new QPushButton(tr("By&Layer"), indexPage);
    m_byBlock = new QPushButton(tr("By&Block"), indexPage);
    m_byLayer->setAutoDefault(false);
    m_byBlock->setAutoDefault(false);
    logical->addStretch();
    logical->addWidget(m_byLayer);
    logical->addWidget(m_byBlock);
    indexLayout->addLayout(logical);
    connect(m_byLayer, &QPushButton::clicked, this, [this] { setColor(OdCmColor(OdCmEntityColor::kByLayer)); });
    connect(m_byBlock, &QPushButton::clicked, this, [this] { setColor(OdCmColor(OdCmEntityColor::kByBlock)); });
  }
  indexLayout->addStretch();
  m_tabs->addTab(indexPage, tr("Index Color"));

  // Qt's own colour picker, embedded: RGB and HSV spins, a hue field, a screen picker.
  m_trueColor = new QColorDialog(this);
  m_trueColor->setWindowFlags(Qt::Widget);
  m_trueColor->setOptions(QColorDialog::NoButtons | QColorDialog::DontUseNativeDialog);
  m_tabs->addTab(m_trueColor, tr("True Color"));

  auto* bottom = new QFormLayout;
  m_text = new QLineEdit(this);
  auto* textLabel = new QLabel(tr("&Color:"), this);
  textLabel->setBuddy(m_text);
  m_oldSwatch = new HostColorSwatch(this);
  m_oldSwatch->setAccessibleName(tr("Original colour"));
  m_oldSwatch->setColor(color);
  m_newSwatch = new HostColorSwatch(this);
  m_newSwatch->setAccessibleName(tr("New colour"));
  auto* row = new QHBoxLayout;
  row->addWidget(m_text, 1);
  row->addWidget(m_oldSwatch);
  row->addWidget(m_newSwatch);
  bottom->addRow(textLabel, row);
  m_error = new QLabel(this);
  m_error->setWordWrap(true);
  QPalette errPal = m_error->palette();
  errPal.setColor(QPalette::WindowText, QColor(180, 0, 0));
  m_error->setPalette(errPal);
  m_error->hide();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(tr("OK"));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_tabs);
  layout->addLayout(bottom);
  layout->addWidget(m_error);
  layout->addWidget(buttons);

  connect(m_grid, &HostAciGrid::hovered, this, [this](int aci) { showIndexInfo(aci ? aci : m_grid->selected()); });
  connect(m_grid, &HostAciGrid::picked, this, [this](int aci) {
    OdCmColor c;
    c.setColorIndex(static_cast<int16_t>(aci));
    setColor(c);
  });
  connect(m_grid, &HostAciGrid::accepted, this, [this](int aci) {
    OdCmColor c;
    c.setColorIndex(static_cast<int16_t>(aci));
    setColor(c);
    accept();
  });
  connect(m_trueColor, &QColorDialog::currentColorChanged, this, [this](const QColor& q) {
    if (m_updating) return;
    OdCmColor c;
    c.setRGB(static_cast<uint8_t>(q.red()), static_cast<uint8_t>(q.green()), static_cast<uint8_t>(q.blue()));
    setColor(c);
  });
  connect(m_text, &QLineEdit::editingFinished, this, &HostColorDialog::textEdited);

  setColor(color);
  m_tabs->setCurrentIndex(color.isByColor() ? 1 : 0);
}

void HostColorDialog::showIndexInfo(int aci) {
  if (aci <= 0) {
    m_indexInfo->clear();
    m_rgbInfo->clear();
    return;
  }
  const QColor q = qcolorOfAci(aci);
  m_indexInfo->setText(tr("Index color: %1").arg(aci));
  m_rgbInfo->setText(tr("Red, Green, Blue: %1,%2,%3").arg(q.red()).arg(q.green()).arg(q.blue()));
}

void HostColorDialog::setColor(const OdCmColor& c) {
  m_color = c;
  m_updating = true;
  m_grid->setSelected(c.isByACI() || c.isForeground() ? c.colorIndex() : 0);
  if (c.isByColor() || c.isByACI() || c.isForeground())
    m_trueColor->setCurrentColor(QColor(c.red(), c.green(), c.blue()));
  m_updating = false;
  showIndexInfo(m_grid->selected());
  m_text->setText(HostColorText::format(c));
  m_newSwatch->setColor(c);
  m_error->hide();
}

void HostColorDialog::textEdited() {
  if (m_text->text() == HostColorText::format(m_color)) return;
  const HostColorText::Result r = HostColorText::parse(m_text->text(), m_allowLogical);
  if (!r.color) {
    m_error->setText(r.error);
    m_error->show();
    return;
  }
  setColor(*r.color);
  m_tabs->setCurrentIndex(r.color->isByColor() ? 1 : 0);
}

void HostColorDialog::accept() {
  if (m_text->text() != HostColorText::format(m_color)) {
    const HostColorText::Result r = HostColorText::parse(m_text->text(), m_allowLogical);
    if (!r.color) {
      m_error->setText(r.error);
      m_error->show();
      m_text->setFocus();
      return;
    }
    setColor(*r.color);
  }
  QDialog::accept();
}

// ---- services

bool hostSetColorDialogTrueColor(OdCmColor& color, bool allowLogical, QWidget* parent) {
  HostColorDialog dialog(color, allowLogical, parent);
  if (dialog.exec() != QDialog::Accepted) return false;
  color = dialog.color();
  return true;
}

namespace {
constexpr int kMaxCustom = 16;
}

std::vector<OdCmColor> hostReadCustomColors() {
  QSettings settings;
  std::vector<OdCmColor> out;
  const int n = settings.beginReadArray(QStringLiteral("colors/custom"));
  for (int i = 0; i < n; ++i) {
    settings.setArrayIndex(i);
    OdCmColor c;
    if (c.setColor(settings.value(QStringLiteral("raw")).toUInt())) out.push_back(c);
  }
  settings.endArray();
  return out;
}

std::vector<OdCmColor> hostGetCustomColors() { return hostReadCustomColors(); }

void hostAddCustomColor(const OdCmColor& color) {
  std::vector<OdCmColor> colors = hostReadCustomColors();
  std::erase_if(colors, [&](const OdCmColor& c) { return c.color() == color.color(); });
  colors.push_back(color);
  if (colors.size() > kMaxCustom) colors.erase(colors.begin(), colors.end() - kMaxCustom);
  QSettings settings;
  settings.remove(QStringLiteral("colors/custom"));
  settings.beginWriteArray(QStringLiteral("colors/custom"), static_cast<int>(colors.size()));
  for (int i = 0; i < static_cast<int>(colors.size()); ++i) {
    settings.setArrayIndex(i);
    settings.setValue(QStringLiteral("raw"), colors[static_cast<size_t>(i)].color());
  }
  settings.endArray();
  settings.sync();
}
