#pragma once

// Readable GoogleTest failure output for the Qt value types the widget tests compare.

#include <QList>
#include <QString>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
