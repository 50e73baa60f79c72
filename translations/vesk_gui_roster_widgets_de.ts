<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>VeskFilterEditorWidget</name>
    <message>
        <source>Ad&amp;vanced mode</source>
        <translation>Er&amp;weiterter Modus</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Condition</source>
        <translation>Bedingung</translation>
    </message>
    <message>
        <source>&amp;Conditions:</source>
        <translation>&amp;Bedingungen:</translation>
    </message>
    <message>
        <source>&amp;Add condition</source>
        <translation>Bedingung &amp;hinzufügen</translation>
    </message>
    <message>
        <source>Ins</source>
        <translation>Ins</translation>
    </message>
    <message>
        <source>Add nested &amp;stack</source>
        <translation>Verschachtelten &amp;Stapel hinzufügen</translation>
    </message>
    <message>
        <source>Ctrl+Ins</source>
        <translation>Ctrl+Ins</translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation>&amp;Art:</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation>Ctrl+Up</translation>
    </message>
    <message>
        <source>Move &amp;down</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation>Ctrl+Down</translation>
    </message>
    <message>
        <source>AND: every condition</source>
        <translation>UND: jede Bedingung</translation>
    </message>
    <message>
        <source>OR: any condition</source>
        <translation>ODER: irgendeine Bedingung</translation>
    </message>
    <message>
        <source>&amp;Join with:</source>
        <translation>&amp;Verknüpfen mit:</translation>
    </message>
    <message>
        <source>Shows</source>
        <translation>Zeigt</translation>
    </message>
    <message>
        <source>Shows:</source>
        <translation>Zeigt:</translation>
    </message>
    <message>
        <source>OR</source>
        <translation>ODER</translation>
    </message>
    <message>
        <source>AND</source>
        <translation>UND</translation>
    </message>
</context>
<context>
    <name>VeskFilterListWidget</name>
    <message>
        <source>&amp;Filters:</source>
        <translation>&amp;Filter:</translation>
    </message>
    <message>
        <source>Na&amp;me:</source>
        <translation>Na&amp;me:</translation>
    </message>
    <message>
        <source>&amp;New filter</source>
        <translation>&amp;Neuer Filter</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>Remove filter</source>
        <translation>Filter entfernen</translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation>Ctrl+Del</translation>
    </message>
    <message>
        <source>Filter up</source>
        <translation>Filter nach oben</translation>
    </message>
    <message>
        <source>Alt+Up</source>
        <translation>Alt+Up</translation>
    </message>
    <message>
        <source>Filter down</source>
        <translation>Filter nach unten</translation>
    </message>
    <message>
        <source>Alt+Down</source>
        <translation>Alt+Down</translation>
    </message>
    <message>
        <source>F2</source>
        <translation>F2</translation>
    </message>
    <message>
        <source>filter %1</source>
        <translation>Filter %1</translation>
    </message>
</context>
<context>
    <name>VeskSorterEditorWidget</name>
    <message>
        <source>&amp;Methods:</source>
        <translation>&amp;Methoden:</translation>
    </message>
    <message>
        <source>&amp;New method</source>
        <translation>&amp;Neue Methode</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>Remove method</source>
        <translation>Methode entfernen</translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation>Ctrl+Del</translation>
    </message>
    <message>
        <source>Na&amp;me:</source>
        <translation>Na&amp;me:</translation>
    </message>
    <message>
        <source>&amp;Default method (for filters without one)</source>
        <translation>&amp;Standardmethode (für Filter ohne eigene)</translation>
    </message>
    <message>
        <source>Com&amp;parators:</source>
        <translation>&amp;Vergleicher:</translation>
    </message>
    <message>
        <source>The first comparator that tells two entries apart decides; a checked comparator sorts ascending (Space switches).</source>
        <translation>Der erste Vergleicher, der zwei Einträge unterscheidet, entscheidet; ein angehakter Vergleicher sortiert aufsteigend (Leertaste schaltet um).</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Hinzufügen</translation>
    </message>
    <message>
        <source>Ins</source>
        <translation>Ins</translation>
    </message>
    <message>
        <source>&amp;Comparator:</source>
        <translation>Ver&amp;gleicher:</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation>Ctrl+Up</translation>
    </message>
    <message>
        <source>Move do&amp;wn</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation>Ctrl+Down</translation>
    </message>
    <message>
        <source>%1, ascending</source>
        <translation>%1, aufsteigend</translation>
    </message>
    <message>
        <source>%1, descending</source>
        <translation>%1, absteigend</translation>
    </message>
    <message>
        <source>method %1</source>
        <translation>Methode %1</translation>
    </message>
</context>
</TS>
