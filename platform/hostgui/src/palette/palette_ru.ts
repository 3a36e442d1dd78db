<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>HostGeneralProperties</name>
    <message>
        <location filename="HostPalette.cpp" line="23"/>
        <source>&quot;%ls&quot; is no colour: give ByLayer, ByBlock, a colour name, an index from 1 to 255 or R,G,B.</source>
        <translation>«%ls» — не цвет: укажите ByLayer, ByBlock, имя цвета, номер от 1 до 255 или R,G,B.</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="25"/>
        <source>The drawing has no layer &quot;%ls&quot;.</source>
        <translation>В чертеже нет слоя «%ls».</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="26"/>
        <source>The drawing has no linetype &quot;%ls&quot;; load it first.</source>
        <translation>В чертеже нет типа линий «%ls»; сначала загрузите его.</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="27"/>
        <source>&quot;%ls&quot; is no standard lineweight.</source>
        <translation>«%ls» — не стандартный вес линий.</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="28"/>
        <source>The linetype scale must be a number greater than 0, not &quot;%ls&quot;.</source>
        <translation>Масштаб типа линий должен быть числом больше 0, а не «%ls».</translation>
    </message>
</context>
<context>
    <name>HostPalette</name>
    <message>
        <location filename="HostPalette.cpp" line="165"/>
        <source>No selection</source>
        <translation>Ничего не выбрано</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="168"/>
        <source>All (%1)</source>
        <translation>Все (%1)</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="169"/>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="189"/>
        <source>&amp;Objects:</source>
        <translation>&amp;Объекты:</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="190"/>
        <source>Objects</source>
        <translation>Объекты</translation>
    </message>
    <message>
        <location filename="HostPalette.cpp" line="191"/>
        <source>Properties</source>
        <translation>Свойства</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="15"/>
        <source>Rotated Dimension</source>
        <translation>Повёрнутый размер</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="16"/>
        <source>Aligned Dimension</source>
        <translation>Параллельный размер</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="17"/>
        <source>Angular Dimension</source>
        <translation>Угловой размер</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="18"/>
        <source>3-Point Angular Dimension</source>
        <translation>Угловой размер по 3 точкам</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="19"/>
        <source>Arc Dimension</source>
        <translation>Длина дуги</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="20"/>
        <source>Radial Dimension</source>
        <translation>Радиус</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="21"/>
        <source>Jogged Radial Dimension</source>
        <translation>Радиус с изломом</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="22"/>
        <source>Diametric Dimension</source>
        <translation>Диаметр</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="23"/>
        <source>Ordinate Dimension</source>
        <translation>Ординатный размер</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="24"/>
        <source>Dimension</source>
        <translation>Размер</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="25"/>
        <source>Leader</source>
        <translation>Выноска</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="26"/>
        <source>Line</source>
        <translation>Отрезок</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="27"/>
        <source>Circle</source>
        <translation>Круг</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="28"/>
        <source>Arc</source>
        <translation>Дуга</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="29"/>
        <source>Polyline</source>
        <translation>Полилиния</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="30"/>
        <source>Point</source>
        <translation>Точка</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="31"/>
        <source>Solid</source>
        <translation>Фигура</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="32"/>
        <source>Text</source>
        <translation>Текст</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="33"/>
        <source>MText</source>
        <translation>Многострочный текст</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="34"/>
        <source>Block Reference</source>
        <translation>Вхождение блока</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="35"/>
        <source>General</source>
        <translation>Общие</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="36"/>
        <source>Color</source>
        <translation>Цвет</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="37"/>
        <source>Layer</source>
        <translation>Слой</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="38"/>
        <source>Linetype</source>
        <translation>Тип линий</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="39"/>
        <source>Lineweight</source>
        <translation>Вес линий</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="40"/>
        <source>Linetype scale</source>
        <translation>Масштаб типа линий</translation>
    </message>
</context>
<context>
    <name>HostPaletteModel</name>
    <message>
        <location filename="HostPaletteModel.cpp" line="257"/>
        <source>varies</source>
        <translation>разные</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="289"/>
        <source>Property</source>
        <translation>Свойство</translation>
    </message>
    <message>
        <location filename="HostPaletteModel.cpp" line="289"/>
        <source>Value</source>
        <translation>Значение</translation>
    </message>
</context>
</TS>
