#pragma once

#include "kelptr.h"

namespace kel4 {

/// A service of a database instance (data control, file version control, ...). Narrow it to the
/// interface you need by converting the KELPtr<IService> to KELPtr<IYourInterface>.
class KEL_INTERFACE IService : public IQueryable
{
};

/// Identifier of a service within a database instance.
struct ServiceId
{
    const char* name;
};

inline const ServiceId& UID_DataControl()
{
    static const ServiceId id{"Korvex.KEL.DataControl"};
    return id;
}

inline const ServiceId& UID_FileVersionControl()
{
    static const ServiceId id{"Korvex.KEL.FileVersionControl"};
    return id;
}

}  // namespace kel4
