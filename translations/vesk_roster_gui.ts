<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>VeskAccountStatus</name>
    <message>
        <source>Show the roster of this XMPP account (repeatable); the password comes from VESK_XMPP_PASSWORD or a dialog.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JID</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server to connect to, instead of the one the JID&apos;s domain names.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HOST:PORT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trust the server certificates this CA signed, besides the system&apos;s.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FILE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No TLS: only for a server on the loopback address.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--xmpp-server, --xmpp-ca and --xmpp-insecure go with --xmpp JID</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--xmpp-server needs HOST:PORT, not &quot;%1&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cannot read the CA certificate &quot;%1&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Log in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Password for %1:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no password for %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>disconnected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connecting...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connected, without TLS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>offline (%1); trying again shortly</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
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
    <message>
        <source>%1 of %2 entries shown, searching for %3</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VeskSearchBar</name>
    <message>
        <source>Search e&amp;very entry</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Searc&amp;h:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name, account, group or status (Ctrl+F)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quick search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Look for the text in every entry, not only in those the current filter shows</source>
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
        <source>The settings directory (as vesk-roster&apos;s).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DIR</source>
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
    <message>
        <source>The roster file (JSON), - for standard input; the bundled sample without it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The roster window: the roster through the current filter and sorting method,
with the editors of filters and sorting methods.

Files:
  $XDG_CONFIG_HOME/vesk-roster (or ~/.config/vesk-roster)
      the settings directory, shared with vesk-roster

Exit status:
  0  the window was closed
  1  the command line was wrong
  2  the roster or the settings could not be read (a message says why)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>--roster and --xmpp exclude each other</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
