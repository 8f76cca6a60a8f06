<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>FixtureGui</name>
    <message>
        <source>Bandwidth</source>
        <translation>Largeur de bande</translation>
    </message>
</context>
</TS>
