#include "errorreporting.h"

#include "interactivemode.h"

#include <log/log.h>

#include <QCoreApplication>
#include <QMessageBox>
#include <QString>

#include <map>
#include <sstream>

namespace {

// The failure texts in the host's language (they are the source texts where no translation is
// installed). The context is the helper's, as for the texts of its flows.
std::string translated(const char* text)
{
    return QCoreApplication::translate("CRevisionControlUIHelper", text).toStdString();
}

struct FlagLine {
    const char* text;
    bool namesUsers;  // the users holding the files follow the lines
};

// The line each explained status flag adds to a failure message. Built on first use, never changed.
const std::map<unsigned, FlagLine>& flagLines()
{
    using namespace kel4;
    static const std::map<unsigned, FlagLine> lines{
        {eStatusCheckedOutByOthers,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because the following users have checked out some of the files\n"),
          true}},
        {eStatusMarkedForAdd,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because some of the files are marked for add\n"),
          false}},
        {eStatusMarkedForAddByOthers,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because the following users have marked for add some of the files\n"),
          true}},
        {eStatusMarkedForDelete,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because some of the files are marked for delete\n"),
          false}},
        {eStatusMarkedForDeleteByOthers,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because the following users have marked for delete some of the files\n"),
          true}},
        {eStatusNotHeadRevision,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because some of the files are not at the head revision\n"),
          false}},
        {eStatusNotInDatabase,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because some of the files are not in the database\n"),
          false}},
        {eStatusIOError,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because some of the files are causing a IO error\n"),
          false}},
        {eStatusLockedByOthers,
         {QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                            "because the following users have locked some of the files\n"),
          true}},
    };
    return lines;
}

const FlagLine* lineFor(unsigned flag)
{
    const auto found = flagLines().find(flag);
    return found == flagLines().end() ? nullptr : &found->second;
}

void appendIOModuleError(const std::string& errorText, std::string& message)
{
    message += translated(QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Error reported by IO module: "));
    message += errorText;
    message += "\n";
}

void appendUnknownError(const std::string& errorText, std::string& message)
{
    message += translated(QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Unknown error found\n"));
    appendIOModuleError(errorText, message);
}

// A blank line, then one user (or failed users query) per line, sorted, each once.
void appendUsers(const std::set<std::string>& users, std::string& message)
{
    if (users.empty())
        return;
    message += "\n";
    for (const std::string& user : users) {
        message += user;
        message += "\n";
    }
}

void addUsersOfObject(kel4::IDataControl& dataControl, const KELHandle<IDbObject>& object,
                      std::set<std::string>& users)
{
    kel4::List<std::string> names;
    const kelResult result = dataControl.GetUsersOfObject(object, kel4::closureId::Persistence, names);
    if (result.IsFailure() || names.empty()) {
        users.insert(translated(QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                                                  "Error found while trying to get the list of users for object ")) +
                     object.GetName() + "\n");
        return;
    }
    users.insert(names.begin(), names.end());
}

bool askRetryAfterError(const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Critical, title, text, QMessageBox::Ok | QMessageBox::Retry, nullptr, Qt::Dialog);
    box.setDefaultButton(QMessageBox::Retry);
    box.setEscapeButton(QMessageBox::Ok);
    return box.exec() == QMessageBox::Retry;
}

// One entry: the title, then each non-empty line of the text, indented.
void logError(const std::string& title, const std::string& text)
{
    std::string entry = title + ":";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty())
            entry += "\n  " + line;
    }
    Log::Singleton::Instance().Write(Log::eError, entry);
}

}  // namespace

HBRC_INTERNAL_NAMESPACE_BEGIN

