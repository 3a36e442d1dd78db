#include "HostLinetypeDialog.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <cmath>

#include "drawings/OdDbLinetypeRecord.h"
#include "hostgui/HostGuiServices.h"

namespace {
OdString od(const QString& s) { return OdString(s.toStdWString()); }
QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }

bool isLogical(const OdString& name) {
  return name.iCompare(L"ByLayer") == 0 || name.iCompare(L"ByBlock") == 0 || name.iCompare(L"Continuous") == 0;
}

// The pattern of a linetype of the drawing; empty for a solid line.
std::vector<double> patternOf(const OdDbDatabase* db, const OdString& name) {
  if (!db || name.isEmpty() || isLogical(name)) return {};
  auto table = odOpen<OdDbLinetypeTable>(db->getLinetypeTableId());
  auto rec = table ? odOpen<OdDbLinetypeTableRecord>(table->getAt(name)) : OdDbLinetypeTableRecordPtr();
  if (!rec) return {};
  std::vector<double> out;
  for (const auto& d : OdDbLinetypeData::fromRecord(*rec).dashes) out.push_back(d.length);
  return out;
}

enum Column { kName, kAppearance, kDescription };
}  // namespace

// ---- the painter

void hostDrawDashPattern(QPainter* painter, const QRect& rect, const std::vector<double>& pattern) {
  if (!painter || rect.width() < 2) return;
  double period = 0;
  for (double d : pattern) period += std::abs(d);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, false);
  QPen pen = painter->pen();
  pen.setWidthF(std::max(1.0, pen.widthF()));
  pen.setCapStyle(Qt::FlatCap);
  painter->setPen(pen);
  const double y = rect.top() + rect.height() / 2.0;
  const double x0 = rect.left() + 2, x1 = rect.right() - 2;
  if (pattern.empty() || !(period > 0)) {
    painter->drawLine(QPointF(x0, y), QPointF(x1, y));
    painter->restore();
    return;
  }
  // A period takes a third of the sample, so three of them show the rhythm of
  // the pattern whatever its units; dots get a pixel or two so they stay seen.
  const double scale = (x1 - x0) / 3.0 / period;
  double x = x0;
  for (size_t i = 0; x < x1; i = (i + 1) % pattern.size()) {
    const double len = std::abs(pattern[i]) * scale;
    if (pattern[i] > 0) painter->drawLine(QPointF(x, y), QPointF(std::min(x + len, x1), y));
    else if (pattern[i] == 0) painter->drawLine(QPointF(x, y), QPointF(std::min(x + 1.5, x1), y));
    x += std::max(len, pattern[i] == 0 ? 1.5 : 0.5);
  }
  painter->restore();
}

void DrawLineType(QPainter* painter, const QRect& rect, const OdDbDatabase* db, const OdString& name) {
  hostDrawDashPattern(painter, rect, patternOf(db, name));
}

QString hostLinetypeFilePath() {
  // Installed beside the program's data when there is one, else the shipped source copy.
  const QString installed = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vex/vex.lin");
  if (QFileInfo::exists(installed)) return QFileInfo(installed).canonicalFilePath();
  const QString source = QStringLiteral(HOSTGUI_SOURCE_DIR "/src/dialogs/vex.lin");
  if (QFileInfo::exists(source)) return source;
  return QStringLiteral(":/hostgui/vex.lin");
}

int hostLoadLinetypes(OdDbDatabase& db, const std::vector<HostLinEntry>& entries) {
  auto table = odOpen<OdDbLinetypeTable>(db.getLinetypeTableId());
  if (!table) return 0;
  int added = 0;
  db.beginUndoGroup(L"LINETYPE");
  try {
    for (const HostLinEntry& e : entries) {
      OdString name = od(db.extendedNames() ? e.name : e.name.toUpper());
      if (table->has(name)) continue;
      OdDbLinetypeData data = e.data;
      // Texts and shapes need a style of the drawing; without one they are left as plain dashes.
      auto styles = odOpen<OdDbTextStyleTable>(db.getTextStyleTableId());
      for (size_t i = 0; i < data.dashes.size(); ++i) {
        if (!data.dashes[i].complexType) continue;
        const OdDbObjectId style = styles && i < e.styles.size() ? styles->getAt(od(e.styles[i])) : OdDbObjectId();
        if (style.isNull()) {
          OdDbLinetypeDash plain;
          plain.length = data.dashes[i].length;
          data.dashes[i] = plain;
        }
        else data.dashes[i].style = style;
      }
      data.addTo(db, name);
      ++added;
    }
  } catch (...) {
    db.endUndoGroup();
    throw;
  }
  db.endUndoGroup();
  return added;
}

