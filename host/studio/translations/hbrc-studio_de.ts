<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AssetDialogs</name>
    <message>
        <source>Delete Asset</source>
        <translation>Asset löschen</translation>
    </message>
    <message>
        <source>Delete %1? The next save removes its files.</source>
        <translation>%1 löschen? Das nächste Speichern entfernt seine Dateien.</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>New name:</source>
        <translation>Neuer Name:</translation>
    </message>
    <message>
        <source>Add External File</source>
        <translation>Externe Datei hinzufügen</translation>
    </message>
    <message>
        <source>%1 has no external file</source>
        <translation>%1 hat keine externe Datei</translation>
    </message>
    <message>
        <source>Remove External File</source>
        <translation>Externe Datei entfernen</translation>
    </message>
    <message>
        <source>File:</source>
        <translation>Datei:</translation>
    </message>
</context>
<context>
    <name>AssetDiff</name>
    <message>
        <source>(missing)</source>
        <translation>(fehlt)</translation>
    </message>
    <message>
        <source>%1 bytes, SHA-256 %2</source>
        <translation>%1 Byte, SHA-256 %2</translation>
    </message>
    <message>
        <source>changed</source>
        <translation>geändert</translation>
    </message>
    <message>
        <source>added</source>
        <translation>hinzugefügt</translation>
    </message>
    <message>
        <source>removed</source>
        <translation>entfernt</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>unverändert</translation>
    </message>
    <message>
        <source>name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>part</source>
        <translation>Teil</translation>
    </message>
</context>
<context>
    <name>ChangelistWork</name>
    <message numerus="yes">
        <source>Submitted change %1 (%n file(s))</source>
        <translation>
            <numerusform>Änderungsliste %1 übergeben (%n Datei)</numerusform>
            <numerusform>Änderungsliste %1 übergeben (%n Dateien)</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Moved %n file(s) to the default changelist</source>
        <translation>
            <numerusform>%n Datei in die Standard-Änderungsliste verschoben</numerusform>
            <numerusform>%n Dateien in die Standard-Änderungsliste verschoben</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Moved %n file(s) to change %1</source>
        <translation>
            <numerusform>%n Datei in die Änderungsliste %1 verschoben</numerusform>
            <numerusform>%n Dateien in die Änderungsliste %1 verschoben</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Created change %1 with %n file(s)</source>
        <translation>
            <numerusform>Änderungsliste %1 mit %n Datei angelegt</numerusform>
            <numerusform>Änderungsliste %1 mit %n Dateien angelegt</numerusform>
        </translation>
    </message>
    <message>
        <source>Deleted change %1</source>
        <translation>Änderungsliste %1 gelöscht</translation>
    </message>
    <message>
        <source>Changed the description of change %1</source>
        <translation>Beschreibung der Änderungsliste %1 geändert</translation>
    </message>
    <message numerus="yes">
        <source>Reverted %n file(s)</source>
        <translation>
            <numerusform>%n Datei zurückgesetzt</numerusform>
            <numerusform>%n Dateien zurückgesetzt</numerusform>
        </translation>
    </message>
    <message>
        <source>No unchanged file to revert</source>
        <translation>Keine unveränderte Datei zum Zurücksetzen</translation>
    </message>
    <message numerus="yes">
        <source>Reverted %n unchanged file(s): %1</source>
        <translation>
            <numerusform>%n unveränderte Datei zurückgesetzt: %1</numerusform>
            <numerusform>%n unveränderte Dateien zurückgesetzt: %1</numerusform>
        </translation>
    </message>
    <message>
        <source>Got the latest revision of %1</source>
        <translation>Neueste Revision von %1 geholt</translation>
    </message>
    <message>
        <source>Kept the check-out of %1: its file differs from your revision</source>
        <translation>%1 bleibt ausgecheckt: Die Datei weicht von Ihrer Revision ab</translation>
    </message>
    <message>
        <source>Reverted the check-out of %1 (unchanged)</source>
        <translation>Auschecken von %1 zurückgesetzt (unverändert)</translation>
    </message>
    <message>
        <source>Got %1 as of change %2</source>
        <translation>%1 auf dem Stand der Änderungsliste %2 geholt</translation>
    </message>
</context>
<context>
    <name>HeldAssets</name>
    <message>
        <source>%1 is locked by %2: turn revision control on to check it out</source>
        <translation>%1 ist von %2 gesperrt: Schalten Sie die Versionsverwaltung ein, um es auszuchecken</translation>
    </message>
    <message>
        <source>%1 is checked out by %2: turn revision control on to check it out</source>
        <translation>%1 ist von %2 ausgecheckt: Schalten Sie die Versionsverwaltung ein, um es auszuchecken</translation>
    </message>
</context>
<context>
    <name>KeptContent</name>
    <message>
        <source>%1 changed after an interrupted reconcile kept your content of it in %2: compare the two, and remove the copy to reconcile the file</source>
        <translation>%1 wurde geändert, nachdem ein unterbrochener Abgleich Ihren Inhalt davon in %2 aufbewahrt hat: Vergleichen Sie beide und entfernen Sie die Kopie, um die Datei abzugleichen</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>...</source>
        <translation>...</translation>
    </message>
    <message>
        <source>Choose a file</source>
        <translation>Datei wählen</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
