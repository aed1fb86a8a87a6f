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
