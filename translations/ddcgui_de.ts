<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>DDCGui</name>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Could not establish a connection to the driver. Do you want to wait longer?</source>
        <translation>Es konnte keine Verbindung zum Treiber hergestellt werden. Wollen Sie länger warten?</translation>
    </message>
    <message>
        <source>No connection to the driver.</source>
        <translation>Keine Verbindung zum Treiber.</translation>
    </message>
</context>
<context>
    <name>DdcGuiFfm</name>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>Graphical Level Display</source>
        <translation>Grafische Pegelanzeige</translation>
    </message>
    <message>
        <source>Level Value</source>
        <translation>Pegelwert</translation>
    </message>
    <message>
        <source>Couple Frequency</source>
        <translation>Frequenz koppeln</translation>
    </message>
    <message>
        <source>Couple Frequency To Main</source>
        <translation>Frequenz an den Hauptempfänger koppeln</translation>
    </message>
    <message>
        <source>Couple Demodulation</source>
        <translation>Demodulation koppeln</translation>
    </message>
    <message>
        <source>Couple Demodulation To Main</source>
        <translation>Demodulation an den Hauptempfänger koppeln</translation>
    </message>
    <message>
        <source>Demodulation</source>
        <translation>Demodulation</translation>
    </message>
    <message>
        <source>Demodulation Bandwidth</source>
        <translation>Demodulationsbandbreite</translation>
    </message>
    <message>
        <source>Use Squelch</source>
        <translation>Rauschsperre</translation>
    </message>
    <message>
        <source>Squelch Value</source>
        <translation>Schwelle der Rauschsperre</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>Channel Audio Volume</source>
        <translation>Lautstärke des Kanals</translation>
    </message>
    <message>
        <source>Audio Balance</source>
        <translation>Balance</translation>
    </message>
    <message>
        <source>Audio Recording</source>
        <translation>Audioaufzeichnung</translation>
    </message>
    <message>
        <source>If Recording</source>
        <translation>ZF-Aufzeichnung</translation>
    </message>
    <message>
        <source>Channel Recording</source>
        <translation>Kanalaufzeichnung</translation>
    </message>
    <message>
        <source>Enable Activity Generation</source>
        <translation>Aktivitäten erzeugen</translation>
    </message>
    <message>
        <source>Recording will produce no data as current frequency not within valid range!</source>
        <translation>Die Aufzeichnung liefert keine Daten, weil die Frequenz nicht im gültigen Bereich liegt!</translation>
    </message>
    <message>
        <source>Record Confirmation</source>
        <translation>Aufzeichnung bestätigen</translation>
    </message>
    <message>
        <source>Record not possible. Audio MUTE is on.
Would you like to turn it off and proceed with the recording?</source>
        <translation>Aufzeichnung nicht möglich. Der Ton ist STUMM geschaltet.
Wollen Sie ihn einschalten und mit der Aufzeichnung fortfahren?</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Record Failed</source>
        <translation>Aufzeichnung nicht möglich</translation>
    </message>
    <message>
        <source>Record not possible. Audio mode is not selected.
Open &apos;Audio Configuration...&apos; from Configuration menu.
Then select the desired sample rate.</source>
        <translation>Aufzeichnung nicht möglich. Es ist keine Audiobetriebsart gewählt.
Öffnen Sie &apos;Audio Configuration...&apos; im Menü Configuration.
Wählen Sie dann die gewünschte Abtastrate.</translation>
    </message>
</context>
<context>
    <name>DdcGuiMain</name>
    <message>
        <source>DDC</source>
        <translation>DDC</translation>
    </message>
    <message>
        <source>Range:</source>
        <translation>Band:</translation>
    </message>
    <message>
        <source>Frequency Range</source>
        <translation>Frequenzbereich</translation>
    </message>
    <message>
        <source>Valid Frequency Range</source>
        <translation>Gültiger Frequenzbereich</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Art:</translation>
    </message>
    <message>
        <source>Current Mode</source>
        <translation>Aktuelle Betriebsart</translation>
    </message>
</context>
<context>
    <name>DdcSelectionDlg</name>
    <message>
        <source>SELECT DDC:</source>
        <translation>DDC WÄHLEN:</translation>
    </message>
    <message>
        <source>CONNECTED CLIENT:</source>
        <translation>VERBUNDENE STATION:</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
</context>
</TS>
