// The text style dialog: the drawing's styles with their font, height, width
// factor and oblique angle; new, rename, delete. The widgets only bind
// HostTextStyles, which makes each change one undo step.
#pragma once

#include <QDialog>
#include <functional>

#include "HostTextStyles.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

class HostTextStyleDialog : public QDialog {
  Q_OBJECT

public:
  HostTextStyleDialog(OdDbDatabase* db, const QString& selected, QWidget* parent = nullptr);
  QString currentStyle() const;

  // Asks for a name with QInputDialog; tests answer through this hook instead.
  std::function<QString(const QString& title, const QString& label, const QString& suggestion)> askName;
  // Reports a refusal; a message box unless replaced (tests collect the texts).
  std::function<void(const QString& text)> report;
  // Asks Yes or No before a style is deleted.
  std::function<bool(const QString& text)> confirm;

  void newStyle();
  void renameStyle();
  void deleteStyle();
  // Writes the edits into the style; false (nothing written) when a value is bad.
  bool applyChanges();

protected:
  void done(int result) override;

private:
  void fillStyles(const QString& select);
  void showStyle();
  bool isDirty() const;
  void updateButtons();

  HostTextStyles m_styles;
  bool m_canHoldTypeface;
  QString m_shown;  // the style the fields show
  QListWidget* m_list;
  QComboBox* m_font;
  QLineEdit* m_height;
  QLineEdit* m_width;
  QLineEdit* m_oblique;
  QLabel* m_sample;
  QPushButton* m_new;
  QPushButton* m_rename;
  QPushButton* m_delete;
  QPushButton* m_apply;
  QPushButton* m_close;
};
