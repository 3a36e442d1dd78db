<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="ru_RU">
<context>
    <name>HostAciGrid</name>
    <message>
        <location filename="HostColorDialog.cpp" line="35" />
        <source>Index colours</source>
        <translation>Цвета по индексу</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="36" />
        <source>Use the arrow keys to move between colours and Enter to choose one.</source>
        <translation>Клавиши со стрелками переходят между цветами, Enter выбирает цвет.</translation>
    </message>
</context>
<context>
    <name>HostColorDialog</name>
    <message>
        <location filename="HostColorDialog.cpp" line="211" />
        <source>Select Color</source>
        <translation>Выбор цвета</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="216" />
        <source>&amp;Index colors:</source>
        <translation>Цвета по &amp;индексу:</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="230" />
        <source>By&amp;Layer</source>
        <translation>По&amp;слою</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="231" />
        <source>By&amp;Block</source>
        <translation>По&amp;блоку</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="242" />
        <source>Index Color</source>
        <translation>Цвет по индексу</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="248" />
        <source>True Color</source>
        <translation>Полный цвет</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="252" />
        <source>&amp;Color:</source>
        <translation>&amp;Цвет:</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="255" />
        <source>Original colour</source>
        <translation>Исходный цвет</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="258" />
        <source>New colour</source>
        <translation>Новый цвет</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="272" />
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="273" />
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="314" />
        <source>Index color: %1</source>
        <translation>Индекс цвета: %1</translation>
    </message>
    <message>
        <location filename="HostColorDialog.cpp" line="315" />
        <source>Red, Green, Blue: %1,%2,%3</source>
        <translation>Красный, зелёный, синий: %1,%2,%3</translation>
    </message>
</context>
<context>
    <name>HostColorText</name>
    <message>
        <location filename="HostColorText.cpp" line="6" />
        <source>red</source>
        <translation>красный</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="7" />
        <source>yellow</source>
        <translation>жёлтый</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="8" />
        <source>green</source>
        <translation>зелёный</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="9" />
        <source>cyan</source>
        <translation>голубой</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="10" />
        <source>blue</source>
        <translation>синий</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="11" />
        <source>magenta</source>
        <translation>пурпурный</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="12" />
        <source>white</source>
        <translation>белый</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="30" />
        <source>Type a colour: a name, an index from 1 to 255 or red, green, blue values.</source>
        <translation>Введите цвет: название, индекс от 1 до 255 или значения красного, зелёного и синего.</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="36" />
        <source>ByLayer</source>
        <translation>ПоСлою</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="38" />
        <source>ByBlock</source>
        <translation>ПоБлоку</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="41" />
        <source>%1 cannot be chosen here.</source>
        <translation>Здесь нельзя выбрать %1.</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="56" />
        <source>A true colour has three values, red, green and blue, such as 255,128,0.</source>
        <translation>У полного цвета три значения: красный, зелёный и синий, например 255,128,0.</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="63" />
        <source>"%1" is no colour value: each of red, green and blue is a whole number from 0 to 255.</source>
        <translation>«%1» не является значением цвета: красный, зелёный и синий — целые числа от 0 до 255.</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="75" />
        <source>Index colours are numbered from 1 to 255; %1 is none of them.</source>
        <translation>Цвета по индексу имеют номера от 1 до 255; %1 среди них нет.</translation>
    </message>
    <message>
        <location filename="HostColorText.cpp" line="82" />
        <source>"%1" is no colour: type a name such as red, an index from 1 to 255 or red, green, blue values.</source>
        <translation>«%1» не является цветом: введите название, например красный, индекс от 1 до 255 или значения красного, зелёного и синего.</translation>
    </message>
