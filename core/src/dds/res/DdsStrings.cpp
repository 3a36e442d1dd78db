#define VEX_SRCFILE "dds"
#include "res/DdsStrings.h"

#include <algorithm>
#include <iterator>

#include "host/HostServices.h"

namespace dds {

namespace {

struct Entry {
  int id;
  const wchar_t* en;
  const wchar_t* ru;
};

// Sorted by id (a test checks it), so a lookup is a binary search.
constexpr Entry kStrings[] = {
    {IDS_USE_ALL, L"All dimensions", L"Все размеры"},
    {IDS_USE_LINEAR, L"Linear dimensions", L"Линейные размеры"},
    {IDS_USE_DIAMETRAL, L"Diametral dimensions", L"Диаметральные размеры"},
    {IDS_USE_RADIAL, L"Radial dimensions", L"Радиальные размеры"},
    {IDS_USE_ANGULAR, L"Angular dimensions", L"Угловые размеры"},
    {IDS_USE_LEADER, L"Leader dimensions", L"Выноски"},
    {IDS_USE_ORDINATE, L"Ordinate dimensions", L"Ординатные размеры"},
    {IDS_COPY_OF, L"Copy of ", L"Копия "},
    {IDS_NEW_STYLE, L"New style", L"Новый стиль"},

    {IDS_BYBLOCK, L"BYBLOCK", L"ПОБЛОКУ"},
    {IDS_BYLAYER, L"BYLAYER", L"ПОСЛОЮ"},
    {IDS_YES, L"Yes", L"Да"},
    {IDS_NO, L"No", L"Нет"},
    {IDS_STYLE_OVERRIDES, L"<style overrides>", L"<переопределения стиля>"},
    {IDS_NONE, L"<none>", L"<нет>"},
    {IDS_FOUND_DIFFERENCES, L"Found %i differences:", L"Найдено различий: %i"},

    {1082, L"Angular decimal places", L"Число десятичных знаков угловых размеров"},
    {1083, L"Alternate units selected", L"Альтернативные единицы включены"},
    {1084, L"Alternate unit decimal places", L"Число десятичных знаков альтернативных единиц"},
    {1085, L"Alternate unit scale factor", L"Масштабный коэффициент альтернативных единиц"},
    {1086, L"Alternate units rounding value", L"Округление альтернативных единиц"},
    {1087, L"Alternate tolerance decimal places", L"Число десятичных знаков альтернативных допусков"},
    {1088, L"Alternate tolerance zero suppression", L"Подавление нулей в альтернативных допусках"},
    {1089, L"Alternate units", L"Альтернативные единицы"},
    {1090, L"Alternate unit zero suppression", L"Подавление нулей в альтернативных единицах"},
    {1091, L"Prefix and suffix for alternate text", L"Префикс и суффикс альтернативного текста"},
    {1092, L"Arrow size", L"Размер стрелки"},
    {1093, L"Arrow and text fit", L"Размещение стрелок и текста"},
    {1094, L"Angular unit format", L"Формат угловых единиц"},
    {1095, L"Angular zero supression", L"Подавление нулей в угловых размерах"},
    {1096, L"Arrow block name", L"Имя блока стрелки"},
    {1097, L"First arrow block name", L"Имя блока первой стрелки"},
    {1098, L"Second arrow block name", L"Имя блока второй стрелки"},
    {1099, L"Center mark size", L"Размер маркера центра"},
    {1100, L"Dimension line and leader color", L"Цвет размерной линии и выноски"},
    {1101, L"Extension line color", L"Цвет выносной линии"},
    {1102, L"Dimension text color", L"Цвет размерного текста"},
    {1103, L"Decimal places", L"Число десятичных знаков"},
    {1104, L"Dimension line extension", L"Удлинение размерной линии"},
    {1105, L"Dimension line spacing", L"Шаг размерных линий"},
    {1106, L"Decimal separator", L"Десятичный разделитель"},
    {1107, L"Extension above dimension line", L"Удлинение выносной линии за размерную"},
    {1108, L"Extension line origin offset", L"Отступ выносной линии от объекта"},
    {1109, L"Fraction format", L"Формат дробей"},
    {1110, L"Gap from dimension line to text", L"Зазор между размерной линией и текстом"},
    {1111, L"Justification of text on dimension line", L"Выравнивание текста вдоль размерной линии"},
    {1112, L"Leader block name", L"Имя блока стрелки выноски"},
    {1113, L"Linear unit scale factor", L"Масштабный коэффициент линейных размеров"},
    {1114, L"Generate dimension limits", L"Предельные размеры"},
    {1115, L"Linear unit format", L"Формат линейных единиц"},
    {1116, L"Dimension line and leader lineweight", L"Вес размерной линии и выноски"},
    {1117, L"Extension line lineweight", L"Вес выносной линии"},
    {1118, L"Prefix and suffix for dimension text", L"Префикс и суффикс размерного текста"},
    {1119, L"Rounding value", L"Округление"},
    {1120, L"Separate arrow blocks", L"Разные блоки стрелок"},
    {1121, L"Overall scale factor", L"Общий масштабный коэффициент"},
    {1122, L"Suppress the first dimension line", L"Подавить первую размерную линию"},
    {1123, L"Suppress the second dimension line", L"Подавить вторую размерную линию"},
    {1124, L"Suppress the first extension line", L"Подавить первую выносную линию"},
    {1125, L"Suppress the second extension line", L"Подавить вторую выносную линию"},
    {1126, L"Suppress outside dimension lines", L"Подавить размерные линии вне выносных"},
    {1127, L"Place text above the dimension line", L"Текст над размерной линией"},
    {1128, L"Tolerance decimal places", L"Число десятичных знаков допусков"},
    {1129, L"Tolerance text height scaling factor", L"Масштаб высоты текста допусков"},
    {1130, L"Text inside extensions is horizontal", L"Горизонтальный текст между выносными линиями"},
    {1131, L"Place text inside extensions", L"Текст между выносными линиями"},
    {1132, L"Minus tolerance", L"Нижнее отклонение"},
    {1133, L"Text movement", L"Перемещение текста"},
    {1134, L"Force line inside extension lines", L"Размерная линия между выносными линиями"},
    {1135, L"Text outside horizontal", L"Горизонтальный текст вне выносных линий"},
    {1136, L"Tolerance dimensioning", L"Простановка допусков"},
    {1137, L"Tolerance vertical justification", L"Выравнивание допусков по вертикали"},
    {1138, L"Plus tolerance", L"Верхнее отклонение"},
    {1139, L"Tick size", L"Размер засечки"},
    {1140, L"Text vertical position", L"Положение текста по вертикали"},
    {1141, L"Text style", L"Текстовый стиль"},
    {1142, L"Text height", L"Высота текста"},
    {1143, L"Tolerance zero suppression", L"Подавление нулей в допусках"},
    {1144, L"User positioned text", L"Размещение текста вручную"},
    {1145, L"Zero suppression", L"Подавление нулей"},
    {1146, L"Fixed extension line", L"Фиксированная длина выносных линий"},
    {1147, L"Enable fixed extension line", L"Выносные линии фиксированной длины"},
    {1148, L"Radius dimension jog angle", L"Угол излома радиального размера"},
    {1149, L"Text background enabled", L"Фон текста"},
    {1150, L"Text background color", L"Цвет фона текста"},
    {1151, L"Arc length symbol", L"Символ длины дуги"},
    {1152, L"Dimension linetype", L"Тип размерной линии"},
    {1153, L"First extension line linetype", L"Тип первой выносной линии"},
    {1154, L"Second extension line linetype", L"Тип второй выносной линии"},

    {IDS_COLOR_RED, L"red", L"красный"},
    {IDS_COLOR_YELLOW, L"yellow", L"желтый"},
    {IDS_COLOR_GREEN, L"green", L"зеленый"},
    {IDS_COLOR_CYAN, L"cyan", L"голубой"},
    {IDS_COLOR_BLUE, L"blue", L"синий"},
    {IDS_COLOR_MAGENTA, L"magenta", L"пурпурный"},
    {IDS_COLOR_WHITE, L"white", L"белый"},
    {IDS_DEFAULT, L"<default>", L"<по умолчанию>"},
    {IDS_NULL, L"<null>", L"<пусто>"},

    {IDS_DIMTXTDIRECTION, L"Dimension text direction", L"Направление размерного текста"},
    {IDS_DIMMZF, L"Sub-zero factor for metric dimensions", L"Множитель дольных единиц метрических размеров"},
    {IDS_DIMMZS, L"Sub-zero suffix for metric dimensions", L"Суффикс дольных единиц метрических размеров"},
    {IDS_DIMALTMZF, L"Alternate sub-zero factor for metric dimensions",
     L"Множитель дольных единиц альтернативных метрических размеров"},
    {IDS_DIMALTMZS, L"Alternate sub-zero suffix for metric dimensions",
     L"Суффикс дольных единиц альтернативных метрических размеров"},

    {IDS_COPY_TO_CLIPBOARD, L"Copy to clipboard", L"Копировать в буфер обмена"},

    {IDS_ARROW_CLOSED_FILLED, L"Closed filled", L"Замкнутая закрашенная"},
    {IDS_ARROW_CLOSED_BLANK, L"Closed blank", L"Замкнутая пустая"},
    {IDS_ARROW_CLOSED, L"Closed", L"Замкнутая"},
    {IDS_ARROW_DOT, L"Dot", L"Точка"},
    {IDS_ARROW_ARCH_TICK, L"Architectural tick", L"Архитектурная засечка"},
    {IDS_ARROW_OBLIQUE, L"Oblique", L"Наклонная засечка"},
    {IDS_ARROW_OPEN, L"Open", L"Разомкнутая"},
    {IDS_ARROW_ORIGIN, L"Origin indicator", L"Указатель начала"},
    {IDS_ARROW_ORIGIN2, L"Origin indicator 2", L"Указатель начала 2"},
    {IDS_ARROW_RIGHT_ANGLE, L"Right angle", L"Прямой угол"},
    {IDS_ARROW_OPEN30, L"Open 30", L"Разомкнутая 30"},
    {IDS_ARROW_DOT_SMALL, L"Dot small", L"Малая точка"},
    {IDS_ARROW_DOT_BLANK, L"Dot blank", L"Пустая точка"},
    {IDS_ARROW_DOT_SMALL_BLANK, L"Dot small blank", L"Малая пустая точка"},
    {IDS_ARROW_BOX, L"Box", L"Квадрат"},
    {IDS_ARROW_BOX_FILLED, L"Box filled", L"Закрашенный квадрат"},
    {IDS_ARROW_DATUM, L"Datum triangle", L"Треугольник базы"},
    {IDS_ARROW_DATUM_FILLED, L"Datum triangle filled", L"Закрашенный треугольник базы"},
    {IDS_ARROW_INTEGRAL, L"Integral", L"Интеграл"},
    {IDS_ARROW_NONE, L"None", L"Нет"},
    {IDS_ARROW_USER, L"User arrow...", L"Пользовательская стрелка..."},

    {IDS_DISCARD_OVERRIDES, L"Setting another style current will discard your style overrides.",
     L"При назначении текущим другого стиля переопределения стиля будут потеряны."},
    {IDS_CONTINUE, L"Continue?", L"Продолжить?"},

    {IDS_DS_CURRENT_STYLE, L"Current dimension style: \"%s\". Annotative: %s.",
     L"Текущий размерный стиль: \"%s\". Аннотативный: %s."},
    {IDS_DS_CURRENT_OVERRIDES, L"Current dimension overrides:", L"Текущие переопределения размеров:"},
    {IDS_DS_OPTION_PROMPT, L"Enter a dimension style option [%s]<Restore>:",
     L"Задайте параметр размерного стиля [%s]<Восстановить>:"},
    // The Russian short forms: "С" saves and "СТ" shows the status, as "S" and
    // "ST" do; "П" lists the variables and "ПР" applies.
    {IDS_DS_OPTION_KEYWORDS,
     L"ANnotative Save Restore STatus Variables Apply ? *ANnotative *Save *Restore *STatus *Variables *Apply *?",
     L"АННотативный Сохранить Восстановить СТатус Переменные ПРименить ? "
     L"*ANnotative *Save *Restore *STatus *Variables *Apply *?"},
    {IDS_DS_ANNOTATIVE_PROMPT, L"Create annotative dimension style [%s]<Yes>:",
     L"Создать аннотативный размерный стиль [%s]<Да>:"},
    {IDS_DS_YES_NO_KEYWORDS, L"Yes No *Yes *No", L"Да Нет *Yes *No"},
    {IDS_DS_SAVE_PROMPT, L"Enter name for new dimension style or [%s]:",
     L"Введите имя нового размерного стиля или [%s]:"},
    {IDS_DS_REDEFINE_PROMPT, L"That name is already in use, redefine it? [%s]<No>:",
     L"Это имя уже используется. Переопределить стиль? [%s]<Нет>:"},
    {IDS_DS_CHOOSE_PROMPT, L"Enter a dimension style name, [%s] or <select dimension>:",
     L"Введите имя размерного стиля, [%s] или <выберите размер>:"},
    {IDS_DS_SELECT_DIMENSION, L"Select dimension", L"Выберите размер"},
    {IDS_DS_NOT_A_DIMENSION, L"Selected object is not a dimension.", L"Выбранный объект не является размером."},
    {IDS_DS_UNKNOWN_STYLE, L"Unknown dimension style.", L"Неизвестный размерный стиль."},
    {IDS_DS_LIST_PROMPT, L"Enter dimension style(s) to list <*>", L"Введите размерные стили для вывода списка <*>"},
    {IDS_DS_NAMED_STYLES, L"Named dimension styles:", L"Именованные размерные стили:"},
    {IDS_DS_ANNOTATIVE_MARK, L"Annotative", L"Аннотативный"},
    {IDS_DS_DIFFERENCES, L"Differences between \"%s\" and current settings:",
     L"Различия между \"%s\" и текущими настройками:"},
    {IDS_DS_CURRENT_SETTING, L"Current Setting", L"Текущее значение"},
    {IDS_DS_NO_DIFFERENCES, L"No Differences.", L"Различий нет."},
    {IDS_DS_SELECT_OBJECTS, L"Select objects", L"Выберите объекты"},
    {IDS_DS_DIMASO_DESCRIPTION, L"Create dimension objects", L"Создавать размерные объекты"},
    {IDS_DS_DIMSTYLE_DESCRIPTION, L"Current dimension style", L"Текущий размерный стиль"},
    {IDS_DS_INVALID_NAME, L"Invalid dimension style name.", L"Недопустимое имя размерного стиля."},
};

const Entry* find(int id) {
  auto it = std::lower_bound(std::begin(kStrings), std::end(kStrings), id,
                             [](const Entry& e, int key) { return e.id < key; });
  return it != std::end(kStrings) && it->id == id ? it : nullptr;
}

}  // namespace

CXStringW ddsString(int id, std::string_view language) {
  const Entry* e = find(id);
  if (!e) {
    pLOGWARN(L"No string %d", id);
    return CXStringW();
  }
  return CXStringW(language == "ru" ? e->ru : e->en);
}

CXStringW ddsString(int id) { return ddsString(id, hostLanguage()); }

bool ddsHasString(int id) { return find(id) != nullptr; }

bool ddsTranslate(std::wstring_view english, std::string_view language, std::wstring& out) {
  for (const Entry& e : kStrings) {
    if (english != e.en) continue;
    out = language == "ru" ? e.ru : e.en;
    return true;
  }
  return false;
}

VexArray<int> ddsStringIds() {
  VexArray<int> ids;
  ids.reserve(std::size(kStrings));
  for (const Entry& e : kStrings) ids.push_back(e.id);
  return ids;
}

}  // namespace dds
