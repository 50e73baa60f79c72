<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>VeskFilterEditorWidget</name>
    <message>
        <source>Ad&amp;vanced mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Kind</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Conditions:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ins</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add nested &amp;stack</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Ins</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move &amp;down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>AND: every condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OR: any condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Join with:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>AND</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VeskFilterListWidget</name>
    <message>
        <source>&amp;Filters:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Na&amp;me:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;New filter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove filter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Alt+Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Alt+Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>F2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>filter %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VeskSorterEditorWidget</name>
    <message>
        <source>&amp;Methods:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;New method</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove method</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Na&amp;me:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Default method (for filters without one)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Com&amp;parators:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The first comparator that tells two entries apart decides; a checked comparator sorts ascending (Space switches).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ins</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Comparator:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move do&amp;wn</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, ascending</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, descending</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>method %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
