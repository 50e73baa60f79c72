<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>VeskFilterEditor</name>
    <message>
        <source>Filters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Return</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>every entry; the default filter cannot be edited</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a filter needs a name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;default&quot; is the name of the built-in filter; choose another</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>two filters are named &quot;%1&quot;; choose another name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the filter &quot;%1&quot; has a stack without conditions: a stack stored without children does not read back as it was, so it is never stored</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the filter &quot;%1&quot; nests stacks %2 levels deep, deeper than %3 levels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Why the filters were not stored</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VeskRosterTreeModel</name>
    <message>
        <source>%1 (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Presence</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Description</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chats</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VeskRosterWindow</name>
    <message>
        <source>%1 (%2/%3)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Roster</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Filter:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Sorting:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Roster</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Edit filters...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+E</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit s&amp;orting methods...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+M</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulate &amp;activity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+T</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>default (every entry)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>built-in order (presence, name)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2 entries shown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings directory can no longer be read, so the roster window closes: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VeskSorterEditor</name>
    <message>
        <source>Sorting methods</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Return</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a sorting method needs a name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>two methods are named &quot;%1&quot;; choose another name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Why the sorting methods were not stored</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>The roster window.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings directory (as vesk-roster&apos;s).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DIR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The roster file (JSON); the bundled sample without it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FILE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cannot read the roster file &quot;%1&quot;: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the roster: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Roster</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save pictures of the window and the editors in DIR, then quit.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
