// Runs every test class of the drawing view in one program.
#include <QApplication>
#include <QTest>

int runHostPaintTest(int argc, char** argv);
int runHostViewSceneTest(int argc, char** argv);
int runHostDrawingViewTest(int argc, char** argv);

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  int failed = 0;
  failed += runHostPaintTest(argc, argv);
  failed += runHostViewSceneTest(argc, argv);
  failed += runHostDrawingViewTest(argc, argv);
  return failed;
}
