<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>FrequencyUnit</name>
    <message>
        <source>Hz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>kHz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MHz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>GHz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>THz</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QAbstractSocketHelpers</name>
    <message>
        <source>The connection was refused by the peer (or timed out).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The remote host closed the connection. Note that the client socket (i.e., this socket) will be closed after the remote close notification has been sent.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The host address was not found.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The socket operation failed because the application lacked the required privileges.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The local system ran out of resources (e.g., too many sockets).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The socket operation timed out.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The datagram was larger than the operating system&apos;s limit (which can be as low as 8192 bytes).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An error occurred with the network (e.g., the network cable was accidentally plugged out).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The address specified is already in use and was set to be exclusive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The address specified does not belong to the host.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The requested socket operation is not supported by the local operating system (e.g., lack of IPv6 support).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Used by QAbstractSocketEngine only, The last operation attempted has not finished yet (still in progress in the background).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The socket is using a proxy, and the proxy requires authentication.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The SSL / TLS handshake failed, so the connection was closed (only used in QSslSocket).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not contact the proxy server because the connection to that server was denied.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection to the proxy server was closed unexpectedly(before the connection to the final peer was established).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection to the proxy server timed out or the proxy server stopped responding in the authentication phase.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The proxy address (or the application proxy) was not found.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection negotiation with the proxy server because the response from the proxy server could not be understood.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An unidentified error occurred.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QCoreApplication</name>
    <message>
        <source>Geo Decimal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Geo long</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Geo short</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>UTM</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MGRS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RT90</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SWEREF99</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>QTH Maidenhead</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TimeUnit</name>
    <message>
        <source>ns</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>µs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ms</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>m</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>h</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>d</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
