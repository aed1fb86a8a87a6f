#pragma once

// A reference host (HostSession) over a workspace folder in a temporary directory, for tests that
// link hbrc_hostsession. Header-only so that the shared test support does not depend on the host.

#include <hbrcsession/hostsession.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>

class HostWorkspaceFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        ASSERT_TRUE(QDir().mkpath(WorkspaceFolder()));
        host = std::make_unique<hbrc::host::HostSession>(m_dir.filePath(QStringLiteral("preferences.ini")));
    }

    void TearDown() override { host.reset(); }

    QString WorkspaceFolder() const { return m_dir.filePath(QStringLiteral("workspace")); }
    // The absolute path of a file of the workspace, as the data model names it.
    std::string PathOf(const std::string& relative) const
    {
        return QFile::encodeName(QDir(WorkspaceFolder()).canonicalPath()).toStdString() + '/' + relative;
    }

    // (Re)opens the workspace folder: a fresh load from disk.
    hbrc::host::Workspace& Open()
    {
        std::string error;
        workspace = host->OpenWorkspace(WorkspaceFolder(), error);
        if (!workspace)
            throw std::runtime_error(error);
        return *workspace;
    }

    KELHandle<kel4::IAsset> Create(hbrc::host::AssetKind kind, const std::string& name,
                                   std::map<std::string, std::string> fields = {})
    {
        hbrc::host::NewAsset asset;
        asset.kind = kind;
        asset.name = name;
        asset.fields = std::move(fields);
        std::string error;
        const auto handle = workspace->CreateAsset(asset, error);
        EXPECT_FALSE(handle.IsNull()) << error;
        return handle;
    }

    void WriteFile(const std::string& relative, const QByteArray& content) const
    {
        QDir().mkpath(QFileInfo(FileOf(relative)).absolutePath());
        QFile file(FileOf(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray ReadFile(const std::string& relative) const
    {
        QFile file(FileOf(relative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool Exists(const std::string& relative) const { return QFile::exists(FileOf(relative)); }

    std::unique_ptr<hbrc::host::HostSession> host;
    hbrc::host::Workspace* workspace = nullptr;

private:
    QString FileOf(const std::string& relative) const { return QFile::decodeName(QByteArray::fromStdString(PathOf(relative))); }
    QTemporaryDir m_dir;
};
