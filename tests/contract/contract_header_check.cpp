#include <hbrcservices/revisionserver.h>

using hbrc::revision::Capabilities;
using hbrc::revision::Capability;

static_assert(Capabilities{Capability::Locks, Capability::KeptLogIns}.has(Capability::KeptLogIns));
static_assert(!Capabilities{Capability::Locks}.has(Capability::SharedSessions));
