// What a user without a mouse, or a screen reader, needs of a window: every
// edit, combo, spin box and list named by a label that is its buddy (or by an
// accessible name when it has no visible label), every control without text of
// its own named, and every enabled control reachable with Tab.
#pragma once

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QStringList>
#include <QWidget>

namespace keyboard {

inline QString nameOf(const QWidget* w) {
  return QString("%1 %2").arg(w->metaObject()->className(), w->objectName());
}

// Controls a screen reader could not name: the problems, one line each.
inline QStringList unnamedControls(QWidget* root) {
  QStringList problems;
  QList<QWidget*> buddies;
  for (QLabel* l : root->findChildren<QLabel*>())
    if (l->buddy()) buddies << l->buddy();
  for (QWidget* w : root->findChildren<QWidget*>()) {
    if (!w->isVisibleTo(root) || w->focusPolicy() == Qt::NoFocus) continue;
    // The line edit inside an editable combo or a spin box belongs to it.
    if (qobject_cast<QComboBox*>(w->parentWidget()) || qobject_cast<QAbstractSpinBox*>(w->parentWidget())) continue;
    const bool field = qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w) ||
                       qobject_cast<QAbstractSpinBox*>(w) || qobject_cast<QAbstractItemView*>(w);
    if (field && !buddies.contains(w) && w->accessibleName().isEmpty())
      problems << nameOf(w) + ": no buddy label and no accessible name";
    if (auto* b = qobject_cast<QAbstractButton*>(w); b && b->text().isEmpty() && w->accessibleName().isEmpty())
      problems << nameOf(w) + ": a button without text or accessible name";
  }
  return problems;
}

// Enabled, visible controls that take focus but that Tab never reaches from `root`.
inline QStringList unreachableByTab(QWidget* root) {
  QList<QWidget*> chain;
  QWidget* w = root;
  for (int guard = 0; guard < 2000; ++guard) {
    w = w->nextInFocusChain();
    if (w == root) break;
    chain << w;
  }
  QStringList problems;
  for (QWidget* c : root->findChildren<QWidget*>())
    if (c->isVisibleTo(root) && c->isEnabled() && (c->focusPolicy() & Qt::TabFocus) && !c->focusProxy() &&
        !chain.contains(c))
      problems << nameOf(c) + ": not in the Tab order";
  return problems;
}

}  // namespace keyboard
