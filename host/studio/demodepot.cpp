#include "demodepot.h"

#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/workspace.h>

#include <depot/depot.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace hbrc::studio {

namespace {

struct SampleAsset
{
    const char* name;
    const char* type;
    host::AssetKind kind;
    std::map<std::string, std::string> fields;
    const char* externalFile = nullptr;
};

std::vector<SampleAsset> sampleAssets()
{
    using host::AssetKind;
    return {
        {"Rock", "Material", AssetKind::Metadata, {{"colour", "#7a746c"}, {"roughness", "0.85"}}, "rock.bin"},
        {"Sky", "Material", AssetKind::Metadata, {{"colour", "#6fa8dc"}, {"intensity", "1.20"}}},
        {"Leaf", "Material", AssetKind::Metadata, {{"colour", "#4e8a3a"}, {"roughness", "0.60"}}},
        {"Bark", "Material", AssetKind::Metadata, {{"colour", "#5b4030"}, {"roughness", "0.90"}}, "bark.tex"},
        {"Water", "Material", AssetKind::Metadata, {{"colour", "#2d6e8e"}, {"opacity", "0.70"}}},
        {"Sand", "Material", AssetKind::Metadata, {{"colour", "#d8c48f"}, {"roughness", "0.95"}}},
        {"Snow", "Material", AssetKind::Metadata, {{"colour", "#f2f4f7"}, {"metalness", "0.00"}}},
        {"Boulder", "Mesh", AssetKind::Data, {{"meshFile", "boulder.geo"}, {"lod", "3"}}, "boulder.geo"},
        {"Oak", "Mesh", AssetKind::Data, {{"meshFile", "oak.geo"}, {"lod", "4"}, {"scale", "1.50"}}, "oak.geo"},
        {"Fern", "Mesh", AssetKind::Data, {{"meshFile", "fern.geo"}, {"lod", "2"}}, "fern.geo"},
        {"Cliff", "Mesh", AssetKind::Data, {{"meshFile", "cliff.geo"}, {"scale", "4.00"}}, "cliff.geo"},
        {"RockAlbedo", "Texture", AssetKind::Data, {{"imageFile", "rock_albedo.tex"}, {"size", "2048"}}, "rock_albedo.tex"},
        {"SkyGradient", "Texture", AssetKind::Data, {{"imageFile", "sky_gradient.tex"}, {"size", "512"}}, "sky_gradient.tex"},
        {"WindStrength", "Curve", AssetKind::Value, {{"intensity", "0.40"}, {"label", "gusts at dusk"}}},
        {"SunAngle", "Curve", AssetKind::Value, {{"degrees", "35"}, {"label", "morning"}}},
        {"FogDensity", "Curve", AssetKind::Value, {{"opacity", "0.15"}}},
        {"Sun", "Light", AssetKind::Metadata, {{"colour", "#ffe8b0"}, {"intensity", "3.50"}}},
        {"FillLight", "Light", AssetKind::Metadata, {{"colour", "#9fb8ff"}, {"intensity", "0.80"}}},
        {"LevelSettings", "Settings", AssetKind::Data, {{"lod", "2"}, {"scale", "1.00"}, {"title", "Valley"}}},
        {"Campfire", "Effect", AssetKind::Data, {{"colour", "#ff7b2e"}, {"intensity", "2.00"}}, "campfire.fx"},
    };
}

}  // namespace

DemoServer::DemoServer(const QString& root, const std::string& url) : m_root(root), m_path(url)
{
    Expect(QDir(root).mkpath(QStringLiteral("alice")) && QDir(root).mkpath(QStringLiteral("bob")),
           "cannot create the workspace folders");
    const bool newDepot = m_path.empty();
    if (newDepot) {
        m_path = QFile::encodeName(root + QStringLiteral("/depot.db")).toStdString();
        ExpectDone(depot::Depot::create(m_path), "cannot create the depot");
    }
    m_bob = host::OpenRevisionServer(m_path, {revision::PasswordHashCost::Minimal});  // a demo server
    if (newDepot) {
        depot::DepotOptions options;
        options.passwordHashCost = depot::PasswordHashCost::Minimal;
        depot::Depot admin(m_path, options);
        ExpectDone(admin.addUser("alice", "alice-pw"), "add alice");
        ExpectDone(admin.addUser("bob", "bob-pw"), "add bob");
        ExpectDone(admin.addWorkspace(workspace("alice"), "alice", folderPath("alice")), "add alice-ws");
        ExpectDone(admin.addWorkspace(workspace("bob"), "bob", folderPath("bob")), "add bob-ws");
    }
}

