<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>HelpWindow</name>
    <message>
        <source>Help</source>
        <translation>Справка</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Вперёд</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Содержание</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>Содержание справки</translation>
    </message>
    <message>
        <source>Help page</source>
        <translation>Страница справки</translation>
    </message>
</context>
</TS>
