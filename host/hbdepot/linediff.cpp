#include "linediff.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace hbrc::hbdepot {

namespace {

using Lines = std::vector<std::string_view>;

// Each line with its line break, so that a last line without one differs from the same line with one.
Lines splitLines(std::string_view text)
{
    Lines lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) {
            lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start + 1));
        start = end + 1;
    }
    return lines;
}

enum class Op : char { Keep, Remove, Insert };

// Beyond this many removed and inserted lines the shortest edit is not searched for (its memory grows
// with the square of it): the rest of the middle is shown as removed, then inserted, which is still
// a correct difference.
constexpr std::int64_t kMaxEdits = 2000;

// Myers' greedy shortest edit script of a[0..n) into b[0..m): for each number of edits d, the
// furthest x reached on every diagonal k = x - y, kept per d to walk back along.
std::vector<Op> shortestEdit(const std::string_view* a, std::int64_t n, const std::string_view* b, std::int64_t m)
{
    const std::int64_t max = n + m;
    std::vector<std::int64_t> v(static_cast<std::size_t>(2 * max + 3), 0);
    const auto at = [&](std::int64_t k) -> std::int64_t& { return v[static_cast<std::size_t>(k + max + 1)]; };
    std::vector<std::vector<std::int64_t>> trace;  // trace[d]: v over k in [-d, d] before step d
    std::int64_t edits = -1;
    for (std::int64_t d = 0; d <= std::min(max, kMaxEdits) && edits < 0; ++d) {
        trace.emplace_back(&at(-d), &at(d) + 1);
        for (std::int64_t k = -d; k <= d; k += 2) {
            std::int64_t x = (k == -d || (k != d && at(k - 1) < at(k + 1))) ? at(k + 1) : at(k - 1) + 1;
            std::int64_t y = x - k;
            while (x < n && y < m && a[x] == b[y])
                ++x, ++y;
            at(k) = x;
            if (x >= n && y >= m) {
                edits = d;
                break;
            }
        }
    }
    if (edits < 0) {
        std::vector<Op> all(static_cast<std::size_t>(n), Op::Remove);
        all.insert(all.end(), static_cast<std::size_t>(m), Op::Insert);
        return all;
    }
    std::vector<Op> ops;
    std::int64_t x = n;
    std::int64_t y = m;
    for (std::int64_t d = edits; d > 0; --d) {
        const std::vector<std::int64_t>& before = trace[static_cast<std::size_t>(d)];
        const auto was = [&](std::int64_t k) { return before[static_cast<std::size_t>(k + d)]; };
        const std::int64_t k = x - y;
        const std::int64_t previousK = (k == -d || (k != d && was(k - 1) < was(k + 1))) ? k + 1 : k - 1;
        const std::int64_t previousX = was(previousK);
        const std::int64_t previousY = previousX - previousK;
        for (; x > previousX && y > previousY; --x, --y)
            ops.push_back(Op::Keep);
        ops.push_back(x == previousX ? Op::Insert : Op::Remove);
        x = previousX;
        y = previousY;
    }
    ops.insert(ops.end(), static_cast<std::size_t>(x), Op::Keep);
    std::reverse(ops.begin(), ops.end());
    return ops;
}

std::vector<Op> editScript(const Lines& a, const Lines& b)
{
    std::size_t prefix = 0;
    while (prefix < a.size() && prefix < b.size() && a[prefix] == b[prefix])
        ++prefix;
    std::size_t suffix = 0;
    while (suffix < a.size() - prefix && suffix < b.size() - prefix &&
           a[a.size() - 1 - suffix] == b[b.size() - 1 - suffix])
        ++suffix;
    std::vector<Op> ops(prefix, Op::Keep);
    const std::vector<Op> middle =
        shortestEdit(a.data() + prefix, static_cast<std::int64_t>(a.size() - prefix - suffix), b.data() + prefix,
                     static_cast<std::int64_t>(b.size() - prefix - suffix));
    ops.insert(ops.end(), middle.begin(), middle.end());
    ops.insert(ops.end(), suffix, Op::Keep);
    return ops;
}

// "start,count" of a hunk's side; an empty side names the line before it, a single line no count.
std::string range(std::size_t linesBefore, std::size_t count)
{
    const std::size_t start = count == 0 ? linesBefore : linesBefore + 1;
    return std::to_string(start) + (count == 1 ? "" : "," + std::to_string(count));
}

void appendLine(std::string& out, char mark, std::string_view line)
{
    out += mark;
    out += line;
    if (line.empty() || line.back() != '\n')
        out += "\n\\ No newline at end of file\n";
}

}  // namespace

std::string unifiedDiff(std::string_view before, std::string_view after, const std::string& beforeName,
                        const std::string& afterName, std::size_t context)
{
    if (before == after)
        return {};
    if (before.find('\0') != std::string_view::npos || after.find('\0') != std::string_view::npos)
        return "Binary files " + beforeName + " and " + afterName + " differ\n";
    const Lines a = splitLines(before);
    const Lines b = splitLines(after);
    const std::vector<Op> ops = editScript(a, b);
    // Lines of each side consumed before each operation.
    std::vector<std::size_t> aAt(ops.size() + 1, 0);
    std::vector<std::size_t> bAt(ops.size() + 1, 0);
    for (std::size_t i = 0; i < ops.size(); ++i) {
        aAt[i + 1] = aAt[i] + (ops[i] != Op::Insert);
        bAt[i + 1] = bAt[i] + (ops[i] != Op::Remove);
    }
    std::string out = "--- " + beforeName + "\n+++ " + afterName + "\n";
    std::size_t i = 0;
    while (i < ops.size()) {
        if (ops[i] == Op::Keep) {
            ++i;
            continue;
        }
        // A hunk: this change and every later one less than two contexts of unchanged lines away.
        const std::size_t first = i >= context ? i - context : 0;
        std::size_t last = i;  // one past the hunk's last change
        for (std::size_t j = i; j < ops.size() && j <= last + 2 * context; ++j) {
            if (ops[j] != Op::Keep)
                last = j + 1;
        }
        const std::size_t end = std::min(ops.size(), last + context);
        out += "@@ -" + range(aAt[first], aAt[end] - aAt[first]) + " +" + range(bAt[first], bAt[end] - bAt[first]) +
               " @@\n";
        for (std::size_t j = first; j < end; ++j) {
            if (ops[j] == Op::Insert)
                appendLine(out, '+', b[bAt[j]]);
            else
                appendLine(out, ops[j] == Op::Keep ? ' ' : '-', a[aAt[j]]);
        }
        i = end;
    }
    return out;
}

}  // namespace hbrc::hbdepot
