#include "HostArrows.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <map>

#include "drawings/OdDbVectorizer.h"
#include "drawings/OdDmUtil.h"
#include "hostgui/HostGuiServices.h"
#include "hostgui/HostPaint.h"

namespace {
OdString od(const QString& s) { return OdString(s.toStdWString()); }
QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }

bool isStandard(const OdString& name) {
  for (const OdString& s : hostStandardArrowNames())
    if (s == name) return true;
  return false;
}

// Every standard arrow fits x -1..0.5, y -0.5..0.5 at size 1; a common window keeps
// their sizes in proportion, as a dimension shows them.
OdGiExtents standardFrame() {
  OdGiExtents e;
  e.add(OdGePoint2d(-1.0, -0.5));
  e.add(OdGePoint2d(0.5, 0.5));
  return e;
}

void vectorize(HostArrowSample& s, const OdDbDatabase& db, const OdDbObjectId& block) {
  OdDbVectorizer v(s.primitives);
  v.drawBlock(db, block);
  s.found = true;
}
}  // namespace

const std::vector<OdString>& hostStandardArrowNames() {
  static const std::vector<OdString> names = {
      L"",        L"_ClosedBlank", L"_Closed",    L"_Dot",      L"_ArchTick",  L"_Oblique",     L"_Open",
      L"_Origin", L"_Origin2",     L"_Open90",    L"_Open30",   L"_DotSmall",  L"_DotBlank",    L"_Small",
      L"_BoxBlank", L"_BoxFilled", L"_DatumBlank", L"_DatumFilled", L"_Integral", L"_None"};
  return names;
}

HostArrowSample hostArrowSample(const OdString& blockName, const OdDbDatabase* db) {
  if (isStandard(blockName)) {
    // Drawn once from blocks of a drawing of our own, so a sample never adds a
    // block to the user's drawing.
    static std::map<std::wstring, HostArrowSample> cache;
    auto it = cache.find(blockName.str());
    if (it != cache.end()) return it->second;
    static OdDbDatabasePtr scratch = OdDbDatabase::createNew();
    HostArrowSample s;
    s.frame = standardFrame();
    if (blockName.isEmpty()) {
      // Closed filled has no block: the filled triangle with the dimension line up to it.
      OdGiPolygon p;
      p.points = {OdGePoint2d(0, 0), OdGePoint2d(-1, 1.0 / 6), OdGePoint2d(-1, -1.0 / 6)};
      s.primitives.polygon(p);
      OdGiLine l;
      l.start = OdGePoint2d(-1, 0);
      l.end = OdGePoint2d(0, 0);
      s.primitives.line(l);
      s.found = true;
    } else if (const OdDbObjectId id = OdDmUtil::getArrowId(blockName, scratch.get()); !id.isNull()) {
      vectorize(s, *scratch, id);
    }
    return cache.emplace(blockName.str(), std::move(s)).first->second;
  }
  HostArrowSample s;
  if (!db) return s;
  auto table = odOpen<OdDbBlockTable>(db->getBlockTableId());
  const OdDbObjectId id = table ? table->getAt(blockName) : OdDbObjectId();
  if (id.isNull()) return s;
  try {
    vectorize(s, *db, id);
  } catch (const OdError&) {
    s.found = false;
  }
  s.frame = s.primitives.extents();
  return s;
}

void DrawArrow(QPainter* painter, const QRect& rect, const OdString& blockName, const OdDbDatabase* db) {
  if (!painter || rect.isEmpty()) return;
  const HostArrowSample s = hostArrowSample(blockName, db);
  if (!s.found || s.primitives.items().empty() || !s.frame.isValid()) return;
  HostPaintOptions options;
  options.override = painter->pen().color();
  options.background = painter->background().color();
  const double margin = std::max(1.0, rect.height() * 0.1);
  painter->save();
  hostPaintPrimitives(*painter, s.primitives, hostFitTransform(s.frame, QRectF(rect), margin), options);
  painter->restore();
}

// ---- user arrow dialog

namespace {
// The block's sample left of its name.
class ArrowItemDelegate : public QStyledItemDelegate {
public:
  ArrowItemDelegate(const OdDbDatabase* db, QObject* parent) : QStyledItemDelegate(parent), m_db(db) {}
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const int side = opt.rect.height() * 2;
    const QRect sample(opt.rect.left() + 2, opt.rect.top(), side, opt.rect.height());
    opt.rect.setLeft(sample.right() + 6);
    QStyledItemDelegate::paint(painter, opt, index);
    painter->save();
    const bool selected = option.state & QStyle::State_Selected;
    if (selected) painter->fillRect(sample, opt.palette.brush(QPalette::Highlight));
    painter->setPen(opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    DrawArrow(painter, sample.adjusted(2, 2, -2, -2), od(index.data(Qt::DisplayRole).toString()), m_db);
    painter->restore();
  }
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QSize s = QStyledItemDelegate::sizeHint(option, index);
    s.setHeight(std::max(s.height(), option.fontMetrics.height() + 8));
    s.setWidth(s.width() + s.height() * 2 + 8);
    return s;
  }

private:
  const OdDbDatabase* m_db;
};
}  // namespace

HostUsrArrowDialog::HostUsrArrowDialog(const OdDbDatabase* db, const OdString& current, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(tr("Select Custom Arrow Block"));
  auto* label = new QLabel(tr("&Blocks of the drawing:"), this);
  m_list = new QListWidget(this);
  label->setBuddy(m_list);
  m_list->setItemDelegate(new ArrowItemDelegate(db, this));
  auto table = db ? odOpen<OdDbBlockTable>(db->getBlockTableId()) : OdDbBlockTablePtr();
  if (table)
    for (const OdDbObjectId& id : table->recordIds()) {
      auto block = odOpen<OdDbBlockTableRecord>(id);
      if (!block || block->isLayout() || block->isAnonymous() || block->isDependent()) continue;
      auto* item = new QListWidgetItem(qs(block->getName()), m_list);
      if (block->getName() == current) m_list->setCurrentItem(item);
    }
  m_list->sortItems();
  if (!m_list->currentItem() && m_list->count() > 0) m_list->setCurrentRow(0);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(tr("OK"));
  buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
  buttons->button(QDialogButtonBox::Ok)->setEnabled(m_list->count() > 0);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(m_list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(m_list, 1);
  if (m_list->count() == 0) layout->addWidget(new QLabel(tr("The drawing has no blocks to use as arrows."), this));
  layout->addWidget(buttons);
}

OdString HostUsrArrowDialog::blockName() const {
  QListWidgetItem* item = m_list->currentItem();
  return item ? od(item->text()) : OdString();
}

bool hostUsrArrowDialog(QWidget* parent, const OdDbDatabase* db, OdString& blockName) {
  HostUsrArrowDialog dialog(db, blockName, parent);
  if (dialog.exec() != QDialog::Accepted || dialog.blockName().isEmpty()) return false;
  blockName = dialog.blockName();
  return true;
}
