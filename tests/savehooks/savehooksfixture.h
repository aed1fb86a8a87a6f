#pragma once

// Saves through the reference host's item library with the revision-control plug-in loaded, on the
// embedded depot (ServerHostFixture), and the user's side of the dialogs the save hooks show. The
// plug-in is the built library loaded as a host loads it, so its dialogs are found by title,
// object name and button text only.
//
// SetUp adds to the fixture's depot the metadata assets that a save asks about: "Stone" (with the
// external file stone.bin), "Moss" and "Leaf", or the count given to SeedCount(), all submitted
// and read-only in alice's folder; then loads the plug-in, starts its components with revision
// control switched on, and re-opens alice's workspace so that the helper follows its saves.

#include <depot/depot.h>
#include <serverhostfixture.h>
#include <dialogdriver.h>

#include <hbrcdatamodel/workspace.h>
#include <kel4/revisionstatus.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace hbrc::test {

// --- the user's side of the hooks' dialogs ----------------------------------------------------------

inline QPushButton* buttonLabelled(QWidget* dialog, const QString& text)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisible())
            return button;
    }
    return nullptr;
}

inline void press(QWidget* dialog, const QString& text)
{
    QPushButton* button = buttonLabelled(dialog, text);
    ASSERT_NE(button, nullptr) << "no button " << text.toStdString() << " in " << dialog->windowTitle().toStdString();
    QTest::mouseClick(button, Qt::LeftButton);
}

inline QString infoText(QWidget* dialog)
{
    auto* label = dialog->findChild<QLabel*>(QStringLiteral("infoLabel"));
    return label ? label->text() : QString();
}

inline QString assetsText(QWidget* dialog)
{
    auto* edit = dialog->findChild<QTextEdit*>(QStringLiteral("assetsEdit"));
    return edit ? edit->toPlainText() : QString();
}

// The paths the dialog lists (shown or hidden).
inline QStringList listedFiles(QWidget* dialog)
{
    QStringList files;
    if (auto* list = dialog->findChild<QTreeWidget*>(QStringLiteral("fileList"))) {
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            files << list->topLevelItem(i)->text(0);
    }
    return files;
}

// What the user does in a changelist dialog: the changelist ("" keeps "Default", otherwise a new
// one with this description), whether the box is ticked, and the button pressed.
struct ChangelistAnswer {
    ChangelistAnswer(QString pressed, QString newDescription = {}, bool ticked = false)
        : button(std::move(pressed)), newChangelist(std::move(newDescription)), tick(ticked)
    {
    }
    QString button;
    QString newChangelist;
    bool tick;
};

inline DialogDriver::Handler answerChangelistDialog(const QString& title, ChangelistAnswer answer,
                                                    std::function<void(QWidget*)> inspect = {})
{
    return [=](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), title);
        if (inspect)
            inspect(dialog);
        if (!answer.newChangelist.isEmpty()) {
            auto* combo = dialog->findChild<QComboBox*>(QStringLiteral("changeListCombo"));
            ASSERT_NE(combo, nullptr);
            combo->setCurrentIndex(0);
            QTest::keyClicks(dialog->findChild<QTextEdit*>(QStringLiteral("descriptionEdit")), answer.newChangelist);
        }
        if (answer.tick)
            dialog->findChild<QCheckBox*>(QStringLiteral("dontShowAgain"))->setChecked(true);
        press(dialog, answer.button);
    };
}

// Types password into the password dialog and presses Ok; an empty password presses Cancel.
// reason is the text the dialog must show above the field.
inline DialogDriver::Handler answerPassword(const QString& password, const QString& reason)
{
    return [=](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Data Source Password Required"));
        QStringList labels;
        for (QLabel* label : dialog->findChildren<QLabel*>())
            labels << label->text();
        EXPECT_TRUE(labels.contains(reason)) << labels.join(QLatin1Char('|')).toStdString();
        if (password.isEmpty())
            return press(dialog, QStringLiteral("Cancel"));
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), password);
        press(dialog, QStringLiteral("Ok"));
    };
}

