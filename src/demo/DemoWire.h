#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// How console texts travel between a client and the simulated server.

/// @return the text of a request datagram, that is the password, a blank and the command; nothing when the
///         datagram is no request.
std::optional<QString> demoRequestText(QByteArrayView datagram);

/// The datagrams of a reply, in order: at least one, each with at most 1,000 bytes of text.
/// What Latin-1 cannot hold becomes a question mark.
QList<QByteArray> demoReplyDatagrams(const QString &text);

/// The short datagram that refuses a password.
QByteArray demoRefusalDatagram();
