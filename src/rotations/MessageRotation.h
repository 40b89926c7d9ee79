#pragma once

#include "NamedRotation.h"

/// One message of a message rotation.
struct MessageRotationInst {
    QString message;  ///< as typed, without quoting
    QString duration; ///< how long it stays, in whole seconds; may be any text, it is parsed when it is played

    static constexpr const char *RootElement = "KelMessageRotation";
    static constexpr const char *RotationElement = "MessageRotation";
    static constexpr const char *EntryElement = "MessageRotationInst";
    static constexpr bool IsEditable = true; ///< in the table
    static constexpr RotationField<MessageRotationInst> fields[] = {
        {"message", QT_TRANSLATE_NOOP("RotationField", "Message"), &MessageRotationInst::message},
        {"duration", QT_TRANSLATE_NOOP("RotationField", "Duration"), &MessageRotationInst::duration}};

    /// Whether a row with these texts may be pasted.
    bool isWhole() const { return !message.isEmpty(); }
    bool operator==(const MessageRotationInst &) const = default;
};

/// A named list of chat messages with their durations.
using MessageRotation = NamedRotation<MessageRotationInst>;
