#pragma once

#include <hbrcdatamodel/export.h>

#include <string>
#include <vector>

namespace hbrc::host {

// What a save did. Paths are absolute, in the file-name encoding.
struct HBRC_DATAMODEL_EXPORT SaveReport
{
    struct Failure
    {
        std::string path;
        std::string reason;
    };

    // A pre-commit receiver stopped the save: nothing was written.
    bool cancelled = false;
    std::vector<std::string> writtenFiles;
    std::vector<std::string> deletedFiles;
    // Files that could not be written or removed; their assets keep their edits and stay dirty.
    std::vector<Failure> failures;

    // Logs "Could not save <path>: <reason>" as an error and adds the failure.
    void Fail(const std::string& path, const std::string& reason);
    bool Succeeded() const { return !cancelled && failures.empty(); }
    // "Could not save N file(s):" and one "<path>: <reason>" line per failure; "" when none failed.
    std::string DescribeFailures() const;
};

}  // namespace hbrc::host
