#pragma once

// A thin RAII layer over the SQLite C API: one connection, prepared statements and transactions.
// Every failure throws DepotError so that an operation unwinds into its transaction's rollback.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace hbrc::depot {

class Database
{
public:
    // Opens an existing database file read-write (createIfMissing makes a new one), in WAL mode,
    // waiting up to busyTimeoutMs for other processes' write locks. A file this process may not
    // write, or whose folder it may not write (where SQLite keeps its side files), is opened
    // read-only: queries work, changes fail with a message that says why. Where not even the
    // side files of the write-ahead log can be made or read (a read-only folder or medium), the
    // file is read as it stands, with no log to consult since no writer is at work. A file that
    // is missing or may not be read is reported as such.
    Database(const std::string& path, bool createIfMissing, int busyTimeoutMs);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void execute(const char* sql);
    sqlite3* handle() const { return m_db; }
    std::int64_t lastInsertId() const;
    int changes() const;
    bool readOnly() const { return m_readOnly; }
    // Throws the error that tells a user who may only read the depot that it is read-only for them.
    [[noreturn]] void refuseWrite() const;

private:
    std::string m_path;
    bool m_readOnly = false;
    sqlite3* m_db = nullptr;
};

class Statement
{
public:
    Statement(Database& db, const char* sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Binding is 1-based, as in SQL; std::nullopt binds NULL.
    Statement& bind(int index, const std::string& text);
    Statement& bind(int index, std::int64_t value);
    Statement& bind(int index, std::optional<std::int64_t> value);
    Statement& bind(int index, const std::optional<std::string>& text);
    Statement& bindBlob(int index, const void* bytes, std::size_t size);

    // True while a row is available; resets the statement when the rows are done.
    bool step();
    // Runs a statement that returns no rows, then makes it ready for the next bindings.
    void run();
    void reset();

    bool isNull(int column) const;
    std::int64_t integer(int column) const;
    std::string text(int column) const;
    std::vector<char> blob(int column) const;
    std::optional<std::int64_t> optionalInteger(int column) const;

private:
    void prepareForBinding();

    Database& m_db;
    sqlite3_stmt* m_stmt = nullptr;
};

// Texts as one JSON array, so that a statement takes a list of any length as one parameter
// (through json_each).
std::string jsonArrayOf(const std::vector<std::string_view>& texts);

// Rolls back unless commit() was called. Writers take the write lock at once (BEGIN IMMEDIATE)
// so that two processes never deadlock upgrading read locks.
class Transaction
{
public:
    enum class Kind { Read, Write };
    Transaction(Database& db, Kind kind);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

private:
    Database& m_db;
    bool m_open = true;
};

}  // namespace hbrc::depot
