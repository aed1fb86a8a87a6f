#include "propertypane.h"

#include "fieldeditcommand.h"

#include <hbrcdatamodel/workspace.h>

#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>

namespace hbrc::studio {

namespace {
const QString kNameField = QString::fromLatin1(FieldEditCommand::kNameField);
}

PropertyPane::PropertyPane(QWidget* parent) : QTabWidgetEx(parent)
{
    setObjectName(QStringLiteral("propertyPane"));
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("propertiesPage"));
    scroll->setWidgetResizable(true);
    addTab(scroll, tr("Properties"));
    m_files = new QListWidget(this);
    m_files->setObjectName(QStringLiteral("filesPage"));
    addTab(m_files, tr("Files"));
    m_history = new QListWidget(this);
    m_history->setObjectName(QStringLiteral("historyPage"));
    addTab(m_history, tr("Undo History"));
    rebuild();
}

void PropertyPane::showAsset(host::Workspace* workspace, const KELHandle<kel4::IDbObject>& asset,
                             const QStringList& files)
{
    m_workspace = workspace;
    m_asset = asset;
    rebuild();
    m_files->clear();
    for (const QString& file : files) {
        const bool readOnly = QFileInfo::exists(file) && !QFileInfo(file).isWritable();
        m_files->addItem(readOnly ? tr("%1 (read-only)").arg(file) : file);
    }
    setTabCount(indexOfPage(QStringLiteral("filesPage")), m_asset.IsNull() ? -1 : int(files.size()));
    showHistory();
}

QString PropertyPane::valueOf(const QString& field) const
{
    if (!m_workspace || m_asset.IsNull())
        return {};
    const host::DataModelMgr& model = m_workspace->Model();
    const std::uint32_t slot = model.SlotOf(m_asset);
    if (!model.Store().IsAsset(slot))
        return {};
    const host::AssetRecord& record = model.Store().AssetAt(slot).record;
    if (field == kNameField)
        return QString::fromStdString(record.name);
    const auto found = record.fields.find(field.toStdString());
    return found == record.fields.end() ? QString() : QString::fromStdString(found->second);
}

void PropertyPane::rebuild()
{
    auto* scroll = static_cast<QScrollArea*>(widget(indexOfPage(QStringLiteral("propertiesPage"))));
    // An editor may be the sender of the edit that led here: delete the old form later.
    if (QWidget* old = scroll->takeWidget())
        old->deleteLater();
    m_editors.clear();
    m_form = new QWidget;
    auto* form = new QFormLayout(m_form);
    scroll->setWidget(m_form);
    if (!m_workspace || m_asset.IsNull() || !m_workspace->Model().Store().IsAsset(m_workspace->Model().SlotOf(m_asset))) {
        form->addRow(new QLabel(tr("Select an asset to see its properties."), m_form));
        return;
    }
    const host::StoredAsset& stored = m_workspace->Model().Store().AssetAt(m_workspace->Model().SlotOf(m_asset));
    const QString folder = QFileInfo(m_workspace->Root() + '/' + QString::fromStdString(stored.kelPath)).path();
    auto add = [&](const QString& field, FieldKind kind, const QString& label) {
        const QString value = valueOf(field);
        FieldEditor editor = MakeFieldEditor(kind, field, value, folder, m_form, [this, field](const QString& edited) {
            const QString current = valueOf(field);
            if (edited != current)
                emit fieldEdited(field, current, edited);
        });
        form->addRow(label, editor.widget);
        m_editors.emplace(field, std::move(editor));
    };
    add(kNameField, FieldKind::Text, tr("Name"));
    form->addRow(tr("Type"), new QLabel(QString::fromStdString(stored.record.type), m_form));
    form->addRow(tr("Kind"), new QLabel(QString::fromLatin1(host::AssetKindName(stored.record.kind)), m_form));
    for (const auto& [name, value] : stored.record.fields) {
        const QString field = QString::fromStdString(name);
        add(field, KindOfField(field, QString::fromStdString(value)), field);
    }
}

void PropertyPane::showValues()
{
    for (auto& [field, editor] : m_editors)
        editor.show(valueOf(field));
    showHistory();
}

void PropertyPane::addHistory(const KELHandleBase& asset, const QString& entry)
{
    if (!m_workspace)
        return;
    m_historyByAsset[m_workspace->Model().GetObjectId(asset).GetStr()].prepend(entry);
    showHistory();
}

void PropertyPane::showHistory()
{
    m_history->clear();
    if (!m_workspace || m_asset.IsNull())
        return;
    const auto found = m_historyByAsset.find(m_workspace->Model().GetObjectId(m_asset).GetStr());
    if (found != m_historyByAsset.end())
        m_history->addItems(found->second);
}

QWidget* PropertyPane::editor(const QString& field) const
{
    const auto found = m_editors.find(field);
    return found == m_editors.end() ? nullptr : found->second.widget;
}

}  // namespace hbrc::studio
