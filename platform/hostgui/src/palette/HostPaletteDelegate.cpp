#include "palette/HostPaletteDelegate.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QTimer>

#include "hostgui/HostPaletteModel.h"

namespace {

// Editors that the row's property made itself: they write through the property,
// not through the model.
const char* const kOwnEditor = "hostPaletteOwnEditor";

bool isCategory(const QModelIndex& index) { return index.data(HostPaletteModel::kCategoryRole).toBool(); }

HostPropEditKind kindOf(const QModelIndex& index) {
  return static_cast<HostPropEditKind>(index.data(HostPaletteModel::kEditKindRole).toInt());
}

}  // namespace

HostPaletteCombo::HostPaletteCombo(QWidget* parent) : QComboBox(parent) {
  connect(this, &QComboBox::activated, this, [this] {
    if (m_closingPopup) emit picked();
  });
}

void HostPaletteCombo::hidePopup() {
  // The list emits activated right after it closes, when an entry was picked;
  // a popup closed with Escape emits nothing, and the flag is gone by then.
  m_closingPopup = true;
  QComboBox::hidePopup();
  QTimer::singleShot(0, this, [this] { m_closingPopup = false; });
}

QWidget* HostPaletteDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                           const QModelIndex& index) const {
  if (index.column() != HostPaletteModel::kValueColumn || isCategory(index)) return nullptr;
  auto* model = qobject_cast<const HostPaletteModel*>(index.model());
  if (IXREditableProperty* property = model ? model->property(index) : nullptr) {
    if (QWidget* own = property->createEditor(parent)) {
      own->setProperty(kOwnEditor, true);
      own->setAutoFillBackground(true);
      return own;
    }
  }
  switch (kindOf(index)) {
    case HostPropEditKind::kList: {
      auto* combo = new HostPaletteCombo(parent);
      combo->setAccessibleName(index.siblingAtColumn(HostPaletteModel::kLabelColumn).data().toString());
      connect(combo, &HostPaletteCombo::picked, this, [this, combo] {
        emit const_cast<HostPaletteDelegate*>(this)->commitData(combo);
        emit const_cast<HostPaletteDelegate*>(this)->closeEditor(combo);
      });
      return combo;
    }
    case HostPropEditKind::kText: {
      QWidget* edit = QStyledItemDelegate::createEditor(parent, option, index);
      edit->setAccessibleName(index.siblingAtColumn(HostPaletteModel::kLabelColumn).data().toString());
      return edit;
    }
    case HostPropEditKind::kReadOnly: break;
  }
  return nullptr;
}

void HostPaletteDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  if (editor->property(kOwnEditor).toBool()) return;
  if (auto* combo = qobject_cast<QComboBox*>(editor)) {
    // Rebuilt each time: lists (layers, linetypes) change with the drawing.
    const QSignalBlocker block(combo);
    combo->clear();
    combo->addItems(index.data(HostPaletteModel::kValueListRole).toStringList());
    // A common value the list does not offer (an index or true colour) still
    // shows, first; blank when the values vary, so that any entry picked is a change.
    const QString current = index.data(Qt::EditRole).toString();
    if (!current.isEmpty() && combo->findText(current, Qt::MatchFixedString) < 0) combo->insertItem(0, current);
    combo->setCurrentIndex(combo->findText(current, Qt::MatchFixedString));
    return;
  }
  QStyledItemDelegate::setEditorData(editor, index);
}

void HostPaletteDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  if (editor->property(kOwnEditor).toBool()) return;
  QString text;
  if (auto* combo = qobject_cast<QComboBox*>(editor)) {
    if (combo->currentIndex() < 0) return;
    text = combo->currentText();
  } else if (auto* line = qobject_cast<QLineEdit*>(editor)) {
    text = line->text();
  } else {
    return;
  }
  // Leaving an editor without a change writes nothing, so it makes no undo step.
  const bool same = index.data(HostPaletteModel::kStateRole).toInt() == int(HostPropState::kSame) &&
                    index.data(Qt::EditRole).toString() == text;
  if (!same) model->setData(index, text, Qt::EditRole);
}

void HostPaletteDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  if (isCategory(index)) {
    option->font.setBold(true);
  } else if (index.column() == HostPaletteModel::kValueColumn && kindOf(index) == HostPropEditKind::kReadOnly) {
    // Greyed like a disabled control, so that read-only values read as such.
    option->palette.setCurrentColorGroup(QPalette::Disabled);
    option->palette.setBrush(QPalette::Text, option->palette.brush(QPalette::Disabled, QPalette::Text));
    option->palette.setBrush(QPalette::HighlightedText,
                             option->palette.brush(QPalette::Disabled, QPalette::HighlightedText));
  }
}

void HostPaletteDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  auto* model = qobject_cast<const HostPaletteModel*>(index.model());
  IXREditableProperty* property = model && index.column() == HostPaletteModel::kValueColumn ? model->property(index)
                                                                                            : nullptr;
  if (property && index.data(HostPaletteModel::kStateRole).toInt() == int(HostPropState::kSame)) {
    // The cell's background and selection first, then the property's own picture
    // where the text would go.
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    opt.text.clear();
    QStyle* style = opt.widget ? opt.widget->style() : QApplication::style();
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &opt, opt.widget);
    painter->save();
    style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, opt.widget);
    painter->setPen(opt.palette.color(opt.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(opt.font);
    const bool painted = property->paintValue(painter, textRect);
    painter->restore();
    if (painted) return;
  }
  QStyledItemDelegate::paint(painter, option, index);
}

HostPaletteView::HostPaletteView(QWidget* parent) : QTreeView(parent) {
  setEditTriggers(DoubleClicked | SelectedClicked | EditKeyPressed);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setAllColumnsShowFocus(true);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
}

bool HostPaletteView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  // The label is not edited: a trigger on it edits the value beside it.
  if (index.isValid() && index.column() == HostPaletteModel::kLabelColumn && !isCategory(index) &&
      trigger != NoEditTriggers && trigger != CurrentChanged) {
    const QModelIndex value = index.siblingAtColumn(HostPaletteModel::kValueColumn);
    if (QTreeView::edit(value, trigger, event)) {
      setCurrentIndex(value);
      return true;
    }
    return false;
  }
  return QTreeView::edit(index, trigger, event);
}

void HostPaletteView::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && state() != EditingState && currentIndex().isValid() && !isCategory(currentIndex())) {
    if (edit(currentIndex(), EditKeyPressed, event)) return;
  }
  QTreeView::keyPressEvent(event);
}

void HostPaletteView::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  if (isCategory(index)) {
    // Categories stand apart from the rows of values on a band of their own.
    painter->fillRect(option.rect, option.palette.brush(QPalette::Button));
  }
  QTreeView::drawRow(painter, option, index);
}
