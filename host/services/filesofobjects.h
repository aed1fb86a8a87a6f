#pragma once

#include <hbrcservices/revisiontypes.h>

#include <kel4/containers.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace hbrc::host {

// The files of many objects for one question about them all: each file once, in the order in
// which it first appears, and each object's files as places in that list, so that the answer is
// read object by object without looking its files up again.
class FilesOfObjects
{
public:
    explicit FilesOfObjects(std::size_t objectCount);

    // The next object's files.
    void Add(kel4::Set<std::string> objectFiles);

    const std::vector<std::string>& Files() const { return m_files; }
    std::size_t ObjectCount() const { return m_ends.size(); }
    // The statuses of an object's files out of the answer about Files(); a file the answer lacks
    // has none.
    std::vector<revision::FileStatus> StatusesOf(std::size_t object,
                                                 const std::vector<revision::FileStatus>& answered) const;

private:
    // A file's place in m_files, after adding it there if it is new.
    std::size_t PlaceOf(std::string file);
    void Grow();

    std::vector<std::string> m_files;
    // m_files's places by the hash of their file, open addressing, at most half full: a flat
    // table, so that a file costs one visit of it, not a node of its own with the file copied.
    std::vector<std::pair<std::size_t, std::size_t>> m_slots;  // a hash and a place; kFree: none
    std::vector<std::size_t> m_places;  // each object's files' places in m_files, object after object
    std::vector<std::size_t> m_ends;    // where each object's places end in m_places
};

}  // namespace hbrc::host
