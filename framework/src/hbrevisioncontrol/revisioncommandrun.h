#pragma once

#include "hbbasescscommand.h"
#include "internalvisibility.h"

#include <QtGlobal>

#include <functional>
#include <optional>
#include <set>
#include <string>

class CRevisionControlUIHelper;

HBRC_INTERNAL_NAMESPACE_BEGIN

// The reason the password dialog gives when a revision command found its session expired.
inline constexpr const char* kSessionExpiredReason =
    QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Source control session expired. Password required to re-connect.");

// What became of a revision command run by RunRevisionCommand.
struct RevisionCommandOutcome {
    bool executed = false;                   // false: the command manager would not run it
    int code = kel4::kResultCommandRefused;  // the last command's return value when it ran
    std::optional<std::string> errorString;  // its "ErrorString", when it left one
};

// Builds the command for the given accessors of the current item library.
using RevisionCommandFactory =
    std::function<BaseScsCommand*(const borax::datamodel::ItemLibraryAccessor& library,
                                  const BaseScsCommand::AccessorList& assets)>;

// Runs the command that makeCommand builds for objects as one undoable step of the command
// manager ("UndoManager"). When it answers that the session is unusable (-34), re-opens the
// session once through helper.AttemptReconnect and runs a new, identical command. A missing
// command manager or database proxy counts as a refusal.
RevisionCommandOutcome RunRevisionCommand(const CRevisionControlUIHelper& helper,
                                          const KELPtr<kel4::IDataControl>& dataControl,
                                          const kel4::List<KELHandle<IDbObject>>& objects,
                                          const RevisionCommandFactory& makeCommand);

// What a revision command over objects comes to for its caller: success when it ran and succeeded.
// Otherwise message explains the failure: "Could not execute command: Unknown error" when the
// command manager would not run it (-1), else failureHeading followed by the causes that
// GetErrorStrings finds for flags, with errorString the command's error text and details the
// objects' files; the command's own code is returned (-34: the session stayed closed).
kelResult ExplainRevisionCommandOutcome(const RevisionCommandOutcome& outcome,
                                        const KELPtr<kel4::IDataControl>& dataControl,
                                        const kel4::List<KELHandle<IDbObject>>& objects, bool includeExternalFiles,
                                        const std::string& failureHeading, const std::set<unsigned>& flags,
                                        std::string& errorString, std::string& message, std::string& details);

HBRC_INTERNAL_NAMESPACE_END
