#include "hostgui/HostPalette.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "drawings/OdDbDatabase.h"
#include "host/HostApDocManager.h"
#include "host/HostTranslation.h"
#include "hostgui/HostPaletteModel.h"
#include "palette/HostPaletteDelegate.h"

namespace {

// The refusals of the host's general properties, which reach the palette through
// Supp_Translate; listed here so that the translation tools find them.
[[maybe_unused]] const char* const kGeneralMessages[] = {
    QT_TRANSLATE_NOOP("HostGeneralProperties",
                      "\"%ls\" is no colour: give ByLayer, ByBlock, a colour name, an index from 1 to 255 or R,G,B."),
    QT_TRANSLATE_NOOP("HostGeneralProperties", "The drawing has no layer \"%ls\"."),
    QT_TRANSLATE_NOOP("HostGeneralProperties", "The drawing has no linetype \"%ls\"; load it first."),
    QT_TRANSLATE_NOOP("HostGeneralProperties", "\"%ls\" is no standard lineweight."),
    QT_TRANSLATE_NOOP("HostGeneralProperties", "The linetype scale must be a number greater than 0, not \"%ls\"."),
};

// The host's general properties (no Qt) translate through Supp_Translate; this
// table answers for their context from Qt's installed translators, so it follows
// the language the window host switches to.
void registerGeneralPropertyTexts() {
  static char tableKey;
  static bool done = false;
  if (done) return;
  done = true;
  hostRegisterStringTable(&tableKey, [](const wchar_t* context, const wchar_t* text, const std::string&,
                                        std::wstring& out) {
    if (!context || std::wstring_view(context) != L"HostGeneralProperties" || !text) return false;
    const QByteArray source = QString::fromWCharArray(text).toUtf8();
    out = QCoreApplication::translate("HostGeneralProperties", source.constData()).toStdWString();
    return true;
  });
  Supp_InitResTranslation(&tableKey);
}

}  // namespace

HostPalette::HostPalette(QWidget* parent) : QWidget(parent) {
  registerGeneralPropertyTexts();
  m_model = new HostPaletteModel(this);
  m_model->setSink(this);

  m_filter = new QComboBox(this);
  m_filter->setObjectName("filter");
  m_filter->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  m_filterLabel = new QLabel(this);
  m_filterLabel->setBuddy(m_filter);
  // The label keeps its whole text; the combo takes what is left.
  m_filterLabel->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);

  m_view = new HostPaletteView(this);
  m_view->setObjectName("properties");
  m_view->setModel(m_model);
  m_view->setItemDelegate(new HostPaletteDelegate(m_view));
  m_view->header()->setSectionResizeMode(HostPaletteModel::kLabelColumn, QHeaderView::ResizeToContents);
  m_view->header()->setStretchLastSection(true);
  m_view->setHeaderHidden(true);

  m_message = new QLabel(this);
  m_message->setObjectName("message");
  m_message->setWordWrap(true);
  m_message->setTextFormat(Qt::PlainText);
  m_message->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_message->hide();

  auto* top = new QHBoxLayout;
  top->addWidget(m_filterLabel);
  top->addWidget(m_filter, 1);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->addLayout(top);
  layout->addWidget(m_view, 1);
  layout->addWidget(m_message);
  setFocusProxy(m_view);

  connect(m_model, &HostPaletteModel::written, this, [this] {
    if (!std::exchange(m_changedInWrite, false)) return;
    m_model->reread();
    emit drawingChanged();
  });
  connect(m_filter, &QComboBox::currentIndexChanged, this, [this] { rebuildRows(); });
  connect(m_view, &QTreeView::collapsed, this, [this](const QModelIndex& i) {
    if (!m_collapsed.contains(i.data().toString())) m_collapsed << i.data().toString();
  });
  connect(m_view, &QTreeView::expanded, this,
          [this](const QModelIndex& i) { m_collapsed.removeAll(i.data().toString()); });

  retranslate();
  rebuildFilter();
  rebuildRows();
}

