#pragma once

#include <borax/datamodel/modify/cbaseexecutioncommand.h>
#include <kel4/containers.h>
#include <kel4/idatacontrol.h>
#include <kel4/idatamodelmgr.h>
#include <kel4/kelhandle.h>
#include <kel4/kelptr.h>

#include <string>
#include <vector>

// Base of the revision-control commands. A command carries the assets it works on as item-library
// accessors ("asset"), the pending changelist ("changelist", "" for the default one) and whether
// the assets' external files take part ("includeexternalfile"). Executing it resolves the assets
// to database objects, runs one data-control operation, and leaves the operation's result code
// (the return value) and error text ("ErrorString") on the command for its caller.
class BaseScsCommand : public borax::datamodel::modify::CBaseExecutionCommand
{
public:
    using ObjectList = kel4::List<KELHandle<IDbObject>>;
    using AccessorList = std::vector<borax::datamodel::UnspecifiedAccessor>;

    static constexpr const char* kChangelistParam = "changelist";
    static constexpr const char* kAssetParam = "asset";
    static constexpr const char* kIncludeExternalFileParam = "includeexternalfile";
    static constexpr const char* kErrorStringParam = "ErrorString";

    // A command without parameters.
    BaseScsCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* name);
    BaseScsCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* name, const char* changelist,
                   const AccessorList& assets, bool includeExternalFiles);

    // Appends the database object of every accessor's item to objects, in order. False when an
    // item is bound to no valid object or the object is unknown to manager.
    static bool ResolveAssetsFromUnspecifiedAccessors(KELPtr<kel4::IDataModelMgr> manager,
                                                      const borax::datamodel::UnspecifiedAccessorListParam& assets,
                                                      ObjectList& objects);

    // Tells the command's item library that the access state of the objects' items changed, so
    // that views show their new lock and writable state. Failures are ignored.
    void NotifyDataModel(KELPtr<kel4::IDataControl> dataControl, const ObjectList& objects);

protected:
    // What an execution works on: the parameters, resolved against the current database.
    struct Inputs {
        KELPtr<kel4::IDataControl> dataControl;
        ObjectList objects;
        std::string changelist;
        bool includeExternalFiles = false;
    };
    // False when the command cannot run: no item library, no assets, no current database, an
    // asset that does not resolve, or no data control.
    bool ResolveInputs(Inputs& inputs) const;
    void RecordResult(kelResult result, const std::string& errorText);

    using ListOperation = kelResult (kel4::IDataControl::*)(const ObjectList&, bool, kel4::closureId,
                                                            const std::string&, std::string&);
    // Runs operation once for all objects in the changelist; the item library hears of it only
    // when it succeeded.
    bool RunOnAllObjectsInChangelist(ListOperation operation);
};
