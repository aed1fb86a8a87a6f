#pragma once

#include <QString>
#include <QWidget>

#include <functional>

namespace hbrc::studio {

// An editor for one field of an asset: the widget, and how to show a value in it without
// reporting an edit.
struct FieldEditor
{
    QWidget* widget = nullptr;
    std::function<void(const QString& value)> show;
};
// Called with the value of each edit the user finished; the caller decides whether it is kept.
using FieldEdited = std::function<void(const QString& value)>;

enum class FieldKind { Text, Number, Colour, FileReference };

// What editor a field gets: a colour for "...colour"/"...color" fields holding a colour name, a
// number with a range for numeric values, a file reference for "...file" fields, text otherwise.
FieldKind KindOfField(const QString& field, const QString& value);
// The range a numeric field is edited in (minimum, maximum, decimals).
struct NumberRange
{
    double minimum = 0.0;
    double maximum = 100.0;
    int decimals = 2;
};
NumberRange RangeOfField(const QString& field, double value);

// Makes the editor for a field of kind, parented to parent; fileFolder is where a file reference's
// browse button starts.
FieldEditor MakeFieldEditor(FieldKind kind, const QString& field, const QString& value, const QString& fileFolder,
                            QWidget* parent, const FieldEdited& edited);

}  // namespace hbrc::studio
