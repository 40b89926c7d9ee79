#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>

/// Encryption of the saved passwords: AES-256 in CBC mode with PKCS#7 padding and sixteen zero bytes as the start
/// vector. The result is the ciphertext alone, without a head. It hides a password from a glance into the file and from
/// other accounts; it is no protection against somebody who has this program. Any thread.
using Aes256Key = std::array<unsigned char, 32>;

/// The SHA-256 digest of "MintLeaf|password|salt" in UTF-8; nothing if there is no memory for it.
std::optional<Aes256Key> keyFromPassword(const QString &password, const QString &salt);

/// @return one to sixteen bytes more than `data`, a multiple of sixteen; nothing if `data` is too long for one call.
std::optional<QByteArray> aes256Encrypt(const QByteArray &data, const Aes256Key &key);

/// @return the bytes; nothing if the length or the padding is wrong.
std::optional<QByteArray> aes256Decrypt(const QByteArray &data, const Aes256Key &key);

/// Encrypts the UTF-8 form of `text`.
std::optional<QByteArray> AES256EncryptWithPassword(const QString &text, const QString &password, const QString &salt);

/// @return the text, or nothing if the bytes are damaged, made with another password or salt, or no UTF-8.
std::optional<QString> AES256DecryptWithPassword(const QByteArray &data, const QString &password, const QString &salt);

/// The password database's name of the effective user, empty if it has none.
QString userLoginName();
