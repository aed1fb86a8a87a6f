<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>LMRQLiveSearchWidget</name>
    <message>
        <source>&amp;All</source>
        <translation>&amp;Alle</translation>
    </message>
    <message>
        <source>Using Fixed String</source>
        <translation>Fester Text</translation>
    </message>
    <message>
        <source>Using Regular Expressions</source>
        <translation>Reguläre Ausdrücke</translation>
    </message>
    <message>
        <source>Using Wildcards</source>
        <translation>Platzhalter</translation>
    </message>
    <message>
        <source>Invalid regular expression: %1</source>
        <translation>Ungültiger regulärer Ausdruck: %1</translation>
    </message>
</context>
<context>
    <name>QColorControl</name>
    <message>
        <source>...</source>
        <translation>...</translation>
    </message>
    <message>
        <source>Choose a colour</source>
        <translation>Farbe wählen</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
</context>
<context>
    <name>QFileListDialog</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>QFileListWidget</name>
    <message>
        <source>%1
This file does not exist.</source>
        <translation>%1
Diese Datei existiert nicht.</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Read Only</source>
        <translation>Schreibgeschützt</translation>
    </message>
    <message>
        <source>Show in Explorer</source>
        <translation>Im Dateibrowser zeigen</translation>
    </message>
    <message>
        <source>Copy to clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
</context>
<context>
    <name>QTabWidgetEx</name>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
</context>
</TS>
