#include "fieldeditors.h"

#include <qtextention/guards.h>
#include <qtextention/qcolorcontrol.h>
#include <qtextention/rangevalueeditwidget.h>

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

namespace hbrc::studio {

namespace {


FieldEditor textEditor(const QString& value, QWidget* parent, const FieldEdited& sink)
{
    auto* edit = new QLineEdit(value, parent);
    QObject::connect(edit, &QLineEdit::editingFinished, edit, [edit, sink] {
        sink(edit->text());
    });
    return {edit, [edit](const QString& shown) {
                BlockSignalGuard quiet(edit);
                edit->setText(shown);
            }};
}

FieldEditor numberEditor(const QString& field, const QString& value, QWidget* parent, const FieldEdited& sink)
{
    auto* edit = new RangeValueEditWidget(parent);
    const NumberRange range = RangeOfField(field, value.toDouble());
    edit->setRange(range.minimum, range.maximum, range.decimals);
    edit->setValue(value.toDouble());
    QObject::connect(edit, &RangeValueEditWidget::valueEdited, edit, [range, sink](double edited) {
        sink(QString::number(edited, 'f', range.decimals));
    });
    return {edit, [edit](const QString& shown) { edit->setValue(shown.toDouble()); }};
}

FieldEditor colourEditor(const QString& value, QWidget* parent, const FieldEdited& sink)
{
    auto* edit = new QColorControl(parent);
    edit->setColor(QColor::fromString(value));
    QObject::connect(edit, &QColorControl::colorEdited, edit, [sink](const QColor& edited) {
        sink(edited.name());
    });
    return {edit, [edit](const QString& shown) { edit->setColor(QColor::fromString(shown)); }};
}

FieldEditor fileEditor(const QString& value, const QString& folder, QWidget* parent, const FieldEdited& sink)
{
    auto* box = new QWidget(parent);
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    FieldEditor text = textEditor(value, box, sink);
    auto* edit = static_cast<QLineEdit*>(text.widget);
    auto* browse = new QToolButton(box);
    browse->setText(QObject::tr("..."));
    browse->setToolTip(QObject::tr("Choose a file"));
    browse->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(edit, 1);
    layout->addWidget(browse);
    box->setFocusProxy(edit);
    QObject::connect(browse, &QToolButton::clicked, box, [edit, folder, box, sink] {
        const QString chosen = QFileDialog::getOpenFileName(box, QObject::tr("File"), folder);
        if (chosen.isEmpty())
            return;
        edit->setText(QDir(folder).relativeFilePath(chosen));
        sink(edit->text());
    });
    return {box, text.show};
}

}  // namespace

FieldKind KindOfField(const QString& field, const QString& value)
{
    const QString name = field.toLower();
    if ((name.endsWith(QLatin1String("colour")) || name.endsWith(QLatin1String("color"))) &&
        QColor::fromString(value).isValid())
        return FieldKind::Colour;
    if (name.endsWith(QLatin1String("file")))
        return FieldKind::FileReference;
    bool numeric = false;
    value.toDouble(&numeric);
    return numeric ? FieldKind::Number : FieldKind::Text;
}

NumberRange RangeOfField(const QString& field, double value)
{
    static const struct {
        const char* name;
        NumberRange range;
    } known[] = {
        {"roughness", {0.0, 1.0, 2}}, {"metalness", {0.0, 1.0, 2}}, {"opacity", {0.0, 1.0, 2}},
        {"scale", {0.01, 100.0, 2}},  {"intensity", {0.0, 10.0, 2}}, {"lod", {0.0, 8.0, 0}},
    };
    for (const auto& entry : known)
        if (field.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0)
            return entry.range;
    return {0.0, qMax(100.0, value * 2), 2};
}

FieldEditor MakeFieldEditor(FieldKind kind, const QString& field, const QString& value, const QString& fileFolder,
                            QWidget* parent, const FieldEdited& edited)
{
    FieldEditor editor;
    switch (kind) {
    case FieldKind::Text: editor = textEditor(value, parent, edited); break;
    case FieldKind::Number: editor = numberEditor(field, value, parent, edited); break;
    case FieldKind::Colour: editor = colourEditor(value, parent, edited); break;
    case FieldKind::FileReference: editor = fileEditor(value, fileFolder, parent, edited); break;
    }
    editor.widget->setObjectName(QStringLiteral("field_") + field);
    return editor;
}

}  // namespace hbrc::studio
