#pragma once

#include "hbbasescscommand.h"

// Marks the assets' files for add in a pending changelist ("" for the default changelist).
class ScsMarkForAddCommand final : public BaseScsCommand
{
public:
    static constexpr const char* kCommandIdentifier = "markForAddKELDbObjects";

    explicit ScsMarkForAddCommand(const borax::datamodel::ItemLibraryAccessor& library);
    ScsMarkForAddCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* changelist,
                         const AccessorList& assets, bool includeExternalFiles);

    const char* GetCommandIdentifier() const override { return kCommandIdentifier; }
    bool BuildExecutionCommands(nrk::fwk::ICommandManager* manager) override;
};
