#include "sqlite.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "depoterror.h"

namespace hbrc::depot {

namespace {

constexpr const char* kOnlyReading =
    "commands that only read it work; changing it needs write permission to the depot file and its folder";

// One message per failure: SQLite's own words once, then what the user can do about it.
[[noreturn]] void fail(int rc, const std::string& detail, const std::string& doing)
{
    switch (rc & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        throw DepotError(code::Failed, "The depot is busy, try again later (" + detail + ")");
    case SQLITE_READONLY:
        throw DepotError(code::Failed, "The depot is read-only for you (" + detail + "); " + kOnlyReading);
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        throw DepotError(code::SessionUnusable, "Cannot reach the depot: the file is damaged or no depot (" + detail +
                                                    "); check the depot path, or restore the file from a backup");
    case SQLITE_FULL:
        throw DepotError(code::Failed, "The disk that holds the depot is full (" + detail +
                                           "): free space there and try again");
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
        throw DepotError(code::SessionUnusable, "Cannot reach the depot: " + detail +
                                                    "; check the depot path, the disk and the file's permissions");
    default:
        throw DepotError(code::Failed, doing + ": " + detail);
    }
}

[[noreturn]] void fail(sqlite3* db, int rc, const std::string& doing)
{
    fail(rc, db ? sqlite3_errmsg(db) : sqlite3_errstr(rc), doing);
}

std::string folderOf(const std::string& path)
{
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// A file without any write bit counts as read-only also for a user whom the system would let
// write it anyway (root), as workspace files do; so does a file in a folder this process may not
// write, where SQLite cannot make the side files a writer needs.
bool writable(const std::string& path)
{
    struct stat info{};
    if (::stat(path.c_str(), &info) != 0)
        return errno == ENOENT;
    return (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0 && ::access(path.c_str(), W_OK) == 0 &&
           ::access(folderOf(path).c_str(), W_OK | X_OK) == 0;
}

// Whether a reader can share the write-ahead log's index: the side files are there to be read,
// or can be made.
bool sideFilesUsable(const std::string& path)
{
    return ::access(folderOf(path).c_str(), W_OK | X_OK) == 0 ||
           (::access((path + "-wal").c_str(), R_OK) == 0 && ::access((path + "-shm").c_str(), R_OK) == 0);
}

// The file as a URI that opens it without the log's side files (nor locks).
std::string immutableUri(const std::string& path)
{
    std::string uri = "file:";
    for (char c : std::filesystem::absolute(path).string()) {
        if (c == '%' || c == '?' || c == '#') {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
            uri += escaped;
        } else {
            uri += c;
        }
    }
    return uri + "?immutable=1";
}

// Throws, in words, what stops this process from reading the depot file: it is missing, or a
// permission is.
void requireReadable(const std::string& path)
{
    if (::access(path.c_str(), R_OK) == 0)
        return;
    const int cause = errno;
    if (cause == ENOENT)
        throw DepotError(code::SessionUnusable, "Cannot reach the depot: there is no depot file '" + path +
                                                    "'; check the depot path (-d or HBDEPOT), or create one with "
                                                    "'hbdepot init'");
    if (cause == EACCES)
        throw DepotError(code::SessionUnusable, "Cannot reach the depot: you may not read the depot file '" + path +
                                                    "' (permission denied on the file or a folder above it); ask "
                                                    "for read permission to it");
    throw DepotError(code::SessionUnusable,
                     "Cannot reach the depot file '" + path + "': " + std::strerror(cause));
}

}  // namespace

Database::Database(const std::string& path, bool createIfMissing, int busyTimeoutMs)
    : m_path(path), m_readOnly(!createIfMissing && !writable(path))
{
    if (!createIfMissing)
        requireReadable(path);
    const bool withoutSideFiles = m_readOnly && !sideFilesUsable(path);
    const std::string name = withoutSideFiles ? immutableUri(path) : path;
    const int access = m_readOnly ? SQLITE_OPEN_READONLY | (withoutSideFiles ? SQLITE_OPEN_URI : 0)
                                  : SQLITE_OPEN_READWRITE | (createIfMissing ? SQLITE_OPEN_CREATE : 0);
    const int rc = sqlite3_open_v2(name.c_str(), &m_db, access | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        const std::string detail = m_db ? sqlite3_errmsg(m_db) : sqlite3_errstr(rc);
        sqlite3_close(m_db);
        m_db = nullptr;
        throw DepotError(code::SessionUnusable, "Cannot reach the depot at '" + path + "': " + detail +
                                                    "; check the depot path (-d or HBDEPOT) and its permissions");
    }
    sqlite3_busy_timeout(m_db, busyTimeoutMs);
    sqlite3_extended_result_codes(m_db, 1);
    try {
        if (!m_readOnly) {
            execute("PRAGMA journal_mode=WAL");
            execute("PRAGMA synchronous=NORMAL");
        }
        execute("PRAGMA foreign_keys=ON");
    } catch (...) {
        sqlite3_close(m_db);
        m_db = nullptr;
        throw;
    }
}

void Database::refuseWrite() const
{
    throw DepotError(code::Failed, "The depot " + m_path + " is read-only for you: " + kOnlyReading);
}

Database::~Database()
{
    sqlite3_close(m_db);
}

void Database::execute(const char* sql)
{
    char* message = nullptr;
    const int rc = sqlite3_exec(m_db, sql, nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        const std::string text = message ? message : sqlite3_errstr(rc);
        sqlite3_free(message);
        fail(rc, text, "running a depot command");
    }
}

std::int64_t Database::lastInsertId() const
{
    return sqlite3_last_insert_rowid(m_db);
}

int Database::changes() const
{
    return sqlite3_changes(m_db);
}

Statement::Statement(Database& db, const char* sql) : m_db(db)
{
    const int rc = sqlite3_prepare_v2(db.handle(), sql, -1, &m_stmt, nullptr);
    if (rc != SQLITE_OK)
        fail(db.handle(), rc, "preparing a depot query");
}

Statement::~Statement()
{
    sqlite3_finalize(m_stmt);
}

void Statement::prepareForBinding()
{
    // Binding starts a new execution, also when the previous one stopped before its last row.
    if (sqlite3_stmt_busy(m_stmt))
        sqlite3_reset(m_stmt);
}

Statement& Statement::bind(int index, const std::string& text)
{
    prepareForBinding();
    sqlite3_bind_text(m_stmt, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    return *this;
}

Statement& Statement::bind(int index, std::int64_t value)
{
    prepareForBinding();
    sqlite3_bind_int64(m_stmt, index, value);
    return *this;
}

Statement& Statement::bind(int index, std::optional<std::int64_t> value)
{
    if (value)
        return bind(index, *value);
    prepareForBinding();
    sqlite3_bind_null(m_stmt, index);
    return *this;
}

Statement& Statement::bind(int index, const std::optional<std::string>& text)
{
    if (text)
        return bind(index, *text);
    prepareForBinding();
    sqlite3_bind_null(m_stmt, index);
    return *this;
}

Statement& Statement::bindBlob(int index, const void* bytes, std::size_t size)
{
    prepareForBinding();
    sqlite3_bind_blob64(m_stmt, index, bytes, size, SQLITE_TRANSIENT);
    return *this;
}

bool Statement::step()
{
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    sqlite3_reset(m_stmt);
    if (rc != SQLITE_DONE)
        fail(m_db.handle(), rc, "running a depot query");
    return false;
}

void Statement::run()
{
    while (step()) {
    }
    sqlite3_clear_bindings(m_stmt);
}

void Statement::reset()
{
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(m_stmt, column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const
{
    return sqlite3_column_int64(m_stmt, column);
}

std::string Statement::text(int column) const
{
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, column));
    return data ? std::string(data, static_cast<std::size_t>(sqlite3_column_bytes(m_stmt, column))) : std::string();
}

std::vector<char> Statement::blob(int column) const
{
    const auto* data = static_cast<const char*>(sqlite3_column_blob(m_stmt, column));
    const int size = sqlite3_column_bytes(m_stmt, column);
    return data ? std::vector<char>(data, data + size) : std::vector<char>();
}

std::optional<std::int64_t> Statement::optionalInteger(int column) const
{
    if (isNull(column))
        return std::nullopt;
    return integer(column);
}

Transaction::Transaction(Database& db, Kind kind) : m_db(db)
{
    m_db.execute(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction()
{
    if (m_open)
        sqlite3_exec(m_db.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    m_db.execute("COMMIT");
    m_open = false;
}

std::string jsonArrayOf(const std::vector<std::string_view>& texts)
{
    std::string json = "[";
    for (const std::string_view text : texts) {
        if (json.size() > 1)
            json += ',';
        json += '"';
        for (const char c : text) {
            if (c == '"' || c == '\\') {
                json += '\\';
                json += c;
            } else if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                json += escaped;
            } else {
                json += c;
            }
        }
        json += '"';
    }
    return json + "]";
}

}  // namespace hbrc::depot
