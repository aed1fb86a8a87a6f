#pragma once

// Where the depot keeps file contents: once per content (named by its SHA-256 digest, so that
// identical files share one copy), compressed, in chunks of at most kChunkSize bytes so that a
// file of any size moves between disk and depot through bounded memory.

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <istream>
#include <memory>
#include <ostream>

#include "sqlite.h"

namespace hbrc::depot {

using ContentDigest = std::array<unsigned char, 32>;

struct ContentFingerprint
{
    std::int64_t size = 0;
    ContentDigest digest{};

    bool operator==(const ContentFingerprint& other) const { return size == other.size && digest == other.digest; }
};

class ContentStore
{
public:
    static constexpr std::size_t kChunkSize = 1 << 20;

    explicit ContentStore(Database& db);
    ~ContentStore();
    ContentStore(const ContentStore&) = delete;
    ContentStore& operator=(const ContentStore&) = delete;

    // Stores what the stream holds (inside the caller's write transaction) and answers its
    // content id; content already stored answers the existing id.
    std::int64_t store(std::istream& in);
    std::int64_t storeFile(const std::filesystem::path& file);
    // Throws when the content is missing or damaged.
    void copy(std::int64_t content, std::ostream& out);
    ContentFingerprint fingerprint(std::int64_t content);
    // The stored content of a file's revision; throws when the depot has none.
    std::int64_t ofRevision(const std::string& key, std::int64_t revision);

    // The size and digest of a workspace file, read in chunks.
    static ContentFingerprint fingerprintOfFile(const std::filesystem::path& file);

private:
    struct Codec;

    Database& m_db;
    std::unique_ptr<Codec> m_codec;  // made on first use
    Statement m_newContent;
    Statement m_findDigest;
    Statement m_keepContent;
    Statement m_dropChunks;
    Statement m_dropContent;
    Statement m_insertChunk;
    Statement m_chunks;
    Statement m_fingerprint;
    Statement m_revision;
};

}  // namespace hbrc::depot