</context>
<context>
    <name>ReconcileWork</name>
    <message numerus="yes">
        <source>Found %n file(s) changed without being opened</source>
        <translation>
            <numerusform>%n Datei gefunden, die ohne Öffnen geändert wurde</numerusform>
            <numerusform>%n Dateien gefunden, die ohne Öffnen geändert wurden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Reconciled %n file(s) into the default changelist</source>
        <translation>
            <numerusform>%n Datei abgeglichen und in der Standard-Änderungsliste geöffnet</numerusform>
            <numerusform>%n Dateien abgeglichen und in der Standard-Änderungsliste geöffnet</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Reconciled %n file(s) into changelist %1</source>
        <translation>
            <numerusform>%n Datei abgeglichen und in der Änderungsliste %1 geöffnet</numerusform>
            <numerusform>%n Dateien abgeglichen und in der Änderungsliste %1 geöffnet</numerusform>
        </translation>
    </message>
    <message>
        <source>add</source>
        <translation>hinzufügen</translation>
    </message>
    <message>
        <source>delete</source>
        <translation>löschen</translation>
    </message>
    <message>
        <source>edit</source>
        <translation>bearbeiten</translation>
    </message>
    <message>
        <source>locked by %1</source>
        <translation>gesperrt von %1</translation>
    </message>
    <message>
        <source>added by %1</source>
        <translation>hinzugefügt von %1</translation>
    </message>
    <message>
        <source>deleted by %1</source>
        <translation>gelöscht von %1</translation>
    </message>
    <message>
        <source>checked out by %1</source>
        <translation>ausgecheckt von %1</translation>
    </message>
    <message>
        <source>revision %1 was submitted</source>
        <translation>Revision %1 wurde übergeben</translation>
    </message>
    <message>
        <source>revision %1 was submitted by %2</source>
        <translation>Revision %1 wurde von %2 übergeben</translation>
    </message>
    <message>
        <source>nothing new</source>
        <translation>nichts Neues</translation>
    </message>
    <message>
        <source>Cannot put your content back over the newer revisions</source>
        <translation>Ihr Inhalt kann nicht über die neueren Revisionen zurückgeschrieben werden</translation>
    </message>
    <message>
        <source>edit (keeps your content over revision %1)</source>
        <translation>bearbeiten (behält Ihren Inhalt über Revision %1)</translation>
    </message>
    <message>
        <source>edit (keeps your content over %1&apos;s revision %2)</source>
        <translation>bearbeiten (behält Ihren Inhalt über Revision %2 von %1)</translation>
    </message>
</context>
<context>
    <name>RelatedHolds</name>
    <message>
        <source>%1: its related asset %2 is locked by %3</source>
        <translation>%1: Das zugehörige Asset %2 ist von %3 gesperrt</translation>
    </message>
    <message>
        <source>%1: its related asset %2 is checked out by %3</source>
        <translation>%1: Das zugehörige Asset %2 ist von %3 ausgecheckt</translation>
    </message>
