#pragma once

#include <QtCore/qglobal.h>

#if defined(QTEXTENTION_LIBRARY)
#define QTEXTENTION_EXPORT Q_DECL_EXPORT
#else
#define QTEXTENTION_EXPORT Q_DECL_IMPORT
#endif
