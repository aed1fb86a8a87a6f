// The .kel reader on any text; what it accepts must come back the same through the writer.
#include <hbrcdatamodel/kelformat.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <tuple>

namespace {

auto identity(const hbrc::host::AssetRecord& r)
{
    return std::tie(r.id, r.kind, r.persistable, r.type, r.name, r.version, r.fields, r.externalFiles);
}

bool sameParts(const hbrc::host::AssetRecord& a, const hbrc::host::AssetRecord& b)
{
    if (a.parts.size() != b.parts.size())
        return false;
    for (std::size_t i = 0; i < a.parts.size(); ++i) {
        if (std::tie(a.parts[i].id, a.parts[i].type, a.parts[i].name) !=
            std::tie(b.parts[i].id, b.parts[i].type, b.parts[i].name))
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace hbrc::host;
    AssetRecord record;
    std::string error;
    if (!KelFormat::Parse(std::string(reinterpret_cast<const char*>(data), size), record, error))
        return 0;
    const std::string written = KelFormat::Serialize(record);
    AssetRecord again;
    if (!KelFormat::Parse(written, again, error) || identity(again) != identity(record) || !sameParts(again, record))
        std::abort();  // the writer wrote what the reader reads back differently
    return 0;
}