</context>
<context>
    <name>StatusChange</name>
    <message>
        <source>the default changelist</source>
        <translation>der Standard-Änderungsliste</translation>
    </message>
    <message>
        <source>changelist %1</source>
        <translation>Änderungsliste %1</translation>
    </message>
    <message>
        <source>for add in %1</source>
        <translation>zum Hinzufügen in %1</translation>
    </message>
    <message>
        <source>for delete in %1</source>
        <translation>zum Löschen in %1</translation>
    </message>
    <message>
        <source>for edit in %1</source>
        <translation>zum Bearbeiten in %1</translation>
    </message>
    <message>
        <source>%1 (%2): open %3</source>
        <translation>%1 (%2): %3 geöffnet</translation>
    </message>
    <message>
        <source>%1, locked</source>
        <translation>%1, gesperrt</translation>
    </message>
    <message>
        <source>%1 opened it %2</source>
        <translation>%1 hat es %2 geöffnet</translation>
    </message>
    <message>
        <source>%1 locked it</source>
        <translation>%1 hat es gesperrt</translation>
    </message>
    <message>
        <source>%1 unlocked it</source>
        <translation>%1 hat es entsperrt</translation>
    </message>
    <message>
        <source>%1 no longer holds it</source>
        <translation>%1 hält es nicht mehr</translation>
    </message>
    <message>
        <source>revision #%1 is on the server (you have #%2)</source>
        <translation>Revision #%1 ist auf dem Server (Sie haben #%2)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>UnsavedEdits</name>
    <message>
        <source>Not brought up to date because of unsaved edits: %1. Save or undo them first.</source>
        <translation>Wegen ungespeicherter Änderungen nicht aktualisiert: %1. Speichern Sie sie oder machen Sie sie zuerst rückgängig.</translation>
    </message>
    <message>
        <source>Not reverted: %1 has unsaved edits. Save or undo them first.</source>
        <translation>Nicht zurückgesetzt: %1 hat ungespeicherte Änderungen. Speichern Sie sie oder machen Sie sie zuerst rückgängig.</translation>
    </message>
    <message>
        <source>Not brought to the chosen revision because of unsaved edits: %1. Save or undo them first.</source>
        <translation>Wegen ungespeicherter Änderungen nicht auf die gewählte Revision gebracht: %1. Speichern Sie sie oder machen Sie sie zuerst rückgängig.</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::AssetBrowser</name>
    <message>
        <source>Search assets</source>
        <translation>Assets suchen</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::AssetBrowserModel</name>
    <message>
        <source>asking...</source>
        <translation>wird erfragt...</translation>
    </message>
    <message>
        <source>default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Held by</source>
        <translation>Inhaber</translation>
    </message>
    <message>
        <source>Changelist</source>
        <translation>Änderungsliste</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>checked out</source>
        <translation>ausgecheckt</translation>
    </message>
    <message>
        <source>marked for add</source>
        <translation>als neu markiert</translation>
    </message>
    <message>
        <source>marked for delete</source>
        <translation>zum Löschen markiert</translation>
    </message>
    <message>
        <source>held by another user</source>
        <translation>von anderem Benutzer gehalten</translation>
    </message>
    <message>
        <source>held by %1</source>
        <translation>gehalten von %1</translation>
    </message>
    <message>
        <source>not at head</source>
        <translation>nicht aktuell</translation>
    </message>
    <message>
        <source>not in depot</source>
        <translation>nicht im Depot</translation>
    </message>
    <message>
        <source>I/O error</source>
        <translation>E/A-Fehler</translation>
    </message>
    <message>
        <source>up to date</source>
        <translation>aktuell</translation>
    </message>
    <message>
        <source>A newer revision is on the server: you have #%1 of #%2</source>
        <translation>Eine neuere Revision ist auf dem Server: Sie haben #%1 von #%2</translation>
    </message>
    <message>
        <source>#%1/#%2</source>
        <translation>#%1/#%2</translation>
    </message>
    <message>
        <source>Revision</source>
        <translation>Revision</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::AssetCommands</name>
    <message>
        <source>refused: %1</source>
        <translation>abgelehnt: %1</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Abgelehnt: %1</translation>
    </message>
    <message>
        <source>Checked out %1</source>
        <translation>%1 ausgecheckt</translation>
    </message>
    <message>
        <source>Made %1 writable</source>
        <translation>%1 beschreibbar gemacht</translation>
    </message>
    <message>
        <source>%1 is not saved yet: the next save marks it for add</source>
        <translation>%1 ist noch nicht gespeichert: Das nächste Speichern markiert es zum Hinzufügen</translation>
    </message>
    <message>
        <source>Marked %1 for add</source>
        <translation>%1 zum Hinzufügen markiert</translation>
    </message>
    <message>
        <source>Cannot mark %1 for add: %2</source>
        <translation>%1 lässt sich nicht zum Hinzufügen markieren: %2</translation>
    </message>
    <message numerus="yes">
        <source>%n asset(s)</source>
        <translation>
            <numerusform>%n Asset</numerusform>
            <numerusform>%n Assets</numerusform>
        </translation>
    </message>
    <message>
        <source>Get Latest</source>
        <translation>Neueste Revision holen</translation>
    </message>
    <message>
        <source>Revert</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>%1 refused: %2</source>
        <translation>%1 abgelehnt: %2</translation>
    </message>
    <message>
        <source>%1 was not read again: %2</source>
        <translation>%1 wurde nicht neu gelesen: %2</translation>
    </message>
    <message>
        <source>Get This Revision</source>
        <translation>Diese Revision holen</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::AssetEdits</name>
    <message>
        <source>%1 of %2: %3 -&gt; %4</source>
        <translation>%1 von %2: %3 -&gt; %4</translation>
    </message>
    <message>
        <source>Rename %1</source>
        <translation>Umbenennen von %1</translation>
    </message>
    <message>
        <source>Edit %1 of %2</source>
        <translation>Bearbeiten von %1 an %2</translation>
    </message>
    <message>
        <source>failed: %1</source>
        <translation>fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Edited %1</source>
        <translation>Bearbeitet: %1</translation>
    </message>
    <message>
        <source>Cannot edit %1</source>
        <translation>Nicht bearbeitet: %1</translation>
    </message>
    <message numerus="yes">
        <source>Saved %n file(s)</source>
        <translation>
            <numerusform>%n Datei gespeichert</numerusform>
            <numerusform>%n Dateien gespeichert</numerusform>
        </translation>
    </message>
    <message>
        <source>The save did not complete: %1</source>
        <translation>Das Speichern wurde nicht abgeschlossen: %1</translation>
    </message>
    <message>
        <source>The save was cancelled; the edits stay in memory</source>
        <translation>Das Speichern wurde abgebrochen; die Änderungen bleiben im Arbeitsspeicher</translation>
    </message>
    <message>
        <source>The save was cancelled: the check-out of %1 was cancelled; the edits stay in memory</source>
        <translation>Das Speichern wurde abgebrochen: Das Auschecken von %1 wurde abgebrochen; die Änderungen bleiben im Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Cannot create %1: %2</source>
        <translation>%1 lässt sich nicht anlegen: %2</translation>
    </message>
    <message>
        <source>Created %1 (saved with the next save)</source>
        <translation>%1 angelegt (wird beim nächsten Speichern gesichert)</translation>
    </message>
    <message>
        <source>delete %1</source>
        <translation>%1 löschen</translation>
    </message>
    <message>
        <source>Deleted %1</source>
        <translation>%1 gelöscht</translation>
    </message>
    <message>
        <source>Cannot read %1</source>
        <translation>%1 lässt sich nicht lesen</translation>
    </message>
    <message>
        <source>add %1 to %2</source>
        <translation>%1 zu %2 hinzufügen</translation>
    </message>
    <message>
        <source>Added %1</source>
        <translation>%1 hinzugefügt</translation>
    </message>
    <message>
        <source>remove %1 from %2</source>
        <translation>%1 aus %2 entfernen</translation>
    </message>
    <message>
        <source>Removed %1</source>
        <translation>%1 entfernt</translation>
    </message>
    <message>
        <source>Undid %1</source>
        <translation>Rückgängig gemacht: %1</translation>
    </message>
    <message>
        <source>Redid %1</source>
        <translation>Wiederholt: %1</translation>
    </message>
    <message>
        <source>Cannot redo %1</source>
        <translation>%1 lässt sich nicht wiederholen</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::AssetWatches</name>
    <message>
        <source>No longer watching %1</source>
        <translation>%1 wird nicht mehr beobachtet</translation>
    </message>
    <message>
        <source>Watching %1: you are told when it is free</source>
        <translation>%1 wird beobachtet: Sie werden benachrichtigt, wenn es frei ist</translation>
    </message>
    <message>
        <source>%1 is held by %2.</source>
        <translation>%1 wird von %2 gehalten.</translation>
    </message>
    <message>
        <source>%1 is free</source>
        <translation>%1 ist frei</translation>
    </message>
    <message>
        <source>%1 is free: %2 released it</source>
        <translation>%1 ist frei: %2 hat es freigegeben</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::DescriptionDialog</name>
    <message numerus="yes">
        <source>%n file(s):</source>
        <translation>
            <numerusform>%n Datei:</numerusform>
            <numerusform>%n Dateien:</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>hbrc::studio::DifferenceModel</name>
    <message>
        <source>Field</source>
        <translation>Feld</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Vorher</translation>
    </message>
    <message>
        <source>After</source>
        <translation>Nachher</translation>
    </message>
    <message>
        <source>Change</source>
        <translation>Änderung</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::DifferenceView</name>
    <message>
        <source>No difference.</source>
        <translation>Kein Unterschied.</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::HistoryPane</name>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Revision</source>
        <translation>Revision</translation>
    </message>
    <message>
        <source>Change</source>
        <translation>Änderungsliste</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>&amp;Get This Revision</source>
        <translation>Diese Revision &amp;holen</translation>
    </message>
    <message>
        <source>Select an asset to see its history.</source>
        <translation>Wählen Sie ein Asset, um seinen Verlauf zu sehen.</translation>
    </message>
    <message>
        <source>Asking the server for the history of %1...</source>
        <translation>Der Verlauf von %1 wird beim Server erfragt...</translation>
    </message>
    <message>
        <source>The history is unknown: %1</source>
        <translation>Der Verlauf ist unbekannt: %1</translation>
    </message>
    <message>
        <source>%1 has no submitted revision.</source>
        <translation>%1 hat keine übergebene Revision.</translation>
    </message>
    <message numerus="yes">
        <source>%n revision(s) of %1 and its files.</source>
        <translation>
            <numerusform>%n Revision von %1 und seinen Dateien.</numerusform>
            <numerusform>%n Revisionen von %1 und seinen Dateien.</numerusform>
        </translation>
    </message>
    <message>
        <source>your edits</source>
        <translation>Ihre Änderungen</translation>
    </message>
    <message>
        <source>the revision you have, with the edits in memory</source>
        <translation>die Revision, die Sie haben, mit den Änderungen im Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Choose one revision, or two to compare.</source>
        <translation>Wählen Sie eine Revision oder zwei zum Vergleichen.</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Vorher</translation>
    </message>
    <message>
        <source>Change %1</source>
        <translation>Änderungsliste %1</translation>
    </message>
    <message>
        <source>Your edits</source>
        <translation>Ihre Änderungen</translation>
    </message>
    <message>
        <source>Asking the server...</source>
        <translation>Der Server wird gefragt...</translation>
    </message>
    <message>
        <source>The difference is unknown: %1</source>
        <translation>Der Unterschied ist unbekannt: %1</translation>
    </message>
    <message>
        <source>Working offline: the history is asked for when you work online.</source>
        <translation>Offline: Der Verlauf wird erfragt, sobald Sie wieder online arbeiten.</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::LogDock</name>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::LoginDialog</name>
    <message>
        <source>Log In</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Server:</source>
        <translation>Server:</translation>
    </message>
    <message>
        <source>&amp;User:</source>
        <translation>&amp;Benutzer:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
    <message>
        <source>&amp;Keep me logged in</source>
        <translation>&amp;Angemeldet bleiben</translation>
    </message>
    <message>
        <source>The server keeps the log-in for the next start; the password is never stored.</source>
        <translation>Der Server behält die Anmeldung für den nächsten Start; das Passwort wird nie gespeichert.</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::MainWindow</name>
    <message>
        <source>hbrc-studio</source>
        <translation>hbrc-studio</translation>
    </message>
    <message>
        <source>The status of the assets is unknown: %1</source>
        <translation>Der Status der Assets ist unbekannt: %1</translation>
    </message>
    <message>
        <source>%1 - hbrc-studio</source>
        <translation>%1 - hbrc-studio</translation>
    </message>
    <message>
        <source>Open Workspace</source>
        <translation>Arbeitsbereich öffnen</translation>
    </message>
    <message>
        <source>Unsaved Edits</source>
        <translation>Ungespeicherte Änderungen</translation>
    </message>
    <message>
        <source>The workspace has unsaved edits. Save them?</source>
        <translation>Der Arbeitsbereich hat ungespeicherte Änderungen. Speichern?</translation>
    </message>
    <message>
        <source>Opening workspace: %L1 of %L2 assets</source>
        <translation>Arbeitsbereich wird geöffnet: %L1 von %L2 Assets</translation>
    </message>
    <message>
        <source>&amp;Check Out</source>
        <translation>&amp;Auschecken</translation>
    </message>
    <message>
        <source>Tell &amp;Me When It&apos;s Free</source>
        <translation>Benachrichtigen, wenn &amp;frei</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Files were changed offline: Reconcile...</source>
        <translation>Dateien wurden offline geändert: Abgleichen...</translation>
    </message>
    <message>
        <source>Reconcile Refused</source>
        <translation>Abgleich abgelehnt</translation>
    </message>
    <message>
        <source>Nothing was opened; the server refused the reconcile:
