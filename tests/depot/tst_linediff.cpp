// hbdepot's unified difference: the format patch reads, and the fewest changed lines.
#include "linediff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

using hbrc::hbdepot::unifiedDiff;

namespace {

struct DiffCase
{
    const char* name;
    std::string before;
    std::string after;
    std::string expected;  // after the "--- a\n+++ b\n" heading
};

class LineDiff : public ::testing::TestWithParam<DiffCase>
{
};

TEST_P(LineDiff, PrintsTheHunksPatchReads)
{
    const DiffCase& row = GetParam();
    const std::string diff = unifiedDiff(row.before, row.after, "a", "b");
    EXPECT_EQ(diff, row.expected.empty() || row.expected.rfind("Binary", 0) == 0 ? row.expected
                                                                                  : "--- a\n+++ b\n" + row.expected);
}

// Lines "1".."count", those in `changed` as "new N".
std::string numbered(int count, std::vector<int> changed = {})
{
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += (std::find(changed.begin(), changed.end(), i) != changed.end() ? "new " : "") + std::to_string(i) + "\n";
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LineDiff,
    ::testing::Values(
        DiffCase{"SameTextsDifferInNothing", "a\nb\n", "a\nb\n", ""},
        DiffCase{"OneLineChangedInTheMiddle", numbered(9), numbered(9, {5}),
                 "@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+new 5\n 6\n 7\n 8\n"},
        DiffCase{"ChangesFarApartMakeTwoHunks", numbered(20), numbered(20, {2, 18}),
                 "@@ -1,5 +1,5 @@\n 1\n-2\n+new 2\n 3\n 4\n 5\n"
                 "@@ -15,6 +15,6 @@\n 15\n 16\n 17\n-18\n+new 18\n 19\n 20\n"},
        DiffCase{"ChangesCloseTogetherShareAHunk", "1\n2\n3\n4\n5\n6\n7\n8\n", "x\n2\n3\n4\n5\n6\n7\ny\n",
                 "@@ -1,8 +1,8 @@\n-1\n+x\n 2\n 3\n 4\n 5\n 6\n 7\n-8\n+y\n"},
        DiffCase{"AnEmptyFileGetsALine", "", "a\n", "@@ -0,0 +1 @@\n+a\n"},
        DiffCase{"EveryLineRemoved", "a\nb\n", "", "@@ -1,2 +0,0 @@\n-a\n-b\n"},
        DiffCase{"ALastLineLosesItsLineBreak", "a\nb\n", "a\nb",
                 "@@ -1,2 +1,2 @@\n a\n-b\n+b\n\\ No newline at end of file\n"},
        DiffCase{"BinaryContentIsOnlyToldApart", std::string("a\0b", 3), "ab", "Binary files a and b differ\n"}),
    [](const ::testing::TestParamInfo<DiffCase>& info) { return std::string(info.param.name); });

// The lines a difference keeps and adds, in order: applying it to `before` must give `after`, and
// it changes no more lines than the longest common subsequence leaves.
TEST(LineDiffScripts, ApplyToTheNewTextWithTheFewestChangedLines)
{
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const auto text = [&] {
            std::vector<std::string> lines;
            const int count = static_cast<int>(random() % 30);
            for (int i = 0; i < count; ++i)
                lines.push_back(std::string(1, static_cast<char>('a' + random() % 4)) + "\n");
            return lines;
        };
        const std::vector<std::string> a = text();
        const std::vector<std::string> b = text();
        std::string before, after;
        for (const std::string& line : a)
            before += line;
        for (const std::string& line : b)
            after += line;
        // Applies the hunks: context and removed lines must match the old text where the hunk says.
        std::istringstream diff(unifiedDiff(before, after, "a", "b", 1));
        std::vector<std::string> result;
        std::size_t next = 0;
        std::size_t changed = 0;
        std::string line;
        std::getline(diff, line);  // the two names
        std::getline(diff, line);
        while (std::getline(diff, line)) {
            if (line.rfind("@@ -", 0) == 0) {
                std::size_t start = std::stoul(line.substr(4));
                const std::size_t count = line.find(',') < line.find(" +") ? std::stoul(line.substr(line.find(',') + 1)) : 1;
                start = count == 0 ? start : start - 1;
                ASSERT_LE(next, start) << "hunks in order";
                result.insert(result.end(), a.begin() + static_cast<long>(next), a.begin() + static_cast<long>(start));
                next = start;
            } else if (!line.empty() && (line[0] == ' ' || line[0] == '-')) {
                ASSERT_LT(next, a.size());
                ASSERT_EQ(a[next], line.substr(1) + "\n") << "round " << round;
                if (line[0] == ' ')
                    result.push_back(a[next]);
                ++next;
                changed += line[0] == '-';
            } else if (!line.empty() && line[0] == '+') {
                result.push_back(line.substr(1) + "\n");
                ++changed;
            }
        }
        result.insert(result.end(), a.begin() + static_cast<long>(next), a.end());
        ASSERT_EQ(result, b) << "round " << round;
        std::vector<std::vector<std::size_t>> common(a.size() + 1, std::vector<std::size_t>(b.size() + 1, 0));
        for (std::size_t i = a.size(); i-- > 0;)
            for (std::size_t j = b.size(); j-- > 0;)
                common[i][j] = a[i] == b[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
        EXPECT_EQ(changed, a.size() + b.size() - 2 * common[0][0]) << "round " << round;
    }
}

}  // namespace
