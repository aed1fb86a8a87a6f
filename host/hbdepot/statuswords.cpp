#include "statuswords.h"

#include <depot/types.h>

#include <cstdio>
#include <utility>

namespace hbrc::hbdepot {

namespace {

namespace status = depot::status;

const std::pair<std::uint32_t, const char*> kBits[] = {
    {status::OpenedForEdit, "open for edit"},     {status::OpenedByOthers, "edited by others"},
    {status::OpenedForAdd, "open for add"},       {status::AddedByOthers, "added by others"},
    {status::OpenedForDelete, "open for delete"}, {status::DeletedByOthers, "deleted by others"},
    {status::NotAtHead, "not at head"},           {status::NotInDepot, "not in depot"},
    {status::IoError, "unreadable"},              {status::LockedByOthers, "locked by others"},
};

}  // namespace

std::vector<std::string> statusWords(std::uint32_t word)
{
    std::vector<std::string> words;
    for (const auto& [bit, phrase] : kBits) {
        if (word & bit)
            words.emplace_back(phrase);
    }
    if (word == 0)
        words.emplace_back("up to date");
    return words;
}

std::vector<std::string> statusLegend()
{
    std::vector<std::string> legend;
    for (const auto& [bit, phrase] : kBits) {
        char hex[16];
        std::snprintf(hex, sizeof hex, "0x%x", bit);
        legend.push_back(std::string(hex) + " " + phrase);
    }
    return legend;
}

const char* unopenedChangeWords(depot::FileAction action)
{
    switch (action) {
    case depot::FileAction::Add:
        return "new, not opened";
    case depot::FileAction::Delete:
        return "deleted, not opened";
    case depot::FileAction::Edit:
        break;
    }
    return "edited, not opened";
}

}  // namespace hbrc::hbdepot
