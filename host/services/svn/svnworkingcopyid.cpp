#include "svnworkingcopyid.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <random>

namespace hbrc::host {

namespace {

constexpr const char* kNamed = "working copy ";

// The id kept in file for root; empty when the file is missing or was made for another root.
std::string KeptId(const std::string& file, const std::string& root)
{
    std::ifstream in(file);
    std::string id;
    std::string keptRoot;
    if (std::getline(in, id) && std::getline(in, keptRoot) && keptRoot == root)
        return id;
    return {};
}

}  // namespace

std::string SvnRandomId()
{
    std::random_device random;
    std::string id;
    for (int i = 0; i < 4; ++i) {
        std::array<char, 9> part{};
        std::snprintf(part.data(), part.size(), "%08x", random());
        id += part.data();
    }
    return id;
}

SvnWorkingCopyId SvnWorkingCopyId::Of(const std::string& root, const std::string& adminFolder)
{
    SvnWorkingCopyId identity;
    identity.m_root = root;
    const std::string file = adminFolder + "/hbrc-workingcopy";
    identity.m_id = KeptId(file, root);
    if (!identity.m_id.empty())
        return identity;
    // Written beside and put in place whole. A first id is linked (which fails when another
    // connection put one there meanwhile), a stale one replaced; what the file then holds is the id.
    const std::string written = file + "." + SvnRandomId();
    {
        std::ofstream out(written, std::ios::trunc);
        out << SvnRandomId() << '\n' << root << '\n';
        if (!out.flush()) {
            std::remove(written.c_str());
            return identity;
        }
    }
    if (::link(written.c_str(), file.c_str()) == 0 || KeptId(file, root).empty())
        std::rename(written.c_str(), file.c_str());
    std::remove(written.c_str());
    identity.m_id = KeptId(file, root);
    return identity;
}

std::string SvnWorkingCopyId::lockComment() const
{
    if (m_id.empty())
        return {};
    std::array<char, 256> host{};
    ::gethostname(host.data(), host.size() - 1);
    return std::string("Checked out in ") + kNamed + m_id + " (" + host.data() + ":" + m_root + ")";
}

bool SvnWorkingCopyId::tookLock(const std::string& comment) const
{
    return !m_id.empty() && comment.find(kNamed + m_id) != std::string::npos;
}

}  // namespace hbrc::host
