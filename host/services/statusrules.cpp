#include <hbrcservices/statusrules.h>

#include <kel4/revisionstatus.h>

// The services hand the depot's status words to the plug-in unchanged, so each depot bit must be
// the SDK's bit of the same meaning.
static_assert(hbrc::revision::status::OpenedForEdit == kel4::eStatusCheckedOut);
static_assert(hbrc::revision::status::OpenedByOthers == kel4::eStatusCheckedOutByOthers);
static_assert(hbrc::revision::status::OpenedForAdd == kel4::eStatusMarkedForAdd);
static_assert(hbrc::revision::status::AddedByOthers == kel4::eStatusMarkedForAddByOthers);
static_assert(hbrc::revision::status::OpenedForDelete == kel4::eStatusMarkedForDelete);
static_assert(hbrc::revision::status::DeletedByOthers == kel4::eStatusMarkedForDeleteByOthers);
static_assert(hbrc::revision::status::NotAtHead == kel4::eStatusNotHeadRevision);
static_assert(hbrc::revision::status::NotInDepot == kel4::eStatusNotInDatabase);
static_assert(hbrc::revision::status::IoError == kel4::eStatusIOError);
static_assert(hbrc::revision::status::LockedByOthers == kel4::eStatusLockedByOthers);

namespace hbrc::host::StatusRules {

namespace {

constexpr unsigned kOpenHere = revision::status::OpenedForEdit | revision::status::OpenedForAdd |
                               revision::status::OpenedForDelete;
constexpr unsigned kRefusesCheckOut = revision::status::OpenedByOthers | revision::status::AddedByOthers |
                                      revision::status::DeletedByOthers | revision::status::LockedByOthers |
                                      revision::status::NotAtHead | revision::status::NotInDepot |
                                      revision::status::IoError;

}  // namespace

unsigned ObjectWord(const std::vector<revision::FileStatus>& statuses)
{
    unsigned word = 0;
    for (const revision::FileStatus& status : statuses)
        word |= status.word;
    return word;
}

bool NeedsAction(const std::vector<std::string>& files, const std::vector<revision::FileStatus>& statuses,
                 const ReadOnlyTest& isReadOnly)
{
    for (std::size_t i = 0; i < files.size() && i < statuses.size(); ++i) {
        const unsigned word = statuses[i].word;
        if ((word & revision::status::NotInDepot) || (word & kOpenHere))
            continue;
        if (isReadOnly(files[i]))
            return true;
    }
    return false;
}

bool CanCheckOut(const std::vector<revision::FileStatus>& statuses)
{
    bool opensSomething = false;
    for (const revision::FileStatus& status : statuses) {
        if (status.word & kOpenHere)
            continue;
        if (status.word & kRefusesCheckOut)
            return false;
        opensSomething = true;
    }
    return opensSomething;
}

}  // namespace hbrc::host::StatusRules
