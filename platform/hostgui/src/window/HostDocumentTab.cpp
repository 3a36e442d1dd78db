#include "hostgui/HostDocumentTab.h"

#include <QTabBar>
#include <QVBoxLayout>

#include "host/HostApDocManager.h"
#include "hostgui/HostDrawingView.h"

HostDocumentTab::HostDocumentTab(HostApDocument* doc, QWidget* parent)
    : QWidget(parent), m_doc(doc), m_shownChange(0) {
  m_view = new HostDrawingView(this);
  m_view->setObjectName("drawingView");
  m_layouts = new QTabBar(this);
  m_layouts->setObjectName("layoutTabs");
  m_layouts->setShape(QTabBar::RoundedSouth);
  m_layouts->setAccessibleName(tr("Model and layouts"));
  m_layouts->setExpanding(false);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(m_view, 1);
  layout->addWidget(m_layouts);
  setFocusProxy(m_view);
  m_shownChange = doc->database()->changeCount();
  m_view->setDatabase(doc->database());
  fillLayouts();
  connect(m_layouts, &QTabBar::currentChanged, this, [this](int i) {
    if (i >= 0 && i < static_cast<int>(m_layoutIds.size())) {
      m_view->setLayout(m_layoutIds[static_cast<size_t>(i)]);
      m_view->zoomExtents();
    }
  });
}

void HostDocumentTab::fillLayouts() {
  const OdDbObjectId current =
      m_layouts->currentIndex() >= 0 ? m_layoutIds[static_cast<size_t>(m_layouts->currentIndex())] : OdDbObjectId();
  QSignalBlocker block(m_layouts);
  while (m_layouts->count()) m_layouts->removeTab(0);
  m_layoutIds.clear();
  for (const auto& l : hostViewLayouts(*m_doc->database())) {
    m_layouts->addTab(QString::fromStdWString(l.name.str()));
    m_layoutIds.push_back(l.block);
  }
  auto it = std::find(m_layoutIds.begin(), m_layoutIds.end(), current);
  m_layouts->setCurrentIndex(it == m_layoutIds.end() ? 0 : static_cast<int>(it - m_layoutIds.begin()));
}

bool HostDocumentTab::refreshIfChanged() {
  const uint64_t now = m_doc->database()->changeCount();
  if (now == m_shownChange) return false;
  m_shownChange = now;
  fillLayouts();
  m_view->drawingChanged();
  return true;
}