</context>
<context>
    <name>HostLinFile</name>
    <message>
        <location filename="HostLinFile.cpp" line="50" />
        <source>Cannot read %1: %2</source>
        <translation>Не удаётся прочитать %1: %2</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="68" />
        <source>The pattern of %1 must start with the alignment "A".</source>
        <translation>Образец %1 должен начинаться с выравнивания «A».</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="73" />
        <source>The pattern of %1 has no dashes.</source>
        <translation>В образце %1 нет штрихов.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="80" />
        <source>"%1" is no complete text or shape element of a dash.</source>
        <translation>«%1» не является полным текстовым элементом или элементом-формой штриха.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="85" />
        <source>"%1" needs a text or shape and its style or file.</source>
        <translation>Для «%1» нужны текст или форма и их стиль или файл.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="104" />
        <source>"%1" is none of S=scale, R=rotation, A=absolute rotation, X=offset, Y=offset.</source>
        <translation>«%1» не является ни одним из S=масштаб, R=поворот, A=абсолютный поворот, X=смещение, Y=смещение.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="120" />
        <source>"%1" in the pattern of %2 is no number.</source>
        <translation>«%1» в образце %2 не является числом.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="127" />
        <source>The pattern of %1 must start with a dash or a dot, not a gap.</source>
        <translation>Образец %1 должен начинаться со штриха или точки, а не с пробела.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="143" />
        <location filename="HostLinFile.cpp" line="168" />
        <source>%1 has no pattern line.</source>
        <translation>У %1 нет строки образца.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="152" />
        <source>A linetype needs a name after "*".</source>
        <translation>После «*» должно стоять имя типа линий.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="154" />
        <source>%1 is defined twice; the first definition is kept.</source>
        <translation>%1 описан дважды; оставлено первое описание.</translation>
    </message>
    <message>
        <location filename="HostLinFile.cpp" line="162" />
        <source>A pattern line must follow a "*NAME,description" line.</source>
        <translation>Строка образца должна следовать за строкой «*ИМЯ,описание».</translation>
    </message>
</context>
<context>
    <name>HostLinetypeDialog</name>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="227" />
        <source>Select Linetype</source>
        <translation>Выбор типа линий</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="228" />
        <source>&amp;Linetypes of the drawing:</source>
        <translation>&amp;Типы линий чертежа:</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="232" />
        <source>Linetype</source>
        <translation>Тип линий</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="232" />
        <source>Appearance</source>
        <translation>Вид</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="232" />
        <source>Description</source>
        <translation>Описание</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="235" />
        <source>L&amp;oad...</source>
        <translation>&amp;Загрузить...</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="238" />
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="239" />
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="292" />
        <source>The linetypes could not be loaded: %1</source>
        <translation>Не удалось загрузить типы линий: %1</translation>
    </message>
</context>
<context>
    <name>HostLinetypeLoadDialog</name>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="150" />
        <source>Load Linetypes</source>
        <translation>Загрузка типов линий</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="152" />
        <source>&amp;File...</source>
        <translation>&amp;Файл...</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="158" />
        <source>Available &amp;linetypes:</source>
        <translation>Доступные &amp;типы линий:</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="162" />
        <source>Linetype</source>
        <translation>Тип линий</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="162" />
        <source>Appearance</source>
        <translation>Вид</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="162" />
        <source>Description</source>
        <translation>Описание</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="170" />
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="171" />
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="176" />
        <source>Linetype File</source>
        <translation>Файл типов линий</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="177" />
        <source>Linetype files (*.lin)</source>
        <translation>Файлы типов линий (*.lin)</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="204" />
        <source>The drawing has this linetype already.</source>
        <translation>Этот тип линий уже есть в чертеже.</translation>
    </message>
    <message>
        <location filename="HostLinetypeDialog.cpp" line="211" />
        <source>Line %1: %2</source>
        <translation>Строка %1: %2</translation>
    </message>
</context>
<context>
    <name>HostMessages</name>
    <message>
        <location filename="HostCommonDialogs.cpp" line="130" />
        <source>&amp;Yes</source>
        <translation>&amp;Да</translation>
    </message>
    <message>
        <location filename="HostCommonDialogs.cpp" line="131" />
        <source>&amp;No</source>
        <translation>&amp;Нет</translation>
    </message>
    <message>
        <location filename="HostCommonDialogs.cpp" line="140" />
        <source>OK</source>
        <translation>ОК</translation>
    </message>
