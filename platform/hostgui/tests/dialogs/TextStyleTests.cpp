#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <numbers>

#include "DialogsTests.h"
#include "dialogs/HostTextStyleDialog.h"
#include "drawings/OdDbText.h"
#include "host/HostCommands.h"
#include "host/HostServices.h"
#include "host/HostTranslation.h"
#include "hostgui/HostGuiServices.h"

namespace {
using Field = HostTextStyleValues::Field;

QPushButton* button(QWidget* w, const QString& text) {
  for (auto* b : w->findChildren<QPushButton*>())
    if (b->text().remove('&') == text) return b;
  return nullptr;
}

QLineEdit* editOf(QWidget* w, const QString& label) {
  for (auto* l : w->findChildren<QLabel*>())
    if (l->text().remove('&') == label) return qobject_cast<QLineEdit*>(l->buddy());
  return nullptr;
}

QStringList listed(HostTextStyleDialog& d) {
  QStringList out;
  auto* list = d.findChild<QListWidget*>();
  for (int i = 0; i < list->count(); ++i) out << list->item(i)->text();
  return out;
}

void select(HostTextStyleDialog& d, const QString& name) {
  auto* list = d.findChild<QListWidget*>();
  list->setCurrentItem(list->findItems(name, Qt::MatchExactly).value(0));
}

// A dialog whose questions are answered by the test and whose messages are kept.
struct Harness {
  OdDbDatabasePtr db = OdDbDatabase::createNew();
  HostTextStyleDialog dialog{db.get(), "Standard"};
  QStringList reports;
  QString answer;
  Harness() {
    dialog.askName = [this](const QString&, const QString&, const QString&) { return answer; };
    dialog.report = [this](const QString& text) { reports << text; };
    dialog.confirm = [](const QString&) { return true; };
  }
};
}  // namespace

class TextStyleTests : public QObject {
  Q_OBJECT

private slots:
  void values_data() {
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<double>("value");
    QTest::newRow("height 0") << int(Field::Height) << "0" << true << 0.0;
    QTest::newRow("height 2.5") << int(Field::Height) << " 2.5 " << true << 2.5;
    QTest::newRow("height negative") << int(Field::Height) << "-1" << false << 0.0;
    QTest::newRow("height text") << int(Field::Height) << "abc" << false << 0.0;
    QTest::newRow("height empty") << int(Field::Height) << "" << false << 0.0;
    QTest::newRow("width 1") << int(Field::WidthFactor) << "1" << true << 1.0;
    QTest::newRow("width lowest") << int(Field::WidthFactor) << "0.01" << true << 0.01;
    QTest::newRow("width 0") << int(Field::WidthFactor) << "0" << false << 0.0;
    QTest::newRow("width too wide") << int(Field::WidthFactor) << "100.5" << false << 0.0;
    QTest::newRow("oblique -85") << int(Field::ObliqueDegrees) << "-85" << true << -85.0;
    QTest::newRow("oblique 86") << int(Field::ObliqueDegrees) << "86" << false << 0.0;
    QTest::newRow("oblique inf") << int(Field::ObliqueDegrees) << "inf" << false << 0.0;
  }
  void values() {
    QFETCH(int, field);
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(double, value);
    const auto r = HostTextStyleValues::parse(Field(field), text);
    QCOMPARE(r.value.has_value(), ok);
    if (ok) {
      QCOMPARE(*r.value, value);
      QCOMPARE(*HostTextStyleValues::parse(Field(field), HostTextStyleValues::format(Field(field), value)).value, value);
    } else {
      QVERIFY(!r.error.isEmpty());
    }
  }

  void newAndRenameCheckTheName() {
    Harness h;
    h.answer = "Notes";
    button(&h.dialog, "New...")->click();
    QVERIFY(listed(h.dialog).contains("Notes"));
    QCOMPARE(h.dialog.currentStyle(), QString("Notes"));
    QCOMPARE(QString::fromStdWString(h.db->undoGroupName().str()), QString("STYLE"));
    QVERIFY(h.reports.isEmpty());
    // Refused names, each with its reason; nothing is added.
    const QStringList bad = {"standard", "a<b", "x|y"};
    for (const QString& name : bad) {
      h.answer = name;
      button(&h.dialog, "New...")->click();
    }
    QCOMPARE(h.reports.size(), bad.size());
    QVERIFY(h.reports[0].contains("exists"));
    QCOMPARE(listed(h.dialog).size(), 2);
    h.reports.clear();

    h.answer = "Labels";
    button(&h.dialog, "Rename...")->click();
    QVERIFY(listed(h.dialog).contains("Labels"));
    QVERIFY(!listed(h.dialog).contains("Notes"));
    h.answer = "Standard";
    button(&h.dialog, "Rename...")->click();
    QCOMPARE(h.reports.size(), 1);
    // Standard can be neither renamed nor deleted.
    select(h.dialog, "Standard");
    QCOMPARE(h.dialog.currentStyle(), QString("Standard"));
    QVERIFY(!button(&h.dialog, "Rename...")->isEnabled());
    QVERIFY(!button(&h.dialog, "Delete")->isEnabled());
    QVERIFY(!HostTextStyles(h.db.get()).whyNotDelete("Standard").isEmpty());
    QVERIFY(!HostTextStyles(h.db.get()).rename("Standard", "Other").isEmpty());
    h.db->undo();  // the rename, in one step
    QVERIFY(!HostTextStyles(h.db.get()).idOf("Notes").isNull());
    QVERIFY(HostTextStyles(h.db.get()).idOf("Labels").isNull());
  }

