#pragma once

#include "hbbasescscommand.h"

// Makes the assets' files writable without opening them. Unlike the other commands it works
// object by object and stops at the first failure, and the item library hears of it whatever the
// result (some files may have changed before the failure). Its "changelist" is always empty.
class ScsMakeWritableCommand final : public BaseScsCommand
{
public:
    static constexpr const char* kCommandIdentifier = "makewritableKELDbObjects";

    explicit ScsMakeWritableCommand(const borax::datamodel::ItemLibraryAccessor& library);
    ScsMakeWritableCommand(const borax::datamodel::ItemLibraryAccessor& library, const AccessorList& assets,
                           bool includeExternalFiles);

    const char* GetCommandIdentifier() const override { return kCommandIdentifier; }
    bool BuildExecutionCommands(nrk::fwk::ICommandManager* manager) override;
};
