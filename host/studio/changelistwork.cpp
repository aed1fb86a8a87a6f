#include "changelistwork.h"

#include <hbrcservices/revisionserver.h>

#include <QCoreApplication>

#include <algorithm>

namespace hbrc::studio {

ChangelistWork::SubmitPlan ChangelistWork::planSubmit(const revision::PendingChangelist& pending, const Files& checked)
{
    SubmitPlan plan;
    plan.changelist = pending.changelist.id;
    for (const revision::OpenedFile& file : pending.files) {
        const bool isChecked = std::find(checked.begin(), checked.end(), file.localPath) != checked.end();
        if (isChecked)
            ++plan.fileCount;
        if (plan.changelist.empty() && isChecked)
            plan.intoNew.push_back(file.localPath);
        else if (!plan.changelist.empty() && !isChecked)
            plan.toDefault.push_back(file.localPath);
    }
    return plan;
}

RevisionOperations::Work ChangelistWork::submit(SubmitPlan plan, std::string description)
{
    return [plan = std::move(plan), description = std::move(description)](
               host::RevisionServer& server, const std::string& ticket, OperationOutcome& outcome) {
        revision::Result result;
        std::string changelist = plan.changelist;
        if (!plan.toDefault.empty())
            result = server.reopen(ticket, plan.toDefault, "");
        if (result.ok() && changelist.empty()) {
            result = server.createChangelist(ticket, description, changelist);
            if (result.ok())
                result = server.reopen(ticket, plan.intoNew, changelist);
        }
        revision::ChangelistId submitted;
        if (result.ok())
            result = server.submit(ticket, changelist, description, submitted);
        if (result.ok())
            outcome.done = tr("Submitted change %1 (%n file(s))", nullptr, int(plan.fileCount)).arg(QString::fromStdString(submitted));
        return result;
    };
}

RevisionOperations::Work ChangelistWork::reopen(Files files, std::string changelist)
{
    return [files = std::move(files), changelist = std::move(changelist)](
               host::RevisionServer& server, const std::string& ticket, OperationOutcome& outcome) {
        const revision::Result result = server.reopen(ticket, files, changelist);
        outcome.done = changelist.empty()
                           ? tr("Moved %n file(s) to the default changelist", nullptr, int(files.size()))
                           : tr("Moved %n file(s) to change %1", nullptr, int(files.size())).arg(QString::fromStdString(changelist));
        return result;
    };
}

RevisionOperations::Work ChangelistWork::newChangelist(std::string description, Files files)
{
    return [description = std::move(description), files = std::move(files)](
               host::RevisionServer& server, const std::string& ticket, OperationOutcome& outcome) {
        revision::ChangelistId created;
        revision::Result result = server.createChangelist(ticket, description, created);
        if (result.ok() && !files.empty())
            result = server.reopen(ticket, files, created);
        outcome.done = tr("Created change %1 with %n file(s)", nullptr, int(files.size())).arg(QString::fromStdString(created));
        return result;
    };
}

RevisionOperations::Work ChangelistWork::deleteChangelist(std::string changelist)
{
    return [changelist = std::move(changelist)](host::RevisionServer& server, const std::string& ticket,
                                                OperationOutcome& outcome) {
        outcome.done = tr("Deleted change %1").arg(QString::fromStdString(changelist));
        return server.deleteChangelist(ticket, changelist);
    };
}

RevisionOperations::Work ChangelistWork::setDescription(std::string changelist, std::string description)
{
    return [changelist = std::move(changelist), description = std::move(description)](
               host::RevisionServer& server, const std::string& ticket, OperationOutcome& outcome) {
        outcome.done = tr("Changed the description of change %1").arg(QString::fromStdString(changelist));
        return server.setDescription(ticket, changelist, description);
    };
}

RevisionOperations::Work ChangelistWork::revert(Files files)
{
    return [files = std::move(files)](host::RevisionServer& server, const std::string& ticket,
                                      OperationOutcome& outcome) {
        const revision::Result result = server.revert(ticket, files);
        outcome.changedOnDisk = files;
        outcome.done = tr("Reverted %n file(s)", nullptr, int(files.size()));
        return result;
    };
}

RevisionOperations::Work ChangelistWork::revertUnchanged(Files files)
{
    return [files = std::move(files)](host::RevisionServer& server, const std::string& ticket,
                                      OperationOutcome& outcome) {
        std::vector<std::string> reverted;
        const revision::Result result = server.revertUnchanged(ticket, files, reverted);
        QStringList names;
        for (const std::string& name : reverted)
            names << QString::fromStdString(name);
        outcome.done = reverted.empty() ? tr("No unchanged file to revert")
                                        : tr("Reverted %n unchanged file(s): %1", nullptr, int(reverted.size()))
                                              .arg(names.join(QStringLiteral(", ")));
        return result;
    };
}

RevisionOperations::Work ChangelistWork::revertUnchangedCheckOut(Files files, QString asset)
{
    return [files = std::move(files), asset = std::move(asset)](host::RevisionServer& server,
                                                                 const std::string& ticket, OperationOutcome& outcome) {
        std::vector<std::string> reverted;
        const revision::Result result = server.revertUnchanged(ticket, files, reverted);
        outcome.done = reverted.empty() ? tr("Kept the check-out of %1: its file differs from your revision").arg(asset)
                                        : tr("Reverted the check-out of %1 (unchanged)").arg(asset);
        return result;
    };
}

RevisionOperations::Work ChangelistWork::getLatest(Files files, QString names)
{
    return [files = std::move(files), names = std::move(names)](host::RevisionServer& server,
                                                                 const std::string& ticket, OperationOutcome& outcome) {
        const revision::Result result = server.sync(ticket, files);
        outcome.changedOnDisk = files;
        outcome.done = tr("Got the latest revision of %1").arg(names);
        return result;
    };
}

RevisionOperations::Work ChangelistWork::getRevision(std::vector<revision::FileAtRevision> files, QString asset,
                                                     QString change)
{
    return [files = std::move(files), asset = std::move(asset), change = std::move(change)](
               host::RevisionServer& server, const std::string& ticket, OperationOutcome& outcome) {
        const revision::Result result = server.syncTo(ticket, files);
        for (const revision::FileAtRevision& file : files)
            outcome.changedOnDisk.push_back(file.file);
        outcome.done = tr("Got %1 as of change %2").arg(asset, change);
        return result;
    };
}

}  // namespace hbrc::studio