  void deleteRefusesStylesInUse() {
    Harness h;
    HostTextStyles styles(h.db.get());
    QVERIFY(styles.create("Used", "").isEmpty());
    QVERIFY(styles.create("Spare", "").isEmpty());
    QVERIFY(styles.create("Current", "").isEmpty());
    h.db->setHeaderString("$TEXTSTYLE", 7, L"Current");
    auto text = OdDbText::createFor(*h.db);
    text->setTextString(L"x");
    text->setTextStyle(styles.idOf("Used"));
    odOpen<OdDbBlockTableRecord>(h.db->getModelSpaceId(), OdDb::kForWrite)->appendOdDbEntity(text.get());
    HostTextStyleDialog d(h.db.get(), "Used");
    QStringList reports;
    d.report = [&](const QString& t) { reports << t; };
    d.confirm = [](const QString&) { return true; };
    button(&d, "Delete")->click();
    QCOMPARE(reports.size(), 1);
    QVERIFY(reports[0].contains("used"));
    select(d, "Current");
    button(&d, "Delete")->click();
    QCOMPARE(reports.size(), 2);
    QVERIFY(reports[1].contains("current"));
    select(d, "Spare");
    button(&d, "Delete")->click();
    QCOMPARE(reports.size(), 2);
    QVERIFY(!listed(d).contains("Spare"));
    QVERIFY(listed(d).contains("Used"));
    QVERIFY(styles.idOf("Spare").isNull());
    h.db->undo();
    QVERIFY(!styles.idOf("Spare").isNull());
  }

  void editsApplyAsOneStepAndBadValuesAreRefused() {
    Harness h;
    HostTextStyleDialog& d = h.dialog;
    QLineEdit* height = editOf(&d, "Height:");
    QLineEdit* width = editOf(&d, "Width factor:");
    QLineEdit* oblique = editOf(&d, "Oblique angle:");
    QVERIFY(height && width && oblique);
    const QString oldHeight = height->text();
    height->setText("abc");
    button(&d, "Apply")->click();
    QCOMPARE(h.reports.size(), 1);
    QCOMPARE(height->text(), oldHeight);  // the old value is back
    const bool hadUndo = h.db->hasUndo();
    width->setText("0.75");
    oblique->setText("15");
    auto* font = d.findChild<QComboBox*>();
    const bool haveDejaVu = font->findText("DejaVu Sans") >= 0;
    if (haveDejaVu) font->setCurrentText("DejaVu Sans");
    button(&d, "Apply")->click();
    QCOMPARE(h.reports.size(), 1);
    const OdDbTextStyleData s = HostTextStyles(h.db.get()).data("Standard");
    QCOMPARE(s.widthFactor, 0.75);
    QVERIFY(std::abs(s.oblique - 15 * std::numbers::pi / 180) < 1e-12);
    if (haveDejaVu) {
      QCOMPARE(QString::fromStdWString(s.fontFile.str()), QString("DejaVuSans.ttf"));
      QCOMPARE(QString::fromStdWString(s.typeface.str()), QString("DejaVu Sans"));
    }
    QVERIFY(!button(&d, "Apply")->isEnabled());
    // One step takes all of it back.
    h.db->undo();
    QCOMPARE(HostTextStyles(h.db.get()).data("Standard").widthFactor, 1.0);
    QCOMPARE(h.db->hasUndo(), hadUndo);
    // What the dialog wrote reads back from a saved file.
    h.db->redo();
    const OdDbDatabasePtr back = OdDbDatabase::readDxf(h.db->toDxf());
    QVERIFY(HostTextStyles(back.get()).data("Standard") == s);
  }

