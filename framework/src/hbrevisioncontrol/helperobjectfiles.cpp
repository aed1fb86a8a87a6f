// The files behind an object: whether it has external files, which files it is stored in, and
// showing them to the user.
#include "revisioncontroluihelper.h"

#include "hostservices.h"
#include "interactivemode.h"

#include <log/log.h>
#include <qtextention/fileexplorer.h>
#include <qtextention/qfilelistdialog.h>

#include <QCoreApplication>
#include <QFile>

using hbrc::internal::DataControlOf;

bool CRevisionControlUIHelper::ObjectHasExternalFile(const KELHandle<IDbObject>& object)
{
    KELPtr<kel4::IDataControl> dataControl = DataControlOf(object);
    if (!dataControl)
        return false;
    return dataControl->HasExternalFile(object, kel4::closureId::Persistence);
}

void CRevisionControlUIHelper::GetObjectFiles(const KELHandle<IDbObject>& object, QStringList& files)
{
    KELPtr<kel4::IDataControl> dataControl = DataControlOf(object);
    kel4::Set<std::string> objectFiles;
    if (dataControl.GetPointeeNotNull()
            .GetFiles(object, true, kel4::closureId::Persistence, std::string(), objectFiles)
            .IsFailure())
        return;
    for (const std::string& file : objectFiles)
        files.append(QFile::decodeName(QByteArray::fromStdString(file)));
}

void CRevisionControlUIHelper::ShowObjectFiles(const KELHandle<IDbObject>& object, bool inFileBrowser)
{
    QStringList files;
    GetObjectFiles(object, files);  // virtual: an override is honoured

    std::string listing;
    for (qsizetype i = 0; i < files.size(); ++i) {
        listing += QFile::encodeName(files.at(i)).toStdString();
        if (i < files.size() - 1)
            listing += ',';
        listing += '\n';
    }
    const std::string name = object.GetName();
    Log::Singleton::Instance().GetStream(Log::eMessage) << "Files for asset: " << name << std::endl << listing;

    if (inFileBrowser) {
        ShowFilesInExplorer(files);  // does nothing for an empty list
    } else if (hbrc::internal::InteractiveMode()) {
        // Shown even when the list is empty, so that the user sees that no file was found.
        QFileListDialog::ShowFiles(QCoreApplication::translate("CRevisionControlUIHelper", "Files for asset ") +
                                       QString::fromStdString(name),
                                   files);
    }
}
