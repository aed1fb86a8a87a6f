#pragma once

// A benchmark's revision-control set-up on the embedded depot: a depot with one user and one
// workspace over a fresh folder, the folder opened as a data-model workspace, and the services
// installed and logged in (the cheapest password hash, so that set-up stays short). Or the same
// on a Subversion repository served by svnserve on 127.0.0.1, the folder being alice's working
// copy: of an empty repository, or of a copy of a seed's (its files submitted already). Throws
// std::runtime_error when a step fails. Header-only; the benchmark links hbrc_services.

#include <svnseed.h>

#include <depot/depot.h>
#include <hbrcdatamodel/workspace.h>
#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcservices/revisionserver.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace hbrc::bench {

class DepotWorkspace
{
public:
    enum class Server { EmbeddedDepot, SvnServe };

    explicit DepotWorkspace(Server server = Server::EmbeddedDepot, const SvnSeed* seed = nullptr)
    {
        using namespace hbrc::host;
        QDir(m_dir.path()).mkpath(QStringLiteral("ws"));
        m_root = QFile::encodeName(QDir(m_dir.filePath(QStringLiteral("ws"))).canonicalPath()).toStdString();
        std::string serverSetting;
        RevisionControlAccount account{"alice", "alice-pw", m_root};
        if (server == Server::SvnServe) {
            m_repository = std::make_unique<SvnRepositoryFixture>(m_dir.path(), SvnRepositoryFixture::Access::Served,
                                                                  seed ? seed->Repository() : std::string());
            serverSetting = m_repository->Url();
            if (seed)
                seed->CopyWorkingCopy(m_root, serverSetting);
        } else {
            serverSetting = m_dir.filePath(QStringLiteral("depot.db")).toStdString();
            account = {"bench", "pw", "bench-ws"};
            hbrc::depot::DepotOptions adminOptions;
            adminOptions.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
            hbrc::depot::Depot admin(serverSetting, adminOptions);
            if (!hbrc::depot::Depot::create(serverSetting).ok() || !admin.addUser(account.userName, account.password).ok()
                || !admin.addWorkspace(account.workspace, account.userName, m_root).ok())
                throw std::runtime_error("cannot set up the depot");
        }
        ConnectionOptions connection;
        connection.server.passwordHashCost = hbrc::revision::PasswordHashCost::Minimal;
        connection.callDeadline = std::chrono::minutes(30);  // a commit of 100,000 files takes minutes
        std::string error;
        m_workspace = Workspace::Open(QString::fromStdString(m_root), error);
        if (!m_workspace)
            throw std::runtime_error(error);
        m_services = InstallRevisionControlServices(*m_workspace, serverSetting, account, error, connection);
        if (!error.empty())
            throw std::runtime_error(error);
    }

    // The workspace folder, canonical and in the file-name encoding.
    const std::string& Root() const { return m_root; }
    hbrc::host::Workspace& Space() { return *m_workspace; }
    hbrc::host::DataControl& Data() { return *m_services.dataControl; }
    hbrc::host::FileVersionControl& Files() { return *m_services.fileVersionControl; }
    hbrc::host::ServerConnection& Connection() { return *m_services.connection; }
    const kel4::IUserParameters* Session() const { return m_services.dataControl->GetUserParameters().Get(); }

    // Marks files (absolute paths below Root(), on disk) for add and submits them in one change.
    void Submit(const std::vector<std::string>& files)
    {
        using hbrc::host::RevisionServer;
        run([&](RevisionServer& server, const std::string& ticket, const hbrc::revision::CancelCheck&) {
            return server.add(ticket, files, "");
        });
        run([&](RevisionServer& server, const std::string& ticket, const hbrc::revision::CancelCheck&) {
            hbrc::revision::ChangelistId submitted;
            return server.submit(ticket, "", "benchmark files", submitted);
        });
    }

private:
    void run(const hbrc::host::ServerConnection::Operation& operation)
    {
        std::string error;
        if (Connection().Run(Session(), operation, error).IsFailure())
            throw std::runtime_error(error);
    }

    QTemporaryDir m_dir;
    std::unique_ptr<SvnRepositoryFixture> m_repository;
    std::string m_root;
    std::unique_ptr<hbrc::host::Workspace> m_workspace;
    hbrc::host::RevisionControlServices m_services;
};

}  // namespace hbrc::bench
