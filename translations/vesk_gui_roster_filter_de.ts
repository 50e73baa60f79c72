<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>translation</name>
    <message>
        <source>account</source>
        <comment>filter name</comment>
        <translation>Konto</translation>
    </message>
    <message>
        <source>account %1 %2</source>
        <comment>roster filter</comment>
        <translation>Konto %1 %2</translation>
    </message>
    <message>
        <source>description</source>
        <comment>filter name</comment>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>description %1</source>
        <comment>roster filter</comment>
        <translation>Beschreibung %1</translation>
    </message>
    <message>
        <source>display</source>
        <comment>filter name</comment>
        <translation>Anzeigename</translation>
    </message>
    <message>
        <source>display %1</source>
        <comment>roster filter</comment>
        <translation>Anzeigename %1</translation>
    </message>
    <message>
        <source>group</source>
        <comment>nc</comment>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>protocol</source>
        <comment>filter name</comment>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>protocol %1 %2</source>
        <comment>roster filter</comment>
        <translation>Protokoll %1 %2</translation>
    </message>
    <message>
        <source>presence</source>
        <comment>filter name</comment>
        <translation>Status</translation>
    </message>
    <message>
        <source>presence %1 %2</source>
        <comment>roster filter</comment>
        <translation>Status %1 %2</translation>
    </message>
    <message>
        <source>contains</source>
        <comment>nc</comment>
        <translation>enthält</translation>
    </message>
    <message>
        <source>does not contain</source>
        <comment>nc</comment>
        <translation>enthält nicht</translation>
    </message>
    <message>
        <source>match exactly</source>
        <comment>nc</comment>
        <translation>ist genau</translation>
    </message>
    <message>
        <source>is not empty</source>
        <comment>nc</comment>
        <translation>ist nicht leer</translation>
    </message>
    <message>
        <source>is</source>
        <comment>nc</comment>
        <translation>ist</translation>
    </message>
    <message>
        <source>is not</source>
        <comment>nc</comment>
        <translation>ist nicht</translation>
    </message>
    <message>
        <source>presence</source>
        <comment>nc</comment>
        <translation>Status</translation>
    </message>
    <message>
        <source>display</source>
        <comment>nc</comment>
        <translation>Anzeigename</translation>
    </message>
    <message>
        <source>protocol</source>
        <comment>nc</comment>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>account</source>
        <comment>nc</comment>
        <translation>Konto</translation>
    </message>
    <message>
        <source>description</source>
        <comment>nc</comment>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>name</source>
        <comment>sorting method</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>presence</source>
        <comment>sorting method</comment>
        <translation>Status</translation>
    </message>
    <message>
        <source>presence priority</source>
        <comment>sorting method</comment>
        <translation>Statuspriorität</translation>
    </message>
    <message>
        <source>chats count</source>
        <comment>sorting method</comment>
        <translation>Anzahl der Chats</translation>
    </message>
</context>
</TS>