// ---- list items

void HostLinetypeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QStyleOptionViewItem opt = option;
  initStyleOption(&opt, index);
  const QString name = index.data(Qt::UserRole).toString();
  opt.text.clear();
  QStyledItemDelegate::paint(painter, opt, index);
  painter->save();
  const bool selected = opt.state & QStyle::State_Selected;
  painter->setPen(opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
  const QRect r = opt.rect.adjusted(4, 0, -4, 0);
  const QVariant pattern = index.data(kPatternRole);
  if (pattern.isValid()) {
    std::vector<double> lengths;
    for (const QVariant& v : pattern.toList()) lengths.push_back(v.toDouble());
    hostDrawDashPattern(painter, r, lengths);
  } else {
    DrawLineType(painter, r, m_db, od(name));
  }
  painter->restore();
}

QSize HostLinetypeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QSize s = QStyledItemDelegate::sizeHint(option, index);
  return QSize(std::max(s.width(), option.fontMetrics.horizontalAdvance(QLatin1Char('M')) * 12), s.height());
}

// ---- load dialog

HostLinetypeLoadDialog::HostLinetypeLoadDialog(const OdDbDatabase* db, const QString& path, QWidget* parent)
    : QDialog(parent), m_db(db) {
  setWindowTitle(tr("Load Linetypes"));
  auto* fileRow = new QHBoxLayout;
  auto* fileButton = new QPushButton(tr("&File..."), this);
  fileButton->setAutoDefault(false);
  m_path = new QLabel(this);
  m_path->setTextInteractionFlags(Qt::TextSelectableByMouse);
  fileRow->addWidget(fileButton);
  fileRow->addWidget(m_path, 1);
  auto* listLabel = new QLabel(tr("Available &linetypes:"), this);
  m_list = new QTreeWidget(this);
  listLabel->setBuddy(m_list);
  m_list->setColumnCount(3);
  m_list->setHeaderLabels({tr("Linetype"), tr("Appearance"), tr("Description")});
  m_list->setRootIsDecorated(false);
  m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  m_list->setItemDelegateForColumn(kAppearance, new HostLinetypeDelegate(nullptr, this));
  m_errors = new QLabel(this);
  m_errors->setWordWrap(true);
  m_errors->hide();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(tr("OK"));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(m_list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(fileButton, &QPushButton::clicked, this, [this] {
    const QString p = QFileDialog::getOpenFileName(this, tr("Linetype File"), QFileInfo(m_path->text()).path(),
                                                   tr("Linetype files (*.lin)"));
    if (!p.isEmpty()) loadFile(p);
  });
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(fileRow);
  layout->addWidget(listLabel);
  layout->addWidget(m_list, 1);
  layout->addWidget(m_errors);
  layout->addWidget(buttons);
  loadFile(path);
  resize(sizeHint().expandedTo(QSize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 25)));
}

void HostLinetypeLoadDialog::loadFile(const QString& path) {
  m_file = HostLinFile::read(path);
  m_path->setText(path);
  m_list->clear();
  auto table = m_db ? odOpen<OdDbLinetypeTable>(m_db->getLinetypeTableId()) : OdDbLinetypeTablePtr();
  for (size_t i = 0; i < m_file.entries.size(); ++i) {
    const HostLinEntry& e = m_file.entries[i];
    auto* item = new QTreeWidgetItem(m_list, {e.name, QString(), e.description});
    item->setData(kName, Qt::UserRole, static_cast<int>(i));
    QVariantList lengths;
    for (const auto& d : e.data.dashes) lengths << d.length;
    item->setData(kAppearance, kPatternRole, lengths);
    if (table && table->has(od(e.name))) {
      item->setFlags(item->flags() & ~(Qt::ItemIsSelectable | Qt::ItemIsEnabled));
      item->setToolTip(kName, tr("The drawing has this linetype already."));
    }
  }
  m_list->resizeColumnToContents(kName);
  m_list->setColumnWidth(kAppearance, fontMetrics().horizontalAdvance(QLatin1Char('M')) * 12);
  QStringList problems;
  for (const HostLinError& err : m_file.errors)
    problems << (err.line > 0 ? tr("Line %1: %2").arg(err.line).arg(err.message) : err.message);
  m_errors->setText(problems.join(QLatin1Char('\n')));
  m_errors->setVisible(!problems.isEmpty());
}

