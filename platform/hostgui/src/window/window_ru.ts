<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>HostCommandLineWidget</name>
    <message>
        <location filename="HostCommandLineWidget.cpp" line="22"/>
        <source>Command history</source>
        <translation>История команд</translation>
    </message>
    <message>
        <location filename="HostCommandLineWidget.cpp" line="44"/>
        <source>Command line</source>
        <translation>Командная строка</translation>
    </message>
</context>
<context>
    <name>HostDocumentTab</name>
    <message>
        <location filename="HostDocumentTab.cpp" line="15"/>
        <source>Model and layouts</source>
        <translation>Модель и листы</translation>
    </message>
</context>
<context>
    <name>HostMainWindow</name>
    <message>
        <location filename="HostMainWindow.cpp" line="62"/>
        <source>Binary DXF %1 (*.dxf)</source>
        <translation>Двоичный DXF %1 (*.dxf)</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="63"/>
        <source>DXF %1 (*.dxf)</source>
        <translation>DXF %1 (*.dxf)</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="67"/>
        <location filename="HostMainWindow.cpp" line="554"/>
        <source>Drawing</source>
        <translation>Чертёж</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="134"/>
        <location filename="HostMainWindow.cpp" line="373"/>
        <source>Drawings</source>
        <translation>Чертежи</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="158"/>
        <location filename="HostMainWindow.cpp" line="374"/>
        <source>Cursor coordinates</source>
        <translation>Координаты курсора</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="263"/>
        <source>About %1</source>
        <translation>О программе %1</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="264"/>
        <source>&lt;p&gt;&lt;b&gt;%1&lt;/b&gt;&lt;/p&gt;&lt;p&gt;Dimension style tools for CAD drawings in DXF.&lt;/p&gt;</source>
        <translation>&lt;p&gt;&lt;b&gt;%1&lt;/b&gt;&lt;/p&gt;&lt;p&gt;Инструменты размерных стилей для чертежей DXF.&lt;/p&gt;</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="336"/>
        <source>&amp;File</source>
        <translation>&amp;Файл</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="337"/>
        <source>Recent &amp;Files</source>
        <translation>&amp;Последние файлы</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="338"/>
        <source>&amp;Edit</source>
        <translation>&amp;Правка</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="339"/>
        <source>&amp;View</source>
        <translation>&amp;Вид</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="340"/>
        <source>&amp;Language</source>
        <translation>&amp;Язык</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="341"/>
        <source>F&amp;ormat</source>
        <translation>Фор&amp;мат</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="342"/>
        <location filename="HostMainWindow.cpp" line="357"/>
        <source>&amp;Help</source>
        <translation>&amp;Справка</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="344"/>
        <source>&amp;New...</source>
        <translation>&amp;Создать...</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="345"/>
        <source>&amp;Open...</source>
        <translation>&amp;Открыть...</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="346"/>
        <source>&amp;Save</source>
        <translation>&amp;Сохранить</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="347"/>
        <source>Save &amp;As...</source>
        <translation>Сохранить &amp;как...</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="348"/>
        <source>&amp;Close</source>
        <translation>&amp;Закрыть</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="349"/>
        <source>E&amp;xit</source>
        <translation>В&amp;ыход</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="350"/>
        <source>&amp;Undo</source>
        <translation>&amp;Отменить</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="351"/>
        <source>&amp;Redo</source>
        <translation>&amp;Повторить</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="352"/>
        <source>Select &amp;All</source>
        <translation>Выделить &amp;всё</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="353"/>
        <source>Zoom &amp;Extents</source>
        <translation>Показать &amp;всё</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="354"/>
        <source>Show &amp;Lineweights</source>
        <translation>Показывать &amp;веса линий</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="355"/>
        <source>&amp;Dark Background</source>
        <translation>&amp;Тёмный фон</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="356"/>
        <source>&amp;Dimension Style...</source>
        <translation>&amp;Размерные стили...</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="358"/>
        <source>&amp;Commands</source>
        <translation>&amp;Команды</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="359"/>
        <source>&amp;About</source>
        <translation>&amp;О программе</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="370"/>
        <source>Command Line</source>
        <translation>Командная строка</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="371"/>
        <source>Properties</source>
        <translation>Свойства</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="372"/>
        <source>Standard</source>
        <translation>Стандартная</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="390"/>
        <source>The module&apos;s command-line texts change language at the next start.</source>
        <translation>Тексты команд модуля сменят язык при следующем запуске.</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="461"/>
        <source>Imperial</source>
        <translation>Британские</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="461"/>
        <source>Metric</source>
        <translation>Метрические</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="462"/>
        <source>New Drawing</source>
        <translation>Новый чертёж</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="462"/>
        <source>&amp;Units:</source>
        <translation>&amp;Единицы:</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="476"/>
        <location filename="HostMainWindow.cpp" line="517"/>
        <source>Open Drawing</source>
        <translation>Открыть чертёж</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="476"/>
        <source>Drawings (*.dxf *.DXF);;All files (*)</source>
        <translation>Чертежи (*.dxf *.DXF);;Все файлы (*)</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="496"/>
        <source>Opening %1</source>
        <translation>Открытие %1</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="498"/>
        <source>Opening %1 (%2 MB)...</source>
        <translation>Открытие %1 (%2 МБ)...</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="518"/>
        <source>%1 cannot be opened.</source>
        <translation>Не удаётся открыть %1.</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="537"/>
        <location filename="HostMainWindow.cpp" line="563"/>
        <source>Save Drawing</source>
        <translation>Сохранить чертёж</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="537"/>
        <location filename="HostMainWindow.cpp" line="563"/>
        <source>%1 could not be saved; see the command line.</source>
        <translation>Не удалось сохранить %1; подробности в командной строке.</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="553"/>
        <source>Save Drawing As</source>
        <translation>Сохранить чертёж как</translation>
    </message>
    <message>
        <location filename="HostMainWindow.cpp" line="583"/>
        <source>Save changes to %1?</source>
        <translation>Сохранить изменения в %1?</translation>
    </message>
</context>
</TS>