// --- the fixture ----------------------------------------------------------------------------------------

class SaveHooksFixture : public ServerHostFixture
{
public:
    static constexpr const char* kField = "note";

    hbrc::host::ConnectionOptions ConnectionOptionsForAlice() const override
    {
        hbrc::host::ConnectionOptions options = ServerHostFixture::ConnectionOptionsForAlice();
        // No operation of these tests is slow on purpose: the plug-in's progress box never shows.
        options.timeOutThreshold = std::chrono::minutes(5);
        return options;
    }

    void SetUp() override
    {
        ServerHostFixture::SetUp();
        if (HasFatalFailure())
            return;
        SeedEditableAssets();
        if (HasFatalFailure())
            return;
        std::string error;
        ASSERT_TRUE(host->LoadPlugin(HBRC_PLUGIN_PATH, error)) << error;
        ASSERT_NE(host->StartComponent("RevisionControlPropertiesMgr"), nullptr);
        ASSERT_NE(host->StartComponent("RevisionControlUIHelper"), nullptr);
        host->Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        workspace = host->OpenWorkspace(AliceFolder(), error);
        ASSERT_NE(workspace, nullptr) << error;
    }

    // The editable assets of SetUp: "Stone", "Moss", "Leaf" by default.
    virtual std::vector<std::string> EditableAssetNames() const { return {"Stone", "Moss", "Leaf"}; }

    // --- editing and saving ---------------------------------------------------------------------------
    void Edit(const std::string& asset, const std::string& value)
    {
        ASSERT_TRUE(workspace->SetField(Asset(asset), kField, value)) << asset;
    }
    // A save as the user starts it: in an interactive session when a window is open.
    hbrc::host::SaveReport Save() { return workspace->Save(); }
    KELHandle<kel4::IDbObject> CreateAsset(const std::string& name, const std::string& externalFile = {})
    {
        hbrc::host::NewAsset asset;
        asset.kind = hbrc::host::AssetKind::Metadata;
        asset.name = name;
        std::string error;
        const KELHandle<kel4::IDbObject> created(workspace->CreateAsset(asset, error));
        EXPECT_FALSE(created.IsNull()) << error;
        if (!externalFile.empty()) {
            const QByteArray content = "data of " + QByteArray::fromStdString(name);
            EXPECT_TRUE(workspace->AddExternalFile(created, externalFile, content));
        }
        return created;
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
    // Bob opens every file of the asset for edit and locks them, as from his own machine.
    void BobHolds(const std::string& asset)
    {
        BobExpects(Bob().sync(BobTicket(), {}));
        BobExpects(Bob().edit(BobTicket(), BobFilesOf(asset), ""));
        // Locking is the embedded depot's own verb; the save-hook scenarios run on it.
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
    void ExpectDriverFinished(const DialogDriver& driver) const
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString() << " seen: "
                                   << driver.seenTitles().join(QLatin1Char(',')).toStdString();
    }

private:
    void SeedEditableAssets()
    {
        ObjectList assets;
        for (const std::string& name : EditableAssetNames()) {
            hbrc::host::NewAsset asset;
            asset.kind = name == "Leaf" ? hbrc::host::AssetKind::Value : hbrc::host::AssetKind::Metadata;
            asset.name = name;
            std::string error;
            const KELHandle<kel4::IDbObject> created(workspace->CreateAsset(asset, error));
            ASSERT_FALSE(created.IsNull()) << error;
            if (name == "Stone") {
                ASSERT_TRUE(workspace->AddExternalFile(created, "stone.bin", "granite"));
            }
            assets.push_back(created);
        }
        ASSERT_TRUE(workspace->Save().Succeeded());
        std::string error;
        ASSERT_EQ(DataControl()->MarkForAdd(assets, true, kPersistence, "", error).GetCode(), 0) << error;
        AliceSubmits("editable assets");
    }
};

}  // namespace hbrc::test
