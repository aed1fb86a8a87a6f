// Prints the contrast ratio (WCAG 2 relative luminance) of every text role against the background
// it is drawn on, per colour group, for both dark styles, as a Markdown table.
#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QApplication>
#include <QPalette>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

double channel(int value)
{
    const double c = value / 255.0;
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * channel(color.red()) + 0.7152 * channel(color.green()) + 0.0722 * channel(color.blue());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

struct Pair {
    const char* name;
    QPalette::ColorRole text;
    QPalette::ColorRole background;
};

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const Pair pairs[] = {
        {"WindowText on Window", QPalette::WindowText, QPalette::Window},
        {"Text on Base", QPalette::Text, QPalette::Base},
        {"Text on AlternateBase", QPalette::Text, QPalette::AlternateBase},
        {"ButtonText on Button", QPalette::ButtonText, QPalette::Button},
        {"HighlightedText on Highlight", QPalette::HighlightedText, QPalette::Highlight},
        {"PlaceholderText on Base", QPalette::PlaceholderText, QPalette::Base},
        {"ToolTipText on ToolTipBase", QPalette::ToolTipText, QPalette::ToolTipBase},
        {"Link on Base", QPalette::Link, QPalette::Base},
    };
    const std::pair<const char*, std::unique_ptr<QStyle>> styles[] = {
        {"Simple", std::make_unique<QtlomDarkStyleSimple>()},
        {"Tarn", std::make_unique<QtlomDarkStyleTarn>()},
    };
    std::printf("| style | text role on background | active | inactive | disabled |\n|---|---|---|---|---|\n");
    for (const auto& [styleName, style] : styles) {
        const QPalette palette = style->standardPalette();
        for (const Pair& pair : pairs) {
            std::printf("| %s | %s |", styleName, pair.name);
            for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
                std::printf(" %.2f |", contrast(palette.color(group, pair.text), palette.color(group, pair.background)));
            std::printf("\n");
        }
    }
    return 0;
}
