#include "hostgui/HostPaletteModel.h"

#include <QScopedValueRollback>

#include <QCoreApplication>
#include <algorithm>

#include "drawings/OdDbDatabase.h"
#include "host/HostGeneralProperties.h"

namespace {

// Texts of the host's own that reach the palette as English keys: the kinds of
// objects, and the categories and labels of the general properties. Listed here
// so that the translation tools find them.
[[maybe_unused]] const char* const kHostTexts[] = {
    QT_TRANSLATE_NOOP("HostPalette", "Rotated Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Aligned Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Angular Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "3-Point Angular Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Arc Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Radial Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Jogged Radial Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Diametric Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Ordinate Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Dimension"),
    QT_TRANSLATE_NOOP("HostPalette", "Leader"),
    QT_TRANSLATE_NOOP("HostPalette", "Line"),
    QT_TRANSLATE_NOOP("HostPalette", "Circle"),
    QT_TRANSLATE_NOOP("HostPalette", "Arc"),
    QT_TRANSLATE_NOOP("HostPalette", "Polyline"),
    QT_TRANSLATE_NOOP("HostPalette", "Point"),
    QT_TRANSLATE_NOOP("HostPalette", "Solid"),
    QT_TRANSLATE_NOOP("HostPalette", "Text"),
    QT_TRANSLATE_NOOP("HostPalette", "MText"),
    QT_TRANSLATE_NOOP("HostPalette", "Block Reference"),
    QT_TRANSLATE_NOOP("HostPalette", "General"),
    QT_TRANSLATE_NOOP("HostPalette", "Color"),
    QT_TRANSLATE_NOOP("HostPalette", "Layer"),
    QT_TRANSLATE_NOOP("HostPalette", "Linetype"),
    QT_TRANSLATE_NOOP("HostPalette", "Lineweight"),
    QT_TRANSLATE_NOOP("HostPalette", "Linetype scale"),
};

QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }
OdString od(const QString& s) { return OdString(s.toStdWString()); }

constexpr quintptr kCategoryId = 0;

}  // namespace

// One row: every editable property of one name. Their combined value is read
// into the cache by reread(), so that painting never walks the selection.
struct HostPaletteModel::Row {
  QString label;
  std::vector<std::unique_ptr<IXREditableProperty>> bound;
  HostPropState state = HostPropState::kNone;
  QString text;

  void read() {
    state = HostPropState::kNone;
    text.clear();
    for (const auto& p : bound) {
      const HostPropState s = p->state();
      if (s == HostPropState::kNone) continue;
      const QString t = s == HostPropState::kSame ? qs(p->text()) : QString();
      if (state == HostPropState::kNone) {
        state = s;
        text = t;
      } else if (s == HostPropState::kVaries || t != text) {
        state = HostPropState::kVaries;
      }
      if (state == HostPropState::kVaries) break;
    }
    if (state != HostPropState::kSame) text.clear();
  }
};

struct HostPaletteModel::Category {
  QString name;
  std::vector<std::unique_ptr<Row>> rows;
};

HostPaletteModel::HostPaletteModel(QObject* parent) : QAbstractItemModel(parent) {}

HostPaletteModel::~HostPaletteModel() { clear(); }

void HostPaletteModel::clear() {
  Q_ASSERT(!isWriting());
  beginResetModel();
  unbind();
  endResetModel();
}

void HostPaletteModel::unbind() {
  for (auto& c : m_categories)
    for (auto& r : c->rows)
      for (auto& p : r->bound) p->unadvise(m_sink);
  m_categories.clear();
  m_db = nullptr;
}

void HostPaletteModel::rebuild(const std::vector<IOdProperty*>& properties, const OdDbObjectIdArray& selection,
                               OdDbDatabase* db) {
  Q_ASSERT(!isWriting());
  beginResetModel();
  unbind();
  m_db = db;
  for (IOdProperty* property : properties) {
    if (!property || selection.empty()) continue;
    std::unique_ptr<IXREditableProperty> bound = property->createEditable(selection);
    if (!bound || bound->state() == HostPropState::kNone) continue;
    const QString name = qs(property->name());
    const int dot = name.indexOf('.');
    const QString category = translated(dot < 0 ? QString() : name.left(dot));
    const QString label = translated(dot < 0 ? name : name.mid(dot + 1));
    Category* cat = nullptr;
    for (auto& c : m_categories)
      if (c->name == category) cat = c.get();
    if (!cat) cat = m_categories.emplace_back(std::make_unique<Category>(Category{category, {}})).get();
    Row* row = nullptr;
    for (auto& r : cat->rows)
      if (r->label == label) row = r.get();
    if (!row) row = cat->rows.emplace_back(std::make_unique<Row>()).get();
    row->label = label;
    bound->advise(m_sink);
    row->bound.push_back(std::move(bound));
  }
  for (auto& c : m_categories)
    for (auto& r : c->rows) r->read();
  endResetModel();
}

void HostPaletteModel::reread() {
  for (size_t c = 0; c < m_categories.size(); ++c) {
    auto& rows = m_categories[c]->rows;
    for (auto& r : rows) r->read();
    if (!rows.empty()) {
      const QModelIndex parent = index(static_cast<int>(c), 0);
      emit dataChanged(index(0, kValueColumn, parent), index(static_cast<int>(rows.size()) - 1, kValueColumn, parent));
    }
  }
}

HostPaletteModel::Row* HostPaletteModel::rowOf(const QModelIndex& index) const {
  if (!index.isValid() || index.internalId() == kCategoryId) return nullptr;
  const auto c = static_cast<size_t>(index.internalId() - 1);
  if (c >= m_categories.size() || index.row() >= static_cast<int>(m_categories[c]->rows.size())) return nullptr;
  return m_categories[c]->rows[static_cast<size_t>(index.row())].get();
}

