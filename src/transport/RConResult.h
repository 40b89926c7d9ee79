#pragma once

/// How an exchange with a server ended; RCon::resultStr() gives the text. Every value but the first is a failure.
enum RConResult : unsigned {
    RConResultSuccess = 0,
    RConResultTimeout = 1,
    RConResultInvalidPassword = 2,
    RConResultInvalidPacket = 3,
    RConResultNullReply = 4,
    RConResultError = 5,
};