std::vector<HostLinEntry> HostLinetypeLoadDialog::chosen() const {
  std::vector<HostLinEntry> out;
  for (QTreeWidgetItem* item : m_list->selectedItems())
    out.push_back(m_file.entries[static_cast<size_t>(item->data(kName, Qt::UserRole).toInt())]);
  return out;
}

// ---- linetype dialog

HostLinetypeDialog::HostLinetypeDialog(OdDbDatabase* db, const QString& current, QWidget* parent)
    : QDialog(parent), m_db(db) {
  setWindowTitle(tr("Select Linetype"));
  auto* label = new QLabel(tr("&Linetypes of the drawing:"), this);
  m_list = new QTreeWidget(this);
  label->setBuddy(m_list);
  m_list->setColumnCount(3);
  m_list->setHeaderLabels({tr("Linetype"), tr("Appearance"), tr("Description")});
  m_list->setRootIsDecorated(false);
  m_list->setItemDelegateForColumn(kAppearance, new HostLinetypeDelegate(db, this));
  auto* loadButton = new QPushButton(tr("L&oad..."), this);
  loadButton->setAutoDefault(false);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(tr("OK"));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  buttons->addButton(loadButton, QDialogButtonBox::ActionRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(m_list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(loadButton, &QPushButton::clicked, this, [this] { load(); });
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(m_list, 1);
  layout->addWidget(buttons);
  fill(current);
  resize(sizeHint().expandedTo(QSize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 20)));
}

void HostLinetypeDialog::fill(const QString& select) {
  m_list->clear();
  auto add = [&](const QString& name, const QString& shown, const QString& description) {
    auto* item = new QTreeWidgetItem(m_list, {shown, QString(), description});
    item->setData(kName, Qt::UserRole, name);
    item->setData(kAppearance, Qt::UserRole, name);
    if (name.compare(select, Qt::CaseInsensitive) == 0) m_list->setCurrentItem(item);
  };
  add(QStringLiteral("ByLayer"), QStringLiteral("ByLayer"), QString());
  add(QStringLiteral("ByBlock"), QStringLiteral("ByBlock"), QString());
  auto table = m_db ? odOpen<OdDbLinetypeTable>(m_db->getLinetypeTableId()) : OdDbLinetypeTablePtr();
  if (table)
    for (const OdDbObjectId& id : table->recordIds()) {
      auto rec = odOpen<OdDbLinetypeTableRecord>(id);
      if (!rec) continue;
      const OdString name = rec->getName();
      if (name.iCompare(L"ByLayer") == 0 || name.iCompare(L"ByBlock") == 0) continue;
      add(qs(name), qs(name), qs(OdDbLinetypeData::fromRecord(*rec).description));
    }
  if (!m_list->currentItem() && m_list->topLevelItemCount() > 0) m_list->setCurrentItem(m_list->topLevelItem(0));
  m_list->resizeColumnToContents(kName);
  m_list->setColumnWidth(kAppearance, fontMetrics().horizontalAdvance(QLatin1Char('M')) * 12);
}

QString HostLinetypeDialog::selectedName() const {
  QTreeWidgetItem* item = m_list->currentItem();
  return item ? item->data(kName, Qt::UserRole).toString() : QString();
}

void HostLinetypeDialog::load(const std::function<std::vector<HostLinEntry>(HostLinetypeLoadDialog&)>& choose) {
  if (!m_db) return;
  HostLinetypeLoadDialog dialog(m_db, hostLinetypeFilePath(), this);
  std::vector<HostLinEntry> entries;
  if (choose) entries = choose(dialog);
  else if (dialog.exec() == QDialog::Accepted) entries = dialog.chosen();
  if (entries.empty()) return;
  try {
    hostLoadLinetypes(*m_db, entries);
  } catch (const OdError& e) {
    hostMessageBox(this, tr("The linetypes could not be loaded: %1").arg(QString::fromStdString(e.what())));
  }
  fill(entries.front().name);
}

bool hostLineTypeDialog(QWidget* parent, OdDbDatabase* db, OdString& name) {
  HostLinetypeDialog dialog(db, qs(name), parent);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedName().isEmpty()) return false;
  name = od(dialog.selectedName());
  return true;
}
