#include "drawings/OdDbSymUtil.h"

#include <gtest/gtest.h>

#include <string>

#include "drawings/OdDbDatabase.h"

namespace {

using OdDbSymUtil::validateSymbolName;

struct NameCase { std::wstring name; bool extended; bool allowBar; bool valid; };

std::string describe(const NameCase& c) {
  return "\"" + OdString(c.name).toUtf8() + "\" " + (c.extended ? "extended" : "R12-style") +
         (c.allowBar ? ", bar allowed" : "");
}

TEST(SymUtilTest, NameRulesOfBothKinds) {
  const NameCase cases[] = {
      // extended names; punctuation outside the forbidden 13 and inner spaces are fine
      {L"Dimensions 2.5 (ISO)", true, false, true}, {L"Standard$2", true, false, true},
      {L"#@!.{}[]~+%&'^-_$", true, false, true},    {L"Размеры Ü", true, false, true},
      {L"a  b", true, false, true},                 {L"", true, false, false},
      {L"   ", true, false, false},                 {L" a", true, false, false},
      {L"a ", true, false, false},                  {L"\u00A0a", true, false, false},
      {L"*D12", true, false, false},                {L"*Model_Space", true, false, false},
      {std::wstring(255, L'x'), true, false, true}, {std::wstring(256, L'x'), true, false, false},
      {std::wstring(255, L'\u044F'), true, false, true},  // characters, not bytes
      // vertical bar: dependent names only, between two parts
      {L"xref|Layer", true, true, true},   {L"xref|Layer", true, false, false}, {L"|Layer", true, true, false},
      {L"xref|", true, true, false},       {L"xref||Layer", true, true, false}, {L"XREF|LAYER", false, true, true},
      {L"XREF|LAYER", false, false, false},
      // R12-style names ("layer" is folded to upper case when stored)
      {L"LAYER_1-$", false, false, true},  {L"layer", false, false, true},
      {std::wstring(31, L'A'), false, false, true}, {std::wstring(32, L'A'), false, false, false},
      {L"", false, false, false},          {L"A B", false, false, false},
      {L"\u00C4", false, false, false},    {L"\u0416", false, false, false},
  };
  for (const NameCase& c : cases)
    EXPECT_EQ(validateSymbolName(c.name, c.allowBar, c.extended), c.valid ? eOk : eInvalidSymbolTableName)
        << describe(c);
}

TEST(SymUtilTest, EveryForbiddenCharacterFailsAnywhereInTheName) {
  std::wstring forbiddenExtended = L"<>/\\\":;?*|,=`";
  for (wchar_t c = 1; c < 0x20; ++c) forbiddenExtended += c;
  for (wchar_t c = 0x7F; c <= 0x9F; ++c) forbiddenExtended += c;
  for (wchar_t c : forbiddenExtended)
    for (const std::wstring& name : {std::wstring(1, c) + L"ab", L"a" + std::wstring(1, c) + L"b",
                                     L"ab" + std::wstring(1, c)})
      EXPECT_EQ(validateSymbolName(name, false, true), eInvalidSymbolTableName) << "U+" << std::hex << int(c);
  // Just past the control range is a printable character again.
  EXPECT_EQ(validateSymbolName(L"a\u00A1b", false, true), eOk);

  // R12-style: every printable ASCII character outside letters, digits, $ _ -.
  const std::wstring allowed = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789$_-";
  for (wchar_t c = 0x20; c < 0x7F; ++c) {
    const bool ok = allowed.find(c) != std::wstring::npos;
    EXPECT_EQ(validateSymbolName(L"A" + std::wstring(1, c) + L"B", false, false), ok ? eOk : eInvalidSymbolTableName)
        << "'" << char(c) << "'";
  }
}

TEST(SymUtilTest, TheDrawingDecidesWhichRulesApply) {
  const std::wstring longName(40, L'A');
  struct DbCase {
    DxfVersion version;
    int extnames;  // -1: as the new drawing has it
    bool extended;
  };
  const DbCase cases[] = {{DxfVersion::R12, -1, false}, {DxfVersion::R14, -1, false}, {DxfVersion::R2000, -1, true},
                          {DxfVersion::R2018, -1, true}, {DxfVersion::R2018, 0, false}};
  for (const DbCase& c : cases) {
    OdDbDatabasePtr db = OdDbDatabase::createNew(c.version);
    if (c.extnames >= 0) db->setHeaderInt("$EXTNAMES", 290, c.extnames);
    const OdResult expected = c.extended ? eOk : eInvalidSymbolTableName;
    EXPECT_EQ(validateSymbolName(longName, false, db.get()), expected) << int(c.version);
    EXPECT_EQ(validateSymbolName(L"Dim 1.5", false, db.get()), expected) << int(c.version);
  }
  EXPECT_EQ(validateSymbolName(longName, false, static_cast<const OdDbDatabase*>(nullptr)), eOk);
  EXPECT_EQ(validateSymbolName(longName), eOk);
}

}  // namespace
