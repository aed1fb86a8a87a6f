#include "credentials.h"

#include <sodium.h>

#include <array>

#include "depoterror.h"

namespace hbrc::depot {

namespace {

void initialiseSodium()
{
    // sodium_init is safe to call repeatedly; it returns 1 once already initialised.
    if (sodium_init() < 0)
        throw DepotError(code::Failed, "The cryptography library could not be initialised");
}

std::string toHex(const unsigned char* bytes, std::size_t size)
{
    std::string hex(size * 2 + 1, '\0');
    sodium_bin2hex(hex.data(), hex.size(), bytes, size);
    hex.pop_back();
    return hex;
}

}  // namespace

std::string hashPassword(const std::string& password, PasswordHashCost cost)
{
    initialiseSodium();
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    // Interactive limits: a log-in stays well under a second while each guess stays expensive.
    // The hash records its limits, so verifying costs what hashing did.
    const bool minimal = cost == PasswordHashCost::Minimal;
    if (crypto_pwhash_str(hash.data(), password.data(), password.size(),
                          minimal ? crypto_pwhash_OPSLIMIT_MIN : crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          minimal ? crypto_pwhash_MEMLIMIT_MIN : crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw DepotError(code::Failed, "Out of memory while hashing the password");
    return std::string(hash.data());
}

bool verifyPassword(const std::string& storedHash, const std::string& password)
{
    initialiseSodium();
    return crypto_pwhash_str_verify(storedHash.c_str(), password.data(), password.size()) == 0;
}

std::string newTicket()
{
    initialiseSodium();
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    return toHex(bytes.data(), bytes.size());
}

std::string ticketDigest(const std::string& ticket)
{
    initialiseSodium();
    std::array<unsigned char, crypto_generichash_BYTES> digest{};
    crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(ticket.data()),
                       ticket.size(), nullptr, 0);
    return toHex(digest.data(), digest.size());
}

}  // namespace hbrc::depot
