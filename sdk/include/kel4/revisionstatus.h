#pragma once

namespace kel4 {

/// Bits of the revision status word of a file (and of an object: the OR of its files' words).
enum RevisionStatus : unsigned {
    eStatusCheckedOut = 0x1,              // opened for edit by this workspace
    eStatusCheckedOutByOthers = 0x2,      // opened by other users
    eStatusMarkedForAdd = 0x4,            // opened for add by this workspace
    eStatusMarkedForAddByOthers = 0x8,
    eStatusMarkedForDelete = 0x10,        // opened for delete by this workspace
    eStatusMarkedForDeleteByOthers = 0x20,
    eStatusNotHeadRevision = 0x40,        // the workspace does not have the head revision
    eStatusNotInDatabase = 0x80,          // unknown to the server
    eStatusIOError = 0x8000,              // the file could not be read
    eStatusLockedByOthers = 0x20000
};

}  // namespace kel4
