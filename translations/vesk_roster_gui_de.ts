<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>VeskAccountStatus</name>
    <message>
        <source>Show the roster of this XMPP account (repeatable); the password comes from VESK_XMPP_PASSWORD or a dialog.</source>
        <translation>Die Kontaktliste dieses XMPP-Kontos zeigen (wiederholbar); das Passwort kommt aus VESK_XMPP_PASSWORD oder aus einem Dialog.</translation>
    </message>
    <message>
        <source>JID</source>
        <translation>JID</translation>
    </message>
    <message>
        <source>The server to connect to, instead of the one the JID&apos;s domain names.</source>
        <translation>Der Server, mit dem verbunden wird, statt des von der Domain der JID genannten.</translation>
    </message>
    <message>
        <source>HOST:PORT</source>
        <translation>HOST:PORT</translation>
    </message>
    <message>
        <source>Trust the server certificates this CA signed, besides the system&apos;s.</source>
        <translation>Den Serverzertifikaten vertrauen, die diese Zertifizierungsstelle signiert hat, neben denen des Systems.</translation>
    </message>
    <message>
        <source>FILE</source>
        <translation>DATEI</translation>
    </message>
    <message>
        <source>No TLS: only for a server on the loopback address.</source>
        <translation>Kein TLS: nur für einen Server auf der Loopback-Adresse.</translation>
    </message>
    <message>
        <source>--xmpp-server, --xmpp-ca and --xmpp-insecure go with --xmpp JID</source>
        <translation>--xmpp-server, --xmpp-ca und --xmpp-insecure gehören zu --xmpp JID</translation>
    </message>
    <message>
        <source>--xmpp-server needs HOST:PORT, not &quot;%1&quot;</source>
        <translation>--xmpp-server braucht HOST:PORT, nicht &quot;%1&quot;</translation>
    </message>
    <message>
        <source>cannot read the CA certificate &quot;%1&quot;</source>
        <translation>das CA-Zertifikat &quot;%1&quot; kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>Log in</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Password for %1:</source>
        <translation>Passwort für %1:</translation>
    </message>
    <message>
        <source>no password for %1</source>
        <translation>kein Passwort für %1</translation>
    </message>
    <message>
        <source>disconnected</source>
        <translation>getrennt</translation>
    </message>
    <message>
        <source>connecting...</source>
        <translation>verbinde...</translation>
    </message>
    <message>
        <source>connected, without TLS</source>
        <translation>verbunden, ohne TLS</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>verbunden</translation>
    </message>
    <message>
        <source>offline (%1); trying again shortly</source>
        <translation>offline (%1); neuer Versuch in Kürze</translation>
    </message>
    <message>
        <source>failed: %1</source>
        <translation>fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>VeskFilterEditor</name>
    <message>
        <source>Filters</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>&amp;Filters:</source>
        <translation type="vanished">&amp;Filter:</translation>
    </message>
    <message>
        <source>&amp;New filter</source>
        <translation type="vanished">&amp;Neuer Filter</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation type="vanished">Ctrl+N</translation>
    </message>
    <message>
        <source>Remove filter</source>
        <translation type="vanished">Filter entfernen</translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation type="vanished">Ctrl+Del</translation>
    </message>
    <message>
        <source>Filter up</source>
        <translation type="vanished">Filter nach oben</translation>
    </message>
    <message>
        <source>Alt+Up</source>
        <translation type="vanished">Alt+Up</translation>
    </message>
    <message>
        <source>Filter down</source>
        <translation type="vanished">Filter nach unten</translation>
    </message>
    <message>
        <source>Alt+Down</source>
        <translation type="vanished">Alt+Down</translation>
    </message>
    <message>
        <source>Na&amp;me:</source>
        <translation type="vanished">Na&amp;me:</translation>
    </message>
    <message>
        <source>Ad&amp;vanced mode</source>
        <translation type="vanished">Er&amp;weiterter Modus</translation>
    </message>
    <message>
        <source>&amp;Conditions:</source>
        <translation type="vanished">&amp;Bedingungen:</translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation type="vanished">&amp;Art:</translation>
    </message>
    <message>
        <source>&amp;Add condition</source>
        <translation type="vanished">Bedingung &amp;hinzufügen</translation>
    </message>
    <message>
        <source>Ins</source>
        <translation type="vanished">Ins</translation>
    </message>
    <message>
        <source>Add nested &amp;stack</source>
        <translation type="vanished">Verschachtelten &amp;Stapel hinzufügen</translation>
    </message>
    <message>
        <source>Ctrl+Ins</source>
        <translation type="vanished">Ctrl+Ins</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation type="vanished">&amp;Entfernen</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation type="vanished">Nach &amp;oben</translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation type="vanished">Ctrl+Up</translation>
    </message>
    <message>
        <source>Move &amp;down</source>
        <translation type="vanished">Nach &amp;unten</translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation type="vanished">Ctrl+Down</translation>
    </message>
    <message>
        <source>AND: every condition</source>
        <translation type="vanished">UND: jede Bedingung</translation>
    </message>
    <message>
        <source>OR: any condition</source>
        <translation type="vanished">ODER: irgendeine Bedingung</translation>
    </message>
    <message>
        <source>&amp;Join with:</source>
        <translation type="vanished">&amp;Verknüpfen mit:</translation>
    </message>
    <message>
        <source>Shows:</source>
        <translation type="vanished">Zeigt:</translation>
    </message>
    <message>
        <source>Ctrl+Return</source>
        <translation>Ctrl+Return</translation>
    </message>
    <message>
        <source>every entry; the default filter cannot be edited</source>
        <translation>jeden Eintrag; der Standardfilter kann nicht bearbeitet werden</translation>
    </message>
    <message>
        <source>OR</source>
        <translation type="vanished">ODER</translation>
    </message>
    <message>
        <source>AND</source>
        <translation type="vanished">UND</translation>
    </message>
    <message>
        <source>filter %1</source>
        <translation type="vanished">Filter %1</translation>
    </message>
    <message>
        <source>a filter needs a name</source>
        <translation>ein Filter braucht einen Namen</translation>
    </message>
    <message>
        <source>&quot;default&quot; is the name of the built-in filter; choose another</source>
        <translation>„default“ ist der Name des eingebauten Filters; wählen Sie einen anderen</translation>
    </message>
    <message>
        <source>two filters are named &quot;%1&quot;; choose another name</source>
        <translation>zwei Filter heißen „%1“; wählen Sie einen anderen Namen</translation>
    </message>
    <message>
        <source>the filter &quot;%1&quot; has a stack without conditions: a stack stored without children does not read back as it was, so it is never stored</source>
        <translation>der Filter „%1“ hat einen Stapel ohne Bedingungen: ein ohne Kinder gespeicherter Stapel wird nicht so zurückgelesen, wie er war, und wird deshalb nie gespeichert</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation type="vanished">Art</translation>
    </message>
    <message>
        <source>Condition</source>
        <translation type="vanished">Bedingung</translation>
    </message>
    <message>
        <source>the filter &quot;%1&quot; nests stacks %2 levels deep, deeper than %3 levels</source>
        <translation>der Filter „%1“ verschachtelt Stapel %2 Ebenen tief, tiefer als %3 Ebenen</translation>
    </message>
    <message>
        <source>Why the filters were not stored</source>
        <translation>Warum die Filter nicht gespeichert wurden</translation>
    </message>