int GetErrorStrings(KELPtr<kel4::IDataControl> dataControl, const kel4::List<KELHandle<IDbObject>>& objects,
                    bool includeExternalFiles, const std::set<unsigned>& flags, const std::string& errorString,
                    std::string& message, std::string& details)
{
    kel4::IDataControl& control = dataControl.GetPointeeNotNull();
    kel4::List<unsigned> statuses;
    std::string statusError;
    const kelResult status =
        control.GetStatus(objects, includeExternalFiles, kel4::closureId::Persistence, true, statuses, statusError);
    if (status.GetCode() != kel4::kResultSuccess) {
        const char* cause = status.GetCode() == kel4::kResultSessionUnusable
                                ? QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Cannot connect to source control.\n")
                                : QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Unknown error encountered.\n");
        message += translated(cause);
        appendIOModuleError(statusError, message);
        return 1;
    }

    bool explained = false;
    std::set<std::string> users;
    for (const unsigned flag : flags) {
        const FlagLine* line = lineFor(flag);
        if (!line)
            continue;
        auto word = statuses.begin();
        for (auto object = objects.begin(); object != objects.end() && word != statuses.end(); ++object, ++word) {
            if (!(*word & flag))
                continue;
            message += translated(line->text);
            explained = true;
            if (line->namesUsers)
                addUsersOfObject(control, *object, users);
            break;
        }
    }
    if (explained)
        appendUsers(users, message);
    else
        appendUnknownError(errorString, message);

    kel4::Set<std::string> files;
    kel4::List<kel4::Set<std::string>> filesPerObject;
    control.GetFiles(objects, includeExternalFiles, kel4::closureId::Persistence, std::string(), files,
                     filesPerObject);
    std::string fileList;
    CookUpFileListString(files.begin(), files.end(), fileList);
    details = translated(QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Files:\n")) + fileList;
    return 0;
}

void AddErrorString(KELPtr<kel4::IFileVersionControl> fileVersionControl, const kel4::IUserParameters* userParameters,
                    const kel4::List<std::string>& files, unsigned combinedStatus, const std::set<unsigned>& flags,
                    const std::string& errorString, std::string& message)
{
    bool explained = false;
    bool namesUsers = false;
    for (const unsigned flag : flags) {
        const FlagLine* line = lineFor(flag);
        if (!line || !(combinedStatus & flag))
            continue;
        message += translated(line->text);
        explained = true;
        namesUsers = namesUsers || line->namesUsers;
    }
    if (!explained) {
        appendUnknownError(errorString, message);
        return;
    }
    if (!namesUsers)
        return;
    kel4::List<std::string> names;
    std::string usersError;
    const kelResult result =
        fileVersionControl.GetPointeeNotNull().GetUsersOfFiles(userParameters, files, names, usersError);
    if (result.IsFailure())
        message += translated(QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Sorry cannot get the list of users\n"));
    else
        appendUsers(std::set<std::string>(names.begin(), names.end()), message);
}

kelResult GetAllFilesStatus(KELPtr<kel4::IFileVersionControl> fileVersionControl,
                            const kel4::IUserParameters* userParameters, const kel4::List<std::string>& files,
                            unsigned& status)
{
    kel4::List<unsigned> statuses;
    kel4::List<std::string> changelists;
    std::string errorText;
    const kelResult result =
        fileVersionControl.GetPointeeNotNull().GetStatus(userParameters, files, statuses, changelists, errorText, 0);
    if (result.IsFailure())
        return result;
    status = 0;
    for (const unsigned word : statuses)
        status |= word;
    return result;
}

kelResult MarkFilesForDeleteInChangelist(KELPtr<kel4::IFileVersionControl> fileVersionControl,
                                         const kel4::IUserParameters* userParameters,
                                         const kel4::List<std::string>& files, const std::string& changelist,
                                         std::string& errorString, std::string& message)
{
    const kelResult result = fileVersionControl.GetPointeeNotNull().MarkForDeleteInChangelist(
        userParameters, files, changelist, errorString);
    if (result.GetCode() == kel4::kResultSuccess)
        return result;
    unsigned combinedStatus = 0;
    GetAllFilesStatus(fileVersionControl, userParameters, files, combinedStatus);
    std::string fileList;
    CookUpFileListString(files.begin(), files.end(), fileList);
    message = QObject::tr("The following files have been deleted during the commit:\n").toStdString() + "\n" +
              fileList + "\n" +
              QObject::tr("but we couldn't mark them for delete in your revision control\n").toStdString();
    AddErrorString(fileVersionControl, userParameters, files, combinedStatus, kMarkForDeleteErrorFlags, errorString,
                   message);
    return result;
}

bool HandleError(const std::string& title, const std::string& text)
{
    if (InteractiveMode())
        return askRetryAfterError(QString::fromStdString(title), QString::fromStdString(text));
    logError(title, text);
    return false;
}

void LogFailure(const std::string& message, const std::string& details)
{
    Log::Singleton::Instance().Write(Log::eError, message + "\nDetails:\n" + details);
}

HBRC_INTERNAL_NAMESPACE_END
