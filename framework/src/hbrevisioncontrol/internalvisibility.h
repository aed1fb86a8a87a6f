#pragma once

// Helpers shared by the plug-in's source files live in hbrc::internal, which the library does not
// export.
#define HBRC_INTERNAL_NAMESPACE_BEGIN namespace hbrc { namespace internal __attribute__((visibility("hidden"))) {
#define HBRC_INTERNAL_NAMESPACE_END } }
