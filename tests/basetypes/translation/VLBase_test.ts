<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>FrequencyUnit</name>
    <message>
        <source>kHz</source>
        <translation>кГц</translation>
    </message>
</context>
<context>
    <name>TimeUnit</name>
    <message>
        <source>µs</source>
        <translation>мкс</translation>
    </message>
</context>
</TS>