%1</source>
        <translation>Nichts wurde geöffnet; der Server hat den Abgleich abgelehnt:
%1</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::NewAssetDialog</name>
    <message>
        <source>Metadata (materials, lights, settings)</source>
        <translation>Metadaten (Materialien, Lichter, Einstellungen)</translation>
    </message>
    <message>
        <source>Value (curves, constants)</source>
        <translation>Wert (Kurven, Konstanten)</translation>
    </message>
    <message>
        <source>Data (meshes, textures, effects)</source>
        <translation>Daten (Meshes, Texturen, Effekte)</translation>
    </message>
    <message>
        <source>New Asset</source>
        <translation>Neues Asset</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation>&amp;Art:</translation>
    </message>
    <message>
        <source>&amp;Type:</source>
        <translation>&amp;Typ:</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::NoticeBar</name>
    <message>
        <source>&amp;Dismiss</source>
        <translation>&amp;Schließen</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::OfflineWork</name>
    <message>
        <source>Working offline: edits go ahead without the server; the files they change are recorded for reconciling</source>
        <translation>Sie arbeiten offline: Änderungen erfolgen ohne den Server; die davon betroffenen Dateien werden für den Abgleich aufgezeichnet</translation>
    </message>
    <message>
        <source>The server cannot be reached: working offline; the files edits change are recorded for reconciling</source>
        <translation>Der Server ist nicht erreichbar: Sie arbeiten offline; die von Änderungen betroffenen Dateien werden für den Abgleich aufgezeichnet</translation>
    </message>
    <message>
        <source>Working online again</source>
        <translation>Sie arbeiten wieder online</translation>
    </message>
    <message>
        <source>Revision control is off: the files edits change are recorded for reconciling</source>
        <translation>Die Versionsverwaltung ist aus: Die von Änderungen betroffenen Dateien werden für den Abgleich aufgezeichnet</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::PendingChangesModel</name>
    <message>
        <source>Changelist / File</source>
        <translation>Änderungsliste / Datei</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
    <message>
        <source>Asset</source>
        <translation>Asset</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Change %1: %2</source>
        <translation>Änderungsliste %1: %2</translation>
    </message>
    <message>
        <source>add</source>
        <translation>hinzufügen</translation>
    </message>
    <message>
        <source>delete</source>
        <translation>löschen</translation>
    </message>
    <message>
        <source>edit</source>
        <translation>bearbeiten</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::PendingChangesPane</name>
    <message>
        <source>Pending Changes</source>
        <translation>Offene Änderungen</translation>
    </message>
    <message>
        <source>Working...</source>
        <translation>In Arbeit...</translation>
    </message>
    <message>
        <source>&amp;Submit...</source>
        <translation>&amp;Übergeben...</translation>
    </message>
    <message>
        <source>&amp;Revert...</source>
        <translation>&amp;Zurücksetzen...</translation>
    </message>
    <message>
        <source>Revert &amp;Unchanged</source>
        <translation>&amp;Unveränderte zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;New Changelist...</source>
        <translation>&amp;Neue Änderungsliste...</translation>
    </message>
    <message>
        <source>&amp;Delete Changelist</source>
        <translation>Änderungsliste &amp;löschen</translation>
    </message>
    <message>
        <source>&amp;Edit Description...</source>
        <translation>Beschreibung &amp;bearbeiten...</translation>
    </message>
    <message>
        <source>&amp;Move to Changelist</source>
        <translation>In Änderungsliste &amp;verschieben</translation>
    </message>
    <message>
        <source>Revert</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Revert these files? Their edits are lost.

