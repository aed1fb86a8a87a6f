#include <qtextention/qcolorcontrol.h>
#include <qtextention/qcolorframe.h>

#include <QColorDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

QColorControl::QColorControl(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_swatch = new QColorFrame(this);
    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("colorName"));
    m_pick = new QToolButton(this);
    m_pick->setObjectName(QStringLiteral("pickColor"));
    m_pick->setText(tr("..."));
    m_pick->setToolTip(tr("Choose a colour"));
    m_pick->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(m_swatch);
    layout->addWidget(m_name, 1);
    layout->addWidget(m_pick);
    setFocusProxy(m_name);
    connect(m_name, &QLineEdit::editingFinished, this, &QColorControl::nameEntered);
    connect(m_pick, &QToolButton::clicked, this, &QColorControl::pick);
}

void QColorControl::setColor(const QColor& color)
{
    m_color = color;
    m_swatch->setColor(color);
    m_name->setText(color.isValid() ? color.name() : QString());
}

void QColorControl::nameEntered()
{
    const QColor typed = QColor::fromString(m_name->text().trimmed());
    if (typed.isValid())
        edit(typed);
    else
        setColor(m_color);
}

void QColorControl::pick()
{
    const QColor picked = QColorDialog::getColor(m_color, this, tr("Colour"));
    if (picked.isValid())
        edit(picked);
}

void QColorControl::edit(const QColor& color)
{
    const bool changed = color != m_color;
    setColor(color);
    if (changed)
        emit colorEdited(color);
}
