#pragma once

// A fresh Subversion repository for tests and benchmarks, header-only: made with svnadmin in a
// folder, with the users alice ("alice-pw") and bob ("bob-pw") in its password file and anonymous
// access off, or a copy of another repository made so (seed: its folder). Served by svnserve on
// 127.0.0.1 at a free port (threads, so that stopping the server ends its connections too), or
// reached directly through a file:// URL. The server stops when the object is destroyed.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

class SvnRepositoryFixture
{
public:
    enum class Access { Served, Local };
    static constexpr const char* kUsers = "alice = alice-pw\nbob = bob-pw\n";

    SvnRepositoryFixture(const QString& folder, Access access, const std::string& seed = {}) : m_folder(folder)
    {
        std::filesystem::copy(seed.empty() ? EmptyRepository() : seed, QFile::encodeName(RepositoryPath()).toStdString(),
                              std::filesystem::copy_options::recursive);
        if (access == Access::Served)
            StartServer();
        else
            m_url = "file://" + QFile::encodeName(RepositoryPath()).toStdString();
    }
    ~SvnRepositoryFixture() { StopServer(); }
    SvnRepositoryFixture(const SvnRepositoryFixture&) = delete;
    SvnRepositoryFixture& operator=(const SvnRepositoryFixture&) = delete;

    const std::string& Url() const { return m_url; }

    // Replaces the password file's users ("name = password" lines); the server reads it again for
    // every connection.
    void SetUsers(const QByteArray& users) const
    {
        WriteFile(RepositoryPath() + QStringLiteral("/conf/passwd"), "[users]\n" + users);
    }

    // Loads a dump stream (svnadmin's format) into the repository: many revisions made at once,
    // without waiting for the disk after each (a throw-away repository).
    void Load(const QByteArray& dump) const
    {
        QProcess process;
        process.start(QStringLiteral("svnadmin"), {QStringLiteral("load"), QStringLiteral("--quiet"),
                                                   QStringLiteral("--no-flush-to-disk"), RepositoryPath()});
        process.write(dump);
        process.closeWriteChannel();
        if (!process.waitForFinished(600000) || process.exitCode() != 0)
            throw std::runtime_error("svnadmin load failed: " + process.readAllStandardError().toStdString());
    }

    // Kills the server at once, as a crash would: connections break, new ones are refused. Safe
    // from any thread; the process is reaped when the object is destroyed.
    void CrashServer() const
    {
        if (m_server)
            ::kill(static_cast<pid_t>(m_server->processId()), SIGKILL);
    }

private:
    void StopServer()
    {
        if (m_server) {
            m_server->kill();
            m_server->waitForFinished(5000);
        }
    }

    QString RepositoryPath() const { return m_folder + QStringLiteral("/repository"); }

    // A new repository is a copy of one made once per process, which is faster than svnadmin.
    static std::string EmptyRepository()
    {
        static const QTemporaryDir folder;
        static const std::string made = [] {
            const QString path = folder.filePath(QStringLiteral("repository"));
            Run(QStringLiteral("svnadmin"), {QStringLiteral("create"), path});
            WriteFile(path + QStringLiteral("/conf/svnserve.conf"),
                      "[general]\nanon-access = none\nauth-access = write\npassword-db = passwd\nrealm = hbrc\n");
            WriteFile(path + QStringLiteral("/conf/passwd"), QByteArray("[users]\n") + kUsers);
            return QFile::encodeName(path).toStdString();
        }();
        return made;
    }

    static void Run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        if (!process.waitForFinished(30000) || process.exitCode() != 0)
            throw std::runtime_error((program + " failed: ").toStdString() + process.readAllStandardError().toStdString());
    }

    static void WriteFile(const QString& path, const QByteArray& text)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size())
            throw std::runtime_error("cannot write " + path.toStdString());
    }

    // Binds port (0: any free one) or connects to it on 127.0.0.1; the port bound or reached, 0 on failure.
    static quint16 Probe(quint16 port, bool connectTo)
    {
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        const bool done = connectTo ? ::connect(socket, generic, length) == 0
                                    : ::bind(socket, generic, length) == 0 && ::getsockname(socket, generic, &length) == 0;
        ::close(socket);
        return done ? ntohs(address.sin_port) : 0;
    }

    void StartServer()
    {
        const quint16 port = Probe(0, false);
        if (port == 0)
            throw std::runtime_error("no free port");
        m_server = std::make_unique<QProcess>();
        m_server->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server->start("svnserve", {"--daemon", "--foreground", "--threads", "--listen-host=127.0.0.1",
                                     QString("--listen-port=%1").arg(port), "--root=" + RepositoryPath()});
        if (!m_server->waitForStarted(10000))
            throw std::runtime_error("cannot start svnserve");
        for (int attempt = 0; attempt < 200; ++attempt) {
            if (Probe(port, true) == port) {
                m_url = "svn://127.0.0.1:" + std::to_string(port);
                return;
            }
            QThread::msleep(20);
        }
        throw std::runtime_error("svnserve does not answer on port " + std::to_string(port));
    }

    QString m_folder;
    std::string m_url;
    std::unique_ptr<QProcess> m_server;
};
