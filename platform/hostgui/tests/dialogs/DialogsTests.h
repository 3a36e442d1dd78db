// Entry points of the test classes, and what they share.
#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>

int runColorTests(int argc, char** argv);
int runLinetypeTests(int argc, char** argv);
int runArrowTests(int argc, char** argv);
int runTextStyleTests(int argc, char** argv);
int runKeyboardTests(int argc, char** argv);

// Runs `act` on the modal dialog of type T once it is open (the code under test
// runs its own exec()).
template <class T>
void whenOpen(std::function<void(T*)> act) {
  QTimer::singleShot(0, [act] {
    T* dialog = qobject_cast<T*>(QApplication::activeModalWidget());
    if (!dialog) {
      for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* d = qobject_cast<T*>(w); d && d->isVisible()) dialog = d;
    }
    if (dialog) act(dialog);
  });
}
