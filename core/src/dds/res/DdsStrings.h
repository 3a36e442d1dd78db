// The module's string table: every user-visible text of the module under its
// resource id, in English and in Russian. The host's language picks the column.
#pragma once

#include <string_view>

#include "vextempl.h"
#include "vextypes.h"

namespace dds {

// Resource ids. Those below 1300 are fixed, since the dialog resources and their
// translations refer to them; the arrowhead names and the module texts from
// 1300 on are the module's own choice.
enum StringId : int {
  IDS_USE_ALL = 1009,  // "All dimensions", then one entry per child kind
  IDS_USE_LINEAR = 1010,
  IDS_USE_DIAMETRAL = 1011,
  IDS_USE_RADIAL = 1012,
  IDS_USE_ANGULAR = 1013,
  IDS_USE_LEADER = 1014,
  IDS_USE_ORDINATE = 1015,
  IDS_COPY_OF = 1016,
  IDS_NEW_STYLE = 1017,

  IDS_BYBLOCK = 1063,
  IDS_BYLAYER = 1064,
  IDS_YES = 1065,
  IDS_NO = 1066,
  IDS_STYLE_OVERRIDES = 1067,
  IDS_NONE = 1079,
  IDS_FOUND_DIFFERENCES = 1081,

  // Descriptions of the dimension variables: 1082..1154 for the first 73
  // catalogue rows, then the five later ones.
  IDS_DIMVAR_FIRST = 1082,
  IDS_DIMVAR_LAST_CONSECUTIVE = 1154,
  IDS_DIMTXTDIRECTION = 1169,
  IDS_DIMMZF = 1170,
  IDS_DIMMZS = 1171,
  IDS_DIMALTMZF = 1174,
  IDS_DIMALTMZS = 1175,

  // Colour names of the indices 1..7: IDS_COLOR_RED - 1 + index.
  IDS_COLOR_RED = 1155,
  IDS_COLOR_YELLOW = 1156,
  IDS_COLOR_GREEN = 1157,
  IDS_COLOR_CYAN = 1158,
  IDS_COLOR_BLUE = 1159,
  IDS_COLOR_MAGENTA = 1160,
  IDS_COLOR_WHITE = 1161,
  IDS_DEFAULT = 1162,
  IDS_NULL = 1164,
  IDS_COPY_TO_CLIPBOARD = 1281,

  // Arrowhead display names, in the order of the arrowhead list.
  IDS_ARROW_CLOSED_FILLED = 1300,
  IDS_ARROW_CLOSED_BLANK,
  IDS_ARROW_CLOSED,
  IDS_ARROW_DOT,
  IDS_ARROW_ARCH_TICK,
  IDS_ARROW_OBLIQUE,
  IDS_ARROW_OPEN,
  IDS_ARROW_ORIGIN,
  IDS_ARROW_ORIGIN2,
  IDS_ARROW_RIGHT_ANGLE,
  IDS_ARROW_OPEN30,
  IDS_ARROW_DOT_SMALL,
  IDS_ARROW_DOT_BLANK,
  IDS_ARROW_DOT_SMALL_BLANK,
  IDS_ARROW_BOX,
  IDS_ARROW_BOX_FILLED,
  IDS_ARROW_DATUM,
  IDS_ARROW_DATUM_FILLED,
  IDS_ARROW_INTEGRAL,
  IDS_ARROW_NONE,
  IDS_ARROW_USER,  // "User arrow...": the picker's entry for any other block

  // The two paragraphs of the question before another style is made current.
  IDS_DISCARD_OVERRIDES = 1330,
  IDS_CONTINUE = 1331,

  // The command-line command "-dimstyle": its prompts, keyword lists and
  // printed texts. A keyword list holds the local keywords, then the same
  // options' global forms, starred and in the same order.
  IDS_DS_CURRENT_STYLE = 1400,  // "Current dimension style: "%s". Annotative: %s."
  IDS_DS_CURRENT_OVERRIDES,
  IDS_DS_OPTION_PROMPT,
  IDS_DS_OPTION_KEYWORDS,       // seven options, in the order of DimStyleOption
  IDS_DS_ANNOTATIVE_PROMPT,
  IDS_DS_YES_NO_KEYWORDS,       // Yes first, then No
  IDS_DS_SAVE_PROMPT,
  IDS_DS_REDEFINE_PROMPT,
  IDS_DS_CHOOSE_PROMPT,
  IDS_DS_SELECT_DIMENSION,
  IDS_DS_NOT_A_DIMENSION,
  IDS_DS_UNKNOWN_STYLE,
  IDS_DS_LIST_PROMPT,
  IDS_DS_NAMED_STYLES,
  IDS_DS_ANNOTATIVE_MARK,
  IDS_DS_DIFFERENCES,           // "Differences between "%s" and current settings:"
  IDS_DS_CURRENT_SETTING,
  IDS_DS_NO_DIFFERENCES,
  IDS_DS_SELECT_OBJECTS,
  IDS_DS_DIMASO_DESCRIPTION,
  IDS_DS_DIMSTYLE_DESCRIPTION,
  IDS_DS_INVALID_NAME,          // a new style's name that the drawing cannot hold
};

// The text of `id` in the host's language (hostLanguage()). An id the table
// does not hold gives an empty text and a logged warning.
CXStringW ddsString(int id);

// The text of `id` in `language` ("en" or "ru"; any other language reads English).
CXStringW ddsString(int id, std::string_view language);

// Whether the table holds `id`.
bool ddsHasString(int id);

// Every id of the table, ascending.
VexArray<int> ddsStringIds();

// The host's translation of module literals (Supp_Translate): the text of
// `language` for the entry whose English text is `english`; false when no entry
// has that English text.
bool ddsTranslate(std::wstring_view english, std::string_view language, std::wstring& out);

}  // namespace dds
