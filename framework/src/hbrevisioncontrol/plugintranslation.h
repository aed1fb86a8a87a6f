#pragma once

#include "internalvisibility.h"

#include <QLocale>

#include <memory>

class QTranslator;

HBRC_INTERNAL_NAMESPACE_BEGIN

// The plug-in's translation of its texts for locale's language, or null when it has none.
std::unique_ptr<QTranslator> LoadPluginTranslator(const QLocale& locale);

// Installs the translation for the application's default locale (which the host sets from its
// language setting before it loads the plug-in), once per process.
void InstallPluginTranslator();

HBRC_INTERNAL_NAMESPACE_END
