#include "contentstore.h"

#include <sodium.h>
#include <zstd.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <vector>

#include "depoterror.h"
#include "workspaceview.h"

namespace hbrc::depot {

namespace fs = std::filesystem;

namespace {

constexpr int kCompressionLevel = 3;

class Sha256
{
public:
    Sha256()
    {
        if (sodium_init() < 0)
            throw DepotError(code::Failed, "The cryptography library could not be initialised");
        crypto_hash_sha256_init(&m_state);
    }
    void add(const char* data, std::size_t size)
    {
        crypto_hash_sha256_update(&m_state, reinterpret_cast<const unsigned char*>(data), size);
    }
    ContentDigest finish()
    {
        ContentDigest digest{};
        crypto_hash_sha256_final(&m_state, digest.data());
        return digest;
    }

private:
    crypto_hash_sha256_state m_state{};
};

// Calls `consume` with each piece of at most the buffer's size; answers the total size.
template <typename Consume>
std::int64_t readInChunks(std::istream& in, std::vector<char>& buffer, Consume consume)
{
    std::int64_t size = 0;
    while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || in.gcount() > 0) {
        const auto count = static_cast<std::size_t>(in.gcount());
        consume(buffer.data(), count);
        size += static_cast<std::int64_t>(count);
    }
    if (in.bad())
        throw DepotError(code::IoError, "Cannot read the file's content");
    return size;
}

[[noreturn]] void damaged(std::int64_t content, const char* why)
{
    throw DepotError(code::Failed, "The depot's content #" + std::to_string(content) + " is damaged (" + why +
                                       "); restore the depot file from a backup");
}

std::ifstream openForReading(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in || !fs::is_regular_file(file))
        throw DepotError(code::IoError, "Cannot read '" + file.string() + "'");
    return in;
}

struct ZstdFree
{
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

}  // namespace

// The compression contexts and one chunk's buffers, kept for every file an operation moves.
struct ContentStore::Codec
{
    Codec() : compressor(ZSTD_createCCtx()), decompressor(ZSTD_createDCtx())
    {
        if (!compressor || !decompressor)
            throw DepotError(code::Failed, "Out of memory for the depot's compression");
        ZSTD_CCtx_setParameter(compressor.get(), ZSTD_c_compressionLevel, kCompressionLevel);
        ZSTD_CCtx_setParameter(compressor.get(), ZSTD_c_checksumFlag, 1);
    }

    std::unique_ptr<ZSTD_CCtx, ZstdFree> compressor;
    std::unique_ptr<ZSTD_DCtx, ZstdFree> decompressor;
    std::vector<char> raw = std::vector<char>(kChunkSize);
    std::vector<char> packed = std::vector<char>(ZSTD_compressBound(kChunkSize));
};

ContentStore::ContentStore(Database& db)
    : m_db(db),
      m_newContent(db, "INSERT INTO contents(size) VALUES (0)"),
      m_findDigest(db, "SELECT id FROM contents WHERE digest = ?1"),
      m_keepContent(db, "UPDATE contents SET digest = ?1, size = ?2 WHERE id = ?3"),
      m_dropChunks(db, "DELETE FROM content_chunks WHERE content = ?1"),
      m_dropContent(db, "DELETE FROM contents WHERE id = ?1"),
      m_insertChunk(db, "INSERT INTO content_chunks(content, seq, data) VALUES (?1, ?2, ?3)"),
      m_chunks(db, "SELECT data FROM content_chunks WHERE content = ?1 ORDER BY seq"),
      m_fingerprint(db, "SELECT size, digest FROM contents WHERE id = ?1"),
      m_revision(db, "SELECT content_id FROM revisions WHERE path = ?1 AND rev = ?2")
{
}

ContentStore::~ContentStore() = default;

