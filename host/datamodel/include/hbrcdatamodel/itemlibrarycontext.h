#pragma once

#include <hbrcdatamodel/export.h>

#include <borax/datamodel/accessors.h>
#include <borax/datamodel/iitemlibrary.h>
#include <borax/datamodel/iitemlibrarynotification.h>

#include <functional>
#include <vector>

namespace hbrc::host {

// Registration codes: bits selecting the notifications a receiver wants. 40 selects both.
enum NotificationCode : int {
    kNotifyItemChanges = 0x08,  // begin/end of changes, invalidation, names, tags, access states
    kNotifyCommits = 0x20       // OnPreCommit and OnPostCommit
};

// The context in which the host's item library is accessed. Receivers register with a code and a
// context index; each registration is one entry (registering twice means being called twice until
// unregistered twice), called in registration order.
class HBRC_DATAMODEL_EXPORT ItemLibraryContext final : public borax::datamodel::IItemLibraryContext
{
public:
    using Notification = std::function<void(borax::datamodel::IItemLibraryNotification&,
                                            borax::datamodel::ItemLibraryAccessor&)>;

    ItemLibraryContext(borax::datamodel::IItemLibrary* library, int index) : m_library(library), m_index(index) {}

    borax::datamodel::IItemLibrary* GetLibrary() const override { return m_library; }
    void RegisterNotification(borax::datamodel::IItemLibraryNotification* receiver, int code,
                              int contextIndex) override;
    void UnregisterNotification(borax::datamodel::IItemLibraryNotification* receiver, int code,
                                int contextIndex) override;

    borax::datamodel::ItemLibraryAccessor Accessor() { return {this, m_index}; }
    // Calls notify for every registration whose code has a bit of kinds. A receiver unregistered
    // by an earlier call is not called any more.
    void Notify(int kinds, const Notification& notify);
    std::size_t RegistrationCount() const { return m_registrations.size(); }

private:
    struct Registration
    {
        borax::datamodel::IItemLibraryNotification* receiver;
        int code;
        int contextIndex;
        bool operator==(const Registration& o) const
        {
            return receiver == o.receiver && code == o.code && contextIndex == o.contextIndex;
        }
    };

    borax::datamodel::IItemLibrary* m_library;
    int m_index;
    std::vector<Registration> m_registrations;
};

}  // namespace hbrc::host
