// The palette driven as a user drives it: the filter, the rows and their values,
// editing with the real editors, one undo step per change, refusals, and the
// hosting of a module's property with an editor and a picture of its own.
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>
#include <QTreeView>

#include "drawings/OdDbDimension.h"
#include "drawings/OdDbGeometry.h"
#include "drawings/OdDbLeader.h"
#include "host/HostApDocManager.h"
#include "host/HostGeneralProperties.h"
#include "hostgui/HostPalette.h"
#include "hostgui/HostPaletteModel.h"
#include "palette/PaletteTests.h"

namespace {

QString qs(const OdString& s) { return QString::fromStdWString(s.str()); }

// A module's property as the palette meets it: it serves one class, keeps its
// value in itself, and may give an editor and a picture of its own.
class FakeProperty : public IOdProperty {
public:
  FakeProperty(const QString& name, const OdRxClass* cls) : m_name(name), m_cls(cls) {}
  OdString name() const override { return OdString(m_name.toStdWString()); }
  bool appliesTo(const OdDbObject& object) const override { return object.isKindOf(m_cls); }
  std::unique_ptr<IXREditableProperty> createEditable(const OdDbObjectIdArray& selection) override;

  QString value = "one";
  bool ownEditor = false;
  bool paints = false;
  int paintCount = 0;

private:
  QString m_name;
  const OdRxClass* m_cls;
};

class FakeEditable : public IXREditableProperty {
public:
  explicit FakeEditable(FakeProperty* p) : m_p(p) {}
  HostPropState state() const override { return HostPropState::kSame; }
  OdString text() const override { return OdString(m_p->value.toStdWString()); }
  HostPropEditKind editKind() const override { return HostPropEditKind::kText; }
  HostResult setText(const OdString& text) override {
    m_p->value = qs(text);
    notifyChanged();
    return kHostOk;
  }
  QWidget* createEditor(QWidget* parent) override {
    if (!m_p->ownEditor) return nullptr;
    auto* button = new QPushButton("Pick", parent);
    button->setObjectName("ownEditor");
    QObject::connect(button, &QPushButton::clicked, [this] { setText(L"picked"); });
    return button;
  }
  bool paintValue(QPainter* painter, const QRect& rect) const override {
    if (!m_p->paints) return false;
    ++m_p->paintCount;
    painter->fillRect(rect, Qt::magenta);
    return true;
  }

private:
  FakeProperty* m_p;
};

std::unique_ptr<IXREditableProperty> FakeProperty::createEditable(const OdDbObjectIdArray& selection) {
  for (const auto& id : selection)
    if (auto o = id.openObject(); o && appliesTo(*o)) return std::make_unique<FakeEditable>(this);
  return nullptr;
}

QStringList comboTexts(const QComboBox* combo) {
  QStringList texts;
  for (int i = 0; i < combo->count(); ++i) texts << combo->itemText(i);
  return texts;
}

QStringList childTexts(const QAbstractItemModel* model, const QModelIndex& parent) {
  QStringList texts;
  for (int r = 0; r < model->rowCount(parent); ++r) texts << model->index(r, 0, parent).data().toString();
  return texts;
}

}  // namespace

class PaletteTest : public QObject {
  Q_OBJECT

  OdDbDatabasePtr m_db;
  std::unique_ptr<HostApDocument> m_doc;
  IOdPropertyManager* m_manager = nullptr;
  std::unique_ptr<HostPalette> m_palette;
  OdDbObjectIdArray m_rotated, m_lines, m_leader;
  OdDbObjectIdArray m_selection;  // rotated, line, rotated, leader, rotated, line

  HostPaletteModel* model() const { return m_palette->model(); }
  QModelIndex cell(const QString& category, const QString& label,
                   int column = HostPaletteModel::kValueColumn) const {
    return model()->find(category, label, column);
  }
  QString value(const QString& label) const { return cell("General", label).data().toString(); }

  // Colour indices in the order of m_selection.
  QList<int> colours() const {
    QList<int> out;
    for (const auto& id : m_selection) out << odOpen<OdDbEntity>(id)->colorIndex();
    return out;
  }

  // The selection on layer Notes, in red but for its first line in blue, as one
  // step named "setup", so that the palette's step is the only one after it.
  void prepareEntities() {
    m_db->beginUndoGroup(L"setup");
    for (const auto& id : m_selection) {
      auto e = odOpen<OdDbEntity>(id, OdDb::kForWrite);
      e->setLayer(L"Notes");
      e->setColorIndex(id == m_lines[0] ? 5 : 1);
    }
    m_db->endUndoGroup();
  }

