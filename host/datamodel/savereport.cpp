#include <hbrcdatamodel/savereport.h>

namespace hbrc::host {

std::string SaveReport::DescribeFailures() const
{
    if (failures.empty())
        return {};
    std::string text = "Could not save " + std::to_string(failures.size()) + (failures.size() == 1 ? " file:" : " files:");
    for (const Failure& failure : failures)
        text += '\n' + failure.path + ": " + failure.reason;
    return text;
}

}  // namespace hbrc::host
