#include <openssl/evp.h>

#include <dlfcn.h>

// OpenSSL's functions that the program calls, each handed on to the library, which is loaded at the first call: loading
// it costs memory and a tenth of the start, and most sessions begin without a look at a saved password. Without the
// library each of them fails in the way that its own documentation allows.

#define FERROW_TEXT_OF(number) #number
#define FERROW_NAME_OF(number) "libcrypto.so." FERROW_TEXT_OF(number)

template <typename Function>
static Function *original(const char *name)
{
    static void *const library = dlopen(FERROW_NAME_OF(OPENSSL_SHLIB_VERSION), RTLD_LAZY | RTLD_LOCAL);
    return library == nullptr ? nullptr : reinterpret_cast<Function *>(dlsym(library, name));
}

extern "C" {
const EVP_MD *EVP_sha256()
{
    auto *const call = original<decltype(EVP_sha256)>("EVP_sha256");
    return call == nullptr ? nullptr : call();
}

int EVP_Digest(const void *data, size_t count, unsigned char *digest, unsigned int *size, const EVP_MD *type,
               ENGINE *engine)
{
    auto *const call = original<decltype(EVP_Digest)>("EVP_Digest");
    return call == nullptr ? 0 : call(data, count, digest, size, type, engine);
}

const EVP_CIPHER *EVP_aes_256_cbc()
{
    auto *const call = original<decltype(EVP_aes_256_cbc)>("EVP_aes_256_cbc");
    return call == nullptr ? nullptr : call();
}

EVP_CIPHER_CTX *EVP_CIPHER_CTX_new()
{
    auto *const call = original<decltype(EVP_CIPHER_CTX_new)>("EVP_CIPHER_CTX_new");
    return call == nullptr ? nullptr : call();
}

void EVP_CIPHER_CTX_free(EVP_CIPHER_CTX *context)
{
    if (auto *const call = original<decltype(EVP_CIPHER_CTX_free)>("EVP_CIPHER_CTX_free"))
        call(context);
}

int EVP_CipherInit_ex(EVP_CIPHER_CTX *context, const EVP_CIPHER *cipher, ENGINE *engine, const unsigned char *key,
                      const unsigned char *vector, int isEncrypting)
{
    auto *const call = original<decltype(EVP_CipherInit_ex)>("EVP_CipherInit_ex");
    return call == nullptr ? 0 : call(context, cipher, engine, key, vector, isEncrypting);
}

int EVP_CipherUpdate(EVP_CIPHER_CTX *context, unsigned char *out, int *outSize, const unsigned char *in, int inSize)
{
    auto *const call = original<decltype(EVP_CipherUpdate)>("EVP_CipherUpdate");
    return call == nullptr ? 0 : call(context, out, outSize, in, inSize);
}

int EVP_CipherFinal_ex(EVP_CIPHER_CTX *context, unsigned char *out, int *outSize)
{
    auto *const call = original<decltype(EVP_CipherFinal_ex)>("EVP_CipherFinal_ex");
    return call == nullptr ? 0 : call(context, out, outSize);
}
}
