<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CRevisionControlUIHelper</name>
    <message>
        <source>Files for asset </source>
        <translation>Dateien des Assets </translation>
    </message>
    <message>
        <source>Perforce Operation in Progress, press Cancel to abort</source>
        <translation>Perforce-Vorgang läuft, zum Abbrechen auf Abbrechen klicken</translation>
    </message>
    <message>
        <source>because the following users have checked out some of the files
</source>
        <translation>weil die folgenden Benutzer einige der Dateien ausgecheckt haben
</translation>
    </message>
    <message>
        <source>because some of the files are marked for add
</source>
        <translation>weil einige der Dateien zum Hinzufügen markiert sind
</translation>
    </message>
    <message>
        <source>because the following users have marked for add some of the files
</source>
        <translation>weil die folgenden Benutzer einige der Dateien zum Hinzufügen markiert haben
</translation>
    </message>
    <message>
        <source>because some of the files are marked for delete
</source>
        <translation>weil einige der Dateien zum Löschen markiert sind
</translation>
    </message>
    <message>
        <source>because the following users have marked for delete some of the files
</source>
        <translation>weil die folgenden Benutzer einige der Dateien zum Löschen markiert haben
</translation>
    </message>
    <message>
        <source>because some of the files are not at the head revision
</source>
        <translation>weil einige der Dateien nicht auf der neuesten Revision sind
</translation>
    </message>
    <message>
        <source>because some of the files are not in the database
</source>
        <translation>weil einige der Dateien nicht in der Datenbank sind
</translation>
    </message>
    <message>
        <source>because some of the files are causing a IO error
</source>
        <translation>weil einige der Dateien einen E/A-Fehler verursachen
</translation>
    </message>
    <message>
        <source>because the following users have locked some of the files
</source>
        <translation>weil die folgenden Benutzer einige der Dateien gesperrt haben
</translation>
    </message>
    <message>
        <source>Error reported by IO module: </source>
        <translation>Vom E/A-Modul gemeldeter Fehler: </translation>
    </message>
    <message>
        <source>Unknown error found
</source>
        <translation>Unbekannter Fehler
</translation>
    </message>
    <message>
        <source>Error found while trying to get the list of users for object </source>
        <translation>Fehler beim Abfragen der Benutzer des Objekts </translation>
    </message>
    <message>
        <source>Cannot connect to source control.
</source>
        <translation>Keine Verbindung zur Versionsverwaltung.
</translation>
    </message>
    <message>
        <source>Unknown error encountered.
</source>
        <translation>Ein unbekannter Fehler ist aufgetreten.
</translation>
    </message>
    <message>
        <source>Files:
</source>
        <translation>Dateien:
</translation>
    </message>
    <message>
        <source>Sorry cannot get the list of users
</source>
        <translation>Die Liste der Benutzer kann leider nicht abgefragt werden
</translation>
    </message>
    <message>
        <source>Post-Save Mark-for-Delete: </source>
        <translation>Zum Löschen markieren nach dem Speichern: </translation>
    </message>
    <message>
        <source>Post-Save Mark-for-Add: </source>
        <translation>Zum Hinzufügen markieren nach dem Speichern: </translation>
    </message>
    <message>
        <source>Revision control system needs to be queried for file status but
session was lost. Enter a password to re-connect, or cancel the mark-for-delete.</source>
        <translation>Die Versionsverwaltung muss nach dem Dateistatus gefragt werden, aber
die Sitzung ist verloren. Geben Sie ein Passwort ein, um sich neu zu verbinden, oder brechen Sie das Markieren zum Löschen ab.</translation>
    </message>
    <message>
        <source>Revision control system needs to be queried for file status but
session was lost. Enter a password to re-connect, or cancel the mark-for-add.</source>
        <translation>Die Versionsverwaltung muss nach dem Dateistatus gefragt werden, aber
die Sitzung ist verloren. Geben Sie ein Passwort ein, um sich neu zu verbinden, oder brechen Sie das Markieren zum Hinzufügen ab.</translation>
    </message>
    <message>
        <source>Source control session expired. Password required to re-connect.</source>
        <translation>Die Sitzung der Versionsverwaltung ist abgelaufen. Zum Neuverbinden wird das Passwort benötigt.</translation>
    </message>
</context>
<context>
    <name>PasswordRequiredDialog</name>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Please enter the password</source>
        <translation>Bitte geben Sie das Passwort ein</translation>
    </message>
    <message>
        <source>Data Source Password Required</source>
        <translation>Passwort für die Datenquelle erforderlich</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Connection Error</source>
        <translation>Verbindungsfehler</translation>
    </message>
    <message>
        <source>Cannot connect to version control</source>
        <translation>Keine Verbindung zur Versionsverwaltung möglich</translation>
    </message>
    <message>
        <source>The following files have been deleted during the commit:
</source>
        <translation>Die folgenden Dateien wurden beim Speichern gelöscht:
</translation>
    </message>
    <message>
        <source>but we couldn&apos;t mark them for delete in your revision control
</source>
        <translation>aber sie konnten in Ihrer Versionsverwaltung nicht zum Löschen markiert werden
</translation>
    </message>
    <message>
        <source>Check Out</source>
        <translation>Auschecken</translation>
    </message>
    <message>
        <source>Checkout Error</source>
        <translation>Fehler beim Auschecken</translation>
    </message>
    <message>
        <source>Cannot checkout the assets
</source>
        <translation>Die Assets können nicht ausgecheckt werden
