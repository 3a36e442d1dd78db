// The palette's tests: the host's general properties without widgets, then the
// palette driven through its widgets, each a QtTest class of its own.
#include <QApplication>
#include <QTest>

#include "palette/PaletteTests.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  int failed = 0;
  for (auto make : {makeGeneralPropertiesTest, makePaletteTest}) {
    std::unique_ptr<QObject> test(make());
    failed += QTest::qExec(test.get(), argc, argv);
  }
  return failed;
}