</context>
<context>
    <name>VeskRosterTreeModel</name>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Presence</source>
        <translation>Anwesenheit</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Chats</source>
        <translation>Chats</translation>
    </message>
</context>
<context>
    <name>VeskRosterWindow</name>
    <message>
        <source>%1 (%2/%3)</source>
        <translation>%1 (%2/%3)</translation>
    </message>
    <message>
        <source>Roster</source>
        <translation>Kontaktliste</translation>
    </message>
    <message>
        <source>&amp;Filter:</source>
        <translation>&amp;Filter:</translation>
    </message>
    <message>
        <source>&amp;Sorting:</source>
        <translation>&amp;Sortierung:</translation>
    </message>
    <message>
        <source>&amp;Roster</source>
        <translation>&amp;Kontaktliste</translation>
    </message>
    <message>
        <source>&amp;Edit filters...</source>
        <translation>Filter &amp;bearbeiten …</translation>
    </message>
    <message>
        <source>Ctrl+E</source>
        <translation>Ctrl+E</translation>
    </message>
    <message>
        <source>Edit s&amp;orting methods...</source>
        <translation>S&amp;ortiermethoden bearbeiten …</translation>
    </message>
    <message>
        <source>Ctrl+M</source>
        <translation>Ctrl+M</translation>
    </message>
    <message>
        <source>Simulate &amp;activity</source>
        <translation>&amp;Aktivität simulieren</translation>
    </message>
    <message>
        <source>Ctrl+T</source>
        <translation>Ctrl+T</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>default (every entry)</source>
        <translation>default (jeder Eintrag)</translation>
    </message>
    <message>
        <source>built-in order (presence, name)</source>
        <translation>eingebaute Reihenfolge (Anwesenheit, Name)</translation>
    </message>
    <message>
        <source>%1 of %2 entries shown</source>
        <translation>%1 von %2 Einträgen angezeigt</translation>
    </message>
    <message>
        <source>The settings directory can no longer be read, so the roster window closes: %1</source>
        <translation>Das Einstellungsverzeichnis kann nicht mehr gelesen werden, daher schließt sich das Kontaktlistenfenster: %1</translation>
    </message>
    <message>
        <source>%1 of %2 entries shown, searching for %3</source>
        <translation>%1 von %2 Einträgen angezeigt, Suche nach %3</translation>
    </message>
