// The common image list, message boxes and the dialog localiser.
#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QTabWidget>

#include "host/HostTranslation.h"
#include "hostgui/HostGuiServices.h"

namespace {

// ---- images, painted so they follow the palette and need no files

// A small "style" sheet: a page with a dimension line across it.
void paintStyle(QPainter& p) {
  p.setPen(QPen(QColor(70, 70, 70), 1));
  p.setBrush(QColor(250, 250, 250));
  p.drawRect(QRectF(1.5, 1.5, 11, 13));
  p.setPen(QPen(QColor(30, 80, 160), 1));
  p.drawLine(QPointF(3.5, 8.5), QPointF(10.5, 8.5));
  p.drawLine(QPointF(3.5, 5.5), QPointF(3.5, 11.5));
  p.drawLine(QPointF(10.5, 5.5), QPointF(10.5, 11.5));
  p.setBrush(QColor(30, 80, 160));
  p.drawPolygon(QPolygonF({QPointF(3.5, 8.5), QPointF(5.5, 7.5), QPointF(5.5, 9.5)}));
  p.drawPolygon(QPolygonF({QPointF(10.5, 8.5), QPointF(8.5, 7.5), QPointF(8.5, 9.5)}));
}

QPixmap paintImage(HostImage image) {
  QPixmap pm(16, 16);
  pm.fill(Qt::transparent);
  QPainter p(&pm);
  p.setRenderHint(QPainter::Antialiasing);
  switch (image) {
    case HostImage::kStylePlain: paintStyle(p); break;
    case HostImage::kStyleCurrent:
      paintStyle(p);
      p.setPen(QPen(QColor(0, 150, 40), 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
      p.drawPolyline(QPolygonF({QPointF(7.5, 11), QPointF(10, 14), QPointF(15, 7)}));
      break;
    case HostImage::kStyleAnnotative: {
      paintStyle(p);
      // The annotation scale mark: a triangle with a baseline under it, bottom right.
      p.setPen(QPen(QColor(20, 20, 20), 1));
      p.setBrush(QColor(255, 255, 255));
      QPainterPath path;
      path.moveTo(8.5, 14.5);
      path.lineTo(12, 7.5);
      path.lineTo(15.5, 14.5);
      path.closeSubpath();
      p.drawPath(path);
      p.setBrush(QColor(20, 20, 20));
      p.drawPolygon(QPolygonF({QPointF(10.5, 13.5), QPointF(12, 10.5), QPointF(13.5, 13.5)}));
      break;
    }
    case HostImage::kStyleOverrides:
      paintStyle(p);
      // A pencil stroke across: the style as changed for now.
      p.setPen(QPen(QColor(200, 120, 0), 2.5, Qt::SolidLine, Qt::RoundCap));
      p.drawLine(QPointF(8, 14), QPointF(14.5, 7.5));
      p.setPen(QPen(QColor(60, 60, 60), 1.5, Qt::SolidLine, Qt::RoundCap));
      p.drawLine(QPointF(7, 15), QPointF(8, 14));
      break;
    case HostImage::kWarning: {
      p.setPen(QPen(QColor(120, 80, 0), 1));
      p.setBrush(QColor(250, 200, 30));
      p.drawPolygon(QPolygonF({QPointF(8, 1), QPointF(15, 14.5), QPointF(1, 14.5)}));
      p.setPen(QPen(Qt::black, 2, Qt::SolidLine, Qt::RoundCap));
      p.drawLine(QPointF(8, 5.5), QPointF(8, 9.5));
      p.drawPoint(QPointF(8, 12.3));
      break;
    }
    case HostImage::kInformation:
      p.setPen(QPen(QColor(20, 60, 140), 1));
      p.setBrush(QColor(40, 110, 210));
      p.drawEllipse(QRectF(1, 1, 14, 14));
      p.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
      p.drawPoint(QPointF(8, 4.8));
      p.drawLine(QPointF(8, 7.5), QPointF(8, 12));
      break;
  }
  return pm;
}

QString title(const QString& t) {
  return t.isEmpty() ? QApplication::applicationDisplayName().isEmpty() ? QApplication::applicationName()
                                                                        : QApplication::applicationDisplayName()
                     : t;
}

// Through the module's string tables, with the accelerator put back where the
// translation does not say where it goes.
QString localize(const QString& text) {
  if (text.isEmpty()) return text;
  const OdString out = Supp_Translate(nullptr, text.toStdWString().c_str());
  QString t = QString::fromStdWString(out.str());
  if (t == text) {
    // A table may hold the text without its accelerator.
    const int amp = text.indexOf(QLatin1Char('&'));
    if (amp < 0 || amp + 1 >= text.size()) return text;
    QString plain = text;
    plain.remove(amp, 1);
    const QString tp = QString::fromStdWString(Supp_Translate(nullptr, plain.toStdWString().c_str()).str());
    if (tp == plain) return text;
    // Mark the same letter in the translation when it has it, else its first letter.
    const QChar key = text.at(amp + 1);
    int at = tp.indexOf(key, 0, Qt::CaseInsensitive);
    if (at < 0) at = 0;
    return tp.left(at) + QLatin1Char('&') + tp.mid(at);
  }
  return t;
}

}  // namespace

QIcon hostImage(HostImage image) {
  static QHash<int, QIcon> cache;
  auto it = cache.find(static_cast<int>(image));
  if (it != cache.end()) return *it;
  return *cache.insert(static_cast<int>(image), QIcon(paintImage(image)));
}

bool hostYesNoBox(QWidget* parent, const QString& text, const QString& caption) {
  QMessageBox box(QMessageBox::Question, title(caption), text, QMessageBox::NoButton, parent);
  QPushButton* yes = box.addButton(QCoreApplication::translate("HostMessages", "&Yes"), QMessageBox::YesRole);
  QPushButton* no = box.addButton(QCoreApplication::translate("HostMessages", "&No"), QMessageBox::NoRole);
  box.setDefaultButton(yes);
  box.setEscapeButton(no);
  box.exec();
  return box.clickedButton() == yes;
}

void hostMessageBox(QWidget* parent, const QString& text, const QString& caption) {
  QMessageBox box(QMessageBox::Information, title(caption), text, QMessageBox::NoButton, parent);
  box.addButton(QCoreApplication::translate("HostMessages", "OK"), QMessageBox::AcceptRole);
  box.exec();
}

void hostLocalizeDialog(QWidget* dialog) {
  if (!dialog) return;
  QList<QWidget*> widgets = dialog->findChildren<QWidget*>();
  widgets.prepend(dialog);
  dialog->setWindowTitle(localize(dialog->windowTitle()));
  for (QWidget* w : widgets) {
    if (!w->toolTip().isEmpty()) w->setToolTip(localize(w->toolTip()));
    if (auto* l = qobject_cast<QLabel*>(w)) l->setText(localize(l->text()));
    else if (auto* b = qobject_cast<QAbstractButton*>(w)) b->setText(localize(b->text()));
    else if (auto* g = qobject_cast<QGroupBox*>(w)) g->setTitle(localize(g->title()));
    else if (auto* t = qobject_cast<QTabWidget*>(w))
      for (int i = 0; i < t->count(); ++i) {
        t->setTabText(i, localize(t->tabText(i)));
        if (!t->tabToolTip(i).isEmpty()) t->setTabToolTip(i, localize(t->tabToolTip(i)));
      }
    else if (auto* c = qobject_cast<QComboBox*>(w))
      for (int i = 0; i < c->count(); ++i) c->setItemText(i, localize(c->itemText(i)));
  }
}
