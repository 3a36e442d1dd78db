<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>HostDrawingView</name>
    <message>
        <location filename="HostDrawingView.cpp" line="27"/>
        <source>Drawing</source>
        <translation>Чертёж</translation>
    </message>
    <message>
        <location filename="HostDrawingView.cpp" line="119"/>
        <source>Entities selected: %1</source>
        <translation>Выбрано объектов: %1</translation>
    </message>
</context>
</TS>
