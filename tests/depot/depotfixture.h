#pragma once

// Two users on one depot, each with a workspace and a connection of their own, as two hosts
// would be: alice (password "alice-pw", workspace "alice-ws") and bob ("bob-pw", "bob-ws").
// The depot starts with "shared.kel" (revision 1, "v1") synced into both workspaces.

#include <depot/depot.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <string>

class DepotFixture : public ::testing::Test
{
public:  // the status table's rows act on the fixture from outside
    using Depot = hbrc::depot::Depot;

    void SetUp() override;

    std::string aliceFile(const std::string& relative) const;
    std::string bobFile(const std::string& relative) const;
    static void write(const std::string& path, const std::string& content);
    static std::string read(const std::string& path);
    static bool isWritable(const std::string& path);

    hbrc::depot::FileStatus statusOf(Depot& depot, const std::string& ticket, const std::string& file);
    // Adds and submits a new file holding `content` from bob's workspace.
    void bobSubmitsNewFile(const std::string& relative, const std::string& content);

    QTemporaryDir m_dir;
    std::string m_depotPath;
    std::int64_t m_now = 0;
    std::unique_ptr<Depot> m_alice;
    std::unique_ptr<Depot> m_bob;
    std::string m_aliceTicket;
    std::string m_bobTicket;
};