std::int64_t ContentStore::store(std::istream& in)
{
    if (!m_codec)
        m_codec = std::make_unique<Codec>();
    // The chunks go in under a new id while the digest is computed; content that turns out to be
    // stored already is then dropped again, so that the file is read only once.
    m_newContent.run();
    const std::int64_t id = m_db.lastInsertId();
    Sha256 hash;
    std::int64_t sequence = 0;
    const std::int64_t size = readInChunks(in, m_codec->raw, [&](const char* data, std::size_t count) {
        hash.add(data, count);
        const std::size_t packedSize = ZSTD_compress2(m_codec->compressor.get(), m_codec->packed.data(),
                                                      m_codec->packed.size(), data, count);
        if (ZSTD_isError(packedSize))
            throw DepotError(code::Failed, std::string("Cannot compress a file's content: ") +
                                               ZSTD_getErrorName(packedSize));
        m_insertChunk.bind(1, id).bind(2, sequence++).bindBlob(3, m_codec->packed.data(), packedSize).run();
    });
    const ContentDigest digest = hash.finish();
    m_findDigest.bindBlob(1, digest.data(), digest.size());
    if (m_findDigest.step()) {
        const std::int64_t existing = m_findDigest.integer(0);
        m_findDigest.reset();
        m_dropChunks.bind(1, id).run();
        m_dropContent.bind(1, id).run();
        return existing;
    }
    m_keepContent.bindBlob(1, digest.data(), digest.size()).bind(2, size).bind(3, id).run();
    return id;
}

std::int64_t ContentStore::storeFile(const fs::path& file)
{
    std::ifstream in = openForReading(file);
    try {
        return store(in);
    } catch (const DepotError& error) {
        if (error.code() != code::IoError)
            throw;
        throw DepotError(code::IoError, "Cannot read '" + file.string() + "'");
    }
}

void ContentStore::copy(std::int64_t content, std::ostream& out)
{
    if (!m_codec)
        m_codec = std::make_unique<Codec>();
    m_chunks.bind(1, content);
    while (m_chunks.step()) {
        const std::vector<char> packed = m_chunks.blob(0);
        const std::size_t size = ZSTD_decompressDCtx(m_codec->decompressor.get(), m_codec->raw.data(),
                                                     m_codec->raw.size(), packed.data(), packed.size());
        if (ZSTD_isError(size)) {
            m_chunks.reset();
            damaged(content, ZSTD_getErrorName(size));
        }
        out.write(m_codec->raw.data(), static_cast<std::streamsize>(size));
    }
}

ContentFingerprint ContentStore::fingerprint(std::int64_t content)
{
    m_fingerprint.bind(1, content);
    if (!m_fingerprint.step())
        damaged(content, "it is missing");
    ContentFingerprint answer{m_fingerprint.integer(0), {}};
    const std::vector<char> digest = m_fingerprint.blob(1);
    m_fingerprint.reset();
    if (digest.size() != answer.digest.size())
        damaged(content, "its digest is missing");
    std::copy(digest.begin(), digest.end(), reinterpret_cast<char*>(answer.digest.data()));
    return answer;
}

std::int64_t ContentStore::ofRevision(const std::string& key, std::int64_t revision)
{
    m_revision.bind(1, key).bind(2, revision);
    const bool found = m_revision.step() && !m_revision.isNull(0);
    const std::int64_t content = found ? m_revision.integer(0) : 0;
    m_revision.reset();
    if (!found)
        throw DepotError(code::Failed, "The depot has lost revision #" + std::to_string(revision) + " of " +
                                           depotPathOf(key));
    return content;
}

ContentFingerprint ContentStore::fingerprintOfFile(const fs::path& file)
{
    std::ifstream in = openForReading(file);
    std::vector<char> buffer(64 * 1024);
    Sha256 hash;
    const std::int64_t size = readInChunks(in, buffer, [&](const char* data, std::size_t count) { hash.add(data, count); });
    return {size, hash.finish()};
}

}  // namespace hbrc::depot
