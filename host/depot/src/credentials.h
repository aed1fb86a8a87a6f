#pragma once

// Passwords are kept only as salted Argon2id hashes; session tickets are random and the depot keeps
// only their digest, so a copy of the database file grants no session.

#include <string>

#include <depot/types.h>

namespace hbrc::depot {

std::string hashPassword(const std::string& password, PasswordHashCost cost);
bool verifyPassword(const std::string& storedHash, const std::string& password);
std::string newTicket();
std::string ticketDigest(const std::string& ticket);

}  // namespace hbrc::depot
