#pragma once

#include <string>

namespace hbrc::host {

// The identity of a working copy, written into the comment of every lock this backend takes from
// it. A server that dies during a check-out may grant locks whose tokens never reach the working
// copy; the comment tells such a lock from one the same user holds in another working copy of
// hers, which must be left alone.
//
// It is a random id kept in the administrative folder with the root it was made for, so that all
// connections on the working copy (in this process or another, before and after a restart) share
// it, and a copy of the working copy (another root) makes an id of its own.
class SvnWorkingCopyId
{
public:
    // The id of the working copy at root, made on first use. Without a place to keep it, the id is
    // empty: locks are then taken without one and none is ever recognised.
    static SvnWorkingCopyId Of(const std::string& root, const std::string& adminFolder);

    // The comment of a lock taken from this working copy.
    std::string lockComment() const;
    // Whether a lock with this comment was taken from this working copy.
    bool tookLock(const std::string& comment) const;

private:
    std::string m_id;
    std::string m_root;
};

// 128 random bits in hex: session tickets and working-copy ids.
std::string SvnRandomId();

}  // namespace hbrc::host