  void stylesReadBackFromSavedFilesOfEachVersion_data() {
    QTest::addColumn<int>("version");
    QTest::newRow("R12") << int(DxfVersion::R12);
    QTest::newRow("R14") << int(DxfVersion::R14);
    QTest::newRow("R2000") << int(DxfVersion::R2000);
    QTest::newRow("R2018") << int(DxfVersion::R2018);
  }
  void stylesReadBackFromSavedFilesOfEachVersion() {
    QFETCH(int, version);
    OdDbDatabasePtr db = OdDbDatabase::createNew(static_cast<DxfVersion>(version));
    HostTextStyles styles(db.get());
    QVERIFY(styles.create("Labels", "Standard").isEmpty());
    OdDbTextStyleData d = styles.data("LABELS");  // older versions store the name upper-cased
    d.textSize = 3.5;
    d.widthFactor = 0.8;
    d.oblique = 0.25;
    d.generation = 2;
    d.flags = 4;
    const bool typeface = version >= int(DxfVersion::R2000);
    HostFontFiles::setFont(d, "Some Family", typeface);
    QVERIFY(styles.apply("Labels", d).isEmpty());
    const OdDbDatabasePtr back = OdDbDatabase::readDxf(db->toDxf());
    const OdDbTextStyleData got = HostTextStyles(back.get()).data("Labels");
    QCOMPARE(got.textSize, 3.5);
    QCOMPARE(got.widthFactor, 0.8);
    QVERIFY(std::abs(got.oblique - 0.25) < 1e-9);
    QCOMPARE(got.generation, 2);
    QCOMPARE(got.flags & 5, 4);
    QCOMPARE(QString::fromStdWString(got.typeface.str()), typeface ? QString("Some Family") : QString());
    // Without a typeface the family name is all that can name the font.
    QCOMPARE(QString::fromStdWString(got.fontFile.str()), typeface ? QString() : QString("Some Family"));
    QCOMPARE(QString::fromStdWString(HostTextStyles(back.get()).names().join(",").toStdWString()),
             version >= int(DxfVersion::R2000) ? QString("Standard,Labels") : QString("STANDARD,LABELS"));
  }

  void textPropsCommandOpensTheDialogOverItsCaller() {
    OdDbDatabasePtr db = OdDbDatabase::createNew();
    hostSetActiveDatabase(db.get());
    hostGuiRegisterCommands();
    QVERIFY(hostFindRegisteredCommand(L"HOST", L"TextPropsCmd"));
    QWidget caller;
    QWidget* parentSeen = nullptr;
    whenOpen<HostTextStyleDialog>([&](HostTextStyleDialog* d) {
      parentSeen = d->parentWidget();
      d->reject();
    });
    HostCommandParams params;
    params["HWND"] = static_cast<void*>(&caller);
    params["CMDDIA"] = int64_t(1);
    QCOMPARE(hostExecuteCommand(L"TextPropsCmd", params), kHostOk);
    QCOMPARE(parentSeen, &caller);
    hostSetActiveDatabase(nullptr);
  }

  void localiserTranslatesEveryKindOfText() {
    static int module = 0;
    hostRegisterStringTable(&module, [](const wchar_t*, const wchar_t* text, const std::string& language,
                                        std::wstring& out) {
      static const std::map<std::wstring, std::wstring> ru = {
          {L"Text Style", L"Текстовый стиль"}, {L"&Height:", L"&Высота:"}, {L"Name:", L"Имя:"},
          {L"Font", L"Шрифт"},   {L"Lines", L"Линии"},  {L"&Close", L"&Закрыть"}, {L"Closed", L"Замкнутая"},
          {L"Tip", L"Подсказка"}};
      if (language != "ru") return false;
      auto it = ru.find(text);
      if (it == ru.end()) return false;
      out = it->second;
      return true;
    });
    hostSetLanguage("ru");
    Supp_InitResTranslation(&module);
    hostSetLanguage("en");

    QDialog d;
    d.setWindowTitle("Text Style");
    auto* height = new QLabel("&Height:", &d);
    auto* name = new QLabel("&Name:", &d);
    auto* box = new QGroupBox("Font", &d);
    auto* tabs = new QTabWidget(&d);
    tabs->addTab(new QWidget, "Lines");
    auto* close = new QPushButton("&Close", &d);
    close->setToolTip("Tip");
    auto* combo = new QComboBox(&d);
    combo->addItems({"Closed", "Unknown"});
    auto* untouched = new QLabel("&Other:", &d);
    hostLocalizeDialog(&d);
    QCOMPARE(d.windowTitle(), QString("Текстовый стиль"));
    QCOMPARE(height->text(), QString("&Высота:"));
    QCOMPARE(name->text(), QString("&Имя:"));  // the table has it without its accelerator
    QCOMPARE(box->title(), QString("Шрифт"));
    QCOMPARE(tabs->tabText(0), QString("Линии"));
    QCOMPARE(close->text(), QString("&Закрыть"));
    QCOMPARE(close->toolTip(), QString("Подсказка"));
    QCOMPARE(combo->itemText(0), QString("Замкнутая"));
    QCOMPARE(combo->itemText(1), QString("Unknown"));
    QCOMPARE(untouched->text(), QString("&Other:"));
    hostDropStringTables(&module);
  }

  void messageBoxesAnswerYesAndNo() {
    for (bool yes : {true, false}) {
      whenOpen<QMessageBox>([yes](QMessageBox* box) {
        for (QAbstractButton* b : box->buttons())
          if (b->text().remove('&') == (yes ? "Yes" : "No")) b->click();
      });
      QCOMPARE(hostYesNoBox(nullptr, "Really?"), yes);
    }
  }
};

int runTextStyleTests(int argc, char** argv) {
  TextStyleTests t;
  return QTest::qExec(&t, argc, argv);
}

#include "TextStyleTests.moc"
