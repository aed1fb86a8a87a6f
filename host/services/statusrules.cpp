#include <hbrcservices/statusrules.h>

namespace hbrc::host::StatusRules {

namespace {

constexpr unsigned kOpenHere = depot::status::OpenedForEdit | depot::status::OpenedForAdd |
                               depot::status::OpenedForDelete;
constexpr unsigned kRefusesCheckOut = depot::status::OpenedByOthers | depot::status::AddedByOthers |
                                      depot::status::DeletedByOthers | depot::status::LockedByOthers |
                                      depot::status::NotAtHead | depot::status::NotInDepot |
                                      depot::status::IoError;

}  // namespace

unsigned ObjectWord(const std::vector<depot::FileStatus>& statuses)
{
    unsigned word = 0;
    for (const depot::FileStatus& status : statuses)
        word |= status.word;
    return word;
}

bool NeedsAction(const std::vector<std::string>& files, const std::vector<depot::FileStatus>& statuses,
                 const ReadOnlyTest& isReadOnly)
{
    for (std::size_t i = 0; i < files.size() && i < statuses.size(); ++i) {
        const unsigned word = statuses[i].word;
        if ((word & depot::status::NotInDepot) || (word & kOpenHere))
            continue;
        if (isReadOnly(files[i]))
            return true;
    }
    return false;
}

bool CanCheckOut(const std::vector<depot::FileStatus>& statuses)
{
    bool opensSomething = false;
    for (const depot::FileStatus& status : statuses) {
        if (status.word & kOpenHere)
            continue;
        if (status.word & kRefusesCheckOut)
            return false;
        opensSomething = true;
    }
    return opensSomething;
}

}  // namespace hbrc::host::StatusRules
