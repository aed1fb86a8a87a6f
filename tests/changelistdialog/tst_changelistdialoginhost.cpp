// The changelist dialog and the object-files services over the reference host: a workspace
// folder, the embedded depot with its real pending changelists, and the host's data control.
#include "hbchangelistselectiondialog.h"
#include "objectlisthelpers.h"
#include "revisioncontroluihelper.h"

#include <dialogdriver.h>
#include <hostworkspacefixture.h>

#include <depot/depot.h>
#include <hbrcservices/revisioncontrolservices.h>

#include <QComboBox>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <functional>

using hbrc::test::DialogDriver;

namespace {

using Dialog = hbChangeListSelectionDialog;

class InHost : public HostWorkspaceFixture
{
protected:
    void SetUp() override
    {
        HostWorkspaceFixture::SetUp();
        const std::string depotPath = QFile::encodeName(m_depotDir.filePath(QStringLiteral("depot.db"))).toStdString();
        ASSERT_TRUE(hbrc::depot::Depot::create(depotPath).ok());
        hbrc::depot::DepotOptions fast;
        fast.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
        hbrc::depot::Depot admin(depotPath, fast);
        const std::string root = QFile::encodeName(QDir(WorkspaceFolder()).canonicalPath()).toStdString();
        ASSERT_TRUE(admin.addUser("ana", "").ok());
        ASSERT_TRUE(admin.addWorkspace("ana-studio", "ana", root).ok());

        hbrc::host::ConnectionOptions options;
        options.depot = fast;
        host->AddWorkspaceSetup([this, depotPath, options](hbrc::host::Workspace& w) {
            std::string error;
            services = hbrc::host::InstallRevisionControlServices(w, depotPath, {"ana", "", "ana-studio"}, error,
                                                                  options);
            EXPECT_TRUE(error.empty()) << error;
        });
        Open();
    }
    void TearDown() override
    {
        services = {};
        HostWorkspaceFixture::TearDown();
    }

    KELPtr<kel4::IDataControl> dataControl() const { return KELPtr<kel4::IDataControl>(services.dataControl.Get()); }

    std::unique_ptr<Dialog> changeListDialog()
    {
        return std::make_unique<Dialog>(dataControl(), QString(), std::set<std::string>{}, false, true, nullptr);
    }

    std::string createChangeList(const std::string& description)
    {
        std::string id, error;
        EXPECT_TRUE(dataControl()->CreateChangeList(description, id, error).IsSuccess()) << error;
        return id;
    }

    hbrc::host::RevisionControlServices services;

private:
    QTemporaryDir m_depotDir;
};

QComboBox* combo(const Dialog& d) { return d.findChild<QComboBox*>(QStringLiteral("changeListCombo")); }

QStringList comboTexts(const Dialog& d)
{
    QStringList texts;
    for (int i = 0; i < combo(d)->count(); ++i)
        texts << combo(d)->itemText(i);
    return texts;
}

void click(Dialog& d, const QString& text)
{
    for (QPushButton* b : d.findChildren<QPushButton*>()) {
        if (b->text() == text) {
            QTest::mouseClick(b, Qt::LeftButton);
            return;
        }
    }
    ADD_FAILURE() << "no button " << text.toStdString();
}

int runDialog(Dialog& dialog, const std::function<void(Dialog&)>& act)
{
    DialogDriver driver;
    driver.expect(QStringLiteral("changelist dialog"), [&](QWidget*) { act(dialog); });
    const int result = dialog.exec();
    EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
    return result;
}

TEST_F(InHost, NewCreatesADepotChangeListThatTheNextDialogLists)
{
    auto first = changeListDialog();
    EXPECT_EQ(comboTexts(*first), (QStringList{"New", "Default"}));
    const int created = runDialog(*first, [](Dialog& d) {
        combo(d)->setCurrentIndex(0);
        QTest::keyClicks(d.findChild<QTextEdit*>(QStringLiteral("descriptionEdit")), QStringLiteral("Granite set"));
        click(d, QStringLiteral("Check Out"));
    });
    const std::string granite = first->getChangeList();
    ASSERT_EQ(created, Dialog::UseChangeList);
    ASSERT_FALSE(granite.empty());
    EXPECT_TRUE(dataControl()->ChangeListExists(granite));

    const std::string longDescription(100, 'x');
    const std::string lighting = createChangeList(longDescription);
    auto second = changeListDialog();
    EXPECT_EQ(comboTexts(*second),
              (QStringList{"New", "Default", QString::fromStdString(granite + " Granite set"),
                           QString::fromStdString((lighting + ' ' + longDescription).substr(0, 80))}));
    const int chosen = runDialog(*second, [&](Dialog& d) {
        combo(d)->setCurrentIndex(3);
        EXPECT_EQ(d.findChild<QTextEdit*>(QStringLiteral("descriptionEdit"))->toPlainText().toStdString(),
                  longDescription);
        click(d, QStringLiteral("Check Out"));
    });
    EXPECT_EQ(chosen, Dialog::UseChangeList);
    EXPECT_EQ(second->getChangeList(), lighting);
}

TEST_F(InHost, AnExpiredSessionListsNothingAndKeepsTheDialogOpenOnNew)
{
    createChangeList("made before the session expired");
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    auto dialog = changeListDialog();
    EXPECT_EQ(comboTexts(*dialog), (QStringList{"New", "Default"}));
    bool stayedOpen = false;
    const int result = runDialog(*dialog, [&](Dialog& d) {
        combo(d)->setCurrentIndex(0);
        click(d, QStringLiteral("Check Out"));
        stayedOpen = d.isVisible();
        click(d, QStringLiteral("Cancel"));
    });
    EXPECT_TRUE(stayedOpen);
    EXPECT_EQ(result, Dialog::Cancelled);
}

TEST_F(InHost, TheFilesOfASavedAssetAreListedSortedAndDescribed)
{
    const KELHandle<IAsset> rock = Create(hbrc::host::AssetKind::Data, "rock");
    ASSERT_TRUE(workspace->AddExternalFile(rock, "rock.geo", "geometry"));
    ASSERT_TRUE(workspace->AddExternalFile(rock, "albedo.tex", "texture"));
    workspace->Save();

    CRevisionControlUIHelper helper;
    QStringList files;
    helper.GetObjectFiles(rock, files);
    QStringList sorted = files;
    sorted.sort();
    EXPECT_EQ(files, sorted);
    ASSERT_EQ(files.size(), 3);
    EXPECT_TRUE(files.contains(QString::fromStdString(PathOf("albedo.tex"))));
    EXPECT_TRUE(files.contains(QString::fromStdString(PathOf("rock.geo"))));
    EXPECT_TRUE(helper.ObjectHasExternalFile(rock));

    QString text;
    hbrc::internal::GetAssetListPrettyNames(dataControl(), {rock}, true, text);
    EXPECT_EQ(text.toStdString(), dataControl()->GetAssetDisplayName(rock) + " (with External: albedo.tex)rock.geo)\n");
}

}  // namespace
