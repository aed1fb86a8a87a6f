#include "depotfixture.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using namespace hbrc::depot;

void DepotFixture::SetUp()
{
    ASSERT_TRUE(m_dir.isValid());
    m_depotPath = m_dir.filePath("depot.db").toStdString();
    ASSERT_TRUE(Depot::create(m_depotPath, std::chrono::seconds(3600)).ok());
    // The tests move their own clock, starting from now, since hbdepot runs on the real one.
    m_now = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    DepotOptions options;
    options.clock = [this] { return m_now; };
    options.passwordHashCost = PasswordHashCost::Minimal;
    m_alice = std::make_unique<Depot>(m_depotPath, options);
    m_bob = std::make_unique<Depot>(m_depotPath, options);
    ASSERT_TRUE(m_alice->addUser("alice", "alice-pw").ok());
    ASSERT_TRUE(m_alice->addUser("bob", "bob-pw").ok());
    ASSERT_TRUE(m_alice->addWorkspace("alice-ws", "alice", m_dir.filePath("alice").toStdString()).ok());
    ASSERT_TRUE(m_alice->addWorkspace("bob-ws", "bob", m_dir.filePath("bob").toStdString()).ok());
    ASSERT_TRUE(m_alice->login("alice", "alice-pw", "alice-ws", m_aliceTicket).ok());
    ASSERT_TRUE(m_bob->login("bob", "bob-pw", "bob-ws", m_bobTicket).ok());

    write(aliceFile("shared.kel"), "v1");
    ASSERT_TRUE(m_alice->add(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
    ChangelistId submitted;
    ASSERT_TRUE(m_alice->submit(m_aliceTicket, "", "first asset", submitted).ok());
    ASSERT_TRUE(m_bob->sync(m_bobTicket, {}).ok());
}

std::string DepotFixture::aliceFile(const std::string& relative) const
{
    return m_dir.filePath(QString::fromStdString("alice/" + relative)).toStdString();
}

std::string DepotFixture::bobFile(const std::string& relative) const
{
    return m_dir.filePath(QString::fromStdString("bob/" + relative)).toStdString();
}

void DepotFixture::write(const std::string& path, const std::string& content)
{
    fs::create_directories(fs::path(path).parent_path());
    std::error_code ignored;
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, ignored);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

std::string DepotFixture::read(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool DepotFixture::isWritable(const std::string& path)
{
    return (fs::status(path).permissions() & fs::perms::owner_write) != fs::perms::none;
}

FileStatus DepotFixture::statusOf(Depot& depot, const std::string& ticket, const std::string& file)
{
    std::vector<FileStatus> statuses;
    const Result result = depot.status(ticket, {file}, statuses);
    EXPECT_TRUE(result.ok()) << result.error;
    return statuses.empty() ? FileStatus{} : statuses.front();
}

void DepotFixture::bobSubmitsNewFile(const std::string& relative, const std::string& content)
{
    write(bobFile(relative), content);
    ASSERT_TRUE(m_bob->add(m_bobTicket, {bobFile(relative)}, "").ok());
    ChangelistId submitted;
    ASSERT_TRUE(m_bob->submit(m_bobTicket, "", "bob adds " + relative, submitted).ok());
}