HostPalette::~HostPalette() { m_model->clear(); }

void HostPalette::setDocument(HostApDocument* document) {
  m_document = document;
  m_selection.clear();
  showMessage(QString());
  rebuildFilter();
  rebuildRows();
}

void HostPalette::setSelection(const OdDbObjectIdArray& ids) {
  // Activating a tab hands the same selection again.
  if (ids == m_selection && !ids.empty()) return;
  m_selection = ids;
  showMessage(QString());
  rebuildFilter();
  rebuildRows();
}

void HostPalette::refresh() {
  if (m_model->isWriting()) {
    // A property asked for it while it writes: the bound properties must outlive
    // the write, so the rows are made again once it is over.
    if (!m_refreshQueued) {
      m_refreshQueued = true;
      QMetaObject::invokeMethod(this, &HostPalette::refresh, Qt::QueuedConnection);
    }
    return;
  }
  m_refreshQueued = false;
  rebuildFilter();
  rebuildRows();
}

QString HostPalette::message() const { return m_message->isVisible() ? m_message->text() : QString(); }

void HostPalette::valueChanged() {
  showMessage(QString());
  // The properties of one row (one per entity class) each tell of their part of
  // a write: the owner hears of the drawing's change once, when the write is over.
  if (m_model->isWriting()) {
    m_changedInWrite = true;
    return;
  }
  m_model->reread();
  emit drawingChanged();
}

void HostPalette::valueRefused(const OdString& message) { showMessage(QString::fromStdWString(message.str())); }

void HostPalette::refreshAll() { refresh(); }

void HostPalette::rebuildFilter() {
  const QString kept = m_filter->currentData().toString();
  const QSignalBlocker block(m_filter);
  m_filter->clear();
  // Objects erased since they were selected (undo of their creation) drop out.
  const auto counts = HostPaletteModel::typeCounts(m_selection);
  int total = 0;
  for (const auto& c : counts) total += c.count;
  if (total == 0) {
    m_filter->addItem(tr("No selection"), QString());
    return;
  }
  m_filter->addItem(tr("All (%1)").arg(total), QString());
  for (const auto& c : counts) m_filter->addItem(tr("%1 (%2)").arg(c.name).arg(c.count), c.key);
  m_filter->setCurrentIndex(std::max(0, m_filter->findData(kept)));
}

void HostPalette::rebuildRows() {
  IOdPropertyManager* manager = nullptr;
  if (!m_document || !m_document->getPropManager(&manager) || !manager) {
    m_model->clear();
    return;
  }
  const OdDbObjectIdArray shown = HostPaletteModel::filtered(m_selection, m_filter->currentData().toString());
  m_model->rebuild(manager->properties(), shown, m_document->database());
  for (int c = 0; c < m_model->rowCount(); ++c) {
    const QModelIndex category = m_model->index(c, 0);
    m_view->setFirstColumnSpanned(c, QModelIndex(), true);
    m_view->setExpanded(category, !m_collapsed.contains(category.data().toString()));
  }
}

void HostPalette::retranslate() {
  m_filterLabel->setText(tr("&Objects:"));
  m_filter->setAccessibleName(tr("Objects"));
  m_view->setAccessibleName(tr("Properties"));
}

void HostPalette::showMessage(const QString& text) {
  m_message->setText(text);
  m_message->setVisible(!text.isEmpty());
  if (!text.isEmpty()) {
    // The text colour of errors that keeps its contrast on the palette's base.
    QPalette p = m_message->palette();
    const bool dark = p.color(QPalette::Window).lightness() < 128;
    p.setColor(QPalette::WindowText, dark ? QColor(255, 140, 140) : QColor(170, 0, 0));
    m_message->setPalette(p);
  }
}

void HostPalette::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LanguageChange) {
    retranslate();
    refresh();
  }
  QWidget::changeEvent(event);
}