</translation>
    </message>
    <message>
        <source>I/O Error</source>
        <translation>E/A-Fehler</translation>
    </message>
    <message>
        <source>Unknown error</source>
        <translation>Unbekannter Fehler</translation>
    </message>
    <message>
        <source>Could not execute command: Unknown error</source>
        <translation>Befehl konnte nicht ausgeführt werden: Unbekannter Fehler</translation>
    </message>
    <message>
        <source>Error found while trying to make the asset %1 writable:
%2</source>
        <translation>Fehler beim Beschreibbarmachen des Assets %1:
%2</translation>
    </message>
    <message>
        <source>Cannot mark-for-add the assets
</source>
        <translation>Die Assets können nicht zum Hinzufügen markiert werden
</translation>
    </message>
    <message>
        <source>Mark For Delete</source>
        <translation>Zum Löschen markieren</translation>
    </message>
    <message>
        <source>The files below were deleted during the commit
We can now mark them for delete in your revision control</source>
        <translation>Die folgenden Dateien wurden beim Speichern gelöscht.
Sie können jetzt in Ihrer Versionsverwaltung zum Löschen markiert werden</translation>
    </message>
    <message>
        <source>Post-Saving: Mark For Add</source>
        <translation>Nach dem Speichern: Zum Hinzufügen markieren</translation>
    </message>
    <message>
        <source>These assets have just been added during the save operation
We can now mark them for add in the revision control</source>
        <translation>Diese Assets wurden beim Speichern neu angelegt.
Sie können jetzt in der Versionsverwaltung zum Hinzufügen markiert werden</translation>
    </message>
    <message>
        <source>Mark For Add</source>
        <translation>Zum Hinzufügen markieren</translation>
    </message>
    <message>
        <source>Revert Error</source>
        <translation>Fehler beim Zurücksetzen</translation>
    </message>
    <message>
        <source>The following marked-for-add files were deleted during the commit:
</source>
        <translation>Die folgenden zum Hinzufügen markierten Dateien wurden beim Speichern gelöscht:
</translation>
    </message>
    <message>
        <source>but we couldn&apos;t revert the mark-for-add for the following reason:
</source>
        <translation>aber das Markieren zum Hinzufügen konnte aus folgendem Grund nicht zurückgesetzt werden:
</translation>
    </message>
    <message>
        <source>Mark-For-Delete Error</source>
        <translation>Fehler beim Markieren zum Löschen</translation>
    </message>
    <message>
        <source>The following checked out files were deleted during the commit:
</source>
        <translation>Die folgenden ausgecheckten Dateien wurden beim Speichern gelöscht:
</translation>
    </message>
    <message>
        <source>but we couldnt mark them for delete in the same change list for the following reason:
</source>
        <translation>aber sie konnten aus folgendem Grund nicht in derselben Änderungsliste zum Löschen markiert werden:
</translation>
    </message>
    <message>
        <source>Mark-For-Add Error</source>
        <translation>Fehler beim Markieren zum Hinzufügen</translation>
    </message>
    <message>
        <source>Check Out Before Saving</source>
        <translation>Vor dem Speichern auschecken</translation>
    </message>
    <message>
        <source>Some of the files of the following assets are read-only
Please select an option before saving continues</source>
        <translation>Einige Dateien der folgenden Assets sind schreibgeschützt.
Bitte wählen Sie eine Option, bevor das Speichern fortgesetzt wird</translation>
    </message>
    <message>
        <source>Gave up after retrying for %1 seconds (the host preference %2).</source>
        <translation>Nach %1 Sekunden wiederholter Versuche aufgegeben (Host-Einstellung %2).</translation>
    </message>
    <message>
        <source>%1 is &quot;none&quot;</source>
        <translation>%1 ist &quot;none&quot;</translation>
    </message>
    <message>
        <source>%1 is off</source>
        <translation>%1 ist ausgeschaltet</translation>
    </message>
    <message>
        <source>%1 names the changelist &quot;%2&quot;, which no longer exists</source>
        <translation>%1 nennt die Änderungsliste &quot;%2&quot;, die es nicht mehr gibt</translation>
    </message>
    <message>
        <source>The save was cancelled: these assets have read-only files and need a decision that a batch run cannot make (%1):
%2</source>
        <translation>Das Speichern wurde abgebrochen: Diese Assets haben schreibgeschützte Dateien und brauchen eine Entscheidung, die ein Batch-Lauf nicht treffen kann (%1):
%2</translation>
    </message>
</context>
<context>
    <name>hbChangeListSelectionDialog</name>
    <message>
        <source>Assets:</source>
        <translation>Assets:</translation>
    </message>
    <message>
        <source>Hide Files</source>
        <translation>Dateien ausblenden</translation>
    </message>
    <message>
        <source>Show Files</source>
        <translation>Dateien anzeigen</translation>
    </message>
    <message>
        <source>Select Pending ChangeList</source>
        <translation>Ausstehende Änderungsliste auswählen</translation>
    </message>
    <message>
        <source>Read-Only Assets</source>
        <translation>Schreibgeschützte Assets</translation>
    </message>
    <message>
        <source>Add files to pending changelist:</source>
        <translation>Dateien zur ausstehenden Änderungsliste hinzufügen:</translation>
    </message>
    <message>
        <source>Changelist description</source>
        <translation>Beschreibung der Änderungsliste</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Check Out</source>
        <translation>Auschecken</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Fortfahren</translation>
    </message>
    <message>
        <source>Make Writable</source>
        <translation>Beschreibbar machen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Don&apos;t show this dialog again (always use this option)</source>
        <translation>Diesen Dialog nicht mehr anzeigen (immer diese Option verwenden)</translation>
    </message>
    <message>
        <source>Don&apos;t show this dialog again (always use this changelist)</source>
        <translation>Diesen Dialog nicht mehr anzeigen (immer diese Änderungsliste verwenden)</translation>
    </message>
</context>
</TS>
