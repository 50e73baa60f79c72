<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>translation</name>
    <message>
        <source>account</source>
        <comment>filter name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>account %1 %2</source>
        <comment>roster filter</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>is</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>is not</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>description</source>
        <comment>filter name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>description %1</source>
        <comment>roster filter</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>display</source>
        <comment>filter name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>display %1</source>
        <comment>roster filter</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>group</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>protocol</source>
        <comment>filter name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>protocol %1 %2</source>
        <comment>roster filter</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>contains</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>does not contain</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>match exactly</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>is not empty</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>presence</source>
        <comment>filter name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>presence %1 %2</source>
        <comment>roster filter</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>presence</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>display</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>protocol</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>account</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>description</source>
        <comment>nc</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>name</source>
        <comment>sorting method</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>presence</source>
        <comment>sorting method</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>presence priority</source>
        <comment>sorting method</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>chats count</source>
        <comment>sorting method</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