</context>
<context>
    <name>VeskSearchBar</name>
    <message>
        <source>Search e&amp;very entry</source>
        <translation>In &amp;jedem Eintrag suchen</translation>
    </message>
    <message>
        <source>Searc&amp;h:</source>
        <translation>S&amp;uche:</translation>
    </message>
    <message>
        <source>Name, account, group or status (Ctrl+F)</source>
        <translation>Name, Konto, Gruppe oder Status (Strg+F)</translation>
    </message>
    <message>
        <source>Quick search</source>
        <translation>Schnellsuche</translation>
    </message>
    <message>
        <source>Look for the text in every entry, not only in those the current filter shows</source>
        <translation>Den Text in allen Einträgen suchen, nicht nur in denen, die der aktuelle Filter zeigt</translation>
    </message>
</context>
<context>
    <name>VeskSorterEditor</name>
    <message>
        <source>Sorting methods</source>
        <translation>Sortiermethoden</translation>
    </message>
    <message>
        <source>&amp;Methods:</source>
        <translation type="vanished">&amp;Methoden:</translation>
    </message>
    <message>
        <source>&amp;New method</source>
        <translation type="vanished">&amp;Neue Methode</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation type="vanished">Ctrl+N</translation>
    </message>
    <message>
        <source>Remove method</source>
        <translation type="vanished">Methode entfernen</translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation type="vanished">Ctrl+Del</translation>
    </message>
    <message>
        <source>Na&amp;me:</source>
        <translation type="vanished">Na&amp;me:</translation>
    </message>
    <message>
        <source>&amp;Default method (for filters without one)</source>
        <translation type="vanished">&amp;Standardmethode (für Filter ohne eigene)</translation>
    </message>
    <message>
        <source>Com&amp;parators:</source>
        <translation type="vanished">&amp;Vergleicher:</translation>
    </message>
    <message>
        <source>The first comparator that tells two entries apart decides; a checked comparator sorts ascending (Space switches).</source>
        <translation type="vanished">Der erste Vergleicher, der zwei Einträge unterscheidet, entscheidet; ein angehakter Vergleicher sortiert aufsteigend (Leertaste schaltet um).</translation>
    </message>
    <message>
        <source>&amp;Comparator:</source>
        <translation type="vanished">Ver&amp;gleicher:</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation type="vanished">&amp;Hinzufügen</translation>
    </message>
    <message>
        <source>Ins</source>
        <translation type="vanished">Ins</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation type="vanished">&amp;Entfernen</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation type="vanished">Nach &amp;oben</translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation type="vanished">Ctrl+Up</translation>
    </message>
    <message>
        <source>Move do&amp;wn</source>
        <translation type="vanished">Nach &amp;unten</translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation type="vanished">Ctrl+Down</translation>
    </message>
    <message>
        <source>Ctrl+Return</source>
        <translation>Ctrl+Return</translation>
    </message>
    <message>
        <source>%1, ascending</source>
        <translation type="vanished">%1, aufsteigend</translation>
    </message>
    <message>
        <source>%1, descending</source>
        <translation type="vanished">%1, absteigend</translation>
    </message>
    <message>
        <source>method %1</source>
        <translation type="vanished">Methode %1</translation>
    </message>
    <message>
        <source>a sorting method needs a name</source>
        <translation>eine Sortiermethode braucht einen Namen</translation>
    </message>
    <message>
        <source>two methods are named &quot;%1&quot;; choose another name</source>
        <translation>zwei Methoden heißen „%1“; wählen Sie einen anderen Namen</translation>
    </message>
    <message>
        <source>Why the sorting methods were not stored</source>
        <translation>Warum die Sortiermethoden nicht gespeichert wurden</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>The roster window.</source>
        <translation type="vanished">Das Fenster der Kontaktliste.</translation>
    </message>
    <message>
        <source>The settings directory (as vesk-roster&apos;s).</source>
        <translation>Das Einstellungsverzeichnis (wie das von vesk-roster).</translation>
    </message>
    <message>
        <source>DIR</source>
        <translation>VERZ</translation>
    </message>
    <message>
        <source>The roster file (JSON); the bundled sample without it.</source>
        <translation type="vanished">Die Datei der Kontaktliste (JSON); ohne sie das mitgelieferte Beispiel.</translation>
    </message>
    <message>
        <source>FILE</source>
        <translation>DATEI</translation>
    </message>
    <message>
        <source>cannot read the roster file &quot;%1&quot;: %2</source>
        <translation>die Kontaktlisten-Datei „%1“ kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>the roster: %1</source>
        <translation>die Kontaktliste: %1</translation>
    </message>
    <message>
        <source>Roster</source>
        <translation>Kontaktliste</translation>
    </message>
    <message>
        <source>Save pictures of the window and the editors in DIR, then quit.</source>
        <translation>Bilder des Fensters und der Editoren in VERZ speichern, dann beenden.</translation>
    </message>
    <message>
        <source>The roster file (JSON), - for standard input; the bundled sample without it.</source>
        <translation>Die Datei der Kontaktliste (JSON), - für die Standardeingabe; ohne sie das mitgelieferte Beispiel.</translation>
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
        <translation>Das Fenster der Kontaktliste: die Kontaktliste durch den aktuellen Filter und die
aktuelle Sortierung, mit den Editoren für Filter und Sortierungen.

Dateien:
  $XDG_CONFIG_HOME/vesk-roster (oder ~/.config/vesk-roster)
      das Einstellungsverzeichnis, gemeinsam mit vesk-roster

Rückgabewert:
  0  das Fenster wurde geschlossen
  1  die Befehlszeile war falsch
  2  die Kontaktliste oder die Einstellungen ließen sich nicht lesen (eine Meldung sagt, warum)</translation>
    </message>
    <message>
        <source>--roster and --xmpp exclude each other</source>
        <translation>--roster und --xmpp schließen einander aus</translation>
    </message>
</context>
</TS>
