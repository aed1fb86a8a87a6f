#include <hbrcdatamodel/itemlibrarycontext.h>

#include <algorithm>

namespace hbrc::host {

void ItemLibraryContext::RegisterNotification(borax::datamodel::IItemLibraryNotification* receiver, int code,
                                              int contextIndex)
{
    if (receiver)
        m_registrations.push_back({receiver, code, contextIndex});
}

void ItemLibraryContext::UnregisterNotification(borax::datamodel::IItemLibraryNotification* receiver, int code,
                                                int contextIndex)
{
    const Registration wanted{receiver, code, contextIndex};
    const auto found = std::find(m_registrations.begin(), m_registrations.end(), wanted);
    if (found != m_registrations.end())
        m_registrations.erase(found);
}

void ItemLibraryContext::Notify(int kinds, const Notification& notify)
{
    const std::vector<Registration> snapshot = m_registrations;
    for (const Registration& registration : snapshot) {
        if (!(registration.code & kinds))
            continue;
        if (std::find(m_registrations.begin(), m_registrations.end(), registration) == m_registrations.end())
            continue;
        borax::datamodel::ItemLibraryAccessor accessor(this, registration.contextIndex);
        notify(*registration.receiver, accessor);
    }
}

}  // namespace hbrc::host
