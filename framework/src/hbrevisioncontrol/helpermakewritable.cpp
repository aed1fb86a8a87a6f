// Making an asset's files writable without checking them out: one undoable command, one re-connect
// when the session expired, and one report of a failure, without a retry.
#include "revisioncontroluihelper.h"

#include "errorreporting.h"
#include "hbmakewritablecommand.h"
#include "hostservices.h"
#include "interactivemode.h"
#include "revisioncommandrun.h"

#include <QMessageBox>

namespace {

// The asset's files, one per line in sorted order; empty when the asset has none.
std::string filesOfObject(kel4::IDataControl& dataControl, const KELHandle<IDbObject>& object,
                          bool includeExternalFiles)
{
    kel4::Set<std::string> files;
    dataControl.GetFiles(object, includeExternalFiles, kel4::closureId::Persistence, std::string(), files);
    std::string list;
    hbrc::internal::CookUpFileListString(files.begin(), files.end(), list);
    return list;
}

// "I/O Error" with a single Ok button; the files, when there are any, as detailed text.
void showMakeWritableError(const QString& message, const std::string& details)
{
    QMessageBox box(QMessageBox::Critical, QObject::tr("I/O Error"), message, QMessageBox::Ok);
    // Retry is not among the buttons: this sets no default and the box keeps its own.
    box.setDefaultButton(QMessageBox::Retry);
    box.setEscapeButton(QMessageBox::Ok);
    if (!details.empty())
        box.setDetailedText(QString::fromStdString(details));
    box.setSizeGripEnabled(true);
    box.exec();
}

}  // namespace

bool CRevisionControlUIHelper::MakeObjectWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles)
{
    const KELPtr<kel4::IDataControl> dataControl = hbrc::internal::DataControlOf(object);
    const hbrc::internal::RevisionCommandOutcome outcome = hbrc::internal::RunRevisionCommand(
        *this, dataControl, ObjectList{object},
        [&](const borax::datamodel::ItemLibraryAccessor& library, const BaseScsCommand::AccessorList& assets) {
            return new ScsMakeWritableCommand(library, assets, includeExternalFiles);
        });
    if (outcome.executed && outcome.code == kel4::kResultSuccess)
        return true;

    QString errorText = QObject::tr("Unknown error");
    if (!outcome.executed)
        errorText = QObject::tr("Could not execute command: Unknown error");
    else if (outcome.errorString)
        errorText = QString::fromStdString(*outcome.errorString);
    kel4::IDataControl& control = dataControl.GetPointeeNotNull();
    const QString message = QObject::tr("Error found while trying to make the asset %1 writable:\n%2")
                                .arg(QString::fromStdString(control.GetAssetDisplayName(object)), errorText);
    const std::string details = filesOfObject(control, object, includeExternalFiles);

    if (hbrc::internal::InteractiveMode())
        showMakeWritableError(message, details);
    else
        hbrc::internal::LogFailure(message.toStdString(), details);
    return false;
}
