#include "newassetdialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

#include <set>

namespace hbrc::studio {

namespace {

struct KindChoice
{
    host::AssetKind kind;
    const char* label;
    const char* type;  // the type offered first for the kind
};

const KindChoice kKinds[] = {
    {host::AssetKind::Metadata,
     QT_TRANSLATE_NOOP("hbrc::studio::NewAssetDialog", "Metadata (materials, lights, settings)"), "Material"},
    {host::AssetKind::Value, QT_TRANSLATE_NOOP("hbrc::studio::NewAssetDialog", "Value (curves, constants)"), "Curve"},
    {host::AssetKind::Data, QT_TRANSLATE_NOOP("hbrc::studio::NewAssetDialog", "Data (meshes, textures, effects)"),
     "Asset"},
};

}  // namespace

host::NewAsset NewAssetOfKind(const std::string& name, host::AssetKind kind, const std::string& type)
{
    host::NewAsset asset;
    asset.name = name;
    asset.kind = kind;
    for (const KindChoice& choice : kKinds)
        if (choice.kind == kind)
            asset.type = type.empty() ? choice.type : type;
    switch (kind) {
    case host::AssetKind::Metadata:
        asset.fields = {{"colour", "#808080"}, {"roughness", "0.50"}};
        break;
    case host::AssetKind::Value:
        asset.fields = {{"value", "0.00"}};
        break;
    case host::AssetKind::Data:
        asset.fields = {{"title", name}};
        break;
    }
    return asset;
}

NewAssetDialog::NewAssetDialog(const host::DataModelMgr& model, QWidget* parent) : QDialog(parent), m_model(model)
{
    setObjectName(QStringLiteral("newAssetDialog"));
    setWindowTitle(tr("New Asset"));
    auto* form = new QFormLayout(this);
    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("name"));
    form->addRow(tr("&Name:"), m_name);
    m_kind = new QComboBox(this);
    m_kind->setObjectName(QStringLiteral("kind"));
    for (const KindChoice& choice : kKinds)
        m_kind->addItem(tr(choice.label));
    form->addRow(tr("&Kind:"), m_kind);
    m_type = new QComboBox(this);
    m_type->setObjectName(QStringLiteral("type"));
    m_type->setEditable(true);
    m_type->setInsertPolicy(QComboBox::NoInsert);
    form->addRow(tr("&Type:"), m_type);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : m_buttons->buttons())
        button->setFocusPolicy(Qt::StrongFocus);  // the dark styles leave buttons out of the Tab chain
    form->addRow(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_kind, &QComboBox::currentIndexChanged, this, &NewAssetDialog::offerTypes);
    connect(m_name, &QLineEdit::textChanged, this, &NewAssetDialog::updateOk);
    connect(m_type, &QComboBox::currentTextChanged, this, &NewAssetDialog::updateOk);
    offerTypes();
    m_name->setFocus();
}

void NewAssetDialog::offerTypes()
{
    const KindChoice& choice = kKinds[m_kind->currentIndex()];
    std::set<QString> types{QString::fromLatin1(choice.type)};
    const host::ObjectStore& store = m_model.Store();
    store.ForEachLive([&](std::uint32_t slot) {
        if (store.IsAsset(slot) && store.AssetAt(slot).record.kind == choice.kind)
            types.insert(QString::fromStdString(store.AssetAt(slot).record.type));
    });
    m_type->clear();
    for (const QString& type : types)
        m_type->addItem(type);
    m_type->setCurrentText(QString::fromLatin1(choice.type));
    updateOk();
}

void NewAssetDialog::updateOk()
{
    static const QRegularExpression word(QStringLiteral("^[^\\s=\\\\]+$"));
    m_buttons->button(QDialogButtonBox::Ok)
        ->setEnabled(!m_name->text().trimmed().isEmpty() && word.match(m_type->currentText()).hasMatch());
}

host::NewAsset NewAssetDialog::asset() const
{
    return NewAssetOfKind(m_name->text().trimmed().toStdString(), kKinds[m_kind->currentIndex()].kind,
                          m_type->currentText().toStdString());
}

}  // namespace hbrc::studio
