#pragma once

#include <QString>

#include "link/streammessages.h"

// Where the scan buffer's stream is, read from text: "HOST:PORT", "[V6]:PORT", or a bare host (also
// a bare IPv6 address), for which the default port holds.
struct ScanAddress
{
    static constexpr quint16 defaultPort = Link::defaultStreamPort;

    QString host;
    quint16 port = 0;
    QString problem;  // for the operator: what is wrong and what is expected; empty: all is well

    bool isValid() const { return problem.isEmpty(); }
    QString text() const;  // "HOST:PORT"

    static ScanAddress read(const QString& text);
};
