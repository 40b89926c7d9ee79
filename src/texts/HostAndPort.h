#pragma once

#include <QString>

/// What one text says of an address.
struct HostAndPort {
    QString host;
    QString port; ///< as typed; empty where the text names none
};

/// Takes "HOST:PORT" apart, without the blanks around both. The port is whatever stands behind the colon. A text with
/// none or several colons, with nothing on one side of it, or with square brackets, is all host.
HostAndPort splitHostAndPort(const QString &text);