%1</source>
        <translation>Diese Dateien zurücksetzen? Ihre Änderungen gehen verloren.

%1</translation>
    </message>
    <message>
        <source>Submit</source>
        <translation>Übergeben</translation>
    </message>
    <message>
        <source>Describe the change:</source>
        <translation>Beschreiben Sie die Änderung:</translation>
    </message>
    <message>
        <source>Revert Unchanged</source>
        <translation>Unveränderte zurücksetzen</translation>
    </message>
    <message>
        <source>Delete Changelist</source>
        <translation>Änderungsliste löschen</translation>
    </message>
    <message>
        <source>Edit Description</source>
        <translation>Beschreibung bearbeiten</translation>
    </message>
    <message>
        <source>Description:</source>
        <translation>Beschreibung:</translation>
    </message>
    <message>
        <source>New Changelist...</source>
        <translation>Neue Änderungsliste...</translation>
    </message>
    <message>
        <source>Move to Changelist</source>
        <translation>In Änderungsliste verschieben</translation>
    </message>
    <message>
        <source>New Changelist</source>
        <translation>Neue Änderungsliste</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::PropertyPane</name>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>%1 (read-only)</source>
        <translation>%1 (schreibgeschützt)</translation>
    </message>
    <message>
        <source>Select an asset to see its properties.</source>
        <translation>Wählen Sie ein Asset, um seine Eigenschaften zu sehen.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Undo History</source>
        <translation>Bearbeitungsverlauf</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::ReconcileDialog</name>
    <message>
        <source>Reconcile Offline Work</source>
        <translation>Offline-Arbeit abgleichen</translation>
    </message>
    <message>
        <source>The workspace was not scanned (%1): only the files recorded offline are listed.</source>
        <translation>Der Arbeitsbereich wurde nicht durchsucht (%1): Nur die offline aufgezeichneten Dateien sind aufgeführt.</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
    <message>
        <source>On the server</source>
        <translation>Auf dem Server</translation>
    </message>
    <message>
        <source>New changelist</source>
        <translation>Neue Änderungsliste</translation>
    </message>
    <message>
        <source>Default changelist</source>
        <translation>Standard-Änderungsliste</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Work done offline</source>
        <translation>Offline erledigte Arbeit</translation>
    </message>
    <message>
        <source>&amp;Changelist:</source>
        <translation>Änderungs&amp;liste:</translation>
    </message>
    <message>
        <source>&amp;Description:</source>
        <translation>&amp;Beschreibung:</translation>
    </message>
    <message>
        <source>&amp;Reconcile</source>
        <translation>&amp;Abgleichen</translation>
    </message>
    <message>
        <source>These files were changed without being opened. Reconcile opens the checked ones in the changelist below; what the files hold stays as it is.</source>
        <translation>Diese Dateien wurden geändert, ohne geöffnet zu sein. Abgleichen öffnet die markierten in der Änderungsliste unten; ihr Inhalt bleibt, wie er ist.</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::Reconciler</name>
    <message>
        <source>Listing the work done offline</source>
        <translation>Offline erledigte Arbeit wird aufgelistet</translation>
    </message>
    <message>
        <source>Reconcile</source>
        <translation>Abgleichen</translation>
    </message>
    <message>
        <source>The workspace was not scanned for changes (%1): only the files recorded offline are listed</source>
        <translation>Der Arbeitsbereich wurde nicht nach Änderungen durchsucht (%1): Nur die offline aufgezeichneten Dateien sind aufgeführt</translation>
    </message>
    <message>
        <source>Nothing to reconcile: every file is open or unchanged</source>
        <translation>Nichts abzugleichen: Jede Datei ist geöffnet oder unverändert</translation>
    </message>
    <message>
        <source>Nothing was reconciled: %1</source>
        <translation>Nichts wurde abgeglichen: %1</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::SessionController</name>
    <message>
        <source>no workspace</source>
        <translation>kein Arbeitsbereich</translation>
    </message>
    <message>
        <source>no server</source>
        <translation>kein Server</translation>
    </message>
    <message>
        <source>revision control off</source>
        <translation>Versionsverwaltung aus</translation>
    </message>
    <message>
        <source>not logged in</source>
        <translation>nicht angemeldet</translation>
    </message>
    <message>
        <source>logged in as %1</source>
        <translation>angemeldet als %1</translation>
    </message>
    <message>
        <source>expired</source>
        <translation>abgelaufen</translation>
    </message>
    <message>
        <source>unreachable</source>
        <translation>nicht erreichbar</translation>
    </message>
    <message>
        <source>Revision control is on for the server %1</source>
        <translation>Die Versionsverwaltung ist für den Server %1 eingeschaltet</translation>
    </message>
    <message>
        <source>Logged in as %1 with the kept log-in</source>
        <translation>Als %1 mit der beibehaltenen Anmeldung angemeldet</translation>
    </message>
    <message>
        <source>Logged in, but the log-in is not kept: %1</source>
        <translation>Angemeldet, aber die Anmeldung wird nicht beibehalten: %1</translation>
    </message>
    <message>
        <source>Logged in as %1</source>
        <translation>Als %1 angemeldet</translation>
    </message>
    <message>
        <source>Not logged in: %1</source>
        <translation>Nicht angemeldet: %1</translation>
    </message>
    <message>
        <source>Logged out; the server said: %1</source>
        <translation>Abgemeldet; der Server meldete: %1</translation>
    </message>
    <message>
        <source>Logged out</source>
        <translation>Abgemeldet</translation>
    </message>
    <message>
        <source>Offline: working offline by choice</source>
        <translation>Offline: Sie arbeiten auf eigenen Wunsch offline</translation>
    </message>
    <message>
        <source>Offline: the server cannot be reached</source>
        <translation>Offline: Der Server ist nicht erreichbar</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::SettingsDialog</name>
    <message>
        <source>Revision Control Settings</source>
        <translation>Einstellungen der Versionsverwaltung</translation>
    </message>
    <message>
        <source>Use revision control</source>
        <translation>Versionsverwaltung verwenden</translation>
    </message>
    <message>
        <source>&amp;Server:</source>
        <translation>&amp;Server:</translation>
    </message>
    <message>
        <source>&amp;User:</source>
        <translation>&amp;Benutzer:</translation>
    </message>
    <message>
        <source>&amp;Workspace:</source>
        <translation>&amp;Arbeitsbereich:</translation>
    </message>
    <message>
        <source>Do nothing</source>
        <translation>Nichts tun</translation>
    </message>
    <message>
        <source>Ask</source>
        <translation>Fragen</translation>
    </message>
    <message>
        <source>Check out</source>
        <translation>Auschecken</translation>
    </message>
    <message>
        <source>Make writable</source>
        <translation>Beschreibbar machen</translation>
    </message>
    <message>
        <source>When editing a read-only &amp;asset:</source>
        <translation>Beim Bearbeiten eines schreib&amp;geschützten Assets:</translation>
    </message>
    <message>
        <source>Always use this setting</source>
        <translation>Diese Einstellung immer verwenden</translation>
    </message>
    <message>
        <source>&amp;Changelist for automatic check-outs:</source>
        <translation>Änderungs&amp;liste für automatisches Auschecken:</translation>
    </message>
    <message>
        <source>Ask for a changelist when checking out</source>
        <translation>Beim Auschecken nach einer Änderungsliste fragen</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>never</source>
        <translation>nie</translation>
    </message>
    <message>
        <source>&amp;Refresh status every:</source>
        <translation>Status a&amp;ktualisieren alle:</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::StartPage</name>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Open a workspace folder...</source>
        <translation>Arbeitsbereichsordner öffnen...</translation>
    </message>
    <message>
        <source>Create a demo depot</source>
        <translation>Demo-Depot anlegen</translation>
    </message>
    <message>
        <source>A depot with the users alice and bob and a sample workspace of about twenty assets</source>
        <translation>Ein Depot mit den Benutzern alice und bob und einem Beispiel-Arbeitsbereich mit etwa zwanzig Assets</translation>
    </message>
    <message>
        <source>Recent workspaces</source>
        <translation>Zuletzt verwendete Arbeitsbereiche</translation>
    </message>
    <message>
        <source>(none yet)</source>
        <translation>(noch keine)</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::StudioActions</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open Workspace...</source>
        <translation>Arbeitsbereich ö&amp;ffnen...</translation>
    </message>
    <message>
        <source>&amp;New Asset...</source>
        <translation>&amp;Neues Asset...</translation>
    </message>
    <message>
        <source>&amp;Delete Asset</source>
        <translation>Asset &amp;löschen</translation>
    </message>
    <message>
        <source>&amp;Rename...</source>
        <translation>&amp;Umbenennen...</translation>
    </message>
    <message>
        <source>&amp;Add External File...</source>
        <translation>Externe Datei &amp;hinzufügen...</translation>
    </message>
    <message>
        <source>Re&amp;move External File...</source>
        <translation>Externe Datei &amp;entfernen...</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Find</source>
        <translation>&amp;Suchen</translation>
    </message>
    <message>
        <source>&amp;Revision Control</source>
        <translation>&amp;Versionsverwaltung</translation>
    </message>
    <message>
        <source>&amp;Check Out</source>
        <translation>&amp;Auschecken</translation>
    </message>
    <message>
        <source>Make &amp;Writable</source>
        <translation>&amp;Beschreibbar machen</translation>
    </message>
    <message>
        <source>Mark for &amp;Add</source>
        <translation>Zum &amp;Hinzufügen markieren</translation>
    </message>
    <message>
        <source>&amp;Get Latest</source>
        <translation>Neueste &amp;Revision holen</translation>
    </message>
    <message>
        <source>Get Latest of A&amp;ll Assets</source>
        <translation>Neueste Revision a&amp;ller Assets holen</translation>
    </message>
    <message>
        <source>Show &amp;Files</source>
        <translation>&amp;Dateien anzeigen</translation>
    </message>
    <message>
        <source>Reveal in File &amp;Browser</source>
        <translation>Im Dateibrowser &amp;zeigen</translation>
    </message>
    <message>
        <source>&amp;Refresh Status</source>
        <translation>&amp;Status aktualisieren</translation>
    </message>
    <message>
        <source>Log &amp;In...</source>
        <translation>A&amp;nmelden...</translation>
    </message>
    <message>
        <source>Log &amp;Out</source>
        <translation>Ab&amp;melden</translation>
    </message>
    <message>
        <source>Turn Revision Control &amp;On</source>
        <translation>&amp;Versionsverwaltung einschalten</translation>
    </message>
    <message>
        <source>&amp;Settings...</source>
        <translation>&amp;Einstellungen...</translation>
    </message>
    <message>
        <source>&amp;Retry</source>
        <translation>&amp;Erneut versuchen</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>%1 &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>%1 &amp;wiederholen</translation>
    </message>
    <message>
        <source>Tell &amp;Me When It&apos;s Free</source>
        <translation>Benachrichtigen, wenn &amp;frei</translation>
    </message>
    <message>
        <source>Submitted C&amp;hanges</source>
        <translation>&amp;Übergebene Änderungen</translation>
    </message>
    <message>
        <source>Work O&amp;ffline</source>
        <translation>&amp;Offline arbeiten</translation>
    </message>
    <message>
        <source>Reconc&amp;ile Offline Work...</source>
        <translation>Offline-Arbeit ab&amp;gleichen...</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::StudioStatusBar</name>
    <message>
        <source>Server: %1</source>
        <translation>Server: %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keiner</translation>
    </message>
    <message>
        <source>User: %1</source>
        <translation>Benutzer: %1</translation>
    </message>
    <message>
        <source>Workspace: %1</source>
        <translation>Arbeitsbereich: %1</translation>
    </message>
    <message>
        <source>Session: %1</source>
        <translation>Sitzung: %1</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::SubmittedChangesDock</name>
    <message>
        <source>Submitted Changes</source>
        <translation>Übergebene Änderungen</translation>
    </message>
    <message>
        <source>All users</source>
        <translation>Alle Benutzer</translation>
    </message>
    <message>
        <source>Filter by text</source>
        <translation>Nach Text filtern</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Aktualisieren</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
    <message>
        <source>Revision</source>
        <translation>Revision</translation>
    </message>
    <message>
        <source>Asset</source>
        <translation>Asset</translation>
    </message>
    <message>
        <source>Double-click a file to select its asset.</source>
        <translation>Doppelklicken Sie auf eine Datei, um ihr Asset zu wählen.</translation>
    </message>
    <message>
        <source>Open a workspace to see its server&apos;s submitted changes.</source>
        <translation>Öffnen Sie einen Arbeitsbereich, um die übergebenen Änderungen seines Servers zu sehen.</translation>
    </message>
    <message>
        <source>Asking the server for the submitted changes...</source>
        <translation>Die übergebenen Änderungen werden beim Server erfragt...</translation>
    </message>
    <message>
        <source>The submitted changes are unknown: %1</source>
        <translation>Die übergebenen Änderungen sind unbekannt: %1</translation>
    </message>
    <message numerus="yes">
        <source>%n submitted change(s)</source>
        <translation>
            <numerusform>%n übergebene Änderungsliste</numerusform>
            <numerusform>%n übergebene Änderungslisten</numerusform>
        </translation>
    </message>
    <message>
        <source>Asking the server...</source>
        <translation>Der Server wird gefragt...</translation>
    </message>
    <message>
        <source>The change is unknown: %1</source>
        <translation>Die Änderungsliste ist unbekannt: %1</translation>
    </message>
    <message>
        <source>The change made no difference to an asset of this workspace.</source>
        <translation>Die Änderungsliste hat kein Asset dieses Arbeitsbereichs verändert.</translation>
    </message>
    <message>
        <source>Choose a file of an asset to see what the change did to it.</source>
        <translation>Wählen Sie eine Datei eines Assets, um zu sehen, was die Änderungsliste daran geändert hat.</translation>
    </message>
    <message>
        <source>The difference is unknown: %1</source>
        <translation>Der Unterschied ist unbekannt: %1</translation>
    </message>
    <message>
        <source>%1 before</source>
        <translation>%1 vorher</translation>
    </message>
    <message>
        <source>%1 in change %2</source>
        <translation>%1 in Änderungsliste %2</translation>
    </message>
    <message>
        <source>Working offline: the submitted changes are asked for when you work online.</source>
        <translation>Offline: Die übergebenen Änderungen werden erfragt, sobald Sie wieder online arbeiten.</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::SubmittedChangesModel</name>
    <message>
        <source>Change</source>
        <translation>Änderungsliste</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
</context>
<context>
    <name>hbrc::studio::WorkspaceController</name>
    <message>
        <source>Cannot open the workspace %1: %2</source>
        <translation>Der Arbeitsbereich %1 lässt sich nicht öffnen: %2</translation>
    </message>
    <message>
        <source>Created a demo depot in %1 (users alice and bob, passwords alice-pw and bob-pw)</source>
        <translation>Demo-Depot in %1 angelegt (Benutzer alice und bob, Passwörter alice-pw und bob-pw)</translation>
    </message>
    <message>
        <source>Cannot create a demo depot: %1</source>
        <translation>Das Demo-Depot lässt sich nicht anlegen: %1</translation>
    </message>
</context>
</TS>
