<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>DemodBandwidth</name>
    <message>
        <source>wide</source>
        <translation>breit</translation>
    </message>
</context>
</TS>
