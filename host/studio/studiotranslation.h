#pragma once

#include <QLocale>
#include <QTranslator>

#include <memory>

namespace hbrc::studio {

/// The studio's translation of its own texts for locale's language; null when it has none
/// (English needs none).
std::unique_ptr<QTranslator> LoadStudioTranslator(const QLocale& locale);

/// Installs LoadStudioTranslator(QLocale()) in the running application, which owns it.
void InstallStudioTranslator();

}  // namespace hbrc::studio