QString DemoServer::folder(const char* user) const
{
    return QDir(m_root + '/' + user).canonicalPath();
}

std::string DemoServer::folderPath(const char* user) const
{
    return QFile::encodeName(folder(user)).toStdString();
}

std::string DemoServer::workspace(const char* user) const
{
    return m_bob->capabilities().has(revision::Capability::NamedWorkspaces) ? std::string(user) + "-ws"
                                                                            : folderPath(user);
}

const std::string& DemoServer::bobTicket()
{
    if (m_bobTicket.empty())
        ExpectDone(m_bob->login("bob", "bob-pw", workspace("bob"), m_bobTicket), "bob logs in");
    return m_bobTicket;
}

int SeedSampleWorkspace(DemoServer& server)
{
    std::string error;
    const std::unique_ptr<host::Workspace> workspace = host::Workspace::Open(server.folder("alice"), error);
    Expect(bool(workspace), error);
    const std::vector<SampleAsset> assets = sampleAssets();
    for (const SampleAsset& sample : assets) {
        host::NewAsset asset;
        asset.name = sample.name;
        asset.type = sample.type;
        asset.kind = sample.kind;
        asset.fields = sample.fields;
        const KELHandle<kel4::IAsset> created = workspace->CreateAsset(asset, error);
        Expect(!created.IsNull(), error);
        if (sample.externalFile)
            Expect(bool(workspace->AddExternalFile(created, sample.externalFile,
                                                   "data of " + QByteArray(sample.name))),
                   std::string("cannot add ") + sample.externalFile);
    }
    const host::SaveReport saved = workspace->Save();
    Expect(saved.Succeeded(), "cannot save the sample workspace: " + saved.DescribeFailures());

    const std::unique_ptr<host::RevisionServer> alice = host::OpenRevisionServer(server.path(), {});
    std::string ticket;
    ExpectDone(alice->login("alice", "alice-pw", server.workspace("alice"), ticket), "alice logs in");
    host::RevisionServer::Files files;
    for (const std::string& file : saved.writtenFiles)
        files.push_back(file);
    ExpectDone(alice->add(ticket, files, ""), "alice adds the sample workspace");
    revision::ChangelistId submitted;
    ExpectDone(alice->submit(ticket, "", "sample workspace", submitted), "alice submits the sample workspace");
    ExpectDone(server.bob().sync(server.bobTicket(), {}), "bob syncs");
    return int(assets.size());
}

void SubmitFields(host::RevisionServer& server, const std::string& ticket, const std::string& kelFile,
                  const std::map<std::string, std::string>& fields, const std::string& description)
{
    QFile kel(QString::fromStdString(kelFile));
    Expect(kel.open(QIODevice::ReadOnly), "cannot read " + kelFile);
    host::AssetRecord record;
    std::string error;
    Expect(host::KelFormat::Parse(kel.readAll().toStdString(), record, error), error);
    kel.close();
    for (const auto& [field, value] : fields)
        record.fields[field] = value;
    Expect(kel.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
               kel.write(QByteArray::fromStdString(host::KelFormat::Serialize(record))) > 0,
           "cannot write " + kelFile);
    kel.close();
    revision::ChangelistId submitted;
    ExpectDone(server.submit(ticket, "", description, submitted), "submit " + kelFile);
}

QString CreateDemoDepot(const QString& parent, std::unique_ptr<DemoServer>& server)
{
    QString folder = QDir(parent).filePath(QStringLiteral("demo-depot"));
    for (int n = 2; QFileInfo::exists(folder); ++n)
        folder = QDir(parent).filePath(QStringLiteral("demo-depot-%1").arg(n));
    Expect(QDir().mkpath(folder), "cannot create " + folder.toStdString());
    server = std::make_unique<DemoServer>(folder);
    SeedSampleWorkspace(*server);
    return folder;
}

}  // namespace hbrc::studio