</context>
<context>
    <name>HostTextStyleDialog</name>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="27" />
        <source>Text Style</source>
        <translation>Текстовый стиль</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="36" />
        <source>&amp;Styles:</source>
        <translation>&amp;Стили:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="40" />
        <source>Font</source>
        <translation>Шрифт</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="45" />
        <source>&amp;Font name:</source>
        <translation>&amp;Имя шрифта:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="47" />
        <source>Size and effects</source>
        <translation>Размер и эффекты</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="50" />
        <source>0 lets each text have its own height.</source>
        <translation>При 0 каждый текст имеет собственную высоту.</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="53" />
        <source>Slant of the characters in degrees, from -85 to 85.</source>
        <translation>Наклон символов в градусах, от -85 до 85.</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="54" />
        <source>&amp;Height:</source>
        <translation>&amp;Высота:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="55" />
        <source>&amp;Width factor:</source>
        <translation>Степень рас&amp;тяжения:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="56" />
        <source>&amp;Oblique angle:</source>
        <translation>&amp;Угол наклона:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="62" />
        <source>Sample of the font</source>
        <translation>Образец шрифта</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="64" />
        <source>&amp;New...</source>
        <translation>&amp;Новый...</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="65" />
        <source>&amp;Rename...</source>
        <translation>&amp;Переименовать...</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="66" />
        <source>&amp;Delete</source>
        <translation>У&amp;далить</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="67" />
        <source>&amp;Apply</source>
        <translation>П&amp;рименить</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="68" />
        <source>&amp;Close</source>
        <translation>&amp;Закрыть</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="208" />
        <source>Style%1</source>
        <translation>Стиль%1</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="209" />
        <source>New Text Style</source>
        <translation>Новый текстовый стиль</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="209" />
        <source>Style name:</source>
        <translation>Имя стиля:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="220" />
        <source>Rename Text Style</source>
        <translation>Переименование текстового стиля</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="220" />
        <source>New name:</source>
        <translation>Новое имя:</translation>
    </message>
    <message>
        <location filename="HostTextStyleDialog.cpp" line="235" />
        <source>Delete the text style "%1"?</source>
        <translation>Удалить текстовый стиль «%1»?</translation>
    </message>
</context>
<context>
    <name>HostTextStyleValues</name>
    <message>
        <location filename="HostTextStyles.cpp" line="23" />
        <source>"%1" is not a number.</source>
        <translation>«%1» не является числом.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="29" />
        <source>The height cannot be negative; 0 lets each text have its own height.</source>
        <translation>Высота не может быть отрицательной; при 0 каждый текст имеет собственную высоту.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="35" />
        <source>The width factor must lie between 0.01 and 100.</source>
        <translation>Степень растяжения должна быть от 0.01 до 100.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="41" />
        <source>The oblique angle must lie between -85 and 85 degrees.</source>
        <translation>Угол наклона должен быть от -85 до 85 градусов.</translation>
    </message>
</context>
<context>
    <name>HostTextStyles</name>
    <message>
        <location filename="HostTextStyles.cpp" line="154" />
        <source>A text style needs a name.</source>
        <translation>У текстового стиля должно быть имя.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="157" />
        <source>"%1" cannot name a text style: it may not start or end with a space nor hold any of &lt; &gt; / \ " : ; ? * | , = `.</source>
        <translation>«%1» не может быть именем текстового стиля: имя не может начинаться или заканчиваться пробелом и содержать символы &lt; &gt; / \ " : ; ? * | , = `.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="158" />
        <source>"%1" cannot name a text style in this drawing: up to 31 letters, digits, $, _ and -.</source>
        <translation>«%1» не может быть именем текстового стиля в этом чертеже: допустимо до 31 латинской буквы, цифры, $, _ и -.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="160" />
        <source>A text style named "%1" exists already.</source>
        <translation>Текстовый стиль с именем «%1» уже существует.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="193" />
        <location filename="HostTextStyles.cpp" line="209" />
        <location filename="HostTextStyles.cpp" line="232" />
        <source>There is no text style named "%1".</source>
        <translation>Текстового стиля с именем «%1» нет.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="195" />
        <source>The Standard text style cannot be renamed.</source>
        <translation>Текстовый стиль Standard нельзя переименовать.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="211" />
        <source>The Standard text style cannot be deleted.</source>
        <translation>Текстовый стиль Standard нельзя удалить.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="213" />
        <source>"%1" is the current text style and cannot be deleted.</source>
        <translation>«%1» — текущий текстовый стиль, его нельзя удалить.</translation>
    </message>
    <message>
        <location filename="HostTextStyles.cpp" line="216" />
        <source>"%1" is used by texts, dimensions or dimension styles and cannot be deleted.</source>
        <translation>«%1» используется текстами, размерами или размерными стилями, его нельзя удалить.</translation>
    </message>
</context>
<context>
    <name>HostUsrArrowDialog</name>
    <message>
        <location filename="HostArrows.cpp" line="138" />
        <source>Select Custom Arrow Block</source>
        <translation>Выбор блока пользовательской стрелки</translation>
    </message>
    <message>
        <location filename="HostArrows.cpp" line="139" />
        <source>&amp;Blocks of the drawing:</source>
        <translation>&amp;Блоки чертежа:</translation>
    </message>
    <message>
        <location filename="HostArrows.cpp" line="154" />
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <location filename="HostArrows.cpp" line="155" />
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <location filename="HostArrows.cpp" line="163" />
        <source>The drawing has no blocks to use as arrows.</source>
        <translation>В чертеже нет блоков, которые можно использовать как стрелки.</translation>
    </message>
</context>
</TS>