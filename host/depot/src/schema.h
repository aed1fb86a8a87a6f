#pragma once

#include <cstdint>

namespace hbrc::depot {

class Database;

// Creates the tables of a new depot.
void createSchema(Database& db, std::int64_t sessionLifetimeSeconds);
// Upgrades a depot of an earlier format; throws DepotError(SessionUnusable) when the file is not a
// depot this version can use.
void checkSchema(Database& db);

}  // namespace hbrc::depot
