#pragma once

#include <cstdint>

namespace hbrc::depot {

class Database;

// Creates the tables of a new depot.
void createSchema(Database& db, std::int64_t sessionLifetimeSeconds);
// Throws DepotError(SessionUnusable) when the file is not a depot of this format.
void checkSchema(Database& db);

}  // namespace hbrc::depot
