<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name></name>
    <message id="globals.kEditM">
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message id="globals.kMoveNext">
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message id="globals.kClearAll">
        <source>Clear All</source>
        <translation>Alles leeren</translation>
    </message>
</context>
</TS>
