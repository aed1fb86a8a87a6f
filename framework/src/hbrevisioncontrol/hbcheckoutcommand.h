#pragma once

#include "hbbasescscommand.h"

// Checks the assets out into a pending changelist ("" for the default changelist).
class ScsCheckOutCommand final : public BaseScsCommand
{
public:
    static constexpr const char* kCommandIdentifier = "checkoutKELDbObjects";

    explicit ScsCheckOutCommand(const borax::datamodel::ItemLibraryAccessor& library);
    ScsCheckOutCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* changelist,
                       const AccessorList& assets, bool includeExternalFiles);

    const char* GetCommandIdentifier() const override { return kCommandIdentifier; }
    bool BuildExecutionCommands(nrk::fwk::ICommandManager* manager) override;
};
