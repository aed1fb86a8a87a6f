#pragma once

// A line-by-line difference of two texts in the unified format that patch reads: hunks of changed
// lines with context around them, "\ No newline at end of file" after a last line without one.

#include <cstddef>
#include <string>
#include <string_view>

namespace hbrc::hbdepot {

// The difference turning `before` into `after`, headed "--- beforeName" and "+++ afterName", with
// `context` unchanged lines around each change; empty when the texts are the same. Texts holding a
// NUL byte are told apart as binary only ("Binary files ... differ").
std::string unifiedDiff(std::string_view before, std::string_view after, const std::string& beforeName,
                        const std::string& afterName, std::size_t context = 3);

}  // namespace hbrc::hbdepot
