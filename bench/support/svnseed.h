#pragma once

// A Subversion repository whose first revision holds a set of files, each with svn:needs-lock as
// the services' add gives it, and a working copy of that revision. Adding and committing 100,000
// files through the client library takes about an hour on a small machine; here the repository
// is loaded from one generated dump stream (svnadmin load) and the working copy is one checkout
// over file://. Both are built once per name in the temporary folder (TMPDIR) and kept there, so
// that later runs only copy them: a benchmark serves a copy of the repository and moves a copy of
// the working copy to the server's URL (DepotWorkspace). Header-only; throws std::runtime_error
// when a step fails.

#include <svnrepositoryfixture.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <unistd.h>

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace hbrc::bench {

class SvnSeed
{
public:
    // Writes the files into the (empty) folder given and returns their absolute paths.
    using WriteFiles = std::function<std::vector<std::string>(const QString& folder)>;

    // The seed kept as the temporary folder's sub-folder name, built with write when it is not
    // there yet (a seed of another count needs another name).
    SvnSeed(const QString& name, const WriteFiles& write) : m_folder(QDir(QDir::tempPath()).filePath(name))
    {
        m_reused = QFileInfo::exists(m_folder);
        if (!m_reused)
            Build(write);
    }

    bool Reused() const { return m_reused; }
    std::string Repository() const { return QFile::encodeName(m_folder + QStringLiteral("/repository")).toStdString(); }

    // Copies the working copy into folder (existing, empty, in the temporary folder too) and points
    // it at url, a served copy of Repository(). The pristine copies, which the client never
    // changes in place, are hard links: half the files to write, and to delete afterwards.
    void CopyWorkingCopy(const std::string& folder, const std::string& url) const
    {
        const QString target = QString::fromStdString(folder);
        const QDir source(WorkingCopy());
        const QString administrative = source.filePath(QStringLiteral(".svn"));
        const QString targetAdministrative = target + QStringLiteral("/.svn");
        Run(QStringLiteral("cp"),
            QStringList{QStringLiteral("-a")} + EntriesBut(source, administrative) + QStringList{target});
        if (!QDir().mkpath(targetAdministrative))
            throw std::runtime_error("cannot make " + targetAdministrative.toStdString());
        const QString pristine = administrative + QStringLiteral("/pristine");
        Run(QStringLiteral("cp"), QStringList{QStringLiteral("-a")} + EntriesBut(QDir(administrative), pristine)
                                      + QStringList{targetAdministrative});
        Run(QStringLiteral("cp"), {QStringLiteral("-a"), QStringLiteral("--link"), pristine, targetAdministrative});
        Svn({QStringLiteral("relocate"), QString::fromStdString(url), QString::fromStdString(folder),
             QStringLiteral("--username"), QStringLiteral("alice"), QStringLiteral("--password"),
             QStringLiteral("alice-pw")});
    }

private:
    QString WorkingCopy() const { return m_folder + QStringLiteral("/workingcopy"); }

    // Built in memory (/dev/shm, where the many small writes and flushes of the save, the load and
    // the checkout cost no disk time) when the machine has it, then copied beside the final folder
    // and renamed into place when complete, so that an interrupted build is never taken for a seed.
    void Build(const WriteFiles& write)
    {
        const bool inMemory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
        QTemporaryDir scratch(inMemory ? QStringLiteral("/dev/shm/hbrc-seed-XXXXXX")
                                       : m_folder + QStringLiteral("-XXXXXX"));
        const QString files = scratch.filePath(QStringLiteral("files"));
        if (!scratch.isValid() || !QDir().mkpath(files))
            throw std::runtime_error("cannot make " + files.toStdString());
        const QString root = QDir(files).canonicalPath();
        {
            const SvnRepositoryFixture repository(scratch.path(), SvnRepositoryFixture::Access::Local);
            // Sharing representations makes the load compare every file's properties with the
            // first file's, slower with each file (at 100,000: unfinished after 6 minutes, against
            // 2 minutes without). Off for the load only; the served repository has the usual settings.
            QFile settings(scratch.filePath(QStringLiteral("repository/db/fsfs.conf")));
            if (!settings.open(QIODevice::ReadWrite))
                throw std::runtime_error("cannot open " + settings.fileName().toStdString());
            const QByteArray usual = settings.readAll();
            Rewrite(settings,
                    QByteArray(usual).replace("[rep-sharing]\n", "[rep-sharing]\nenable-rep-sharing = false\n"));
            repository.Load(Dump(root, write(root)));
            Rewrite(settings, usual);
            Svn({QStringLiteral("checkout"), QStringLiteral("--quiet"), QString::fromStdString(repository.Url()),
                 scratch.filePath(QStringLiteral("workingcopy"))});
        }
        QDir(files).removeRecursively();
        const QString building = m_folder + QStringLiteral(".building-%1").arg(::getpid());
        Copy(scratch.path(), building);
        if (!QDir().rename(building, m_folder) && !QFileInfo::exists(m_folder))
            throw std::runtime_error("cannot rename " + building.toStdString());
        QDir(building).removeRecursively();  // another run finished the same seed first
    }

    // One revision by alice adding the files below root with their folders, each file with
    // svn:needs-lock.
    static QByteArray Dump(const QString& root, const std::vector<std::string>& files)
    {
        const QDir base(root);
        std::set<QByteArray> folders;
        std::vector<QByteArray> paths;
        for (const std::string& file : files) {
            const QByteArray path = QFile::encodeName(base.relativeFilePath(QFile::decodeName(file.c_str())));
            for (qsizetype slash = path.indexOf('/'); slash > 0; slash = path.indexOf('/', slash + 1))
                folders.insert(path.left(slash));
            paths.push_back(path);
        }
        const QByteArray date = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).chopped(1).toLatin1()
                                + "000Z";
        QByteArray dump = "SVN-fs-dump-format-version: 2\n\n";
        const QByteArray revision =
            Properties({{"svn:log", "benchmark files"}, {"svn:author", "alice"}, {"svn:date", date}});
        dump += "Revision-number: 1\nProp-content-length: " + QByteArray::number(revision.size())
                + "\nContent-length: " + QByteArray::number(revision.size()) + "\n\n" + revision + "\n";
        const QByteArray noProperties = Properties({});
        for (const QByteArray& folder : folders)  // a folder sorts before the folders inside it
            dump += "Node-path: " + folder + "\nNode-kind: dir\nNode-action: add\nProp-content-length: "
                    + QByteArray::number(noProperties.size()) + "\nContent-length: "
                    + QByteArray::number(noProperties.size()) + "\n\n" + noProperties + "\n\n";
        const QByteArray needsLock = Properties({{"svn:needs-lock", "*"}});
        for (const QByteArray& path : paths) {
            QFile file(base.filePath(QFile::decodeName(path)));
            if (!file.open(QIODevice::ReadOnly))
                throw std::runtime_error("cannot read " + path.toStdString());
            const QByteArray text = file.readAll();
            dump += "Node-path: " + path + "\nNode-kind: file\nNode-action: add\nProp-content-length: "
                    + QByteArray::number(needsLock.size()) + "\nText-content-length: " + QByteArray::number(text.size())
                    + "\nContent-length: " + QByteArray::number(needsLock.size() + text.size()) + "\n\n" + needsLock
                    + text + "\n\n";
        }
        return dump;
    }

    static QByteArray Properties(const std::vector<std::pair<QByteArray, QByteArray>>& properties)
    {
        QByteArray block;
        for (const auto& [key, value] : properties)
            block += "K " + QByteArray::number(key.size()) + "\n" + key + "\nV " + QByteArray::number(value.size())
                     + "\n" + value + "\n";
        return block + "PROPS-END\n";
    }

    static void Rewrite(QFile& file, const QByteArray& content)
    {
        if (!file.resize(0) || !file.seek(0) || file.write(content) != content.size() || !file.flush())
            throw std::runtime_error("cannot write " + file.fileName().toStdString());
    }

    // The paths of the folder's entries, hidden ones too, except the path left out.
    static QStringList EntriesBut(const QDir& folder, const QString& leftOut)
    {
        QStringList paths;
        for (const QString& entry : folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            if (folder.filePath(entry) != leftOut)
                paths << folder.filePath(entry);
        return paths;
    }

    // Copies the folder's content into target (made when missing) with the files' times: a working
    // copy whose files are younger than its records would have every file compared with its
    // pristine copy by each status walk.
    static void Copy(const QString& folder, const QString& target)
    {
        Run(QStringLiteral("cp"), {QStringLiteral("-a"), folder + QStringLiteral("/."), target});
    }

    // The command-line client, with alice's credentials where asked, nothing cached.
    static void Svn(const QStringList& arguments)
    {
        Run(QStringLiteral("svn"),
            arguments + QStringList{QStringLiteral("--non-interactive"), QStringLiteral("--no-auth-cache")});
    }

    static void Run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
            throw std::runtime_error((program + QLatin1Char(' ') + arguments.join(QLatin1Char(' '))).toStdString()
                                     + " failed: " + process.readAllStandardError().toStdString());
    }

    QString m_folder;
    bool m_reused = false;
};

}  // namespace hbrc::bench
