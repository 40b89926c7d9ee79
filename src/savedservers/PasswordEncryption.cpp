#include "PasswordEncryption.h"

#include <openssl/evp.h>

#include <QStringDecoder>

#include <cerrno>
#include <climits>
#include <memory>
#include <pwd.h>
#include <unistd.h>
#include <vector>

static constexpr qsizetype blockSize = 16;

struct CipherContextDeleter {
    void operator()(EVP_CIPHER_CTX *context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextDeleter>;

static const unsigned char *octets(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

std::optional<Aes256Key> keyFromPassword(const QString &password, const QString &salt)
{
    const QByteArray bytes = QStringLiteral("MintLeaf|%1|%2").arg(password, salt).toUtf8();
    Aes256Key key{};
    const int done =
        EVP_Digest(bytes.constData(), static_cast<size_t>(bytes.size()), key.data(), nullptr, EVP_sha256(), nullptr);
    if (done != 1)
        return std::nullopt;
    return key;
}

enum class Direction { Decrypt = 0, Encrypt = 1 };

static std::optional<QByteArray> crypt(const QByteArray &data, const Aes256Key &key, Direction direction)
{
    if (data.size() > INT_MAX - blockSize)
        return std::nullopt;
    const CipherContext context(EVP_CIPHER_CTX_new());
    const std::array<unsigned char, blockSize> startVector{};
    QByteArray result(data.size() + blockSize, '\0');
    auto *const out = reinterpret_cast<unsigned char *>(result.data());
    int length = 0;
    int lastLength = 0;
    const bool isDone =
        context != nullptr &&
        EVP_CipherInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key.data(), startVector.data(),
                          static_cast<int>(direction)) == 1 &&
        EVP_CipherUpdate(context.get(), out, &length, octets(data), static_cast<int>(data.size())) == 1 &&
        EVP_CipherFinal_ex(context.get(), out + length, &lastLength) == 1;
    if (!isDone)
        return std::nullopt;
    result.truncate(length + lastLength);
    return result;
}

std::optional<QByteArray> aes256Encrypt(const QByteArray &data, const Aes256Key &key)
{
    return crypt(data, key, Direction::Encrypt);
}

std::optional<QByteArray> aes256Decrypt(const QByteArray &data, const Aes256Key &key)
{
    return crypt(data, key, Direction::Decrypt);
}

std::optional<QByteArray> AES256EncryptWithPassword(const QString &text, const QString &password, const QString &salt)
{
    const std::optional<Aes256Key> key = keyFromPassword(password, salt);
    return key ? aes256Encrypt(text.toUtf8(), *key) : std::nullopt;
}

std::optional<QString> AES256DecryptWithPassword(const QByteArray &data, const QString &password, const QString &salt)
{
    const std::optional<Aes256Key> key = keyFromPassword(password, salt);
    const std::optional<QByteArray> bytes = key ? aes256Decrypt(data, *key) : std::nullopt;
    if (!bytes)
        return std::nullopt;
    // Stateless: a character that breaks off at the end is an error. ConvertInitialBom: a mark at the start is text.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder.decode(*bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QString userLoginName()
{
    constexpr size_t largestRecord = 1 << 20;
    passwd record{};
    passwd *found = nullptr;
    std::vector<char> buffer(1024);
    while (getpwuid_r(geteuid(), &record, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < largestRecord)
        buffer.resize(buffer.size() * 2);
    return found == nullptr ? QString() : QString::fromUtf8(found->pw_name);
}
