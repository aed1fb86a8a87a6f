#pragma once

// A status word as people read it: one phrase per bit ("open for edit", "locked by others"),
// "up to date" for none.

#include <depot/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace hbrc::hbdepot {

std::vector<std::string> statusWords(std::uint32_t word);
// The phrase of each bit, for the help text's legend: "0x1 open for edit", ...
std::vector<std::string> statusLegend();
// What a file changed without being opened needs: "edited, not opened", "new, not opened",
// "deleted, not opened".
const char* unopenedChangeWords(depot::FileAction action);

}  // namespace hbrc::hbdepot