  // Starts editing the value of `label` from the keyboard, as a user does.
  QWidget* openEditor(const QModelIndex& valueCell, Qt::Key key = Qt::Key_F2) {
    QTreeView* view = m_palette->view();
    view->setFocus();
    view->setCurrentIndex(valueCell.siblingAtColumn(HostPaletteModel::kLabelColumn));
    QTest::keyClick(view, key);
    return view->indexWidget(valueCell);
  }

private slots:
  void init() {
    m_db = loadSample();
    m_doc = std::make_unique<HostApDocument>(m_db);
    QVERIFY(m_doc->getPropManager(&m_manager));
    hostRegisterGeneralProperties(m_manager);
    m_rotated = sampleEntities(*m_db, OdDbRotatedDimension::desc(), 3);
    m_lines = sampleEntities(*m_db, OdDbLine::desc(), 2);
    m_leader = sampleEntities(*m_db, OdDbLeader::desc(), 1);
    QCOMPARE(m_rotated.size() + m_lines.size() + m_leader.size(), size_t(6));
    m_selection = {m_rotated[0], m_lines[0], m_rotated[1], m_leader[0], m_rotated[2], m_lines[1]};
    m_palette = std::make_unique<HostPalette>();
    m_palette->resize(360, 420);
    m_palette->setDocument(m_doc.get());
    m_palette->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_palette.get()));
  }

  void cleanup() {
    m_palette.reset();
    m_doc.reset();
    m_db = OdDbDatabasePtr();
  }

  void filterListsKindsWithCounts() {
    QComboBox* filter = m_palette->filterCombo();
    QCOMPARE(comboTexts(filter), QStringList{"No selection"});
    QCOMPARE(model()->rowCount(), 0);
    m_palette->setSelection(m_selection);
    QCOMPARE(comboTexts(filter),
             (QStringList{"All (6)", "Rotated Dimension (3)", "Line (2)", "Leader (1)"}));
    QCOMPARE(filter->currentIndex(), 0);
    // The filter is found from its label's shortcut.
    auto* label = m_palette->findChild<QLabel*>();
    QVERIFY(label && label->buddy() == filter);
    QVERIFY(label->text().contains('&'));
  }

  void rowsShowCommonValueAndBlankWhenValuesDiffer() {
    prepareEntities();
    m_palette->setSelection(m_selection);
    QCOMPARE(childTexts(model(), model()->index(0, 0)),
             (QStringList{"Color", "Layer", "Linetype", "Lineweight", "Linetype scale"}));
    QCOMPARE(value("Layer"), QString("Notes"));
    QCOMPARE(cell("General", "Layer").data(Qt::AccessibleTextRole).toString(), QString("Layer: Notes"));
    QCOMPARE(value("Color"), QString());
    QCOMPARE(cell("General", "Color").data(HostPaletteModel::kStateRole).toInt(), int(HostPropState::kVaries));
    QCOMPARE(cell("General", "Color").data(Qt::AccessibleTextRole).toString(), QString("Color: varies"));
  }

  void filterNarrowsTheRows() {
    prepareEntities();
    FakeProperty linesOnly("Made Up.Lines only", OdDbLine::desc());
    m_manager->addProperty(&linesOnly);
    m_palette->setSelection(m_selection);
    QVERIFY(cell("Made Up", "Lines only").isValid());

    // Chosen from the keyboard: the last entry is the leader alone.
    QComboBox* filter = m_palette->filterCombo();
    filter->setFocus();
    QTest::keyClick(filter, Qt::Key_End);
    QCOMPARE(filter->currentText(), QString("Leader (1)"));
    QVERIFY(!cell("Made Up", "Lines only").isValid());
    QCOMPARE(value("Color"), QString("red"));

    // A new selection that still holds a leader keeps the filter on it.
    m_palette->setSelection({m_lines[0], m_leader[0]});
    QCOMPARE(filter->currentText(), QString("Leader (1)"));
    m_palette->setSelection({m_lines[0]});
    QCOMPARE(filter->currentText(), QString("All (1)"));
    QCOMPARE(value("Color"), QString("blue"));
    m_manager->removeProperty(&linesOnly);
  }

  void comboEditorWritesEveryEntityAsOneStep() {
    prepareEntities();
    const QList<int> before = colours();
    m_palette->setSelection(m_selection);
    QSignalSpy changed(m_palette.get(), &HostPalette::drawingChanged);

    const QModelIndex colour = cell("General", "Color");
    auto* combo = qobject_cast<QComboBox*>(openEditor(colour));
    QVERIFY(combo);
    QCOMPARE(combo->currentIndex(), -1);  // the values vary
    QCOMPARE(combo->itemText(0), QString("ByLayer"));
    // Moving through the closed list writes nothing until Enter.
    const uint64_t changes = m_db->changeCount();
    QTest::keyClick(combo, Qt::Key_Down);
    QTest::keyClicks(combo, "blu");
    QCOMPARE(combo->currentText(), QString("blue"));
    if (qEnvironmentVariableIsSet("PALETTE_GRAB_DIR"))
      m_palette->grab().save(qEnvironmentVariable("PALETTE_GRAB_DIR") + "/palette_editing.png");
    QCOMPARE(m_db->changeCount(), changes);
    QTest::keyClick(combo, Qt::Key_Return);
    QCoreApplication::processEvents();  // the delegate commits once the key is handled

    QCOMPARE(colours(), QList<int>(6, 5));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(value("Color"), QString("blue"));
    QVERIFY(!m_palette->view()->indexWidget(colour));
    QCOMPARE(qs(m_db->undoGroupName()), QString("OPM_CHGPROP"));

    m_db->undo();
    QCOMPARE(qs(m_db->undoGroupName()), QString("setup"));
    QCOMPARE(colours(), before);
    m_palette->refresh();
    QCOMPARE(value("Color"), QString());
  }

  void refusedValuesLeaveTheDrawingUnchanged() {
    prepareEntities();
    m_palette->setSelection(m_selection);
    const uint64_t changes = m_db->changeCount();

    QVERIFY(!model()->setData(cell("General", "Layer"), "NoSuchLayer"));
    QVERIFY2(m_palette->message().contains("NoSuchLayer"), qPrintable(m_palette->message()));
    QCOMPARE(value("Layer"), QString("Notes"));
    QCOMPARE(m_db->changeCount(), changes);

    // Free text through the line edit, opened with Enter.
    const QModelIndex scale = cell("General", "Linetype scale");
    const QString old = scale.data().toString();
    auto* edit = qobject_cast<QLineEdit*>(openEditor(scale, Qt::Key_Return));
    QVERIFY(edit);
    edit->selectAll();
    QTest::keyClicks(edit, "-1");
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();
    QVERIFY2(m_palette->message().contains("-1"), qPrintable(m_palette->message()));
    QCOMPARE(scale.data().toString(), old);
    QCOMPARE(m_db->changeCount(), changes);

    // Escape leaves the value as it was.
    edit = qobject_cast<QLineEdit*>(openEditor(scale));
    QVERIFY(edit);
    edit->selectAll();
    QTest::keyClicks(edit, "7");
    QTest::keyClick(edit, Qt::Key_Escape);
    QCoreApplication::processEvents();
    QVERIFY(!m_palette->view()->indexWidget(scale));
    QCOMPARE(m_db->changeCount(), changes);

    // A good value is written and the message goes.
    edit = qobject_cast<QLineEdit*>(openEditor(scale));
    edit->selectAll();
    QTest::keyClicks(edit, "2");
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(m_palette->message(), QString());
    for (const auto& id : m_selection) QCOMPARE(odOpen<OdDbEntity>(id)->linetypeScale(), 2.0);
  }

  void hostsAPropertysOwnEditorAndPicture() {
    FakeProperty swatch("Made Up.Swatch", OdDbDimension::desc());
    swatch.ownEditor = true;
    swatch.paints = true;
    m_manager->addProperty(&swatch);
    m_palette->setSelection(m_selection);
    const QModelIndex index = cell("Made Up", "Swatch");
    QVERIFY(index.isValid());

    const QImage image = m_palette->grab().toImage();
    QVERIFY(swatch.paintCount > 0);
    QTreeView* view = m_palette->view();
    const QPoint centre = view->viewport()->mapTo(m_palette.get(), view->visualRect(index).center());
    QCOMPARE(image.pixelColor(centre * image.devicePixelRatio()), QColor(Qt::magenta));

    QSignalSpy changed(m_palette.get(), &HostPalette::drawingChanged);
    QWidget* editor = openEditor(index);
    QVERIFY(editor);
    QCOMPARE(editor->objectName(), QString("ownEditor"));
    QTest::mouseClick(editor, Qt::LeftButton);
    QCOMPARE(swatch.value, QString("picked"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(index.data(Qt::AccessibleTextRole).toString(), QString("Swatch: picked"));
    m_manager->removeProperty(&swatch);
  }

  void categoriesFollowRegistrationAndNamesShareARow() {
    // A manager of its own, so that the order is this test's alone.
    HostApDocument doc(m_db);
    IOdPropertyManager* manager = nullptr;
    QVERIFY(doc.getPropManager(&manager));
    FakeProperty zetaLines("Zeta.A", OdDbLine::desc()), zetaLeader("Zeta.A", OdDbLeader::desc());
    FakeProperty alpha("Alpha.B", OdDbEntity::desc()), zetaC("Zeta.C", OdDbEntity::desc());
    manager->addProperty(&zetaLines);
    hostRegisterGeneralProperties(manager);
    manager->addProperty(&alpha);
    manager->addProperty(&zetaLeader);
    manager->addProperty(&zetaC);
    m_palette->setDocument(&doc);
    m_palette->setSelection(m_selection);
    QCOMPARE(childTexts(model(), QModelIndex()), (QStringList{"Zeta", "General", "Alpha"}));
    QCOMPARE(childTexts(model(), model()->index(0, 0)), (QStringList{"A", "C"}));

    // One row for both classes: a value either way, blank when they differ, a
    // write to both.
    QCOMPARE(cell("Zeta", "A").data().toString(), QString("one"));
    zetaLeader.value = "two";
    m_palette->refresh();
    QCOMPARE(cell("Zeta", "A").data().toString(), QString());
    QSignalSpy changed(m_palette.get(), &HostPalette::drawingChanged);
    QVERIFY(model()->setData(cell("Zeta", "A"), "three"));
    QCOMPARE(changed.count(), 1);  // one change for the user, however many classes
    QCOMPARE(zetaLines.value, QString("three"));
    QCOMPARE(zetaLeader.value, QString("three"));
    QCOMPARE(cell("Zeta", "A").data().toString(), QString("three"));

    // Collapsed by the user, a category stays so over a rebuild.
    m_palette->view()->collapse(model()->index(0, 0));
    m_palette->refresh();
    QVERIFY(!m_palette->view()->isExpanded(model()->index(0, 0)));
    QVERIFY(m_palette->view()->isExpanded(model()->index(1, 0)));
    m_palette->setDocument(nullptr);
  }

  // Russian texts in place, and the label column as wide as its longest label.
  void russianTextsFit() {
    prepareEntities();
    QTranslator translator;
    QVERIFY(translator.load(":/i18n/palette_ru.qm"));
    QCoreApplication::installTranslator(&translator);
    QCoreApplication::processEvents();  // the language change reaches the palette
    m_palette->setSelection(m_selection);
    QCOMPARE(m_palette->filterCombo()->itemText(1), QString("Повёрнутый размер (3)"));
    QCOMPARE(childTexts(model(), QModelIndex()), QStringList{"Общие"});
    QTreeView* view = m_palette->view();
    const QFontMetrics metrics(view->font());
    int widest = 0;
    for (const QString& label : childTexts(model(), model()->index(0, 0)))
      widest = std::max(widest, metrics.horizontalAdvance(label));
    QVERIFY(view->header()->sectionSize(0) >= widest + view->indentation());
    auto* label = m_palette->findChild<QLabel*>();
    QCoreApplication::processEvents();  // the layout follows the new texts
    QVERIFY(label->width() >= label->sizeHint().width());
    // The host's own refusals come in the palette's language too.
    QVERIFY(!model()->setData(cell("Общие", "Слой"), "Нет"));
    QVERIFY2(m_palette->message().startsWith("В чертеже нет слоя «Нет»"), qPrintable(m_palette->message()));
    if (qEnvironmentVariableIsSet("PALETTE_GRAB_DIR"))
      m_palette->grab().save(qEnvironmentVariable("PALETTE_GRAB_DIR") + "/palette_ru.png");
    QCoreApplication::removeTranslator(&translator);
    QCoreApplication::processEvents();
    QCOMPARE(m_palette->filterCombo()->itemText(1), QString("Rotated Dimension (3)"));
    if (qEnvironmentVariableIsSet("PALETTE_GRAB_DIR"))
      m_palette->grab().save(qEnvironmentVariable("PALETTE_GRAB_DIR") + "/palette_en.png");
  }
};

QObject* makePaletteTest() { return new PaletteTest; }

#include "PaletteTest.moc"
