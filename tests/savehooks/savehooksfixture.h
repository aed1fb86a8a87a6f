#pragma once

// Saves through the reference host's item library with the revision-control plug-in loaded as a
// host loads it (the built library), on alice's host on the embedded depot (RevisionHostFixture).
//
// SetUp adds to the depot the metadata assets a save asks about: "Stone", "Moss", "Reed" and
// "Leaf" (a value asset), or the names EditableAssetNames() gives; the first has the external file
// <name>.bin. All are submitted and read-only in alice's folder. Then it loads the plug-in, starts
// its components and re-opens alice's workspace so that the helper follows its saves.

#include <revisionhostfixture.h>

#include <depot/depot.h>
#include <hbrcdatamodel/workspace.h>

#include <QFile>

#include <cctype>

namespace hbrc::test {

class SaveHooksFixture : public RevisionHostFixture
{
public:
    static constexpr const char* kField = "note";

    hbrc::host::ConnectionOptions ConnectionOptionsForAlice() const override
    {
        hbrc::host::ConnectionOptions options = RevisionHostFixture::ConnectionOptionsForAlice();
        // No operation of these tests is slow on purpose: the plug-in's progress box never shows.
        options.timeOutThreshold = std::chrono::minutes(5);
        return options;
    }

    void SetUp() override
    {
        RevisionHostFixture::SetUp();
        if (HasFatalFailure())
            return;
        SeedEditableAssets();
        if (HasFatalFailure())
            return;
        std::string error;
        ASSERT_TRUE(host->LoadPlugin(HBRC_PLUGIN_PATH, error)) << error;
        ASSERT_NE(host->StartComponent("RevisionControlPropertiesMgr"), nullptr);
        ASSERT_NE(host->StartComponent("RevisionControlUIHelper"), nullptr);
        workspace = host->OpenWorkspace(AliceFolder(), error);
        ASSERT_NE(workspace, nullptr) << error;
    }

    virtual std::vector<std::string> EditableAssetNames() const { return {"Stone", "Moss", "Reed", "Leaf"}; }

    // --- editing and saving ---------------------------------------------------------------------------
    void Edit(const std::string& asset, const std::string& value)
    {
        ASSERT_TRUE(workspace->SetField(Asset(asset), kField, value)) << asset;
    }
    // A save as the user starts it: interactive while the window is open.
    hbrc::host::SaveReport Save() { return workspace->Save(); }
    // A save whose dialogs are all answered and that goes through.
    void SaveAnswered()
    {
        const hbrc::host::SaveReport report = Save();
        ExpectDriverFinished();
        EXPECT_TRUE(report.Succeeded()) << report.DescribeFailures();
    }
    // The assets a save creates are metadata assets.
    KELHandle<kel4::IDbObject> CreateAsset(const std::string& name, const std::string& externalFile = {})
    {
        return RevisionHostFixture::CreateAsset(name, externalFile, hbrc::host::AssetKind::Metadata);
    }

    // --- what became of an edit -----------------------------------------------------------------------
    bool OnDiskWith(const std::string& asset, const std::string& value) const
    {
        QFile file(QFile::decodeName(QByteArray::fromStdString(KelFileOf(asset))));
        return file.open(QIODevice::ReadOnly) &&
               file.readAll().contains(QByteArray::fromStdString(std::string("field ") + kField + " = " + value));
    }
    bool DirtyInMemoryWith(const std::string& asset, const std::string& value) const
    {
        const KELHandle<kel4::IDbObject> object = Asset(asset);
        const auto& fields = workspace->Model().Store().AssetAt(workspace->Model().SlotOf(object)).record.fields;
        const auto field = fields.find(kField);
        return workspace->Model().IsDirty(object) && field != fields.end() && field->second == value;
    }

    // --- revision state --------------------------------------------------------------------------------
    // Bob opens every file of the asset for edit and locks them (the embedded depot's own verb).
    void BobHolds(const std::string& asset)
    {
        BobExpects(Bob().sync(BobTicket(), {}));
        BobEdits(asset);
        hbrc::depot::Depot depot(DepotPath());
        BobExpects(depot.lock(BobTicket(), BobFilesOf(asset)));
    }
    // A new session for alice, as after she gave her password.
    void AliceLogsInAgain() const
    {
        std::string error;
        const KELPtr<kel4::IUserParameters> session =
            FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error);
        ASSERT_TRUE(session) << error;
        DataControl()->SetSession(session);
    }

private:
    void SeedEditableAssets()
    {
        ObjectList assets;
        for (const std::string& name : EditableAssetNames()) {
            // The first has an external file, lower-case: "Stone" has stone.bin.
            std::string external = assets.empty() ? name + ".bin" : "";
            if (!external.empty())
                external[0] = char(std::tolower(external[0]));
            assets.push_back(RevisionHostFixture::CreateAsset(
                name, external, name == "Leaf" ? hbrc::host::AssetKind::Value : hbrc::host::AssetKind::Metadata));
        }
        ASSERT_TRUE(workspace->Save().Succeeded());
        std::string error;
        ASSERT_EQ(DataControl()->MarkForAdd(assets, true, kPersistence, "", error).GetCode(), 0) << error;
        AliceSubmits("editable assets");
    }
};

}  // namespace hbrc::test
