// The object query parser on any text: a parsed query answers every flag combination, and a
// refusal names a position inside the text (or just after it).
#include <hbrcdatamodel/objectquery.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string error;
    const auto query = hbrc::host::ObjectQuery::Parse(text, error);
    if (!query) {
        const std::string prefix = "position ";
        if (error.compare(0, prefix.size(), prefix) != 0)
            std::abort();
        const unsigned long position = std::strtoul(error.c_str() + prefix.size(), nullptr, 10);
        if (position < 1 || position > size + 1)
            std::abort();
        return 0;
    }
    for (unsigned flags = 0; flags < 16; ++flags)
        query->Matches(flags);
    return 0;
}
