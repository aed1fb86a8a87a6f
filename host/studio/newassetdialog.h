#pragma once

#include <hbrcdatamodel/workspace.h>

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QLineEdit;

namespace hbrc::studio {

// A new asset of a kind: the type the kind's assets usually have and the fields it starts with.
host::NewAsset NewAssetOfKind(const std::string& name, host::AssetKind kind, const std::string& type = {});

// Asks for a new asset's name, kind and type. The kinds are the data model's; the types offered
// are those of the workspace's assets of the chosen kind (another can be typed). OK is enabled
// while the name is not blank and the type is one word.
class NewAssetDialog : public QDialog
{
    Q_OBJECT
public:
    NewAssetDialog(const host::DataModelMgr& model, QWidget* parent = nullptr);

    host::NewAsset asset() const;

private:
    void offerTypes();
    void updateOk();

    const host::DataModelMgr& m_model;
    QLineEdit* m_name = nullptr;
    QComboBox* m_kind = nullptr;
    QComboBox* m_type = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

}  // namespace hbrc::studio
