#include <hbrcdatamodel/savereport.h>

#include <log/log.h>

namespace hbrc::host {

void SaveReport::Fail(const std::string& path, const std::string& reason)
{
    Log::Singleton::Instance().GetStream(Log::eError) << "Could not save " << path << ": " << reason;
    failures.push_back({path, reason});
}

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