IXREditableProperty* HostPaletteModel::property(const QModelIndex& index) const {
  Row* row = rowOf(index);
  return row && !row->bound.empty() ? row->bound.front().get() : nullptr;
}

QModelIndex HostPaletteModel::find(const QString& category, const QString& label, int column) const {
  for (size_t c = 0; c < m_categories.size(); ++c) {
    if (m_categories[c]->name != category) continue;
    const auto& rows = m_categories[c]->rows;
    for (size_t r = 0; r < rows.size(); ++r)
      if (rows[r]->label == label) return createIndex(static_cast<int>(r), column, static_cast<quintptr>(c + 1));
  }
  return QModelIndex();
}

HostResult HostPaletteModel::setValue(const QModelIndex& index, const QString& text) {
  Row* row = rowOf(index);
  if (!row || row->bound.empty()) return kHostInvalidArg;
  HostResult result = kHostOk;
  {
    // Counted back however the write ends, or refresh() would wait for ever.
    QScopedValueRollback<int> writing(m_writing, m_writing + 1);
    // Properties of one name for several classes write as one step: their own
    // brackets join this one.
    std::unique_ptr<HostPropertyChange> change;
    if (row->bound.size() > 1) change = std::make_unique<HostPropertyChange>(m_db);
    for (auto& p : row->bound) {
      if (p->state() == HostPropState::kNone) continue;
      result = p->setText(od(text));
      if (result != kHostOk) break;
    }
  }
  row->read();
  emit dataChanged(index.siblingAtColumn(kLabelColumn), index.siblingAtColumn(kValueColumn));
  emit written();
  return result;
}

std::vector<HostPaletteTypeCount> HostPaletteModel::typeCounts(const OdDbObjectIdArray& selection) {
  std::vector<HostPaletteTypeCount> counts;
  for (const OdDbObjectId& id : selection) {
    auto object = id.openObject();
    if (!object) continue;
    const QString key = qs(hostEntityTypeName(*object));
    auto it = std::find_if(counts.begin(), counts.end(), [&](const auto& t) { return t.key == key; });
    if (it == counts.end()) it = counts.insert(counts.end(), HostPaletteTypeCount{key, translated(key), 0});
    ++it->count;
  }
  return counts;
}

OdDbObjectIdArray HostPaletteModel::filtered(const OdDbObjectIdArray& selection, const QString& key) {
  OdDbObjectIdArray out;
  for (const OdDbObjectId& id : selection) {
    auto object = id.openObject();
    if (object && (key.isEmpty() || qs(hostEntityTypeName(*object)) == key)) out.push_back(id);
  }
  return out;
}

QString HostPaletteModel::translated(const QString& english) {
  return QCoreApplication::translate("HostPalette", english.toUtf8().constData());
}

QModelIndex HostPaletteModel::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || column < 0 || column > kValueColumn) return QModelIndex();
  if (!parent.isValid())
    return row < static_cast<int>(m_categories.size()) ? createIndex(row, column, kCategoryId) : QModelIndex();
  if (parent.internalId() != kCategoryId || parent.row() >= static_cast<int>(m_categories.size()))
    return QModelIndex();
  if (row >= static_cast<int>(m_categories[static_cast<size_t>(parent.row())]->rows.size())) return QModelIndex();
  return createIndex(row, column, static_cast<quintptr>(parent.row() + 1));
}

QModelIndex HostPaletteModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || child.internalId() == kCategoryId) return QModelIndex();
  return createIndex(static_cast<int>(child.internalId() - 1), 0, kCategoryId);
}

int HostPaletteModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(m_categories.size());
  if (parent.internalId() != kCategoryId || parent.column() != 0) return 0;
  return static_cast<int>(m_categories[static_cast<size_t>(parent.row())]->rows.size());
}

int HostPaletteModel::columnCount(const QModelIndex&) const { return 2; }

QVariant HostPaletteModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return QVariant();
  if (index.internalId() == kCategoryId) {
    const QString& name = m_categories[static_cast<size_t>(index.row())]->name;
    switch (role) {
      case Qt::DisplayRole:
      case Qt::AccessibleTextRole: return index.column() == kLabelColumn ? name : QString();
      case kCategoryRole: return true;
      default: return QVariant();
    }
  }
  Row* row = rowOf(index);
  if (!row) return QVariant();
  const bool value = index.column() == kValueColumn;
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return value ? row->text : row->label;
    case Qt::ToolTipRole: return value ? row->text : QVariant();
    case Qt::AccessibleTextRole: {
      if (!value) return row->label;
      const QString shown = row->state == HostPropState::kVaries ? tr("varies") : row->text;
      return row->label + ": " + shown;
    }
    case kCategoryRole: return false;
    case kStateRole: return static_cast<int>(row->state);
    case kEditKindRole: return static_cast<int>(row->bound.front()->editKind());
    case kValueListRole: {
      // "Yes\tNo\t": every entry ends with a tab.
      QStringList list = qs(row->bound.front()->valueList()).split('\t');
      if (!list.isEmpty() && list.back().isEmpty()) list.removeLast();
      return list;
    }
    default: return QVariant();
  }
}

bool HostPaletteModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || index.column() != kValueColumn) return false;
  return setValue(index, value.toString()) == kHostOk;
}

Qt::ItemFlags HostPaletteModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  if (index.internalId() == kCategoryId) return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  if (index.column() == kValueColumn && data(index, kEditKindRole).toInt() != int(HostPropEditKind::kReadOnly))
    f |= Qt::ItemIsEditable;
  return f;
}

QVariant HostPaletteModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return QVariant();
  return section == kLabelColumn ? tr("Property") : tr("Value");
}
